#pragma once
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuContainerGrowth.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>
#include <Nu.Core.Ex/NuValuePrecision.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace Nu {

namespace Detail {
inline constexpr char NuMatrixFile[] = "Nu.Core.Math/NuMatrix.h";
}

/// The dimensions and a non-owning view of a matrix's elements, row after row.
template <class T>
class CNuMatrixBase : public CNuValuePrecision<T> {
public:
  /// 0 by 0, Data null.
  CNuMatrixBase();
  /// Owns nothing: Data views the derived class's storage.
  virtual ~CNuMatrixBase();

protected:
  /// The number of rows, the first dimension everywhere.
  unsigned long Rows;
  /// The number of columns: element (r, c) is Data[r * Columns + c].
  unsigned long Columns;
  /// The first element of the derived class's storage, not owned; null while there is none.
  T* Data;
};

/// The owning two-dimensional block, instantiated for double and int.
///
/// Storage holds the elements row after row, and Data views its first element, null only as
/// long as Storage never had a block. Only the memory side of a matrix is here. New keeps the
/// flat prefix, Resize keeps positions; the two guard against different failures, and that
/// asymmetry is part of the contract.
template <class T>
class CNuMatrix : public CNuMatrixBase<T>, public IMemory2D {
public:
  /// 0 by 0, no block.
  CNuMatrix();
  /// rows by columns zeros; a zero product allocates nothing and leaves the dimensions as given.
  ///
  /// Fails as SetDimensions does.
  CNuMatrix(unsigned long rows, unsigned long columns);
  /// A deep copy through CopyFrom.
  CNuMatrix(CNuMatrix const& other);
  /// CopyFrom(&other); returns the matrix itself.
  CNuMatrix& operator=(CNuMatrix const& other);

  /// Releases Storage's block.
  ~CNuMatrix() override;
  /// Keeps each element at its (row, column) and zeroes the rest, in a new block whenever both
  /// the old and the new size are non-empty.
  ///
  /// A zero dimension on a non-empty matrix gives 0 by 0 (block kept); on an empty one the flat
  /// block is sized and the dimensions stay as given. Raises CNuOutOfMemoryException
  /// "Error resizing matrix:" directly followed by the what() text, with the dimensions set to 0.
  void Resize(unsigned long rows, unsigned long columns) override;
  /// sizeof(T).
  unsigned long GetElementSize() const override;
  /// Writes Rows, then Columns.
  void GetSize(unsigned long& rows, unsigned long& columns) const override;
  /// Data: the block, also after Delete.
  void const* GetPointer() const override;
  /// True when Data is non-null, which stays so after Delete.
  bool IsValid() const override;
  /// SetDimensions(rows, columns).
  void New(unsigned long rows, unsigned long columns) override;
  /// 0 by 0; the block stays and Data keeps pointing at it.
  void Delete() override;
  /// Zero bytes over rows * columns elements; the dimensions stay.
  void Reset() override;
  /// SetDimensions to the source's size, then one byte copy.
  ///
  /// Only element sizes are compared: raises "cannot copy Memory2D, elementSize is different",
  /// leaving the matrix unchanged. There is no test for a null source.
  void CopyFrom(IMemory2DAccess const* source) override;
  /// Data, writable.
  void* GetPointer() override;
  /// The read-only GetPointer stays visible beside the writable one.
  using IMemory2D::GetPointer;

  /// Reshapes the flat block: the first rows * columns elements keep their flat index (product
  /// wraps in 64 bits), added ones are zero, a shorter one keeps the block.
  ///
  /// Wraps a CNuException in "Error resizing matrix"; std::bad_alloc and std::length_error pass
  /// through and leave the requested dimensions over the old block.
  void SetDimensions(unsigned long rows, unsigned long columns);

protected:
  /// The elements, row after row: Rows * Columns of them after every operation that did not
  /// fail. Shrinking keeps its block.
  std::vector<T> Storage;
};

// ---- definitions: instantiated in the library for double and int ----

template <class T>
CNuMatrixBase<T>::CNuMatrixBase() : Rows(0), Columns(0), Data(nullptr) {}

template <class T>
CNuMatrixBase<T>::~CNuMatrixBase() = default;

template <class T>
CNuMatrix<T>::CNuMatrix() = default;

template <class T>
CNuMatrix<T>::CNuMatrix(unsigned long rows, unsigned long columns) {
  if (rows * columns != 0) {
    SetDimensions(rows, columns);
  } else {
    this->Rows = rows;
    this->Columns = columns;
  }
}

template <class T>
CNuMatrix<T>::CNuMatrix(CNuMatrix const& other) : CNuMatrix() {
  CopyFrom(&other);
}

template <class T>
CNuMatrix<T>& CNuMatrix<T>::operator=(CNuMatrix const& other) {
  CopyFrom(&other);
  return *this;
}

template <class T>
CNuMatrix<T>::~CNuMatrix() = default;

template <class T>
void CNuMatrix<T>::Resize(unsigned long rows, unsigned long columns) {
  unsigned long const oldRows = this->Rows;
  unsigned long const oldColumns = this->Columns;
  this->Rows = rows;
  this->Columns = columns;
  if (rows == oldRows && columns == oldColumns) return;
  try {
    if (oldRows != 0 && oldColumns != 0) {
      if (rows != 0 && columns != 0) {
        // Counted without wrapping: a block past the limit is an allocation failure here, while
        // the flat path below lets the vector raise its length error.
        constexpr std::size_t limit = std::numeric_limits<std::size_t>::max() / sizeof(T);
        if (rows > limit / columns || rows * columns > Storage.max_size()) throw std::bad_alloc();
        // Always a fresh block, even for an unchanged element count: that is what keeps positions.
        std::vector<T> block(rows * columns);
        unsigned long const keptRows = std::min(rows, oldRows);
        unsigned long const keptColumns = std::min(columns, oldColumns);
        // Bounded by Storage too: after a SetDimensions that passed std::bad_alloc the old
        // dimensions describe more than the old block holds.
        for (unsigned long row = 0; row < keptRows; ++row) {
          std::size_t const first = row * oldColumns;
          if (first >= Storage.size()) break;
          std::size_t const count = std::min<std::size_t>(keptColumns, Storage.size() - first);
          std::copy_n(Storage.data() + first, count, block.data() + row * columns);
        }
        Storage.swap(block);
      } else {
        // Both dimensions drop to 0 here, although one was asked for; on an empty matrix the
        // same call keeps them as given (below). Callers rely on that difference.
        this->Rows = 0;
        this->Columns = 0;
        Storage.clear();
      }
    } else {
      Detail::GrowContainer(Storage, rows * columns);
    }
    this->Data = Storage.data();
  } catch (std::bad_alloc& cause) {
    // The old block survives behind Data, unreachable by index. The message has no blank after
    // the colon; callers match it as it is.
    this->Rows = 0;
    this->Columns = 0;
    NU_RAISE_AS(CNuOutOfMemoryException, Detail::NuMatrixFile,
                CNuString("Error resizing matrix:") << cause.what());
  }
}

template <class T>
unsigned long CNuMatrix<T>::GetElementSize() const {
  return sizeof(T);
}

template <class T>
void CNuMatrix<T>::GetSize(unsigned long& rows, unsigned long& columns) const {
  rows = this->Rows;
  columns = this->Columns;
}

template <class T>
void const* CNuMatrix<T>::GetPointer() const {
  return this->Data;
}

template <class T>
bool CNuMatrix<T>::IsValid() const {
  return this->Data != nullptr;
}

template <class T>
void CNuMatrix<T>::New(unsigned long rows, unsigned long columns) {
  SetDimensions(rows, columns);
}

template <class T>
void CNuMatrix<T>::Delete() {
  this->Rows = 0;
  this->Columns = 0;
  Storage.clear();
  // Data stays at the kept block, so a deleted matrix may report valid at 0 by 0.
  this->Data = Storage.data();
}

template <class T>
void CNuMatrix<T>::Reset() {
  // Bounded by Storage as well: after a SetDimensions that failed with std::bad_alloc the
  // dimensions are the requested ones over the old, smaller block.
  std::size_t const count = std::min<std::size_t>(this->Rows * this->Columns, Storage.size());
  if (count != 0) std::memset(static_cast<void*>(this->Data), 0, count * sizeof(T));
}

template <class T>
void CNuMatrix<T>::CopyFrom(IMemory2DAccess const* source) {
  unsigned long const elementSize = source->GetElementSize();
  if (elementSize != GetElementSize()) {
    NU_RAISE(Detail::NuMatrixFile, "cannot copy Memory2D, elementSize is different");
  }
  unsigned long rows = 0;
  unsigned long columns = 0;
  source->GetSize(rows, columns);
  unsigned long const byteCount = rows * columns * elementSize;
  // SetDimensions, not Resize: nothing is kept by position.
  SetDimensions(rows, columns);
  // memmove: the source may be this matrix itself.
  if (byteCount != 0) std::memmove(GetPointer(), source->GetPointer(), byteCount);
}

template <class T>
void* CNuMatrix<T>::GetPointer() {
  return this->Data;
}

// Guards against CNuException only, which the growth itself never raises: std::bad_alloc and
// std::length_error pass with the requested dimensions stored. Resize turns std::bad_alloc into
// CNuOutOfMemoryException instead; the two paths differ on purpose.
template <class T>
void CNuMatrix<T>::SetDimensions(unsigned long rows, unsigned long columns) {
  try {
    this->Rows = rows;
    this->Columns = columns;
    Detail::GrowContainer(Storage, rows * columns);
    this->Data = Storage.data();
  } catch (CNuException& cause) {
    this->Rows = 0;
    this->Columns = 0;
    // An element that raised after the reservation leaves Storage in a new block.
    this->Data = Storage.data();
    NU_RAISE_WRAPPED(Detail::NuMatrixFile, "Error resizing matrix", cause);
  }
}

extern template class NU_CORE_EX_EXPORT CNuMatrixBase<double>;
extern template class NU_CORE_EX_EXPORT CNuMatrixBase<int>;
extern template class NU_CORE_EX_EXPORT CNuMatrix<double>;
extern template class NU_CORE_EX_EXPORT CNuMatrix<int>;

}  // namespace Nu
