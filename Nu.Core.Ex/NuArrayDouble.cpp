#include <Nu.Core.Ex/NuArrayDouble.h>

namespace Nu {

CNuArrayDouble::CNuArrayDouble() : Impl(std::make_unique<CNuArrayBase<double>>()) {}

CNuArrayDouble::CNuArrayDouble(unsigned long length)
    : Impl(std::make_unique<CNuArrayBase<double>>(length)) {}

CNuArrayDouble::CNuArrayDouble(unsigned long length, double const& value)
    : Impl(std::make_unique<CNuArrayBase<double>>(length, value)) {}

CNuArrayDouble::CNuArrayDouble(CNuArrayDouble const& other) : CNuArrayDouble() { *this = other; }

CNuArrayDouble& CNuArrayDouble::operator=(CNuArrayDouble const& other) {
  if (this != &other) *Impl = *other.Impl;
  return *this;
}

unsigned long CNuArrayDouble::GetElementSize() const { return Impl->GetElementSize(); }

unsigned long CNuArrayDouble::Length() const { return Impl->Length(); }

void const* CNuArrayDouble::GetPointer() const { return GetDataPtr(); }

bool CNuArrayDouble::IsValid() const { return Impl->IsValid(); }

CNuArrayDouble::~CNuArrayDouble() = default;

void CNuArrayDouble::New(unsigned long length) { Impl->New(length); }

void CNuArrayDouble::Resize(unsigned long length) { Impl->Resize(length); }

void CNuArrayDouble::Delete() { Impl->Delete(); }

void CNuArrayDouble::Reset() { Impl->Reset(); }

void CNuArrayDouble::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }

void* CNuArrayDouble::GetPointer() { return GetDataPtr(); }

double& CNuArrayDouble::operator[](unsigned long index) { return (*Impl)[index]; }

double const& CNuArrayDouble::operator[](unsigned long index) const {
  return static_cast<CNuArrayBase<double> const&>(*Impl)[index];
}

double* CNuArrayDouble::GetDataPtr() { return static_cast<double*>(Impl->GetPointer()); }

double const* CNuArrayDouble::GetDataPtr() const {
  return static_cast<double const*>(static_cast<CNuArrayBase<double> const&>(*Impl).GetPointer());
}

}  // namespace Nu
