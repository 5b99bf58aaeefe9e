#pragma once
// Private to the library (not installed): the member definitions that every named array shares.
// The named arrays are distinct exported classes that differ in nothing but their element type;
// each source instantiates these forwards once for its own class.
#include <memory>

// A named one-dimensional array `Class` over CNuArrayBase<T>.
#define NU_DEFINE_NAMED_ARRAY(Class, T)                                                       \
  Class::Class() : Impl(std::make_unique<CNuArrayBase<T>>()) {}                               \
  Class::Class(unsigned long length) : Impl(std::make_unique<CNuArrayBase<T>>(length)) {}     \
  Class::Class(unsigned long length, T const& value)                                          \
      : Impl(std::make_unique<CNuArrayBase<T>>(length, value)) {}                             \
  Class::Class(Class const& other) : Class() { *this = other; }                               \
  Class& Class::operator=(Class const& other) {                                               \
    if (this != &other) *Impl = *other.Impl;                                                  \
    return *this;                                                                             \
  }                                                                                           \
  unsigned long Class::GetElementSize() const { return Impl->GetElementSize(); }              \
  unsigned long Class::Length() const { return Impl->Length(); }                              \
  void const* Class::GetPointer() const { return GetDataPtr(); }                              \
  bool Class::IsValid() const { return Impl->IsValid(); }                                     \
  Class::~Class() = default;                                                                  \
  void Class::New(unsigned long length) { Impl->New(length); }                                \
  void Class::Resize(unsigned long length) { Impl->Resize(length); }                          \
  void Class::Delete() { Impl->Delete(); }                                                    \
  void Class::Reset() { Impl->Reset(); }                                                      \
  void Class::CopyFrom(IMemoryAccess const* source) { Impl->CopyFrom(source); }               \
  void* Class::GetPointer() { return GetDataPtr(); }                                          \
  T& Class::operator[](unsigned long index) { return (*Impl)[index]; }                        \
  T const& Class::operator[](unsigned long index) const {                                     \
    return static_cast<CNuArrayBase<T> const&>(*Impl)[index];                                 \
  }                                                                                           \
  T* Class::GetDataPtr() { return static_cast<T*>(Impl->GetPointer()); }                      \
  T const* Class::GetDataPtr() const {                                                        \
    return static_cast<T const*>(static_cast<CNuArrayBase<T> const&>(*Impl).GetPointer());    \
  }

// A named two-dimensional array `Class` over CNuArray2DBase<T>. Assignment has no self test:
// the block is then copied onto itself, which changes nothing.
#define NU_DEFINE_NAMED_ARRAY_2D(Class, T)                                                    \
  Class::Class() : Impl(std::make_unique<CNuArray2DBase<T>>()) {}                             \
  Class::Class(unsigned long rows, unsigned long columns)                                     \
      : Impl(std::make_unique<CNuArray2DBase<T>>(rows, columns)) {}                           \
  Class::Class(Class const& other) : Class() { *this = other; }                               \
  Class& Class::operator=(Class const& other) {                                               \
    Impl->CopyFrom(other.Impl.get());                                                         \
    return *this;                                                                             \
  }                                                                                           \
  unsigned long Class::GetElementSize() const { return Impl->GetElementSize(); }              \
  void Class::GetSize(unsigned long& rows, unsigned long& columns) const {                    \
    Impl->GetSize(rows, columns);                                                             \
  }                                                                                           \
  void const* Class::GetPointer() const { return GetDataPtr(); }                              \
  bool Class::IsValid() const { return Impl->IsValid(); }                                     \
  Class::~Class() = default;                                                                  \
  void Class::New(unsigned long rows, unsigned long columns) { Impl->New(rows, columns); }    \
  void Class::Resize(unsigned long rows, unsigned long columns) { Impl->Resize(rows, columns); } \
  void Class::Delete() { Impl->Delete(); }                                                    \
  void Class::Reset() { Impl->Reset(); }                                                      \
  void Class::CopyFrom(IMemory2DAccess const* source) { Impl->CopyFrom(source); }             \
  void* Class::GetPointer() { return GetDataPtr(); }                                          \
  T& Class::operator()(unsigned long row, unsigned long column) { return (*Impl)(row, column); } \
  T const& Class::operator()(unsigned long row, unsigned long column) const {                 \
    return static_cast<CNuArray2DBase<T> const&>(*Impl)(row, column);                         \
  }                                                                                           \
  T* Class::GetDataPtr() { return Impl->GetDataPtr(); }                                       \
  T const* Class::GetDataPtr() const {                                                        \
    return static_cast<CNuArray2DBase<T> const&>(*Impl).GetDataPtr();                         \
  }
