// The value rule through the library's run-time entry (Lum to Lum, one element per pixel),
// judged value by value by the reference model.
#include <Support/ConvertSamples.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {
class ChannelValue : public ::testing::TestWithParam<int> {};
}  // namespace

TEST_P(ChannelValue, EveryTargetMatchesTheReference) {
  NuRef::SDataRow const& src = NuRef::DataTypes[GetParam()];
  std::vector<unsigned char> const values = NuTest::SourceValues(src);
  std::size_t const count = values.size() / src.Bytes;
  for (NuRef::SDataRow const& trg : NuRef::DataTypes) {
    SCOPED_TRACE(std::string(trg.Name) + " <- " + src.Name + ", seed " + std::to_string(NuTest::Seed));
    std::vector<unsigned char> out(count * trg.Bytes + 16, 0xEE);
    std::vector<unsigned char> expected = out;
    for (std::size_t i = 0; i < count; ++i)
      NuRef::ConvertValue(trg.Id, &expected[i * trg.Bytes], src.Id, &values[i * src.Bytes]);
    auto const n = static_cast<int>(count);
    ASSERT_TRUE(Nu::CNuImage::_ConvertTrgSwitch(out.data(), values.data(), NuTest::Format(n, 1, Nu::EPixelType::Lum, trg.Id),
                                                NuTest::Format(n, 1, Nu::EPixelType::Lum, src.Id)));
    for (std::size_t i = 0; i <= count; ++i) {
      std::size_t const bytes = i < count ? trg.Bytes : 16;  // then the guard
      if (std::memcmp(&out[i * trg.Bytes], &expected[i * trg.Bytes], bytes) != 0) {
        std::uint64_t in = 0, got = 0, want = 0;
        std::memcpy(&in, &values[i * src.Bytes], i < count ? src.Bytes : 0);
        std::memcpy(&got, &out[i * trg.Bytes], trg.Bytes);
        std::memcpy(&want, &expected[i * trg.Bytes], trg.Bytes);
        FAIL() << "element " << i << " of " << count << ", source bits 0x" << std::hex << in << ": got 0x" << got
               << ", want 0x" << want;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sources, ChannelValue, ::testing::Range(0, NuRef::DataTypeCount),
                         [](::testing::TestParamInfo<int> const& info) { return std::string(NuRef::DataTypes[info.param].Name); });
