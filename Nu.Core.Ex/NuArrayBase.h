#pragma once
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/NuContainerGrowth.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

namespace Nu {

namespace Detail {
inline constexpr char NuArrayBaseFile[] = "Nu.Core.Ex/NuArrayBase.h";
}

/// The one-dimensional array behind the named arrays: a std::vector<T> behind IMemory.
/// It is always valid, also when empty. New and Resize grow the capacity only to old length +
/// max(old length, added), and shrinking or Delete never touch the allocator. The library
/// exports it for double, int, unsigned char, unsigned int, unsigned short and CNuString.
template <class T>
class CNuArrayBase : public IMemory {
public:
  /// The empty array; no block.
  CNuArrayBase();
  /// New(length): value-initialised elements; a length of 0 allocates nothing. Raises as New does.
  explicit CNuArrayBase(unsigned long length);
  /// New(length), then every element assigned from `value`. Raises as New does.
  CNuArrayBase(unsigned long length, T const& value);

  /// The size of one element: sizeof(T).
  unsigned long GetElementSize() const override;
  /// The number of elements.
  unsigned long Length() const override;
  /// The first element; null as long as no block was ever allocated.
  void const* GetPointer() const override;
  /// True always: an empty array is a usable array.
  bool IsValid() const override;
  /// Destroys the elements and releases the block.
  ~CNuArrayBase() override;
  /// The same as Resize: content is kept, it is not a fresh array.
  /// Raises CNuOutOfMemoryException (function "New") when the block cannot be allocated and
  /// passes std::length_error as Resize does; after a failure the array is unchanged.
  void New(unsigned long length) override;
  /// Keeps the first elements; added ones are value-initialised (zero, or an empty string).
  /// A shorter length keeps the block. Raises CNuOutOfMemoryException when the block cannot be
  /// allocated, and passes std::length_error on above (2^64 - 1) / sizeof(T); after a failure
  /// the array is unchanged.
  void Resize(unsigned long length) override;
  /// Length 0; the block and its capacity stay, and GetPointer keeps returning it.
  void Delete() override;
  /// Zero bytes over the elements; the length stays.
  /// For CNuString this leaves no valid string behind: call it on an empty string array only.
  void Reset() override;
  /// Resize(source->Length()), then the source's elements read as T.
  /// Only the element sizes are compared. Raises "Invalid memory interface pointer" for null
  /// and "Element sizes of memory blocks do not agree", and passes Resize's failures; each
  /// leaves the array unchanged.
  void CopyFrom(IMemoryAccess const* source) override;
  /// The first element, writable.
  void* GetPointer() override;
  /// \cond
  using IMemory::GetPointer;
  /// \endcond

  /// The element; raises "Array index out of bounds" unless index < Length().
  T& operator[](unsigned long index);
  /// The element, read-only; raises "Array index out of bounds" unless index < Length().
  T const& operator[](unsigned long index) const;

protected:
  /// The elements, in the one block that the vector owns.
  std::vector<T> Elements;
};

// ---- definitions: instantiated in the library for the exported element types ----

template <class T>
CNuArrayBase<T>::CNuArrayBase() = default;

template <class T>
CNuArrayBase<T>::CNuArrayBase(unsigned long length) {
  New(length);
}

template <class T>
CNuArrayBase<T>::CNuArrayBase(unsigned long length, T const& value) {
  New(length);
  for (T& element : Elements) element = value;
}

template <class T>
unsigned long CNuArrayBase<T>::GetElementSize() const {
  return sizeof(T);
}

template <class T>
unsigned long CNuArrayBase<T>::Length() const {
  return Elements.size();
}

template <class T>
void const* CNuArrayBase<T>::GetPointer() const {
  return Elements.data();
}

// An array has no invalid state: empty is valid. Unlike the 2-D containers, by design.
template <class T>
bool CNuArrayBase<T>::IsValid() const {
  return true;
}

template <class T>
CNuArrayBase<T>::~CNuArrayBase() = default;

// New does not discard content: it is Resize under another function name, as callers expect.
template <class T>
void CNuArrayBase<T>::New(unsigned long length) {
  try {
    Detail::GrowContainer(Elements, length);
  } catch (std::bad_alloc& cause) {
    NU_RAISE_AS(CNuOutOfMemoryException, Detail::NuArrayBaseFile, cause.what());
  }
}

template <class T>
void CNuArrayBase<T>::Resize(unsigned long length) {
  try {
    Detail::GrowContainer(Elements, length);
  } catch (std::bad_alloc& cause) {
    NU_RAISE_AS(CNuOutOfMemoryException, Detail::NuArrayBaseFile, cause.what());
  }
}

template <class T>
void CNuArrayBase<T>::Delete() {
  // clear keeps the capacity: a reused array costs no allocation and GetPointer stays put.
  Elements.clear();
}

template <class T>
void CNuArrayBase<T>::Reset() {
  // For CNuString this zeroes the string objects themselves and leaves no valid string behind;
  // it is only ever safe on an empty string array, and it is kept as the binary contract has it.
  if (!Elements.empty()) {
    std::memset(static_cast<void*>(Elements.data()), 0, Elements.size() * sizeof(T));
  }
}

template <class T>
void CNuArrayBase<T>::CopyFrom(IMemoryAccess const* source) {
  if (source == nullptr) NU_RAISE(Detail::NuArrayBaseFile, "Invalid memory interface pointer");
  if (source->GetElementSize() != GetElementSize()) {
    NU_RAISE(Detail::NuArrayBaseFile, "Element sizes of memory blocks do not agree");
  }
  // Only the element sizes were compared: an int array takes unsigned ints, or any foreign block
  // of 4-byte elements, bit for bit. IsValid of the source is not asked.
  Resize(source->Length());
  if (Elements.empty()) return;
  void const* from = source->GetPointer();
  if constexpr (std::is_trivially_copyable_v<T>) {
    // The same bits as an element-wise copy, without reading a foreign type through a T lvalue.
    // memmove, since the source may be this array itself.
    std::memmove(static_cast<void*>(Elements.data()), from, Elements.size() * sizeof(T));
  } else {
    T const* elements = static_cast<T const*>(from);
    for (std::size_t i = 0; i < Elements.size(); ++i) Elements[i] = elements[i];
  }
}

template <class T>
void* CNuArrayBase<T>::GetPointer() {
  return Elements.data();
}

template <class T>
T& CNuArrayBase<T>::operator[](unsigned long index) {
  if (index >= Length()) NU_RAISE(Detail::NuArrayBaseFile, "Array index out of bounds");
  return Elements[index];
}

template <class T>
T const& CNuArrayBase<T>::operator[](unsigned long index) const {
  if (index >= Length()) NU_RAISE(Detail::NuArrayBaseFile, "Array index out of bounds");
  return Elements[index];
}

extern template class NU_CORE_EX_EXPORT CNuArrayBase<double>;
extern template class NU_CORE_EX_EXPORT CNuArrayBase<int>;
extern template class NU_CORE_EX_EXPORT CNuArrayBase<unsigned char>;
extern template class NU_CORE_EX_EXPORT CNuArrayBase<unsigned int>;
extern template class NU_CORE_EX_EXPORT CNuArrayBase<unsigned short>;
extern template class NU_CORE_EX_EXPORT CNuArrayBase<CNuString>;

}  // namespace Nu
