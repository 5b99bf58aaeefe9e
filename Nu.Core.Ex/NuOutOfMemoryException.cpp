#include <Nu.Core.Ex/NuOutOfMemoryException.h>

namespace Nu {

CNuOutOfMemoryException::CNuOutOfMemoryException(CNuString const& message, char const* file,
                                                 char const* function, int line)
    : CNuException(message, file, function, line) {
  Guid = CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EE}");
  Name = "Nu.OutOfMemoryException";
}

CNuOutOfMemoryException::CNuOutOfMemoryException(CNuOutOfMemoryException const& other) = default;

IException* CNuOutOfMemoryException::Clone() const { return new CNuOutOfMemoryException(*this); }

CNuOutOfMemoryException::~CNuOutOfMemoryException() = default;

}  // namespace Nu
