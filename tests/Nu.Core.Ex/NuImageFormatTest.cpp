#include <Nu.Core.Ex/NuImageFormat.h>

#include <Support/ExceptionCheck.h>
#include <Support/ImageCheck.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

using namespace Nu;
using namespace NuTest;

// The binary layout: data type before pixel type.
static_assert(offsetof(CNuImageFormat, DataType) == 8 && offsetof(CNuImageFormat, PixelType) == 12);

TEST(NuImageFormat, ByteCountsWrapAt32BitsAndPackedTypesIgnoreThePixelType) {
  std::pair<CNuImageFormat, unsigned int> const cases[] = {
      {Format(65536, 32768, EPixelType::RGBA, EDataType::UByte), 0},
      {Format(40000, 40000, EPixelType::RGB, EDataType::Double), static_cast<unsigned int>(40000ull * 40000 * 24)},
      {Format(3, 1, EPixelType::Lum, EDataType::Integral_5per4), 3},
      {Format(8, 1, 12345, EDataType::Integral_5per4), 10},
      {Format(3, 1, EPixelType::Lum, EDataType::Integral_3per2), 4},
      {Format(80000, 50000, EPixelType::Lum, EDataType::Integral_5per4), 705032704},  // 5e9 cut to 32 bits
  };
  for (auto const& [format, bytes] : cases) EXPECT_EQ(format.GetByteCount(), bytes) << format.Width;
  ExpectRaises([] { Format(8, 1, EPixelType::Lum, EDataType::Integral_3per2).GetBytesPerPixel(); },
               {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}});
}

TEST(NuImageFormat, UnknownIdsRaiseDataTypeFirst) {
  for (int dataType : {5127, 5129, 5138, -1, 14}) {
    Chain const unknown = {{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}};
    ExpectRaises([&] { Format(1, 1, 1234, dataType).GetByteCount(); }, unknown);
    ExpectRaises([&] { Format(1, 1, 1234, dataType).GetBytesPerPixel(); }, unknown);
  }
  ExpectRaises([] { Format(0, 0, 6406, EDataType::Void).GetByteCount(); },
               {{"Unknown pixel type", "GetComponentCount", FormatFile}});
}
