#pragma once
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Math/NuMatrix.h>
#include <Nu.Core/NuException.h>

namespace Nu {

namespace Detail {
inline constexpr char NuArray2DBaseFile[] = "Nu.Core.Ex/NuArray2DBase.h";
}

// The two-dimensional array behind the named 2-D arrays: it has a CNuMatrix<T> (it is not one),
// does every IMemory2D operation by the matrix's, and adds bounds-tested element access.
// Sizing and copy failures are the matrix's, with its wording and source path.
template <class T>
class CNuArray2DBase : public IMemory2D {
public:
  // 0 by 0, no block.
  CNuArray2DBase();
  // rows by columns zeros; a zero product allocates nothing. Fails as the matrix does.
  CNuArray2DBase(unsigned long rows, unsigned long columns);

  // The size of one element; the row count, then the column count; the first element.
  unsigned long GetElementSize() const override;
  void GetSize(unsigned long& rows, unsigned long& columns) const override;
  void const* GetPointer() const override;
  // True when a block exists, also after Delete.
  bool IsValid() const override;
  // Releases the block (and Impl).
  ~CNuArray2DBase() override;
  // Reshapes the flat block, keeping the flat prefix (CNuMatrix::SetDimensions).
  void New(unsigned long rows, unsigned long columns) override;
  // Keeps each element at its (row, column) in a new block (CNuMatrix::Resize).
  void Resize(unsigned long rows, unsigned long columns) override;
  // 0 by 0 with the block kept.
  void Delete() override;
  // Zero bytes over rows * columns elements.
  void Reset() override;
  // Dimensions and one byte copy of a source of equal element size; raises "cannot copy
  // Memory2D, elementSize is different". No test for null.
  void CopyFrom(IMemory2DAccess const* source) override;
  // The first element, writable.
  void* GetPointer() override;
  using IMemory2D::GetPointer;

  // The element at row * columns + column; raises "Array index out of bounds" unless row is
  // below the row count and column below the column count.
  T& operator()(unsigned long row, unsigned long column);
  T const& operator()(unsigned long row, unsigned long column) const;
  // The matrix's Data, typed; null as long as no block was ever allocated.
  T* GetDataPtr();
  T const* GetDataPtr() const;

protected:
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
