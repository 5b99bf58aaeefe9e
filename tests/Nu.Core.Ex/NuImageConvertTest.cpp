// The layout rule and the dispatch, judged by the reference model through the library's
// exported run-time entries, and ConvertCustomType, which takes no part in them.
#include <Support/ConvertSamples.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

using Nu::CNuImage;
using namespace NuTest;
using P = Nu::EPixelType;
using D = Nu::EDataType;

namespace {

constexpr ExpectedLevel Wrap = {"Error converting image memory", "ConvertMemory", ImageFile};
constexpr ExpectedLevel Gate = {"Can only convert the data type of a bayer pixel type", "_ConvertTrgSwitch", ImageFile};
constexpr ExpectedLevel Outer = {"Error converting image custom data type", "ConvertCustomType", ImageFile};
constexpr ExpectedLevel InPlace = {"This image can't be converted in place", "ConvertCustomType", ImageFile};

class AllPairs : public ::testing::TestWithParam<int> {};

}  // namespace

// All 6,400 leaves through the 80 exported source switches: random pixels at lengths across the
// vector widths and the fused path's threshold, at shifted starts, with guard bytes around both
// runs, both sized for the LumA rule, which reads and writes count pixels beyond them. Then the
// public road once: the same bytes, or the Bayer gate's raise with nothing written. Overlapping
// runs (in place, or shifted against each other) give the reference's result element by element
// in the documented order on the same memory.
TEST_P(AllPairs, EveryLeafMatchesTheReferenceByteForByte) {
  STargetEntry const& target = AllTargets[GetParam()];
  unsigned const trgPixel = NuRef::PixelBytes(target.PixelType, target.DataType);
  unsigned const trgElement = NuRef::FindDataType(target.DataType)->Bytes;
  for (NuRef::SLayoutRow const& srcLayout : NuRef::Layouts) {
    for (NuRef::SDataRow const& srcData : NuRef::DataTypes) {
      SCOPED_TRACE(PairName(target.PixelType, target.DataType, srcLayout.Id, srcData.Id));
      unsigned const srcPixel = NuRef::PixelBytes(srcLayout.Id, srcData.Id);
      unsigned const counts[] = {0, 1, 2, 15, 16, 17, 63, 64, 65, 1031, 17};  // the last by the public road
      for (unsigned i = 0; i < std::size(counts); ++i) {
        unsigned const count = counts[i], shift = i + 1 == std::size(counts) ? 3 : 1 + i % 2;
        SCOPED_TRACE(testing::Message() << "count " << count << ", shift " << shift);
        std::mt19937_64 random(GetParam() * 100003u + srcLayout.Id * 31u + srcData.Id + count);
        SGuarded src(2 * count * srcPixel, srcData.Bytes, 0xA5, shift);
        FillRandom(src.Run(), 2 * count * srcPixel / srcData.Bytes, srcData.Id, random);
        std::vector<unsigned char> const srcBefore = src.Bytes;
        SGuarded trg(2 * count * trgPixel, trgElement, 0x5C, shift), expected = trg;
        NuRef::ConvertRun(target.PixelType, target.DataType, expected.Run(), srcLayout.Id, srcData.Id, src.Run(), count);
        Nu::CNuImageFormat const srcFormat = Format(count, 1, srcLayout.Id, srcData.Id);
        Nu::CNuImageFormat const trgFormat = Format(count, 1, target.PixelType, target.DataType);
        if (i + 1 < std::size(counts)) {
          EXPECT_TRUE(target.Call(src.Run(), srcFormat, trg.Run()));
        } else if (NuRef::IsBayer(target.PixelType) && srcLayout.Id != target.PixelType) {
          ExpectRaises([&] { CNuImage::ConvertMemory(trg.Run(), src.Run(), trgFormat, srcFormat); }, {Wrap, Gate});
          expected = SGuarded(2 * count * trgPixel, trgElement, 0x5C, shift);
        } else {
          EXPECT_TRUE(CNuImage::ConvertMemory(trg.Run(), src.Run(), trgFormat, srcFormat));
        }
        ASSERT_TRUE(SameBytes(trg.Bytes, expected.Bytes));
        ASSERT_EQ(src.Bytes, srcBefore);
      }
      std::size_t const count = 37, span = 2 * count * std::max(srcPixel, trgPixel);
      std::size_t const srcOffset = 64 + span / 8 * 8, half = count * srcPixel / 2 / 8 * 8;
      for (std::size_t trgOffset : {srcOffset, srcOffset - 8, srcOffset + 8, srcOffset + half, srcOffset - half}) {
        SCOPED_TRACE(testing::Message() << "overlap, target offset " << static_cast<long>(trgOffset - srcOffset));
        std::mt19937_64 random(GetParam() * 7u + srcLayout.Id + srcData.Id + trgOffset);
        std::vector<unsigned char> memory(2 * srcOffset + span + 64, 0);
        FillRandom(memory.data(), memory.size() / srcData.Bytes, srcData.Id, random);
        std::vector<unsigned char> expected = memory;
        NuRef::ConvertRun(target.PixelType, target.DataType, &expected[trgOffset], srcLayout.Id, srcData.Id, &expected[srcOffset], count);
        EXPECT_TRUE(target.Call(&memory[srcOffset], Format(count, 1, srcLayout.Id, srcData.Id), &memory[trgOffset]));
        ASSERT_TRUE(SameBytes(memory, expected));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, AllPairs, ::testing::Range(0, TargetCount),
                         [](::testing::TestParamInfo<int> const& info) { return std::string(AllTargets[info.param].Name); });

// The same format takes the shortcut first: one block copy of the format's byte count, for any
// format that has one, where unknown ids raise. Then target pixel type, Bayer gate (before any data
// type, whatever the count), target data type, source pixel type, source data type. Nothing is
// written unless pixels are converted.
TEST(ConversionDispatch, DecisionsInTheirOrderWithThreeOutcomes) {
  enum EOutcome { False, True, Copied, Gated, NoData, NoPixel };
  struct {
    int TrgPixel, TrgData, SrcPixel, SrcData, Width, Height;
    EOutcome Outcome;
  } const cases[] = {
      {6406, D::UByte, P::Bayer1, D::UByte, 2, 1, False},          {12345, 5128, 12345, 5127, 2, 1, False},
      {P::YCbCr, D::Double, P::RGB, D::Double, 2, 1, False},       {P::Void, D::UByte, P::Lum, D::UByte, 2, 1, False},
      {P::Bayer1, D::UByte, P::Lum, D::UByte, 2, 1, Gated},        {P::Bayer1, D::UByte, P::Bayer2, D::UByte, 0, 1, Gated},
      {P::Bayer4, D::Float, P::RGB, D::UByte, 2, 1, Gated},        {P::Bayer2, 5128, P::Bayer3, 5127, 0, 0, Gated},
      {P::Bayer3, 5128, 12345, 77, 2, 1, Gated},                   {P::Bayer4, D::Custom_10in16_LSB, P::YCbCr, D::Void, 2, 1, Gated},
      {P::RGB, 5128, 12345, 5127, 2, 1, False},                    {P::RGB, D::Void, P::RGB, D::UByte, 2, 1, False},
      {P::Lum, D::Custom_10in16_LSB, P::Lum, D::UByte, 2, 1, False}, {P::Bayer1, 5128, P::Bayer1, D::UByte, 2, 1, False},
      {P::RGB, D::UByte, 0, D::UByte, 2, 1, False},                {P::RGB, D::UByte, P::YCbCr, D::UByte, 2, 1, False},
      {P::RGB, D::UByte, P::RGB, 5127, 2, 1, False},               {P::RGB, D::UByte, P::RGB, D::Custom_10in16_LSB, 2, 1, False},
      {P::RGB, D::UByte, P::LumA, D::Integral_3per2, 2, 1, False}, {P::Bayer1, D::UByte, P::Bayer1, D::Custom_12in16_LSB, 2, 1, False},
      {P::Bayer1, D::Float, P::Bayer1, D::UByte, 2, 1, True},      {P::RGB, D::Float, P::Bayer3, D::UByte, 2, 1, True},
      {P::LumA, D::Byte, P::RGBA, D::UByte, 0, 5, True},           {P::LumA, D::Short, P::Lum, D::UByte, 65536, 65536, True},
      {P::Lum, 5128, P::Lum, 5128, 2, 1, NoData},                  {12345, D::UByte, 12345, D::UByte, 2, 1, NoPixel},
      {P::RGBA, D::Custom_10in16_LSB, P::RGBA, D::Custom_10in16_LSB, 3, 1, Copied}, {P::YCbCr, D::UShort, P::YCbCr, D::UShort, 5, 1, Copied},
      {12345, D::Integral_5per4, 12345, D::Integral_5per4, 8, 1, Copied}, {P::Lum, D::Void, P::Lum, D::Void, 3, 3, Copied},
      {P::Bayer2, D::Double, P::Bayer2, D::Double, 3, 1, Copied},  {P::RGB, D::UByte, P::RGB, D::UByte, 4, 5, Copied},
  };
  unsigned char src[64];
  for (int i = 0; i < 64; ++i) src[i] = static_cast<unsigned char>(i * 7 + 3);
  for (auto const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.TrgPixel << "/" << c.TrgData << " <- " << c.SrcPixel << "/" << c.SrcData << ", "
                                    << c.Width << " by " << c.Height);
    unsigned char trg[64];
    std::memset(trg, 0x77, sizeof trg);
    auto const trgFormat = Format(c.Width, c.Height, c.TrgPixel, c.TrgData), srcFormat = Format(c.Width, c.Height, c.SrcPixel, c.SrcData);
    auto const convert = [&] { return CNuImage::ConvertMemory(trg, src, trgFormat, srcFormat); };
    if (c.Outcome == Gated) ExpectRaises([&] { CNuImage::_ConvertTrgSwitch(trg, src, trgFormat, srcFormat); }, {Gate});
    if (c.Outcome < Gated) EXPECT_EQ(convert(), c.Outcome != False);
    else
      ExpectRaises(convert, {Wrap, c.Outcome == Gated    ? Gate
                                   : c.Outcome == NoData ? ExpectedLevel{"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}
                                                         : ExpectedLevel{"Unknown pixel type", "GetComponentCount", FormatFile}});
    std::vector<unsigned char> expected(64, 0x77);
    if (c.Outcome == Copied) std::copy_n(src, trgFormat.GetByteCount(), expected.begin());
    EXPECT_TRUE((c.Outcome == True && trgFormat.GetPixelCount() != 0) || std::equal(trg, trg + 64, expected.begin()));
  }
  unsigned char buffer[8] = {};  // the same source switch stands behind every target
  for (STargetEntry const& target : AllTargets)
    EXPECT_FALSE(target.Call(buffer, Format(2, 1, 12345, D::UByte), buffer) || target.Call(buffer, Format(2, 1, P::Lum, 5129), buffer));
  // Another width takes the road with the source's count, whatever the target's size.
  unsigned char trg[8] = {};
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(1, 1, P::Lum, D::UByte), Format(2, 2, P::Lum, D::UByte)));
  EXPECT_EQ(std::vector<unsigned char>(trg, trg + 5), (std::vector<unsigned char>{3, 10, 17, 24, 0}));
}

namespace {

// An IImage that records the order in which the road asks it things.
class CRecordingImage : public Nu::Interop::Runtime28::IImage {
public:
  mutable std::string Calls;
  bool Valid = true, CreateResult = true;
  CNuImage Image;
  template <class T>
  T Note(char const* call, T result) const { return Calls += call, result; }

  bool Create(int w, int h, P::ID p, D::ID d) override { return Note("Create ", CreateResult && Image.Create(w, h, p, d)); }
  bool Create(int, int, P::ID, D::ID, void const*) override { return Note("Create5 ", false); }
  bool Create(IImage const*) override { return Note("CreateCopy ", false); }
  bool Destroy() override { return Note("Destroy ", true); }
  bool IsValid() const override { return Note("IsValid ", Valid); }
  unsigned int GetBytesPerPixel() const override { return Note("GetBytesPerPixel ", 0u); }
  unsigned int GetPixelCount() const override { return Note("GetPixelCount ", 0u); }
  unsigned int GetByteCount() const override { return Note("GetByteCount ", 0u); }
  void GetSize(int& w, int& h) const override { Note("GetSize ", 0), Image.GetSize(w, h); }
  void GetType(P::ID& p, D::ID& d) const override { Note("GetType ", 0), Image.GetType(p, d); }
  void* GetDataPtr() override { return Note("GetDataPtr ", Image.GetDataPtr()); }
  void const* GetDataPtr() const override { return Note("GetDataPtrConst ", Image.GetDataPtr()); }
};

}  // namespace

TEST(ConvertType, StepsInTheirOrder) {
  struct {
    bool Valid, Create, CreateResult, Result;
    char const *Source, *Target;
  } const cases[] = {
      {true, true, true, true, "IsValid GetSize GetType GetDataPtrConst ", "Create GetDataPtr "},
      {true, false, true, true, "IsValid GetSize GetType GetDataPtrConst ", "GetDataPtr "},  // the target is asked nothing else
      {true, true, false, false, "IsValid GetSize GetType ", "Create "},
      {false, true, true, false, "IsValid ", ""},
  };
  for (auto const& c : cases) {
    CRecordingImage src, trg;
    src.Image.Create(3, 2, P::RGB, D::UByte);
    std::memset(src.Image.GetDataPtr(), 200, 18);
    trg.Image.Create(3, 2, P::Lum, D::Float);
    src.Valid = c.Valid;
    trg.CreateResult = c.CreateResult;
    EXPECT_EQ(CNuImage::ConvertType(&trg, &src, P::Lum, D::Float, c.Create), c.Result);
    EXPECT_TRUE(src.Calls == c.Source && trg.Calls == c.Target) << src.Calls << "| " << trg.Calls;
    EXPECT_TRUE(!c.Result || static_cast<float const*>(trg.Image.GetDataPtr())[5] == static_cast<float>(200 / 255.0));
  }
}

// A custom source reaches UShort only by ConvertCustomType, though the target is created by then;
// to its own format it is copied. What Create raises passes through unwrapped. The same image
// with the same byte count is converted in place in forward order, else into fresh memory.
TEST(ConvertType, OutcomesOnImages) {
  CNuImage empty, trg, custom, zeroWide, image;
  EXPECT_FALSE(empty.ConvertType(trg, P::RGB, D::UByte) || trg.IsValid());
  custom.Create(4, 4, P::Lum, D::Custom_10in16_LSB);
  std::memset(custom.GetDataPtr(), 1, custom.GetByteCount());
  EXPECT_FALSE(custom.ConvertType(trg, P::Lum, D::UShort));
  EXPECT_EQ(trg.GetByteCount(), 32u);
  EXPECT_TRUE(custom.ConvertType(trg, P::Lum, D::Custom_10in16_LSB));
  EXPECT_EQ(std::memcmp(trg.GetDataPtr(), custom.GetDataPtr(), 32), 0);
  unsigned char pixels[4] = {1, 2, 3, 4};
  zeroWide.CreateMoniker(Format(0, 4, P::Lum, D::UByte), pixels, 0.0, 0);
  ExpectRaises([&] { zeroWide.ConvertType(trg, P::RGB, D::UByte); },
               {{"Error creating image", "Create", ImageFile}, {"Image width or height is 0", "Create", ImageFile}});
  image.Create(5, 1, P::RGBA, D::UByte);
  auto* bytes = static_cast<unsigned char*>(image.GetDataPtr());
  for (int i = 0; i < 20; ++i) bytes[i] = static_cast<unsigned char>(10 * i + 1);
  std::vector<unsigned char> expected(bytes, bytes + 20);
  NuRef::ConvertRun(P::BGRA, D::UByte, expected.data(), P::RGBA, D::UByte, expected.data(), 5);
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(image.ConvertType(image, P::BGRA, D::UByte));
    EXPECT_TRUE(image.GetDataPtr() == bytes && std::vector<unsigned char>(bytes, bytes + 20) == expected);
  }
  EXPECT_TRUE(image.ConvertType(image, P::RGB, D::Double) && image.GetByteCount() == 120u);
}

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
