#pragma once
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageMoniker.h>

#include <type_traits>

namespace NuTest {

// An image or moniker whose protected state can be looked at.
template <class TImage>
struct Inspectable : TImage {
  using TImage::TImage;
  void const* RawData() const { return this->Data; }
  bool Borrows() const { return this->IsMoniker; }
  unsigned int Tag() const { return this->AttachedTag; }
  double Value() const { return this->AttachedValue; }
  // No memory, and every field zero.
  bool IsEmpty() const {
    Nu::CNuImageFormat const& f = this->Format;
    bool const empty = this->Data == nullptr && f.Width == 0 && f.Height == 0 && f.DataType == 0 && f.PixelType == 0;
    if constexpr (std::is_same_v<TImage, Nu::CNuImage>) return empty && Tag() == 0 && Value() == 0.0 && !Borrows();
    return empty;
  }
};
using CImage = Inspectable<Nu::CNuImage>;
using CMoniker = Inspectable<Nu::CNuImageMoniker>;

inline Nu::CNuImageFormat Format(int width, int height, int pixelType, int dataType) {
  return {width, height, static_cast<Nu::EPixelType::ID>(pixelType), static_cast<Nu::EDataType::ID>(dataType)};
}

}  // namespace NuTest
