// The value rule through the library's run-time entry (Lum to Lum of the two data
// types, one element per pixel), judged value by value by the reference model: every value of
// the 8- and 16-bit sources, special values and a fixed-seed random sample of the wider ones.
#include <Nu.Core.Ex/NuImage.h>

#include <Reference/ConvertReference.h>
#include <Support/ConvertSamples.h>
#include <Support/ConvertTargets.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using Nu::CNuImage;
using Nu::EPixelType;

namespace {

using NuTest::Seed;
using NuTest::SourceValues;

class ChannelValue : public ::testing::TestWithParam<int> {};

}  // namespace

TEST_P(ChannelValue, EveryTargetMatchesTheReference) {
  NuRef::SDataRow const& src = NuRef::DataTypes[GetParam()];
  std::vector<unsigned char> const values = SourceValues(src);
  std::size_t const count = values.size() / src.Bytes;
  for (NuRef::SDataRow const& trg : NuRef::DataTypes) {
    SCOPED_TRACE(std::string(trg.Name) + " <- " + src.Name + ", seed " + std::to_string(Seed));
    std::vector<unsigned char> out(count * trg.Bytes + 16, 0xEE);
    std::vector<unsigned char> expected = out;
    for (std::size_t i = 0; i < count; ++i)
      NuRef::ConvertValue(trg.Id, expected.data() + i * trg.Bytes, src.Id, values.data() + i * src.Bytes);
    auto const n = static_cast<int>(count);
    ASSERT_TRUE(CNuImage::_ConvertTrgSwitch(out.data(), values.data(), NuTest::Format(n, 1, EPixelType::Lum, trg.Id),
                                            NuTest::Format(n, 1, EPixelType::Lum, src.Id)));
    for (std::size_t i = 0; i < count; ++i) {
      if (std::memcmp(out.data() + i * trg.Bytes, expected.data() + i * trg.Bytes, trg.Bytes) != 0) {
        std::uint64_t in = 0, got = 0, want = 0;
        std::memcpy(&in, values.data() + i * src.Bytes, src.Bytes);
        std::memcpy(&got, out.data() + i * trg.Bytes, trg.Bytes);
        std::memcpy(&want, expected.data() + i * trg.Bytes, trg.Bytes);
        FAIL() << "source bits 0x" << std::hex << in << ": got 0x" << got << ", want 0x" << want;
      }
    }
    EXPECT_EQ(std::memcmp(out.data() + count * trg.Bytes, expected.data() + count * trg.Bytes, 16), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Sources, ChannelValue, ::testing::Range(0, NuRef::DataTypeCount),
                         [](::testing::TestParamInfo<int> const& info) {
                           return std::string(NuRef::DataTypes[info.param].Name);
                         });

namespace {

template <class TTrg, class TSrc>
TTrg Library(int trgType, int srcType, TSrc x) {
  TTrg out{};
  EXPECT_TRUE(CNuImage::_ConvertTrgSwitch(&out, &x, NuTest::Format(1, 1, EPixelType::Lum, trgType),
                                          NuTest::Format(1, 1, EPixelType::Lum, srcType)));
  return out;
}

}  // namespace

// A few documented values straight against the library, without the reference in between.
TEST(ChannelValueExamples, DocumentedValues) {
  using Nu::EDataType;
  EXPECT_EQ((Library<char, unsigned char>(EDataType::Byte, EDataType::UByte, 3)), 1);
  EXPECT_EQ((Library<unsigned char, char>(EDataType::UByte, EDataType::Byte, 64)), 128);
  EXPECT_EQ((Library<short, char>(EDataType::Short, EDataType::Byte, -127)), -32512);
  EXPECT_EQ((Library<char, short>(EDataType::Byte, EDataType::Short, -255)), 0);
  EXPECT_EQ((Library<char, unsigned short>(EDataType::Byte, EDataType::UShort, 517)), 1);
  EXPECT_EQ((Library<int, unsigned>(EDataType::Int, EDataType::UInt, 2147483648u)), 1073741823);
  EXPECT_EQ((Library<unsigned char, float>(EDataType::UByte, EDataType::Float, 0.999f)), 254);
  EXPECT_EQ((Library<char, float>(EDataType::Byte, EDataType::Float, -0.0078125f)), -1);
  EXPECT_EQ((Library<unsigned, float>(EDataType::UInt, EDataType::Float, 0.5f)), 2147483647u);
  EXPECT_EQ((Library<float, int>(EDataType::Float, EDataType::Int, 2147483647)), 1.0f);
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ((Library<int, double>(EDataType::Int, EDataType::Double, nan)), INT32_MIN);
  EXPECT_EQ((Library<unsigned, double>(EDataType::UInt, EDataType::Double, nan)), 0u);
  EXPECT_EQ((Library<char, double>(EDataType::Byte, EDataType::Double, -nan)), 0);
  float const negativeZero = -0.0f;
  double const widened = Library<double, float>(EDataType::Double, EDataType::Float, negativeZero);
  EXPECT_TRUE(std::signbit(widened));
  EXPECT_EQ((Library<float, double>(EDataType::Float, EDataType::Double, 1e300)), std::numeric_limits<float>::infinity());
}
