#pragma once
#include <Nu.Core/ExceptionSafePointer.h>
#include <Nu.Core/Guid.h>
#include <Nu.Core/IException.h>
#include <Nu.Core/NuCoreExport.h>
#include <Nu.Core/NuString.h>

namespace Nu {

// The exception class of the runtime. A plain CNuException is named "Nu.Exception".
class NU_CORE_EXPORT CNuException : public IException {
public:
  CNuException(CNuString const& message, char const* file, char const* function, int line);
  // As above, keeping a clone of `inner` as inner exception.
  CNuException(CNuString const& message, char const* file, char const* function, int line,
               IException const& inner);
  CNuException(CNuException const& other);
  CNuException& operator=(CNuException const& other);

  char const* GetMessageText() const override;
  char const* GetFunction() const override;
  char const* GetFile() const override;
  int GetLine() const override;
  char const* GetName() const override;
  CGuid GetGUID() const override;
  IException const* GetInnerException() const override;
  bool HasException(CGuid const& guid) const override;
  // A CNuException on the heap; release with delete through CNuException*.
  IException* Clone() const override;

  virtual ~CNuException();
  // Called once by every raise, after construction and before the throw.
  virtual void SetExceptionData();
  // "Name: message (function, file:line)", then one indented line for each inner exception.
  virtual CNuString ToString() const;

protected:
  CGuid Guid;
  CNuString Name;
  CNuString MessageText;
  CNuString Function;
  CNuString File;
  int Line;
  CExceptionSafePointer Inner;
};

// The one way a failure is raised: construct, SetExceptionData, throw by value.
template <class TException = CNuException>
[[noreturn]] void Raise(CNuString const& message, char const* file, char const* function, int line) {
  TException exception(message, file, function, line);
  exception.SetExceptionData();
  throw exception;
}

// The handler of a wrap: raises a CNuException that keeps `inner` as its cause.
[[noreturn]] NU_CORE_EXPORT void RaiseWrapped(CNuString const& message, char const* file,
                                              char const* function, int line,
                                              IException const& inner);

}  // namespace Nu

// Raise sites name their own source file as a literal and capture the bare function name.
#define NU_RAISE(file, message) ::Nu::Raise<>(message, file, __func__, __LINE__)
#define NU_RAISE_AS(type, file, message) ::Nu::Raise<type>(message, file, __func__, __LINE__)
// Used as the body of `catch (::Nu::CNuException& cause)`.
#define NU_RAISE_WRAPPED(file, message, cause) \
  ::Nu::RaiseWrapped(message, file, __func__, __LINE__, cause)
