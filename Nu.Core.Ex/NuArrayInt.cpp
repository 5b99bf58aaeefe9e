#include <Nu.Core.Ex/NuArrayInt.h>

namespace Nu {

CNuArrayInt::CNuArrayInt() : Impl(std::make_unique<CNuArrayBase<int>>()) {}

CNuArrayInt::CNuArrayInt(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<int>>(length)) {}

CNuArrayInt::CNuArrayInt(unsigned long length, int const& value)
    : Impl(std::make_unique<CNuArrayBase<int>>(length, value)) {}

CNuArrayInt::CNuArrayInt(CNuArrayInt const& other) : CNuArrayInt() { *this = other; }

CNuArrayInt& CNuArrayInt::operator=(CNuArrayInt const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayInt::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayInt::Length() const { return Impl->Length(); }

void const* CNuArrayInt::GetPointer() const { return GetDataPtr(); }

bool CNuArrayInt::IsValid() const { return Impl->IsValid(); }

CNuArrayInt::~CNuArrayInt() = default;

void CNuArrayInt::New(unsigned long length) { Impl->New(length); }

void CNuArrayInt::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayInt::Delete() { Impl->Delete(); }

void CNuArrayInt::Reset() { Impl->Reset(); }

void CNuArrayInt::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayInt::GetPointer() { return GetDataPtr(); }

int& CNuArrayInt::operator[](unsigned long index) { return (*Impl)[index]; }

int const& CNuArrayInt::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<int> const&>(*Impl)[index];
}

int* CNuArrayInt::GetDataPtr() { return static_cast<int*>(Impl->GetPointer()); }

int const* CNuArrayInt::GetDataPtr() const {
  return static_cast<int const*>(static_cast<CNuArrayBase<int> const&>(*Impl).GetPointer());
}

}  // namespace Nu
