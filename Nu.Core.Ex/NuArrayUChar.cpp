#include <Nu.Core.Ex/NuArrayUChar.h>

namespace Nu {

CNuArrayUChar::CNuArrayUChar() : Impl(std::make_unique<CNuArrayBase<unsigned char>>()) {}

CNuArrayUChar::CNuArrayUChar(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<unsigned char>>(length)) {}

CNuArrayUChar::CNuArrayUChar(unsigned long length, unsigned char const& value)
    : Impl(std::make_unique<CNuArrayBase<unsigned char>>(length, value)) {}

CNuArrayUChar::CNuArrayUChar(CNuArrayUChar const& other) : CNuArrayUChar() { *this = other; }

CNuArrayUChar& CNuArrayUChar::operator=(CNuArrayUChar const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayUChar::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayUChar::Length() const { return Impl->Length(); }

void const* CNuArrayUChar::GetPointer() const { return GetDataPtr(); }

bool CNuArrayUChar::IsValid() const { return Impl->IsValid(); }

CNuArrayUChar::~CNuArrayUChar() = default;

void CNuArrayUChar::New(unsigned long length) { Impl->New(length); }

void CNuArrayUChar::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayUChar::Delete() { Impl->Delete(); }

void CNuArrayUChar::Reset() { Impl->Reset(); }

void CNuArrayUChar::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayUChar::GetPointer() { return GetDataPtr(); }

unsigned char& CNuArrayUChar::operator[](unsigned long index) { return (*Impl)[index]; }

unsigned char const& CNuArrayUChar::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<unsigned char> const&>(*Impl)[index];
}

unsigned char* CNuArrayUChar::GetDataPtr() {
  return static_cast<unsigned char*>(Impl->GetPointer());
}

unsigned char const* CNuArrayUChar::GetDataPtr() const {
  return static_cast<unsigned char const*>(
      static_cast<CNuArrayBase<unsigned char> const&>(*Impl).GetPointer());
}

}  // namespace Nu
