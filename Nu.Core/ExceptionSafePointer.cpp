#include <Nu.Core/ExceptionSafePointer.h>
#include <Nu.Core/NuException.h>

#include <utility>

namespace Nu {
namespace {

// IException has no virtual destructor; every clone this runtime makes is a CNuException.
void Release(IException* exception) noexcept {
  delete dynamic_cast<CNuException*>(exception);
}

}  // namespace

CExceptionSafePointer::CExceptionSafePointer() noexcept : Exception(nullptr) {}

CExceptionSafePointer::CExceptionSafePointer(IException const& exception)
    : Exception(exception.Clone()) {}

CExceptionSafePointer::CExceptionSafePointer(CExceptionSafePointer const& other)
    : Exception(other.Exception == nullptr ? nullptr : other.Exception->Clone()) {}

CExceptionSafePointer& CExceptionSafePointer::operator=(CExceptionSafePointer const& other) {
  if (this != &other) {
    IException* fresh = other.Exception == nullptr ? nullptr : other.Exception->Clone();
    Release(std::exchange(Exception, fresh));
  }
  return *this;
}

CExceptionSafePointer::~CExceptionSafePointer() { Release(Exception); }

}  // namespace Nu
