#pragma once
// The value rule between the eight numeric data types: one traits row per element type, the
// two steps as written, and the closed forms that give the same bits with less arithmetic.
#include <Nu.Core.Ex/NuImageFormat.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace Nu::Detail {

// ---- one row per element type -------------------------------------------------------------
// Largest: the largest value (and the positive scale). NegativeScale: 2^-bits, the multiplier
// of zero and negative values of a signed source. NegativeMagnitude: the magnitude of the
// smallest value, the scale of v <= 0 into a signed target. TargetMaximum: the alpha written
// where a source has none. NaNResult: what a NaN stores, the low bits of the processor's
// indefinite integer (INT_MIN, or INT64_MIN for UInt), produced here without any cast of a NaN.
// An element type without a row has no rule: every use of it fails to compile.
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

// The element type of a data type id, and the row of a data type id as a value, for the plans.
template <int DataType>
using TElementOf = typename TPixelOf<EPixelType::Lum, DataType>::Element;

template <class T>
constexpr int DataIdOf() noexcept {
#define NU_DATA_ID_(D, E, ...) \
  if constexpr (std::is_same_v<T, E>) return EDataType::D; else
  NU_DATA_TYPES(NU_DATA_ID_)
#undef NU_DATA_ID_
  return 0;
}

struct SDataInfo {
  int Id = 0;
  unsigned int Bytes = 0;
  bool IsInteger = false, IsSigned = false;
  double Largest = 0.0;  // integer types only
};
template <class T>
constexpr SDataInfo InfoOf(int id) noexcept {
  using Traits = TDataTraits<T>;
  if constexpr (Traits::IsInteger)
    return {id, sizeof(T), true, Traits::IsSigned, Traits::Largest};
  else
    return {id, sizeof(T), false, true, 0.0};
}
constexpr SDataInfo DataInfo(int dataType) noexcept {
  switch (dataType) {
#define NU_DATA_INFO_(D, E, ...) \
  case EDataType::D: return InfoOf<E>(EDataType::D);
    NU_DATA_TYPES(NU_DATA_INFO_)
#undef NU_DATA_INFO_
    default: return {};
  }
}

// ---- the rule as written --------------------------------------------------------------------
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

// The rule with no closed form: what every fast path is judged against.
template <class TTrg, class TSrc>
inline TTrg PlainRule(TSrc x) noexcept {
  if constexpr (std::is_same_v<TTrg, TSrc>)
    return x;
  else
    return TargetStep<TTrg>(SourceStep<TSrc>(x));
}

// 2^e as a double, in constant expressions.
constexpr double Pow2(int e) noexcept {
  double p = 1.0;
  for (; e > 0; --e) p *= 2.0;
  for (; e < 0; ++e) p *= 0.5;
  return p;
}

// The Mersenne form's numbers for a source type (the form and its proof are at
// ConvertChannelValue): L = 2^K - 1 divides 2^M - 1, and the sticky unit is added from StickyFrom.
template <class TSrc>
struct TMersenne {
  static constexpr bool Wide = sizeof(TSrc) == 4;
  static constexpr int K = 8 * static_cast<int>(sizeof(TSrc)) - (std::is_signed_v<TSrc> ? 1 : 0);
  static constexpr int M = Wide ? 2 * K : 4 * K;
  static constexpr std::uint32_t StickyFrom = std::uint32_t{1} << (53 - M + K);
};

// ---- the forms -------------------------------------------------------------------------------
// How a pair computes the rule. Each form other than Copy and Rule is an exact replacement of
// the two steps, derived from one property of the pair; the proof stands at its code below.
enum class EValueForm : std::uint8_t {
  Copy,      // equal types: the bits
  Multiple,  // unsigned integers: one largest value is a multiple of the other
  Halve,     // Int from an unsigned integer: its largest value divides 2^32 - 1
  Twice,     // UInt from Int
  Small,     // two 8/16-bit integer types
  Scaled,    // a 32-bit integer type with an 8/16-bit one
  Single,    // Float from an 8/16-bit integer type
  Mersenne,  // Float or Double from a 32-bit integer, Double from UShort: L = 2^k - 1
  Rule,      // the two steps as written
};

constexpr char const* ValueFormName(EValueForm form) noexcept {
  constexpr char const* names[] = {"copy",   "multiple", "halve",    "twice", "small",
                                   "scaled", "single",   "mersenne", "rule"};
  return names[static_cast<int>(form)];
}

constexpr bool IsMultiple(double a, double b) noexcept {
  auto const x = static_cast<std::uint64_t>(a), y = static_cast<std::uint64_t>(b);
  return x >= y ? x % y == 0 : y % x == 0;
}

constexpr EValueForm ValueFormOf(SDataInfo trg, SDataInfo src) noexcept {
  if (trg.Id == src.Id) return EValueForm::Copy;
  if (trg.IsInteger && src.IsInteger) {
    if (!trg.IsSigned && !src.IsSigned && IsMultiple(trg.Largest, src.Largest)) return EValueForm::Multiple;
    if (trg.Id == EDataType::Int && !src.IsSigned && IsMultiple(4294967295.0, src.Largest)) return EValueForm::Halve;
    if (trg.Id == EDataType::UInt && src.Id == EDataType::Int) return EValueForm::Twice;
    if (trg.Bytes <= 2 && src.Bytes <= 2) return EValueForm::Small;
    return EValueForm::Scaled;
  }
  if (trg.Id == EDataType::Float && src.IsInteger && src.Bytes <= 2) return EValueForm::Single;
  // Double from Short keeps the rule: the compiler vectorises its division, not the form's two
  // branches in 16-bit lanes.
  if (!trg.IsInteger && src.IsInteger && (src.Bytes == 4 || (src.Id == EDataType::UShort && trg.Bytes == 8)))
    return EValueForm::Mersenne;
  return EValueForm::Rule;
}
template <class TTrg, class TSrc>
constexpr EValueForm ValueFormOf() noexcept {
  return ValueFormOf(InfoOf<TTrg>(DataIdOf<TTrg>()), InfoOf<TSrc>(DataIdOf<TSrc>()));
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

// For the Scaled pairs one multiplication gives floor(x * Lt / Ls): K is Lt / Ls rounded up by
// a little over one rounding, so that x * K, rounded, is never below the exact quotient and
// exceeds it by less than Lt * 2^-50 (below 2^-18, or 2^-34 from a 32-bit source). The
// quotient is a multiple of 1 / Ls (at least 2^-16, or 2^-32 from a 32-bit source), so nothing
// lies between it and the next integer, and the truncation is the floor.
template <class TTrg, class TSrc>
constexpr double RationalScale() noexcept {
  return TDataTraits<TTrg>::Largest / TDataTraits<TSrc>::Largest * (1.0 + 0x1p-51);
}

// Zero and below in the integer forms: 0 into an unsigned target, otherwise x times the power of
// two Mt / Ms (the two magnitudes), truncated toward zero, which is the rule's exact product;
// positive is the form's result for x > 0. TInt holds the product.
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

// The Twice form's carry ranges (see there): from TwiceCarryFrom on, where TwiceCarryBit is set.
inline constexpr int TwiceCarryFrom = 0x7FFFFD00;
inline constexpr unsigned int TwiceCarryBit = 0x100;

// One channel value from the source's element type to the target's, by the form of the pair.
// Each form is checked against the reference model over every 8- and 16-bit source value
// (ChannelValue.EveryTargetMatchesTheReference, and ConvertLevels.* at every instruction-set
// level), and against PlainRule over every 32-bit source value (ChannelValueSweep and
// ConvertSweep, label exhaustive).
template <class TTrg, class TSrc>
constexpr TTrg ConvertChannelValue(TSrc x) noexcept {
  using Trg = TDataTraits<TTrg>;
  using Src = TDataTraits<TSrc>;
  constexpr EValueForm form = ValueFormOf<TTrg, TSrc>();
  if constexpr (form == EValueForm::Copy) {
    return x;
  } else if constexpr (form == EValueForm::Multiple) {
    // Lt = q Ls widening: x / Ls * Lt is the integer x q to within the two roundings; every
    // widening source is 8 or 16 bits, and each value gives x q. Ls = q Lt narrowing: the
    // double quotient is within a relative 2^-52 of x / q, so its truncation can differ from the
    // integer division only where x / q is an integer, at the multiples of q, where the rule
    // gives it exactly.
    if constexpr (Trg::Largest > Src::Largest)
      return static_cast<TTrg>(x * static_cast<TTrg>(Trg::Largest / Src::Largest));
    else
      return static_cast<TTrg>(x / static_cast<TSrc>(Src::Largest / Trg::Largest));
  } else if constexpr (form == EValueForm::Halve) {
    // Ls divides 2^32 - 1, so u = x (2^32 - 1) / Ls is the integer of the UInt target (the
    // Multiple form, or x itself), and x (2^31 - 1) / Ls = u / 2 - d with 0 < d <= 1/2 for a
    // positive x: its floor is (u - 1) >> 1 whether u is even or odd, and 0 for x = 0. From an
    // 8/16-bit source the exact value keeps at least 2^-17 from an integer, beyond the rule's
    // roundings; from UInt the sweep shows that the rule gives it for every value.
    unsigned int const u = ConvertChannelValue<unsigned int, TSrc>(x);
    return static_cast<int>((u - (u != 0 ? 1u : 0u)) >> 1);
  } else if constexpr (form == EValueForm::Twice) {
    // Zero and below give 0. x (2^32 - 1) / (2^31 - 1) is 2x plus x / (2^31 - 1); the rule
    // gives 2x, except 2x + 1 from 0x7FFFFD00 to 0x7FFFFDFF and from 0x7FFFFF00 on, where its
    // roundings carry past the next integer: read off the sweep over every source value.
    auto const u = static_cast<unsigned int>(x);
    unsigned int const carry = (x >= TwiceCarryFrom && (u & TwiceCarryBit) != 0) ? 1u : 0u;
    return x > 0 ? 2u * u + carry : 0u;
  } else if constexpr (form == EValueForm::Small) {
    // A positive x gives floor(x * Lt / Ls): the double error stays far below 1 / Ls, the
    // distance of a non-integer quotient to the next integer, and the integer quotients come
    // out exact. ScaleFloor16 computes it in 16-bit arithmetic.
    auto const positive = static_cast<TTrg>(
        ScaleFloor16<static_cast<std::uint32_t>(Trg::Largest), static_cast<std::uint32_t>(Src::Largest)>(
            static_cast<std::uint32_t>(x)));
    return WithIntegerNegatives<TTrg, int>(x, positive);
  } else if constexpr (form == EValueForm::Scaled) {
    // One multiplication by RationalScale, see there.
    auto const positive = static_cast<TTrg>(
        static_cast<std::uint32_t>(static_cast<std::int64_t>(static_cast<double>(x) * RationalScale<TTrg, TSrc>())));
    return WithIntegerNegatives<TTrg, std::int64_t>(x, positive);
  } else if constexpr (form == EValueForm::Single) {
    // x is exact in single, and double has more than twice single's precision, so
    // single(x / L) is the correctly rounded x / L, which the division in single gives
    // (innocuous double rounding). The negative scale is exact either way.
    float const f = static_cast<float>(x);
    if constexpr (Src::IsSigned)
      return x < 1 ? f * static_cast<float>(Src::NegativeScale) : f / static_cast<float>(Src::Largest);
    else
      return f / static_cast<float>(Src::Largest);
  } else if constexpr (form == EValueForm::Mersenne) {
    // L = 2^k - 1 divides 2^m - 1 for m = 2k (32-bit sources) and m = 4k (16-bit ones), so for
    // 0 < x <= L, x / L = N / (2^m - 1) with the integer N = x (2^m - 1) / L, below 2^m:
    // N 2^-m (1 + 2^-m + ...), which exceeds N 2^-m by less than 2^-m. Where N > 2^53 (x >=
    // 2^(53 - m + k)) the doubles near it lie whole units of 2^-m apart, and so do the midpoints
    // between them: the quotient rounds as (N + 1/2) 2^-m does, and the unit s adds that half in
    // units of 2^-(m + 1) (without it a midpoint at N would round to even). Where N < 2^53,
    // N 2^-m is a double and the quotient lies well within half its last unit above it: s = 0.
    // 2N + s is a sum of two exact doubles, rounded once by the addition: x 2^(k + 1) + (2x + s)
    // for m = 2k, x (2^(3k + 1) + 2^(2k + 1)) + (x (2^(k + 1) + 2) + s) for m = 4k. Zero and
    // below: the exact power of two, as the rule has it.
    using Form = TMersenne<TSrc>;
    constexpr int k = Form::K, m = Form::M;
    constexpr double high = Form::Wide ? Pow2(k + 1) : Pow2(3 * k + 1) + Pow2(2 * k + 1);
    constexpr double low = Form::Wide ? 2.0 : Pow2(k + 1) + 2.0;
    constexpr auto sticky = static_cast<TSrc>(Form::StickyFrom);
    double const d = static_cast<double>(x);
    double v = (d * high + (d * low + (x >= sticky ? 1.0 : 0.0))) * Pow2(-(m + 1));
    if constexpr (Src::IsSigned) v = x < 1 ? d * Src::NegativeScale : v;
    return static_cast<TTrg>(v);
  } else {
    return TargetStep<TTrg>(SourceStep<TSrc>(x));
  }
}

// ---- target maximum as bits ----------------------------------------------------------------
template <std::size_t Size>
struct TBitsOf;
template <> struct TBitsOf<1> { using Type = std::uint8_t; };
template <> struct TBitsOf<2> { using Type = std::uint16_t; };
template <> struct TBitsOf<4> { using Type = std::uint32_t; };
template <> struct TBitsOf<8> { using Type = std::uint64_t; };
template <class T>
using TBits = typename TBitsOf<sizeof(T)>::Type;

// The bits of the target's maximum, the filled alpha (1.0 for Float and Double).
template <class TE>
TBits<TE> MaximumBits() noexcept {
  TBits<TE> bits;
  TE const maximum = TDataTraits<TE>::TargetMaximum;
  std::memcpy(&bits, &maximum, sizeof bits);
  return bits;
}

}  // namespace Nu::Detail
