// ConvertMemory with formats drawn from every id (known, unknown and uncarried), random sizes
// and bytes, against the reference model of the tests: the outcome (true, false or raised) and
// every byte of the target, guards included.
#include <Nu.Core.Ex/NuImage.h>
#include <Reference/ConvertReference.h>
#include <Support/ImageCheck.h>
#include "FuzzInput.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr int PixelIds[] = {0, 6407, 6408, 6409, 6410, 8193, 8194, 8195, 8196, 32992, 32993, 34647, 6406, 12345, -1};
constexpr int DataIds[] = {0, 10, 11, 12, 13, 5120, 5121, 5122, 5123, 5124, 5125, 5126, 5130, 5127, 5128, 5129, 5136, 5137, -7};
constexpr std::size_t Guard = 64;

void Check(bool condition) {
  if (!condition) std::abort();
}

// Bytes of a format that has a byte count, or -1 where GetByteCount raises.
long long ByteCount(unsigned int pixels, int pixelType, int dataType) {
  if (dataType == 5136 || dataType == 5137) return static_cast<long long>(pixels * (dataType == 5136 ? 1.25 : 1.5));
  NuRef::SDataRow const* row = NuRef::FindDataType(dataType);
  NuRef::SLayoutRow const* layout = NuRef::FindLayout(pixelType);
  long long const bytes = row ? static_cast<long long>(row->Bytes) : dataType == 0 ? 0 : dataType >= 10 && dataType <= 13 ? 2 : -1;
  long long const components = layout ? static_cast<long long>(layout->Colours + layout->Alphas)
                                      : pixelType == 0 ? 0 : pixelType == 34647 ? 2 : -1;
  return bytes < 0 || components < 0 ? -1 : pixels * bytes * components;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  int const trgPixel = PixelIds[input.Below(std::size(PixelIds))];
  int const trgData = DataIds[input.Below(std::size(DataIds))];
  bool const sameFormat = (input.Take<std::uint8_t>() & 3) == 0;
  int const srcPixel = sameFormat ? trgPixel : PixelIds[input.Below(std::size(PixelIds))];
  int const srcData = sameFormat ? trgData : DataIds[input.Below(std::size(DataIds))];
  int const width = static_cast<int>(input.Below(9)), height = static_cast<int>(input.Below(5));
  int const trgWidth = (input.Take<std::uint8_t>() & 7) == 0 ? width + 1 : width;
  auto const count = static_cast<unsigned int>(width * height);

  // Room for everything either side can touch: the LumA-target rule reaches 2 * count pixels.
  std::size_t const room = 2 * static_cast<std::size_t>(count) * 32 + 8;
  std::vector<std::uint8_t> source(room + 2 * Guard, 0xA7), target(room + 2 * Guard, 0xA7);
  for (std::size_t i = 0; i < room && !input.Empty(); ++i) source[Guard + i] = input.Take<std::uint8_t>();
  for (std::size_t i = 0; i < room; ++i) target[Guard + i] = static_cast<std::uint8_t>(i * 31 + 7);
  std::vector<std::uint8_t> expected = target;
  std::vector<std::uint8_t> const sourceBefore = source;

  // The model of the road: shortcut, then the four decisions in their order; 0 false, 1 true, 2 raised.
  int want = 1;
  if (trgWidth == width && trgPixel == srcPixel && trgData == srcData) {
    long long const bytes = ByteCount(count, srcPixel, srcData);
    if (bytes < 0) want = 2;
    else std::memcpy(&expected[Guard], &source[Guard], static_cast<std::size_t>(bytes));
  } else if (NuRef::FindLayout(trgPixel) == nullptr) {
    want = 0;
  } else if (NuRef::IsBayer(trgPixel) && srcPixel != trgPixel) {
    want = 2;
  } else if (!NuRef::FindDataType(trgData) || !NuRef::FindLayout(srcPixel) || !NuRef::FindDataType(srcData)) {
    want = 0;
  } else {
    NuRef::ConvertRun(trgPixel, trgData, &expected[Guard], srcPixel, srcData, &source[Guard], count);
  }

  int got = 2;
  try {
    got = Nu::CNuImage::ConvertMemory(&target[Guard], &source[Guard],
                                      NuTest::Format(trgWidth, height, trgPixel, trgData),
                                      NuTest::Format(width, height, srcPixel, srcData));
  } catch (Nu::CNuException const& e) {
    Check(std::strcmp(e.GetMessageText(), "Error converting image memory") == 0 && e.GetInnerException() != nullptr);
  }
  Check(got == want && target == expected && source == sourceBefore);
  return 0;
}
