#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

/// The exported array of doubles, over CNuArrayBase<double>.
/// It owns one of its own and forwards to it, so that copies are deep. Sizing, copying and failures
/// are those of the template.
class NU_CORE_EX_EXPORT CNuArrayDouble : public IMemory {
public:
  /// The empty array; no block.
  CNuArrayDouble();
  /// `length` zeros; a length of 0 allocates no block.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated.
  explicit CNuArrayDouble(unsigned long length);
  /// `length` copies of `value`.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated.
  CNuArrayDouble(unsigned long length, double const& value);
  /// A deep copy: an empty array, then operator=.
  CNuArrayDouble(CNuArrayDouble const& other);
  /// A deep copy that reuses the block when its capacity suffices; returns the array itself.
  /// Self-assignment does nothing. A failed allocation reaches the caller as std::bad_alloc.
  CNuArrayDouble& operator=(CNuArrayDouble const& other);

  /// The size of one element: sizeof(double), 8.
  unsigned long GetElementSize() const override;
  /// The number of elements.
  unsigned long Length() const override;
  /// The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  /// True always, also when empty.
  bool IsValid() const override;
  /// Releases Impl and its block.
  ~CNuArrayDouble() override;
  /// The same as Resize: content is kept, it is not a fresh array.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated and passes
  /// std::length_error as Resize does; after a failure the array is unchanged.
  void New(unsigned long length) override;
  /// Keeps the first elements and zeros the added ones; a shorter length keeps the block.
  /// Raises CNuOutOfMemoryException when the block cannot be allocated, and passes
  /// std::length_error on above (2^64 - 1) / sizeof(double); after a failure the array is
  /// unchanged.
  void Resize(unsigned long length) override;
  /// Length 0 with the block kept; GetPointer keeps returning it.
  void Delete() override;
  /// Zero bytes over the elements; the length stays.
  void Reset() override;
  /// Takes the length and the elements of any source whose element size is 8, bit for bit.
  /// Raises "Invalid memory interface pointer" for null and "Element sizes of memory blocks do not
  /// agree", and passes Resize's failures; each leaves the array unchanged.
  void CopyFrom(IMemoryAccess const* source) override;
  /// The first element, writable: GetDataPtr(), untyped.
  void* GetPointer() override;
  /// \cond
  using IMemory::GetPointer;
  /// \endcond

  /// The element; raises "Array index out of bounds" unless index < Length().
  double& operator[](unsigned long index);
  /// The element, read-only; raises "Array index out of bounds" unless index < Length().
  double const& operator[](unsigned long index) const;
  /// The first element, typed; null as long as no block was ever allocated.
  double* GetDataPtr();
  /// The first element, typed and read-only; null as long as no block was ever allocated.
  double const* GetDataPtr() const;

protected:
  /// The array behind this one: made by every constructor, never null and never shared.
  std::unique_ptr<CNuArrayBase<double>> Impl;
};

}  // namespace Nu
