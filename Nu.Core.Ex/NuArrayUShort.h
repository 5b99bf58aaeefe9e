#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

// The exported array of unsigned 16-bit ints: owns a CNuArrayBase<unsigned short> of its own and
// forwards to it, so that copies are deep. Sizing, copying and failures are those of the template.
class NU_CORE_EX_EXPORT CNuArrayUShort : public IMemory {
public:
  // The empty array; no block.
  CNuArrayUShort();
  // `length` zeros; a length of 0 allocates no block. Raises CNuOutOfMemoryException ("New").
  explicit CNuArrayUShort(unsigned long length);
  // `length` copies of `value`. Raises CNuOutOfMemoryException ("New").
  CNuArrayUShort(unsigned long length, unsigned short const& value);
  // A deep copy: an empty array, then operator=.
  CNuArrayUShort(CNuArrayUShort const& other);
  // A deep copy that reuses the block when its capacity suffices; self-assignment does nothing.
  // A failed allocation reaches the caller as std::bad_alloc.
  CNuArrayUShort& operator=(CNuArrayUShort const& other);

  // The size of one element and the number of elements.
  unsigned long GetElementSize() const override;
  unsigned long Length() const override;
  // The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  // True always, also when empty.
  bool IsValid() const override;
  // Releases Impl and its block.
  ~CNuArrayUShort() override;
  // The same as Resize (content kept), see CNuArrayBase.
  void New(unsigned long length) override;
  // Keeps the first elements, zeros the added ones; unchanged on failure, see CNuArrayBase.
  void Resize(unsigned long length) override;
  // Length 0 with the block kept.
  void Delete() override;
  // Zero bytes over the elements.
  void Reset() override;
  // Takes any source of unsigned short size bit for bit; raises on null or unequal sizes.
  void CopyFrom(IMemoryAccess const* source) override;
  // The first element, writable; GetDataPtr() untyped.
  void* GetPointer() override;
  using IMemory::GetPointer;

  // The element; raises "Array index out of bounds" unless index < Length().
  unsigned short& operator[](unsigned long index);
  unsigned short const& operator[](unsigned long index) const;
  // The first element, typed; null as long as no block was ever allocated.
  unsigned short* GetDataPtr();
  unsigned short const* GetDataPtr() const;

protected:
  std::unique_ptr<CNuArrayBase<unsigned short>> Impl;
};

}  // namespace Nu
