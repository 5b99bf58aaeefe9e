#include <Nu.Core/NuException.h>

#include <cstdio>

namespace Nu {

CNuException::CNuException(CNuString const& message, char const* file, char const* function,
                           int line)
    : Guid("{4F6A2C1E-93B7-4D0A-8E25-7C1B9F3D6A04}"),
      Name("Nu.Exception"),
      MessageText(message),
      Function(function),
      File(file),
      Line(line),
      Inner() {}

CNuException::CNuException(CNuString const& message, char const* file, char const* function,
                           int line, IException const& inner)
    : CNuException(message, file, function, line) {
  Inner = CExceptionSafePointer(inner);
}

CNuException::CNuException(CNuException const& other) = default;
CNuException& CNuException::operator=(CNuException const& other) = default;
CNuException::~CNuException() = default;

char const* CNuException::GetMessageText() const { return MessageText.ToCString(); }
char const* CNuException::GetFunction() const { return Function.ToCString(); }
char const* CNuException::GetFile() const { return File.ToCString(); }
int CNuException::GetLine() const { return Line; }
char const* CNuException::GetName() const { return Name.ToCString(); }
CGuid CNuException::GetGUID() const { return Guid; }
IException const* CNuException::GetInnerException() const { return Inner.Get(); }

bool CNuException::HasException(CGuid const& guid) const {
  if (Guid == guid) return true;
  IException const* inner = Inner.Get();
  return inner != nullptr && inner->HasException(guid);
}

IException* CNuException::Clone() const { return new CNuException(*this); }

// Nothing to record: the runtime keeps no trace of raised exceptions. The hook stays so that
// every raise has one point where the finished exception (final GUID and name) is seen.
void CNuException::SetExceptionData() {}

CNuString CNuException::ToString() const {
  CNuString text("");
  char line[16];
  IException const* level = this;
  for (int depth = 0; level != nullptr; ++depth, level = level->GetInnerException()) {
    if (depth > 0) text << "\n" << "  inner: ";
    std::snprintf(line, sizeof line, "%d", level->GetLine());
    text << level->GetName() << ": " << level->GetMessageText() << " (" << level->GetFunction()
         << ", " << level->GetFile() << ":" << line << ")";
  }
  return text;
}

void RaiseWrapped(CNuString const& message, char const* file, char const* function, int line,
                  IException const& inner) {
  CNuException exception(message, file, function, line, inner);
  exception.SetExceptionData();
  throw exception;
}

}  // namespace Nu
