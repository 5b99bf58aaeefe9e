#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuCoreExExport.h>

#include <memory>

namespace Nu {

/// The exported array of strings, over CNuArrayBase<CNuString>.
/// It owns one of its own and forwards to it, so that copies are deep. Sizing, copying and failures
/// are those of the template; the elements are string objects, so GetElementSize is
/// sizeof(CNuString), not a text size.
class NU_CORE_EX_EXPORT CNuArrayString : public IMemory {
public:
  /// The empty array; no block.
  CNuArrayString();
  /// `length` empty strings; a length of 0 allocates no block.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated.
  explicit CNuArrayString(unsigned long length);
  /// `length` copies of `value`.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated.
  CNuArrayString(unsigned long length, CNuString const& value);
  /// Splits `text` (up to its first NUL) at each `delimiter`, which is dropped.
  /// Empty tokens are kept except after a trailing delimiter, so "a,,b" gives 3 elements, "a,"
  /// gives 1, "," gives 1 and "" none. No white space is trimmed. Raises CNuOutOfMemoryException
  /// (function "New") when the block cannot be allocated.
  CNuArrayString(CNuString const& text, char delimiter);
  /// A deep copy: an empty array, then operator=.
  CNuArrayString(CNuArrayString const& other);
  /// A deep copy, string by string, that reuses the block when its capacity suffices.
  /// Returns the array itself; self-assignment does nothing. A failed allocation reaches the caller
  /// as std::bad_alloc.
  CNuArrayString& operator=(CNuArrayString const& other);

  /// The size of one element: sizeof(CNuString), the string object and not its text.
  unsigned long GetElementSize() const override;
  /// The number of elements.
  unsigned long Length() const override;
  /// The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  /// True always, also when empty.
  bool IsValid() const override;
  /// Releases Impl, its strings and its block.
  ~CNuArrayString() override;
  /// The same as Resize: content is kept, it is not a fresh array.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated and passes
  /// std::length_error as Resize does; after a failure the array is unchanged.
  void New(unsigned long length) override;
  /// Keeps the first strings, destroys the dropped ones and adds empty ones.
  /// A shorter length keeps the block. Raises CNuOutOfMemoryException when the block cannot be
  /// allocated, and passes std::length_error on above (2^64 - 1) / sizeof(CNuString); after a
  /// failure the array is unchanged.
  void Resize(unsigned long length) override;
  /// Destroys the strings; length 0 with the block kept, and GetPointer keeps returning it.
  void Delete() override;
  /// Zero bytes over the string objects themselves, which are no valid strings afterwards.
  /// Call it on an empty array only.
  void Reset() override;
  /// Assigns the source's elements, read as CNuString; only the element size is compared.
  /// Raises "Invalid memory interface pointer" for null and "Element sizes of memory blocks do not
  /// agree", and passes Resize's failures; each leaves the array unchanged.
  void CopyFrom(IMemoryAccess const* source) override;
  /// The first element, writable: GetDataPtr(), untyped.
  void* GetPointer() override;
  /// \cond
  using IMemory::GetPointer;
  /// \endcond

  /// The element; raises "Array index out of bounds" unless index < Length().
  CNuString& operator[](unsigned long index);
  /// The element, read-only; raises "Array index out of bounds" unless index < Length().
  CNuString const& operator[](unsigned long index) const;
  /// The first element, typed; null as long as no block was ever allocated.
  CNuString* GetDataPtr();
  /// The first element, typed and read-only; null as long as no block was ever allocated.
  CNuString const* GetDataPtr() const;

protected:
  /// The array behind this one: made by every constructor, never null and never shared.
  std::unique_ptr<CNuArrayBase<CNuString>> Impl;
};

}  // namespace Nu
