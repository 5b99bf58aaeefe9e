#include <Nu.Core.Ex/NuArray2DInt.h>

namespace Nu {

CNuArray2DInt::CNuArray2DInt() : Impl(std::make_unique<CNuArray2DBase<int>>()) {}

CNuArray2DInt::CNuArray2DInt(unsigned long rows, unsigned long columns)
    : Impl(std::make_unique<CNuArray2DBase<int>>(rows, columns)) {}

CNuArray2DInt::CNuArray2DInt(CNuArray2DInt const& other) : CNuArray2DInt() { *this = other; }

// No self-assignment test: the block is then copied onto itself, which changes nothing.
CNuArray2DInt& CNuArray2DInt::operator=(CNuArray2DInt const& other) {
  Impl->CopyFrom(other.Impl.get());
  return *this;
}

unsigned long CNuArray2DInt::GetElementSize() const { return Impl->GetElementSize(); }

void CNuArray2DInt::GetSize(unsigned long& rows, unsigned long& columns) const {
  Impl->GetSize(rows, columns);
}

void const* CNuArray2DInt::GetPointer() const { return GetDataPtr(); }

bool CNuArray2DInt::IsValid() const { return Impl->IsValid(); }

CNuArray2DInt::~CNuArray2DInt() = default;

void CNuArray2DInt::New(unsigned long rows, unsigned long columns) { Impl->New(rows, columns); }

void CNuArray2DInt::Resize(unsigned long rows, unsigned long columns) {
  Impl->Resize(rows, columns);
}

void CNuArray2DInt::Delete() { Impl->Delete(); }

void CNuArray2DInt::Reset() { Impl->Reset(); }

void CNuArray2DInt::CopyFrom(IMemory2DAccess const* source) { Impl->CopyFrom(source); }

void* CNuArray2DInt::GetPointer() { return GetDataPtr(); }

int& CNuArray2DInt::operator()(unsigned long row, unsigned long column) {
  return (*Impl)(row, column);
}

int const& CNuArray2DInt::operator()(unsigned long row, unsigned long column) const {
  return static_cast<CNuArray2DBase<int> const&>(*Impl)(row, column);
}

int* CNuArray2DInt::GetDataPtr() { return Impl->GetDataPtr(); }

int const* CNuArray2DInt::GetDataPtr() const {
  return static_cast<CNuArray2DBase<int> const&>(*Impl).GetDataPtr();
}

}  // namespace Nu
