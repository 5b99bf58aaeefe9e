// Layout rule, dispatch and Bayer gate, judged by the reference model
// (tests/Reference) through the library's exported run-time entries.
#include <Nu.Core.Ex/NuImage.h>

#include <Reference/ConvertReference.h>
#include <Support/ConvertSamples.h>
#include <Support/ConvertTargets.h>
#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;
using NuTest::ExpectRaises;
using NuTest::FillRandom;
using NuTest::Format;
using NuTest::SGuarded;

namespace {

constexpr char ImageFile[] = "Nu.Core.Ex/NuImage.cpp";
constexpr char FormatFile[] = "Nu.Core.Ex/NuImageFormat.h";
constexpr char BayerGate[] = "Can only convert the data type of a bayer pixel type";

std::string PairName(int trgPixel, int trgData, int srcPixel, int srcData) {
  return std::string(NuRef::FindLayout(trgPixel)->Name) + "/" + NuRef::FindDataType(trgData)->Name +
         " <- " + NuRef::FindLayout(srcPixel)->Name + "/" + NuRef::FindDataType(srcData)->Name;
}

class AllPairs : public ::testing::TestWithParam<int> {};

}  // namespace

// All 6,400 _Convert leaves, through the 80 exported source switches: a run of random pixels
// with guard bytes around both buffers, compared byte for byte with the reference, guards and
// the unwritten parts of the LumA rule included. The source must stay unchanged.
TEST_P(AllPairs, EveryLeafMatchesTheReferenceByteForByte) {
  NuTest::STargetEntry const& target = NuTest::AllTargets[GetParam()];
  for (NuRef::SLayoutRow const& srcLayout : NuRef::Layouts) {
    for (NuRef::SDataRow const& srcData : NuRef::DataTypes) {
      SCOPED_TRACE(PairName(target.PixelType, target.DataType, srcLayout.Id, srcData.Id));
      for (unsigned count : {0u, 1u, 2u, 37u}) {
        std::uint32_t const seed = static_cast<std::uint32_t>(GetParam() * 100003 + srcLayout.Id * 31 + srcData.Id + count);
        SCOPED_TRACE("count " + std::to_string(count) + ", seed " + std::to_string(seed));
        std::mt19937 random(seed);
        unsigned const srcPixelBytes = NuRef::PixelBytes(srcLayout.Id, srcData.Id);
        unsigned const trgPixelBytes = NuRef::PixelBytes(target.PixelType, target.DataType);
        // Both runs sized for the LumA rule, which reaches count pixels beyond the runs.
        SGuarded src(2 * count * srcPixelBytes, srcData.Bytes, 0xA5);
        FillRandom(src.Run(), 2 * count * (srcPixelBytes / srcData.Bytes), srcData.Id, random);
        std::vector<unsigned char> const srcBefore = src.Bytes;
        unsigned const trgElementBytes = NuRef::FindDataType(target.DataType)->Bytes;
        SGuarded trg(2 * count * trgPixelBytes, trgElementBytes, 0x5C);
        SGuarded expected = trg;
        NuRef::ConvertRun(target.PixelType, target.DataType, expected.Run(), srcLayout.Id, srcData.Id,
                          src.Run(), count);
        CNuImageFormat const srcFormat = Format(static_cast<int>(count), 1, srcLayout.Id, srcData.Id);
        EXPECT_TRUE(target.Call(src.Run(), srcFormat, trg.Run()));
        ASSERT_EQ(trg.Bytes, expected.Bytes);
        ASSERT_EQ(src.Bytes, srcBefore);

        // The public road gives the same bytes, or the Bayer gate's raise with nothing written.
        SGuarded road(2 * count * trgPixelBytes, trgElementBytes, 0x5C);
        CNuImageFormat const trgFormat = Format(static_cast<int>(count), 1, target.PixelType, target.DataType);
        if (NuRef::IsBayer(target.PixelType) && srcLayout.Id != target.PixelType) {
          ExpectRaises([&] { CNuImage::ConvertMemory(road.Run(), src.Run(), trgFormat, srcFormat); },
                       {{"Error converting image memory", "ConvertMemory", ImageFile},
                        {BayerGate, "_ConvertTrgSwitch", ImageFile}});
          ASSERT_EQ(road.Bytes, SGuarded(2 * count * trgPixelBytes, trgElementBytes, 0x5C).Bytes);
        } else {
          EXPECT_TRUE(CNuImage::ConvertMemory(road.Run(), src.Run(), trgFormat, srcFormat));
          ASSERT_EQ(road.Bytes, expected.Bytes);
        }
      }
    }
  }
}

// Overlapping runs (a conversion in place, or runs shifted against each other) take the plain
// forward passes: the result is that of the reference applied element by element in the
// documented order on the same memory. Separate runs at the same offsets give the fused path.
TEST_P(AllPairs, OverlappingRunsGiveThePlainForwardResult) {
  NuTest::STargetEntry const& target = NuTest::AllTargets[GetParam()];
  unsigned const count = 37;
  for (NuRef::SLayoutRow const& srcLayout : NuRef::Layouts) {
    for (NuRef::SDataRow const& srcData : NuRef::DataTypes) {
      SCOPED_TRACE(PairName(target.PixelType, target.DataType, srcLayout.Id, srcData.Id));
      unsigned const srcPixelBytes = NuRef::PixelBytes(srcLayout.Id, srcData.Id);
      unsigned const trgPixelBytes = NuRef::PixelBytes(target.PixelType, target.DataType);
      std::size_t const span = 2 * count * (srcPixelBytes > trgPixelBytes ? srcPixelBytes : trgPixelBytes);
      std::size_t const srcOffset = 64 + span / 8 * 8;
      std::size_t const half = (count * srcPixelBytes / 2) / 8 * 8;
      for (std::size_t trgOffset : {srcOffset, srcOffset - 8, srcOffset + 8, srcOffset + half, srcOffset - half}) {
        SCOPED_TRACE("target offset " + std::to_string(static_cast<long long>(trgOffset) - static_cast<long long>(srcOffset)));
        std::mt19937 random(static_cast<std::uint32_t>(GetParam() * 7 + srcLayout.Id + srcData.Id + trgOffset));
        std::vector<unsigned char> memory(2 * srcOffset + span + 64, 0);
        FillRandom(memory.data(), memory.size() / srcData.Bytes, srcData.Id, random);
        std::vector<unsigned char> expected = memory;
        NuRef::ConvertRun(target.PixelType, target.DataType, expected.data() + trgOffset, srcLayout.Id, srcData.Id,
                          expected.data() + srcOffset, count);
        EXPECT_TRUE(target.Call(memory.data() + srcOffset, Format(static_cast<int>(count), 1, srcLayout.Id, srcData.Id),
                                memory.data() + trgOffset));
        ASSERT_EQ(memory, expected);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, AllPairs, ::testing::Range(0, NuTest::TargetCount),
                         [](::testing::TestParamInfo<int> const& info) {
                           return std::string(NuTest::AllTargets[info.param].Name);
                         });

// ---- documented layout examples, Bayer ones included ---------------------------------------

namespace {

template <class TTrg, class TSrc, std::size_t NTrg, std::size_t NSrc>
std::vector<TTrg> Convert(int trgPixel, int trgData, int srcPixel, int srcData, TSrc const (&src)[NSrc],
                          unsigned count, TTrg fill = TTrg(0x55)) {
  std::vector<TTrg> trg(NTrg, fill);
  EXPECT_TRUE(CNuImage::ConvertMemory(trg.data(), src, Format(static_cast<int>(count), 1, trgPixel, trgData),
                                      Format(static_cast<int>(count), 1, srcPixel, srcData)));
  return trg;
}

using U8 = std::vector<unsigned char>;

}  // namespace

TEST(PixelLayoutConversion, GreyIsTheRedChannelByIndex) {
  unsigned char const rgb[3] = {10, 20, 30};
  EXPECT_EQ((Convert<unsigned char, unsigned char, 1>(EPixelType::Lum, EDataType::UByte, EPixelType::RGB, EDataType::UByte, rgb, 1)), U8{10});
  EXPECT_EQ((Convert<unsigned char, unsigned char, 1>(EPixelType::Lum, EDataType::UByte, EPixelType::BGR, EDataType::UByte, rgb, 1)), U8{30});
  unsigned char const rgba[4] = {10, 20, 30, 40};
  EXPECT_EQ((Convert<unsigned char, unsigned char, 1>(EPixelType::Lum, EDataType::UByte, EPixelType::BGRA, EDataType::UByte, rgba, 1)), U8{30});
  EXPECT_EQ((Convert<unsigned char, unsigned char, 3>(EPixelType::BGR, EDataType::UByte, EPixelType::RGB, EDataType::UByte, rgb, 1)), (U8{30, 20, 10}));
  EXPECT_EQ((Convert<unsigned char, unsigned char, 4>(EPixelType::BGRA, EDataType::UByte, EPixelType::RGBA, EDataType::UByte, rgba, 1)), (U8{30, 20, 10, 40}));
}

TEST(PixelLayoutConversion, AlphaFillIsTheTargetMaximum) {
  unsigned char const lum[1] = {7};
  EXPECT_EQ((Convert<unsigned char, unsigned char, 4>(EPixelType::BGRA, EDataType::UByte, EPixelType::Lum, EDataType::UByte, lum, 1)), (U8{7, 7, 7, 255}));
  float const half[1] = {0.5f};
  EXPECT_EQ((Convert<float, float, 4>(EPixelType::RGBA, EDataType::Float, EPixelType::Lum, EDataType::Float, half, 1)), (std::vector<float>{0.5f, 0.5f, 0.5f, 1.0f}));
  int const lumInt[1] = {12345};
  EXPECT_EQ((Convert<double, int, 4>(EPixelType::RGBA, EDataType::Double, EPixelType::Lum, EDataType::Int, lumInt, 1))[3], 1.0);
  unsigned char const luma[2] = {7, 9};
  EXPECT_EQ((Convert<unsigned char, unsigned char, 3>(EPixelType::RGB, EDataType::UByte, EPixelType::LumA, EDataType::UByte, luma, 1)), (U8{7, 7, 7}));
  EXPECT_EQ((Convert<unsigned char, unsigned char, 4>(EPixelType::RGBA, EDataType::UByte, EPixelType::LumA, EDataType::UByte, luma, 1)), (U8{7, 7, 7, 9}));
  EXPECT_EQ((Convert<unsigned char, unsigned char, 1>(EPixelType::Lum, EDataType::UByte, EPixelType::LumA, EDataType::UByte, luma, 1)), U8{7});
  EXPECT_EQ((Convert<unsigned char, unsigned char, 2>(EPixelType::LumA, EDataType::UByte, EPixelType::Lum, EDataType::UByte, lum, 1)), (U8{7, 255}));
  float const bright[4] = {0.1f, 0.2f, 0.3f, 2.0f};
  EXPECT_EQ((Convert<unsigned char, float, 4>(EPixelType::RGBA, EDataType::UByte, EPixelType::RGBA, EDataType::Float, bright, 1))[3], 255);
  float const alpha300[4] = {0.1f, 0.2f, 300.0f, 2.0f};
  std::vector<float> const same = Convert<float, float, 4>(EPixelType::BGRA, EDataType::Float, EPixelType::RGBA, EDataType::Float, alpha300, 1);
  EXPECT_EQ(same, (std::vector<float>{300.0f, 0.2f, 0.1f, 2.0f}));
}

TEST(PixelLayoutConversion, LumATargetOfAnotherDataTypeContinuesBeyondTheRun) {
  short const lum[1] = {32767};
  std::vector<signed char> const one = Convert<signed char, short, 4>(EPixelType::LumA, EDataType::Byte, EPixelType::Lum, EDataType::Short, lum, 1);
  EXPECT_EQ(one, (std::vector<signed char>{127, 0x55, 0x55, 127}));
  // LumA to LumA, Short to Byte, count 2: alphas of source pixels 2 and 3 into target pixels 2 and 3.
  short const luma[8] = {-32768, 1, 32767, 2, 0, 32767, 0, -32768};
  std::vector<signed char> const two = Convert<signed char, short, 8>(EPixelType::LumA, EDataType::Byte, EPixelType::LumA, EDataType::Short, luma, 2);
  EXPECT_EQ(two, (std::vector<signed char>{-128, 0x55, 127, 0x55, 0x55, 127, 0x55, -128}));
  // Bayer2 of UByte into LumA of Short, count 2: colours of pixels 0 and 1, alpha of 2 and 3.
  unsigned char const bayer[2] = {0, 255};
  std::vector<short> const bayerLumA = Convert<short, unsigned char, 8>(EPixelType::LumA, EDataType::Short, EPixelType::Bayer2, EDataType::UByte, bayer, 2, short(0x5555));
  EXPECT_EQ(bayerLumA, (std::vector<short>{0, 0x5555, 32767, 0x5555, 0x5555, 32767, 0x5555, 32767}));
}

TEST(BayerConversion, MosaicReadsOutAsGreyPixelForPixel) {
  unsigned char const samples[4] = {10, 20, 30, 40};
  U8 const grey{10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40};
  for (int bayer = EPixelType::Bayer1; bayer <= EPixelType::Bayer4; ++bayer) {
    EXPECT_EQ((Convert<unsigned char, unsigned char, 12>(EPixelType::RGB, EDataType::UByte, bayer, EDataType::UByte, samples, 4)), grey);
    EXPECT_EQ((Convert<unsigned char, unsigned char, 12>(EPixelType::BGR, EDataType::UByte, bayer, EDataType::UByte, samples, 4)), grey);
  }
  unsigned char const seven[1] = {7};
  EXPECT_EQ((Convert<unsigned char, unsigned char, 4>(EPixelType::BGRA, EDataType::UByte, EPixelType::Bayer4, EDataType::UByte, seven, 1)), (U8{7, 7, 7, 255}));
  double const quarter[1] = {0.25};
  EXPECT_EQ((Convert<double, double, 4>(EPixelType::RGBA, EDataType::Double, EPixelType::Bayer2, EDataType::Double, quarter, 1)), (std::vector<double>{0.25, 0.25, 0.25, 1.0}));
  EXPECT_EQ((Convert<unsigned char, unsigned char, 2>(EPixelType::LumA, EDataType::UByte, EPixelType::Bayer2, EDataType::UByte, seven, 1)), (U8{7, 255}));
  unsigned char const full[1] = {255};
  EXPECT_EQ((Convert<float, unsigned char, 1>(EPixelType::Bayer1, EDataType::Float, EPixelType::Bayer1, EDataType::UByte, full, 1)), std::vector<float>{1.0f});
}

// ---- dispatch ---------------------------------------------------------------------

TEST(ConversionDispatch, SameFormatIsOneBlockCopy) {
  CNuImage src;
  src.Create(640, 480, EPixelType::RGB, EDataType::UByte);
  auto* bytes = static_cast<unsigned char*>(src.GetDataPtr());
  for (std::size_t i = 0; i < 921600; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + 3);
  CNuImage trg;
  EXPECT_TRUE(src.ConvertType(trg, EPixelType::RGB, EDataType::UByte));
  ASSERT_EQ(trg.GetByteCount(), 921600u);
  EXPECT_EQ(std::memcmp(trg.GetDataPtr(), src.GetDataPtr(), 921600), 0);
  // The shortcut serves formats without a TPixel: custom, integral, Void, YCbCr.
  unsigned char raw[16];
  unsigned char out[16] = {};
  for (int i = 0; i < 16; ++i) raw[i] = static_cast<unsigned char>(i + 1);
  EXPECT_TRUE(CNuImage::ConvertMemory(out, raw, Format(2, 1, EPixelType::RGBA, EDataType::Custom_10in16_LSB), Format(2, 1, EPixelType::RGBA, EDataType::Custom_10in16_LSB)));
  EXPECT_TRUE(CNuImage::ConvertMemory(out, raw, Format(4, 1, EPixelType::YCbCr, EDataType::UShort), Format(4, 1, EPixelType::YCbCr, EDataType::UShort)));
  EXPECT_EQ(std::memcmp(out, raw, 16), 0);
  unsigned char packed[16] = {};
  EXPECT_TRUE(CNuImage::ConvertMemory(packed, raw, Format(8, 1, 12345, EDataType::Integral_5per4), Format(8, 1, 12345, EDataType::Integral_5per4)));
  EXPECT_EQ(std::memcmp(packed, raw, 10), 0);
  EXPECT_EQ(packed[10], 0);
  EXPECT_TRUE(CNuImage::ConvertMemory(packed, raw, Format(3, 3, EPixelType::Lum, EDataType::Void), Format(3, 3, EPixelType::Lum, EDataType::Void)));
}

TEST(ConversionDispatch, AnotherWidthTakesTheRoadWithTheSourceCount) {
  unsigned char const src[4] = {1, 2, 3, 4};
  unsigned char trg[12];
  std::memset(trg, 0x77, sizeof trg);
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(10, 1, EPixelType::Lum, EDataType::UByte), Format(4, 1, EPixelType::Lum, EDataType::UByte)));
  EXPECT_EQ((U8(trg, trg + 6)), (U8{1, 2, 3, 4, 0x77, 0x77}));
  // A target smaller than the source: the road writes the source count all the same.
  std::memset(trg, 0x77, sizeof trg);
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(1, 1, EPixelType::Lum, EDataType::UByte), Format(2, 2, EPixelType::Lum, EDataType::UByte)));
  EXPECT_EQ((U8(trg, trg + 5)), (U8{1, 2, 3, 4, 0x77}));
}

TEST(ConversionDispatch, ZeroPixelsWriteNothing) {
  unsigned char src[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  unsigned char trg[8];
  std::memset(trg, 0x77, sizeof trg);
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(0, 5, EPixelType::RGB, EDataType::UByte), Format(0, 5, EPixelType::RGB, EDataType::UByte)));
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(0, 5, EPixelType::LumA, EDataType::Byte), Format(5, 0, EPixelType::RGBA, EDataType::UByte)));
  // 65536 * 65536 wraps to 0 pixels.
  EXPECT_TRUE(CNuImage::ConvertMemory(trg, src, Format(1, 1, EPixelType::LumA, EDataType::Short), Format(65536, 65536, EPixelType::Lum, EDataType::UByte)));
  EXPECT_EQ((U8(trg, trg + 8)), U8(8, 0x77));
  ExpectRaises([&] { CNuImage::ConvertMemory(trg, src, Format(0, 0, EPixelType::Bayer1, EDataType::UByte), Format(0, 0, EPixelType::Lum, EDataType::UByte)); },
               {{"Error converting image memory", "ConvertMemory", ImageFile}, {BayerGate, "_ConvertTrgSwitch", ImageFile}});
}

TEST(ConversionDispatch, BayerGateComesBeforeAnyDataType) {
  unsigned char src[8] = {};
  unsigned char trg[8];
  std::memset(trg, 0x77, sizeof trg);
  struct Case {
    int TrgPixel, TrgData, SrcPixel, SrcData;
  } const raising[] = {
      {EPixelType::Bayer1, EDataType::UByte, EPixelType::Lum, EDataType::UByte},
      {EPixelType::Bayer1, EDataType::UByte, EPixelType::Bayer2, EDataType::UByte},
      {EPixelType::Bayer4, EDataType::Float, EPixelType::RGB, EDataType::UByte},
      {EPixelType::Bayer2, 5128, EPixelType::Bayer3, 5127},
      {EPixelType::Bayer3, 5128, 12345, 77},
      {EPixelType::Bayer4, EDataType::Custom_10in16_LSB, EPixelType::YCbCr, EDataType::Void},
  };
  for (Case const& c : raising) {
    SCOPED_TRACE(std::to_string(c.TrgPixel) + " <- " + std::to_string(c.SrcPixel));
    for (int width : {0, 2}) {
      ExpectRaises([&] { CNuImage::ConvertMemory(trg, src, Format(width, 1, c.TrgPixel, c.TrgData), Format(width, 1, c.SrcPixel, c.SrcData)); },
                   {{"Error converting image memory", "ConvertMemory", ImageFile}, {BayerGate, "_ConvertTrgSwitch", ImageFile}});
      ExpectRaises([&] { CNuImage::_ConvertTrgSwitch(trg, src, Format(width, 1, c.TrgPixel, c.TrgData), Format(width, 1, c.SrcPixel, c.SrcData)); },
                   {{BayerGate, "_ConvertTrgSwitch", ImageFile}});
    }
  }
  EXPECT_EQ((U8(trg, trg + 8)), U8(8, 0x77));
  // Same Bayer type: the gate is passed and the data type is looked at.
  EXPECT_FALSE(CNuImage::ConvertMemory(trg, src, Format(2, 1, EPixelType::Bayer1, 5128), Format(2, 1, EPixelType::Bayer1, EDataType::UByte)));
  EXPECT_FALSE(CNuImage::ConvertMemory(trg, src, Format(2, 1, EPixelType::Bayer1, EDataType::UByte), Format(2, 1, EPixelType::Bayer1, EDataType::Custom_12in16_LSB)));
  EXPECT_EQ((U8(trg, trg + 8)), U8(8, 0x77));
}

TEST(ConversionDispatch, DecisionsInTheirOrderWithThreeOutcomes) {
  unsigned char src[64] = {};
  unsigned char trg[64];
  std::memset(trg, 0x77, sizeof trg);
  auto convert = [&](int trgPixel, int trgData, int srcPixel, int srcData) {
    return CNuImage::ConvertMemory(trg, src, Format(2, 1, trgPixel, trgData), Format(2, 1, srcPixel, srcData));
  };
  // 1. target pixel type: an uncarried one is false whatever follows, Bayer sources included.
  EXPECT_FALSE(convert(6406, EDataType::UByte, EPixelType::Bayer1, EDataType::UByte));
  EXPECT_FALSE(convert(12345, 5128, 12345, 5127));
  EXPECT_FALSE(convert(EPixelType::YCbCr, EDataType::Double, EPixelType::RGB, EDataType::Double));
  EXPECT_FALSE(convert(EPixelType::Void, EDataType::UByte, EPixelType::Lum, EDataType::UByte));
  // 3. target data type, before anything of the source.
  EXPECT_FALSE(convert(EPixelType::RGB, 5128, 12345, 5127));
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::Void, EPixelType::RGB, EDataType::UByte));
  EXPECT_FALSE(convert(EPixelType::Lum, EDataType::Custom_10in16_LSB, EPixelType::Lum, EDataType::UByte));
  // Then source pixel type and source data type.
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::UByte, 0, EDataType::UByte));
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::UByte, EPixelType::YCbCr, EDataType::UByte));
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::UByte, EPixelType::RGB, 5127));
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::UByte, EPixelType::RGB, EDataType::Custom_10in16_LSB));
  EXPECT_FALSE(convert(EPixelType::RGB, EDataType::UByte, EPixelType::LumA, EDataType::Integral_3per2));
  EXPECT_EQ((U8(trg, trg + 64)), U8(64, 0x77));
  EXPECT_TRUE(convert(EPixelType::Bayer1, EDataType::Float, EPixelType::Bayer1, EDataType::UByte));
  EXPECT_TRUE(convert(EPixelType::RGB, EDataType::Float, EPixelType::Bayer3, EDataType::UByte));
  // The same source pixel/data switch stands behind every target.
  for (NuTest::STargetEntry const& target : NuTest::AllTargets) {
    EXPECT_FALSE(target.Call(src, Format(2, 1, 12345, EDataType::UByte), trg)) << target.Name;
    EXPECT_FALSE(target.Call(src, Format(2, 1, EPixelType::Lum, 5129), trg)) << target.Name;
  }
}

TEST(ConversionDispatch, ShortcutRaisesForUnknownIdsInsideTheWrap) {
  unsigned char buffer[16] = {};
  ExpectRaises([&] { CNuImage::ConvertMemory(buffer, buffer, Format(2, 1, EPixelType::Lum, 5128), Format(2, 1, EPixelType::Lum, 5128)); },
               {{"Error converting image memory", "ConvertMemory", ImageFile},
                {"Unknown data type 'Unknown'", "GetBytesPerChannel", FormatFile}});
  ExpectRaises([&] { CNuImage::ConvertMemory(buffer, buffer, Format(2, 1, 12345, EDataType::UByte), Format(2, 1, 12345, EDataType::UByte)); },
               {{"Error converting image memory", "ConvertMemory", ImageFile},
                {"Unknown pixel type", "GetComponentCount", FormatFile}});
}

namespace {

// An IImage that records the order in which the road asks it things.
class CRecordingImage : public Nu::Interop::Runtime28::IImage {
public:
  mutable std::string Calls;
  bool Valid = true;
  bool CreateResult = true;
  CNuImage Image;

  bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) override {
    Calls += "Create4 ";
    if (!CreateResult) return false;
    return Image.Create(width, height, pixelType, dataType);
  }
  bool Create(int, int, EPixelType::ID, EDataType::ID, void const*) override { Calls += "Create5 "; return false; }
  bool Create(IImage const*) override { Calls += "CreateCopy "; return false; }
  bool Destroy() override { Calls += "Destroy "; return true; }
  bool IsValid() const override { Calls += "IsValid "; return Valid; }
  unsigned int GetBytesPerPixel() const override { Calls += "GetBytesPerPixel "; return 0; }
  unsigned int GetPixelCount() const override { Calls += "GetPixelCount "; return 0; }
  unsigned int GetByteCount() const override { Calls += "GetByteCount "; return 0; }
  void GetSize(int& width, int& height) const override { Calls += "GetSize "; Image.GetSize(width, height); }
  void GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const override {
    Calls += "GetType ";
    Image.GetType(pixelType, dataType);
  }
  void* GetDataPtr() override { Calls += "GetDataPtr "; return Image.GetDataPtr(); }
  void const* GetDataPtr() const override { Calls += "GetDataPtrConst "; return Image.GetDataPtr(); }
};

}  // namespace

TEST(ConvertType, StepsInTheirOrder) {
  CRecordingImage src;
  src.Image.Create(3, 2, EPixelType::RGB, EDataType::UByte);
  std::memset(src.Image.GetDataPtr(), 200, 18);
  CRecordingImage trg;
  EXPECT_TRUE(CNuImage::ConvertType(&trg, &src, EPixelType::Lum, EDataType::Float, true));
  EXPECT_EQ(src.Calls, "IsValid GetSize GetType GetDataPtrConst ");
  EXPECT_EQ(trg.Calls, "Create4 GetDataPtr ");
  int width = 0, height = 0;
  trg.Image.GetSize(width, height);
  EXPECT_EQ(width, 3);
  EXPECT_EQ(height, 2);
  EXPECT_EQ(static_cast<float const*>(trg.Image.GetDataPtr())[5], static_cast<float>(200 / 255.0));

  // create false: the target is asked nothing but its memory.
  src.Calls.clear();
  trg.Calls.clear();
  EXPECT_TRUE(CNuImage::ConvertType(&trg, &src, EPixelType::Lum, EDataType::Float, false));
  EXPECT_EQ(trg.Calls, "GetDataPtr ");

  // A refused Create is false, after the source was asked for size and type.
  src.Calls.clear();
  trg.Calls.clear();
  trg.CreateResult = false;
  EXPECT_FALSE(CNuImage::ConvertType(&trg, &src, EPixelType::Lum, EDataType::Float, true));
  EXPECT_EQ(src.Calls, "IsValid GetSize GetType ");
  EXPECT_EQ(trg.Calls, "Create4 ");

  // An invalid source: false, nothing else asked, the target untouched.
  src.Calls.clear();
  trg.Calls.clear();
  src.Valid = false;
  EXPECT_FALSE(CNuImage::ConvertType(&trg, &src, EPixelType::Lum, EDataType::Float, true));
  EXPECT_EQ(src.Calls, "IsValid ");
  EXPECT_EQ(trg.Calls, "");
}

TEST(ConvertType, OutcomesOnImages) {
  CNuImage empty;
  CNuImage trg;
  EXPECT_FALSE(empty.ConvertType(trg, EPixelType::RGB, EDataType::UByte));
  EXPECT_FALSE(trg.IsValid());

  // A custom source reaches UShort only through ConvertCustomType; the target is created anyway.
  CNuImage custom;
  custom.Create(4, 4, EPixelType::Lum, EDataType::Custom_10in16_LSB);
  std::memset(custom.GetDataPtr(), 1, custom.GetByteCount());
  EXPECT_FALSE(custom.ConvertType(trg, EPixelType::Lum, EDataType::UShort));
  EDataType::ID dataType;
  EPixelType::ID pixelType;
  trg.GetType(pixelType, dataType);
  EXPECT_EQ(dataType, EDataType::UShort);
  EXPECT_TRUE(trg.IsValid());
  EXPECT_TRUE(custom.ConvertType(trg, EPixelType::Lum, EDataType::Custom_10in16_LSB));
  EXPECT_EQ(std::memcmp(trg.GetDataPtr(), custom.GetDataPtr(), 32), 0);

  CNuImage ycbcr;
  ycbcr.Create(2, 2, EPixelType::YCbCr, EDataType::UByte);
  std::memset(ycbcr.GetDataPtr(), 9, 8);
  EXPECT_FALSE(ycbcr.ConvertType(trg, EPixelType::YCbCr, EDataType::Double));
  EXPECT_TRUE(ycbcr.ConvertType(trg, EPixelType::YCbCr, EDataType::UByte));

  // What Create raises passes through ConvertType unwrapped.
  unsigned char pixels[4] = {1, 2, 3, 4};
  CNuImage zeroWide;
  zeroWide.CreateMoniker(Format(0, 4, EPixelType::Lum, EDataType::UByte), pixels, 0.0, 0);
  ExpectRaises([&] { zeroWide.ConvertType(trg, EPixelType::RGB, EDataType::UByte); },
               {{"Error creating image", "Create", ImageFile}, {"Image width or height is 0", "Create", ImageFile}});

  // Bayer gate through ConvertType: wrapped, nothing written to the created target.
  CNuImage lum;
  lum.Create(2, 1, EPixelType::Lum, EDataType::UByte);
  ExpectRaises([&] { lum.ConvertType(trg, EPixelType::Bayer1, EDataType::UByte); },
               {{"Error converting image memory", "ConvertMemory", ImageFile}, {BayerGate, "_ConvertTrgSwitch", ImageFile}});
}

TEST(ConvertType, SameImageInPlace) {
  // Same byte count: the block is kept and the loop runs over it in forward order.
  CNuImage image;
  image.Create(5, 1, EPixelType::RGBA, EDataType::UByte);
  auto* bytes = static_cast<unsigned char*>(image.GetDataPtr());
  for (int i = 0; i < 20; ++i) bytes[i] = static_cast<unsigned char>(10 * i + 1);
  std::vector<unsigned char> expected(bytes, bytes + 20);
  NuRef::ConvertRun(EPixelType::BGRA, EDataType::UByte, expected.data(), EPixelType::RGBA, EDataType::UByte, expected.data(), 5);
  void* const before = image.GetDataPtr();
  EXPECT_TRUE(image.ConvertType(image, EPixelType::BGRA, EDataType::UByte));
  EXPECT_EQ(image.GetDataPtr(), before);
  EXPECT_EQ((U8(bytes, bytes + 20)), expected);
  // Same format: the shortcut copies the block onto itself.
  EXPECT_TRUE(image.ConvertType(image, EPixelType::BGRA, EDataType::UByte));
  EXPECT_EQ((U8(bytes, bytes + 20)), expected);
  // Another byte count: fresh memory, converted from whatever it holds; the format is the new one.
  EXPECT_TRUE(image.ConvertType(image, EPixelType::RGB, EDataType::Double));
  EXPECT_EQ(image.GetByteCount(), 120u);
}
