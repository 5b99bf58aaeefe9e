#pragma once
// Private to the library: the definitions of the element moves declared in
// NuImageConvertImpl.h (TMoves). Included by the generated move units (one per target layout
// shape, compiled with -O3) and nowhere else: the loop units and the tests call the kernels
// those units emit.
#include <Nu.Core.Ex/NuImageConvertImpl.h>
#include <Nu.Core.Ex/NuImageConvertValuesImpl.h>

#include <immintrin.h>
#include <iterator>
#include <utility>

namespace Nu::Detail {

template <class T, class Shape, EPass Pass>
__attribute__((always_inline)) inline void MoveElementsBody(std::size_t count, T* __restrict trg,
                                                            T const* __restrict src, T fill) noexcept {
  constexpr unsigned int TrgStride = Shape::TrgStride, SrcStride = Shape::SrcStride;
  constexpr int T0 = Shape::T0, S0 = Shape::S0, T1 = Shape::T1, S1 = Shape::S1, T2 = Shape::T2, S2 = Shape::S2;
  constexpr int TrgAlpha = Shape::TrgAlpha, SrcAlpha = Shape::SrcAlpha;
  constexpr std::size_t trgPixelBytes = TrgStride * sizeof(T);
  constexpr std::size_t srcPixelBytes = SrcStride * sizeof(T);
  if constexpr (Pass == EPass::Full && trgPixelBytes > 1 && IsWord(trgPixelBytes) && IsWord(srcPixelBytes)) {
    // A whole pixel fits a machine word on both sides: assemble each target pixel in a register
    // and store it at once (the same bytes as element by element, since a full pass writes every
    // element of the target pixel), which vectorises where scattered element stores do not.
    using TrgWord = typename TBitsOf<trgPixelBytes>::Type;
    using SrcWord = typename TBitsOf<srcPixelBytes>::Type;
    constexpr unsigned int bits = 8 * sizeof(T);
    for (std::size_t p = 0; p < count; ++p) {
      SrcWord word;
      std::memcpy(&word, src + p * SrcStride, sizeof word);
      auto element = [word](int k) { return static_cast<TrgWord>(static_cast<T>(word >> (bits * k))); };
      TrgWord pixel = static_cast<TrgWord>(element(S0) << (bits * T0));
      if constexpr (Shape::Colours == 3)
        pixel |= static_cast<TrgWord>((element(S1) << (bits * T1)) | (element(S2) << (bits * T2)));
      if constexpr (TrgAlpha >= 0) {
        TrgWord const alpha = SrcAlpha >= 0 ? element(SrcAlpha) : static_cast<TrgWord>(fill);
        pixel |= static_cast<TrgWord>(alpha << (bits * TrgAlpha));
      }
      std::memcpy(trg + p * TrgStride, &pixel, sizeof pixel);
    }
    return;
  }
  for (std::size_t p = 0; p < count; ++p) {
    T* t = trg + p * TrgStride;
    T const* s = src + p * SrcStride;
    if constexpr (Pass != EPass::AlphaOnly) {
      t[T0] = s[S0];
      if constexpr (Shape::Colours == 3) {
        t[T1] = s[S1];
        t[T2] = s[S2];
      }
    }
    if constexpr (Pass != EPass::ColourOnly && TrgAlpha >= 0) {
      if constexpr (SrcAlpha >= 0)
        t[TrgAlpha] = s[SrcAlpha];
      else
        t[TrgAlpha] = fill;
    }
  }
}

// With AVX-512 the element moves of a pixel shape that is not one machine word, and the LumA
// rule's partial passes, are permutes: each 64 bytes of target come from a window of at most
// 256 source bytes through one or two two-register permutes, the filled alpha is a blend, and
// the store is whole. A partial pass writes one element of each two-element target pixel and
// must leave the other untouched: in the body it stores back the bytes it has just read
// (inside the run, in one thread), at the ends it uses a byte-masked store, which writes
// exactly the chosen bytes. A target pixel of 3 * 2^k bytes repeats every three vectors, each
// with its own table. Byte elements need VBMI for the byte permute.
template <class T>
NU_ISA_AVX512_VBMI __attribute__((always_inline)) inline __m512i Permute2(__m512i lo, __m512i index,
                                                                         __m512i hi) noexcept {
  if constexpr (sizeof(T) == 1) return _mm512_permutex2var_epi8(lo, index, hi);
  if constexpr (sizeof(T) == 2) return _mm512_permutex2var_epi16(lo, index, hi);
  if constexpr (sizeof(T) == 4) return _mm512_permutex2var_epi32(lo, index, hi);
  if constexpr (sizeof(T) == 8) return _mm512_permutex2var_epi64(lo, index, hi);
}

template <class T, class Shape, EPass Pass>
struct TPermuteMove {
  static constexpr std::size_t Lanes = 64 / sizeof(T);
  static constexpr std::size_t TrgPixel = Shape::TrgStride * sizeof(T);
  static constexpr std::size_t SrcPixel = Shape::SrcStride * sizeof(T);
  static constexpr std::size_t Vectors = TrgPixel % 3 == 0 ? 3 : 1;
  static constexpr std::size_t Pixels = 64 * Vectors / TrgPixel;  // target pixels per group of vectors
  static_assert(Pixels * TrgPixel == 64 * Vectors);
  static constexpr int Keep = -1, Fill = -2;

  // What each target element of a pixel receives in this pass.
  static constexpr int From(std::size_t k) {
    int from = Keep;
    auto const element = static_cast<int>(k);
    if (Pass != EPass::AlphaOnly) {
      if (element == Shape::T0) from = Shape::S0;
      if (Shape::Colours == 3 && element == Shape::T1) from = Shape::S1;
      if (Shape::Colours == 3 && element == Shape::T2) from = Shape::S2;
    }
    if (Pass != EPass::ColourOnly && Shape::TrgAlpha >= 0 && element == Shape::TrgAlpha)
      from = Shape::SrcAlpha >= 0 ? Shape::SrcAlpha : Fill;
    return from;
  }

  struct alignas(64) SIndex {
    T Lane[Lanes];
  };
  struct STables {
    SIndex Index[Vectors][2];       // into the window's registers 0-1 and 2-3
    std::uint64_t Upper[Vectors];   // bytes taken from registers 2-3
    std::uint64_t Filled[Vectors];  // bytes of the filled alpha
    std::uint64_t Written[Vectors];
    std::size_t Window[Vectors];    // first source element of each vector's window
    std::size_t Span;               // elements of the widest window
  };
  static constexpr STables Tables = [] {
    STables t{};
    for (std::size_t v = 0; v < Vectors; ++v) {
      t.Window[v] = v * Lanes / Shape::TrgStride * Shape::SrcStride;
      for (std::size_t lane = 0; lane < Lanes; ++lane) {
        std::size_t const element = v * Lanes + lane;
        int const from = From(element % Shape::TrgStride);
        std::uint64_t const bytes = ((std::uint64_t{1} << sizeof(T)) - 1) << (lane * sizeof(T));
        if (from != Keep) t.Written[v] |= bytes;
        if (from == Fill) t.Filled[v] |= bytes;
        if (from < 0) continue;
        std::size_t const source =
            element / Shape::TrgStride * Shape::SrcStride + static_cast<std::size_t>(from) - t.Window[v];
        if (source + 1 > t.Span) t.Span = source + 1;
        bool const upper = source >= 2 * Lanes;
        if (upper) t.Upper[v] |= bytes;
        t.Index[v][upper ? 1 : 0].Lane[lane] = static_cast<T>(source % (2 * Lanes));
      }
    }
    return t;
  }();
  static constexpr std::size_t Registers = Tables.Span > 2 * Lanes ? 4 : 2;
  // Source bytes a group reads past its first pixel: its last window's end.
  static constexpr std::size_t WindowEnd = Tables.Window[Vectors - 1] * sizeof(T) + Registers * 64;
  // The word path of MoveElementsBody covers the other full passes.
  static constexpr bool Applies =
      Tables.Span <= 4 * Lanes && (Pass != EPass::Full || TrgPixel == 1 || !IsWord(TrgPixel) || !IsWord(SrcPixel));
};

inline std::uint64_t BytesBelow(std::size_t at, std::size_t total) noexcept {
  if (at >= total) return 0;
  return total - at >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (total - at)) - 1;
}

// What happens to the moved values before the filled alpha goes in: nothing, or the rule
// between the two byte types from its table, or between two types of 16 or 32 bits in their
// lanes.
struct SAsMoved {
  NU_ISA_AVX512_VBMI __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    return value;
  }
};
struct SMappedBytes {
  SByteRegisters Table;
  NU_ISA_AVX512_VBMI __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    return LookUpBytes(value, Table);
  }
};
template <class TE, class SE>
struct TMappedWords {
  NU_ISA_AVX512_VBMI __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    if constexpr (sizeof(TE) == 2)
      return SmallLanes<TE, SE>(value);
    else
      return Lanes32<TE, SE>(value);
  }
};

// One target vector of a group; Tail: near the ends of the runs, every access masked to them.
template <class Move, bool Tail, class T, class Map>
NU_ISA_AVX512_VBMI __attribute__((always_inline)) inline void MovePermuteVector(
    std::size_t group, std::size_t v, char* trg, char const* src, std::size_t trgTotal, std::size_t srcTotal,
    __m512i fill, Map const& map) noexcept {
  constexpr auto const& tables = Move::Tables;
  std::size_t const trgAt = group * Move::Pixels * Move::TrgPixel + v * 64;
  std::size_t const srcAt = group * Move::Pixels * Move::SrcPixel + tables.Window[v] * sizeof(T);
  __m512i r[4];
  for (std::size_t k = 0; k < Move::Registers; ++k)
    r[k] = Tail ? _mm512_maskz_loadu_epi8(BytesBelow(srcAt + 64 * k, srcTotal), src + srcAt + 64 * k)
                : _mm512_loadu_si512(src + srcAt + 64 * k);
  __m512i value = Permute2<T>(r[0], _mm512_load_si512(&tables.Index[v][0]), r[1]);
  if constexpr (Move::Registers == 4)
    value = _mm512_mask_blend_epi8(tables.Upper[v], value, Permute2<T>(r[2], _mm512_load_si512(&tables.Index[v][1]), r[3]));
  value = _mm512_mask_blend_epi8(tables.Filled[v], map(value), fill);
  char* const at = trg + trgAt;
  // Near the source's end a vector may still lie wholly inside the target (a window reads
  // further than the pixels it fills): only the run's last, partial vector needs the mask.
  if (Tail && trgAt + 64 > trgTotal) {
    _mm512_mask_storeu_epi8(at, tables.Written[v] & BytesBelow(trgAt, trgTotal), value);
  } else if (tables.Written[v] == ~std::uint64_t{0}) {
    _mm512_storeu_si512(at, value);
  } else {
    _mm512_storeu_si512(at, _mm512_mask_blend_epi8(tables.Written[v], _mm512_loadu_si512(at), value));
  }
}

template <class T, class Shape, EPass Pass, class Map>
NU_ISA_AVX512_VBMI __attribute__((always_inline)) inline void MovePermuteLoop(std::size_t count, T* trg,
                                                                              T const* src, T fill,
                                                                              Map const& map) noexcept {
  using Move = TPermuteMove<T, Shape, Pass>;
  __m512i fillVector;
  if constexpr (sizeof(T) == 1) fillVector = _mm512_set1_epi8(static_cast<char>(fill));
  if constexpr (sizeof(T) == 2) fillVector = _mm512_set1_epi16(static_cast<short>(fill));
  if constexpr (sizeof(T) == 4) fillVector = _mm512_set1_epi32(static_cast<int>(fill));
  if constexpr (sizeof(T) == 8) fillVector = _mm512_set1_epi64(static_cast<long long>(fill));
  auto const* srcBytes = reinterpret_cast<char const*>(src);
  auto* trgBytes = reinterpret_cast<char*>(trg);
  std::size_t const srcTotal = count * Move::SrcPixel;
  std::size_t const trgTotal = count * Move::TrgPixel;
  std::size_t group = 0;
  for (; (group + 1) * Move::Pixels <= count && group * Move::Pixels * Move::SrcPixel + Move::WindowEnd <= srcTotal;
       ++group)
    for (std::size_t v = 0; v < Move::Vectors; ++v)
      MovePermuteVector<Move, false, T>(group, v, trgBytes, srcBytes, trgTotal, srcTotal, fillVector, map);
  for (; group * Move::Pixels < count; ++group)
    for (std::size_t v = 0; v < Move::Vectors; ++v)
      MovePermuteVector<Move, true, T>(group, v, trgBytes, srcBytes, trgTotal, srcTotal, fillVector, map);
}

template <class T, class Shape, EPass Pass>
NU_ISA_AVX512_VBMI __attribute__((noinline)) void MovePermuteAvx512(std::size_t count, T* trg, T const* src,
                                                                    T fill) noexcept {
  MovePermuteLoop<T, Shape, Pass>(count, trg, src, fill, SAsMoved{});
}

// The permute applies to every shape here, word-sized pixels included: the mapping would cost
// the word loop a second pass.
template <class TE, class SE, class Shape>
NU_ISA_AVX512_VBMI void MoveMappedAvx512(std::size_t count, TE* trg, SE const* src) noexcept {
  using Bits = typename TBitsOf<sizeof(TE)>::Type;
  static_assert(sizeof(TE) == sizeof(SE) && TPermuteMove<Bits, Shape, EPass::Full>::Tables.Span <= 4 * 64 / sizeof(TE));
  Bits const fill = MaximumBits<TE>();
  auto* const to = reinterpret_cast<Bits*>(trg);
  auto const* const from = reinterpret_cast<Bits const*>(src);
  if constexpr (sizeof(TE) == 1)
    MovePermuteLoop<Bits, Shape, EPass::Full>(count, to, from, fill, SMappedBytes{LoadByteTable<TRuleBytes<TE, SE>>()});
  else
    MovePermuteLoop<Bits, Shape, EPass::Full>(count, to, from, fill, TMappedWords<TE, SE>{});
}

// The plain loop is compiled twice from the one body, for baseline x86-64 and for AVX2.
template <class T, class Shape, EPass Pass>
void TMoves<T, Shape, Pass>::Baseline(std::size_t count, T* __restrict trg, T const* __restrict src,
                                      T fill) noexcept {
  MoveElementsBody<T, Shape, Pass>(count, trg, src, fill);
}

template <class T, class Shape, EPass Pass>
NU_ISA_AVX2 void TMoves<T, Shape, Pass>::Avx2(std::size_t count, T* __restrict trg, T const* __restrict src,
                                              T fill) noexcept {
  MoveElementsBody<T, Shape, Pass>(count, trg, src, fill);
}

template <class T, class Shape, EPass Pass>
NU_ISA_AVX512 void TMoves<T, Shape, Pass>::Avx512(std::size_t count, T* __restrict trg, T const* __restrict src,
                                                  T fill) noexcept {
  if constexpr (TPermuteMove<T, Shape, Pass>::Applies) {
    if (HasVbmi())
      return MovePermuteAvx512<T, Shape, Pass>(count, trg, src, fill);
    // AVX-512 without VBMI: the AVX2 loop, rather than a third compiled copy of it.
    return Avx2(count, trg, src, fill);
  } else {
    MoveElementsBody<T, Shape, Pass>(count, trg, src, fill);
  }
}

template <class T, class Shape, EPass Pass>
void TMoves<T, Shape, Pass>::Here(std::size_t count, T* trg, T const* src, T fill) noexcept {
  switch (CurrentIsa()) {
    case EIsa::Avx512: return Avx512(count, trg, src, fill);
    case EIsa::Avx2: return Avx2(count, trg, src, fill);
    case EIsa::Baseline: return Baseline(count, trg, src, fill);
  }
}

// The kernels of one layout pair and element type that the loop units may call: the full pass
// unless the layouts are the same (identical layouts take no moves), and the LumA rule's two
// partial passes for a LumA target. Their addresses escape, so that this unit emits them.
template <class Moves>
inline void EmitMoves() noexcept {
  asm volatile("" : : "r"(&Moves::Avx512), "r"(&Moves::Avx2), "r"(&Moves::Baseline), "r"(&Moves::Here));
}

template <class Shape, class TE, class SE>
inline void EmitMapped() noexcept {
  if constexpr (MapsAsMoved<TE, SE, Shape>()) asm volatile("" : : "r"(&MoveMappedAvx512<TE, SE, Shape>));
}

template <int TrgLayout, class T, int SrcLayout>
inline void EmitMovesOf() noexcept {
  using Shape = TShapeOf<TPixelOf<TrgLayout, EDataType::UByte>, TPixelOf<SrcLayout, EDataType::UByte>>;
  if constexpr (!Shape::Identity) EmitMoves<TMoves<T, Shape, EPass::Full>>();
  if constexpr (TrgLayout == EPixelType::LumA) {
    EmitMoves<TMoves<T, Shape, EPass::ColourOnly>>();
    EmitMoves<TMoves<T, Shape, EPass::AlphaOnly>>();
  } else if constexpr (sizeof(T) == 1) {
    // The types of this size, each from the other (a LumA target takes the LumA rule's passes).
    EmitMapped<Shape, char, unsigned char>();
    EmitMapped<Shape, unsigned char, char>();
  } else if constexpr (sizeof(T) == 2) {
    EmitMapped<Shape, short, unsigned short>();
    EmitMapped<Shape, unsigned short, short>();
  } else if constexpr (sizeof(T) == 4) {
    EmitMapped<Shape, int, unsigned int>();
    EmitMapped<Shape, unsigned int, int>();
    EmitMapped<Shape, float, int>();
    EmitMapped<Shape, float, unsigned int>();
    EmitMapped<Shape, int, float>();
    EmitMapped<Shape, unsigned int, float>();
  }
}

template <int TrgLayout, class T, std::size_t... Sources>
inline void EmitMovesFrom(std::index_sequence<Sources...>) noexcept {
  (EmitMovesOf<TrgLayout, T, AllLayouts[Sources].Layout>(), ...);
}

// Every move kernel into one target layout, from every source layout, for the four element
// sizes (the kernels move bits).
template <int TrgLayout>
void EmitMovesInto() noexcept {
  using Sources = std::make_index_sequence<std::size(AllLayouts)>;
  EmitMovesFrom<TrgLayout, std::uint8_t>(Sources{});
  EmitMovesFrom<TrgLayout, std::uint16_t>(Sources{});
  EmitMovesFrom<TrgLayout, std::uint32_t>(Sources{});
  EmitMovesFrom<TrgLayout, std::uint64_t>(Sources{});
}

}  // namespace Nu::Detail

// The body of one generated move unit: the move kernels into the INDEX-th distinct target
// layout shape. COUNT is the number of units CMake generated, checked against the list.
#define NU_CONVERT_INSTANTIATE_MOVES(INDEX, COUNT)                                              \
  static_assert(::Nu::Detail::DistinctTargetLayouts().Count == (COUNT),                         \
                "cmake/NuConvertUnits.cmake must generate one move unit per target layout shape"); \
  template void ::Nu::Detail::EmitMovesInto<::Nu::Detail::DistinctTargetLayouts().Layout[INDEX]>() noexcept;
