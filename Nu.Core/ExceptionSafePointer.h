#pragma once
#include <Nu.Core/IException.h>
#include <Nu.Core/NuCoreExport.h>

namespace Nu {

// Keeps the inner exception of a CNuException as a private clone. Copies clone again, so an
// exception and each of its copies can be destroyed independently, in any order.
class NU_CORE_EXPORT CExceptionSafePointer {
public:
  CExceptionSafePointer() noexcept;
  // Keeps a clone of `exception`.
  explicit CExceptionSafePointer(IException const& exception);
  CExceptionSafePointer(CExceptionSafePointer const& other);
  CExceptionSafePointer& operator=(CExceptionSafePointer const& other);
  ~CExceptionSafePointer();

  // The kept exception, or null.
  IException const* Get() const noexcept { return Exception; }

protected:
  IException* Exception;
};

}  // namespace Nu
