#include <Nu.Core.Ex/NuArray2DDouble.h>

namespace Nu {

CNuArray2DDouble::CNuArray2DDouble() : Impl(std::make_unique<CNuArray2DBase<double>>()) {}

CNuArray2DDouble::CNuArray2DDouble(unsigned long rows, unsigned long columns)
    : Impl(std::make_unique<CNuArray2DBase<double>>(rows, columns)) {}

CNuArray2DDouble::CNuArray2DDouble(CNuArray2DDouble const& other) : CNuArray2DDouble() {
  *this = other;
}

// No self-assignment test: the block is then copied onto itself, which changes nothing.
CNuArray2DDouble& CNuArray2DDouble::operator=(CNuArray2DDouble const& other) {
  Impl->CopyFrom(other.Impl.get());
  return *this;
}

unsigned long CNuArray2DDouble::GetElementSize() const { return Impl->GetElementSize(); }

void CNuArray2DDouble::GetSize(unsigned long& rows, unsigned long& columns) const {
  Impl->GetSize(rows, columns);
}

void const* CNuArray2DDouble::GetPointer() const { return GetDataPtr(); }

bool CNuArray2DDouble::IsValid() const { return Impl->IsValid(); }

CNuArray2DDouble::~CNuArray2DDouble() = default;

void CNuArray2DDouble::New(unsigned long rows, unsigned long columns) { Impl->New(rows, columns); }

void CNuArray2DDouble::Resize(unsigned long rows, unsigned long columns) {
  Impl->Resize(rows, columns);
}

void CNuArray2DDouble::Delete() { Impl->Delete(); }

void CNuArray2DDouble::Reset() { Impl->Reset(); }

void CNuArray2DDouble::CopyFrom(IMemory2DAccess const* source) { Impl->CopyFrom(source); }

void* CNuArray2DDouble::GetPointer() { return GetDataPtr(); }

double& CNuArray2DDouble::operator()(unsigned long row, unsigned long column) {
  return (*Impl)(row, column);
}

double const& CNuArray2DDouble::operator()(unsigned long row, unsigned long column) const {
  return static_cast<CNuArray2DBase<double> const&>(*Impl)(row, column);
}

double* CNuArray2DDouble::GetDataPtr() { return Impl->GetDataPtr(); }

double const* CNuArray2DDouble::GetDataPtr() const {
  return static_cast<CNuArray2DBase<double> const&>(*Impl).GetDataPtr();
}

}  // namespace Nu
