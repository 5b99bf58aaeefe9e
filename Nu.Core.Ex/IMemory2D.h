#pragma once
#include <Nu.Core.Ex/IMemory2DAccess.h>

namespace Nu::Interop::Runtime30 {

// A two-dimensional block that can be sized and written, rows first. The operations continue
// the order of IMemory2DAccess (a published binary interface). Failures are raised as
// CNuException.
class IMemory2D : public IMemory2DAccess {
public:
  ~IMemory2D() override {}
  // New dimensions over the flat block.
  virtual void New(unsigned long rows, unsigned long columns) = 0;
  // New dimensions, keeping each element at its (row, column).
  virtual void Resize(unsigned long rows, unsigned long columns) = 0;
  // Dimensions 0 by 0.
  virtual void Delete() = 0;
  // Fills the elements with zero bytes.
  virtual void Reset() = 0;
  // Takes dimensions and contents of `source`, whose element size must equal this one's.
  virtual void CopyFrom(IMemory2DAccess const* source) = 0;
  // The first element, writable.
  virtual void* GetPointer() = 0;
  using IMemory2DAccess::GetPointer;

protected:
  IMemory2D() = default;
  IMemory2D(IMemory2D const&) = default;
  IMemory2D& operator=(IMemory2D const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemory2D;
}
