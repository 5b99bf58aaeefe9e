// The engine at every instruction-set level this CPU has, bit for bit against the reference
// model, through the library's own kernel objects and ConvertRunAt, and its plans against the
// golden file. Templates only collect the kernels; the checks are plain functions, which keeps
// this unit quick to build.
#include <Nu.Core.Ex/Convert/Leaf.h>
#include <Nu.Core.Ex/Convert/PlanText.h>
#include <Support/ConvertSamples.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

using namespace Nu::Detail;
using namespace NuTest;

namespace {

constexpr int RGBA = Nu::EPixelType::RGBA, RGB = Nu::EPixelType::RGB, BGRA = Nu::EPixelType::BGRA,
              BGR = Nu::EPixelType::BGR, Lum = Nu::EPixelType::Lum, LumA = Nu::EPixelType::LumA;
enum : int { Byte = 5120, UByte, Short, UShort, Int, UInt, Float, Double = 5130 };

struct SValuePair {
  int Trg, Src;
  void (*Run)(ELevel, std::size_t, void*, void const*);
};
template <class TE, class... SEs>
void AddValuePairs(std::vector<SValuePair>& to) {
  (to.push_back({DataIdOf<TE>(), DataIdOf<SEs>(), [](ELevel level, std::size_t n, void* trg, void const* src) {
                   ConvertValues<TE, SEs>(level, n, static_cast<TE*>(trg), static_cast<SEs const*>(src));
                 }}),
   ...);
}
template <class... TEs>
std::vector<SValuePair> ValuePairs() {
  std::vector<SValuePair> pairs;
  (AddValuePairs<TEs, TEs...>(pairs), ...);
  return pairs;
}

struct SPair {
  int TrgPixel, TrgData, SrcPixel, SrcData;
  SPairRun Kernels;
};
template <int TP, int TD, int SP, int SD>
SPair PairOf() {
  return {TP, TD, SP, SD, TPairOf<Nu::TPixelOf<TP, TD>, Nu::TPixelOf<SP, SD>>::Kernels()};
}
template <int TD, int SD, int TP, int... SPs>
void AddFrom(std::vector<SPair>& to) {
  (to.push_back(PairOf<TP, TD, SPs, SD>()), ...);
}
template <int TD, int SD, int... Ps>
void AddShapes(std::vector<SPair>& to) {
  (AddFrom<TD, SD, Ps, Ps...>(to), ...);
}
template <int TD, int SD>
constexpr void (*Shapes)(std::vector<SPair>&) = AddShapes<TD, SD, RGBA, RGB, BGRA, BGR, Lum, LumA>;

// Every layout shape (Bayer shapes are Lum's) for the fewest type pairs that reach every order,
// move kernel and element size of the plans at every level: the same type at each size, the
// pairs mapped as they move, and pairs through the buffer either way.
std::vector<SPair> ShapePairs() {
  std::vector<SPair> to;
  for (auto add : {Shapes<Byte, Byte>, Shapes<Short, Short>, Shapes<Int, Int>, Shapes<Double, Double>, Shapes<Byte, UByte>,
                   Shapes<Short, UShort>, Shapes<Int, UInt>, Shapes<Double, Byte>, Shapes<Byte, Double>, Shapes<Short, Int>,
                   Shapes<Int, Short>, Shapes<Double, Short>, Shapes<Double, Int>})
    add(to);
  return to;
}

// count pixels through the driver, both runs `shift` elements past a line and sized for the
// LumA rule, of random elements or of `values`.
void CheckRun(ELevel level, SPair const& pair, std::size_t count, std::size_t shift, std::vector<unsigned char> const* values = nullptr) {
  SCOPED_TRACE(testing::Message() << PairName(pair.TrgPixel, pair.TrgData, pair.SrcPixel, pair.SrcData) << ", count " << count
                                  << ", shift " << shift);
  std::size_t const runs = pair.TrgPixel == LumA && pair.TrgData != pair.SrcData ? 2 : 1;
  std::size_t const srcBytes = runs * count * NuRef::PixelBytes(pair.SrcPixel, pair.SrcData);
  std::size_t const srcElement = NuRef::FindDataType(pair.SrcData)->Bytes;
  SGuarded src(srcBytes, srcElement, 0xA5, shift);
  SGuarded trg(runs * count * NuRef::PixelBytes(pair.TrgPixel, pair.TrgData), NuRef::FindDataType(pair.TrgData)->Bytes, 0x5C, shift);
  SGuarded expected = trg;
  std::mt19937_64 random(count * 7919 + static_cast<std::size_t>(pair.TrgPixel + 3 * pair.TrgData + 5 * pair.SrcPixel + 7 * pair.SrcData));
  if (values != nullptr) std::memcpy(src.Run(), values->data(), std::min(values->size(), srcBytes));
  else FillRandom(src.Run(), srcBytes / srcElement, pair.SrcData, random);
  NuRef::ConvertRun(pair.TrgPixel, pair.TrgData, expected.Run(), pair.SrcPixel, pair.SrcData, src.Run(), static_cast<unsigned>(count));
  ConvertRunAt(level, static_cast<unsigned>(count), trg.Run(), src.Run(), pair.Kernels);
  ASSERT_TRUE(SameBytes(trg.Bytes, expected.Bytes));
}

std::vector<std::string> PlanLines() {
  std::vector<std::string> lines = {
      "# The plan of every pair at every level (Nu.Core.Ex/Convert/Plan.h): order, value kernel and",
      "# move kernel with the level their code is compiled for, pixels per step through the L1",
      "# buffer, whether a run that does not stream starts at a source line, and from what size",
      "# the target streams and the source is fetched ahead (in the streaming blocks as well",
      "# where it says so). Bayer formats plan as Lum. Runs under " + std::to_string(FusedFrom) + " pixels,",
      "# and runs that overlap, take the forward passes.",
      "# Written by tests/Nu.Core.Ex/Convert/ConvertLevelsTest.cpp; do not edit by hand."};
  for (SFormatIds const& trg : AllFormats)
    for (SFormatIds const& src : AllFormats)
      if (!NuRef::IsBayer(trg.PixelType) && !NuRef::IsBayer(src.PixelType))
        for (ELevel level : AllLevels)
          lines.push_back(PlanLine(trg.PixelType, trg.DataType, src.PixelType, src.DataType, level));
  return lines;
}

class ConvertLevels : public ::testing::TestWithParam<ELevel> {
protected:
  void SetUp() override {
    if (GetParam() > DetectLevel()) GTEST_SKIP() << "this CPU lacks the level";
  }
};

}  // namespace

// The whole sample in one run, then runs across every vector width at shifted starts.
TEST_P(ConvertLevels, ValueKernelsMatchTheReference) {
  for (SValuePair const& pair : ValuePairs<char, unsigned char, short, unsigned short, int, unsigned int, float, double>()) {
    NuRef::SDataRow const &trg = *NuRef::FindDataType(pair.Trg), &src = *NuRef::FindDataType(pair.Src);
    SCOPED_TRACE(std::string(trg.Name) + " <- " + src.Name);
    std::vector<unsigned char> const values = SourceValues(src);
    std::vector<std::pair<std::size_t, std::size_t>> runs = {{0, values.size() / src.Bytes}};
    for (std::size_t length : {0, 1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 1031})
      for (std::size_t start : {0, 1, 3}) runs.emplace_back(start, length);
    for (auto const& [start, length] : runs) {
      SGuarded out(length * trg.Bytes, trg.Bytes, 0xEE), expected = out, in(length * src.Bytes, src.Bytes, 0);
      for (std::size_t i = 0; i < length; ++i) {  // the sample again from its start where the run is longer
        unsigned char const* value = &values[(start + i) % (values.size() / src.Bytes) * src.Bytes];
        NuRef::ConvertValue(trg.Id, expected.Run() + i * trg.Bytes, src.Id, value);
        std::memcpy(in.Run() + i * src.Bytes, value, src.Bytes);
      }
      pair.Run(GetParam(), length, out.Run(), in.Run());
      ASSERT_TRUE(SameBytes(out.Bytes, expected.Bytes)) << "run of " << length << " from " << start;
    }
  }
}

// Lengths around the fused path's threshold and the vector widths, and across the buffer's steps.
TEST_P(ConvertLevels, EveryShapeMatchesTheReference) {
  for (SPair const& pair : ShapePairs())
    for (std::size_t count : {1, 2, 15, 16, 17, 63, 64, 65, 255, 256, 257, 1031})
      for (std::size_t shift : {0, 1}) CheckRun(GetParam(), pair, count, shift);
  for (SPair const& pair : {PairOf<RGB, Byte, Lum, UByte>(), PairOf<LumA, Short, RGBA, UByte>(),
                            PairOf<RGBA, Double, RGB, UByte>(), PairOf<Lum, Float, RGB, UByte>()}) {
    std::size_t const block = PlanOf(PairKeyOf(pair.TrgPixel, pair.TrgData, pair.SrcPixel, pair.SrcData), GetParam()).Block;
    for (std::size_t count : {block - 1, block + 1, 2 * block + 3})
      if (block != 0) CheckRun(GetParam(), pair, count, 1);
  }
}

// The whole value sample of the source type, mapped as it moves.
TEST_P(ConvertLevels, MappedPairsGiveEveryValueAsMoved) {
  for (SPair const& pair : {PairOf<BGR, Byte, RGB, UByte>(), PairOf<BGR, UByte, RGB, Byte>(), PairOf<BGR, Short, RGB, UShort>(),
                            PairOf<BGR, UShort, RGB, Short>(), PairOf<BGR, Int, RGB, UInt>(), PairOf<BGR, UInt, RGB, Int>(),
                            PairOf<BGR, Int, RGB, Float>(), PairOf<BGR, UInt, RGB, Float>(), PairOf<BGR, Float, RGB, Int>(),
                            PairOf<BGR, Float, RGB, UInt>()}) {
    std::vector<unsigned char> const values = SourceValues(*NuRef::FindDataType(pair.SrcData));
    CheckRun(GetParam(), pair, values.size() / NuRef::PixelBytes(RGB, pair.SrcData) + 1, 1, &values);
  }
}

// Targets above the streaming size of each order, with a part block at the end and the first
// line three pixels into the run; sources above the size from which they are fetched ahead.
TEST_P(ConvertLevels, RunsBeyondTheCachesStreamOrFetch) {
  std::size_t const streamFrom = RunPlanOf(EOrder::Moves, false, 1, 1, ELevel::Avx512).StreamFrom;
  std::size_t const fetchFrom = RunPlanOf(EOrder::Moves, false, 1, 1, ELevel::Baseline).FetchFrom;
  for (SPair const& pair : {PairOf<Lum, UShort, Lum, UByte>(), PairOf<RGBA, UByte, RGB, UByte>(),
                            PairOf<BGR, Float, RGBA, Short>(), PairOf<RGBA, Float, LumA, Short>()})
    CheckRun(GetParam(), pair, streamFrom / NuRef::PixelBytes(pair.TrgPixel, pair.TrgData) + StreamBlock + 7,
             3 * NuRef::PixelBytes(pair.TrgPixel, pair.TrgData) / NuRef::FindDataType(pair.TrgData)->Bytes);
  for (SPair const& pair : {PairOf<Lum, UByte, RGBA, Double>(), PairOf<LumA, UByte, RGBA, Float>(), PairOf<BGR, Byte, RGBA, UByte>()})
    CheckRun(GetParam(), pair, fetchFrom / NuRef::PixelBytes(pair.SrcPixel, pair.SrcData) + 77, 1);
}

INSTANTIATE_TEST_SUITE_P(Levels, ConvertLevels, ::testing::ValuesIn(AllLevels),
                         [](::testing::TestParamInfo<ELevel> const& info) { return std::string(LevelName(info.param)); });

// Every pair's plan at every level against the committed tests/Golden/ConvertPlans.txt, so that
// every change of path shows as a diff of that file. After a deliberate change, regenerate it with
//   NU_WRITE_GOLDEN=1 build/release/tests/NuCoreExTests --gtest_filter='ConvertPlans.*'
TEST(ConvertPlans, EveryPairAtEveryLevelMatchesTheGoldenFile) {
  std::vector<std::string> const lines = PlanLines();
  if (std::getenv("NU_WRITE_GOLDEN") != nullptr) {
    std::ofstream out(NU_GOLDEN_FILE);
    for (std::string const& line : lines) out << line << '\n';
    GTEST_SKIP() << "wrote " << NU_GOLDEN_FILE;
  }
  std::ifstream in(NU_GOLDEN_FILE);
  ASSERT_TRUE(in) << "cannot read " << NU_GOLDEN_FILE;
  std::vector<std::string> golden;
  for (std::string line; std::getline(in, line);) golden.push_back(line);
  int shown = 0;
  for (std::size_t i = 0; i < std::max(lines.size(), golden.size()) && shown < 20; ++i) {
    std::string const want = i < golden.size() ? golden[i] : "(none)", got = i < lines.size() ? lines[i] : "(none)";
    if (want != got) {
      ADD_FAILURE() << "line " << i + 1 << "\n golden: " << want << "\n   plan: " << got;
      ++shown;
    }
  }
}
