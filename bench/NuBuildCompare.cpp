// Two builds of the library in one process, timed pair by pair in alternation: the fair way to
// tell whether a change made a pair faster, on a machine whose speed drifts from minute to
// minute. Each build's libNu.Core.Ex is loaded with its own symbols first (RTLD_DEEPBIND), so
// that its ConvertMemory runs its own engine; both share one Nu.Core.
//
//   NuBuildCompare BASE.so NEW.so [--fresh] [--size 640|4k] [--rounds N] [--match REGEX] [--every K]
//                  [--list]
//
// Per pair: one warm-up call of each, then rounds of the two, in turn first and second; the
// figure is NEW's median over BASE's median. Warm: the same buffers every time. --fresh: before
// every timed call a read sweep over 128 MiB puts source and target out of the caches. Prints
// the distribution of the ratios, their geometric mean and the pairs that moved by more than
// 10 % either way (every pair with --list), with the two medians. --every K times every K-th pair only, a quick sample.
#include <Nu.Core.Ex/NuImageFormat.h>

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <regex>
#include <string>
#include <vector>

using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

using FConvertMemory = bool (*)(void*, void const*, CNuImageFormat const&, CNuImageFormat const&);

FConvertMemory Load(char const* path) {
  void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
  if (handle == nullptr) {
    std::fprintf(stderr, "NuBuildCompare: %s\n", dlerror());
    std::exit(2);
  }
  void* entry = dlsym(handle, "_ZN2Nu8CNuImage13ConvertMemoryEPvPKvRKNS_14CNuImageFormatES6_");
  if (entry == nullptr) {
    std::fprintf(stderr, "NuBuildCompare: %s has no CNuImage::ConvertMemory\n", path);
    std::exit(2);
  }
  return reinterpret_cast<FConvertMemory>(entry);
}

#define NU_COMPARE_FORMAT_(L, C, A, R, G, B, Al, D, E) {EPixelType::L, EDataType::D, #L "/" #D},
struct SFormat {
  EPixelType::ID Pixel;
  EDataType::ID Data;
  char const* Name;
};
SFormat const AllFormats[] = {NU_ALL_PIXELS(NU_COMPARE_FORMAT_)};
#undef NU_COMPARE_FORMAT_

bool IsBayer(EPixelType::ID id) { return id >= EPixelType::Bayer1 && id <= EPixelType::Bayer4; }

double Median(std::vector<double> v) {
  std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2), v.end());
  return v[v.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: NuBuildCompare BASE.so NEW.so [--fresh] [--size 640|4k] [--rounds N] [--match REGEX] "
                 "[--every K] [--list]\n");
    return 2;
  }
  FConvertMemory const builds[2] = {Load(argv[1]), Load(argv[2])};
  bool fresh = false, list = false;
  int rounds = 0, every = 1;
  std::string size, match;
  for (int i = 3; i < argc; ++i) {
    std::string const a = argv[i];
    if (a == "--fresh") fresh = true;
    if (a == "--list") list = true;
    if (a == "--size" && i + 1 < argc) size = argv[++i];
    if (a == "--rounds" && i + 1 < argc) rounds = std::atoi(argv[++i]);
    if (a == "--match" && i + 1 < argc) match = argv[++i];
    if (a == "--every" && i + 1 < argc) every = std::max(1, std::atoi(argv[++i]));
  }
  int index = 0;
  std::regex const pattern(match);
  std::vector<unsigned char> evict(fresh ? std::size_t{128} << 20 : 0, 3);
  for (auto [width, height] : {std::pair{640, 480}, std::pair{3840, 2160}}) {
    if ((size == "640" && width != 640) || (size == "4k" && width == 640)) continue;
    std::size_t const pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    // Room for the largest format (RGBA of Double) and for the LumA rule's second run.
    std::vector<unsigned char> src(pixels * 64), trg(pixels * 64, 0);
    int const n = rounds > 0 ? rounds : width == 640 ? (fresh ? 9 : 21) : (fresh ? 5 : 7);
    std::vector<std::pair<double, std::string>> ratios;
    for (SFormat const& s : AllFormats) {
      std::vector<SFormat const*> targets;
      for (SFormat const& t : AllFormats)
        if (!(IsBayer(t.Pixel) && t.Pixel != s.Pixel) &&
            std::regex_search(std::string(t.Name) + " <- " + s.Name, pattern) && index++ % every == 0)
          targets.push_back(&t);
      if (targets.empty()) continue;
      CNuImageFormat const srcFormat(width, height, s.Pixel, s.Data);
      std::mt19937 random(42);
      for (std::size_t i = 0; i < src.size(); i += 4) {  // fractions for floating types, any bits otherwise
        if (s.Data == EDataType::Float) {
          float const v = static_cast<float>(random() % 1000) / 999.0f;
          std::memcpy(&src[i], &v, 4);
        } else if (s.Data == EDataType::Double) {
          double const v = static_cast<double>(random() % 100000) / 99999.0;
          if (i % 8 == 0 && i + 8 <= src.size()) std::memcpy(&src[i], &v, 8);
        } else {
          auto const v = static_cast<std::uint32_t>(random());
          std::memcpy(&src[i], &v, 4);
        }
      }
      for (SFormat const* t : targets) {
        CNuImageFormat const trgFormat(width, height, t->Pixel, t->Data);
        std::vector<double> times[2];
        auto run = [&](int b) {
          if (fresh) {
            unsigned sum = 0;
            for (std::size_t i = 0; i < evict.size(); i += 64) sum += evict[i];
            benchmark::DoNotOptimize(sum);
          }
          auto const t0 = std::chrono::steady_clock::now();
          builds[b](trg.data(), src.data(), trgFormat, srcFormat);
          benchmark::ClobberMemory();
          times[b].push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
        };
        run(0), run(1);
        times[0].clear(), times[1].clear();
        for (int r = 0; r < n; ++r) {
          run(r % 2), run(1 - r % 2);
        }
        char medians[48];
        std::snprintf(medians, sizeof medians, "  (%.1f / %.1f us)", 1e6 * Median(times[1]), 1e6 * Median(times[0]));
        ratios.emplace_back(Median(times[1]) / Median(times[0]), std::string(t->Name) + " <- " + s.Name + medians);
      }
    }
    if (ratios.empty()) continue;
    std::sort(ratios.begin(), ratios.end());
    double logSum = 0.0;
    for (auto const& r : ratios) logSum += std::log(r.first);
    std::size_t const count = ratios.size();
    std::printf("%dx%d, %s: %zu pairs, new / base of the medians: min %.3f  median %.3f  max %.3f  geometric mean %.3f\n",
                width, height, fresh ? "fresh frames" : "warm", count, ratios.front().first, ratios[count / 2].first,
                ratios.back().first, std::exp(logSum / static_cast<double>(count)));
    for (auto const& [ratio, name] : ratios)
      if (list || ratio > 1.1 || ratio < 1 / 1.1) std::printf("    %6.3f  %s\n", ratio, name.c_str());
    std::fflush(stdout);
  }
  return 0;
}
