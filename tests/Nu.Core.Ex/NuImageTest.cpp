#include <Nu.Core.Ex/NuImage.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <numeric>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;
using NuTest::ExpectRaises;

namespace {

constexpr char ImageFile[] = "Nu.Core.Ex/NuImage.cpp";
constexpr char FormatFile[] = "Nu.Core.Ex/NuImageFormat.h";

// Exposes the protected members so that the state table can be checked directly.
class CInspectableImage : public CNuImage {
public:
  using CNuImage::CNuImage;
  CNuImageFormat const& RawFormat() const { return Format; }
  void const* RawData() const { return Data; }
  unsigned int Tag() const { return AttachedTag; }
  double Value() const { return AttachedValue; }
  bool Borrows() const { return IsMoniker; }
};

void ExpectEmpty(CInspectableImage const& image) {
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.RawData(), nullptr);
  EXPECT_EQ(image.RawFormat().Width, 0);
  EXPECT_EQ(image.RawFormat().Height, 0);
  EXPECT_EQ(image.RawFormat().DataType, EDataType::Void);
  EXPECT_EQ(image.RawFormat().PixelType, EPixelType::Void);
  EXPECT_EQ(image.Tag(), 0u);
  EXPECT_EQ(image.Value(), 0.0);
  EXPECT_FALSE(image.Borrows());
}

void Fill(CNuImage& image, unsigned char first = 1) {
  auto* bytes = static_cast<unsigned char*>(image.GetDataPtr());
  for (unsigned int i = 0; i < image.GetByteCount(); ++i) bytes[i] = static_cast<unsigned char>(first + i);
}

}  // namespace

TEST(NuImage, DefaultIsEmpty) {
  CInspectableImage const image;
  ExpectEmpty(image);
  EXPECT_EQ(image.GetPixelCount(), 0u);
  EXPECT_EQ(image.GetByteCount(), 0u);
  EXPECT_EQ(image.GetBytesPerPixel(), 0u);
  int width = -1, height = -1;
  image.GetSize(width, height);
  EXPECT_EQ(width, 0);
  EXPECT_EQ(height, 0);
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  image.GetType(pixelType, dataType);
  EXPECT_EQ(pixelType, EPixelType::Void);
  EXPECT_EQ(dataType, EDataType::Void);
}

TEST(NuImage, CreateReusesTheBlockWhenTheByteCountStays) {
  CInspectableImage image;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  void const* block = image.RawData();
  Fill(image);
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  EXPECT_EQ(image.RawData(), block);
  ASSERT_TRUE(image.Create(8, 2, EPixelType::RGB, EDataType::UByte));
  EXPECT_EQ(image.RawData(), block);
  EXPECT_EQ(static_cast<unsigned char const*>(image.GetDataPtr())[47], 48);
  ASSERT_TRUE(image.Create(16, 3, EPixelType::Lum, EDataType::UByte));
  EXPECT_EQ(image.RawData(), block);
  int width, height;
  image.GetSize(width, height);
  EXPECT_EQ(width, 16);
  EXPECT_EQ(height, 3);
}

TEST(NuImage, CreateCopiesGivenData) {
  std::vector<std::uint16_t> pixels(2 * 3 * 4);
  std::iota(pixels.begin(), pixels.end(), 100);
  CNuImage image;
  ASSERT_TRUE(image.Create(2, 3, EPixelType::BGRA, EDataType::UShort, pixels.data()));
  EXPECT_EQ(image.GetByteCount(), 48u);
  EXPECT_EQ(std::memcmp(image.GetDataPtr(), pixels.data(), 48), 0);
  EXPECT_NE(image.GetDataPtr(), static_cast<void*>(pixels.data()));
}

TEST(NuImage, ByteCountZeroGivesASizedImageWithoutMemory) {
  CInspectableImage image;
  EXPECT_TRUE(image.Create(2, 2, EPixelType::Lum, EDataType::Void));
  EXPECT_FALSE(image.IsValid());
  int width, height;
  image.GetSize(width, height);
  EXPECT_EQ(width, 2);
  EXPECT_EQ(height, 2);
  // 65536 x 65536 bytes wrap to 0: no allocation, no failure.
  EXPECT_TRUE(image.Create(65536, 65536, EPixelType::Lum, EDataType::UByte));
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetPixelCount(), 0u);
}

TEST(NuImage, IntegralTypesSizeTheBlockFromTheWholeImage) {
  CNuImage image;
  ASSERT_TRUE(image.Create(8, 1, static_cast<EPixelType::ID>(4242), EDataType::Integral_5per4));
  EXPECT_EQ(image.GetByteCount(), 10u);
  ExpectRaises([&] { image.GetBytesPerPixel(); },
               {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}});
  ASSERT_TRUE(image.Create(8, 1, EPixelType::RGB, EDataType::Integral_3per2));
  EXPECT_EQ(image.GetByteCount(), 12u);
}

TEST(NuImage, BadSizeRaisesAndKeepsTheImage) {
  CInspectableImage image;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  Fill(image);
  void const* block = image.RawData();
  for (auto const& size : {std::pair{0, 10}, {-1, 10}, {10, 0}, {3, -7}}) {
    ExpectRaises([&] { image.Create(size.first, size.second, EPixelType::RGB, EDataType::UByte); },
                 {{"Error creating image", "Create", ImageFile},
                  {"Image width or height is 0", "Create", ImageFile}});
  }
  EXPECT_EQ(image.RawData(), block);
  EXPECT_EQ(image.GetByteCount(), 48u);
  EXPECT_EQ(static_cast<unsigned char const*>(image.GetDataPtr())[0], 1);
}

TEST(NuImage, UnknownIdsRaiseInsideTheWrapAndChangeNothing) {
  CInspectableImage image;
  ExpectRaises([&] { image.Create(1, 1, static_cast<EPixelType::ID>(1234), EDataType::UByte); },
               {{"Error creating image", "Create", ImageFile}, {"Unknown pixel type", "GetComponentCount", FormatFile}});
  ExpectEmpty(image);
  ExpectRaises([&] { image.Create(1, 1, static_cast<EPixelType::ID>(1234), static_cast<EDataType::ID>(5128)); },
               {{"Error creating image", "Create", ImageFile},
                {"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}});
  ExpectEmpty(image);

  // A bad present format fails even a good request.
  int foreign = 0;
  image.CreateMoniker(CNuImageFormat(1, 1, static_cast<EPixelType::ID>(77), EDataType::UByte), &foreign, 0, 0);
  ExpectRaises([&] { image.Create(1, 1, EPixelType::Lum, EDataType::UByte); },
               {{"Error creating image", "Create", ImageFile}, {"Unknown pixel type", "GetComponentCount", FormatFile}});
  EXPECT_EQ(image.RawData(), &foreign);
  EXPECT_TRUE(image.Borrows());
}

TEST(NuImage, CopyOwnsItsPixelsAndCarriesTagAndValue) {
  std::vector<unsigned char> foreign(12, 7);
  CInspectableImage source;
  source.CreateMoniker(CNuImageFormat(2, 2, EPixelType::RGB, EDataType::UByte), foreign.data(), 2.5, 9u);
  CInspectableImage copy(source);
  EXPECT_TRUE(copy.IsValid());
  EXPECT_FALSE(copy.Borrows());
  EXPECT_NE(copy.RawData(), foreign.data());
  EXPECT_EQ(copy.Tag(), 9u);
  EXPECT_EQ(copy.Value(), 2.5);
  EXPECT_EQ(std::memcmp(copy.GetDataPtr(), foreign.data(), 12), 0);

  CInspectableImage assigned;
  assigned = copy;
  EXPECT_EQ(std::memcmp(assigned.GetDataPtr(), foreign.data(), 12), 0);
  EXPECT_NE(assigned.RawData(), copy.RawData());

  void const* block = assigned.RawData();
  assigned = static_cast<CInspectableImage const&>(assigned);
  EXPECT_EQ(assigned.RawData(), block);
  EXPECT_EQ(static_cast<unsigned char const*>(assigned.GetDataPtr())[11], 7);
}

TEST(NuImage, CopyOfAnImageWithoutMemoryRaises) {
  CInspectableImage empty;
  ExpectRaises([&] { CNuImage copy(empty); },
               {{"Error creating image copy", "Create", ImageFile}, {"Given image is invalid", "Create", ImageFile}});
  CInspectableImage target;
  ASSERT_TRUE(target.Create(2, 2, EPixelType::Lum, EDataType::UByte));
  void const* block = target.RawData();
  ExpectRaises([&] { target = empty; },
               {{"Error creating image copy", "Create", ImageFile}, {"Given image is invalid", "Create", ImageFile}});
  EXPECT_EQ(target.RawData(), block);
  ExpectRaises([&] { target.Create(static_cast<Nu::IImage const*>(nullptr)); },
               {{"Error creating image copy", "Create", ImageFile}, {"Given image is invalid", "Create", ImageFile}});
}

TEST(NuImage, CopyOfABadFormatRaisesThreeLevels) {
  int foreign = 0;
  CNuImage source;
  source.CreateMoniker(CNuImageFormat(1, 1, static_cast<EPixelType::ID>(5), EDataType::UByte), &foreign, 0, 0);
  CNuImage target;
  ExpectRaises([&] { target.Create(source); },
               {{"Error creating image copy", "Create", ImageFile},
                {"Error creating image", "Create", ImageFile},
                {"Unknown pixel type", "GetComponentCount", FormatFile}});
}

TEST(NuImage, MoveTakesTheBlockAndEmptiesTheSource) {
  CInspectableImage source;
  ASSERT_TRUE(source.Create(3, 3, EPixelType::LumA, EDataType::Float));
  void const* block = source.RawData();
  CInspectableImage moved(std::move(source));
  EXPECT_EQ(moved.RawData(), block);
  ExpectEmpty(source);
  CInspectableImage assigned;
  ASSERT_TRUE(assigned.Create(1, 1, EPixelType::Lum, EDataType::UByte));
  assigned = std::move(moved);
  EXPECT_EQ(assigned.RawData(), block);
  ExpectEmpty(moved);
  // A self-move empties the image and releases its block, by design.
  CInspectableImage& alias = assigned;
  assigned = std::move(alias);
  ExpectEmpty(assigned);
  CInspectableImage empty;
  CInspectableImage fromEmpty(std::move(empty));
  ExpectEmpty(fromEmpty);
}

TEST(NuImage, BorrowingImageStatesAndTransitions) {
  std::vector<unsigned char> foreign(48, 5);
  CInspectableImage image;
  image.CreateMoniker(CNuImageFormat(4, 4, EPixelType::RGB, EDataType::UByte), foreign.data(), 1.5, 3u);
  EXPECT_TRUE(image.IsValid());
  EXPECT_TRUE(image.Borrows());
  // Equal byte count: still borrowing, data copied into the foreign memory.
  std::vector<unsigned char> fresh(48, 9);
  ASSERT_TRUE(image.Create(16, 1, EPixelType::RGB, EDataType::UByte, fresh.data()));
  EXPECT_TRUE(image.Borrows());
  EXPECT_EQ(image.RawData(), foreign.data());
  EXPECT_EQ(foreign[47], 9);
  EXPECT_EQ(image.Tag(), 3u);
  // Another byte count: an own block; the foreign memory is left alone.
  ASSERT_TRUE(image.Create(2, 2, EPixelType::RGB, EDataType::UByte));
  EXPECT_FALSE(image.Borrows());
  EXPECT_NE(image.RawData(), foreign.data());
  EXPECT_EQ(foreign[0], 9);
  image.Destroy();
  ExpectEmpty(image);

  // A null borrowed pointer: format set, not valid; an equal-size Create keeps Data null.
  image.CreateMoniker(CNuImageFormat(4, 4, EPixelType::RGB, EDataType::UByte), nullptr, 0, 0);
  EXPECT_FALSE(image.IsValid());
  EXPECT_TRUE(image.Borrows());
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  EXPECT_EQ(image.RawData(), nullptr);
  EXPECT_TRUE(image.Destroy());
  EXPECT_TRUE(image.Destroy());
}

TEST(NuImage, SwapKeepsItsHistoricOrder) {
  std::vector<unsigned char> foreign(4, 1);
  CInspectableImage borrowing;
  borrowing.CreateMoniker(CNuImageFormat(2, 2, EPixelType::Lum, EDataType::UByte), foreign.data(), 0.5, 1u);
  CInspectableImage owning;
  ASSERT_TRUE(owning.Create(3, 1, EPixelType::RGB, EDataType::Short));
  void const* block = owning.RawData();
  // This image borrows, so the pointer handed to `owning` stays good.
  borrowing.Swap(owning);
  EXPECT_EQ(borrowing.RawData(), block);
  EXPECT_FALSE(borrowing.Borrows());
  EXPECT_EQ(borrowing.GetByteCount(), 18u);
  EXPECT_EQ(owning.RawData(), foreign.data());
  EXPECT_TRUE(owning.Borrows());
  EXPECT_EQ(owning.Tag(), 1u);
  EXPECT_EQ(owning.Value(), 0.5);

  CInspectableImage empty;
  empty.Swap(borrowing);
  EXPECT_EQ(empty.RawData(), block);
  ExpectEmpty(borrowing);
}
