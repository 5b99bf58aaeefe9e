// Uses the library the way an outside program does: the umbrella header and nothing else.
#include <Nu.Core.Ex/NuCoreEx.h>

#include <cstdio>

int main() {
  Nu::CNuImage image;
  if (!image.Create(4, 2, Nu::EPixelType::RGB, Nu::EDataType::UByte)) return 1;
  image.SetZero();
  image.SetPixel(Nu::TPixelOf<Nu::EPixelType::RGB, Nu::EDataType::UByte>{{10, 20, 30}}, 3, 1);
  Nu::TPixelOf<Nu::EPixelType::RGB, Nu::EDataType::UByte> pixel;
  image.GetPixel(pixel, 3, 1);
  try {
    image.Create(0, 1, Nu::EPixelType::RGB, Nu::EDataType::UByte);
    return 2;
  } catch (Nu::CNuException const& e) {
    if (e.GetInnerException() == nullptr) return 3;
    std::printf("%s\n", e.ToString().ToCString());
  }
  std::printf("pixel (3, 1) = %d %d %d, %u bytes\n", pixel[0], pixel[1], pixel[2], image.GetByteCount());
  return pixel[2] == 30 ? 0 : 4;
}
