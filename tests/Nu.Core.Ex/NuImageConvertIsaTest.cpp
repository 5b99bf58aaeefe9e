// The fast paths of each instruction set, each its own named case (skipped where this CPU
// lacks the set), bit for bit against the reference model: the value kernels over every
// 8/16-bit value and the special/random wider values at many run lengths and unaligned
// starts, and the fused layout path for every layout shape, with guard bytes around the runs.
// The library's own path on this CPU is also covered by every other conversion test.
#include <Nu.Core.Ex/NuImageConvertImpl.h>
#include <Nu.Core.Ex/NuImageConvertValuesImpl.h>

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
using Nu::Detail::EIsa;

namespace {

bool Supported(EIsa isa) {
  switch (isa) {
    case EIsa::Avx512:
      return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
             __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    case EIsa::Avx2: return __builtin_cpu_supports("avx2");
    case EIsa::Baseline: return true;
  }
  return false;
}

// The instruction set under test. The checks are compiled once and reach that set's kernels
// (the library's own objects) through these policies, rather than once per set.
EIsa tested = EIsa::Baseline;

template <class TE, class SE>
struct TValuesTested {
  static void Run(std::size_t n, TE* trg, SE const* src) noexcept {
    switch (tested) {
      case EIsa::Avx512: return Nu::Detail::ConvertValues<EIsa::Avx512, TE, SE>(n, trg, src);
      case EIsa::Avx2: return Nu::Detail::ConvertValues<EIsa::Avx2, TE, SE>(n, trg, src);
      case EIsa::Baseline: return Nu::Detail::ConvertValues<EIsa::Baseline, TE, SE>(n, trg, src);
    }
  }
};
struct TMovesTested {
  static bool Streams() noexcept { return tested == EIsa::Avx512; }
  template <class TE, class SE, class Shape>
  static bool MapValues(std::size_t count, TE* trg, SE const* src) noexcept {
    if (tested != EIsa::Avx512 || !Nu::Detail::HasVbmi()) return false;
    Nu::Detail::MoveMappedAvx512<TE, SE, Shape>(count, trg, src);
    return true;
  }
  template <class T, class Shape, Nu::Detail::EPass Pass>
  static void Run(std::size_t count, T* trg, T const* src, T fill) noexcept {
    using Moves = Nu::Detail::TMoves<T, Shape, Pass>;
    switch (tested) {
      case EIsa::Avx512: return Moves::Avx512(count, trg, src, fill);
      case EIsa::Avx2: return Moves::Avx2(count, trg, src, fill);
      case EIsa::Baseline: return Moves::Baseline(count, trg, src, fill);
    }
  }
};

// The run lengths around the vector widths, plus a long run.
constexpr std::size_t Lengths[] = {0, 1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 1000};

template <class TE, class SE, template <class, class> class TValues = TValuesTested>
void CheckValues(int trgType, int srcType) {
  SCOPED_TRACE(std::string(NuRef::FindDataType(trgType)->Name) + " <- " + NuRef::FindDataType(srcType)->Name);
  NuRef::SDataRow const& src = *NuRef::FindDataType(srcType);
  std::vector<unsigned char> const values = NuTest::SourceValues(src);
  std::size_t const count = values.size() / sizeof(SE);
  // The whole sample in one run, then runs of every length at aligned and unaligned starts.
  std::vector<std::pair<std::size_t, std::size_t>> runs = {{0, count}};
  for (std::size_t length : Lengths)
    for (std::size_t start : {std::size_t{0}, std::size_t{1}, std::size_t{3}})
      if (start + length <= count) runs.emplace_back(start, length);
  for (auto const& [start, length] : runs) {
    NuTest::SGuarded out(length * sizeof(TE), sizeof(TE), 0xEE);
    NuTest::SGuarded expected = out;
    for (std::size_t i = 0; i < length; ++i)
      NuRef::ConvertValue(trgType, expected.Run() + i * sizeof(TE), srcType, values.data() + (start + i) * sizeof(SE));
    // The source run starts where `start` puts it: unaligned for start 1 and 3.
    std::vector<unsigned char> source(values.begin() + static_cast<std::ptrdiff_t>(start * sizeof(SE)),
                                      values.begin() + static_cast<std::ptrdiff_t>((start + length) * sizeof(SE)));
    source.insert(source.begin(), sizeof(SE), 0);  // one element ahead: another alignment again
    TValues<TE, SE>::Run(length, reinterpret_cast<TE*>(out.Run()),
                                           reinterpret_cast<SE const*>(source.data() + sizeof(SE)));
    ASSERT_EQ(out.Bytes, expected.Bytes) << "run of " << length << " from " << start;
  }
}

// Element type of a data type id, and the 64 pairs.
template <int D>
using TElementOf = typename Nu::TPixelOf<EPixelType::Lum, D>::Element;
template <int TD, int... SDs>
void CheckValuesInto(std::integer_sequence<int, SDs...>) {
  (CheckValues<TElementOf<TD>, TElementOf<SDs>>(TD, SDs), ...);
}
template <int... TDs>
void CheckAllValues(std::integer_sequence<int, TDs...> all) {
  (CheckValuesInto<TDs>(all), ...);
}
using TAllData = std::integer_sequence<int, EDataType::Byte, EDataType::UByte, EDataType::Short, EDataType::UShort,
                                       EDataType::Int, EDataType::UInt, EDataType::Float, EDataType::Double>;

// The fused path of one pair of formats on this instruction set's kernels.
template <class TTrg, class TSrc>
void CheckFused(std::initializer_list<std::size_t> counts = {0, 1, 2, 3, 15, 16, 17, 33, 255, 256, 257, 600}) {
  using Kernel = Nu::Detail::TConvertKernel<TTrg, TSrc>;
  using TE = typename Kernel::TE;
  using SE = typename Kernel::SE;
  int const tp = TTrg::PixelTypeId, td = TTrg::DataTypeId, sp = TSrc::PixelTypeId, sd = TSrc::DataTypeId;
  SCOPED_TRACE(std::string(NuRef::FindLayout(tp)->Name) + "/" + NuRef::FindDataType(td)->Name + " <- " +
               NuRef::FindLayout(sp)->Name + "/" + NuRef::FindDataType(sd)->Name);
  for (std::size_t count : counts) {
    std::mt19937 random(static_cast<std::uint32_t>(count * 7919 + tp + 3 * td + 5 * sp + 7 * sd));
    NuTest::SGuarded src(2 * count * sizeof(TSrc), sizeof(SE), 0xA5);
    NuTest::FillRandom(src.Run(), 2 * count * TSrc::ElementCount, sd, random);
    NuTest::SGuarded trg(2 * count * sizeof(TTrg), sizeof(TE), 0x5C);
    NuTest::SGuarded expected = trg;
    NuRef::ConvertRun(tp, td, expected.Run(), sp, sd, src.Run(), static_cast<unsigned>(count));
    Kernel::Run::template Apart<TValuesTested<TE, SE>, TMovesTested>(
        count, reinterpret_cast<TE*>(trg.Run()), reinterpret_cast<SE const*>(src.Run()));
    ASSERT_EQ(trg.Bytes, expected.Bytes) << "count " << count;
  }
}

template <class TTrg, class TSrc>
void CheckAcrossBlocks() {
  std::size_t const block = Nu::Detail::TConvertKernel<TTrg, TSrc>::Run::ValuesFirstBlock;
  CheckFused<TTrg, TSrc>({block - 1, block + 1, 2 * block + 3});
}

// A target above the streaming size, a part block at the end and a start off the line: on
// AVX-512 the blocks go out through the buffer with non-temporal stores. Or a source above the
// size from which the source is fetched ahead, in short steps. Guard bytes around.
template <class TTrg, class TSrc>
void CheckLarge(std::size_t count) {
  using Kernel = Nu::Detail::TConvertKernel<TTrg, TSrc>;
  using TE = typename Kernel::TE;
  using SE = typename Kernel::SE;
  SCOPED_TRACE(std::string(NuRef::FindLayout(TTrg::PixelTypeId)->Name) + "/" +
               NuRef::FindDataType(TTrg::DataTypeId)->Name + " <- " + NuRef::FindLayout(TSrc::PixelTypeId)->Name +
               "/" + NuRef::FindDataType(TSrc::DataTypeId)->Name);
  std::mt19937 random(static_cast<std::uint32_t>(count));
  std::size_t const runs = Kernel::AlphaShift ? 2 : 1;  // the LumA rule's second run
  NuTest::SGuarded src(runs * count * sizeof(TSrc), sizeof(SE), 0xA5);
  NuTest::FillRandom(src.Run(), runs * count * TSrc::ElementCount, TSrc::DataTypeId, random);
  // Three pixels past a line: the first target line comes some pixels into the run.
  std::vector<unsigned char> trg(runs * count * sizeof(TTrg) + 4 * 64, 0x5C);
  std::vector<unsigned char> expected = trg;
  std::size_t const start = (64 - reinterpret_cast<std::uintptr_t>(trg.data()) % 64) % 64 + 3 * sizeof(TTrg);
  NuRef::ConvertRun(TTrg::PixelTypeId, TTrg::DataTypeId, expected.data() + start, TSrc::PixelTypeId,
                    TSrc::DataTypeId, src.Run(), static_cast<unsigned>(count));
  Kernel::Run::template Apart<TValuesTested<TE, SE>, TMovesTested>(
      count, reinterpret_cast<TE*>(trg.data() + start), reinterpret_cast<SE const*>(src.Run()));
  ASSERT_TRUE(trg == expected);
}
template <class TTrg, class TSrc>
void CheckStreamed() {
  CheckLarge<TTrg, TSrc>(Nu::Detail::StreamBytes / sizeof(TTrg) + Nu::Detail::StreamBlock + 7);
}
template <class TTrg, class TSrc>
void CheckFetched() {
  CheckLarge<TTrg, TSrc>(Nu::Detail::FetchFromBytes / sizeof(TSrc) + 77);
}

template <int TD, int SD, int TP, int... SPs>
void CheckFusedInto() {
  (CheckFused<Nu::TPixelOf<TP, TD>, Nu::TPixelOf<SPs, SD>>(), ...);
}
// Every layout shape (Bayer shapes are Lum's) for one pair of data types.
template <int TD, int SD>
void CheckAllShapes() {
  constexpr int RGBA = EPixelType::RGBA, RGB = EPixelType::RGB, BGRA = EPixelType::BGRA, BGR = EPixelType::BGR,
                Lum = EPixelType::Lum, LumA = EPixelType::LumA;
  CheckFusedInto<TD, SD, RGBA, RGBA, RGB, BGRA, BGR, Lum, LumA>();
  CheckFusedInto<TD, SD, RGB, RGBA, RGB, BGRA, BGR, Lum, LumA>();
  CheckFusedInto<TD, SD, BGRA, RGBA, RGB, BGRA, BGR, Lum, LumA>();
  CheckFusedInto<TD, SD, BGR, RGBA, RGB, BGRA, BGR, Lum, LumA>();
  CheckFusedInto<TD, SD, Lum, RGBA, RGB, BGRA, BGR, Lum, LumA>();
  CheckFusedInto<TD, SD, LumA, RGBA, RGB, BGRA, BGR, Lum, LumA>();
}

// The whole value sample of the source type (every 8/16-bit value, the special and random
// wider ones) through a layout change, where the values are mapped as they move.
template <int TD, int SD>
void CheckMappedValues() {
  using TTrg = Nu::TPixelOf<EPixelType::BGR, TD>;
  using TSrc = Nu::TPixelOf<EPixelType::RGB, SD>;
  using Kernel = Nu::Detail::TConvertKernel<TTrg, TSrc>;
  using TE = typename Kernel::TE;
  using SE = typename Kernel::SE;
  SCOPED_TRACE(std::string(NuRef::FindDataType(TD)->Name) + " <- " + NuRef::FindDataType(SD)->Name);
  std::vector<unsigned char> values = NuTest::SourceValues(*NuRef::FindDataType(SD));
  while (values.size() % sizeof(TSrc) != 0) values.insert(values.end(), values.begin(), values.begin() + sizeof(SE));
  std::size_t const count = values.size() / sizeof(TSrc);
  NuTest::SGuarded src(values.size(), sizeof(SE), 0xA5);
  std::memcpy(src.Run(), values.data(), values.size());
  NuTest::SGuarded trg(count * sizeof(TTrg), sizeof(TE), 0x5C);
  NuTest::SGuarded expected = trg;
  NuRef::ConvertRun(EPixelType::BGR, TD, expected.Run(), EPixelType::RGB, SD, src.Run(), static_cast<unsigned>(count));
  Kernel::Run::template Apart<TValuesTested<TE, SE>, TMovesTested>(count, reinterpret_cast<TE*>(trg.Run()),
                                                                   reinterpret_cast<SE const*>(src.Run()));
  ASSERT_TRUE(trg.Bytes == expected.Bytes);
}

void CheckIsa(EIsa isa) {
  tested = isa;
  CheckAllValues(TAllData{});
  // Same type (moves only) for every element size, and conversions through the buffer.
  CheckAllShapes<EDataType::UByte, EDataType::UByte>();
  CheckAllShapes<EDataType::Short, EDataType::Short>();
  CheckAllShapes<EDataType::Float, EDataType::Float>();
  CheckAllShapes<EDataType::Double, EDataType::Double>();
  CheckAllShapes<EDataType::Float, EDataType::UByte>();
  CheckAllShapes<EDataType::UByte, EDataType::Double>();
  CheckAllShapes<EDataType::Short, EDataType::UInt>();
  CheckAllShapes<EDataType::Byte, EDataType::UByte>();  // values mapped as they move
  CheckAllShapes<EDataType::UByte, EDataType::Byte>();
  CheckAllShapes<EDataType::Short, EDataType::UShort>();
  CheckAllShapes<EDataType::UShort, EDataType::Short>();
  CheckAllShapes<EDataType::Int, EDataType::UInt>();
  CheckAllShapes<EDataType::UInt, EDataType::Float>();
  CheckAllShapes<EDataType::Float, EDataType::Int>();
  CheckMappedValues<EDataType::Byte, EDataType::UByte>();
  CheckMappedValues<EDataType::UByte, EDataType::Byte>();
  CheckMappedValues<EDataType::Short, EDataType::UShort>();
  CheckMappedValues<EDataType::UShort, EDataType::Short>();
  CheckMappedValues<EDataType::Int, EDataType::UInt>();
  CheckMappedValues<EDataType::UInt, EDataType::Int>();
  CheckMappedValues<EDataType::Int, EDataType::Float>();
  CheckMappedValues<EDataType::UInt, EDataType::Float>();
  CheckMappedValues<EDataType::Float, EDataType::Int>();
  CheckMappedValues<EDataType::Float, EDataType::UInt>();
  // Runs across the steps of the values-first road (the moves-first one steps every 256
  // pixels): narrow pixels, the LumA rule's two passes and wide pixels.
  using Nu::TPixelOf;
  CheckAcrossBlocks<TPixelOf<EPixelType::RGB, EDataType::Byte>, TPixelOf<EPixelType::Lum, EDataType::UByte>>();
  CheckAcrossBlocks<TPixelOf<EPixelType::LumA, EDataType::Short>, TPixelOf<EPixelType::RGBA, EDataType::UByte>>();
  CheckAcrossBlocks<TPixelOf<EPixelType::RGBA, EDataType::Double>, TPixelOf<EPixelType::RGB, EDataType::UByte>>();
  // One of each road through the buffer: values only, moves only, moves then values, values
  // then moves.
  CheckStreamed<TPixelOf<EPixelType::Lum, EDataType::UShort>, TPixelOf<EPixelType::Lum, EDataType::UByte>>();
  CheckStreamed<TPixelOf<EPixelType::RGBA, EDataType::UByte>, TPixelOf<EPixelType::RGB, EDataType::UByte>>();
  CheckStreamed<TPixelOf<EPixelType::BGR, EDataType::Float>, TPixelOf<EPixelType::RGBA, EDataType::Float>>();
  CheckStreamed<TPixelOf<EPixelType::BGR, EDataType::Float>, TPixelOf<EPixelType::RGBA, EDataType::Short>>();
  CheckStreamed<TPixelOf<EPixelType::RGBA, EDataType::Float>, TPixelOf<EPixelType::LumA, EDataType::Short>>();
  // Sources fetched ahead: moves first, the LumA rule's two passes, and values mapped as they
  // move.
  CheckFetched<TPixelOf<EPixelType::Lum, EDataType::UByte>, TPixelOf<EPixelType::RGBA, EDataType::Double>>();
  CheckFetched<TPixelOf<EPixelType::LumA, EDataType::UByte>, TPixelOf<EPixelType::RGBA, EDataType::Float>>();
  CheckFetched<TPixelOf<EPixelType::BGR, EDataType::Byte>, TPixelOf<EPixelType::RGBA, EDataType::UByte>>();
}

class InstructionSet : public ::testing::TestWithParam<EIsa> {};

// The AVX-512 lanes of the byte sources that a VBMI table takes over where the CPU has it.
template <class TE, class SE>
struct TLanesWithoutVbmi {
  NU_ISA_AVX512 static void Run(std::size_t n, TE* trg, SE const* src) noexcept {
    Nu::Detail::ConvertValuesLanesAvx512<TE, SE>(n, trg, src);
  }
};

}  // namespace

TEST(InstructionSet, Avx512WithoutVbmiGivesTheReferenceBits) {
  if (!Supported(EIsa::Avx512)) GTEST_SKIP() << "this CPU lacks the instruction set";
  CheckValues<char, unsigned char, TLanesWithoutVbmi>(EDataType::Byte, EDataType::UByte);
  CheckValues<unsigned char, char, TLanesWithoutVbmi>(EDataType::UByte, EDataType::Byte);
  CheckValues<int, char, TLanesWithoutVbmi>(EDataType::Int, EDataType::Byte);
  CheckValues<unsigned int, char, TLanesWithoutVbmi>(EDataType::UInt, EDataType::Byte);
}

TEST_P(InstructionSet, FastPathsGiveTheReferenceBits) {
  if (!Supported(GetParam())) GTEST_SKIP() << "this CPU lacks the instruction set";
  CheckIsa(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Paths, InstructionSet, ::testing::Values(EIsa::Baseline, EIsa::Avx2, EIsa::Avx512),
                         [](::testing::TestParamInfo<EIsa> const& info) {
                           switch (info.param) {
                             case EIsa::Avx512: return std::string("Avx512");
                             case EIsa::Avx2: return std::string("Avx2");
                             default: return std::string("Baseline");
                           }
                         });
