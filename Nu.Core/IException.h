#pragma once
#include <Nu.Core/Guid.h>

namespace Nu::Interop::Runtime31 {

using Runtime30::CGuid;

// The interop face of every exception of the runtime. The order of the operations is a
// published binary interface. There is no virtual destructor: an object obtained from
// Clone() is released with `delete static_cast<Nu::CNuException*>(clone)`, whose destructor
// is virtual (every exception of this runtime derives from Nu::CNuException).
class IException {
public:
  virtual char const* GetMessageText() const = 0;
  virtual char const* GetFunction() const = 0;
  virtual char const* GetFile() const = 0;
  virtual int GetLine() const = 0;
  virtual char const* GetName() const = 0;
  virtual CGuid GetGUID() const = 0;
  // Null when there is none; valid while this exception lives.
  virtual IException const* GetInnerException() const = 0;
  // True when this exception or one in its inner chain has the given GUID.
  virtual bool HasException(CGuid const& guid) const = 0;
  // A heap copy of the most derived type, owned by the caller (see above).
  virtual IException* Clone() const = 0;

protected:
  IException() = default;
  IException(IException const&) = default;
  IException& operator=(IException const&) = default;
  ~IException() = default;
};

}  // namespace Nu::Interop::Runtime31

namespace Nu {
using Interop::Runtime31::IException;
}
