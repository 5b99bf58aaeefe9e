#pragma once
// What the conversion tests share: the 80 exported source switches by run-time ids, guarded
// runs, random pixels, and the source values of the value rule (every value of the 8/16-bit
// types; bounds, specials and a fixed-seed sample of the wider ones).
#include <Reference/ConvertReference.h>
#include <Support/ImageCheck.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace NuTest {

// Each entry calls the exported instantiation: the tests instantiate no loop.
struct STargetEntry {
  int PixelType, DataType;
  char const* Name;
  bool (*Call)(void const* src, Nu::CNuImageFormat const& srcFormat, void* trg);
};
#define NU_TEST_TARGET_ENTRY_(L, C, A, R, G, B, Al, D, E)                                                          \
  {Nu::EPixelType::L, Nu::EDataType::D, #L "_" #D, [](void const* src, Nu::CNuImageFormat const& format, void* trg) { \
     return Nu::CNuImage::_ConvertSrcSwitch(src, format, static_cast<NU_TPIXEL(L, C, A, R, G, B, Al, D, E)*>(trg)); \
   }},
inline STargetEntry const AllTargets[] = {NU_ALL_PIXELS(NU_TEST_TARGET_ENTRY_)};
#undef NU_TEST_TARGET_ENTRY_
inline constexpr int TargetCount = static_cast<int>(sizeof AllTargets / sizeof AllTargets[0]);
static_assert(TargetCount == 80);

inline std::string PairName(int trgPixel, int trgData, int srcPixel, int srcData) {
  return std::string(NuRef::FindLayout(trgPixel)->Name) + "/" + NuRef::FindDataType(trgData)->Name + " <- " +
         NuRef::FindLayout(srcPixel)->Name + "/" + NuRef::FindDataType(srcData)->Name;
}

// A run inside a larger block with guard bytes before and after, starting `shift` elements past
// a 64-byte line, so that the run may be only element-aligned. A copy keeps the offset.
struct SGuarded {
  static constexpr std::size_t Guard = 64;
  std::vector<unsigned char> Bytes;
  std::size_t Offset;
  SGuarded(std::size_t payload, std::size_t elementSize, unsigned char fill, std::size_t shift = 1)
      : Bytes(3 * Guard + shift * elementSize + payload, fill),
        Offset(Guard + (64 - reinterpret_cast<std::uintptr_t>(Bytes.data()) % 64) % 64 + shift * elementSize) {}
  unsigned char* Run() { return Bytes.data() + Offset; }
};

// Equal blocks, or where the first difference lies.
inline ::testing::AssertionResult SameBytes(std::vector<unsigned char> const& got, std::vector<unsigned char> const& want) {
  auto const diff = std::mismatch(got.begin(), got.end(), want.begin(), want.end());
  if (diff.first == got.end() && diff.second == want.end()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "first difference at byte " << (diff.first - got.begin()) << " of "
                                       << got.size() << " (" << want.size() << " expected)";
}

// Any bit pattern for integers; for floating types mostly fractions around the convention's
// range, with random bit patterns (NaN, inf, huge, tiny) in between.
inline void FillRandom(unsigned char* run, std::size_t elements, int dataType, std::mt19937_64& random) {
  NuRef::SDataRow const& row = *NuRef::FindDataType(dataType);
  std::uniform_real_distribution<double> fraction(-1.25, 1.25);
  for (unsigned char* e = run; e != run + elements * row.Bytes; e += row.Bytes) {
    std::uint64_t bits = random();
    if (!row.Integer && bits % 4 != 0) {
      double const d = fraction(random);
      bits = row.Bytes == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(d)) : std::bit_cast<std::uint64_t>(d);
    }
    std::memcpy(e, &bits, row.Bytes);
  }
}

inline constexpr std::uint32_t Seed = 0x5EED2026;

// The source values of one data type, as raw element bytes.
inline std::vector<unsigned char> SourceValues(NuRef::SDataRow const& row) {
  std::vector<unsigned char> bytes;
  auto add = [&](auto value) {
    auto const* raw = reinterpret_cast<unsigned char const*>(&value);
    bytes.insert(bytes.end(), raw, raw + sizeof value);
  };
  auto addAround = [&](auto value) {  // a value and its neighbours, integer or floating
    using T = decltype(value);
    if constexpr (std::is_floating_point_v<T>) {
      for (T v : {value, std::nextafter(value, T(INFINITY)), std::nextafter(value, -T(INFINITY))}) add(v);
    } else {
      for (T v : {T(value - 1), value, T(value + 1)}) add(v);
    }
  };
  std::mt19937_64 random(Seed);
  if (row.Integer && row.Bytes <= 2) {
    for (unsigned v = 0; v < (1u << (8 * row.Bytes)); ++v) row.Bytes == 1 ? add(std::uint8_t(v)) : add(std::uint16_t(v));
  } else if (row.Integer) {
    for (std::uint32_t k : {0u, 1u, 2u, 127u, 128u, 255u, 256u, 32767u, 32768u, 65535u, 65536u, 16777216u, 2147483647u})
      for (std::uint32_t v : {k, 0u - k}) addAround(v);
    // The multiples of the closed forms' divisors: where x / 16843009 and x / 65537 could
    // differ from the double rule.
    for (std::uint32_t k = 0; k < 65536; ++k) addAround(k * 65537u);
    for (std::uint32_t k = 0; k < 256; ++k) addAround(k * 16843009u);
    // Where floor(x * Lt / Ls) steps for each narrower target, and the step before: where a
    // one-multiplication form could be one off. Below zero, the steps of the power-of-two scales.
    for (std::uint64_t lt : {127u, 255u, 32767u, 65535u})
      for (std::uint64_t k = 1; k <= lt; ++k)
        for (std::uint64_t d : {1u, 0u}) add(static_cast<std::uint32_t>((k * std::uint64_t(row.Largest) + lt - 1) / lt - d));
    if (row.Signed)
      for (int shift : {16, 24})
        for (std::int64_t k = 0; k <= (std::int64_t{1} << (31 - shift)); ++k) addAround(static_cast<std::uint32_t>(-(k << shift)));
    // The Int <-> UInt closed forms: both ends of both ranges whole, and a sweep across the rest.
    for (std::uint32_t k = 0; k < 4096; ++k)
      for (std::uint32_t base : {0u, 0x7FFFF000u, 0xFFFFF000u}) add(base + k);
    for (std::uint64_t x = 0; x < (std::uint64_t{1} << 32); x += 65521) add(static_cast<std::uint32_t>(x));
    for (int i = 0; i < 200000; ++i) add(static_cast<std::uint32_t>(random()));
  } else {
    bool const single = row.Bytes == 4;
    auto addValue = [&](double v) { single ? addAround(static_cast<float>(v)) : addAround(v); };
    using D = std::numeric_limits<double>;
    using F = std::numeric_limits<float>;
    std::vector<double> specials = {0.0,  1.0,  0.5,      1.0 / 255.0, 2.0,      0.0078125,       1e-300,   1e300,
                                    3e38, 4e38, INFINITY, D::min(),    D::max(), D::denorm_min(), F::max(), F::denorm_min()};
    // Each clamp bound of every integer target, as a fraction and as its scaled neighbours.
    for (NuRef::SDataRow const& target : NuRef::DataTypes) {
      if (!target.Integer) continue;
      for (double bound : {target.Largest, -target.Smallest})
        for (double offset : {-1.0, -0.5, 0.0, 0.5, 1.0}) specials.push_back((bound + offset) / bound);
      for (double k : {0.5, 1.5, 2.5, 100.5}) specials.push_back(k / target.Largest);
    }
    for (double s : specials)
      for (double v : {s, -s}) addValue(v);
    // Where a single product x * L lands on an integer k, the floats nearest k / L: where a
    // rounded product could truncate otherwise than the rule's exact one.
    if (single)
      for (double scale : {127.0, 128.0, 255.0, 32767.0, 32768.0, 65535.0})
        for (double k = 1.0; k <= scale; k += 1.0)
          for (double v : {k / scale, -k / scale}) addValue(v);
    // NaNs with several payloads and both signs, quiet and signalling.
    for (std::uint64_t payload : {0ull, 1ull, 0x12345ull, 0x3FFFFFull})
      for (std::uint64_t sign : {0ull, 1ull}) {
        std::uint64_t const quiet = single ? sign << 31 | 0x7FC00000u | payload : sign << 63 | 0x7FF8000000000000u | payload << 20;
        std::uint64_t const signalling = single ? sign << 31 | 0x7F800000u | payload : sign << 63 | 0x7FF0000000000000u | payload;
        for (std::uint64_t bits : {quiet, payload != 0 ? signalling : quiet}) single ? add(std::uint32_t(bits)) : add(bits);
      }
    std::uniform_real_distribution<double> fraction(-1.5, 1.5);
    for (int i = 0; i < 100000; ++i) {
      single ? add(static_cast<float>(fraction(random))) : add(fraction(random));
      single ? add(static_cast<std::uint32_t>(random())) : add(static_cast<std::uint64_t>(random()));
    }
  }
  return bytes;
}

}  // namespace NuTest
