// Uses the library the way an outside program does: the umbrella header and nothing else.
#include <Nu.Core.Ex/NuCoreEx.h>

#include <cstdio>

int main() {
  Nu::CNuImage image;
  if (!image.Create(4, 2, Nu::EPixelType::RGB, Nu::EDataType::UByte)) return 1;
  image.SetPixel(Nu::TPixelOf<Nu::EPixelType::RGB, Nu::EDataType::UByte>{{10, 20, 30}}, 3, 1);
  try {
    image.Create(0, 1, Nu::EPixelType::RGB, Nu::EDataType::UByte);
  } catch (Nu::CNuException const& e) {
    std::printf("%s\n", e.ToString().ToCString());
    return e.GetInnerException() != nullptr && static_cast<unsigned char*>(image.GetDataPtr())[23] == 30 ? 0 : 3;
  }
  return 2;
}
