// The engine at every instruction-set level this CPU has, one named case per level, bit for bit
// against the reference model: the value kernels of all 64 type pairs over every 8/16-bit value
// and the wider samples, at lengths across the vector widths and shifted starts; the fused path
// of every layout shape for type pairs that reach every order and element size, with guard bytes
// around the runs; and runs large enough to stream or to fetch ahead. The kernels are the
// library's own objects, the level goes down as the library passes it (ConvertRunAt).
#include <Nu.Core.Ex/Convert/Leaf.h>

#include <Reference/ConvertReference.h>
#include <Support/ConvertSamples.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>
#include <utility>
#include <vector>

using Nu::EDataType;
using Nu::EPixelType;
using Nu::TPixelOf;
using namespace Nu::Detail;

namespace {

std::string FormatName(int pixelType, int dataType) {
  return std::string(NuRef::FindLayout(pixelType)->Name) + "/" + NuRef::FindDataType(dataType)->Name;
}

// Lengths across every vector width and the fused path's threshold, and a long run.
constexpr std::size_t Lengths[] = {0, 1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 1031};

template <class TE, class SE>
void CheckValues(ELevel level) {
  int const trgType = DataIdOf<TE>(), srcType = DataIdOf<SE>();
  SCOPED_TRACE(std::string(NuRef::FindDataType(trgType)->Name) + " <- " + NuRef::FindDataType(srcType)->Name);
  std::vector<unsigned char> const values = NuTest::SourceValues(*NuRef::FindDataType(srcType));
  std::size_t const count = values.size() / sizeof(SE);
  // The whole sample in one run, then runs of every length at shifted starts.
  std::vector<std::pair<std::size_t, std::size_t>> runs = {{0, count}};
  for (std::size_t length : Lengths)
    for (std::size_t start : {std::size_t{0}, std::size_t{1}, std::size_t{3}})
      if (start + length <= count) runs.emplace_back(start, length);
  for (auto const& [start, length] : runs) {
    NuTest::SGuarded out(length * sizeof(TE), sizeof(TE), 0xEE);
    NuTest::SGuarded expected = out;
    for (std::size_t i = 0; i < length; ++i)
      NuRef::ConvertValue(trgType, expected.Run() + i * sizeof(TE), srcType, values.data() + (start + i) * sizeof(SE));
    NuTest::SGuarded in(length * sizeof(SE), sizeof(SE), 0);
    std::memcpy(in.Run(), values.data() + start * sizeof(SE), length * sizeof(SE));
    ConvertValues<TE, SE>(level, length, reinterpret_cast<TE*>(out.Run()), reinterpret_cast<SE const*>(in.Run()));
    ASSERT_EQ(out.Bytes, expected.Bytes) << "run of " << length << " from " << start;
  }
}

template <class... TEs>
struct TTypes {};
using TAllElements = TTypes<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;

template <class TE, class... SEs>
void CheckValuesInto(ELevel level, TTypes<SEs...>) {
  (CheckValues<TE, SEs>(level), ...);
}
template <class... TEs>
void CheckAllValues(ELevel level, TTypes<TEs...> all) {
  (CheckValuesInto<TEs>(level, all), ...);
}

// One pair's run through the driver at a level, against the reference run, for each count, with
// the runs starting on a line and one element past it.
template <class TTrg, class TSrc>
void CheckPair(ELevel level, std::initializer_list<std::size_t> counts) {
  using Pair = TPairOf<TTrg, TSrc>;
  int const tp = TTrg::PixelTypeId, td = TTrg::DataTypeId, sp = TSrc::PixelTypeId, sd = TSrc::DataTypeId;
  SCOPED_TRACE(FormatName(tp, td) + " <- " + FormatName(sp, sd));
  for (std::size_t count : counts)
    for (std::size_t shift : {0, 1}) {
      std::mt19937 random(static_cast<std::uint32_t>(count * 7919 + tp + 3 * td + 5 * sp + 7 * sd));
      NuTest::SGuarded src(2 * count * sizeof(TSrc), sizeof(typename Pair::SE), 0xA5, shift);
      NuTest::FillRandom(src.Run(), 2 * count * TSrc::ElementCount, sd, random);
      NuTest::SGuarded trg(2 * count * sizeof(TTrg), sizeof(typename Pair::TE), 0x5C, shift);
      NuTest::SGuarded expected = trg;
      NuRef::ConvertRun(tp, td, expected.Run(), sp, sd, src.Run(), static_cast<unsigned>(count));
      ConvertRunAt(level, static_cast<unsigned>(count), trg.Run(), src.Run(), Pair::Kernels());
      ASSERT_EQ(trg.Bytes, expected.Bytes) << "count " << count << ", shift " << shift;
    }
}

template <class TTrg, class TSrc>
void CheckAcrossBlocks(ELevel level) {
  std::size_t const block = PlanOf(PairKeyOf<TTrg, TSrc>(), level).Block;
  if (block != 0) CheckPair<TTrg, TSrc>(level, {block - 1, block + 1, 2 * block + 3});
}

template <int TD, int SD, int TP, int... SPs>
void CheckFrom(ELevel level) {
  (CheckPair<TPixelOf<TP, TD>, TPixelOf<SPs, SD>>(level, {1, 2, 15, 16, 17, 63, 64, 65, 255, 256, 257, 1031}), ...);
}
// Every layout shape (Bayer shapes are Lum's) for one pair of data types.
template <int TD, int SD>
void CheckAllShapes(ELevel level) {
  constexpr int RGBA = EPixelType::RGBA, RGB = EPixelType::RGB, BGRA = EPixelType::BGRA, BGR = EPixelType::BGR,
                Lum = EPixelType::Lum, LumA = EPixelType::LumA;
  CheckFrom<TD, SD, RGBA, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
  CheckFrom<TD, SD, RGB, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
  CheckFrom<TD, SD, BGRA, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
  CheckFrom<TD, SD, BGR, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
  CheckFrom<TD, SD, Lum, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
  CheckFrom<TD, SD, LumA, RGBA, RGB, BGRA, BGR, Lum, LumA>(level);
}

// The whole value sample of the source type (every 8/16-bit value, the special and random wider
// ones) through a layout change, where the values are mapped as they move.
template <int TD, int SD>
void CheckMappedValues(ELevel level) {
  using TTrg = TPixelOf<EPixelType::BGR, TD>;
  using TSrc = TPixelOf<EPixelType::RGB, SD>;
  SCOPED_TRACE(std::string(NuRef::FindDataType(TD)->Name) + " <- " + NuRef::FindDataType(SD)->Name);
  std::vector<unsigned char> values = NuTest::SourceValues(*NuRef::FindDataType(SD));
  std::size_t const elementBytes = sizeof(typename TSrc::Element);
  while (values.size() % sizeof(TSrc) != 0) values.insert(values.end(), values.begin(), values.begin() + elementBytes);
  std::size_t const count = values.size() / sizeof(TSrc);
  NuTest::SGuarded src(values.size(), elementBytes, 0xA5);
  std::memcpy(src.Run(), values.data(), values.size());
  NuTest::SGuarded trg(count * sizeof(TTrg), sizeof(typename TTrg::Element), 0x5C);
  NuTest::SGuarded expected = trg;
  NuRef::ConvertRun(EPixelType::BGR, TD, expected.Run(), EPixelType::RGB, SD, src.Run(), static_cast<unsigned>(count));
  ConvertRunAt(level, static_cast<unsigned>(count), trg.Run(), src.Run(), TPairOf<TTrg, TSrc>::Kernels());
  ASSERT_TRUE(trg.Bytes == expected.Bytes);
}

// A run beyond the caches: a target above the streaming size, with a part block at the end and a
// start off the line, or a source above the size from which it is fetched ahead.
template <class TTrg, class TSrc>
void CheckLarge(ELevel level, std::size_t count) {
  using Pair = TPairOf<TTrg, TSrc>;
  SCOPED_TRACE(FormatName(TTrg::PixelTypeId, TTrg::DataTypeId) + " <- " + FormatName(TSrc::PixelTypeId, TSrc::DataTypeId));
  std::mt19937 random(static_cast<std::uint32_t>(count));
  std::size_t const runs = PairKeyOf<TTrg, TSrc>().LumAShift ? 2 : 1;  // the LumA rule's second run
  NuTest::SGuarded src(runs * count * sizeof(TSrc), sizeof(typename Pair::SE), 0xA5);
  NuTest::FillRandom(src.Run(), runs * count * TSrc::ElementCount, TSrc::DataTypeId, random);
  std::vector<unsigned char> trg(runs * count * sizeof(TTrg) + 4 * 64, 0x5C);
  std::vector<unsigned char> expected = trg;
  // Three pixels past a line: the first target line comes some pixels into the run.
  std::size_t const start = (64 - reinterpret_cast<std::uintptr_t>(trg.data()) % 64) % 64 + 3 * sizeof(TTrg);
  NuRef::ConvertRun(TTrg::PixelTypeId, TTrg::DataTypeId, expected.data() + start, TSrc::PixelTypeId,
                    TSrc::DataTypeId, src.Run(), static_cast<unsigned>(count));
  ConvertRunAt(level, static_cast<unsigned>(count), trg.data() + start, src.Run(), Pair::Kernels());
  ASSERT_TRUE(trg == expected);
}
template <class TTrg, class TSrc>
void CheckStreamed(ELevel level) {
  constexpr std::size_t streamFrom = RunPlanOf(EOrder::Moves, 1, 1, ELevel::Avx512).StreamFrom;
  CheckLarge<TTrg, TSrc>(level, streamFrom / sizeof(TTrg) + StreamBlock + 7);
}
template <class TTrg, class TSrc>
void CheckFetched(ELevel level) {
  constexpr std::size_t fetchFrom = RunPlanOf(EOrder::Moves, 1, 1, ELevel::Baseline).FetchFrom;
  CheckLarge<TTrg, TSrc>(level, fetchFrom / sizeof(TSrc) + 77);
}

class ConvertLevels : public ::testing::TestWithParam<ELevel> {
protected:
  void SetUp() override {
    if (GetParam() > DetectLevel()) GTEST_SKIP() << "this CPU lacks the level";
  }
};

}  // namespace

TEST_P(ConvertLevels, ValueKernelsMatchTheReference) { CheckAllValues(GetParam(), TAllElements{}); }

TEST_P(ConvertLevels, EveryShapeMatchesTheReference) {
  ELevel const level = GetParam();
  // Same type (moves only) for every element size, conversions through the buffer either way,
  // and the type pairs that are mapped as they move.
  CheckAllShapes<EDataType::UByte, EDataType::UByte>(level);
  CheckAllShapes<EDataType::Short, EDataType::Short>(level);
  CheckAllShapes<EDataType::Float, EDataType::Float>(level);
  CheckAllShapes<EDataType::Double, EDataType::Double>(level);
  CheckAllShapes<EDataType::Float, EDataType::UByte>(level);
  CheckAllShapes<EDataType::UByte, EDataType::Double>(level);
  CheckAllShapes<EDataType::Short, EDataType::UInt>(level);
  CheckAllShapes<EDataType::Byte, EDataType::UByte>(level);
  CheckAllShapes<EDataType::UByte, EDataType::Byte>(level);
  CheckAllShapes<EDataType::Short, EDataType::UShort>(level);
  CheckAllShapes<EDataType::UShort, EDataType::Short>(level);
  CheckAllShapes<EDataType::Int, EDataType::UInt>(level);
  CheckAllShapes<EDataType::UInt, EDataType::Float>(level);
  CheckAllShapes<EDataType::Float, EDataType::Int>(level);
  // Runs across the steps through the buffer: values first with narrow pixels, the LumA rule's
  // two passes, wide pixels, and moves first.
  CheckAcrossBlocks<TPixelOf<EPixelType::RGB, EDataType::Byte>, TPixelOf<EPixelType::Lum, EDataType::UByte>>(level);
  CheckAcrossBlocks<TPixelOf<EPixelType::LumA, EDataType::Short>, TPixelOf<EPixelType::RGBA, EDataType::UByte>>(level);
  CheckAcrossBlocks<TPixelOf<EPixelType::RGBA, EDataType::Double>, TPixelOf<EPixelType::RGB, EDataType::UByte>>(level);
  CheckAcrossBlocks<TPixelOf<EPixelType::Lum, EDataType::Float>, TPixelOf<EPixelType::RGB, EDataType::UByte>>(level);
}

TEST_P(ConvertLevels, MappedPairsGiveEveryValueAsMoved) {
  ELevel const level = GetParam();
  CheckMappedValues<EDataType::Byte, EDataType::UByte>(level);
  CheckMappedValues<EDataType::UByte, EDataType::Byte>(level);
  CheckMappedValues<EDataType::Short, EDataType::UShort>(level);
  CheckMappedValues<EDataType::UShort, EDataType::Short>(level);
  CheckMappedValues<EDataType::Int, EDataType::UInt>(level);
  CheckMappedValues<EDataType::UInt, EDataType::Int>(level);
  CheckMappedValues<EDataType::Int, EDataType::Float>(level);
  CheckMappedValues<EDataType::UInt, EDataType::Float>(level);
  CheckMappedValues<EDataType::Float, EDataType::Int>(level);
  CheckMappedValues<EDataType::Float, EDataType::UInt>(level);
}

TEST_P(ConvertLevels, RunsBeyondTheCachesStreamOrFetch) {
  ELevel const level = GetParam();
  // One of each order through the streaming buffer: values only, moves only, moves first, values
  // first.
  CheckStreamed<TPixelOf<EPixelType::Lum, EDataType::UShort>, TPixelOf<EPixelType::Lum, EDataType::UByte>>(level);
  CheckStreamed<TPixelOf<EPixelType::RGBA, EDataType::UByte>, TPixelOf<EPixelType::RGB, EDataType::UByte>>(level);
  CheckStreamed<TPixelOf<EPixelType::BGR, EDataType::Float>, TPixelOf<EPixelType::RGBA, EDataType::Short>>(level);
  CheckStreamed<TPixelOf<EPixelType::RGBA, EDataType::Float>, TPixelOf<EPixelType::LumA, EDataType::Short>>(level);
  // Sources fetched ahead: moves first, the LumA rule's two passes, and values mapped as they move.
  CheckFetched<TPixelOf<EPixelType::Lum, EDataType::UByte>, TPixelOf<EPixelType::RGBA, EDataType::Double>>(level);
  CheckFetched<TPixelOf<EPixelType::LumA, EDataType::UByte>, TPixelOf<EPixelType::RGBA, EDataType::Float>>(level);
  CheckFetched<TPixelOf<EPixelType::BGR, EDataType::Byte>, TPixelOf<EPixelType::RGBA, EDataType::UByte>>(level);
}

INSTANTIATE_TEST_SUITE_P(Levels, ConvertLevels, ::testing::ValuesIn(AllLevels),
                         [](::testing::TestParamInfo<ELevel> const& info) {
                           std::string name = LevelName(info.param);
                           name[0] = static_cast<char>(name[0] - 'a' + 'A');
                           return name;
                         });
