// The value rule through the library's run-time entry (Lum to Lum of the two data
// types, one element per pixel), judged value by value by the reference model: every value of
// the 8- and 16-bit sources, special values and a fixed-seed random sample of the wider ones.
#include <Nu.Core.Ex/NuImage.h>

#include <Reference/ConvertReference.h>
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

constexpr std::uint32_t Seed = 0x5EED2026;

// The source values of one data type, as raw element bytes.
std::vector<unsigned char> SourceValues(NuRef::SDataRow const& row) {
  std::vector<unsigned char> bytes;
  auto add = [&](auto value) {
    static_assert(sizeof value <= 8);
    unsigned char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.insert(bytes.end(), raw, raw + sizeof value);
  };
  std::mt19937_64 random(Seed);
  switch (row.Bytes * (row.Integer ? 1 : 10)) {
    case 1:
      for (unsigned v = 0; v < 256; ++v) add(static_cast<std::uint8_t>(v));
      break;
    case 2:
      for (unsigned v = 0; v < 65536; ++v) add(static_cast<std::uint16_t>(v));
      break;
    case 4: {
      for (std::int64_t k : {0LL, 1LL, 2LL, 3LL, 127LL, 128LL, 255LL, 256LL, 32767LL, 32768LL, 65535LL, 65536LL,
                             16777216LL, 16843009LL, 65537LL, 2147483646LL, 2147483647LL, 2147483648LL,
                             2147483649LL, 4294967294LL, 4294967295LL})
        for (std::int64_t s : {k, -k}) add(static_cast<std::uint32_t>(s));
      for (int i = 0; i < 200000; ++i) add(static_cast<std::uint32_t>(random()));
      break;
    }
    default: {  // float (40) or double (80)
      bool const single = row.Bytes == 4;
      std::vector<double> specials = {0.0, 1.0, 0.5, 1.0 / 255.0, 2.0, 0.0078125, 1e-300, 1e300, 3e38, 4e38,
                                      std::numeric_limits<double>::infinity(), std::numeric_limits<double>::denorm_min(),
                                      std::numeric_limits<double>::min(), std::numeric_limits<double>::max(),
                                      static_cast<double>(std::numeric_limits<float>::denorm_min()),
                                      static_cast<double>(std::numeric_limits<float>::max())};
      // Each clamp bound of every integer target, as a fraction and as its scaled neighbours.
      for (NuRef::SDataRow const& target : NuRef::DataTypes) {
        if (!target.Integer) continue;
        for (double bound : {target.Largest, -target.Smallest})
          for (double offset : {-1.0, -0.5, 0.0, 0.5, 1.0}) specials.push_back((bound + offset) / bound);
        for (double k : {0.5, 1.5, 2.5, 100.5}) specials.push_back(k / target.Largest);
      }
      for (double s : std::vector<double>(specials)) {
        for (double v : {s, -s}) {
          if (single) {
            auto const f = static_cast<float>(v);
            add(f);
            add(std::nextafter(f, std::numeric_limits<float>::infinity()));
            add(std::nextafter(f, -std::numeric_limits<float>::infinity()));
          } else {
            add(v);
            add(std::nextafter(v, std::numeric_limits<double>::infinity()));
            add(std::nextafter(v, -std::numeric_limits<double>::infinity()));
          }
        }
      }
      // NaNs with several payloads and both signs, quiet and signalling.
      for (std::uint64_t payload : {0ull, 1ull, 0x12345ull, 0x3FFFFFull}) {
        for (std::uint64_t sign : {0ull, 1ull}) {
          if (single) {
            add(static_cast<std::uint32_t>((sign << 31) | 0x7FC00000u | payload));
            if (payload != 0) add(static_cast<std::uint32_t>((sign << 31) | 0x7F800000u | payload));
          } else {
            add((sign << 63) | 0x7FF8000000000000ull | (payload << 20));
            if (payload != 0) add((sign << 63) | 0x7FF0000000000000ull | payload);
          }
        }
      }
      std::uniform_real_distribution<double> fraction(-1.5, 1.5);
      for (int i = 0; i < 100000; ++i) {
        if (single) {
          add(static_cast<float>(fraction(random)));
          add(static_cast<std::uint32_t>(random()));
        } else {
          add(fraction(random));
          add(static_cast<std::uint64_t>(random()));
        }
      }
    }
  }
  return bytes;
}

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
