#pragma once
#include <Nu.Core.Ex/IMemoryAccess.h>

namespace Nu::Interop::Runtime30 {

/// A one-dimensional block that can be sized and written.
/// The operations continue the order of IMemoryAccess (a published binary interface). Failures
/// are raised as CNuException.
class IMemory : public IMemoryAccess {
public:
  /// Destroys the object behind the interface and the block it owns.
  ~IMemory() override {}
  /// Sizes the block to `length` elements; the library's arrays keep the content, as Resize does.
  virtual void New(unsigned long length) = 0;
  /// Sizes the block to `length` elements, keeping the first ones; added ones are zero.
  virtual void Resize(unsigned long length) = 0;
  /// Empties the block: length 0; the library's arrays keep the allocation.
  virtual void Delete() = 0;
  /// Fills the elements with zero bytes; the length stays.
  virtual void Reset() = 0;
  /// Takes length and contents of `source`, whose element size must equal this one's.
  /// The library's arrays raise "Invalid memory interface pointer" for null and "Element sizes
  /// of memory blocks do not agree", leaving the array unchanged.
  virtual void CopyFrom(IMemoryAccess const* source) = 0;
  /// The first element, writable; valid as long as the read-only one.
  virtual void* GetPointer() = 0;
  /// \cond
  using IMemoryAccess::GetPointer;
  /// \endcond

protected:
  /// Constructed only as the base of an implementation.
  IMemory() = default;
  /// Copied only as part of an implementation, never through the interface.
  IMemory(IMemory const&) = default;
  /// Assigned only as part of an implementation, never through the interface.
  IMemory& operator=(IMemory const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemory;
}
