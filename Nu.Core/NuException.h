#pragma once
#include <Nu.Core/ExceptionSafePointer.h>
#include <Nu.Core/Guid.h>
#include <Nu.Core/IException.h>
#include <Nu.Core/NuCoreExport.h>
#include <Nu.Core/NuString.h>

/// @file
/// The exception class of the runtime and the one way to raise and wrap a failure.

namespace Nu {

/// The exception class of the runtime. A plain CNuException is named "Nu.Exception".
///
/// Raise it with NU_RAISE or NU_RAISE_WRAPPED, which call SetExceptionData before the throw.
class NU_CORE_EXPORT CNuException : public IException {
public:
  /// Keeps the message, the file and function texts and the line; no inner exception.
  CNuException(CNuString const& message, char const* file, char const* function, int line);
  /// As the four-argument form, keeping a clone of `inner` as inner exception.
  CNuException(CNuString const& message, char const* file, char const* function, int line,
               IException const& inner);
  /// Copies every member; the inner exception is cloned again.
  CNuException(CNuException const& other);
  /// Copies every member; the inner exception is cloned again.
  CNuException& operator=(CNuException const& other);

  char const* GetMessageText() const override;
  char const* GetFunction() const override;
  char const* GetFile() const override;
  int GetLine() const override;
  char const* GetName() const override;
  CGuid GetGUID() const override;
  IException const* GetInnerException() const override;
  bool HasException(CGuid const& guid) const override;
  /// A CNuException on the heap; release with delete through CNuException*.
  IException* Clone() const override;

  /// Releases the inner exception and the texts.
  virtual ~CNuException();
  /// Called once by every raise, after construction and before the throw.
  ///
  /// Records nothing: it is the one point where the finished exception, with the GUID and
  /// name of its final type, is seen.
  virtual void SetExceptionData();
  /// "Name: message (function, file:line)", then one indented line for each inner exception.
  virtual CNuString ToString() const;

protected:
  /// The GUID of the exception type; a derived constructor assigns its own.
  CGuid Guid;
  /// The name of the exception type; a derived constructor assigns its own.
  CNuString Name;
  /// The message given to the constructor.
  CNuString MessageText;
  /// The function text given to the constructor.
  CNuString Function;
  /// The file text given to the constructor.
  CNuString File;
  /// The line given to the constructor.
  int Line;
  /// Keeps the inner exception, a clone of the one given to the constructor.
  CExceptionSafePointer Inner;
};

/// The one way a failure is raised: construct, SetExceptionData, throw by value.
///
/// Called through NU_RAISE and NU_RAISE_AS, which supply the function and line.
template <class TException = CNuException>
[[noreturn]] void Raise(CNuString const& message, char const* file, char const* function, int line) {
  TException exception(message, file, function, line);
  exception.SetExceptionData();
  throw exception;
}

/// The handler of a wrap: raises a CNuException that keeps `inner` as its cause.
///
/// Called through NU_RAISE_WRAPPED, which supplies the function and line.
[[noreturn]] NU_CORE_EXPORT void RaiseWrapped(CNuString const& message, char const* file,
                                              char const* function, int line,
                                              IException const& inner);

}  // namespace Nu

/// Raises a CNuException with `message` from the enclosing function and line.
///
/// Raise sites name their own source file as a literal and capture the bare function name.
#define NU_RAISE(file, message) ::Nu::Raise<>(message, file, __func__, __LINE__)
/// As NU_RAISE, raising a `type` derived from CNuException with the same constructor.
#define NU_RAISE_AS(type, file, message) ::Nu::Raise<type>(message, file, __func__, __LINE__)
/// Raises `message` from the enclosing function and line, keeping `cause` as inner exception.
///
/// Used as the body of `catch (::Nu::CNuException& cause)`.
#define NU_RAISE_WRAPPED(file, message, cause) \
  ::Nu::RaiseWrapped(message, file, __func__, __LINE__, cause)
