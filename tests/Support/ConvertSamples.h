#pragma once
// Inputs and buffers shared by the conversion tests: guarded runs, random pixels, and the
// source values of the value-rule tests (every value of 8/16-bit types; bounds, specials and
// a fixed-seed sample of the wider ones).
#include <Reference/ConvertReference.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace NuTest {

// A run inside a larger block: guard bytes before and after, and a start `shift` elements past
// the guard, so that the run may be only element-aligned.
struct SGuarded {
  static constexpr std::size_t Guard = 64;
  std::vector<unsigned char> Bytes;
  std::size_t Offset;
  SGuarded(std::size_t payload, std::size_t elementSize, unsigned char fill, std::size_t shift = 1)
      : Bytes(Guard + shift * elementSize + payload + Guard, fill), Offset(Guard + shift * elementSize) {}
  unsigned char* Run() { return Bytes.data() + Offset; }
};

// Random element values: any bit pattern for integers; for floating types mostly fractions
// around the convention's range, some random bit patterns (NaN, inf, huge, tiny) in between.
inline void FillRandom(unsigned char* run, std::size_t elements, int dataType, std::mt19937& random) {
  NuRef::SDataRow const& row = *NuRef::FindDataType(dataType);
  std::uniform_real_distribution<double> fraction(-1.25, 1.25);
  for (std::size_t i = 0; i < elements; ++i) {
    unsigned char* e = run + i * row.Bytes;
    if (!row.Integer && random() % 4 != 0) {
      double const v = fraction(random);
      if (row.Bytes == 4) {
        float const f = static_cast<float>(v);
        std::memcpy(e, &f, 4);
      } else {
        std::memcpy(e, &v, 8);
      }
    } else {
      for (unsigned b = 0; b < row.Bytes; ++b) e[b] = static_cast<unsigned char>(random());
    }
  }
}

inline constexpr std::uint32_t Seed = 0x5EED2026;

// The source values of one data type, as raw element bytes.
inline std::vector<unsigned char> SourceValues(NuRef::SDataRow const& row) {
  std::vector<unsigned char> bytes;
  auto add = [&](auto value) {
    static_assert(sizeof value <= 8);
    unsigned char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.insert(bytes.end(), raw, raw + sizeof value);
  };
  std::mt19937_64 random(Seed);
  switch (row.Bytes * (row.Integer ? 1 : 10)) {
    case 1:
      for (unsigned v = 0; v < 256; ++v) add(static_cast<std::uint8_t>(v));
      break;
    case 2:
      for (unsigned v = 0; v < 65536; ++v) add(static_cast<std::uint16_t>(v));
      break;
    case 4: {
      for (std::int64_t k : {0LL, 1LL, 2LL, 3LL, 127LL, 128LL, 255LL, 256LL, 32767LL, 32768LL, 65535LL, 65536LL,
                             16777216LL, 16843009LL, 65537LL, 2147483646LL, 2147483647LL, 2147483648LL,
                             2147483649LL, 4294967294LL, 4294967295LL})
        for (std::int64_t s : {k, -k}) add(static_cast<std::uint32_t>(s));
      // Every multiple of the closed forms' divisors and its neighbours: the only places where
      // x / 16843009 and x / 65537 could differ from the double rule (Convert/ValueRule.h).
      for (std::uint64_t k = 0; k < 65536; ++k)
        for (std::int64_t d : {-1, 0, 1}) add(static_cast<std::uint32_t>(k * 65537u + static_cast<std::uint64_t>(d)));
      for (std::uint64_t k = 0; k < 256; ++k)
        for (std::int64_t d : {-1, 0, 1}) add(static_cast<std::uint32_t>(k * 16843009u + static_cast<std::uint64_t>(d)));
      // Where floor(x * Lt / Ls) steps for each narrower integer target, and the step before:
      // the only places where a one-multiplication form of the rule could be one off. Below
      // zero, the steps of the power-of-two scales.
      for (std::uint64_t lt : {127u, 255u, 32767u, 65535u}) {
        auto const ls = static_cast<std::uint64_t>(row.Largest);
        for (std::uint64_t k = 1; k <= lt; ++k) {
          std::uint64_t const x = (k * ls + lt - 1) / lt;
          add(static_cast<std::uint32_t>(x - 1));
          add(static_cast<std::uint32_t>(x));
        }
      }
      if (row.Signed)
        for (int shift : {16, 24})
          for (std::int64_t k = 0; k <= (std::int64_t{1} << (31 - shift)); ++k)
            for (std::int64_t d : {-1, 0, 1}) add(static_cast<std::uint32_t>(-(k << shift) + d));
      // The Int <-> UInt closed forms: both ends of both ranges, where their carries lie, whole,
      // and a sweep across the rest of the 32-bit values.
      for (std::uint32_t k = 0; k < 4096; ++k)
        for (std::uint32_t base : {0u, 0x7FFFF000u, 0xFFFFF000u}) add(base + k);
      for (std::uint64_t x = 0; x < (std::uint64_t{1} << 32); x += 65521) add(static_cast<std::uint32_t>(x));
      for (int i = 0; i < 200000; ++i) add(static_cast<std::uint32_t>(random()));
      break;
    }
    default: {  // float (40) or double (80)
      bool const single = row.Bytes == 4;
      std::vector<double> specials = {0.0, 1.0, 0.5, 1.0 / 255.0, 2.0, 0.0078125, 1e-300, 1e300, 3e38, 4e38,
                                      std::numeric_limits<double>::infinity(), std::numeric_limits<double>::denorm_min(),
                                      std::numeric_limits<double>::min(), std::numeric_limits<double>::max(),
                                      static_cast<double>(std::numeric_limits<float>::denorm_min()),
                                      static_cast<double>(std::numeric_limits<float>::max())};
      // Each clamp bound of every integer target, as a fraction and as its scaled neighbours.
      for (NuRef::SDataRow const& target : NuRef::DataTypes) {
        if (!target.Integer) continue;
        for (double bound : {target.Largest, -target.Smallest})
          for (double offset : {-1.0, -0.5, 0.0, 0.5, 1.0}) specials.push_back((bound + offset) / bound);
        for (double k : {0.5, 1.5, 2.5, 100.5}) specials.push_back(k / target.Largest);
      }
      for (double s : std::vector<double>(specials)) {
        for (double v : {s, -s}) {
          if (single) {
            auto const f = static_cast<float>(v);
            add(f);
            add(std::nextafter(f, std::numeric_limits<float>::infinity()));
            add(std::nextafter(f, -std::numeric_limits<float>::infinity()));
          } else {
            add(v);
            add(std::nextafter(v, std::numeric_limits<double>::infinity()));
            add(std::nextafter(v, -std::numeric_limits<double>::infinity()));
          }
        }
      }
      // Where a single-precision product x * L lands on an integer k, the only places where a
      // rounded product could truncate otherwise than the rule's exact one: the floats nearest
      // k / L and their neighbours, for every k and every 8/16-bit scale, of both signs.
      if (single)
        for (double scale : {127.0, 128.0, 255.0, 32767.0, 32768.0, 65535.0})
          for (double k = 1.0; k <= scale; k += 1.0)
            for (float v : {static_cast<float>(k / scale), -static_cast<float>(k / scale)}) {
              add(v);
              add(std::nextafter(v, std::numeric_limits<float>::infinity()));
              add(std::nextafter(v, -std::numeric_limits<float>::infinity()));
            }
      // NaNs with several payloads and both signs, quiet and signalling.
      for (std::uint64_t payload : {0ull, 1ull, 0x12345ull, 0x3FFFFFull}) {
        for (std::uint64_t sign : {0ull, 1ull}) {
          if (single) {
            add(static_cast<std::uint32_t>((sign << 31) | 0x7FC00000u | payload));
            if (payload != 0) add(static_cast<std::uint32_t>((sign << 31) | 0x7F800000u | payload));
          } else {
            add((sign << 63) | 0x7FF8000000000000ull | (payload << 20));
            if (payload != 0) add((sign << 63) | 0x7FF0000000000000ull | payload);
          }
        }
      }
      std::uniform_real_distribution<double> fraction(-1.5, 1.5);
      for (int i = 0; i < 100000; ++i) {
        if (single) {
          add(static_cast<float>(fraction(random)));
          add(static_cast<std::uint32_t>(random()));
        } else {
          add(fraction(random));
          add(static_cast<std::uint64_t>(random()));
        }
      }
    }
  }
  return bytes;
}

}  // namespace NuTest
