// Every path that replaces the two steps of the value rule for a 32-bit source, against PlainRule
// over all 2^32 source bit patterns, bit for bit, at each instruction-set level this CPU has, on
// all cores: minutes, so it runs apart from the default run (ctest --preset exhaustive).
#include <Nu.Core.Ex/Convert/Leaf.h>
#include <Nu.Core.Ex/Convert/PlanText.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

using Nu::EDataType;
using Nu::EPixelType;
using Nu::TPixelOf;
using namespace Nu::Detail;

namespace {

template <class T>
std::string DataName() {
  return FormatName(EPixelType::Lum, DataIdOf<T>()).substr(4);
}

template <class T>
std::string Hex(T value) {
  TBits<T> bits;
  std::memcpy(&bits, &value, sizeof bits);
  char text[24];
  std::snprintf(text, sizeof text, "0x%" PRIX64, static_cast<std::uint64_t>(bits));
  return text;
}

// All 2^32 bit patterns of SE, `chunk` consecutive ones at a time (the last chunk wraps around),
// through run(got, src, chunk), against PlainRule of source element i + 2 - 2 (i % 3) for target
// element i where Swapped (BGR <- RGB), of element i otherwise. The chunks are shared out to one
// thread per core; GoogleTest asserts in the caller's thread only, so the threads hand back the
// text of the lowest failing chunk, or nothing.
template <class TE, class SE, bool Swapped, class FRun>
std::string Sweep(std::string const& what, std::size_t chunk, FRun run) {
  std::size_t const chunks = ((std::size_t{1} << 32) + chunk - 1) / chunk;
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::size_t failedChunk = chunks;
  std::string failure;
  auto work = [&] {
    std::vector<SE> src(chunk);
    std::vector<TE> got(chunk), want(chunk);
    auto from = [](std::size_t i) { return Swapped ? i + 2 - 2 * (i % 3) : i; };
    for (std::size_t c; (c = next.fetch_add(1)) < chunks;) {
      for (std::size_t i = 0; i < chunk; ++i) {
        auto const bits = static_cast<std::uint32_t>(c * chunk + i);
        std::memcpy(&src[i], &bits, sizeof bits);
      }
      for (std::size_t i = 0; i < chunk; ++i) want[i] = PlainRule<TE, SE>(src[from(i)]);
      run(got.data(), src.data(), chunk);
      if (std::memcmp(got.data(), want.data(), chunk * sizeof(TE)) == 0) continue;
      std::size_t i = 0;
      while (std::memcmp(&got[i], &want[i], sizeof(TE)) == 0) ++i;
      std::lock_guard<std::mutex> lock(mutex);
      // Chunks are taken in order: every lower one is done or under way when the sweep stops.
      if (c < failedChunk) {
        failedChunk = c;
        failure = what + ", source " + Hex(src[from(i)]) + ": got " + Hex(got[i]) + ", want " + Hex(want[i]);
      }
      next = chunks;
    }
  };
  std::vector<std::thread> threads(std::max(1u, std::thread::hardware_concurrency()));
  for (auto& thread : threads) thread = std::thread(work);
  for (auto& thread : threads) thread.join();
  return failure;
}

constexpr std::size_t Chunk = std::size_t{1} << 16;

// The value kernel of a level or, with no level, the scalar rule that the forward passes use:
// every target but the source itself. The scalar sweep skips the pairs whose form is the two
// steps as written, where ConvertChannelValue is PlainRule.
template <class SE, class... TEs>
void SweepValues(ELevel const* level) {
  auto one = [&]<class TE>(TE*) {
    if constexpr (!std::is_same_v<TE, SE>) {
      if (!level && ValueFormOf<TE, SE>() == EValueForm::Rule) return;
      std::string const what = DataName<TE>() + " <- " + DataName<SE>() + " at " +
                               (level ? LevelName(*level) : "scalar");
      std::string const failure = Sweep<TE, SE, false>(what, Chunk, [&](TE* trg, SE const* src, std::size_t n) {
        if (level)
          ConvertValues<TE, SE>(*level, n, trg, src);
        else
          for (std::size_t i = 0; i < n; ++i) trg[i] = ConvertChannelValue<TE, SE>(src[i]);
      });
      EXPECT_TRUE(failure.empty()) << failure;
    }
  };
  (one(static_cast<TEs*>(nullptr)), ...);
}
template <class... SEs>
void SweepValuesFrom(ELevel const* level) {
  (SweepValues<SEs, char, unsigned char, short, unsigned short, int, unsigned int, float, double>(level), ...);
}

// BGR <- RGB through the driver: where the plan has it (VBMI) the permute that maps the values
// as it moves, below that the path through the buffer. 2^16 pixels a chunk.
template <int TD, int SD>
void SweepMapped(ELevel level) {
  using TE = TElementOf<TD>;
  using SE = TElementOf<SD>;
  std::string const what = "BGR/" + DataName<TE>() + " <- RGB/" + DataName<SE>() + " at " + LevelName(level);
  std::string const failure = Sweep<TE, SE, true>(what, 3 * Chunk, [&](TE* trg, SE const* src, std::size_t n) {
    ConvertRunAt(level, static_cast<unsigned int>(n / 3), trg, src,
                 TPairOf<TPixelOf<EPixelType::BGR, TD>, TPixelOf<EPixelType::RGB, SD>>::Kernels());
  });
  EXPECT_TRUE(failure.empty()) << failure;
}

class ConvertSweep : public ::testing::TestWithParam<ELevel> {
protected:
  void SetUp() override {
    if (GetParam() > DetectLevel()) GTEST_SKIP() << "this CPU lacks the level";
  }
};

}  // namespace

TEST(ChannelValueSweep, EveryFastFormMatchesThePlainRule) { SweepValuesFrom<int, unsigned int, float>(nullptr); }

TEST_P(ConvertSweep, ValueKernelsMatchThePlainRule) {
  ELevel const level = GetParam();
  SweepValuesFrom<int, unsigned int, float>(&level);
}

TEST_P(ConvertSweep, MappedPairsMatchThePlainRule) {
  ELevel const level = GetParam();
  SweepMapped<EDataType::Int, EDataType::UInt>(level);
  SweepMapped<EDataType::UInt, EDataType::Int>(level);
  SweepMapped<EDataType::Int, EDataType::Float>(level);
  SweepMapped<EDataType::UInt, EDataType::Float>(level);
  SweepMapped<EDataType::Float, EDataType::Int>(level);
  SweepMapped<EDataType::Float, EDataType::UInt>(level);
}

INSTANTIATE_TEST_SUITE_P(Levels, ConvertSweep, ::testing::ValuesIn(AllLevels),
                         [](::testing::TestParamInfo<ELevel> const& info) { return std::string(LevelName(info.param)); });
