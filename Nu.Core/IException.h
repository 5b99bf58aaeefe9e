#pragma once
#include <Nu.Core/Guid.h>

namespace Nu::Interop::Runtime31 {

using Runtime30::CGuid;

/// The interop face of every exception of the runtime.
///
/// The order of the operations is a published binary interface. There is no virtual
/// destructor: an object obtained from Clone() is released with
/// `delete static_cast<Nu::CNuException*>(clone)`, whose destructor is virtual (every exception
/// of this runtime derives from Nu::CNuException).
class IException {
public:
  /// The message; valid while this exception lives.
  virtual char const* GetMessageText() const = 0;
  /// The bare name of the raising function ("Create", "operator[]"); valid while this exception
  /// lives.
  virtual char const* GetFunction() const = 0;
  /// The raising source's path relative to the repository ("Nu.Core.Ex/NuImage.cpp"); valid
  /// while this exception lives.
  virtual char const* GetFile() const = 0;
  /// The source line of the raise.
  virtual int GetLine() const = 0;
  /// The name of the exception type ("Nu.Exception"); valid while this exception lives.
  virtual char const* GetName() const = 0;
  /// The GUID of the exception type.
  virtual CGuid GetGUID() const = 0;
  /// The wrapped cause. Null when there is none; valid while this exception lives.
  virtual IException const* GetInnerException() const = 0;
  /// True when this exception or one in its inner chain has the given GUID.
  virtual bool HasException(CGuid const& guid) const = 0;
  /// A heap copy of the most derived type, owned by the caller (see the class for its release).
  virtual IException* Clone() const = 0;

protected:
  /// Only a derived class constructs the interface part.
  IException() = default;
  /// Only a derived class copies the interface part.
  IException(IException const&) = default;
  /// Only a derived class assigns the interface part.
  IException& operator=(IException const&) = default;
  /// Not virtual: a clone is deleted through CNuException*, see the class.
  ~IException() = default;
};

}  // namespace Nu::Interop::Runtime31

namespace Nu {
using Interop::Runtime31::IException;
}
