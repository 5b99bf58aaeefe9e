#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageMoniker.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::CNuImageMoniker;
using Nu::EDataType;
using Nu::EPixelType;
using NuTest::ExpectRaises;

namespace {

constexpr char MonikerFile[] = "Nu.Core.Ex/NuImageMoniker.cpp";
constexpr char FormatFile[] = "Nu.Core.Ex/NuImageFormat.h";

class CInspectableMoniker : public CNuImageMoniker {
public:
  using CNuImageMoniker::CNuImageMoniker;
  CNuImageFormat const& RawFormat() const { return Format; }
  void const* RawData() const { return Data; }
};

void ExpectEmpty(CInspectableMoniker const& moniker) {
  EXPECT_EQ(moniker.RawData(), nullptr);
  EXPECT_EQ(moniker.RawFormat().Width, 0);
  EXPECT_EQ(moniker.RawFormat().Height, 0);
  EXPECT_EQ(moniker.RawFormat().DataType, EDataType::Void);
  EXPECT_EQ(moniker.RawFormat().PixelType, EPixelType::Void);
}

}  // namespace

TEST(NuImageMoniker, ViewsAnImageWithoutCopying) {
  CNuImage image;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  CInspectableMoniker moniker;
  EXPECT_TRUE(moniker.Create(image));
  EXPECT_EQ(moniker.GetDataPtr(), image.GetDataPtr());
  EXPECT_EQ(moniker.GetByteCount(), 48u);
  int pixelType = 0, dataType = 0;
  moniker.GetType(pixelType, dataType);
  EPixelType::ID pixelId;
  EDataType::ID dataId;
  moniker.GetType(pixelId, dataId);
  EXPECT_EQ(pixelType, EPixelType::RGB);
  EXPECT_EQ(dataType, EDataType::UByte);
  EXPECT_EQ(pixelId, pixelType);
  EXPECT_EQ(dataId, dataType);

  // A moniker is an IImage like any other: an image copies through it.
  CNuImage copy;
  ASSERT_TRUE(copy.Create(static_cast<Nu::IImage const*>(&moniker)));
  EXPECT_EQ(copy.GetByteCount(), 48u);
}

TEST(NuImageMoniker, DescribedThenValid) {
  CInspectableMoniker moniker;
  EXPECT_FALSE(moniker.IsValid());
  EXPECT_EQ(moniker.GetPixelCount(), 0u);
  EXPECT_EQ(moniker.GetByteCount(), 0u);
  EXPECT_TRUE(moniker.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  EXPECT_FALSE(moniker.IsValid());
  EXPECT_EQ(moniker.GetByteCount(), 48u);
  std::vector<unsigned char> memory(48);
  moniker.Set(memory.data());
  EXPECT_TRUE(moniker.IsValid());
  moniker.Set(nullptr);
  EXPECT_FALSE(moniker.IsValid());
  EXPECT_EQ(moniker.GetByteCount(), 48u);

  CInspectableMoniker bare;
  bare.Set(memory.data());  // valid with no format at all
  EXPECT_TRUE(bare.IsValid());
  EXPECT_EQ(bare.GetByteCount(), 0u);
}

TEST(NuImageMoniker, RefusalsReturnFalseAndEmpty) {
  std::vector<unsigned char> memory(48);
  CInspectableMoniker moniker(CNuImageFormat(4, 4, EPixelType::RGB, EDataType::UByte), memory.data());
  ASSERT_TRUE(moniker.IsValid());
  EXPECT_FALSE(moniker.Create(0, 4, EPixelType::RGB, EDataType::UByte, memory.data()));
  ExpectEmpty(moniker);
  EXPECT_FALSE(moniker.Create(4, 4, EPixelType::RGB, EDataType::Void, memory.data()));
  ExpectEmpty(moniker);
  EXPECT_FALSE(moniker.Create(4, 4, EPixelType::Void, EDataType::UByte, memory.data()));
  ExpectEmpty(moniker);

  // An invalid source leaves the moniker as it was: no Destroy runs first.
  ASSERT_TRUE(moniker.Create(2, 2, EPixelType::Lum, EDataType::UByte, memory.data()));
  CNuImage empty;
  EXPECT_FALSE(moniker.Create(static_cast<Nu::IImage const*>(&empty)));
  EXPECT_FALSE(moniker.Create(static_cast<Nu::IImage const*>(nullptr)));
  EXPECT_EQ(moniker.RawData(), memory.data());
  EXPECT_EQ(moniker.GetByteCount(), 4u);
}

TEST(NuImageMoniker, FormatRaisesPassBareAndLeaveTheRejectedFormat) {
  std::vector<unsigned char> memory(16);
  CInspectableMoniker moniker;
  ExpectRaises([&] { moniker.Create(8, 1, EPixelType::Lum, EDataType::Integral_5per4, memory.data()); },
               {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}});
  EXPECT_EQ(moniker.RawFormat().DataType, EDataType::Integral_5per4);
  EXPECT_EQ(moniker.RawData(), nullptr);
  ExpectRaises([&] { moniker.GetBytesPerPixel(); },
               {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}});
  ExpectRaises([&] { moniker.Create(1, 1, EPixelType::Lum, static_cast<EDataType::ID>(5127), memory.data()); },
               {{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}});
  ExpectRaises([&] { moniker.Create(1, 1, 99, EDataType::UByte, memory.data()); },
               {{"Unknown pixel type", "GetComponentCount", FormatFile}});

  // A moniker of an integral image cannot be made.
  CNuImage packed;
  ASSERT_TRUE(packed.Create(8, 1, EPixelType::Lum, EDataType::Integral_3per2));
  ExpectRaises([&] { moniker.Create(packed); },
               {{"Unable to determine bytes per pixel from integral data formats", "GetBytesPerPixel", FormatFile}});
}

TEST(NuImageMoniker, ThrowingFormsTurnFalseIntoARaise) {
  std::vector<unsigned char> memory(4);
  CNuImageMoniker moniker;
  auto const expected = {NuTest::ExpectedLevel{"Error creating image moniker", "Create", MonikerFile}};
  EXPECT_FALSE(moniker.Create(0, 1, EPixelType::Lum, EDataType::UByte, memory.data()));  // the virtual form
  ExpectRaises([&] { moniker.Create(0, 1, int{EPixelType::Lum}, int{EDataType::UByte}, memory.data()); }, expected);
  ExpectRaises([&] { moniker.Create(CNuImageFormat(1, 1, EPixelType::Lum, EDataType::Void), memory.data()); },
               expected);
  CNuImage empty;
  ExpectRaises([&] { moniker.Create(empty); }, expected);
  ExpectRaises([&] { CNuImageMoniker made(CNuImageFormat(), memory.data()); }, expected);
  EXPECT_TRUE(moniker.Create(2, 2, static_cast<int>(EPixelType::Lum), static_cast<int>(EDataType::UByte),
                             memory.data()));
}

TEST(NuImageMoniker, CopiesAreShallowAndMovesEmptyTheSource) {
  std::vector<unsigned char> memory(12, 3);
  CInspectableMoniker source(CNuImageFormat(2, 2, EPixelType::RGB, EDataType::UByte), memory.data());
  CInspectableMoniker copy(source);
  EXPECT_EQ(copy.RawData(), memory.data());
  CInspectableMoniker other(CNuImageFormat(1, 1, EPixelType::Lum, EDataType::UByte), memory.data() + 11);
  other = source;  // over a valid one: nothing released, no Destroy
  EXPECT_EQ(other.RawData(), memory.data());
  EXPECT_EQ(other.GetByteCount(), 12u);
  CInspectableMoniker moved(std::move(source));
  EXPECT_EQ(moved.RawData(), memory.data());
  ExpectEmpty(source);
  EXPECT_FALSE(source.IsValid());
  copy = std::move(moved);
  ExpectEmpty(moved);
  EXPECT_EQ(memory[0], 3);
  EXPECT_TRUE(copy.Destroy());
  ExpectEmpty(copy);
  EXPECT_EQ(memory[11], 3);
}
