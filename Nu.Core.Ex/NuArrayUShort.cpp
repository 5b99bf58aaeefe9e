#include <Nu.Core.Ex/NuArrayUShort.h>

namespace Nu {

CNuArrayUShort::CNuArrayUShort() : Impl(std::make_unique<CNuArrayBase<unsigned short>>()) {}

CNuArrayUShort::CNuArrayUShort(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<unsigned short>>(length)) {}

CNuArrayUShort::CNuArrayUShort(unsigned long length, unsigned short const& value)
    : Impl(std::make_unique<CNuArrayBase<unsigned short>>(length, value)) {}

CNuArrayUShort::CNuArrayUShort(CNuArrayUShort const& other) : CNuArrayUShort() { *this = other; }

CNuArrayUShort& CNuArrayUShort::operator=(CNuArrayUShort const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayUShort::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayUShort::Length() const { return Impl->Length(); }

void const* CNuArrayUShort::GetPointer() const { return GetDataPtr(); }

bool CNuArrayUShort::IsValid() const { return Impl->IsValid(); }

CNuArrayUShort::~CNuArrayUShort() = default;

void CNuArrayUShort::New(unsigned long length) { Impl->New(length); }

void CNuArrayUShort::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayUShort::Delete() { Impl->Delete(); }

void CNuArrayUShort::Reset() { Impl->Reset(); }

void CNuArrayUShort::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayUShort::GetPointer() { return GetDataPtr(); }

unsigned short& CNuArrayUShort::operator[](unsigned long index) { return (*Impl)[index]; }

unsigned short const& CNuArrayUShort::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<unsigned short> const&>(*Impl)[index];
}

unsigned short* CNuArrayUShort::GetDataPtr() {
  return static_cast<unsigned short*>(Impl->GetPointer());
}

unsigned short const* CNuArrayUShort::GetDataPtr() const {
  return static_cast<unsigned short const*>(
      static_cast<CNuArrayBase<unsigned short> const&>(*Impl).GetPointer());
}

}  // namespace Nu
