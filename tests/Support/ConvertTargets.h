#pragma once
// The 80 exported _ConvertSrcSwitch<TTrg> entries, reachable by run-time ids, and the names of
// the carried formats, both expanded from the library's one format list. The tests instantiate
// nothing: each entry calls the exported instantiation.
#include <Nu.Core.Ex/NuImage.h>

#include <string>

namespace NuTest {

using SrcSwitchCall = bool (*)(void const* src, Nu::CNuImageFormat const& srcFormat, void* trg);

struct STargetEntry {
  int PixelType;
  int DataType;
  char const* Name;
  SrcSwitchCall Call;
};

#define NU_TEST_TARGET_ENTRY_(L, C, A, R, G, B, Al, D, E)                                        \
  {Nu::EPixelType::L, Nu::EDataType::D, #L "_" #D,                                               \
   [](void const* src, Nu::CNuImageFormat const& srcFormat, void* trg) {                          \
     return Nu::CNuImage::_ConvertSrcSwitch(src, srcFormat,                                       \
                                            static_cast<NU_TPIXEL(L, C, A, R, G, B, Al, D, E)*>(trg)); \
   }},
inline STargetEntry const AllTargets[] = {NU_ALL_PIXELS(NU_TEST_TARGET_ENTRY_)};
#undef NU_TEST_TARGET_ENTRY_

inline constexpr int TargetCount = static_cast<int>(sizeof AllTargets / sizeof AllTargets[0]);
static_assert(TargetCount == 80);

inline Nu::CNuImageFormat Format(int width, int height, int pixelType, int dataType) {
  return Nu::CNuImageFormat(width, height, static_cast<Nu::EPixelType::ID>(pixelType),
                            static_cast<Nu::EDataType::ID>(dataType));
}

}  // namespace NuTest
