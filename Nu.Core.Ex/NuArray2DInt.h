#pragma once
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuArray2DBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

// The exported two-dimensional array of ints, rows first: owns a CNuArray2DBase<int> of its
// own and forwards to it, so that copies are deep. Sizing, copying and failures are those of
// CNuMatrix<int>.
class NU_CORE_EX_EXPORT CNuArray2DInt : public IMemory2D {
public:
  // 0 by 0, IsValid false, no block.
  CNuArray2DInt();
  // rows by columns zeros. A zero product allocates nothing, keeps the dimensions as given and
  // leaves IsValid false. Fails as CNuMatrix::SetDimensions does.
  CNuArray2DInt(unsigned long rows, unsigned long columns);
  // A deep copy: an empty array, then operator=.
  CNuArray2DInt(CNuArray2DInt const& other);
  // The matrix's CopyFrom with `other` as source: its dimensions and one block copy, reusing the
  // block when it is large enough. Returns the array itself.
  CNuArray2DInt& operator=(CNuArray2DInt const& other);

  // The size of one element; the row count, then the column count; the first element.
  unsigned long GetElementSize() const override;
  void GetSize(unsigned long& rows, unsigned long& columns) const override;
  void const* GetPointer() const override;
  // True when a block exists, also after Delete.
  bool IsValid() const override;
  // Releases the block (and Impl).
  ~CNuArray2DInt() override;
  // Reshapes the flat block, keeping the flat prefix.
  void New(unsigned long rows, unsigned long columns) override;
  // Keeps each element at its (row, column) and zeroes the rest, in a new block.
  void Resize(unsigned long rows, unsigned long columns) override;
  // 0 by 0 with the block kept.
  void Delete() override;
  // Zero bytes over rows * columns elements.
  void Reset() override;
  // Takes any source of element size sizeof(int) bit for bit; raises "cannot copy Memory2D,
  // elementSize is different" otherwise. No test for null.
  void CopyFrom(IMemory2DAccess const* source) override;
  // The first element, writable.
  void* GetPointer() override;
  using IMemory2D::GetPointer;

  // The element (row, column); raises "Array index out of bounds" outside the dimensions.
  int& operator()(unsigned long row, unsigned long column);
  int const& operator()(unsigned long row, unsigned long column) const;
  // The first element, typed; null as long as no block was ever allocated.
  int* GetDataPtr();
  int const* GetDataPtr() const;

protected:
  std::unique_ptr<CNuArray2DBase<int>> Impl;
};

}  // namespace Nu
