#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

// The exported array of ints: owns a CNuArrayBase<int> of its own and forwards to it, so
// that copies are deep. Sizing, copying and failures are those of CNuArrayBase<int>.
class NU_CORE_EX_EXPORT CNuArrayInt : public IMemory {
public:
  // The empty array; no block.
  CNuArrayInt();
  // `length` zeros; a length of 0 allocates no block. Raises CNuOutOfMemoryException ("New").
  explicit CNuArrayInt(unsigned long length);
  // `length` copies of `value`. Raises CNuOutOfMemoryException ("New").
  CNuArrayInt(unsigned long length, int const& value);
  // A deep copy: an empty array, then operator=.
  CNuArrayInt(CNuArrayInt const& other);
  // A deep copy that reuses the block when its capacity suffices; self-assignment does nothing.
  // A failed allocation reaches the caller as std::bad_alloc.
  CNuArrayInt& operator=(CNuArrayInt const& other);

  // The size of one element and the number of elements.
  unsigned long GetElementSize() const override;
  unsigned long Length() const override;
  // The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  // True always, also when empty.
  bool IsValid() const override;
  // Releases Impl and its block.
  ~CNuArrayInt() override;
  // The same as Resize (content kept), see CNuArrayBase.
  void New(unsigned long length) override;
  // Keeps the first elements, zeros the added ones; unchanged on failure, see CNuArrayBase.
  void Resize(unsigned long length) override;
  // Length 0 with the block kept.
  void Delete() override;
  // Zero bytes over the elements.
  void Reset() override;
  // Takes any source of element size sizeof(int) bit for bit; raises on null or unequal sizes.
  void CopyFrom(IMemoryAccess const* source) override;
  // The first element, writable; GetDataPtr() untyped.
  void* GetPointer() override;
  using IMemory::GetPointer;

  // The element; raises "Array index out of bounds" unless index < Length().
  int& operator[](unsigned long index);
  int const& operator[](unsigned long index) const;
  // The first element, typed; null as long as no block was ever allocated.
  int* GetDataPtr();
  int const* GetDataPtr() const;

protected:
  std::unique_ptr<CNuArrayBase<int>> Impl;
};

}  // namespace Nu
