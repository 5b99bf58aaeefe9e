#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

// The exported array of strings: owns a CNuArrayBase<CNuString> of its own and forwards to it, so
// that copies are deep. Sizing, copying and failures are those of CNuArrayBase<CNuString>; the
// elements are string objects, so GetElementSize is sizeof(CNuString), not a text size.
class NU_CORE_EX_EXPORT CNuArrayString : public IMemory {
public:
  // The empty array; no block.
  CNuArrayString();
  // `length` empty strings; a length of 0 allocates no block. Raises CNuOutOfMemoryException
  // ("New").
  explicit CNuArrayString(unsigned long length);
  // `length` copies of `value`. Raises CNuOutOfMemoryException ("New").
  CNuArrayString(unsigned long length, CNuString const& value);
  // Splits `text` (up to its first NUL) at each `delimiter`: empty tokens are kept except after
  // a trailing delimiter, so "a,,b" gives 3 elements, "a," gives 1, "," gives 1 and "" none.
  // No white space is trimmed. Raises CNuOutOfMemoryException ("New").
  CNuArrayString(CNuString const& text, char delimiter);
  // A deep copy: an empty array, then operator=.
  CNuArrayString(CNuArrayString const& other);
  // A deep copy that reuses the block when its capacity suffices; self-assignment does nothing.
  // A failed allocation reaches the caller as std::bad_alloc.
  CNuArrayString& operator=(CNuArrayString const& other);

  // The size of one element and the number of elements.
  unsigned long GetElementSize() const override;
  unsigned long Length() const override;
  // The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  // True always, also when empty.
  bool IsValid() const override;
  // Releases Impl and its block.
  ~CNuArrayString() override;
  // The same as Resize (content kept), see CNuArrayBase.
  void New(unsigned long length) override;
  // Keeps the first elements, adds empty strings; unchanged on failure, see CNuArrayBase.
  void Resize(unsigned long length) override;
  // Length 0 with the block kept.
  void Delete() override;
  // Zero bytes over the string objects themselves, which are no valid strings afterwards: call
  // it on an empty array only.
  void Reset() override;
  // Assigns the source's elements, read as CNuString; only the element size is compared. Raises
  // on null or unequal sizes, leaving the array unchanged.
  void CopyFrom(IMemoryAccess const* source) override;
  // The first element, writable; GetDataPtr() untyped.
  void* GetPointer() override;
  using IMemory::GetPointer;

  // The element; raises "Array index out of bounds" unless index < Length().
  CNuString& operator[](unsigned long index);
  CNuString const& operator[](unsigned long index) const;
  // The first element, typed; null as long as no block was ever allocated.
  CNuString* GetDataPtr();
  CNuString const* GetDataPtr() const;

protected:
  std::unique_ptr<CNuArrayBase<CNuString>> Impl;
};

}  // namespace Nu
