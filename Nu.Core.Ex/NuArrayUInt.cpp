#include <Nu.Core.Ex/NuArrayUInt.h>

namespace Nu {

CNuArrayUInt::CNuArrayUInt() : Impl(std::make_unique<CNuArrayBase<unsigned int>>()) {}

CNuArrayUInt::CNuArrayUInt(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<unsigned int>>(length)) {}

CNuArrayUInt::CNuArrayUInt(unsigned long length, unsigned int const& value)
    : Impl(std::make_unique<CNuArrayBase<unsigned int>>(length, value)) {}

CNuArrayUInt::CNuArrayUInt(CNuArrayUInt const& other) : CNuArrayUInt() { *this = other; }

CNuArrayUInt& CNuArrayUInt::operator=(CNuArrayUInt const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayUInt::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayUInt::Length() const { return Impl->Length(); }

void const* CNuArrayUInt::GetPointer() const { return GetDataPtr(); }

bool CNuArrayUInt::IsValid() const { return Impl->IsValid(); }

CNuArrayUInt::~CNuArrayUInt() = default;

void CNuArrayUInt::New(unsigned long length) { Impl->New(length); }

void CNuArrayUInt::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayUInt::Delete() { Impl->Delete(); }

void CNuArrayUInt::Reset() { Impl->Reset(); }

void CNuArrayUInt::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayUInt::GetPointer() { return GetDataPtr(); }

unsigned int& CNuArrayUInt::operator[](unsigned long index) { return (*Impl)[index]; }

unsigned int const& CNuArrayUInt::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<unsigned int> const&>(*Impl)[index];
}

unsigned int* CNuArrayUInt::GetDataPtr() { return static_cast<unsigned int*>(Impl->GetPointer()); }

unsigned int const* CNuArrayUInt::GetDataPtr() const {
  return static_cast<unsigned int const*>(
      static_cast<CNuArrayBase<unsigned int> const&>(*Impl).GetPointer());
}

}  // namespace Nu
