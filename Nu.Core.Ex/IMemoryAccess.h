#pragma once

namespace Nu::Interop::Runtime30 {

/// Read access to one contiguous run of elements of a fixed size.
/// The order of the operations is a published binary interface and must not change. A pointer
/// to it never owns the object.
class IMemoryAccess {
public:
  /// The size of one element in bytes.
  virtual unsigned long GetElementSize() const = 0;
  /// The number of elements.
  virtual unsigned long Length() const = 0;
  /// The first element; valid until the next New, Resize, Delete or CopyFrom on the object.
  virtual void const* GetPointer() const = 0;
  /// Whether the object is usable; the library's one-dimensional arrays always are, also empty.
  virtual bool IsValid() const = 0;
  /// Destroys the object behind the interface and the block it owns.
  virtual ~IMemoryAccess() {}

protected:
  /// Constructed only as the base of an implementation.
  IMemoryAccess() = default;
  /// Copied only as part of an implementation, never through the interface.
  IMemoryAccess(IMemoryAccess const&) = default;
  /// Assigned only as part of an implementation, never through the interface.
  IMemoryAccess& operator=(IMemoryAccess const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemoryAccess;
}
