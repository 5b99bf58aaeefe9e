// ConvertCustomType: every 16-bit word of both LSB forms against the reference, in
// place and out of place, and every failure with its chain.
#include <Nu.Core.Ex/NuImage.h>

#include <Reference/ConvertReference.h>
#include <Support/ConvertTargets.h>
#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using Nu::CNuImage;
using Nu::EDataType;
using Nu::EPixelType;
using NuTest::ExpectRaises;
using NuTest::Format;

namespace {

constexpr char ImageFile[] = "Nu.Core.Ex/NuImage.cpp";
constexpr char Outer[] = "Error converting image custom data type";

CNuImage AllWords(EDataType::ID dataType) {
  CNuImage image;
  image.Create(256, 256, EPixelType::Lum, dataType);
  auto* words = static_cast<std::uint16_t*>(image.GetDataPtr());
  for (unsigned w = 0; w < 65536; ++w) words[w] = static_cast<std::uint16_t>(w);
  return image;
}

}  // namespace

TEST(ConvertCustomType, EveryWordOfBothFormsOutOfPlaceAndInPlace) {
  for (EDataType::ID type : {EDataType::Custom_10in16_LSB, EDataType::Custom_12in16_LSB}) {
    SCOPED_TRACE(std::to_string(type));
    CNuImage const src = AllWords(type);
    CNuImage trg;
    src.ConvertCustomType(trg);
    EPixelType::ID pixelType;
    EDataType::ID dataType;
    trg.GetType(pixelType, dataType);
    EXPECT_EQ(dataType, EDataType::UShort);
    EXPECT_EQ(pixelType, EPixelType::Lum);
    auto const* out = static_cast<std::uint16_t const*>(trg.GetDataPtr());
    for (unsigned w = 0; w < 65536; ++w)
      ASSERT_EQ(out[w], NuRef::WidenCustom(type, static_cast<std::uint16_t>(w))) << "word " << w;

    CNuImage self = AllWords(type);
    void* const before = self.GetDataPtr();
    self.ConvertCustomType(self);
    EXPECT_EQ(self.GetDataPtr(), before);
    EXPECT_EQ(std::memcmp(self.GetDataPtr(), trg.GetDataPtr(), 131072), 0);
    // Now UShort with the same pointers: the second call is refused as in place.
    ExpectRaises([&] { self.ConvertCustomType(self); },
                 {{Outer, "ConvertCustomType", ImageFile}, {"This image can't be converted in place", "ConvertCustomType", ImageFile}});
  }
}

TEST(ConvertCustomType, DocumentedWords) {
  CNuImage image;
  image.Create(4, 1, EPixelType::Bayer2, EDataType::Custom_10in16_LSB);
  std::uint16_t const words[4] = {617, 1024, 65535, 341};
  std::memcpy(image.GetDataPtr(), words, 8);
  CNuImage trg;
  image.ConvertCustomType(trg);
  auto const* out = static_cast<std::uint16_t const*>(trg.GetDataPtr());
  EXPECT_EQ(out[0], 39526);
  EXPECT_EQ(out[1], 63);
  EXPECT_EQ(out[2], 3972);
  EXPECT_EQ(out[3], 21845);
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  trg.GetType(pixelType, dataType);
  EXPECT_EQ(pixelType, EPixelType::Bayer2);
}

TEST(ConvertCustomType, CountsPixelsNotChannels) {
  CNuImage image;
  image.Create(3, 2, EPixelType::RGB, EDataType::Custom_12in16_LSB);
  auto* words = static_cast<std::uint16_t*>(image.GetDataPtr());
  for (int i = 0; i < 18; ++i) words[i] = static_cast<std::uint16_t>(4095 - i);
  image.ConvertCustomType(image);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(words[i], NuRef::WidenCustom(12, static_cast<std::uint16_t>(4095 - i))) << i;
  for (int i = 6; i < 18; ++i) EXPECT_EQ(words[i], 4095 - i) << i;
}

TEST(ConvertCustomType, RefusalsWithTheirMessages) {
  char const* const names[] = {"Custom_10in16_MSB", "Custom_12in16_MSB", "Void", "UShort", "Byte", "Double", "Unknown"};
  int const types[] = {EDataType::Custom_10in16_MSB, EDataType::Custom_12in16_MSB, EDataType::Void, EDataType::UShort,
                       EDataType::Byte, EDataType::Double, 5128};
  std::uint16_t words[64] = {};
  for (int i = 0; i < 7; ++i) {
    SCOPED_TRACE(names[i]);
    CNuImage src;
    src.CreateMoniker(Format(2, 2, EPixelType::Lum, types[i]), words, 0.0, 0);
    CNuImage trg;
    trg.Create(1, 1, EPixelType::RGB, EDataType::UByte);
    void* const trgBefore = trg.GetDataPtr();
    std::string const message = std::string("This image hasn't a supported custom data type '") + names[i] + "'";
    ExpectRaises([&] { src.ConvertCustomType(trg); },
                 {{Outer, "ConvertCustomType", ImageFile}, {message.c_str(), "ConvertCustomType", ImageFile}});
    EXPECT_EQ(trg.GetDataPtr(), trgBefore);  // raised before Create: target untouched
    EXPECT_EQ(trg.GetByteCount(), 3u);
    ExpectRaises([&] { src.ConvertCustomType(src); },
                 {{Outer, "ConvertCustomType", ImageFile}, {"This image can't be converted in place", "ConvertCustomType", ImageFile}});
  }
  // Two empty images: equal null pointers, so the in-place message; an empty source into an
  // image with memory names 'Void'.
  CNuImage empty;
  CNuImage otherEmpty;
  ExpectRaises([&] { empty.ConvertCustomType(otherEmpty); },
               {{Outer, "ConvertCustomType", ImageFile}, {"This image can't be converted in place", "ConvertCustomType", ImageFile}});
  CNuImage withMemory;
  withMemory.Create(1, 1, EPixelType::Lum, EDataType::UByte);
  ExpectRaises([&] { empty.ConvertCustomType(withMemory); },
               {{Outer, "ConvertCustomType", ImageFile},
                {"This image hasn't a supported custom data type 'Void'", "ConvertCustomType", ImageFile}});
}

TEST(ConvertCustomType, CreateFailuresAndRefusals) {
  std::uint16_t words[4] = {1023, 1, 2, 3};
  CNuImage zeroWide;
  zeroWide.CreateMoniker(Format(0, 4, EPixelType::Lum, EDataType::Custom_10in16_LSB), words, 0.0, 0);
  CNuImage trg;
  ExpectRaises([&] { zeroWide.ConvertCustomType(trg); },
               {{Outer, "ConvertCustomType", ImageFile},
                {"Error creating image", "Create", ImageFile},
                {"Image width or height is 0", "Create", ImageFile}});

  // A target whose Create refuses with false: the conversion goes on with the memory it reports.
  class CRefusingImage : public CNuImage {
  public:
    bool Create(int, int, EPixelType::ID, EDataType::ID, void const*) override { return false; }
  };
  std::uint16_t out[4] = {7, 7, 7, 7};
  CRefusingImage refusing;
  refusing.CreateMoniker(Format(4, 1, EPixelType::Lum, EDataType::UByte), out, 0.0, 0);
  CNuImage src;
  src.CreateMoniker(Format(2, 1, EPixelType::Lum, EDataType::Custom_10in16_LSB), words, 0.0, 0);
  src.ConvertCustomType(refusing);
  EXPECT_EQ(out[0], 65535);
  EXPECT_EQ(out[1], 64);
  EXPECT_EQ(out[2], 7);
}
