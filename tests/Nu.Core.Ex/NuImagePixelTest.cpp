#include <Nu.Core.Ex/NuImage.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;
using Nu::TPixelOf;
using NuTest::ExpectRaises;

namespace {

constexpr char ImageFile[] = "Nu.Core.Ex/NuImage.cpp";

template <class TPixel>
void ExpectSameElements(TPixel const& a, TPixel const& b) {
  EXPECT_EQ(std::memcmp(&a, &b, sizeof(TPixel)), 0);
}

// Every overload addresses Data + (y * width + x) pixels and copies the pixel's bytes as they are.
template <class TPixel>
class PixelAccess : public ::testing::Test {};

template <class... T>
struct TypeList {};
#define NU_PIXEL_TYPE_(L, C, A, R, G, B, Al, D, E) , NU_TPIXEL(L, C, A, R, G, B, Al, D, E)
using AllPixels = ::testing::Types<TPixelOf<EPixelType::RGBA, EDataType::Byte> NU_ALL_PIXELS(NU_PIXEL_TYPE_)>;
#undef NU_PIXEL_TYPE_

}  // namespace

TYPED_TEST_SUITE(PixelAccess, AllPixels);

TYPED_TEST(PixelAccess, RoundTripsBytesAtTheAddressOfItsCoordinates) {
  using Pixel = TypeParam;
  CNuImage image;
  ASSERT_TRUE(image.Create(5, 3, static_cast<EPixelType::ID>(Pixel::PixelTypeId),
                           static_cast<EDataType::ID>(Pixel::DataTypeId)));
  ASSERT_EQ(image.GetByteCount(), 15 * sizeof(Pixel));
  auto* bytes = static_cast<unsigned char*>(image.GetDataPtr());
  for (unsigned int i = 0; i < image.GetByteCount(); ++i) bytes[i] = static_cast<unsigned char>(i * 7 + 1);

  Pixel last;
  image.GetPixel(last, 4, 2);
  EXPECT_EQ(std::memcmp(&last, bytes + 14 * sizeof(Pixel), sizeof(Pixel)), 0);
  Pixel wrapped;
  image.GetPixel(wrapped, 5, 1);  // x past the width reaches the next row
  Pixel nextRow;
  image.GetPixel(nextRow, 0, 2);
  ExpectSameElements(wrapped, nextRow);

  Pixel written;
  std::memset(&written, 0xA5, sizeof written);
  written[0] = static_cast<typename Pixel::Element>(1);
  image.SetPixel(written, 2, 1);
  EXPECT_EQ(std::memcmp(bytes + 7 * sizeof(Pixel), &written, sizeof(Pixel)), 0);
  Pixel read;
  image.GetPixel(read, 2, 1);
  ExpectSameElements(read, written);
}

TEST(PixelAccessAddressing, LastPixelOfFiveByThreeRgbBytes) {
  std::vector<unsigned char> bytes(45);
  std::iota(bytes.begin(), bytes.end(), 0);
  CNuImage image;
  ASSERT_TRUE(image.Create(5, 3, EPixelType::RGB, EDataType::UByte, bytes.data()));
  TPixelOf<EPixelType::RGB, EDataType::UByte> pixel;
  image.GetPixel(pixel, 4, 2);
  EXPECT_EQ(pixel[0], 42);
  EXPECT_EQ(pixel[1], 43);
  EXPECT_EQ(pixel[2], 44);
  TPixelOf<EPixelType::BGR, EDataType::UByte> bgr;
  image.GetPixel(bgr, 4, 2);  // no reordering: element 0 is whatever memory holds first
  EXPECT_EQ(bgr[0], 42);
}

TEST(PixelAccessAddressing, OverloadsOfEqualSizeReadTheSameBits) {
  CNuImage image;
  ASSERT_TRUE(image.Create(4, 2, EPixelType::Lum, EDataType::Float));
  TPixelOf<EPixelType::Lum, EDataType::Float> value{{-0.0f}};
  image.SetPixel(value, 7, 0);
  TPixelOf<EPixelType::Lum, EDataType::UInt> bits;
  image.GetPixel(bits, 3, 1);
  EXPECT_EQ(bits[0], 0x80000000u);
  TPixelOf<EPixelType::Bayer2, EDataType::Int> bayer;
  image.GetPixel(bayer, 3, 1);
  EXPECT_EQ(static_cast<std::uint32_t>(bayer[0]), 0x80000000u);
  TPixelOf<EPixelType::BGRA, EDataType::UShort> quad{{1, 2, 65535, 4}};
  image.SetPixel(quad, 0, 0);
  TPixelOf<EPixelType::BGRA, EDataType::UShort> back;
  image.GetPixel(back, 0, 0);
  EXPECT_EQ(back[2], 65535);
  EXPECT_EQ(back[3], 4);
}

TEST(PixelAccessAddressing, WritesThroughABorrowedPointer) {
  std::vector<double> foreign(6, 0.0);
  CNuImage image;
  image.CreateMoniker(CNuImageFormat(3, 1, EPixelType::LumA, EDataType::Double), foreign.data(), 0, 0);
  image.SetPixel(TPixelOf<EPixelType::LumA, EDataType::Double>{{0.25, 1.0}}, 2, 0);
  EXPECT_EQ(foreign[4], 0.25);
  EXPECT_EQ(foreign[5], 1.0);
}

TEST(NuImageSet, CopiesIntoAnOwnBlockAndReturnsFalse) {
  CNuImage image;
  ASSERT_TRUE(image.Create(2, 2, EPixelType::Lum, EDataType::UByte));
  unsigned char const bytes[4] = {1, 2, 3, 4};
  EXPECT_FALSE(image.Set(bytes));
  EXPECT_EQ(std::memcmp(image.GetDataPtr(), bytes, 4), 0);

  CNuImage packed;
  ASSERT_TRUE(packed.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4));
  unsigned char const ten[10] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
  EXPECT_FALSE(packed.Set(ten));
  EXPECT_EQ(std::memcmp(packed.GetDataPtr(), ten, 10), 0);
}

TEST(NuImageSet, RefusesEmptyAndBorrowingImagesWithoutRaising) {
  CNuImage empty;
  unsigned char const bytes[4] = {1, 2, 3, 4};
  EXPECT_FALSE(empty.Set(bytes));
  std::vector<unsigned char> foreign(4, 0);
  CNuImage borrowing;
  borrowing.CreateMoniker(CNuImageFormat(2, 2, EPixelType::Lum, EDataType::UByte), foreign.data(), 0, 0);
  EXPECT_FALSE(borrowing.Set(bytes));
  EXPECT_EQ(foreign[0], 0);
  CNuImage unknown;
  unknown.CreateMoniker(CNuImageFormat(2, 2, EPixelType::Lum, static_cast<EDataType::ID>(5129)),
                        foreign.data(), 0, 0);
  EXPECT_FALSE(unknown.Set(bytes));  // borrowing: refused before any size is asked
}

TEST(NuImageSet, UnknownIdOfAnOwnBlockRaisesUnwrapped) {
  // An image that owns a block but whose format has become unknown cannot be built through
  // the public operations; a derived class can, and Set must raise the format's message bare.
  struct CCorrupt : CNuImage {
    void Corrupt() { Format.PixelType = static_cast<EPixelType::ID>(6406); }
  } image;
  ASSERT_TRUE(image.Create(2, 2, EPixelType::Lum, EDataType::UByte));
  image.Corrupt();
  unsigned char const bytes[4] = {};
  ExpectRaises([&] { image.Set(bytes); }, {{"Unknown pixel type", "GetComponentCount", nullptr}});
  ExpectRaises([&] { image.SetZero(); },
               {{"Error setting image to zero", "SetZero", ImageFile}, {"Unknown pixel type", "GetComponentCount", nullptr}});
}

TEST(NuImageSetZero, ClearsOwnAndBorrowedMemory) {
  CNuImage packed;
  ASSERT_TRUE(packed.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4));
  std::memset(packed.GetDataPtr(), 0xFF, 10);
  packed.SetZero();
  EXPECT_EQ(std::memcmp(packed.GetDataPtr(), std::vector<unsigned char>(10, 0).data(), 10), 0);

  std::vector<unsigned char> foreign(13, 0xEE);
  CNuImage borrowing;
  borrowing.CreateMoniker(CNuImageFormat(3, 2, EPixelType::LumA, EDataType::UByte), foreign.data(), 0, 0);
  borrowing.SetZero();
  EXPECT_EQ(foreign[11], 0);
  EXPECT_EQ(foreign[12], 0xEE);  // exactly the byte count
}

TEST(NuImageSetZero, RaisesOnAnImageWithoutMemory) {
  CNuImage empty;
  ExpectRaises([&] { empty.SetZero(); },
               {{"Error setting image to zero", "SetZero", ImageFile}, {"This image is invalid", "SetZero", ImageFile}});
}

namespace {

std::vector<float> Normalized(std::vector<float> pixels, EPixelType::ID pixelType = EPixelType::Lum,
                              bool* result = nullptr) {
  CNuImage image;
  int const width = static_cast<int>(pixels.size()) / (pixelType == EPixelType::Lum ? 1 : 3);
  EXPECT_TRUE(image.Create(width, 1, pixelType, EDataType::Float, pixels.data()));
  bool const normalized = image.Normalize();
  if (result != nullptr) *result = normalized;
  auto const* data = static_cast<float const*>(image.GetDataPtr());
  return std::vector<float>(data, data + pixels.size());
}

}  // namespace

TEST(NuImageNormalize, StretchesFloatLuminanceToUnitRange) {
  bool result = false;
  EXPECT_EQ(Normalized({2, 4, 6}, EPixelType::Lum, &result), (std::vector<float>{0, 0.5f, 1}));
  EXPECT_TRUE(result);
  auto const withNan = Normalized({1, std::numeric_limits<float>::quiet_NaN(), 3});
  EXPECT_EQ(withNan[0], 0.0f);
  EXPECT_TRUE(std::isnan(withNan[1]));
  EXPECT_EQ(withNan[2], 1.0f);
}

TEST(NuImageNormalize, SeedsAreInnerLimitsOfTheRange) {
  EXPECT_EQ(Normalized({2e9f, 3e9f}), (std::vector<float>{0.5f, 1.0f}));
  EXPECT_EQ(Normalized({-3e9f, -2e9f}), (std::vector<float>{0.0f, 0.5f}));
}

TEST(NuImageNormalize, FlatOrTinyRangesStayAsTheyAre) {
  bool result = false;
  EXPECT_EQ(Normalized({3, 3, 3}, EPixelType::Lum, &result), (std::vector<float>{3, 3, 3}));
  EXPECT_TRUE(result);
  EXPECT_EQ(Normalized({1.0f, 1.0000000001f}), (std::vector<float>{1.0f, 1.0f}));
  EXPECT_EQ(Normalized({1e-10f, 2e-10f}), (std::vector<float>{1e-10f, 2e-10f}));
  float const nan = std::numeric_limits<float>::quiet_NaN();
  auto const allNan = Normalized({nan, nan});
  EXPECT_TRUE(std::isnan(allNan[0]) && std::isnan(allNan[1]));
}

TEST(NuImageNormalize, OtherFormatsReturnFalseUntouched) {
  bool result = true;
  EXPECT_EQ(Normalized({1, 2, 3}, EPixelType::RGB, &result), (std::vector<float>{1, 2, 3}));
  EXPECT_FALSE(result);
  CNuImage empty;
  EXPECT_FALSE(empty.Normalize());
  CNuImage doubles;
  ASSERT_TRUE(doubles.Create(2, 1, EPixelType::Lum, EDataType::Double));
  EXPECT_FALSE(doubles.Normalize());
}

TEST(NuImageNormalize, RereadsThePixelCountVirtuallyBeforeEveryPixel) {
  // A derived image that reports one pixel less after every query sees its loops shortened.
  struct CShrinking : CNuImage {
    mutable unsigned int Queries = 0;
    unsigned int GetPixelCount() const override {
      unsigned int const count = CNuImage::GetPixelCount();
      return Queries < count ? count - Queries++ : 0;
    }
  } image;
  float const pixels[4] = {0, 8, 4, 2};
  ASSERT_TRUE(image.Create(4, 1, EPixelType::Lum, EDataType::Float, pixels));
  EXPECT_TRUE(image.Normalize());
  // The first pass sees pixels 0 and 1 (bounds 4, 3, 2): range 0..8. The second pass starts
  // with bound 1 and normalizes pixel 0 only.
  auto const* data = static_cast<float const*>(image.GetDataPtr());
  EXPECT_EQ(data[0], 0.0f);
  EXPECT_EQ(data[1], 8.0f);
}
