#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core/NuException.h>

namespace Nu {

/// Raised when the standard allocator fails inside a memory container.
/// Its message carries the what() text of the std::bad_alloc; it never has an inner exception.
/// GUID "{5ED51757-2D30-4B8D-BE92-731EC81023EE}", name "Nu.OutOfMemoryException".
class NU_CORE_EX_EXPORT CNuOutOfMemoryException : public CNuException {
public:
  /// The exception of a message, file text, function name and line, with the GUID and name above.
  /// SetExceptionData is left to the raise, so that it sees them.
  CNuOutOfMemoryException(CNuString const& message, char const* file, char const* function,
                          int line);
  /// A copy of every member, the GUID and name included.
  CNuOutOfMemoryException(CNuOutOfMemoryException const& other);

  /// A CNuOutOfMemoryException on the heap; release with delete through CNuException*.
  IException* Clone() const override;
  /// Destroys the exception; virtual, so that a clone can be deleted through CNuException*.
  ~CNuOutOfMemoryException() override;
};

}  // namespace Nu
