#include <Nu.Core.Ex/NuImageFormat.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;
using NuTest::ExpectRaises;

namespace {

constexpr char FormatFile[] = "Nu.Core.Ex/NuImageFormat.h";

CNuImageFormat Format(int width, int height, int pixelType, int dataType) {
  return CNuImageFormat(width, height, static_cast<EPixelType::ID>(pixelType),
                        static_cast<EDataType::ID>(dataType));
}

}  // namespace

TEST(NuImageFormat, DefaultIsAllZeroWithDataTypeBeforePixelType) {
  CNuImageFormat const format;
  EXPECT_EQ(format.Width, 0);
  EXPECT_EQ(format.GetByteCount(), 0u);
  EXPECT_EQ(format.GetBytesPerPixel(), 0u);
  CNuImageFormat const rgb = Format(1, 2, EPixelType::RGB, EDataType::UByte);
  auto const* fields = reinterpret_cast<int const*>(&rgb);
  EXPECT_EQ(fields[2], EDataType::UByte);
  EXPECT_EQ(fields[3], EPixelType::RGB);
}

TEST(NuImageFormat, BytesPerPixelOfTheTables) {
  EXPECT_EQ(Format(1, 1, EPixelType::YCbCr, EDataType::Byte).GetBytesPerPixel(), 2u);
  EXPECT_EQ(Format(1, 1, EPixelType::BGRA, EDataType::UShort).GetBytesPerPixel(), 8u);
  EXPECT_EQ(Format(1, 1, EPixelType::RGBA, EDataType::Double).GetBytesPerPixel(), 32u);
  EXPECT_EQ(Format(1, 1, EPixelType::Bayer3, EDataType::Custom_12in16_MSB).GetBytesPerPixel(), 2u);
  EXPECT_EQ(Format(1, 1, EPixelType::LumA, EDataType::Float).GetComponentCount(), 2u);
  EXPECT_EQ(Format(1, 1, EPixelType::Void, EDataType::Int).GetBytesPerPixel(), 0u);
}

TEST(NuImageFormat, IntegralTypesHaveOnlyAWholeImageByteCount) {
  EXPECT_EQ(Format(3, 1, EPixelType::Lum, EDataType::Integral_5per4).GetByteCount(), 3u);
  EXPECT_EQ(Format(4, 1, EPixelType::Lum, EDataType::Integral_5per4).GetByteCount(), 5u);
  EXPECT_EQ(Format(3, 1, EPixelType::Lum, EDataType::Integral_3per2).GetByteCount(), 4u);
  EXPECT_EQ(Format(2, 1, EPixelType::Lum, EDataType::Integral_3per2).GetByteCount(), 3u);
  CNuImageFormat const unknownPixel = Format(8, 1, 12345, EDataType::Integral_5per4);
  EXPECT_EQ(unknownPixel.GetByteCount(), 10u);
  ExpectRaises([&] { unknownPixel.GetBytesPerPixel(); },
               {{"Unable to determine bytes per pixel from integral data formats",
                 "GetBytesPerPixel", FormatFile}});
  // The double product keeps its value, then only the low 32 bits of it remain.
  CNuImageFormat const huge = Format(80000, 50000, EPixelType::Lum, EDataType::Integral_5per4);
  EXPECT_EQ(huge.GetPixelCount(), 4000000000u);
  EXPECT_EQ(huge.GetByteCount(), 705032704u);
}

TEST(NuImageFormat, CountsWrapAt32Bits) {
  CNuImageFormat const square = Format(65536, 65536, EPixelType::Lum, EDataType::UByte);
  EXPECT_EQ(square.GetPixelCount(), 0u);
  EXPECT_EQ(square.GetByteCount(), 0u);
  CNuImageFormat const rgba = Format(65536, 32768, EPixelType::RGBA, EDataType::UByte);
  EXPECT_EQ(rgba.GetPixelCount(), 2147483648u);
  EXPECT_EQ(rgba.GetByteCount(), 0u);
  EXPECT_EQ(Format(-1, 1, EPixelType::Lum, EDataType::UByte).GetPixelCount(), 4294967295u);
  EXPECT_EQ(Format(40000, 40000, EPixelType::RGB, EDataType::Double).GetByteCount(),
            static_cast<unsigned int>(40000ull * 40000ull * 24ull));
}

TEST(NuImageFormat, UnknownIdsRaiseDataTypeFirst) {
  for (int dataType : {5127, 5128, 5129, 5136 + 2, -1, 14}) {
    SCOPED_TRACE(dataType);
    CNuImageFormat const format = Format(1, 1, EPixelType::RGB, dataType);
    auto const expected = {NuTest::ExpectedLevel{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}};
    ExpectRaises([&] { format.GetByteCount(); }, expected);
    ExpectRaises([&] { format.GetBytesPerPixel(); }, expected);
  }
  ExpectRaises([] { Format(1, 1, 1234, 5128).GetByteCount(); },
               {{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}});
  ExpectRaises([] { Format(0, 0, 1234, EDataType::Void).GetByteCount(); },
               {{"Unknown pixel type", "GetComponentCount", FormatFile}});
  ExpectRaises([] { Format(1, 1, 6406, EDataType::Void).GetBytesPerPixel(); },
               {{"Unknown pixel type", "GetComponentCount", FormatFile}});
}

TEST(NuImageFormat, DataTypeNames) {
  auto name = [](int id) {
    return std::string(CNuImageFormat::DataType2String(static_cast<EDataType::ID>(id)).ToCString());
  };
  EXPECT_EQ(name(0), "Void");
  EXPECT_EQ(name(5120), "Byte");
  EXPECT_EQ(name(5125), "UInt");
  EXPECT_EQ(name(5130), "Double");
  EXPECT_EQ(name(11), "Custom_10in16_MSB");
  EXPECT_EQ(name(13), "Custom_12in16_MSB");
  for (int id : {5127, 5128, 5129, 5136, 5137, 9, 14, -5}) EXPECT_EQ(name(id), "Unknown") << id;
}

// Every carried TPixel is a gapless array of its elements that addresses by index.
#define NU_TEST_PIXEL_(L, C, A, R, G, B, Al, D, E)                                             \
  static_assert(sizeof(NU_TPIXEL(L, C, A, R, G, B, Al, D, E)) == sizeof(E) * (C + A));         \
  static_assert(std::is_same_v<Nu::TPixelOf<EPixelType::L, EDataType::D>,                     \
                               NU_TPIXEL(L, C, A, R, G, B, Al, D, E)>);
NU_ALL_PIXELS(NU_TEST_PIXEL_)
#undef NU_TEST_PIXEL_

TEST(TPixel, ElementsInMemoryOrder) {
  Nu::TPixelOf<EPixelType::BGR, EDataType::UShort> pixel{{1, 2, 3}};
  static_assert(decltype(pixel)::RedIndex == 2 && decltype(pixel)::ElementCount == 3);
  EXPECT_EQ(pixel[0], 1);
  pixel[2] = 9;
  auto const* words = reinterpret_cast<unsigned short const*>(&pixel);
  EXPECT_EQ(words[2], 9);
}
