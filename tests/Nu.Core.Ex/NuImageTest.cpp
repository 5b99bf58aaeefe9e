// The format record, the owning image and the moniker.
#include <Support/ExceptionCheck.h>
#include <Support/ImageCheck.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

using namespace Nu;
using namespace NuTest;

// The binary layout: data type before pixel type.
static_assert(offsetof(CNuImageFormat, DataType) == 8 && offsetof(CNuImageFormat, PixelType) == 12);

TEST(NuImageFormat, ByteCountsWrapAt32BitsPackedTypesIgnoreThePixelTypeAndUnknownIdsRaiseDataTypeFirst) {
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
  for (int dataType : {5127, 5129, 5138, -1, 14}) {
    Chain const unknown = {{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}};
    ExpectRaises([&] { Format(1, 1, 1234, dataType).GetByteCount(); }, unknown);
    ExpectRaises([&] { Format(1, 1, 1234, dataType).GetBytesPerPixel(); }, unknown);
  }
  ExpectRaises([] { Format(0, 0, 6406, EDataType::Void).GetByteCount(); }, {{"Unknown pixel type", "GetComponentCount", FormatFile}});
}

TEST(NuImage, CreateKeepsBlockAndPixelsWhileTheByteCountStaysAndRaisesWrappedLeavingThemAlone) {
  CImage image;  // a byte count of 0, also one that wraps, allocates nothing
  EXPECT_TRUE(image.Create(65536, 65536, EPixelType::Lum, EDataType::UByte) && !image.IsValid());
  std::vector<unsigned char> const pixels(48, 7);
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte, pixels.data()));
  void const* block = image.RawData();
  ASSERT_TRUE(image.Create(12, 2, EPixelType::Lum, EDataType::UShort));
  std::pair<CNuImageFormat, ExpectedLevel> const bad[] = {
      {Format(0, 10, EPixelType::RGB, EDataType::UByte), {"Image width or height is 0", "Create", ImageFile}},
      {Format(10, -7, EPixelType::RGB, EDataType::UByte), {"Image width or height is 0", "Create", ImageFile}},
      {Format(1, 1, 1234, EDataType::UByte), {"Unknown pixel type", "GetComponentCount", FormatFile}},
      {Format(1, 1, 1234, 5128), {"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}}};
  for (auto const& request : bad)
    ExpectRaises([&] { image.Create(request.first); }, {{"Error creating image", "Create", ImageFile}, request.second});
  EXPECT_TRUE(image.RawData() == block && image.GetByteCount() == 48 && !std::memcmp(block, pixels.data(), 48));
  int foreign = 0;
  image.CreateMoniker(Format(1, 1, 77, EDataType::UByte), &foreign, 0, 0);  // a bad present format
  ExpectRaises([&] { image.Create(1, 1, EPixelType::Lum, EDataType::UByte); }, {{"Error creating image", "Create", ImageFile}, bad[2].second});
}

TEST(NuImage, CopiesOwnTheirPixelsMovesAndSwapsCarryEverythingAndASelfMoveEmpties) {
  std::vector<unsigned char> foreign(12, 7);
  CImage source, assigned;
  source.CreateMoniker(Format(2, 2, EPixelType::RGB, EDataType::UByte), foreign.data(), 2.5, 9u);
  CImage const copy(source);
  assigned = copy;
  for (CImage const* image : {&copy, static_cast<CImage const*>(&assigned)})
    EXPECT_TRUE(!image->Borrows() && image->Tag() == 9u && image->Value() == 2.5 && image->RawData() != foreign.data() &&
                !std::memcmp(image->GetDataPtr(), foreign.data(), 12));
  void const* block = assigned.RawData();
  Chain const invalid = {{"Error creating image copy", "Create", ImageFile}, {"Given image is invalid", "Create", ImageFile}};
  CImage const empty;
  ExpectRaises([&] { assigned = empty; }, invalid);
  ExpectRaises([&] { assigned.Create(static_cast<IImage const*>(nullptr)); }, invalid);
  EXPECT_EQ(assigned.RawData(), block);
  source.CreateMoniker(Format(1, 1, 5, EDataType::UByte), foreign.data(), 0, 0);
  ExpectRaises([&] { CNuImage{source}; }, {{"Error creating image copy", "Create", ImageFile},
                                          {"Error creating image", "Create", ImageFile},
                                          {"Unknown pixel type", "GetComponentCount", FormatFile}});
  // Borrowed memory is written, never freed; moves and Swap carry block, borrowing, tag and value.
  foreign.assign(48, 5);
  CImage image, other;
  image.CreateMoniker(Format(4, 4, EPixelType::RGB, EDataType::UByte), foreign.data(), 1.5, 3u);
  ASSERT_TRUE(image.Create(16, 1, EPixelType::RGB, EDataType::UByte, std::vector<unsigned char>(48, 9).data()));
  EXPECT_TRUE(image.Borrows() && image.Tag() == 3u && foreign[47] == 9);  // written, still borrowed
  ASSERT_TRUE(other.Create(3, 1, EPixelType::RGB, EDataType::Short));
  block = other.RawData();
  image.Swap(other);  // `image` borrows, so the pointer handed to `other` stays good
  EXPECT_TRUE(image.RawData() == block && !image.Borrows() && image.GetByteCount() == 18u);
  EXPECT_TRUE(other.RawData() == foreign.data() && other.Borrows() && other.Tag() == 3u && other.Value() == 1.5);
  CImage moved(std::move(image));
  other = std::move(moved);
  EXPECT_TRUE(image.IsEmpty() && other.RawData() == block && !other.Borrows() && moved.IsEmpty());
  CImage& alias = other;
  other = std::move(alias);
  EXPECT_TRUE(other.IsEmpty());
}

template <class TPixel>
class PixelAccess : public testing::Test {};
#define NU_PIXEL_TYPE_(L, C, A, R, G, B, Al, D, E) , NU_TPIXEL(L, C, A, R, G, B, Al, D, E)
using AllPixels = testing::Types<TPixelOf<EPixelType::RGBA, EDataType::Byte> NU_ALL_PIXELS(NU_PIXEL_TYPE_)>;
#undef NU_PIXEL_TYPE_
TYPED_TEST_SUITE(PixelAccess, AllPixels);

// Every overload copies the pixel's bytes at Data + (y * width + x) pixels; x may run into the next row.
TYPED_TEST(PixelAccess, CopiesBytesAtTheAddressOfItsCoordinates) {
  constexpr unsigned int size = sizeof(TypeParam);
  CNuImage image;
  ASSERT_TRUE(image.Create(Format(5, 3, TypeParam::PixelTypeId, TypeParam::DataTypeId)));
  auto* bytes = static_cast<unsigned char*>(image.GetDataPtr());
  for (unsigned int i = 0; i < 15 * size; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + 1);
  TypeParam pixel;
  image.GetPixel(pixel, 6, 1);
  image.SetPixel(pixel, 4, 2);
  EXPECT_TRUE(!std::memcmp(&pixel, bytes + 11 * size, size) && !std::memcmp(bytes + 14 * size, bytes + 11 * size, size));
}

TEST(NuImageSet, CopiesIntoAnOwnBlockOnlyAlwaysReturnsFalseAndSetZeroClearsAnyMemory) {
  unsigned char const bytes[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  CNuImage packed, borrowing;
  ASSERT_TRUE(packed.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4));
  EXPECT_FALSE(packed.Set(bytes) || CNuImage().Set(bytes) || std::memcmp(packed.GetDataPtr(), bytes, 10));
  std::vector<unsigned char> foreign(13, 0xEE);
  borrowing.CreateMoniker(Format(3, 2, EPixelType::LumA, 5129), foreign.data(), 0, 0);
  EXPECT_FALSE(borrowing.Set(bytes));  // refused before its unknown format is asked for a size
  borrowing.CreateMoniker(Format(3, 2, EPixelType::LumA, EDataType::UByte), foreign.data(), 0, 0);
  borrowing.SetZero();
  EXPECT_EQ(foreign, (std::vector<unsigned char>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xEE}));
  ExpectedLevel const zero{"Error setting image to zero", "SetZero", ImageFile};
  ExpectRaises([] { CNuImage().SetZero(); }, {zero, {"This image is invalid", "SetZero", ImageFile}});
  // Only a derived class can give an own block an unknown format: Set raises bare, SetZero wraps.
  struct CCorrupt : CNuImage {
    void Corrupt() { Format.PixelType = static_cast<EPixelType::ID>(6406); }
  } image;
  ASSERT_TRUE(image.Create(2, 2, EPixelType::Lum, EDataType::UByte));
  image.Corrupt();
  ExpectedLevel const unknown{"Unknown pixel type", "GetComponentCount", FormatFile};
  ExpectRaises([&] { image.Set(bytes); }, {unknown});
  ExpectRaises([&] { image.SetZero(); }, {zero, unknown});
}

TEST(NuImageNormalize, StretchesLumFloatWithSeedsAsInnerLimitsRereadingTheVirtualPixelCount) {
  float const nan = std::numeric_limits<float>::quiet_NaN();
  std::pair<std::vector<float>, std::vector<float>> const cases[] = {
      {{2, 4, 6}, {0, 0.5f, 1}}, {{1, nan, 3}, {0, nan, 1}}, {{2e9f, 3e9f}, {0.5f, 1}}, {{-3e9f, -2e9f}, {0, 0.5f}},
      {{3, 3, 3}, {3, 3, 3}},    {{1e-10f, 2e-10f}, {1e-10f, 2e-10f}}};  // no range: untouched, still true
  for (auto const& [pixels, expected] : cases) {
    CNuImage image;
    ASSERT_TRUE(image.Create(static_cast<int>(pixels.size()), 1, EPixelType::Lum, EDataType::Float, pixels.data()));
    EXPECT_TRUE(image.Normalize() && !std::memcmp(image.GetDataPtr(), expected.data(), 4 * pixels.size()))
        << testing::PrintToString(pixels);
  }
  EXPECT_FALSE(CNuImage(Format(2, 1, EPixelType::Lum, EDataType::Double)).Normalize() ||
               CNuImage(Format(2, 1, EPixelType::LumA, EDataType::Float)).Normalize());
  // The first pass sees pixels 0 and 1 (bounds 4, 3, 2): range 0..8. The second sees pixel 0 only.
  struct CShrinking : CNuImage {
    mutable unsigned int Queries = 0;
    unsigned int GetPixelCount() const override { return CNuImage::GetPixelCount() - std::min(Queries++, 4u); }
  } image;
  float const pixels[4] = {0, 8, 4, 2};
  ASSERT_TRUE(image.Create(4, 1, EPixelType::Lum, EDataType::Float, pixels));
  EXPECT_TRUE(image.Normalize() && static_cast<float const*>(image.GetDataPtr())[1] == 8.0f);
}

TEST(NuImageMoniker, ViewsWithoutCopyingRefusesWithFalseOrARaiseAndLetsFormatRaisesPassBare) {
  std::vector<unsigned char> memory(48);
  Chain const raised = {{"Error creating image moniker", "Create", MonikerFile}};
  for (CNuImageFormat const& f : {Format(0, 4, EPixelType::RGB, EDataType::UByte), Format(4, 4, EPixelType::RGB, EDataType::Void),
                                  Format(4, 4, EPixelType::Void, EDataType::UByte)}) {
    CMoniker moniker(Format(4, 4, EPixelType::RGB, EDataType::UByte), memory.data());
    EXPECT_FALSE(moniker.Create(f.Width, f.Height, f.PixelType, f.DataType, memory.data()) || !moniker.IsEmpty());
    ExpectRaises([&] { moniker.Create(f.Width, f.Height, int{f.PixelType}, int{f.DataType}, memory.data()); }, raised);
    ExpectRaises([&] { moniker.Create(f, memory.data()); }, raised);
  }
  CNuImage image, copy;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  CMoniker moniker;
  EXPECT_TRUE(moniker.Create(image));  // a view, no copy
  ASSERT_TRUE(copy.Create(static_cast<IImage const*>(&moniker)));
  EXPECT_TRUE(moniker.RawData() == image.GetDataPtr() && copy.GetByteCount() == 48u);
  CNuImage const empty;
  EXPECT_FALSE(moniker.Create(static_cast<IImage const*>(&empty)));  // refused before anything changes
  ExpectRaises([&] { moniker.Create(empty); }, raised);
  CMoniker moved(std::move(moniker));
  EXPECT_TRUE(moniker.IsEmpty() && moved.RawData() == image.GetDataPtr() && moved.GetByteCount() == 48u);
  moniker = moved;
  moved.Destroy();
  EXPECT_TRUE(moved.IsEmpty() && moniker.RawData() == image.GetDataPtr() && image.IsValid());
  // Unlike the image, the moniker lets the format's raise out bare and keeps the rejected format.
  Chain const integral = {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}};
  ExpectRaises([&] { moved.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4, memory.data()); }, integral);
  ExpectRaises([&] { moved.GetBytesPerPixel(); }, integral);
  EXPECT_EQ(moved.RawData(), nullptr);
}
