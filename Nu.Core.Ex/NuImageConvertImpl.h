#pragma once
// Private to the library (not installed, not in the umbrella header): the value rule between
// the eight numeric data types, the layout kernel and the definitions of the two conversion templates.
// Only the generated instantiation units (cmake/NuConvertUnits.cmake) include this file, so
// that every other unit links against the exported instantiations instead of compiling them.
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageConvertIsaImpl.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>

namespace Nu::Detail {

// ---- the value rule: one traits row per element type ---------------------------------------
// Largest: the largest value (and the positive scale). NegativeScale: 2^-bits, the multiplier
// of zero and negative values of a signed source. NegativeMagnitude: the magnitude of the
// smallest value, the scale of v <= 0 into a signed target. TargetMaximum: the alpha written
// where a source has none. NaNResult: what a NaN stores, the low bits of the processor's
// indefinite integer (INT_MIN, or INT64_MIN for UInt), produced here without any cast of a NaN.
template <class T>
struct TDataTraits;

template <>
struct TDataTraits<char> {
  static constexpr bool IsInteger = true, IsSigned = true;
  static constexpr double Largest = 127.0, Smallest = -128.0;
  static constexpr double NegativeScale = 0x1p-7, NegativeMagnitude = 128.0;
  static constexpr char TargetMaximum = 127, NaNResult = 0;
};
template <>
struct TDataTraits<unsigned char> {
  static constexpr bool IsInteger = true, IsSigned = false;
  static constexpr double Largest = 255.0, Smallest = 0.0;
  static constexpr unsigned char TargetMaximum = 255, NaNResult = 0;
};
template <>
struct TDataTraits<short> {
  static constexpr bool IsInteger = true, IsSigned = true;
  static constexpr double Largest = 32767.0, Smallest = -32768.0;
  static constexpr double NegativeScale = 0x1p-15, NegativeMagnitude = 32768.0;
  static constexpr short TargetMaximum = 32767, NaNResult = 0;
};
template <>
struct TDataTraits<unsigned short> {
  static constexpr bool IsInteger = true, IsSigned = false;
  static constexpr double Largest = 65535.0, Smallest = 0.0;
  static constexpr unsigned short TargetMaximum = 65535, NaNResult = 0;
};
template <>
struct TDataTraits<int> {
  static constexpr bool IsInteger = true, IsSigned = true;
  static constexpr double Largest = 2147483647.0, Smallest = -2147483648.0;
  static constexpr double NegativeScale = 0x1p-31, NegativeMagnitude = 2147483648.0;
  static constexpr int TargetMaximum = 2147483647, NaNResult = -2147483647 - 1;
};
template <>
struct TDataTraits<unsigned int> {
  static constexpr bool IsInteger = true, IsSigned = false;
  static constexpr double Largest = 4294967295.0, Smallest = 0.0;
  static constexpr unsigned int TargetMaximum = 4294967295u, NaNResult = 0;
};
template <>
struct TDataTraits<float> {
  static constexpr bool IsInteger = false, IsSigned = true;
  static constexpr float TargetMaximum = 1.0f;
};
template <>
struct TDataTraits<double> {
  static constexpr bool IsInteger = false, IsSigned = true;
  static constexpr double TargetMaximum = 1.0;
};

// Source step: the value as a fraction in double. A signed source has two scales: zero and
// below are multiplied by an exact power of two, positive values divided by the largest value.
template <class TSrc>
inline double SourceStep(TSrc x) noexcept {
  using Traits = TDataTraits<TSrc>;
  if constexpr (!Traits::IsInteger) {
    return static_cast<double>(x);
  } else if constexpr (Traits::IsSigned) {
    double const d = static_cast<double>(x);
    return x < 1 ? d * Traits::NegativeScale : d / Traits::Largest;
  } else {
    return static_cast<double>(x) / Traits::Largest;
  }
}

// Target step: scale, clamp with strict comparisons (high first), truncate toward zero.
// The clamps are selects, so that the loops can vectorise; a w equal to a bound truncates to
// that same bound. NaN passes both comparisons and is answered by the explicit w != w test.
template <class TTrg>
inline TTrg TargetStep(double v) noexcept {
  using Traits = TDataTraits<TTrg>;
  if constexpr (!Traits::IsInteger) {
    return static_cast<TTrg>(v);  // double: as it is; float: round to nearest even, may be inf
  } else {
    double w;
    if constexpr (Traits::IsSigned)
      w = v > 0.0 ? v * Traits::Largest : v * Traits::NegativeMagnitude;
    else
      w = v * Traits::Largest;
    double c = w > Traits::Largest ? Traits::Largest : w;
    c = Traits::Smallest > c ? Traits::Smallest : c;
    // The truncation always receives a number (0.0 in place of a NaN), so that it is defined for
    // every input and a vector loop may run it on all lanes before the NaN lanes are replaced.
    bool const isNaN = c != c;
    double const number = isNaN ? 0.0 : c;
    if constexpr (std::is_same_v<TTrg, unsigned int>) {
      auto const truncated = static_cast<unsigned int>(static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
      return isNaN ? Traits::NaNResult : truncated;
    } else {
      auto const truncated = static_cast<TTrg>(static_cast<int>(number));
      return isNaN ? Traits::NaNResult : truncated;
    }
  }
}

// Integer pairs with one side of 32 bits and the other of 8 or 16, other than the closed forms.
template <class TTrg, class TSrc>
constexpr bool IsWideNarrowPair() noexcept {
  using Trg = TDataTraits<TTrg>;
  using Src = TDataTraits<TSrc>;
  if constexpr (!Trg::IsInteger || !Src::IsInteger || (sizeof(TTrg) == 4) == (sizeof(TSrc) == 4)) {
    return false;
  } else {
    return Trg::IsSigned || Src::IsSigned;  // both unsigned: a closed form
  }
}

// For those pairs the rule's result for a positive x is floor(x * Lt / Ls) (the two roundings
// of the rule move the quotient by far less than its distance to an integer; the tests check
// every 8/16-bit source value and the edges of the 32-bit ones), and one multiplication gives
// that: K is Lt / Ls rounded up by a little over one rounding, so that x * K, rounded, is never
// below the exact quotient and exceeds it by less than Lt * 2^-50 (below 2^-18, or 2^-34 from a
// 32-bit source). The quotient is a multiple of 1 / Ls (at least 2^-16, or 2^-32 from a 32-bit
// source), so nothing lies between it and the next integer, and the truncation is the floor.
template <class TTrg, class TSrc>
constexpr double RationalScale() noexcept {
  return TDataTraits<TTrg>::Largest / TDataTraits<TSrc>::Largest * (1.0 + 0x1p-51);
}

// floor(x * Lt / Ls) for 0 <= x <= Ls, largest values of the 8- and 16-bit integer types.
// Widening (Lt > Ls), Lt = a * Ls + b makes it a * x + floor(b * x / Ls), whose intermediates
// fit 16 bits, so that the loops keep 16-bit lanes (a quotient by a constant is a high
// multiplication there). Narrowing, the quotient as it stands vectorises better.
template <std::uint32_t Lt, std::uint32_t Ls>
constexpr std::uint32_t ScaleFloor16(std::uint32_t x) noexcept {
  static_assert(Lt <= 65535 && Ls <= 65535);
  if constexpr (Lt < Ls) {
    return x * Lt / Ls;
  } else {
    constexpr std::uint32_t a = Lt / Ls, b = Lt % Ls;
    static_assert(b * Ls <= 65535);
    return a * x + static_cast<std::uint16_t>(b * x) / static_cast<std::uint16_t>(Ls);
  }
}

// The integer forms below zero: 0 into an unsigned target, otherwise x times the power of two
// Mt / Ms, truncated toward zero; positive is the form's result for x > 0. TInt holds the
// product (int keeps the 8/16-bit loops in narrow lanes).
template <class TTrg, class TInt, class TSrc>
constexpr TTrg WithIntegerNegatives(TSrc x, TTrg positive) noexcept {
  using Trg = TDataTraits<TTrg>;
  using Src = TDataTraits<TSrc>;
  if constexpr (Src::IsSigned && Trg::IsSigned) {
    constexpr auto trgMagnitude = static_cast<TInt>(Trg::NegativeMagnitude);
    constexpr auto srcMagnitude = static_cast<TInt>(Src::NegativeMagnitude);
    TInt negative;
    if constexpr (trgMagnitude >= srcMagnitude)
      negative = x * (trgMagnitude / srcMagnitude);
    else
      negative = x / (srcMagnitude / trgMagnitude);  // truncates toward zero
    return x > 0 ? positive : static_cast<TTrg>(negative);
  } else {
    return x > 0 ? positive : static_cast<TTrg>(0);
  }
}

// One channel value from the source's element type to the target's. Equal types
// are a bit copy: no clamp, NaN payloads and negative zero kept.
//
// A few pairs are written in a closed form that gives the same bits as the two steps for every
// source value, so that the loops need no double arithmetic there (tests/Nu.Core.Ex checks each
// against the reference model over every 8/16-bit value and every multiple of the divisor):
// - the closed integer forms of the documented pair table (x * 257, x / 257, x * 16843009, ...).
//   For a 32-bit source the double result differs from x / d by a relative 2^-52 at most, so
//   the truncation can only differ where x / d is an integer: the multiples of d are tested.
// - Float from an 8- or 16-bit source: x is exact in single and double has more than twice
//   single's precision, so single(x / 255.0) is the correctly rounded x / 255, which is what
//   x / 255.0f gives (innocuous double rounding). The negative scale is exact either way.
// - Between Int and UInt: the exact quotients lie within 2^-32 of an integer, closer than the
//   rule's two roundings reach, so the rule's results were taken from a run over every source
//   value (found once, outside the build) and written as integer arithmetic; the tests check
//   the ends, the ranges where the form changes and a sweep across the rest.
template <class TTrg, class TSrc>
constexpr TTrg ConvertChannelValue(TSrc x) noexcept {
  using U8 = unsigned char;
  using U16 = unsigned short;
  using U32 = unsigned int;
  if constexpr (std::is_same_v<TTrg, TSrc>) {
    return x;
  } else if constexpr (std::is_same_v<TSrc, U8> && std::is_same_v<TTrg, U16>) {
    return static_cast<U16>(x * 257u);
  } else if constexpr (std::is_same_v<TSrc, U8> && std::is_same_v<TTrg, U32>) {
    return x * 16843009u;
  } else if constexpr (std::is_same_v<TSrc, U16> && std::is_same_v<TTrg, U8>) {
    return static_cast<U8>(x / 257u);
  } else if constexpr (std::is_same_v<TSrc, U16> && std::is_same_v<TTrg, U32>) {
    return x * 65537u;
  } else if constexpr (std::is_same_v<TSrc, U32> && std::is_same_v<TTrg, U8>) {
    return static_cast<U8>(x / 16843009u);
  } else if constexpr (std::is_same_v<TSrc, U32> && std::is_same_v<TTrg, U16>) {
    return static_cast<U16>(x / 65537u);
  } else if constexpr (std::is_same_v<TSrc, U32> && std::is_same_v<TTrg, int>) {
    // x * (2^31 - 1) / (2^32 - 1) is x / 2 less a fraction below 1 / 2; the rule truncates even
    // x > 0 to x / 2 - 1 and odd x to (x - 1) / 2.
    return static_cast<int>((x - (x != 0 ? 1u : 0u)) >> 1);
  } else if constexpr (std::is_same_v<TSrc, int> && std::is_same_v<TTrg, U32>) {
    // Zero and below give 0. x * (2^32 - 1) / (2^31 - 1) is 2x plus x / (2^31 - 1); the rule
    // gives 2x, except 2x + 1 from 0x7FFFFD00 to 0x7FFFFDFF and from 0x7FFFFF00 on, where its
    // roundings carry past the next integer.
    auto const u = static_cast<U32>(x);
    U32 const carry = (x >= 0x7FFFFD00 && (u & 0x100u) != 0) ? 1u : 0u;
    return x > 0 ? 2u * u + carry : 0u;
  } else if constexpr (TDataTraits<TSrc>::IsInteger && TDataTraits<TTrg>::IsInteger && sizeof(TSrc) <= 2 &&
                       sizeof(TTrg) <= 2) {
    // Between the 8- and 16-bit integer types the two steps equal exact integer arithmetic for
    // every source value: a positive x gives floor(x * Lt / Ls) (the double error stays far below
    // the distance 1 / Ls of a non-integer quotient to the next integer, and the exact quotients
    // come out exact; ScaleFloor16 computes it), zero gives 0, a negative x gives 0 into an
    // unsigned target and otherwise x times the power of two Mt / Ms, truncated toward zero.
    // Exhaustive test: every value.
    using Trg = TDataTraits<TTrg>;
    using Src = TDataTraits<TSrc>;
    constexpr auto trgLargest = static_cast<std::uint32_t>(Trg::Largest);
    constexpr auto srcLargest = static_cast<std::uint32_t>(Src::Largest);
    auto const positive = static_cast<TTrg>(ScaleFloor16<trgLargest, srcLargest>(static_cast<std::uint32_t>(x)));
    return WithIntegerNegatives<TTrg, int>(x, positive);
  } else if constexpr (IsWideNarrowPair<TTrg, TSrc>()) {
    // One side 32-bit, the other 8/16-bit (the closed forms aside): one multiplication by
    // RationalScale, see there; zero and below as the integer forms above.
    auto const positive = static_cast<TTrg>(static_cast<std::uint32_t>(
        static_cast<std::int64_t>(static_cast<double>(x) * RationalScale<TTrg, TSrc>())));
    return WithIntegerNegatives<TTrg, std::int64_t>(x, positive);
  } else if constexpr (std::is_same_v<TTrg, float> && (std::is_same_v<TSrc, U8> || std::is_same_v<TSrc, U16>)) {
    return static_cast<float>(x) / static_cast<float>(TDataTraits<TSrc>::Largest);
  } else if constexpr (std::is_same_v<TTrg, float> && (std::is_same_v<TSrc, char> || std::is_same_v<TSrc, short>)) {
    float const f = static_cast<float>(x);
    return x < 1 ? f * static_cast<float>(TDataTraits<TSrc>::NegativeScale)
                 : f / static_cast<float>(TDataTraits<TSrc>::Largest);
  } else {
    return TargetStep<TTrg>(SourceStep<TSrc>(x));
  }
}

// ---- value kernels: n contiguous elements, runs that do not overlap -------------------------
// Declared here, defined in NuImageConvertValuesImpl.h and instantiated once per pair and
// instruction set in the generated kernel units, so that the 80 loop units do not compile them.
template <EIsa Isa, class TE, class SE>
void ConvertValues(std::size_t n, TE* trg, SE const* src) noexcept;

// The same, choosing the instruction set of this CPU at each call (instantiated beside them).
template <class TE, class SE>
void ConvertValuesHere(std::size_t n, TE* trg, SE const* src) noexcept;

// ---- element moves: the layout rule on elements of one type, runs that do not overlap -------
enum class EPass { Full, ColourOnly, AlphaOnly };

template <std::size_t Size>
struct TBitsOf;
template <> struct TBitsOf<1> { using Type = std::uint8_t; };
template <> struct TBitsOf<2> { using Type = std::uint16_t; };
template <> struct TBitsOf<4> { using Type = std::uint32_t; };
template <> struct TBitsOf<8> { using Type = std::uint64_t; };

// The bits of the target's maximum, the filled alpha (1.0 for Float and Double).
template <class TE>
typename TBitsOf<sizeof(TE)>::Type MaximumBits() noexcept {
  typename TBitsOf<sizeof(TE)>::Type bits;
  TE const maximum = TDataTraits<TE>::TargetMaximum;
  std::memcpy(&bits, &maximum, sizeof bits);
  return bits;
}

constexpr bool IsWord(std::size_t bytes) noexcept { return bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8; }

// The index map of a layout pair:
//   TrgStride, SrcStride: elements per pixel. Colours: 1 or 3 target colours.
//   (T0, S0), (T1, S1), (T2, S2): target element <- source element, written in this order
//   (red, green, blue). TrgAlpha: target alpha element or -1. SrcAlpha: source alpha or -1.
template <unsigned int TrgStrideV, unsigned int SrcStrideV, unsigned int ColoursV, int T0V, int S0V, int T1V,
          int S1V, int T2V, int S2V, int TrgAlphaV, int SrcAlphaV>
struct TShape {
  static constexpr unsigned int TrgStride = TrgStrideV, SrcStride = SrcStrideV, Colours = ColoursV;
  static constexpr int T0 = T0V, S0 = S0V, T1 = T1V, S1 = S1V, T2 = T2V, S2 = S2V;
  static constexpr int TrgAlpha = TrgAlphaV, SrcAlpha = SrcAlphaV;
  // Every target element comes from the source element at the same place.
  static constexpr bool Identity = TrgStride == SrcStride && T0 == S0 && (Colours == 1 || (T1 == S1 && T2 == S2)) &&
                                   (TrgAlpha < 0 || TrgAlpha == SrcAlpha);
};

// The shape of a pair of TPixel types. Unused indices are normalised to 0 / -1 so that pairs
// with the same moves (Lum <- Bayer2 and Lum <- Lum, Bayer3 <- RGB and Lum <- RGB) name the
// same shape and share their kernels.
template <class TTrg, class TSrc>
struct TShapeSelect {
  static constexpr bool ThreeColours = TTrg::ColourCount == 3;
  static constexpr int TrgAlpha = TTrg::AlphaCount != 0 ? TTrg::AlphaIndex : -1;
  static constexpr int SrcAlpha = (TrgAlpha >= 0 && TSrc::AlphaCount != 0) ? TSrc::AlphaIndex : -1;
  using Type = TShape<TTrg::ElementCount, TSrc::ElementCount, TTrg::ColourCount, TTrg::RedIndex, TSrc::RedIndex,
                      ThreeColours ? TTrg::GreenIndex : 0, ThreeColours ? TSrc::GreenIndex : 0,
                      ThreeColours ? TTrg::BlueIndex : 0, ThreeColours ? TSrc::BlueIndex : 0, TrgAlpha, SrcAlpha>;
};
template <class TTrg, class TSrc>
using TShapeOf = typename TShapeSelect<TTrg, TSrc>::Type;

// The moves of one shape and pass on elements of one type (bits), for runs that do not overlap.
// Defined in NuImageConvertMovesImpl.h and emitted once by the generated move units, so that
// the 80 loop units do not compile them.
template <class T, class Shape, EPass Pass>
struct TMoves {
  NU_NOCLONE static void Baseline(std::size_t count, T* __restrict trg, T const* __restrict src, T fill) noexcept;
  NU_ISA_AVX2 NU_NOCLONE static void Avx2(std::size_t count, T* __restrict trg, T const* __restrict src,
                                          T fill) noexcept;
  NU_ISA_AVX512 NU_NOCLONE static void Avx512(std::size_t count, T* __restrict trg, T const* __restrict src,
                                              T fill) noexcept;
  // The instruction set of this CPU, chosen at each call.
  NU_NOCLONE static void Here(std::size_t count, T* trg, T const* src, T fill) noexcept;
};

// The full pass of one shape between two types of one size, each value mapped by the rule on
// its way, in one sweep (AVX-512 with VBMI; between the byte types the mapping is a 256-byte
// table, otherwise the rule in the lanes). Defined and emitted beside TMoves. Only for CPUs with VBMI;
// elsewhere the values and the moves go one after the other through a buffer.
template <class TE, class SE, class Shape>
NU_ISA_AVX512_VBMI NU_NOCLONE void MoveMappedAvx512(std::size_t count, TE* trg, SE const* src) noexcept;

// The pairs that take it: a layout change between two types of one size, unless the target has
// more elements per pixel than the source (a filled alpha, a grey repeated) and the rule runs in
// double there. The mapping computes every target element; measured here, the rule in double
// then costs more than the second pass it saves, and converting each source element once first
// wins.
template <class TE, class SE, class Shape>
constexpr bool MapsAsMoved() noexcept {
  return sizeof(TE) == sizeof(SE) && !std::is_same_v<TE, SE> && !Shape::Identity &&
         (Shape::TrgStride <= Shape::SrcStride || (TDataTraits<TE>::IsInteger && TDataTraits<SE>::IsInteger));
}

// ---- the fused path of separate runs, the same for every pair ------------------------------
// Pixels per step through the L1 buffer when the values go first, for pixels of the given size
// in the buffer. A multiple of 64 pixels, so that every step meets the target at the same
// offset in its lines. The moves then read the buffer through windows across the stores just
// made, which wait for those stores to retire: measured here, small pixels want a long step,
// 8 KiB of buffer, wide pixels a shorter one, 4 KiB. When the moves go first, the values read
// the buffer as it was written and a short step of 256 pixels measured best.
inline constexpr std::size_t MovesFirstBlock = 256;
constexpr std::size_t BlockPixels(std::size_t pixelBytes) noexcept {
  std::size_t const pixels = (pixelBytes <= 4 ? 8192 : 4096) / pixelBytes / 64 * 64;
  return pixels < 64 ? 64 : pixels;
}
// Measured here: from this target size on, stores that bypass the caches win.
inline constexpr std::size_t StreamBytes = std::size_t{16} << 20;
// Pixels per buffer on the streaming path: whole 64-byte lines of any pixel size.
inline constexpr std::size_t StreamBlock = 512;
// The same when the moves alone fill the buffer, straight from the source: measured here, wide
// pixels stream faster in short bursts of about 1 KiB.
constexpr std::size_t MovesStreamBlock(std::size_t pixelBytes) noexcept {
  std::size_t const pixels = 1024 / pixelBytes / 64 * 64;
  return pixels < 64 ? 64 : pixels > StreamBlock ? StreamBlock : pixels;
}
inline constexpr std::size_t MaxPixelBytes = 4 * sizeof(double);
// Measured here: from this source size on (beyond what the caches hold between calls), the
// hardware's own prefetching leaves the reads idle while the kernels work, and steps of about
// 1 KiB of source, each after a software request for the lines 4 KiB ahead, win; for sources
// the caches hold, they lose.
inline constexpr std::size_t FetchFromBytes = std::size_t{8} << 20;
inline constexpr std::size_t FetchAheadBytes = 4096;
constexpr std::size_t FetchPixels(std::size_t srcPixelBytes) noexcept {
  std::size_t const pixels = 1024 / srcPixelBytes / 64 * 64;
  return pixels < 64 ? 64 : pixels;
}

// What the fused path of one pair needs: its block producer (pixels first .. first + count - 1
// of the run into `to`, in the target layout; null for a plain copy), the LumA rule's alpha
// pass (or null), the target and source pixel sizes, the pixels per streamed block (a
// multiple of 64, at most StreamBlock) and whether the instruction set streams (AVX-512).
struct SApart {
  void (*Produce)(std::size_t first, std::size_t count, void* to, void const* src) noexcept;
  void (*AlphaPass)(std::size_t count, void* trg, void const* src) noexcept;
  std::size_t TrgPixelBytes;
  std::size_t SrcPixelBytes;
  std::size_t StreamPixels;
  bool (*Streams)() noexcept;
};

// Runs that do not overlap, of at least one pixel (NuImageConvertApart.cpp). One function for
// every pair: only the producers are compiled per pair.
void ConvertApart(std::size_t count, void* trg, void const* src, SApart const& apart) noexcept;

// Runs shorter than this take the plain passes even apart (same result): the fused path's
// buffer and instruction-set choice cost more than a few pixels.
inline constexpr std::size_t SmallRun = 16;

// A run of count pixels (NuImageConvertApart.cpp): the fused path of the CPU's instruction set
// if the runs do not overlap, the forward passes otherwise. One function for every pair, so
// that the choice is compiled once rather than per pair; a pair passes its kernels and, packed
// in one word (PackRunSizes), its target and source pixel sizes and pixels per streamed block,
// all in registers. The LumA rule's pairs pass their whole fused path, whose target run (and
// source run, for an alpha-bearing source) is twice the count.
using FForward = void (*)(std::size_t count, void* trg, void const* src) noexcept;
using FProduce = void (*)(std::size_t first, std::size_t count, void* to, void const* src) noexcept;
constexpr std::uint64_t PackRunSizes(std::size_t trgPixelBytes, std::size_t srcPixelBytes,
                                     std::size_t streamPixels) noexcept {
  return trgPixelBytes | srcPixelBytes << 8 | std::uint64_t{streamPixels} << 16;
}
void ConvertRun(unsigned int count, void* trg, void const* src, FForward forward, FProduce produce,
                std::uint64_t sizes) noexcept;
void ConvertRunLumA(unsigned int count, void* trg, void const* src, FForward forward, SApart const& apart,
                    bool srcTwice) noexcept;

// The kernels of the CPU's instruction set, chosen at each call, as policies of the fused path
// (the tests pass those of each instruction set in turn).
template <class TE, class SE>
struct TValuesHere {
  static void Run(std::size_t n, TE* trg, SE const* src) noexcept { ConvertValuesHere<TE, SE>(n, trg, src); }
};
struct TMovesHere {
  static bool Streams() noexcept { return CurrentIsa() == EIsa::Avx512; }
  // MoveMappedAvx512 where the CPU has it; false otherwise.
  template <class TE, class SE, class Shape>
  static bool MapValues(std::size_t count, TE* trg, SE const* src) noexcept {
    if (CurrentIsa() != EIsa::Avx512 || !HasVbmi()) return false;
    MoveMappedAvx512<TE, SE, Shape>(count, trg, src);
    return true;
  }
  template <class T, class Shape, EPass Pass>
  static void Run(std::size_t count, T* trg, T const* src, T fill) noexcept {
    TMoves<T, Shape, Pass>::Here(count, trg, src, fill);
  }
};

// ---- the layout kernel ----------------------------------------------------------------------
// One loop shape for every pair, templated on the element types and the shape only, so that
// pairs with the same code share one kernel and the 6,400 exported leaves stay thin.
// AlphaShift: the LumA-target rule for different data types, see below.
template <class TE, class SE, class Shape, bool AlphaShift>
struct TConvertRun {
  static constexpr unsigned int TrgStride = Shape::TrgStride, SrcStride = Shape::SrcStride;
  static constexpr unsigned int Colours = Shape::Colours;
  static constexpr int T0 = Shape::T0, S0 = Shape::S0, T1 = Shape::T1, S1 = Shape::S1, T2 = Shape::T2, S2 = Shape::S2;
  static constexpr int TrgAlpha = Shape::TrgAlpha, SrcAlpha = Shape::SrcAlpha;

  // Plain forward loops element by element, for runs that overlap (a conversion in place):
  // every read sees the writes before it, in the documented order. The elements are
  // read and written as bytes (memcpy), because the two runs may share memory under two element
  // types, which typed accesses would let the optimiser reorder. Not vectorised: only
  // overlapping runs come here.
  static TE ReadConvert(SE const* s) noexcept {
    SE value;
    std::memcpy(&value, s, sizeof value);
    return ConvertChannelValue<TE, SE>(value);
  }
  static void Write(TE* t, TE value) noexcept { std::memcpy(t, &value, sizeof value); }

  NU_NOVECTOR_FUNCTION NU_SMALL_FUNCTION static void Forward(std::size_t count, void* trgBytes,
                                                             void const* srcBytes) noexcept {
    auto* const trg = static_cast<TE*>(trgBytes);
    auto const* const src = static_cast<SE const*>(srcBytes);
    NU_NOVECTOR_LOOP
    for (std::size_t p = 0; p < count; ++p) {
      TE* t = trg + p * TrgStride;
      SE const* s = src + p * SrcStride;
      Write(t + T0, ReadConvert(s + S0));
      if constexpr (Colours == 3) {
        Write(t + T1, ReadConvert(s + S1));
        Write(t + T2, ReadConvert(s + S2));
      }
    }
    if constexpr (TrgAlpha >= 0) {
      // Deliberate and documented: for a LumA target of another data type the alpha
      // pass goes on where the colour pass stopped, at pixel count of both runs, for count
      // pixels. It writes (and, for an alpha-bearing source, reads) count pixels beyond the
      // runs, and the alphas of the run's own pixels stay unwritten. Do not "fix".
      std::size_t const first = AlphaShift ? count : 0;
      std::size_t const end = first + count;
      NU_NOVECTOR_LOOP
      for (std::size_t p = first; p < end; ++p) {
        if constexpr (SrcAlpha >= 0)
          Write(trg + p * TrgStride + TrgAlpha, ReadConvert(src + p * SrcStride + SrcAlpha));
        else
          Write(trg + p * TrgStride + TrgAlpha, TDataTraits<TE>::TargetMaximum);
      }
    }
  }

  using Bits = typename TBitsOf<sizeof(TE)>::Type;
  static constexpr bool SameType = std::is_same_v<TE, SE>;
  static constexpr bool Identity = !AlphaShift && Shape::Identity;
  // A target with fewer elements than the source and nothing to fill: the layout moves go
  // first, on the source's elements, so that only the elements kept are converted. So do
  // reorders into a type four or eight times as wide, whose moves on the narrow source
  // elements cost less than on the wide values (measured: 0.6-0.85 of the time in cache; into a
  // type twice as wide the gain is mixed).
  static constexpr bool MovesFirst =
      !AlphaShift && !(TrgAlpha >= 0 && SrcAlpha < 0) &&
      (SrcStride > TrgStride || (SrcStride == TrgStride && sizeof(TE) >= 4 * sizeof(SE)));
  // Between two types of one size (the byte types, the 16-bit ones, Int, UInt and Float), a
  // layout change can map each value as it moves (one sweep).
  static constexpr bool MapsValues = !AlphaShift && MapsAsMoved<TE, SE, Shape>();
  static constexpr std::size_t ValuesFirstBlock = BlockPixels(SrcStride * sizeof(TE));
  static_assert(TrgStride * sizeof(TE) <= MaxPixelBytes);

  // Runs that do not overlap: the result is the same as the forward passes (each element is
  // written once from a value that no write changes), so the passes may be fused and the value
  // rule applied to contiguous blocks: first the values into a small buffer in the source
  // layout, then the layout moves as bits (or the moves first, see MovesFirst). Identical
  // layouts skip the buffer; equal types skip the values.
  // Values and Moves are the kernels of one instruction set (the tests pass each in turn) or,
  // in the library, those that choose the CPU's instruction set at each call.
  // Pixels p .. p + count - 1 into `to`, in the target layout, by the full pass (or the colour
  // pass of the LumA rule, which always takes the values-then-moves road).
  template <class Values, class Moves>
  static void Produce(std::size_t p, std::size_t count, void* toBytes, void const* srcBytes) noexcept {
    constexpr EPass Pass = AlphaShift ? EPass::ColourOnly : EPass::Full;
    auto* to = static_cast<Bits*>(toBytes);
    auto const* src = static_cast<SE const*>(srcBytes);
    auto const* srcBits = static_cast<Bits const*>(srcBytes);
    Bits const fill = MaximumBits<TE>();
    if constexpr (MapsValues) {
      if (Moves::template MapValues<TE, SE, Shape>(count, reinterpret_cast<TE*>(to), src + p * SrcStride)) return;
    }
    if constexpr (Identity) {
      Values::Run(count * TrgStride, reinterpret_cast<TE*>(to), src + p * SrcStride);
    } else if constexpr (SameType) {
      Moves::template Run<Bits, Shape, EPass::Full>(count, to, srcBits + p * SrcStride, fill);
    } else if constexpr (MovesFirst) {
      using SourceBits = typename TBitsOf<sizeof(SE)>::Type;
      constexpr std::size_t Block = MovesFirstBlock;
      alignas(64) SE tmp[Block * TrgStride];
      for (std::size_t q = 0; q < count; q += Block) {
        std::size_t const n = count - q < Block ? count - q : Block;
        Moves::template Run<SourceBits, Shape, EPass::Full>(
            n, reinterpret_cast<SourceBits*>(tmp), reinterpret_cast<SourceBits const*>(src + (p + q) * SrcStride),
            SourceBits{});
        Values::Run(n * TrgStride, reinterpret_cast<TE*>(to + q * TrgStride), tmp);
      }
    } else {
      constexpr std::size_t Block = ValuesFirstBlock;
      alignas(64) TE tmp[Block * SrcStride];
      for (std::size_t q = 0; q < count; q += Block) {
        std::size_t const n = count - q < Block ? count - q : Block;
        Values::Run(n * SrcStride, tmp, src + (p + q) * SrcStride);
        Moves::template Run<Bits, Shape, Pass>(n, to + q * TrgStride, reinterpret_cast<Bits const*>(tmp), fill);
      }
    }
  }

  // The LumA-target rule: alphas of pixels count .. 2 * count - 1, see Forward.
  template <class Values, class Moves>
  static void AlphaPass(std::size_t count, void* trgBytes, void const* srcBytes) noexcept {
    auto* trg = static_cast<Bits*>(trgBytes);
    auto const* src = static_cast<SE const*>(srcBytes);
    constexpr std::size_t Block = ValuesFirstBlock;
    alignas(64) TE tmp[Block * SrcStride];
    auto const* tmpBits = reinterpret_cast<Bits const*>(tmp);
    for (std::size_t p = count; p < 2 * count; p += Block) {
      std::size_t const n = 2 * count - p < Block ? 2 * count - p : Block;
      if constexpr (SrcAlpha >= 0) Values::Run(n * SrcStride, tmp, src + p * SrcStride);
      Moves::template Run<Bits, Shape, EPass::AlphaOnly>(n, trg + p * TrgStride, tmpBits, MaximumBits<TE>());
    }
  }

  static constexpr std::size_t TrgPixelBytes = TrgStride * sizeof(TE), SrcPixelBytes = SrcStride * sizeof(SE);
  static constexpr std::size_t StreamPixels = SameType ? MovesStreamBlock(TrgPixelBytes) : StreamBlock;
  // The block producer; none for a plain copy.
  template <class Values, class Moves>
  static constexpr FProduce Producer = Identity && SameType ? nullptr : &Produce<Values, Moves>;
  template <class Values, class Moves>
  static SApart ApartKernels() noexcept {
    return {Producer<Values, Moves>, AlphaShift ? &AlphaPass<Values, Moves> : nullptr, TrgPixelBytes, SrcPixelBytes,
            StreamPixels, &Moves::Streams};
  }
  template <class Values, class Moves>
  static void Apart(std::size_t count, TE* trg, SE const* src) noexcept {
    ConvertApart(count, trg, src, ApartKernels<Values, Moves>());
  }

  // Separate runs take the fused, vectorised path of the CPU's instruction set; overlapping
  // runs the plain forward passes.
  __attribute__((noinline)) static void Run(unsigned int count, TE* trg, SE const* src) noexcept {
    using Values = TValuesHere<TE, SE>;
    if (count < SmallRun) return Forward(count, trg, src);  // the short way for a few pixels
    if constexpr (AlphaShift)
      ConvertRunLumA(count, trg, src, &Forward, ApartKernels<Values, TMovesHere>(), SrcAlpha >= 0);
    else
      ConvertRun(count, trg, src, &Forward, Producer<Values, TMovesHere>,
                 PackRunSizes(TrgPixelBytes, SrcPixelBytes, StreamPixels));
  }
};

// The kernel of one pair of TPixel types.
template <class TTrg, class TSrc>
struct TConvertKernel {
  using TE = typename TTrg::Element;
  using SE = typename TSrc::Element;
  static constexpr bool AlphaShift =
      TTrg::PixelTypeId == EPixelType::LumA && TTrg::DataTypeId != TSrc::DataTypeId;
  using Run = TConvertRun<TE, SE, TShapeOf<TTrg, TSrc>, AlphaShift>;
};

// The 80 carried formats in list order; the instantiation unit N fixes target AllFormats[N].
struct SFormatIds {
  int PixelType;
  int DataType;
};
#define NU_CONVERT_FORMAT_IDS_(L, C, A, R, G, B, Al, D, E) {EPixelType::L, EDataType::D},
inline constexpr SFormatIds AllFormats[] = {NU_ALL_PIXELS(NU_CONVERT_FORMAT_IDS_)};
#undef NU_CONVERT_FORMAT_IDS_

// The ten layouts in list order, with their channel indices, and those of distinct shape as a
// target (Bayer targets move as Lum does): the move unit N emits the kernels into the N-th.
struct SLayout {
  int Layout;
  unsigned int Colours, Alphas;
  int Red, Green, Blue, Alpha;
};
#define NU_CONVERT_LAYOUTS_(L, C, A, R, G, B, Al, ...) {EPixelType::L, C, A, R, G, B, Al},
inline constexpr SLayout AllLayouts[] = {NU_PIXEL_LAYOUTS(NU_CONVERT_LAYOUTS_)};
#undef NU_CONVERT_LAYOUTS_

struct SDistinctLayouts {
  int Layout[std::size(AllLayouts)];
  std::size_t Count;
};
constexpr SDistinctLayouts DistinctTargetLayouts() noexcept {
  SDistinctLayouts distinct{};
  for (std::size_t i = 0; i < std::size(AllLayouts); ++i) {
    SLayout const& a = AllLayouts[i];
    bool seen = false;
    for (std::size_t j = 0; j < i; ++j) {
      SLayout const& b = AllLayouts[j];
      seen = seen || (a.Colours == b.Colours && a.Alphas == b.Alphas && a.Red == b.Red && a.Green == b.Green &&
                      a.Blue == b.Blue && a.Alpha == b.Alpha);
    }
    if (!seen) distinct.Layout[distinct.Count++] = a.Layout;
  }
  return distinct;
}

// The eight data types in list order; the kernel unit N instantiates the value kernels into
// data type AllDataTypes[N].
#define NU_CONVERT_DATA_IDS_(D, E, ...) EDataType::D,
inline constexpr int AllDataTypes[] = {NU_DATA_TYPES(NU_CONVERT_DATA_IDS_)};
#undef NU_CONVERT_DATA_IDS_

}  // namespace Nu::Detail

namespace Nu {

template <class TTrg, class TSrc>
bool CNuImage::_Convert(unsigned int count, TTrg* trg, TSrc const* src) {
  using Kernel = Detail::TConvertKernel<TTrg, TSrc>;
  if (count == 0) return true;
  Kernel::Run::Run(count, reinterpret_cast<typename Kernel::TE*>(trg),
              reinterpret_cast<typename Kernel::SE const*>(src));
  return true;
}

// Two-level choice, source pixel type then source data type, expanded from the two lists.
template <class TTrg>
bool CNuImage::_ConvertSrcSwitch(void const* src, CNuImageFormat const& srcFormat, TTrg* trg) {
  unsigned int const count = srcFormat.GetPixelCount();  // wraps modulo 2^32, by design
#define NU_CONVERT_SRC_DATA_CASE_(D, E, L, C, A, R, G, B, Al)                          \
  case EDataType::D:                                                                   \
    return _Convert<TTrg, NU_TPIXEL(L, C, A, R, G, B, Al, D, E)>(                      \
        count, trg, static_cast<NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const*>(src));
#define NU_CONVERT_SRC_LAYOUT_CASE_(L, C, A, R, G, B, Al, ...)             \
  case EPixelType::L:                                                      \
    switch (srcFormat.DataType) {                                          \
      NU_DATA_TYPES(NU_CONVERT_SRC_DATA_CASE_, L, C, A, R, G, B, Al)       \
      default: return false;                                               \
    }
  switch (srcFormat.PixelType) {
    NU_PIXEL_LAYOUTS(NU_CONVERT_SRC_LAYOUT_CASE_)
    default: return false;
  }
#undef NU_CONVERT_SRC_LAYOUT_CASE_
#undef NU_CONVERT_SRC_DATA_CASE_
}

}  // namespace Nu

// The body of one generated instantiation unit: the 80 leaves into target format INDEX and
// its source switch. COUNT is the number of units CMake generated, checked against the list.
#define NU_CONVERT_INSTANTIATE_LEAF_(L, C, A, R, G, B, Al, D, E)                          \
  template bool CNuImage::_Convert<TConvertUnitTarget, NU_TPIXEL(L, C, A, R, G, B, Al, D, E)>( \
      unsigned int, TConvertUnitTarget*, NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const*);
#define NU_CONVERT_INSTANTIATE_TARGET(INDEX, COUNT)                                          \
  static_assert(std::size(::Nu::Detail::AllFormats) == (COUNT),                              \
                "cmake/NuConvertUnits.cmake must generate one unit per carried format");     \
  namespace Nu {                                                                             \
  using TConvertUnitTarget =                                                                 \
      TPixelOf<Detail::AllFormats[INDEX].PixelType, Detail::AllFormats[INDEX].DataType>;     \
  NU_ALL_PIXELS(NU_CONVERT_INSTANTIATE_LEAF_)                                                \
  template bool CNuImage::_ConvertSrcSwitch<TConvertUnitTarget>(void const*,                 \
                                                                CNuImageFormat const&,       \
                                                                TConvertUnitTarget*);        \
  }
