// Google Benchmark cases for representative conversion pairs on 640x480 and 3840x2160 images.
// Each case reports bytes per second (source plus target bytes) and, measured in the same run
// and interleaved with the conversion, the counter vs_memcpy: conversion time divided by the
// time of a memcpy of (source bytes + target bytes) / 2.
//
//   NuConvertBench [benchmark options]       the representative pairs (Google Benchmark)
//   NuConvertBench --all-pairs [--fresh] [--quick] [--list] [--match TEXT]
//                                            every carried pair at both sizes: distribution of
//                                            the ratio to memcpy (min, median, max, ten worst),
//                                            on warm buffers or, with --fresh, from memory;
//                                            --list prints every pair's ratio too, --match keeps
//                                            the pairs whose name ("LumA/UByte <- Lum/Byte")
//                                            contains TEXT
//   NuConvertBench --plan [--quick] [--match TEXT]
//                                            the same, listing each pair's ratio beside the plan
//                                            this CPU's level gives it (Convert/Plan.h)
#include <Nu.Core.Ex/Convert/PlanText.h>
#include <Nu.Core.Ex/NuCoreEx.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

struct SPair {
  EPixelType::ID TrgPixel;
  EDataType::ID TrgData;
  EPixelType::ID SrcPixel;
  EDataType::ID SrcData;
};

// Fractions in 0..1 for floating sources, any bytes for integer ones.
void Fill(CNuImage& image, EDataType::ID dataType) {
  std::mt19937 random(42);
  unsigned int const bytes = image.GetByteCount();
  auto* p = static_cast<unsigned char*>(image.GetDataPtr());
  if (dataType == EDataType::Float) {
    for (unsigned int i = 0; i < bytes / 4; ++i) reinterpret_cast<float*>(p)[i] = static_cast<float>(random() % 1000) / 999.0f;
  } else if (dataType == EDataType::Double) {
    for (unsigned int i = 0; i < bytes / 8; ++i) reinterpret_cast<double*>(p)[i] = static_cast<double>(random() % 100000) / 99999.0;
  } else {
    for (unsigned int i = 0; i < bytes; ++i) p[i] = static_cast<unsigned char>(random());
  }
}

// Runs `convert` and a memcpy of equal traffic alternately; the iteration time is the
// conversion's alone.
template <class TConvert>
void Measure(benchmark::State& state, std::size_t srcBytes, std::size_t trgBytes, TConvert&& convert) {
  std::size_t const copyBytes = (srcBytes + trgBytes) / 2;
  std::vector<unsigned char> copySrc(copyBytes, 1), copyTrg(copyBytes, 2);
  using Clock = std::chrono::steady_clock;
  double convertSeconds = 0.0;
  double copySeconds = 0.0;
  for (auto _ : state) {
    auto const t0 = Clock::now();
    convert();
    benchmark::ClobberMemory();
    auto const t1 = Clock::now();
    std::memcpy(copyTrg.data(), copySrc.data(), copyBytes);
    benchmark::ClobberMemory();
    auto const t2 = Clock::now();
    double const seconds = std::chrono::duration<double>(t1 - t0).count();
    convertSeconds += seconds;
    copySeconds += std::chrono::duration<double>(t2 - t1).count();
    state.SetIterationTime(seconds);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(srcBytes + trgBytes));
  state.counters["vs_memcpy"] = copySeconds > 0.0 ? convertSeconds / copySeconds : 0.0;
}

void BM_Convert(benchmark::State& state, SPair pair) {
  int const width = static_cast<int>(state.range(0));
  int const height = static_cast<int>(state.range(1));
  CNuImage src;
  src.Create(width, height, pair.SrcPixel, pair.SrcData);
  Fill(src, pair.SrcData);
  CNuImageFormat const srcFormat(width, height, pair.SrcPixel, pair.SrcData);
  CNuImageFormat const trgFormat(width, height, pair.TrgPixel, pair.TrgData);
  // A LumA target of another data type writes count pixels past its run: room for them.
  bool const lumAShift = pair.TrgPixel == EPixelType::LumA && pair.TrgData != pair.SrcData;
  std::vector<unsigned char> trg(static_cast<std::size_t>(trgFormat.GetByteCount()) * (lumAShift ? 2 : 1));
  std::vector<unsigned char> srcPadded;
  void const* srcData = src.GetDataPtr();
  if (lumAShift) {  // an alpha-bearing source is read past its run as well
    srcPadded.assign(static_cast<std::size_t>(src.GetByteCount()) * 2, 0);
    std::memcpy(srcPadded.data(), src.GetDataPtr(), src.GetByteCount());
    srcData = srcPadded.data();
  }
  Measure(state, src.GetByteCount(), trgFormat.GetByteCount(), [&] {
    if (!CNuImage::ConvertMemory(trg.data(), srcData, trgFormat, srcFormat)) state.SkipWithError("pair not carried");
  });
}

void BM_CustomWidening(benchmark::State& state) {
  int const width = static_cast<int>(state.range(0));
  int const height = static_cast<int>(state.range(1));
  CNuImage src;
  src.Create(width, height, EPixelType::Lum, EDataType::Custom_12in16_LSB);
  auto* words = static_cast<std::uint16_t*>(src.GetDataPtr());
  for (std::size_t i = 0; i < src.GetPixelCount(); ++i) words[i] = static_cast<std::uint16_t>(i % 4096);
  CNuImage trg;
  src.ConvertCustomType(trg);  // allocated once; later calls keep the block
  Measure(state, src.GetByteCount(), trg.GetByteCount(), [&] { src.ConvertCustomType(trg); });
}

void Sizes(benchmark::internal::Benchmark* b) {
  b->Args({640, 480})->Args({3840, 2160})->UseManualTime()->Unit(benchmark::kMicrosecond);
}

#define NU_BENCH_PAIR(name, tp, td, sp, sd)                                                          \
  BENCHMARK_CAPTURE(BM_Convert, name,                                                               \
                    SPair{EPixelType::tp, EDataType::td, EPixelType::sp, EDataType::sd})->Apply(Sizes);

NU_BENCH_PAIR(BGR_UByte_from_RGB_UByte, BGR, UByte, RGB, UByte)
NU_BENCH_PAIR(RGB_Float_from_RGB_UByte, RGB, Float, RGB, UByte)
NU_BENCH_PAIR(RGB_UByte_from_RGB_UShort, RGB, UByte, RGB, UShort)
NU_BENCH_PAIR(RGB_UByte_from_RGB_Float, RGB, UByte, RGB, Float)
NU_BENCH_PAIR(Lum_Double_from_Lum_Int, Lum, Double, Lum, Int)
NU_BENCH_PAIR(RGBA_UByte_from_Lum_UByte, RGBA, UByte, Lum, UByte)
NU_BENCH_PAIR(Lum_UByte_from_RGB_UByte, Lum, UByte, RGB, UByte)
NU_BENCH_PAIR(LumA_UByte_from_RGBA_UByte, LumA, UByte, RGBA, UByte)
NU_BENCH_PAIR(LumA_Float_from_Lum_UByte, LumA, Float, Lum, UByte)
NU_BENCH_PAIR(RGB_UByte_from_Bayer1_UByte, RGB, UByte, Bayer1, UByte)
NU_BENCH_PAIR(RGB_UByte_same_format_copy, RGB, UByte, RGB, UByte)
BENCHMARK(BM_CustomWidening)->Apply(Sizes);

// The fixed cost of a call: one pixel through the public road, the same bytes every time.
void BM_OnePixel(benchmark::State& state, SPair pair) {
  CNuImageFormat const trgFormat(1, 1, pair.TrgPixel, pair.TrgData), srcFormat(1, 1, pair.SrcPixel, pair.SrcData);
  alignas(64) unsigned char trg[64] = {}, src[64] = {};
  for (auto _ : state) {
    benchmark::DoNotOptimize(CNuImage::ConvertMemory(trg, src, trgFormat, srcFormat));
    benchmark::ClobberMemory();
  }
}
#define NU_BENCH_ONE_PIXEL(name, tp, td, sp, sd) \
  BENCHMARK_CAPTURE(BM_OnePixel, name, SPair{EPixelType::tp, EDataType::td, EPixelType::sp, EDataType::sd});
NU_BENCH_ONE_PIXEL(same_format, RGB, UByte, RGB, UByte)
NU_BENCH_ONE_PIXEL(BGR_UByte_from_RGB_UByte, BGR, UByte, RGB, UByte)
NU_BENCH_ONE_PIXEL(RGB_Float_from_RGB_UByte, RGB, Float, RGB, UByte)
NU_BENCH_ONE_PIXEL(Lum_Float_from_Lum_Int, Lum, Float, Lum, Int)

// ---- --all-pairs ---------------------------------------------------------------------------

#define NU_BENCH_FORMAT_(L, C, A, R, G, B, Al, D, E) {EPixelType::L, EDataType::D, #L "/" #D},
struct SFormat {
  EPixelType::ID Pixel;
  EDataType::ID Data;
  char const* Name;
};
SFormat const AllFormats[] = {NU_ALL_PIXELS(NU_BENCH_FORMAT_)};
#undef NU_BENCH_FORMAT_

bool IsBayer(EPixelType::ID id) { return id >= EPixelType::Bayer1 && id <= EPixelType::Bayer4; }

struct SResult {
  double Ratio;  // median of the conversion / median of the memcpy
  double Best;   // minimum / minimum
  std::string Pair;
};

double Seconds(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}
double Median(std::vector<double> v) {
  std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2), v.end());
  return v[v.size() / 2];
}

// Per pair, rounds of the conversion and a memcpy of equal traffic, in turn first and second.
// The traffic of a LumA target of another data type is its own floor: the source (twice for an
// alpha-bearing source, whose alphas are read past the run) and four times the target (the rule
// writes colour and alpha in two passes over twice the target). Warm: the same buffers every
// time. Fresh: before every timed call a sweep over a buffer beyond the last-level cache
// reads both sides out of the caches, so that each call starts from memory like a new frame.
int AllPairs(bool quick, bool list, bool plan, bool fresh, std::string const& match) {
  Nu::Detail::ELevel const level = Nu::Detail::DetectLevel();
  std::vector<unsigned char> evict(fresh ? std::size_t{128} << 20 : 0, 3);
  auto evictCaches = [&] {
    unsigned sum = 0;
    for (std::size_t i = 0; i < evict.size(); i += 64) sum += evict[i];
    benchmark::DoNotOptimize(sum);
  };
  for (auto [width, height] : {std::pair{640, 480}, std::pair{3840, 2160}}) {
    std::size_t const pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    // Room for the largest format (RGBA of Double) and for the LumA rule's second run.
    std::vector<unsigned char> src(pixels * 64, 0), trg(pixels * 64, 0), copySrc(pixels * 64, 1), copyTrg(pixels * 64, 2);
    int const rounds = fresh ? (width > 1000 ? 3 : 7) : (width > 1000 ? 5 : 21);
    std::vector<SResult> results;
    for (SFormat const& s : AllFormats) {
      if (std::none_of(std::begin(AllFormats), std::end(AllFormats), [&](SFormat const& t) {
            return (std::string(t.Name) + " <- " + s.Name).find(match) != std::string::npos;
          }))
        continue;
      CNuImage image;
      image.Create(width, height, s.Pixel, s.Data);
      Fill(image, s.Data);
      std::memcpy(src.data(), image.GetDataPtr(), image.GetByteCount());
      std::memcpy(src.data() + image.GetByteCount(), image.GetDataPtr(), image.GetByteCount());
      CNuImageFormat const srcFormat(width, height, s.Pixel, s.Data);
      for (SFormat const& t : AllFormats) {
        if (IsBayer(t.Pixel) && t.Pixel != s.Pixel) continue;  // closed by the Bayer gate
        if (quick && (t.Pixel != EPixelType::RGB && t.Pixel != EPixelType::LumA && t.Pixel != EPixelType::BGRA &&
                      t.Pixel != EPixelType::Lum))
          continue;
        std::string name = std::string(t.Name) + " <- " + s.Name;
        if (name.find(match) == std::string::npos) continue;
        if (plan) name = Nu::Detail::PlanLine(t.Pixel, t.Data, s.Pixel, s.Data, level);
        CNuImageFormat const trgFormat(width, height, t.Pixel, t.Data);
        std::size_t const srcBytes = srcFormat.GetByteCount(), trgBytes = trgFormat.GetByteCount();
        bool const lumAShift = t.Pixel == EPixelType::LumA && t.Data != s.Data;
        bool const alphaSource = s.Pixel == EPixelType::LumA || s.Pixel == EPixelType::RGBA || s.Pixel == EPixelType::BGRA;
        std::size_t const traffic =
            lumAShift ? ((alphaSource ? 2 : 1) * srcBytes + 4 * trgBytes) / 2 : (srcBytes + trgBytes) / 2;
        std::vector<double> convert, copy;
        auto runConvert = [&] {
          if (fresh) evictCaches();
          auto const t0 = std::chrono::steady_clock::now();
          CNuImage::ConvertMemory(trg.data(), src.data(), trgFormat, srcFormat);
          benchmark::ClobberMemory();
          convert.push_back(Seconds(t0));
        };
        auto runCopy = [&] {
          if (fresh) evictCaches();
          auto const t0 = std::chrono::steady_clock::now();
          std::memcpy(copyTrg.data(), copySrc.data(), traffic);
          benchmark::ClobberMemory();
          copy.push_back(Seconds(t0));
        };
        runConvert(), runCopy();  // warm-up
        convert.clear(), copy.clear();
        for (int r = 0; r < rounds; ++r) {
          if (r % 2 == 0) runConvert(), runCopy();
          else runCopy(), runConvert();
        }
        results.push_back({Median(convert) / Median(copy),
                           *std::min_element(convert.begin(), convert.end()) / *std::min_element(copy.begin(), copy.end()),
                           std::move(name)});
      }
    }
    std::sort(results.begin(), results.end(), [](SResult const& a, SResult const& b) { return a.Ratio < b.Ratio; });
    std::size_t const n = results.size();
    if (n == 0) continue;
    std::printf("%dx%d, %s: %zu carried pairs, median conversion time / median memcpy time of equal traffic\n", width,
                height, fresh ? "fresh frames" : "warm", n);
    std::printf("  min %.2f  median %.2f  90%% %.2f  max %.2f\n", results.front().Ratio, results[n / 2].Ratio,
                results[n * 9 / 10].Ratio, results.back().Ratio);
    if (list)
      for (SResult const& r : results) std::printf("    %6.2f %6.2f  %s\n", r.Ratio, r.Best, r.Pair.c_str());
    std::printf("  ten worst (median ratio, minimum ratio):\n");
    for (std::size_t i = n; i > n - std::min<std::size_t>(10, n); --i)
      std::printf("    %6.2f %6.2f  %s\n", results[i - 1].Ratio, results[i - 1].Best, results[i - 1].Pair.c_str());
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (std::string(argv[i]) == "--all-pairs" || std::string(argv[i]) == "--plan") {
      bool quick = false;
      bool list = false;
      bool plan = false;
      bool fresh = false;
      std::string match;
      for (int j = 1; j < argc; ++j) {
        quick = quick || std::string(argv[j]) == "--quick";
        list = list || std::string(argv[j]) == "--list";
        plan = plan || std::string(argv[j]) == "--plan";
        fresh = fresh || std::string(argv[j]) == "--fresh";
        if (std::string(argv[j]) == "--match" && j + 1 < argc) match = argv[++j];
      }
      return AllPairs(quick, list || plan, plan, fresh, match);
    }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
