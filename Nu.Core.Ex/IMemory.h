#pragma once
#include <Nu.Core.Ex/IMemoryAccess.h>

namespace Nu::Interop::Runtime30 {

// A one-dimensional block that can be sized and written. The operations continue the order of
// IMemoryAccess (a published binary interface). Failures are raised as CNuException.
class IMemory : public IMemoryAccess {
public:
  ~IMemory() override {}
  // Sizes the block to `length` elements.
  virtual void New(unsigned long length) = 0;
  // Sizes the block to `length` elements.
  virtual void Resize(unsigned long length) = 0;
  // Empties the block.
  virtual void Delete() = 0;
  // Fills the elements with zero bytes.
  virtual void Reset() = 0;
  // Takes length and contents of `source`, whose element size must equal this one's.
  virtual void CopyFrom(IMemoryAccess const* source) = 0;
  // The first element, writable.
  virtual void* GetPointer() = 0;
  using IMemoryAccess::GetPointer;

protected:
  IMemory() = default;
  IMemory(IMemory const&) = default;
  IMemory& operator=(IMemory const&) = default;
};

}  // namespace Nu::Interop::Runtime30

namespace Nu {
using Interop::Runtime30::IMemory;
}
