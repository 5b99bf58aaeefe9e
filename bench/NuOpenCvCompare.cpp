// Conversion against OpenCV's nearest operation on the same bytes, one thread, at 640x480 and
// 3840x2160. Every case reads the same source layout and writes the same target layout in both
// libraries; the values may differ where OpenCV rounds to nearest and this library truncates
// (max |d| in target units says by how much, and proves that the layouts agree). Times are the
// minimum of interleaved repetitions after a warm-up; memcpy of (source + target bytes) / 2 in
// the same run is the yardstick. Prints a Markdown table.
//
//   NuOpenCvCompare [--reps N]     N repetitions per size (default 30 at 640x480, 10 at 4K)
#include <Nu.Core.Ex/NuCoreEx.h>

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

// What OpenCV runs for a case, and its text for the table.
struct SOpenCvCall {
  std::string Text;
  std::function<void(cv::Mat const& src, cv::Mat& trg)> Run;
};

SOpenCvCall ConvertTo(int depth, char const* depthName, double scale = 1.0, char const* scaleText = nullptr) {
  return {std::string("convertTo(") + depthName + (scaleText ? std::string(", ") + scaleText : "") + ")",
          [=](cv::Mat const& s, cv::Mat& t) { s.convertTo(t, depth, scale); }};
}

SOpenCvCall CvtColor(int code, char const* codeName) {
  return {std::string("cvtColor(") + codeName + ")", [=](cv::Mat const& s, cv::Mat& t) { cv::cvtColor(s, t, code); }};
}

SOpenCvCall ExtractChannel(int channel) {
  return {"extractChannel(" + std::to_string(channel) + ")",
          [=](cv::Mat const& s, cv::Mat& t) { cv::extractChannel(s, t, channel); }};
}

// fromTo as mixChannels takes it: source channel, target channel, ...
SOpenCvCall MixChannels(std::vector<int> fromTo) {
  std::string text = "mixChannels(";
  for (std::size_t i = 0; i < fromTo.size(); i += 2)
    text += (i ? ", " : "") + std::to_string(fromTo[i]) + ">" + std::to_string(fromTo[i + 1]);
  return {text + ")",
          [=](cv::Mat const& s, cv::Mat& t) { cv::mixChannels(&s, 1, &t, 1, fromTo.data(), fromTo.size() / 2); }};
}

// Two calls through an intermediate image, which the first call allocates once and then keeps.
SOpenCvCall Then(SOpenCvCall first, SOpenCvCall second) {
  auto scratch = std::make_shared<cv::Mat>();
  return {first.Text + " + " + second.Text, [=](cv::Mat const& s, cv::Mat& t) {
            first.Run(s, *scratch);
            second.Run(*scratch, t);
          }};
}

struct SCase {
  EPixelType::ID TrgPixel;
  EDataType::ID TrgData;
  EPixelType::ID SrcPixel;
  EDataType::ID SrcData;
  SOpenCvCall OpenCv;
};

// Grey from colour is the red element by index (RGB s0, BGR s2), grey into colour replicates and
// a missing alpha becomes the target maximum: extractChannel, mixChannels and the GRAY2 codes of
// cvtColor move exactly those elements. OpenCV's alpha fill is 255, 65535 and 1.0 like ours, and
// convertTo gets the scale of our fraction rule.
std::vector<SCase> MakeCases() {
  constexpr EPixelType::ID RGB = EPixelType::RGB, RGBA = EPixelType::RGBA, BGR = EPixelType::BGR,
                           BGRA = EPixelType::BGRA, Lum = EPixelType::Lum, LumA = EPixelType::LumA;
  constexpr EDataType::ID UByte = EDataType::UByte, UShort = EDataType::UShort, Short = EDataType::Short,
                          Float = EDataType::Float, Double = EDataType::Double;
  std::vector<SCase> cases = {
      {Lum, Float, Lum, UByte, ConvertTo(CV_32F, "CV_32F", 1.0 / 255, "1/255")},
      {Lum, Double, Lum, UByte, ConvertTo(CV_64F, "CV_64F", 1.0 / 255, "1/255")},
      {Lum, Float, Lum, UShort, ConvertTo(CV_32F, "CV_32F", 1.0 / 65535, "1/65535")},
      {Lum, UByte, Lum, UShort, ConvertTo(CV_8U, "CV_8U", 1.0 / 257, "1/257")},
      {Lum, UShort, Lum, UByte, ConvertTo(CV_16U, "CV_16U", 257.0, "257")},
      {Lum, UByte, Lum, Float, ConvertTo(CV_8U, "CV_8U", 255.0, "255")},
      {Lum, UShort, Lum, Float, ConvertTo(CV_16U, "CV_16U", 65535.0, "65535")},
      {Lum, Float, Lum, Short, ConvertTo(CV_32F, "CV_32F", 1.0 / 32767, "1/32767")},
      {Lum, Float, Lum, Double, ConvertTo(CV_32F, "CV_32F")},
      {RGB, Float, RGB, UByte, ConvertTo(CV_32F, "CV_32F", 1.0 / 255, "1/255")},
      {RGB, UByte, RGB, Float, ConvertTo(CV_8U, "CV_8U", 255.0, "255")},
      {RGB, UByte, RGB, UShort, ConvertTo(CV_8U, "CV_8U", 1.0 / 257, "1/257")},
      {RGB, UShort, RGB, UByte, ConvertTo(CV_16U, "CV_16U", 257.0, "257")},
  };
  for (EDataType::ID d : {UByte, UShort, Float}) {
    cases.push_back({BGR, d, RGB, d, CvtColor(cv::COLOR_RGB2BGR, "RGB2BGR")});
    cases.push_back({RGBA, d, RGB, d, CvtColor(cv::COLOR_RGB2RGBA, "RGB2RGBA")});
    cases.push_back({BGR, d, RGBA, d, CvtColor(cv::COLOR_RGBA2BGR, "RGBA2BGR")});
    cases.push_back({RGBA, d, BGRA, d, CvtColor(cv::COLOR_BGRA2RGBA, "BGRA2RGBA")});
    cases.push_back({RGB, d, RGBA, d, CvtColor(cv::COLOR_RGBA2RGB, "RGBA2RGB")});
  }
  std::vector<SCase> const grey = {
      {Lum, UByte, RGB, UByte, ExtractChannel(0)},
      {Lum, UByte, BGR, UByte, ExtractChannel(2)},
      {Lum, UByte, RGBA, UByte, ExtractChannel(0)},
      {Lum, UByte, BGRA, UByte, ExtractChannel(2)},
      {Lum, Float, RGB, Float, ExtractChannel(0)},
      {RGB, UByte, Lum, UByte, MixChannels({0, 0, 0, 1, 0, 2})},
      {RGB, UByte, Lum, UByte, CvtColor(cv::COLOR_GRAY2RGB, "GRAY2RGB")},
      {RGBA, UByte, Lum, UByte, CvtColor(cv::COLOR_GRAY2RGBA, "GRAY2RGBA")},
      {RGB, Float, Lum, Float, CvtColor(cv::COLOR_GRAY2RGB, "GRAY2RGB")},
      {LumA, UByte, RGBA, UByte, MixChannels({0, 0, 3, 1})},
      // Layout and data type at once: one pass here, two calls and an intermediate image there.
      {Lum, Float, RGB, UByte, Then(ExtractChannel(0), ConvertTo(CV_32F, "CV_32F", 1.0 / 255, "1/255"))},
      {RGBA, Float, BGR, UByte,
       Then(ConvertTo(CV_32F, "CV_32F", 1.0 / 255, "1/255"), CvtColor(cv::COLOR_BGR2RGBA, "BGR2RGBA"))},
  };
  cases.insert(cases.end(), grey.begin(), grey.end());
  return cases;
}

char const* PixelName(EPixelType::ID id) {
#define NU_COMPARE_PIXEL_NAME_(L, ...) \
  if (id == EPixelType::L) return #L;
  NU_PIXEL_LAYOUTS(NU_COMPARE_PIXEL_NAME_)
#undef NU_COMPARE_PIXEL_NAME_
  return "?";
}

char const* DataName(EDataType::ID id) {
#define NU_COMPARE_DATA_NAME_(D, ...) \
  if (id == EDataType::D) return #D;
  NU_DATA_TYPES(NU_COMPARE_DATA_NAME_)
#undef NU_COMPARE_DATA_NAME_
  return "?";
}

int OpenCvType(EPixelType::ID pixel, EDataType::ID data) {
  int const depth = data == EDataType::UByte    ? CV_8U
                    : data == EDataType::UShort ? CV_16U
                    : data == EDataType::Short  ? CV_16S
                    : data == EDataType::Float  ? CV_32F
                                                : CV_64F;
  int const channels = pixel == EPixelType::Lum                               ? 1
                       : pixel == EPixelType::LumA                            ? 2
                       : pixel == EPixelType::RGB || pixel == EPixelType::BGR ? 3
                                                                              : 4;
  return CV_MAKETYPE(depth, channels);
}

// Both libraries get 64-byte aligned blocks whose pages are touched before any timing.
struct SBuffer {
  std::unique_ptr<unsigned char, decltype(&std::free)> Block{nullptr, &std::free};
  explicit SBuffer(std::size_t bytes)
      : Block(static_cast<unsigned char*>(std::aligned_alloc(64, (bytes + 63) / 64 * 64)), &std::free) {
    if (!Block) throw std::bad_alloc();
    std::memset(Block.get(), 0, bytes);
  }
  unsigned char* Data() const { return Block.get(); }
};

// Fractions in 0..1 for floating sources (where both rules agree on the range), any bits for
// integer ones.
void Fill(unsigned char* p, std::size_t bytes, EDataType::ID dataType) {
  std::mt19937 random(42);
  if (dataType == EDataType::Float) {
    for (std::size_t i = 0; i < bytes / 4; ++i)
      reinterpret_cast<float*>(p)[i] = static_cast<float>(random() % 1000) / 999.0f;
  } else if (dataType == EDataType::Double) {
    for (std::size_t i = 0; i < bytes / 8; ++i)
      reinterpret_cast<double*>(p)[i] = static_cast<double>(random() % 100000) / 99999.0;
  } else {
    for (std::size_t i = 0; i < bytes; ++i) p[i] = static_cast<unsigned char>(random());
  }
}

double Element(unsigned char const* p, EDataType::ID dataType, std::size_t i) {
  switch (dataType) {
    case EDataType::UByte: return p[i];
    case EDataType::UShort: return reinterpret_cast<std::uint16_t const*>(p)[i];
    case EDataType::Short: return reinterpret_cast<std::int16_t const*>(p)[i];
    case EDataType::Float: return reinterpret_cast<float const*>(p)[i];
    default: return reinterpret_cast<double const*>(p)[i];
  }
}

double Seconds(std::chrono::steady_clock::time_point t0, std::chrono::steady_clock::time_point t1) {
  return std::chrono::duration<double>(t1 - t0).count();
}

struct SRow {
  double Ours, OpenCv, Copy, MaxDelta;
};

// Interleaves the three calls in each repetition, so that a slow phase of a neighbouring process
// falls on all of them alike; the minimum of each is kept.
SRow Run(SCase const& c, int width, int height, int repetitions) {
  CNuImageFormat const srcFormat(width, height, c.SrcPixel, c.SrcData);
  CNuImageFormat const trgFormat(width, height, c.TrgPixel, c.TrgData);
  std::size_t const srcBytes = srcFormat.GetByteCount();
  std::size_t const trgBytes = trgFormat.GetByteCount();
  std::size_t const copyBytes = (srcBytes + trgBytes) / 2;
  SBuffer src(srcBytes), ours(trgBytes), theirs(trgBytes), copySrc(copyBytes), copyTrg(copyBytes);
  Fill(src.Data(), srcBytes, c.SrcData);
  std::memset(copySrc.Data(), 1, copyBytes);

  cv::Mat const srcMat(height, width, OpenCvType(c.SrcPixel, c.SrcData), src.Data());
  cv::Mat trgMat(height, width, OpenCvType(c.TrgPixel, c.TrgData), theirs.Data());

  auto const convertOurs = [&] {
    if (!CNuImage::ConvertMemory(ours.Data(), src.Data(), trgFormat, srcFormat)) {
      std::fprintf(stderr, "pair not carried: %s/%s <- %s/%s\n", PixelName(c.TrgPixel), DataName(c.TrgData),
                   PixelName(c.SrcPixel), DataName(c.SrcData));
      std::exit(1);
    }
  };
  convertOurs();
  c.OpenCv.Run(srcMat, trgMat);
  // A reallocated target would mean OpenCV wrote another layout than the one compared.
  if (trgMat.data != theirs.Data()) {
    std::fprintf(stderr, "OpenCV did not write into the target (%s)\n", c.OpenCv.Text.c_str());
    std::exit(1);
  }
  std::memcpy(copyTrg.Data(), copySrc.Data(), copyBytes);

  SRow row{1e30, 1e30, 1e30, 0.0};
  using Clock = std::chrono::steady_clock;
  for (int r = 0; r < repetitions; ++r) {
    auto const t0 = Clock::now();
    convertOurs();
    benchmark::ClobberMemory();
    auto const t1 = Clock::now();
    c.OpenCv.Run(srcMat, trgMat);
    benchmark::ClobberMemory();
    auto const t2 = Clock::now();
    std::memcpy(copyTrg.Data(), copySrc.Data(), copyBytes);
    benchmark::ClobberMemory();
    auto const t3 = Clock::now();
    row.Ours = std::min(row.Ours, Seconds(t0, t1));
    row.OpenCv = std::min(row.OpenCv, Seconds(t1, t2));
    row.Copy = std::min(row.Copy, Seconds(t2, t3));
  }
  std::size_t const elements = trgBytes / CNuImageFormat(1, 1, EPixelType::Lum, c.TrgData).GetByteCount();
  for (std::size_t i = 0; i < elements; ++i)
    row.MaxDelta =
        std::max(row.MaxDelta, std::fabs(Element(ours.Data(), c.TrgData, i) - Element(theirs.Data(), c.TrgData, i)));
  return row;
}

}  // namespace

int main(int argc, char** argv) {
  int repetitionsSmall = 30;
  int repetitionsLarge = 10;
  for (int i = 1; i < argc; ++i) {
    if (std::string(argv[i]) == "--reps" && i + 1 < argc) {
      repetitionsSmall = repetitionsLarge = std::max(1, std::atoi(argv[++i]));
    } else {
      std::fprintf(stderr, "usage: %s [--reps N]\n", argv[0]);
      return 1;
    }
  }
  cv::setNumThreads(1);
  std::printf("OpenCV %s, %d thread(s), CPU AVX2 %s, AVX-512 %s; min of %d (640x480) / %d (3840x2160) runs\n\n",
              CV_VERSION, cv::getNumThreads(), cv::checkHardwareSupport(CV_CPU_AVX2) ? "yes" : "no",
              cv::checkHardwareSupport(CV_CPU_AVX_512F) ? "yes" : "no", repetitionsSmall, repetitionsLarge);
  std::printf(
      "| case | OpenCV call | size | ours ms | OpenCV ms | ours/memcpy | OpenCV/memcpy | speed-up | max \\|d\\| |\n");
  std::printf("|---|---|---|---|---|---|---|---|---|\n");
  double logSum[2] = {0.0, 0.0};
  int counted[2] = {0, 0};
  for (SCase const& c : MakeCases()) {
    int sizeIndex = 0;
    for (auto [width, height] : {std::pair{640, 480}, std::pair{3840, 2160}}) {
      SRow const row = Run(c, width, height, width > 1000 ? repetitionsLarge : repetitionsSmall);
      double const speedUp = row.OpenCv / row.Ours;
      logSum[sizeIndex] += std::log(speedUp);
      ++counted[sizeIndex];
      std::printf("| %s/%s ← %s/%s | %s | %dx%d | %.3f | %.3f | %.2f | %.2f | %.2f | %.3g |\n", PixelName(c.TrgPixel),
                  DataName(c.TrgData), PixelName(c.SrcPixel), DataName(c.SrcData), c.OpenCv.Text.c_str(), width, height,
                  row.Ours * 1e3, row.OpenCv * 1e3, row.Ours / row.Copy, row.OpenCv / row.Copy, speedUp, row.MaxDelta);
      std::fflush(stdout);
      ++sizeIndex;
    }
  }
  std::printf(
      "\nspeed-up = OpenCV time / our time (above 1: ours is faster); geometric mean: 640x480 %.2f, 3840x2160 %.2f\n",
      std::exp(logSum[0] / counted[0]), std::exp(logSum[1] / counted[1]));
  std::printf("max |d|: largest difference of the two targets in target units (OpenCV rounds, ours truncates)\n");
  return 0;
}
