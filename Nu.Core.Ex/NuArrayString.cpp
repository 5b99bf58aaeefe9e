#include <Nu.Core.Ex/NuArrayString.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Nu {

CNuArrayString::CNuArrayString() : Impl(std::make_unique<CNuArrayBase<CNuString>>()) {}

CNuArrayString::CNuArrayString(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<CNuString>>(length)) {}

CNuArrayString::CNuArrayString(unsigned long length, CNuString const& value)
    : Impl(std::make_unique<CNuArrayBase<CNuString>>(length, value)) {}

CNuArrayString::CNuArrayString(CNuString const& text, char delimiter) {
  // Through a C string on purpose: the text ends at its first NUL.
  char const* const whole = text.ToCString();
  std::stringstream stream(std::string(whole == nullptr ? "" : whole),
                           std::ios_base::in | std::ios_base::out);
  // getline fails only when it extracts nothing at all, which is what drops the empty token
  // after a trailing delimiter while keeping leading and inner ones.
  std::vector<std::string> tokens;
  std::string token;
  while (std::getline(stream, token, delimiter)) tokens.push_back(token);
  Impl = std::make_unique<CNuArrayBase<CNuString>>(tokens.size());
  for (std::size_t i = 0; i < tokens.size(); ++i) (*Impl)[i] = tokens[i].c_str();
}

CNuArrayString::CNuArrayString(CNuArrayString const& other) : CNuArrayString() { *this = other; }

CNuArrayString& CNuArrayString::operator=(CNuArrayString const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayString::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayString::Length() const { return Impl->Length(); }

void const* CNuArrayString::GetPointer() const { return GetDataPtr(); }

bool CNuArrayString::IsValid() const { return Impl->IsValid(); }

CNuArrayString::~CNuArrayString() = default;

void CNuArrayString::New(unsigned long length) { Impl->New(length); }

void CNuArrayString::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayString::Delete() { Impl->Delete(); }

void CNuArrayString::Reset() { Impl->Reset(); }

void CNuArrayString::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayString::GetPointer() { return GetDataPtr(); }

CNuString& CNuArrayString::operator[](unsigned long index) { return (*Impl)[index]; }

CNuString const& CNuArrayString::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<CNuString> const&>(*Impl)[index];
}

CNuString* CNuArrayString::GetDataPtr() { return static_cast<CNuString*>(Impl->GetPointer()); }

CNuString const* CNuArrayString::GetDataPtr() const {
  return static_cast<CNuString const*>(
      static_cast<CNuArrayBase<CNuString> const&>(*Impl).GetPointer());
}

}  // namespace Nu
