#pragma once
#include <Nu.Core.Ex/IMemory2DAccess.h>

namespace Nu::Interop::Runtime30 {

/// A two-dimensional block that can be sized and written, rows first.
/// The operations continue the order of IMemory2DAccess (a published binary interface).
/// Failures are raised as CNuException.
class IMemory2D : public IMemory2DAccess {
public:
  /// Destroys the object behind the interface and the block it owns.
  ~IMemory2D() override {}
  /// New dimensions over the flat block: elements keep their flat index, not their position.
  virtual void New(unsigned long rows, unsigned long columns) = 0;
  /// New dimensions, keeping each element at its (row, column); added ones are zero.
  virtual void Resize(unsigned long rows, unsigned long columns) = 0;
  /// Dimensions 0 by 0; the library's containers keep the block.
  virtual void Delete() = 0;
  /// Fills the elements with zero bytes; the dimensions stay.
  virtual void Reset() = 0;
  /// Takes dimensions and contents of `source`, whose element size must equal this one's.
  /// The library's containers raise "cannot copy Memory2D, elementSize is different" and do not
  /// test for null.
  virtual void CopyFrom(IMemory2DAccess const* source) = 0;
  /// The first element, writable; valid as long as the read-only one.
  virtual void* GetPointer() = 0;
  /// \cond
  using IMemory2DAccess::GetPointer;
  /// \endcond

protected:
  /// Constructed only as the base of an implementation.
  IMemory2D() = default;
  /// Copied only as part of an implementation, never through the interface.
  IMemory2D(IMemory2D const&) = default;
  /// Assigned only as part of an implementation, never through the interface.
  IMemory2D& operator=(IMemory2D const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemory2D;
}
