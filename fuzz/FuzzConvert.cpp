// ConvertMemory with random formats, drawn from every id (known, unknown and uncarried), random
// sizes and bytes, against the reference model of the tests: the outcome (true, false or raised)
// and every byte of the target, guards included.
#include <Nu.Core.Ex/NuImage.h>

#include <Reference/ConvertReference.h>

#include "FuzzInput.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr int PixelIds[] = {0, 6407, 6408, 6409, 6410, 8193, 8194, 8195, 8196, 32992, 32993, 34647, 6406, 12345, -1};
constexpr int DataIds[] = {0, 10, 11, 12, 13, 5120, 5121, 5122, 5123, 5124, 5125, 5126, 5130, 5127, 5128, 5129, 5136, 5137, -7};
constexpr unsigned int Guard = 64;
constexpr std::uint8_t GuardByte = 0xA7;

enum class EOutcome { True, False, Raised };

void Check(bool condition) {
  if (!condition) std::abort();
}

// Bytes of a format that has a byte count, or -1 where GetByteCount raises.
long long ByteCount(int width, int height, int pixelType, int dataType) {
  unsigned int const pixels = static_cast<unsigned int>(width) * static_cast<unsigned int>(height);
  if (dataType == 5136) return static_cast<long long>(pixels * 1.25);
  if (dataType == 5137) return static_cast<long long>(pixels * 1.5);
  int bytes = -1;
  switch (dataType) {
    case 0: bytes = 0; break;
    case 10: case 11: case 12: case 13: case 5122: case 5123: bytes = 2; break;
    case 5120: case 5121: bytes = 1; break;
    case 5124: case 5125: case 5126: bytes = 4; break;
    case 5130: bytes = 8; break;
    default: return -1;
  }
  int components = -1;
  switch (pixelType) {
    case 0: components = 0; break;
    case 6409: case 8193: case 8194: case 8195: case 8196: components = 1; break;
    case 6410: case 34647: components = 2; break;
    case 6407: case 32992: components = 3; break;
    case 6408: case 32993: components = 4; break;
    default: return -1;
  }
  return static_cast<long long>(pixels) * bytes * components;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  int const trgPixel = PixelIds[input.Below(std::size(PixelIds))];
  int const trgData = DataIds[input.Below(std::size(DataIds))];
  bool const sameFormat = (input.Take<std::uint8_t>() & 3) == 0;
  int const srcPixel = sameFormat ? trgPixel : PixelIds[input.Below(std::size(PixelIds))];
  int const srcData = sameFormat ? trgData : DataIds[input.Below(std::size(DataIds))];
  int const width = static_cast<int>(input.Below(9));
  int const height = static_cast<int>(input.Below(5));
  int const trgWidth = (input.Take<std::uint8_t>() & 7) == 0 ? width + 1 : width;
  unsigned int const count = static_cast<unsigned int>(width * height);

  // Room for everything either side can touch: the LumA-target rule reaches 2 * count pixels.
  std::size_t const room = 2 * static_cast<std::size_t>(count) * 32 + 8;
  std::vector<std::uint8_t> source(room + 2 * Guard, GuardByte);
  for (std::size_t i = 0; i < room && !input.Empty(); ++i) source[Guard + i] = input.Take<std::uint8_t>();
  std::vector<std::uint8_t> target(room + 2 * Guard, GuardByte);
  for (std::size_t i = 0; i < room; ++i) target[Guard + i] = static_cast<std::uint8_t>(i * 31 + 7);
  std::vector<std::uint8_t> expected = target;
  std::vector<std::uint8_t> const sourceBefore = source;

  Nu::CNuImageFormat const trgFormat(trgWidth, height, static_cast<Nu::EPixelType::ID>(trgPixel),
                                     static_cast<Nu::EDataType::ID>(trgData));
  Nu::CNuImageFormat const srcFormat(width, height, static_cast<Nu::EPixelType::ID>(srcPixel),
                                     static_cast<Nu::EDataType::ID>(srcData));

  // The model of the road: shortcut, then the four decisions in their order.
  EOutcome want = EOutcome::True;
  if (trgWidth == width && trgPixel == srcPixel && trgData == srcData) {
    long long const bytes = ByteCount(width, height, srcPixel, srcData);
    if (bytes < 0) {
      want = EOutcome::Raised;
    } else {
      std::memcpy(expected.data() + Guard, source.data() + Guard, static_cast<std::size_t>(bytes));
    }
  } else if (NuRef::FindLayout(trgPixel) == nullptr) {
    want = EOutcome::False;
  } else if (NuRef::IsBayer(trgPixel) && srcPixel != trgPixel) {
    want = EOutcome::Raised;
  } else if (NuRef::FindDataType(trgData) == nullptr || NuRef::FindLayout(srcPixel) == nullptr ||
             NuRef::FindDataType(srcData) == nullptr) {
    want = EOutcome::False;
  } else {
    NuRef::ConvertRun(trgPixel, trgData, expected.data() + Guard, srcPixel, srcData, source.data() + Guard, count);
  }

  EOutcome got = EOutcome::False;
  try {
    got = Nu::CNuImage::ConvertMemory(target.data() + Guard, source.data() + Guard, trgFormat, srcFormat)
              ? EOutcome::True
              : EOutcome::False;
  } catch (Nu::CNuException const& e) {
    got = EOutcome::Raised;
    Check(std::strcmp(e.GetMessageText(), "Error converting image memory") == 0);
    Check(e.GetInnerException() != nullptr);
  }
  Check(got == want);
  Check(target == expected);
  Check(source == sourceBefore);
  return 0;
}
