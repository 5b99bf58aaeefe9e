#pragma once
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Math/NuMatrix.h>
#include <Nu.Core/NuException.h>

namespace Nu {

namespace Detail {
inline constexpr char NuArray2DBaseFile[] = "Nu.Core.Ex/NuArray2DBase.h";
}

/// The two-dimensional array behind the named 2-D arrays: it has a CNuMatrix<T> (it is not one).
/// It does every IMemory2D operation by the matrix's and adds bounds-tested element access.
/// Sizing and copy failures are the matrix's, with its wording and source path. The library
/// exports it for double and int.
template <class T>
class CNuArray2DBase : public IMemory2D {
public:
  /// 0 by 0, no block.
  CNuArray2DBase();
  /// rows by columns zeros; a zero product allocates nothing and keeps the dimensions as given.
  /// Fails as CNuMatrix::SetDimensions does: std::bad_alloc and std::length_error pass.
  CNuArray2DBase(unsigned long rows, unsigned long columns);

  /// The size of one element: sizeof(T).
  unsigned long GetElementSize() const override;
  /// Writes the row count, then the column count.
  void GetSize(unsigned long& rows, unsigned long& columns) const override;
  /// The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  /// True when a block exists, also after Delete.
  bool IsValid() const override;
  /// Releases the matrix and its block.
  ~CNuArray2DBase() override;
  /// Reshapes the flat block, keeping the flat prefix (CNuMatrix::SetDimensions).
  /// Added elements are zero; a smaller count keeps the block. std::bad_alloc and
  /// std::length_error pass and leave the requested dimensions over the old block.
  void New(unsigned long rows, unsigned long columns) override;
  /// Keeps each element at its (row, column) (CNuMatrix::Resize); added elements are zero.
  /// Between two different non-empty sizes this is always a new block. A zero dimension gives
  /// 0 by 0 with the block kept on a non-empty array, and stays as given on an empty one. Raises
  /// CNuOutOfMemoryException "Error resizing matrix:" followed by the allocator's text, with the
  /// dimensions set to 0 by 0.
  void Resize(unsigned long rows, unsigned long columns) override;
  /// 0 by 0 with the block kept, so IsValid keeps its answer.
  void Delete() override;
  /// Zero bytes over rows * columns elements; the dimensions stay.
  void Reset() override;
  /// The source's dimensions and one byte copy of its block (CNuMatrix::CopyFrom).
  /// Only the element sizes are compared: raises "cannot copy Memory2D, elementSize is
  /// different", leaving the array unchanged. No test for null; a failed allocation passes as
  /// std::bad_alloc.
  void CopyFrom(IMemory2DAccess const* source) override;
  /// The first element, writable.
  void* GetPointer() override;
  /// \cond
  using IMemory2D::GetPointer;
  /// \endcond

  /// The element at row * columns + column; raises "Array index out of bounds" unless row is
  /// below the row count and column below the column count.
  T& operator()(unsigned long row, unsigned long column);
  /// The element (row, column), read-only; raises "Array index out of bounds" outside the
  /// dimensions.
  T const& operator()(unsigned long row, unsigned long column) const;
  /// The matrix's Data, typed; null as long as no block was ever allocated.
  T* GetDataPtr();
  /// The matrix's Data, typed and read-only; null as long as no block was ever allocated.
  T const* GetDataPtr() const;

protected:
  /// The matrix that owns the block and does all sizing and copying.
  CNuMatrix<T> Matrix;
};

// ---- definitions: instantiated in the library for double and int ----

template <class T>
CNuArray2DBase<T>::CNuArray2DBase() = default;

template <class T>
CNuArray2DBase<T>::CNuArray2DBase(unsigned long rows, unsigned long columns)
    : Matrix(rows, columns) {}

template <class T>
unsigned long CNuArray2DBase<T>::GetElementSize() const {
  return Matrix.GetElementSize();
}

template <class T>
void CNuArray2DBase<T>::GetSize(unsigned long& rows, unsigned long& columns) const {
  Matrix.GetSize(rows, columns);
}

template <class T>
void const* CNuArray2DBase<T>::GetPointer() const {
  return Matrix.GetPointer();
}

template <class T>
bool CNuArray2DBase<T>::IsValid() const {
  return Matrix.IsValid();
}

template <class T>
CNuArray2DBase<T>::~CNuArray2DBase() = default;

template <class T>
void CNuArray2DBase<T>::New(unsigned long rows, unsigned long columns) {
  Matrix.New(rows, columns);
}

template <class T>
void CNuArray2DBase<T>::Resize(unsigned long rows, unsigned long columns) {
  Matrix.Resize(rows, columns);
}

template <class T>
void CNuArray2DBase<T>::Delete() {
  Matrix.Delete();
}

template <class T>
void CNuArray2DBase<T>::Reset() {
  Matrix.Reset();
}

template <class T>
void CNuArray2DBase<T>::CopyFrom(IMemory2DAccess const* source) {
  Matrix.CopyFrom(source);
}

template <class T>
void* CNuArray2DBase<T>::GetPointer() {
  return Matrix.GetPointer();
}

template <class T>
T& CNuArray2DBase<T>::operator()(unsigned long row, unsigned long column) {
  unsigned long rows = 0;
  unsigned long columns = 0;
  Matrix.GetSize(rows, columns);
  if (row >= rows || column >= columns) {
    NU_RAISE(Detail::NuArray2DBaseFile, "Array index out of bounds");
  }
  return static_cast<T*>(Matrix.GetPointer())[row * columns + column];
}

template <class T>
T const& CNuArray2DBase<T>::operator()(unsigned long row, unsigned long column) const {
  unsigned long rows = 0;
  unsigned long columns = 0;
  Matrix.GetSize(rows, columns);
  if (row >= rows || column >= columns) {
    NU_RAISE(Detail::NuArray2DBaseFile, "Array index out of bounds");
  }
  return static_cast<T const*>(Matrix.GetPointer())[row * columns + column];
}

template <class T>
T* CNuArray2DBase<T>::GetDataPtr() {
  return static_cast<T*>(Matrix.GetPointer());
}

template <class T>
T const* CNuArray2DBase<T>::GetDataPtr() const {
  return static_cast<T const*>(Matrix.GetPointer());
}

extern template class NU_CORE_EX_EXPORT CNuArray2DBase<double>;
extern template class NU_CORE_EX_EXPORT CNuArray2DBase<int>;

}  // namespace Nu
