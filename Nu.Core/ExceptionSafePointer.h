#pragma once
#include <Nu.Core/IException.h>
#include <Nu.Core/NuCoreExport.h>

namespace Nu {

/// Keeps the inner exception of a CNuException as a private clone.
///
/// Copies clone again, so an exception and each of its copies can be destroyed independently,
/// in any order.
class NU_CORE_EXPORT CExceptionSafePointer {
public:
  /// Keeps nothing.
  CExceptionSafePointer() noexcept;
  /// Keeps a clone of `exception`.
  explicit CExceptionSafePointer(IException const& exception);
  /// Keeps a clone of what `other` keeps, or nothing.
  CExceptionSafePointer(CExceptionSafePointer const& other);
  /// Keeps a clone of what `other` keeps, or nothing, and releases the old one.
  ///
  /// The clone is made first: where it fails, this pointer keeps what it had.
  CExceptionSafePointer& operator=(CExceptionSafePointer const& other);
  /// Releases the kept exception.
  ~CExceptionSafePointer();

  /// The kept exception, or null.
  IException const* Get() const noexcept { return Exception; }

protected:
  /// The kept clone, owned and released as a CNuException; null when there is none.
  IException* Exception;
};

}  // namespace Nu
