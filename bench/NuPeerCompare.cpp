// Head to head with OpenCV and libyuv on the same bytes, one thread, at 640x480 and 3840x2160,
// in two modes: warm (each contender converts its one buffer set again and again) and fresh
// frames (every call takes the next of enough buffer sets that it starts from memory). The
// contenders, ours, the peer and memcpy of (source + target bytes) / 2, run interleaved, each
// round in the next of their six orders, so that none profits from running after another on
// the same data. Prints a Markdown table (minimum and median per contender, ours / peer of the
// medians, and the largest difference of the results in target units, which proves that both
// wrote the same layout), then per size and mode the cases lost and the geometric mean.
//
//   NuPeerCompare [--rounds N] [--mode warm|fresh] [--size 640|4k] [--match TEXT]
#include <Nu.Core.Ex/NuCoreEx.h>

#include <benchmark/benchmark.h>
#include <libyuv.h>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

using Nu::CNuImage;
using Nu::CNuImageFormat;
using Nu::EDataType;
using Nu::EPixelType;

namespace {

using FPeer = std::function<void(unsigned char const* src, unsigned char* trg, int width, int height)>;

struct SCase {
  EPixelType::ID TrgPixel;
  EDataType::ID TrgData;
  EPixelType::ID SrcPixel;
  EDataType::ID SrcData;
  std::string PeerText;
  FPeer Peer;
};

int Channels(EPixelType::ID pixel) { return static_cast<int>(CNuImageFormat(1, 1, pixel, EDataType::UByte).GetComponentCount()); }

int CvType(EPixelType::ID pixel, EDataType::ID data) {
  int depth = CV_8U;
  switch (data) {
    case EDataType::Byte: depth = CV_8S; break;
    case EDataType::UShort: depth = CV_16U; break;
    case EDataType::Short: depth = CV_16S; break;
    case EDataType::Int: depth = CV_32S; break;
    case EDataType::Float: depth = CV_32F; break;
    case EDataType::Double: depth = CV_64F; break;
    default: break;
  }
  return CV_MAKETYPE(depth, Channels(pixel));
}

std::string FormatName(EPixelType::ID pixel, EDataType::ID data) {
  char const* layout = pixel == EPixelType::RGB ? "RGB" : pixel == EPixelType::RGBA ? "RGBA" : pixel == EPixelType::BGR ? "BGR"
                     : pixel == EPixelType::BGRA ? "BGRA" : pixel == EPixelType::Lum ? "Lum" : "LumA";
  return std::string(layout) + "/" + CNuImageFormat::DataType2String(data).ToCString();
}

// An OpenCV call on Mat headers over the two buffers (nothing allocated).
SCase OpenCv(EPixelType::ID tp, EDataType::ID td, EPixelType::ID sp, EDataType::ID sd, std::string text,
             std::function<void(cv::Mat const&, cv::Mat&)> call) {
  FPeer peer = [=](unsigned char const* src, unsigned char* trg, int width, int height) {
    cv::Mat const s(height, width, CvType(sp, sd), const_cast<unsigned char*>(src));
    cv::Mat t(height, width, CvType(tp, td), trg);
    call(s, t);
  };
  return {tp, td, sp, sd, std::move(text), std::move(peer)};
}

// libyuv's names by the order of a little-endian word: its ARGB is BGRA in memory, ABGR is
// RGBA, RGB24 is BGR, RAW is RGB, J400 is full-range grey.
using FYuv = int (*)(uint8_t const*, int, uint8_t*, int, int, int);
SCase Yuv(EPixelType::ID tp, EPixelType::ID sp, char const* name, FYuv call) {
  FPeer peer = [=](unsigned char const* src, unsigned char* trg, int width, int height) {
    call(src, width * Channels(sp), trg, width * Channels(tp), width, height);
  };
  return {tp, EDataType::UByte, sp, EDataType::UByte, std::string("libyuv ") + name, std::move(peer)};
}

double Largest(EDataType::ID data) {
  switch (data) {
    case EDataType::Byte: return 127.0;
    case EDataType::UByte: return 255.0;
    case EDataType::Short: return 32767.0;
    case EDataType::UShort: return 65535.0;
    case EDataType::Int: return 2147483647.0;
    default: return 1.0;
  }
}

std::vector<SCase> Cases() {
  using P = EPixelType;
  using D = EDataType;
  std::vector<SCase> cases;
  // Same-type reorders, alpha fills, alpha drops and grey replicated, at three data types.
  struct SLayoutCase {
    P::ID Trg, Src;
    int Code;
    char const* Name;
  };
  SLayoutCase const layouts[] = {
      {P::BGR, P::RGB, cv::COLOR_RGB2BGR, "RGB2BGR"},      {P::RGBA, P::BGRA, cv::COLOR_BGRA2RGBA, "BGRA2RGBA"},
      {P::RGBA, P::RGB, cv::COLOR_RGB2RGBA, "RGB2RGBA"},   {P::BGRA, P::RGB, cv::COLOR_RGB2BGRA, "RGB2BGRA"},
      {P::RGB, P::RGBA, cv::COLOR_RGBA2RGB, "RGBA2RGB"},   {P::BGR, P::RGBA, cv::COLOR_RGBA2BGR, "RGBA2BGR"},
      {P::RGB, P::Lum, cv::COLOR_GRAY2RGB, "GRAY2RGB"},    {P::RGBA, P::Lum, cv::COLOR_GRAY2RGBA, "GRAY2RGBA"}};
  for (D::ID data : {D::UByte, D::UShort, D::Float})
    for (SLayoutCase const& l : layouts)
      cases.push_back(OpenCv(l.Trg, data, l.Src, data, std::string("cvtColor(") + l.Name + ")",
                             [code = l.Code](cv::Mat const& s, cv::Mat& t) { cv::cvtColor(s, t, code); }));
  cases.push_back(Yuv(P::RGBA, P::BGRA, "ARGBToABGR", &libyuv::ARGBToABGR));
  cases.push_back(Yuv(P::BGRA, P::BGR, "RGB24ToARGB", &libyuv::RGB24ToARGB));
  cases.push_back(Yuv(P::BGR, P::RGB, "RAWToRGB24", &libyuv::RAWToRGB24));
  cases.push_back(Yuv(P::BGR, P::BGRA, "ARGBToRGB24", &libyuv::ARGBToRGB24));
  cases.push_back(Yuv(P::BGRA, P::Lum, "J400ToARGB", [](uint8_t const* s, int ss, uint8_t* t, int ts, int w, int h) {
    return libyuv::J400ToARGB(s, ss, t, ts, w, h);
  }));
  // Grey as the red channel.
  for (D::ID data : {D::UByte, D::Float}) {
    cases.push_back(OpenCv(P::Lum, data, P::RGB, data, "extractChannel(0)",
                           [](cv::Mat const& s, cv::Mat& t) { cv::extractChannel(s, t, 0); }));
    cases.push_back(OpenCv(P::Lum, data, P::BGRA, data, "extractChannel(2)",
                           [](cv::Mat const& s, cv::Mat& t) { cv::extractChannel(s, t, 2); }));
  }
  // convertTo between the types OpenCV has, scaled as the rule scales positive values.
  D::ID const types[] = {D::UByte, D::UShort, D::Short, D::Int, D::Float, D::Double};
  for (P::ID layout : {P::Lum, P::RGB})
    for (D::ID trg : types)
      for (D::ID src : types) {
        if (trg == src) continue;
        double const scale = Largest(trg) / Largest(src);
        char text[64];
        std::snprintf(text, sizeof text, "convertTo(%s, %.6g)", CNuImageFormat::DataType2String(trg).ToCString(), scale);
        cases.push_back(OpenCv(layout, trg, layout, src, text, [scale](cv::Mat const& s, cv::Mat& t) {
          s.convertTo(t, t.type(), scale);
        }));
      }
  return cases;
}

// Fractions in -0.1..1.1 for floating sources, any bits for integer ones.
void Fill(unsigned char* bytes, std::size_t size, EDataType::ID data, std::mt19937& random) {
  if (data == EDataType::Float)
    for (std::size_t i = 0; i + 4 <= size; i += 4) {
      float const v = static_cast<float>(random() % 1200) / 1000.0f - 0.1f;
      std::memcpy(bytes + i, &v, 4);
    }
  else if (data == EDataType::Double)
    for (std::size_t i = 0; i + 8 <= size; i += 8) {
      double const v = static_cast<double>(random() % 120000) / 100000.0 - 0.1;
      std::memcpy(bytes + i, &v, 8);
    }
  else
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(random());
}

double Element(unsigned char const* p, EDataType::ID data) {
  switch (data) {
    case EDataType::UByte: return *p;
    case EDataType::UShort: { std::uint16_t v; std::memcpy(&v, p, 2); return v; }
    case EDataType::Short: { std::int16_t v; std::memcpy(&v, p, 2); return v; }
    case EDataType::Int: { std::int32_t v; std::memcpy(&v, p, 4); return v; }
    case EDataType::Float: { float v; std::memcpy(&v, p, 4); return v; }
    default: { double v; std::memcpy(&v, p, 8); return v; }
  }
}

struct SSet {
  std::vector<unsigned char> Src, Trg, CopySrc, CopyTrg;
};

struct STimes {
  std::vector<double> Seconds[3];  // ours, peer, memcpy
};

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

struct SRow {
  std::string Text;
  double Ratio;
};

}  // namespace

int main(int argc, char** argv) {
  int rounds640 = 36, rounds4k = 12;
  std::string mode, size, match;
  for (int i = 1; i < argc; ++i) {
    std::string const a = argv[i];
    if (a == "--rounds" && i + 1 < argc) rounds640 = rounds4k = std::atoi(argv[++i]);
    if (a == "--mode" && i + 1 < argc) mode = argv[++i];
    if (a == "--size" && i + 1 < argc) size = argv[++i];
    if (a == "--match" && i + 1 < argc) match = argv[++i];
  }
  cv::setNumThreads(1);
  std::vector<SCase> const cases = Cases();
  std::printf("| case | peer | size | mode | ours min / med ms | peer min / med ms | memcpy med ms | ours/memcpy | "
              "peer/memcpy | ours/peer | max \\|d\\| |\n|---|---|---|---|---|---|---|---|---|---|---|\n");
  std::vector<SRow> summary[2][2];
  constexpr std::array<std::array<int, 3>, 6> orders = {{{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}};
  for (int s = 0; s < 2; ++s) {
    if ((size == "640" && s == 1) || (size == "4k" && s == 0)) continue;
    int const width = s == 0 ? 640 : 3840, height = s == 0 ? 480 : 2160;
    int const rounds = s == 0 ? rounds640 : rounds4k;
    for (int m = 0; m < 2; ++m) {
      if ((mode == "warm" && m == 1) || (mode == "fresh" && m == 0)) continue;
      for (SCase const& c : cases) {
        std::string const name = FormatName(c.TrgPixel, c.TrgData) + " <- " + FormatName(c.SrcPixel, c.SrcData);
        if ((name + " " + c.PeerText).find(match) == std::string::npos) continue;
        CNuImageFormat const srcFormat(width, height, c.SrcPixel, c.SrcData);
        CNuImageFormat const trgFormat(width, height, c.TrgPixel, c.TrgData);
        std::size_t const srcBytes = srcFormat.GetByteCount(), trgBytes = trgFormat.GetByteCount();
        std::size_t const traffic = (srcBytes + trgBytes) / 2;
        // Warm: one set per contender. Fresh: every call takes the next of enough sets to span
        // half a GiB, so that what it reads and writes was last touched far beyond the caches.
        std::size_t const setCount = m == 0 ? 3 : std::max<std::size_t>(4, (std::size_t{512} << 20) / (srcBytes + trgBytes) + 1);
        std::vector<SSet> sets(setCount);
        std::mt19937 random(7);
        for (std::size_t k = 0; k < setCount; ++k) {
          sets[k].Src.resize(srcBytes);
          if (k == 0) Fill(sets[0].Src.data(), srcBytes, c.SrcData, random);
          else std::memcpy(sets[k].Src.data(), sets[0].Src.data(), srcBytes);
          sets[k].Trg.assign(trgBytes, 0);
          sets[k].CopySrc.assign(traffic, 1);
          sets[k].CopyTrg.assign(traffic, 2);
        }
        std::size_t next = 0;
        auto setFor = [&](int contender) -> SSet& { return m == 0 ? sets[contender] : sets[next++ % setCount]; };
        auto run = [&](int contender) {
          SSet& set = setFor(contender);
          auto const t0 = std::chrono::steady_clock::now();
          if (contender == 0) CNuImage::ConvertMemory(set.Trg.data(), set.Src.data(), trgFormat, srcFormat);
          else if (contender == 1) c.Peer(set.Src.data(), set.Trg.data(), width, height);
          else std::memcpy(set.CopyTrg.data(), set.CopySrc.data(), traffic);
          benchmark::ClobberMemory();
          return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        };
        for (int k = 0; k < 3; ++k) run(k);  // warm-up, and first touch of the fresh sets
        if (m == 1) for (std::size_t k = 3; k < setCount; ++k) run(static_cast<int>(k % 3));
        STimes times;
        for (int r = 0; r < rounds; ++r)
          for (int k : orders[static_cast<std::size_t>(r) % orders.size()]) times.Seconds[k].push_back(run(k));
        // The largest difference of the two results, in target units.
        std::vector<unsigned char> ours(trgBytes), peer(trgBytes);
        CNuImage::ConvertMemory(ours.data(), sets[0].Src.data(), trgFormat, srcFormat);
        c.Peer(sets[0].Src.data(), peer.data(), width, height);
        std::size_t const elementBytes = trgBytes / (static_cast<std::size_t>(width) * height * Channels(c.TrgPixel));
        double maxDiff = 0.0;
        for (std::size_t i = 0; i < trgBytes; i += elementBytes) {
          double const d = std::fabs(Element(&ours[i], c.TrgData) - Element(&peer[i], c.TrgData));
          if (!(d <= maxDiff)) maxDiff = d;
        }
        double const oursMed = Median(times.Seconds[0]), peerMed = Median(times.Seconds[1]), copyMed = Median(times.Seconds[2]);
        auto minOf = [](std::vector<double> const& v) { return *std::min_element(v.begin(), v.end()); };
        std::printf("| %s | %s | %dx%d | %s | %.3f / %.3f | %.3f / %.3f | %.3f | %.2f | %.2f | %.2f | %.3g |\n", name.c_str(),
                    c.PeerText.c_str(), width, height, m == 0 ? "warm" : "fresh", minOf(times.Seconds[0]) * 1e3,
                    oursMed * 1e3, minOf(times.Seconds[1]) * 1e3, peerMed * 1e3, copyMed * 1e3, oursMed / copyMed,
                    peerMed / copyMed, oursMed / peerMed, maxDiff);
        std::fflush(stdout);
        summary[s][m].push_back({name + " " + c.PeerText, oursMed / peerMed});
      }
    }
  }
  for (int s = 0; s < 2; ++s)
    for (int m = 0; m < 2; ++m) {
      std::vector<SRow> const& rows = summary[s][m];
      if (rows.empty()) continue;
      double logSum = 0.0;
      int lost = 0;
      for (SRow const& row : rows) {
        logSum += std::log(row.Ratio);
        lost += row.Ratio > 1.05 ? 1 : 0;
      }
      std::printf("\n%s, %s: %zu cases, the peer faster by more than 5 %% on %d, geometric mean of ours/peer %.3f\n",
                  s == 0 ? "640x480" : "3840x2160", m == 0 ? "warm" : "fresh frames", rows.size(), lost,
                  std::exp(logSum / static_cast<double>(rows.size())));
      for (SRow const& row : rows)
        if (row.Ratio > 1.05) std::printf("  %.2f  %s\n", row.Ratio, row.Text.c_str());
    }
  return 0;
}
