// ConvertCustomType: every 16-bit word of both LSB forms against the reference, into another
// image and in place, and every refusal with its chain.
#include <Support/ConvertSamples.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

using Nu::CNuImage;
using namespace NuTest;
using P = Nu::EPixelType;
using D = Nu::EDataType;

namespace {
constexpr ExpectedLevel Outer = {"Error converting image custom data type", "ConvertCustomType", ImageFile};
constexpr ExpectedLevel InPlace = {"This image can't be converted in place", "ConvertCustomType", ImageFile};
}  // namespace

// Of an image of several channels only the first width * height words: pixels, not channels.
TEST(ConvertCustomType, EveryWordIntoAnotherImageAndInPlace) {
  for (D::ID type : {D::Custom_10in16_LSB, D::Custom_12in16_LSB}) {
    CNuImage src, trg;
    src.Create(256, 256, P::LumA, type);
    auto* words = static_cast<std::uint16_t*>(src.GetDataPtr());
    for (unsigned w = 0; w < 131072; ++w) words[w] = static_cast<std::uint16_t>(w ^ 0x1234u);
    std::vector<std::uint16_t> expected(words, words + 131072);
    for (unsigned w = 0; w < 65536; ++w) expected[w] = NuRef::WidenCustom(type, expected[w]);
    src.ConvertCustomType(trg);
    P::ID pixelType;
    D::ID dataType;
    trg.GetType(pixelType, dataType);
    auto const* out = static_cast<std::uint16_t const*>(trg.GetDataPtr());
    EXPECT_TRUE(pixelType == P::LumA && dataType == D::UShort && std::equal(out, out + 65536, expected.begin())) << type;
    src.ConvertCustomType(src);
    EXPECT_TRUE(src.GetDataPtr() == words && std::equal(words, words + 131072, expected.begin()));
    ExpectRaises([&] { src.ConvertCustomType(src); }, {Outer, InPlace});  // now UShort
  }
}

// Raised before Create: the target is untouched.
TEST(ConvertCustomType, RefusalsWithTheirMessages) {
  struct {
    int Type;
    char const* Name;
  } const cases[] = {{D::Custom_10in16_MSB, "Custom_10in16_MSB"}, {D::Custom_12in16_MSB, "Custom_12in16_MSB"},
                     {D::Void, "Void"}, {D::UShort, "UShort"}, {D::Byte, "Byte"}, {D::Double, "Double"}, {5128, "Unknown"}};
  std::uint16_t words[64] = {};
  for (auto const& c : cases) {
    CNuImage src, trg;
    src.CreateMoniker(Format(2, 2, P::Lum, c.Type), words, 0.0, 0);
    trg.Create(1, 1, P::RGB, D::UByte);
    void* const trgBefore = trg.GetDataPtr();
    std::string const message = std::string("This image hasn't a supported custom data type '") + c.Name + "'";
    ExpectRaises([&] { src.ConvertCustomType(trg); }, {Outer, {message.c_str(), "ConvertCustomType", ImageFile}});
    EXPECT_TRUE(trg.GetDataPtr() == trgBefore && trg.GetByteCount() == 3u) << c.Name;
    ExpectRaises([&] { src.ConvertCustomType(src); }, {Outer, InPlace});
  }
  // Two empty images have equal null pointers: in place.
  CNuImage empty, otherEmpty;
  ExpectRaises([&] { empty.ConvertCustomType(otherEmpty); }, {Outer, InPlace});
}

// What Create raises comes wrapped; a Create that refuses with false leaves the conversion to
// go on with the memory the target reports.
TEST(ConvertCustomType, WhatCreateDoes) {
  std::uint16_t words[4] = {1023, 1, 2, 3}, out[4] = {7, 7, 7, 7};
  CNuImage zeroWide, trg, src;
  zeroWide.CreateMoniker(Format(0, 4, P::Lum, D::Custom_10in16_LSB), words, 0.0, 0);
  ExpectRaises([&] { zeroWide.ConvertCustomType(trg); },
               {Outer, {"Error creating image", "Create", ImageFile}, {"Image width or height is 0", "Create", ImageFile}});
  struct CRefusingImage : CNuImage {
    bool Create(int, int, P::ID, D::ID, void const*) override { return false; }
  } refusing;
  refusing.CreateMoniker(Format(4, 1, P::Lum, D::UByte), out, 0.0, 0);
  src.CreateMoniker(Format(2, 1, P::Lum, D::Custom_10in16_LSB), words, 0.0, 0);
  src.ConvertCustomType(refusing);
  EXPECT_EQ(std::vector<std::uint16_t>(out, out + 4), (std::vector<std::uint16_t>{65535, 64, 7, 7}));
}
