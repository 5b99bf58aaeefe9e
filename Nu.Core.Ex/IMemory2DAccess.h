#pragma once

namespace Nu::Interop::Runtime30 {

/// Read access to a two-dimensional block stored row after row with no gap.
/// Element (row, column) stands at index row * columns + column. The order of the operations
/// is a published binary interface and must not change. A pointer to it never owns the object.
class IMemory2DAccess {
public:
  /// The size of one element in bytes.
  virtual unsigned long GetElementSize() const = 0;
  /// Writes the row count, then the column count.
  virtual void GetSize(unsigned long& rows, unsigned long& columns) const = 0;
  /// The first element; valid until the next New, Resize, Delete or CopyFrom on the object.
  virtual void const* GetPointer() const = 0;
  /// True when a block exists; in the library's 2-D containers also after Delete, at 0 by 0.
  virtual bool IsValid() const = 0;
  /// Destroys the object behind the interface and the block it owns.
  virtual ~IMemory2DAccess() {}

protected:
  /// Constructed only as the base of an implementation.
  IMemory2DAccess() = default;
  /// Copied only as part of an implementation, never through the interface.
  IMemory2DAccess(IMemory2DAccess const&) = default;
  /// Assigned only as part of an implementation, never through the interface.
  IMemory2DAccess& operator=(IMemory2DAccess const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemory2DAccess;
}
