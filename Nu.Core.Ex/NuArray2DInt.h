#pragma once
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuArray2DBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

/// The exported two-dimensional array of ints, rows first, over CNuArray2DBase<int>.
/// It owns one of its own and forwards to it, so that copies are deep. Sizing, copying and failures
/// are those of CNuMatrix<int>.
class NU_CORE_EX_EXPORT CNuArray2DInt : public IMemory2D {
public:
  /// 0 by 0, IsValid false, no block.
  CNuArray2DInt();
  /// rows by columns zeros.
  /// A zero product allocates nothing, keeps the dimensions as given and leaves IsValid false.
  /// Fails as CNuMatrix::SetDimensions does: std::bad_alloc and std::length_error pass.
  CNuArray2DInt(unsigned long rows, unsigned long columns);
  /// A deep copy: an empty array, then operator=.
  CNuArray2DInt(CNuArray2DInt const& other);
  /// The matrix's CopyFrom with `other` as source: its dimensions and one block copy.
  /// Reuses the block when it is large enough; a failed allocation passes as std::bad_alloc.
  /// Returns the array itself.
  CNuArray2DInt& operator=(CNuArray2DInt const& other);

  /// The size of one element: sizeof(int), 4.
  unsigned long GetElementSize() const override;
  /// Writes the row count, then the column count.
  void GetSize(unsigned long& rows, unsigned long& columns) const override;
  /// The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  /// True when a block exists, also after Delete.
  bool IsValid() const override;
  /// Releases Impl and its block.
  ~CNuArray2DInt() override;
  /// Reshapes the flat block, keeping the flat prefix; added elements are zero.
  /// A smaller count keeps the block. std::bad_alloc and std::length_error pass and leave the
  /// requested dimensions over the old block.
  void New(unsigned long rows, unsigned long columns) override;
  /// Keeps each element at its (row, column) and zeroes the rest.
  /// Between two different non-empty sizes this is always a new block. A zero dimension gives
  /// 0 by 0 with the block kept on a non-empty array, and stays as given on an empty one. Raises
  /// CNuOutOfMemoryException "Error resizing matrix:" followed by the allocator's text, with the
  /// dimensions set to 0 by 0.
  void Resize(unsigned long rows, unsigned long columns) override;
  /// 0 by 0 with the block kept, so IsValid keeps its answer.
  void Delete() override;
  /// Zero bytes over rows * columns elements; the dimensions stay.
  void Reset() override;
  /// Takes the dimensions and the block of any source whose element size is 4, bit for bit.
  /// Raises "cannot copy Memory2D, elementSize is different" otherwise, leaving the array
  /// unchanged. No test for null; a failed allocation passes as std::bad_alloc.
  void CopyFrom(IMemory2DAccess const* source) override;
  /// The first element, writable: GetDataPtr(), untyped.
  void* GetPointer() override;
  /// \cond
  using IMemory2D::GetPointer;
  /// \endcond

  /// The element (row, column); raises "Array index out of bounds" outside the dimensions.
  int& operator()(unsigned long row, unsigned long column);
  /// The element (row, column), read-only; raises "Array index out of bounds" outside the
  /// dimensions.
  int const& operator()(unsigned long row, unsigned long column) const;
  /// The first element, typed; null as long as no block was ever allocated.
  int* GetDataPtr();
  /// The first element, typed and read-only; null as long as no block was ever allocated.
  int const* GetDataPtr() const;

protected:
  /// The array behind this one: made by every constructor, never null and never shared.
  std::unique_ptr<CNuArray2DBase<int>> Impl;
};

}  // namespace Nu
