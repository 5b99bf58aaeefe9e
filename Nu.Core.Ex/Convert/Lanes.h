#pragma once
// The AVX-512 value kernels that the plans name (EValueKernel other than Loop), written with
// intrinsics because the compiler's own vectorisation of the value rule's selects, NaN test and
// division falls far behind memory there. Included by Convert/Values.h only.
//
// Every source value, of any type, is an exact double, so eight elements are carried in the
// lanes of one register through the rule's own double arithmetic (no FMA, no reciprocal where
// the rule divides) and truncated by the processor's conversion, whose answer for a NaN and
// for nothing else is the indefinite integer: its low bits are the rule's NaN results. The
// integer pairs whose results have integer forms (Convert/ValueRule.h) take those forms in
// integer lanes instead, twice or four times as many per register.
#include <Nu.Core.Ex/Convert/Plan.h>

#include <cstddef>
#include <cstdint>
#include <immintrin.h>
#include <type_traits>

// GCC 12 reports its own intrinsics' undefined pass-through operands as maybe uninitialised.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

namespace Nu::Detail {

// Double from the byte types, by the repeated bits: x / (2^k - 1) is x 2^-k (1 + 2^-k + 2^-2k
// + ...), x's bits repeated every k places, so x times the repeated ones (x * 0x0101010101010101
// over 255) holds the quotient's leading 57 bits or more exactly, and what it drops lies below
// its last bit. Converting that integer rounds as the division does unless it sits on a tie, and
// no source value does: the tests compare every one. The negative side, x 2^-k, is exact anyway.
// (16-bit sources leave too few bits for a double; into Float the 16 lanes of single-precision
// division is cheaper.)
template <class SE>
struct TRepeat;
template <>
struct TRepeat<unsigned char> {
  static constexpr std::uint64_t Ones = 0x0101010101010101u;
  static constexpr double Scale = 0x1p-64;
};
template <>
struct TRepeat<char> {
  static constexpr std::uint64_t Ones = 0x0102040810204081u;  // every 7th bit, 2^0 to 2^56
  static constexpr double Scale = 0x1p-63;
};

#define NU_LANES_ NU_TARGET_Avx512 __attribute__((always_inline)) inline

// A loaded vector, held in a register. Left alone, the compiler folds one load into the memory
// operand of every instruction that uses the vector: each reads the source again, and where the
// line is not yet in L1 every one of those reads waits on the miss.
template <class V>
NU_LANES_ V Held(V x) noexcept {
  __asm__("" : "+v"(x));
  return x;
}

// Eight source elements as exact doubles; the tail reads only the masked elements.
template <class SE, bool Tail>
NU_LANES_ __m512d LoadLanes(SE const* src, __mmask8 mask) noexcept {
  if constexpr (sizeof(SE) == 1) {
    __m128i const b = Tail ? _mm_maskz_loadu_epi8(mask, src) : _mm_loadl_epi64(reinterpret_cast<__m128i const*>(src));
    return _mm512_cvtepi32_pd(std::is_signed_v<SE> ? _mm256_cvtepi8_epi32(b) : _mm256_cvtepu8_epi32(b));
  } else if constexpr (sizeof(SE) == 2) {
    __m128i const w = Tail ? _mm_maskz_loadu_epi16(mask, src) : _mm_loadu_si128(reinterpret_cast<__m128i const*>(src));
    return _mm512_cvtepi32_pd(std::is_signed_v<SE> ? _mm256_cvtepi16_epi32(w) : _mm256_cvtepu16_epi32(w));
  } else if constexpr (std::is_same_v<SE, int> || std::is_same_v<SE, unsigned int>) {
    __m256i const d = Tail ? _mm256_maskz_loadu_epi32(mask, src) : _mm256_loadu_si256(reinterpret_cast<__m256i const*>(src));
    return std::is_signed_v<SE> ? _mm512_cvtepi32_pd(d) : _mm512_cvtepu32_pd(d);
  } else if constexpr (std::is_same_v<SE, float>) {
    return _mm512_cvtps_pd(Tail ? _mm256_maskz_loadu_ps(mask, src) : _mm256_loadu_ps(src));
  } else {
    return Tail ? _mm512_maskz_loadu_pd(mask, src) : _mm512_loadu_pd(src);
  }
}

// Truncation toward zero of eight doubles into the target's low bits. A NaN lane becomes the
// indefinite integer (INT_MIN, or INT64_MIN for UInt), as the rule asks.
template <class TE>
NU_LANES_ __m256i TruncateLanes(__m512d c) noexcept {
  if constexpr (std::is_same_v<TE, unsigned int>)
    return _mm512_cvtepi64_epi32(_mm512_cvttpd_epi64(c));
  else
    return _mm512_cvttpd_epi32(c);
}

template <class TE, bool Tail>
NU_LANES_ void StoreLanes(TE* trg, __m512d c, __mmask8 mask) noexcept {
  __m256i const d = TruncateLanes<TE>(c);
  if constexpr (sizeof(TE) == 4) {
    Tail ? _mm256_mask_storeu_epi32(trg, mask, d) : _mm256_storeu_si256(reinterpret_cast<__m256i*>(trg), d);
  } else if constexpr (sizeof(TE) == 2) {
    __m128i const w = _mm256_cvtepi32_epi16(d);
    Tail ? _mm_mask_storeu_epi16(trg, mask, w) : _mm_storeu_si128(reinterpret_cast<__m128i*>(trg), w);
  } else {
    __m128i const b = _mm256_cvtepi32_epi8(d);
    Tail ? _mm_mask_storeu_epi8(trg, mask, b) : _mm_storel_epi64(reinterpret_cast<__m128i*>(trg), b);
  }
}

// The rule as written: the source step (an exact power-of-two scale for zero and below of a
// signed source, a division otherwise), then the target step. x86 min(a, b) is a < b ? a : b
// and answers b if either is a NaN, so min(L, w) is the rule's "w > L ? L : w" with a NaN
// passed through, and max(S, c) its "S > c ? S : c".
template <class SE>
NU_LANES_ __m512d SourceLanes(__m512d v) noexcept {
  using Src = TDataTraits<SE>;
  if constexpr (Src::IsInteger && Src::IsSigned) {
    __mmask8 const positive = _mm512_cmp_pd_mask(v, _mm512_set1_pd(1.0), _CMP_GE_OQ);
    return _mm512_mask_div_pd(_mm512_mul_pd(v, _mm512_set1_pd(Src::NegativeScale)), positive, v,
                              _mm512_set1_pd(Src::Largest));
  } else if constexpr (Src::IsInteger) {
    return _mm512_div_pd(v, _mm512_set1_pd(Src::Largest));
  } else {
    return v;
  }
}

template <class TE, class SE>
NU_LANES_ __m512d RuleLanes(__m512d v) noexcept {
  using Trg = TDataTraits<TE>;
  __m512d const zero = _mm512_setzero_pd();
  __m512d const d = SourceLanes<SE>(v);
  __m512d w;
  if constexpr (Trg::IsSigned) {
    __mmask8 const positive = _mm512_cmp_pd_mask(d, zero, _CMP_GT_OQ);
    w = _mm512_mask_mul_pd(_mm512_mul_pd(d, _mm512_set1_pd(Trg::NegativeMagnitude)), positive, d,
                           _mm512_set1_pd(Trg::Largest));
  } else {
    w = _mm512_mul_pd(d, _mm512_set1_pd(Trg::Largest));
  }
  return _mm512_max_pd(_mm512_set1_pd(Trg::Smallest), _mm512_min_pd(_mm512_set1_pd(Trg::Largest), w));
}

template <class TE, class SE, bool Tail>
NU_LANES_ void ConvertRuleLanes(TE* trg, SE const* src, __mmask8 mask) noexcept {
  StoreLanes<TE, Tail>(trg, RuleLanes<TE, SE>(LoadLanes<SE, Tail>(src, mask)), mask);
}

// ---- the Small form: the 8- and 16-bit integer pairs in 16-bit lanes ------------------------

// The quotient by a constant D of every x in 0 .. Max as a high multiplication, x * M >> (16 + s)
// with M below 2^16; the pair is found and checked for every x of the domain at compile time.
struct SDivide16 {
  std::uint32_t Multiplier;
  unsigned int Shift;
};
template <std::uint32_t D, std::uint32_t Max>
constexpr SDivide16 Divide16() noexcept {
  for (unsigned int shift = 0; shift < 16; ++shift) {
    std::uint64_t const multiplier = ((std::uint64_t{1} << (16 + shift)) + D - 1) / D;
    if (multiplier > 65535) break;
    bool exact = true;
    for (std::uint64_t x = 0; x <= Max && exact; ++x) exact = (x * multiplier >> (16 + shift)) == x / D;
    if (exact) return {static_cast<std::uint32_t>(multiplier), shift};
  }
  return {0, 0};
}

template <std::uint32_t D, std::uint32_t Max>
NU_LANES_ __m512i Quotient16(__m512i x) noexcept {
  constexpr SDivide16 divide = Divide16<D, Max>();
  static_assert(divide.Multiplier != 0, "no 16-bit high multiplication divides this domain exactly");
  return _mm512_srli_epi16(_mm512_mulhi_epu16(x, _mm512_set1_epi16(static_cast<short>(divide.Multiplier))),
                           divide.Shift);
}

constexpr unsigned int Log2(std::uint32_t power) noexcept { return power > 1 ? 1 + Log2(power / 2) : 0; }

NU_LANES_ __m512i Set16(std::uint32_t k) noexcept { return _mm512_set1_epi16(static_cast<short>(k)); }

// floor(x * Lt / Ls) (ScaleFloor16) on 32 lanes of x in 0 .. Ls, every product within 16 bits:
// - Lt < Ls: with d = Ls / Lt, c = Ls - Lt * d and x = d * q + r (0 <= r < d),
//   Lt * x = Ls * q + (Lt * r - c * q), where 0 <= Lt * r < Ls and 0 <= c * q < Ls, so the
//   floor is q, less one where Lt * r < c * q.
// - Lt > Ls: a * x + floor(b * x / Ls), as ScaleFloor16.
template <std::uint32_t Lt, std::uint32_t Ls>
NU_LANES_ __m512i ScaleFloorLanes(__m512i x) noexcept {
  if constexpr (Lt < Ls) {
    constexpr std::uint32_t d = Ls / Lt, c = Ls - Lt * d;
    static_assert(Lt * (d - 1) < Ls && c * (Ls / d) < Ls);
    __m512i const q = Quotient16<d, Ls>(x);
    __m512i const r = _mm512_sub_epi16(x, _mm512_mullo_epi16(q, Set16(d)));
    __mmask32 const below = _mm512_cmplt_epu16_mask(_mm512_mullo_epi16(r, Set16(Lt)), _mm512_mullo_epi16(q, Set16(c)));
    return _mm512_mask_sub_epi16(q, below, q, Set16(1));
  } else {
    constexpr std::uint32_t a = Lt / Ls, b = Lt % Ls;
    __m512i const whole = _mm512_mullo_epi16(x, Set16(a));
    if constexpr (b == 0) return whole;
    else return _mm512_add_epi16(whole, Quotient16<Ls, b * Ls>(_mm512_mullo_epi16(x, Set16(b))));
  }
}

// 32 source elements of 8 or 16 bits in 16-bit lanes, extended by their sign.
template <class SE, bool Tail>
NU_LANES_ __m512i LoadSmallLanes(SE const* src, __mmask32 mask) noexcept {
  if constexpr (sizeof(SE) == 1) {
    __m256i const b = Tail ? _mm256_maskz_loadu_epi8(mask, src) : _mm256_loadu_si256(reinterpret_cast<__m256i const*>(src));
    return std::is_signed_v<SE> ? _mm512_cvtepi8_epi16(b) : _mm512_cvtepu8_epi16(b);
  } else {
    return Held(Tail ? _mm512_maskz_loadu_epi16(mask, src) : _mm512_loadu_si512(src));
  }
}

// Narrowing between integer types. Both largest values are of the form 2^n - 1: Lt = 2^j - 1
// and Ls = 2^k - 1, j < k. With x = a 2^(k - j) + r (0 <= r < 2^(k - j)), x Lt = a Ls + e with
// e = a + r 2^j - x = r (2^j - 1) - a (2^(k - j) - 1), so -Ls < e < Ls and the floor of x Lt / Ls
// is a, less one where e < 0, that is where r 2^j < x - a: three shifts, a subtraction and a
// comparison, every term within the lane. Zero and below share the shift: into a signed target
// the rule gives x / 2^(k - j) truncated toward zero (the bias below zero rounds the shift up),
// and there x - a <= 0 keeps the comparison false; into an unsigned target the shift is
// negative and the maximum with 0 answers. In 16-bit lanes for the 8/16-bit pairs (the Small
// kernel), in 32-bit lanes from Int and UInt (the Narrow kernel); TLanes holds the operations.
template <std::size_t Bits>
struct TLanes;
template <>
struct TLanes<16> {
  static NU_LANES_ __m512i Set(std::uint32_t v) noexcept { return _mm512_set1_epi16(static_cast<short>(v)); }
  template <unsigned int S, bool Arithmetic>
  static NU_LANES_ __m512i ShiftRight(__m512i x) noexcept {
    return Arithmetic ? _mm512_srai_epi16(x, S) : _mm512_srli_epi16(x, S);
  }
  template <unsigned int S>
  static NU_LANES_ __m512i ShiftLeft(__m512i x) noexcept { return _mm512_slli_epi16(x, S); }
  static NU_LANES_ __m512i AddBelowZero(__m512i x, __m512i v) noexcept {
    return _mm512_mask_add_epi16(x, _mm512_movepi16_mask(x), x, v);
  }
  static NU_LANES_ __m512i Sub(__m512i a, __m512i b) noexcept { return _mm512_sub_epi16(a, b); }
  template <bool Signed>
  static NU_LANES_ __m512i LessOneWhereBelow(__m512i a, __m512i left, __m512i right) noexcept {
    __mmask32 const below = Signed ? _mm512_cmplt_epi16_mask(left, right) : _mm512_cmplt_epu16_mask(left, right);
    return _mm512_mask_sub_epi16(a, below, a, Set(1));
  }
  static NU_LANES_ __m512i AtLeastZero(__m512i x) noexcept { return _mm512_max_epi16(x, _mm512_setzero_si512()); }
};
template <>
struct TLanes<32> {
  static NU_LANES_ __m512i Set(std::uint32_t v) noexcept { return _mm512_set1_epi32(static_cast<int>(v)); }
  template <unsigned int S, bool Arithmetic>
  static NU_LANES_ __m512i ShiftRight(__m512i x) noexcept {
    return Arithmetic ? _mm512_srai_epi32(x, S) : _mm512_srli_epi32(x, S);
  }
  template <unsigned int S>
  static NU_LANES_ __m512i ShiftLeft(__m512i x) noexcept { return _mm512_slli_epi32(x, S); }
  static NU_LANES_ __m512i AddBelowZero(__m512i x, __m512i v) noexcept {
    return _mm512_mask_add_epi32(x, _mm512_movepi32_mask(x), x, v);
  }
  static NU_LANES_ __m512i Sub(__m512i a, __m512i b) noexcept { return _mm512_sub_epi32(a, b); }
  template <bool Signed>
  static NU_LANES_ __m512i LessOneWhereBelow(__m512i a, __m512i left, __m512i right) noexcept {
    __mmask16 const below = Signed ? _mm512_cmplt_epi32_mask(left, right) : _mm512_cmplt_epu32_mask(left, right);
    return _mm512_mask_sub_epi32(a, below, a, Set(1));
  }
  static NU_LANES_ __m512i AtLeastZero(__m512i x) noexcept { return _mm512_max_epi32(x, _mm512_setzero_si512()); }
};

template <class TE, class SE, std::size_t Bits>
NU_LANES_ __m512i NarrowLanes(__m512i x) noexcept {
  using L = TLanes<Bits>;
  constexpr bool signedSource = std::is_signed_v<SE>, signedTarget = std::is_signed_v<TE>;
  constexpr unsigned int k = 8 * sizeof(SE) - (signedSource ? 1 : 0), j = 8 * sizeof(TE) - (signedTarget ? 1 : 0);
  constexpr unsigned int s = k - j;
  static_assert(TDataTraits<SE>::Largest == static_cast<double>((std::uint64_t{1} << k) - 1) &&
                TDataTraits<TE>::Largest == static_cast<double>((std::uint64_t{1} << j) - 1) && j < k && k <= Bits);
  __m512i const rest = L::Set((1u << s) - 1);
  __m512i a;
  if constexpr (signedSource && signedTarget)
    a = L::template ShiftRight<s, true>(L::AddBelowZero(x, rest));
  else
    a = L::template ShiftRight<s, signedSource>(x);
  __m512i const scaledRest = L::template ShiftLeft<j>(_mm512_and_si512(x, rest));
  __m512i const result = L::template LessOneWhereBelow<signedSource>(a, scaledRest, L::Sub(x, a));
  return signedSource && !signedTarget ? L::AtLeastZero(result) : result;
}

// 32 elements: narrowing as NarrowLanes; widening by ScaleFloorLanes, zero and below as
// ConvertChannelValue (0 into an unsigned target, otherwise x times the power of two Mt / Ms, a
// shift).
template <class TE, class SE>
NU_LANES_ __m512i SmallLanes(__m512i x) noexcept {
  using Trg = TDataTraits<TE>;
  using Src = TDataTraits<SE>;
  if constexpr (Trg::Largest < Src::Largest) {
    return NarrowLanes<TE, SE, 16>(x);
  } else {
    __m512i result =
        ScaleFloorLanes<static_cast<std::uint32_t>(Trg::Largest), static_cast<std::uint32_t>(Src::Largest)>(x);
    if constexpr (Src::IsSigned) {
      __m512i negative = _mm512_setzero_si512();
      if constexpr (Trg::IsSigned)
        negative = _mm512_slli_epi16(
            x, Log2(static_cast<std::uint32_t>(Trg::NegativeMagnitude / Src::NegativeMagnitude)));
      result = _mm512_mask_blend_epi16(_mm512_cmpgt_epi16_mask(x, _mm512_setzero_si512()), negative, result);
    }
    return result;
  }
}

template <class TE, class SE, bool Tail>
NU_LANES_ void ConvertSmallLanes(TE* trg, SE const* src, __mmask32 mask) noexcept {
  __m512i const result = SmallLanes<TE, SE>(LoadSmallLanes<SE, Tail>(src, mask));
  if constexpr (sizeof(TE) == 1) {
    __m256i const b = _mm512_cvtepi16_epi8(result);
    Tail ? _mm256_mask_storeu_epi8(trg, mask, b) : _mm256_storeu_si256(reinterpret_cast<__m256i*>(trg), b);
  } else {
    Tail ? _mm512_mask_storeu_epi16(trg, mask, result) : _mm512_storeu_si512(trg, result);
  }
}

// ---- 32-bit integers against the 8- and 16-bit ones, in integer lanes ------------------------
// The rule's result for a positive x is floor(x * Lt / Ls) (RationalScale), zero and below as
// WithIntegerNegatives.

// Widening: Lt = a * Ls + b makes the floor a * x + floor(b * x / Ls), the sum below 2^32.
// WidenLanes takes 16 elements x and their second terms in 32-bit lanes.
template <class TE, class SE>
NU_LANES_ __m512i WidenLanes(__m512i x, __m512i part) noexcept {
  using Trg = TDataTraits<TE>;
  using Src = TDataTraits<SE>;
  constexpr std::uint32_t a = static_cast<std::uint32_t>(Trg::Largest) / static_cast<std::uint32_t>(Src::Largest);
  __m512i const whole =
      (a & (a - 1)) == 0 ? _mm512_slli_epi32(x, Log2(a)) : _mm512_mullo_epi32(x, _mm512_set1_epi32(static_cast<int>(a)));
  __m512i const result = _mm512_add_epi32(whole, part);
  if constexpr (!Src::IsSigned) {
    return result;
  } else {
    // Below zero: 0 into UInt, x times the power of two Mt / Ms into Int.
    __m512i negative = _mm512_setzero_si512();
    if constexpr (Trg::IsSigned)
      negative = _mm512_slli_epi32(x, Log2(static_cast<std::uint32_t>(Trg::NegativeMagnitude / Src::NegativeMagnitude)));
    return _mm512_mask_blend_epi32(_mm512_cmpgt_epi32_mask(x, _mm512_setzero_si512()), negative, result);
  }
}

// 32 elements, the second term in 16-bit lanes (b < Ls).
template <class TE, class SE, bool Tail>
NU_LANES_ void ConvertWidenLanes(TE* trg, SE const* src, __mmask32 mask) noexcept {
  constexpr auto lt = static_cast<std::uint32_t>(TDataTraits<TE>::Largest);
  constexpr auto ls = static_cast<std::uint32_t>(TDataTraits<SE>::Largest);
  static_assert(lt % ls != 0, "an exact multiple is a closed form");
  __m512i const x = LoadSmallLanes<SE, Tail>(src, mask);
  __m512i const part = ScaleFloorLanes<lt % ls, ls>(x);
  for (int half = 0; half < 2; ++half) {
    __m256i const xh = half == 0 ? _mm512_castsi512_si256(x) : _mm512_extracti64x4_epi64(x, 1);
    __m256i const ph = half == 0 ? _mm512_castsi512_si256(part) : _mm512_extracti64x4_epi64(part, 1);
    __m512i const result = WidenLanes<TE, SE>(std::is_signed_v<SE> ? _mm512_cvtepi16_epi32(xh) : _mm512_cvtepu16_epi32(xh),
                                              _mm512_cvtepu16_epi32(ph));
    if (Tail)
      _mm512_mask_storeu_epi32(trg + 16 * half, static_cast<__mmask16>(mask >> (16 * half)), result);
    else
      _mm512_storeu_si512(trg + 16 * half, result);
  }
}

// Sixteen 32-bit lanes into an 8- or 16-bit target, the tail masked.
template <class TE, bool Tail>
NU_LANES_ void StoreNarrowed(TE* trg, __m512i d, __mmask16 mask) noexcept {
  if constexpr (sizeof(TE) == 1) {
    __m128i const b = _mm512_cvtepi32_epi8(d);
    Tail ? _mm_mask_storeu_epi8(trg, mask, b) : _mm_storeu_si128(reinterpret_cast<__m128i*>(trg), b);
  } else {
    __m256i const w = _mm512_cvtepi32_epi16(d);
    Tail ? _mm256_mask_storeu_epi16(trg, mask, w) : _mm256_storeu_si256(reinterpret_cast<__m256i*>(trg), w);
  }
}

// The Halve form (Int from UByte and UShort), 16 elements: (max(u, 1) - 1) >> 1 of u, the
// source's Multiple form into UInt.
template <class SE, bool Tail>
NU_LANES_ void ConvertHalveLanes(int* trg, SE const* src, __mmask16 mask) noexcept {
  __m512i x;
  if constexpr (sizeof(SE) == 1)
    x = _mm512_cvtepu8_epi32(Tail ? _mm_maskz_loadu_epi8(mask, src) : _mm_loadu_si128(reinterpret_cast<__m128i const*>(src)));
  else
    x = _mm512_cvtepu16_epi32(Tail ? _mm256_maskz_loadu_epi16(mask, src)
                                   : _mm256_loadu_si256(reinterpret_cast<__m256i const*>(src)));
  constexpr std::uint32_t ones = 0xFFFFFFFFu / static_cast<std::uint32_t>(TDataTraits<SE>::Largest);
  __m512i const u = _mm512_mullo_epi32(x, _mm512_set1_epi32(static_cast<int>(ones)));
  __m512i const one = _mm512_set1_epi32(1);
  __m512i const result = _mm512_srli_epi32(_mm512_sub_epi32(_mm512_max_epu32(u, one), one), 1);
  Tail ? _mm512_mask_storeu_epi32(trg, mask, result) : _mm512_storeu_si512(trg, result);
}

template <class TE, class SE, bool Tail>
NU_LANES_ void ConvertNarrowLanes(TE* trg, SE const* src, __mmask16 mask) noexcept {
  __m512i const x = Held(Tail ? _mm512_maskz_loadu_epi32(mask, src) : _mm512_loadu_si512(src));
  StoreNarrowed<TE, Tail>(trg, NarrowLanes<TE, SE, 32>(x), mask);
}

// A table of 256 bytes, held in four registers and looked up 64 bytes at a time by two byte
// permutes (VBMI) and a select on the top bit of the index. TEntry::Of(b) is the byte for b.
template <class TEntry>
struct TByteTable {
  struct alignas(64) SValues {
    unsigned char Value[256];
  };
  static constexpr SValues Values = [] {
    SValues t{};
    for (unsigned int b = 0; b < 256; ++b) t.Value[b] = TEntry::Of(b);
    return t;
  }();
};
struct SByteRegisters {
  __m512i T0, T1, T2, T3;
};
template <class TEntry>
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline SByteRegisters LoadByteTable() noexcept {
  unsigned char const* values = TByteTable<TEntry>::Values.Value;
  return {_mm512_load_si512(values), _mm512_load_si512(values + 64), _mm512_load_si512(values + 128),
          _mm512_load_si512(values + 192)};
}
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline __m512i LookUpBytes(__m512i x,
                                                                             SByteRegisters const& t) noexcept {
  return _mm512_mask_blend_epi8(_mm512_movepi8_mask(x), _mm512_permutex2var_epi8(t.T0, x, t.T1),
                                _mm512_permutex2var_epi8(t.T2, x, t.T3));
}

// Widening from the byte types: the second term, floor(b x / Ls), is under a byte, so the
// table above gives it for 64 elements at once.
// Masked stores only in the tail: a masked store costs several plain ones on some CPUs, and
// a load of its bytes soon after (the streaming copy's) waits for it to retire.
template <class TE, class SE, int Quarter, bool Tail>
NU_LANES_ void WidenQuarter(TE* trg, __m512i x, __m512i part, __mmask64 mask) noexcept {
  __m128i const xq = _mm512_extracti32x4_epi32(x, Quarter), pq = _mm512_extracti32x4_epi32(part, Quarter);
  __m512i const result = WidenLanes<TE, SE>(std::is_signed_v<SE> ? _mm512_cvtepi8_epi32(xq) : _mm512_cvtepu8_epi32(xq),
                                            _mm512_cvtepu8_epi32(pq));
  if (Tail)
    _mm512_mask_storeu_epi32(trg + 16 * Quarter, static_cast<__mmask16>(mask >> (16 * Quarter)), result);
  else
    _mm512_storeu_si512(trg + 16 * Quarter, result);
}

template <class TE, class SE, bool Tail>
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline void WidenBytes(TE* trg, SE const* src, __mmask64 mask,
                                                                         SByteRegisters const& table) noexcept {
  __m512i const x = Tail ? _mm512_maskz_loadu_epi8(mask, src) : _mm512_loadu_si512(src);
  __m512i const part = LookUpBytes(x, table);
  WidenQuarter<TE, SE, 0, Tail>(trg, x, part, mask);
  if (!Tail || (mask >> 16) != 0) WidenQuarter<TE, SE, 1, Tail>(trg, x, part, mask);
  if (!Tail || (mask >> 32) != 0) WidenQuarter<TE, SE, 2, Tail>(trg, x, part, mask);
  if (!Tail || (mask >> 48) != 0) WidenQuarter<TE, SE, 3, Tail>(trg, x, part, mask);
}

// floor(b x / Ls) of each byte value x above zero, 0 otherwise.
template <class TE, class SE>
struct TWidenPart {
  static constexpr unsigned char Of(unsigned int b) noexcept {
    constexpr auto lt = static_cast<std::uint32_t>(TDataTraits<TE>::Largest);
    constexpr auto ls = static_cast<std::uint32_t>(TDataTraits<SE>::Largest);
    auto const x = static_cast<SE>(b);
    return static_cast<unsigned char>(x > 0 ? static_cast<std::uint32_t>(x) * (lt % ls) / ls : 0);
  }
};

template <class TE, class SE>
NU_TARGET_Avx512Vbmi NU_NOCLONE void ConvertWidenBytes(std::size_t n, TE* trg, SE const* src) noexcept {
  SByteRegisters const table = LoadByteTable<TWidenPart<TE, SE>>();
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) WidenBytes<TE, SE, false>(trg + i, src + i, ~__mmask64{0}, table);
  if (i < n) WidenBytes<TE, SE, true>(trg + i, src + i, (std::uint64_t{1} << (n - i)) - 1, table);
}

// Between the two byte types every value is one of 256: a table of the rule's results.
template <class TE, class SE>
struct TRuleBytes {
  static constexpr unsigned char Of(unsigned int b) noexcept {
    return static_cast<unsigned char>(ConvertChannelValue<TE, SE>(static_cast<SE>(b)));
  }
};

template <class TE, class SE>
NU_TARGET_Avx512Vbmi NU_NOCLONE void ConvertBytes(std::size_t n, TE* trg, SE const* src) noexcept {
  SByteRegisters const table = LoadByteTable<TRuleBytes<TE, SE>>();
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) _mm512_storeu_si512(trg + i, LookUpBytes(_mm512_loadu_si512(src + i), table));
  if (i < n) {
    __mmask64 const mask = (std::uint64_t{1} << (n - i)) - 1;
    _mm512_mask_storeu_epi8(trg + i, mask, LookUpBytes(_mm512_maskz_loadu_epi8(mask, src + i), table));
  }
}

// ---- Float into the 8- and 16-bit integer types, sixteen lanes of single precision ---------
// The rule scales the exact double of x by L (or by the power of two Mt below zero): a product
// of at most 24 + 16 bits, exact in double, then clamps and truncates it. In single precision
// the product is rounded toward zero instead (the instruction's own rounding mode): that never
// crosses an integer, since every integer up to 2^24 is a float and the rounding is monotonic,
// so it truncates to the same integer as the exact product, and it exceeds a bound exactly
// where the exact product does. The clamps are min/max against the bounds; a NaN passes them,
// and the conversion to 32 bits gives INT_MIN, whose low bits are the rule's 0.
template <class TE, bool Tail>
NU_LANES_ void ConvertSingleLanes(TE* trg, float const* src, __mmask16 mask) noexcept {
  using Trg = TDataTraits<TE>;
  __m512 const x = Held(Tail ? _mm512_maskz_loadu_ps(mask, src) : _mm512_loadu_ps(src));
  __m512 scale = _mm512_set1_ps(static_cast<float>(Trg::Largest));
  if constexpr (Trg::IsSigned)
    scale = _mm512_mask_blend_ps(_mm512_cmp_ps_mask(x, _mm512_setzero_ps(), _CMP_GT_OQ),
                                 _mm512_set1_ps(static_cast<float>(Trg::NegativeMagnitude)), scale);
  __m512 t = _mm512_mul_round_ps(x, scale, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
  t = _mm512_max_ps(_mm512_set1_ps(static_cast<float>(Trg::Smallest)),
                    _mm512_min_ps(_mm512_set1_ps(static_cast<float>(Trg::Largest)), t));
  StoreNarrowed<TE, Tail>(trg, _mm512_cvttps_epi32(t), mask);
}

// ---- the Mersenne form in one fused operation ----------------------------------------------
// For 32-bit sources (m = 2k) the form is x (2^-k + 2^-2k) + s 2^-(2k + 1), for 16-bit ones
// (m = 4k) x (2^-k + 2^-2k + 2^-3k + 2^-4k) + s 2^-(4k + 1): the constant's bits lie within 53
// places, and the product of x and the constant is exact inside a fused multiply-add, which
// rounds the sum once, as the form's addition does. Signed zero and below take the scale 2^-k
// and nothing added: the rule's exact product. Short keeps the rule as its form for the loop's
// sake (ValueFormOf); the form's proof holds for it as for UShort, and these lanes use it.
template <class TE, class SE, bool Tail>
NU_LANES_ void ConvertMersenneLanes(TE* trg, SE const* src, __mmask16 mask) noexcept {
  using Form = TMersenne<SE>;
  constexpr bool isSigned = std::is_signed_v<SE>, wide = Form::Wide;
  constexpr int k = Form::K;
  constexpr double unit = Pow2(-k);
  constexpr double scale = wide ? unit + Pow2(-2 * k) : unit + Pow2(-2 * k) + Pow2(-3 * k) + Pow2(-4 * k);
  constexpr double stickyUnit = Pow2(-(Form::M + 1));
  constexpr auto stickyFrom = static_cast<int>(Form::StickyFrom);
  constexpr bool unsignedLanes = wide && !isSigned;  // UInt: compared and converted as unsigned
  __m512i x;
  if constexpr (wide) {
    x = Held(Tail ? _mm512_maskz_loadu_epi32(mask, src) : _mm512_loadu_si512(src));
  } else {
    __m256i const w = Tail ? _mm256_maskz_loadu_epi16(mask, src) : _mm256_loadu_si256(reinterpret_cast<__m256i const*>(src));
    x = isSigned ? _mm512_cvtepi16_epi32(w) : _mm512_cvtepu16_epi32(w);
  }
  __mmask16 const positive = isSigned ? _mm512_cmpgt_epi32_mask(x, _mm512_setzero_si512()) : 0xFFFF;
  __mmask16 const sticky = unsignedLanes ? _mm512_cmpge_epu32_mask(x, _mm512_set1_epi32(stickyFrom))
                                         : _mm512_cmpge_epi32_mask(x, _mm512_set1_epi32(stickyFrom));
  __m512d v[2];
  for (int half = 0; half < 2; ++half) {
    __m256i const h = half == 0 ? _mm512_castsi512_si256(x) : _mm512_extracti64x4_epi64(x, 1);
    __m512d const d = unsignedLanes ? _mm512_cvtepu32_pd(h) : _mm512_cvtepi32_pd(h);
    __m512d const factor = _mm512_mask_blend_pd(static_cast<__mmask8>(positive >> (8 * half)), _mm512_set1_pd(unit),
                                                _mm512_set1_pd(scale));
    __m512d const added = _mm512_maskz_mov_pd(static_cast<__mmask8>(sticky >> (8 * half)), _mm512_set1_pd(stickyUnit));
    v[half] = _mm512_fmadd_pd(d, factor, added);
  }
  if constexpr (std::is_same_v<TE, float>) {
    __m512 const f = _mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps(v[0])), _mm512_cvtpd_ps(v[1]), 1);
    Tail ? _mm512_mask_storeu_ps(trg, mask, f) : _mm512_storeu_ps(trg, f);
  } else {
    for (int half = 0; half < 2; ++half)
      Tail ? _mm512_mask_storeu_pd(trg + 8 * half, static_cast<__mmask8>(mask >> (8 * half)), v[half])
           : _mm512_storeu_pd(trg + 8 * half, v[half]);
  }
}

// ---- Float from Int and Int from Float in sixteen single lanes ------------------------------
// Float from Int. For x > 0 the rule rounds x / (2^31 - 1) = y (1 + 2^-31 + 2^-62 + ...), with
// y = x 2^-31, to double and then to single. In units of 2^-31 the quotient is x + d with
// d = x / (2^31 - 1), 0 < d < 1; the double's half unit there is at most 2^-23, so the double
// is x + d rounded, above x (d is far above the half unit), and below x + 1 unless 1 - d < 2^-23,
// that is x > 2^31 - 257. The single-precision values and their midpoints are integers in these
// units, so the double rounds to single as x does with its ties rounded up; where it is x + 1
// itself and that is a midpoint (x = 2^31 - 193 or 2^31 - 65), the tie goes to the even side,
// which is down for the first (as x goes) and up, to 1, for the second: that one lane is moved
// up by one. Below 2^24, x is a single itself. From 2^24 on, 2x + 1 (below 2^32, unsigned)
// rounded to nearest is twice x rounded with ties up: it is odd, so never a tie itself, and lies
// above twice a midpoint exactly where x lies on or above it. Zero and below, the rule's double
// is y exactly, which the conversion of x rounds as the double's conversion does.
NU_LANES_ __m512 HalfUpLanes(__m512i x) noexcept {
  constexpr int lastTie = 0x7FFFFFBF;  // 2^31 - 65
  __m512 const near = _mm512_mul_ps(_mm512_cvtepi32_ps(x), _mm512_set1_ps(0x1p-31f));
  __m512i const moved = _mm512_mask_add_epi32(x, _mm512_cmpeq_epi32_mask(x, _mm512_set1_epi32(lastTie)), x,
                                              _mm512_set1_epi32(1));
  __m512i const odd = _mm512_or_si512(_mm512_add_epi32(moved, moved), _mm512_set1_epi32(1));
  __m512 const up = _mm512_mul_ps(_mm512_cvtepu32_ps(odd), _mm512_set1_ps(0x1p-32f));
  return _mm512_mask_blend_ps(_mm512_cmpge_epi32_mask(x, _mm512_set1_epi32(1 << 24)), near, up);
}

template <bool Tail>
NU_LANES_ void ConvertHalfUpLanes(float* trg, int const* src, __mmask16 mask) noexcept {
  __m512 const v = HalfUpLanes(Held(Tail ? _mm512_maskz_loadu_epi32(mask, src) : _mm512_loadu_si512(src)));
  Tail ? _mm512_mask_storeu_ps(trg, mask, v) : _mm512_storeu_ps(trg, v);
}

// Int from Float. The rule scales the double of x by 2^31 - 1 (by 2^31 at zero and below),
// rounds once, clamps and truncates; A = x 2^31 is exact in single. For 0 < x < 1 the exact
// product A - x lies below A by x = A 2^-31. If A is an integer, the floor of A - x is A - 1, and
// the nearest integer above lies x away, beyond the double's half unit (below A 2^-53).
// Otherwise A < 2^23 (x's last bit is worth less than 2^-31, so x < 2^-8) and the fraction of A
// is at least its last bit, above A 2^-24 > x: no integer lies between A - x and A, the floor is
// floor(A), and the nearest integer above lies farther than a last bit of A, beyond the double's
// rounding. Either way the truncated double is ceil(A) - 1. Zero and below, the product is A,
// whose truncation toward zero is its ceiling; from -1 down, and for a NaN, the conversion's
// indefinite integer is the rule's INT_MIN; from 1 up the ceiling's conversion overflows to
// INT_MIN too, whose wrapped predecessor is the clamp's INT_MAX. (UInt needs clamps of its own
// on both sides, and keeps the double lanes.)
NU_LANES_ __m512i CeilingLanes(__m512 x) noexcept {
  __m512i const ceiling = _mm512_cvt_roundps_epi32(_mm512_mul_ps(x, _mm512_set1_ps(0x1p31f)),
                                                   _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC);
  __mmask16 const positive = _mm512_cmp_ps_mask(x, _mm512_setzero_ps(), _CMP_GT_OQ);
  return _mm512_mask_sub_epi32(ceiling, positive, ceiling, _mm512_set1_epi32(1));
}
template <bool Tail>
NU_LANES_ void ConvertCeilingLanes(int* trg, float const* src, __mmask16 mask) noexcept {
  __m512i const v = CeilingLanes(Held(Tail ? _mm512_maskz_loadu_ps(mask, src) : _mm512_loadu_ps(src)));
  Tail ? _mm512_mask_storeu_epi32(trg, mask, v) : _mm512_storeu_si512(trg, v);
}

// ---- between Int, UInt and Float: sixteen 32-bit lanes in, sixteen out --------------------
// The register form of the rule for the mapped layout moves. Between the integer types the
// closed forms of ConvertChannelValue, between Int and Float the single-precision forms above;
// otherwise the rule in double, eight lanes at a time.
template <class SE>
NU_LANES_ __m512d WidenHalf(__m256i half) noexcept {
  if constexpr (std::is_same_v<SE, int>) return _mm512_cvtepi32_pd(half);
  else if constexpr (std::is_same_v<SE, unsigned int>) return _mm512_cvtepu32_pd(half);
  else return _mm512_cvtps_pd(_mm256_castsi256_ps(half));
}

template <class TE, class SE>
NU_LANES_ __m256i RuleHalf(__m256i half) noexcept {
  __m512d const v = WidenHalf<SE>(half);
  if constexpr (std::is_same_v<TE, float>)
    return _mm256_castps_si256(_mm512_cvtpd_ps(SourceLanes<SE>(v)));  // rounds to nearest even
  else
    return TruncateLanes<TE>(RuleLanes<TE, SE>(v));
}

template <class TE, class SE>
NU_LANES_ __m512i Lanes32(__m512i x) noexcept {
  static_assert(sizeof(TE) == 4 && sizeof(SE) == 4 && !std::is_same_v<TE, SE>);
  __m512i const zero = _mm512_setzero_si512(), one = _mm512_set1_epi32(1);
  if constexpr (std::is_same_v<TE, int> && std::is_same_v<SE, unsigned int>) {
    return _mm512_srli_epi32(_mm512_sub_epi32(x, _mm512_min_epu32(x, one)), 1);
  } else if constexpr (std::is_same_v<TE, unsigned int> && std::is_same_v<SE, int>) {
    __mmask16 const high = _mm512_cmpge_epi32_mask(x, _mm512_set1_epi32(TwiceCarryFrom));
    __mmask16 const carry = _mm512_mask_test_epi32_mask(high, x, _mm512_set1_epi32(static_cast<int>(TwiceCarryBit)));
    __m512i const twice = _mm512_add_epi32(x, x);
    __m512i const result = _mm512_mask_add_epi32(twice, carry, twice, one);
    return _mm512_maskz_mov_epi32(_mm512_cmpgt_epi32_mask(x, zero), result);
  } else if constexpr (std::is_same_v<TE, float> && std::is_same_v<SE, int>) {
    return _mm512_castps_si512(HalfUpLanes(x));
  } else if constexpr (std::is_same_v<TE, int> && std::is_same_v<SE, float>) {
    return CeilingLanes(_mm512_castsi512_ps(x));
  } else {
    __m256i const low = RuleHalf<TE, SE>(_mm512_castsi512_si256(x));
    __m256i const high = RuleHalf<TE, SE>(_mm512_extracti64x4_epi64(x, 1));
    return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
  }
}

// Float from the signed 8- and 16-bit integers (the Single form), 16 elements: the loop's own
// arithmetic, x / L in single precision and the exact power of two at zero and below, but each
// source line read once (the loop reads it as a whole register and again as a half-register
// operand) and one masked operation.
template <class SE, bool Tail>
NU_LANES_ void ConvertDivideLanes(float* trg, SE const* src, __mmask16 mask) noexcept {
  using Src = TDataTraits<SE>;
  __m512i x;
  if constexpr (sizeof(SE) == 1) {
    __m128i const b = Tail ? _mm_maskz_loadu_epi8(mask, src) : _mm_loadu_si128(reinterpret_cast<__m128i const*>(src));
    x = std::is_signed_v<SE> ? _mm512_cvtepi8_epi32(b) : _mm512_cvtepu8_epi32(b);
  } else {
    __m256i const w = Tail ? _mm256_maskz_loadu_epi16(mask, src) : _mm256_loadu_si256(reinterpret_cast<__m256i const*>(src));
    x = std::is_signed_v<SE> ? _mm512_cvtepi16_epi32(w) : _mm512_cvtepu16_epi32(w);
  }
  __m512 const f = _mm512_cvtepi32_ps(x);
  __m512 v = _mm512_div_ps(f, _mm512_set1_ps(static_cast<float>(Src::Largest)));
  if constexpr (std::is_signed_v<SE>)
    v = _mm512_mask_mul_ps(v, _mm512_cmplt_epi32_mask(x, _mm512_set1_epi32(1)), f,
                           _mm512_set1_ps(static_cast<float>(Src::NegativeScale)));
  Tail ? _mm512_mask_storeu_ps(trg, mask, v) : _mm512_storeu_ps(trg, v);
}

// Eight elements of a Repeat pair.
template <class SE, bool Tail>
NU_LANES_ void ConvertRepeatLanes(double* trg, SE const* src, __mmask8 mask) noexcept {
  __m128i const b = Tail ? _mm_maskz_loadu_epi8(mask, src) : _mm_loadl_epi64(reinterpret_cast<__m128i const*>(src));
  __m512i const x = std::is_signed_v<SE> ? _mm512_cvtepi8_epi64(b) : _mm512_cvtepu8_epi64(b);
  __m512i const repeated = _mm512_mullo_epi64(x, _mm512_set1_epi64(static_cast<long long>(TRepeat<SE>::Ones)));
  __m512d v = _mm512_mul_pd(_mm512_cvtepu64_pd(repeated), _mm512_set1_pd(TRepeat<SE>::Scale));
  if constexpr (std::is_signed_v<SE>) {
    __mmask8 const below = _mm512_cmplt_epi64_mask(x, _mm512_set1_epi64(1));
    v = _mm512_mask_mul_pd(v, below, _mm512_cvtepi64_pd(x), _mm512_set1_pd(TDataTraits<SE>::NegativeScale));
  }
  Tail ? _mm512_mask_storeu_pd(trg, mask, v) : _mm512_storeu_pd(trg, v);
}

// n elements by the lanes of kernel K; the tail through the same arithmetic, masked.
template <EValueKernel K, class TE, class SE>
NU_TARGET_Avx512 NU_NOCLONE void ConvertLanes(std::size_t n, TE* trg, SE const* src) noexcept {
  std::size_t i = 0;
  if constexpr (K == EValueKernel::Single) {
    for (; i + 16 <= n; i += 16) ConvertSingleLanes<TE, false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertSingleLanes<TE, true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Divide) {
    for (; i + 16 <= n; i += 16) ConvertDivideLanes<SE, false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertDivideLanes<SE, true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Repeat) {
    for (; i + 8 <= n; i += 8) ConvertRepeatLanes<SE, false>(trg + i, src + i, 0xFF);
    if (i < n) ConvertRepeatLanes<SE, true>(trg + i, src + i, static_cast<__mmask8>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Small) {
    for (; i + 32 <= n; i += 32) ConvertSmallLanes<TE, SE, false>(trg + i, src + i, ~__mmask32{0});
    if (i < n) ConvertSmallLanes<TE, SE, true>(trg + i, src + i, static_cast<__mmask32>((std::uint64_t{1} << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Halve) {
    for (; i + 16 <= n; i += 16) ConvertHalveLanes<SE, false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertHalveLanes<SE, true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Widen) {
    for (; i + 32 <= n; i += 32) ConvertWidenLanes<TE, SE, false>(trg + i, src + i, ~__mmask32{0});
    if (i < n) ConvertWidenLanes<TE, SE, true>(trg + i, src + i, static_cast<__mmask32>((std::uint64_t{1} << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Mersenne) {
    for (; i + 16 <= n; i += 16) ConvertMersenneLanes<TE, SE, false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertMersenneLanes<TE, SE, true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::HalfUp) {
    for (; i + 16 <= n; i += 16) ConvertHalfUpLanes<false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertHalfUpLanes<true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Ceiling) {
    for (; i + 16 <= n; i += 16) ConvertCeilingLanes<false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertCeilingLanes<true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else if constexpr (K == EValueKernel::Narrow) {
    for (; i + 16 <= n; i += 16) ConvertNarrowLanes<TE, SE, false>(trg + i, src + i, 0xFFFF);
    if (i < n) ConvertNarrowLanes<TE, SE, true>(trg + i, src + i, static_cast<__mmask16>((1u << (n - i)) - 1));
  } else {
    static_assert(K == EValueKernel::Rule);
    for (; i + 8 <= n; i += 8) ConvertRuleLanes<TE, SE, false>(trg + i, src + i, 0xFF);
    if (i < n) ConvertRuleLanes<TE, SE, true>(trg + i, src + i, static_cast<__mmask8>((1u << (n - i)) - 1));
  }
}

#undef NU_LANES_

}  // namespace Nu::Detail

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
