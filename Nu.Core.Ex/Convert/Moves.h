#pragma once
// The move kernels declared in Convert/Kernels.h. Included by the generated move units (one
// per target layout shape, compiled with -O3) and nowhere else.
#include <Nu.Core.Ex/Convert/Kernels.h>
#include <Nu.Core.Ex/Convert/Lanes.h>

#include <cstring>
#include <immintrin.h>
#include <iterator>
#include <utility>

namespace Nu::Detail {

// ---- words and elements: the same at every level ----------------------------------------------
template <class T, SShape Shape, EPass Pass, EMoveKernel Kind>
struct TMoveBody {
  __attribute__((always_inline)) static void Body(std::size_t count, T* __restrict trg, T const* __restrict src,
                                                  T fill) noexcept {
    constexpr int TrgStride = Shape.TrgStride, SrcStride = Shape.SrcStride;
    constexpr int T0 = Shape.T0, S0 = Shape.S0, T1 = Shape.T1, S1 = Shape.S1, T2 = Shape.T2, S2 = Shape.S2;
    constexpr int TrgAlpha = Shape.TrgAlpha, SrcAlpha = Shape.SrcAlpha;
    if constexpr (Kind == EMoveKernel::Words) {
      // Each target pixel assembled in a register and stored at once: the same bytes as element
      // by element, since a full pass writes every element of the target pixel, and it
      // vectorises where scattered element stores do not.
      static_assert(Pass == EPass::Full);
      using TrgWord = typename TBitsOf<TrgStride * sizeof(T)>::Type;
      using SrcWord = typename TBitsOf<SrcStride * sizeof(T)>::Type;
      constexpr unsigned int bits = 8 * sizeof(T);
      for (std::size_t p = 0; p < count; ++p) {
        SrcWord word;
        std::memcpy(&word, src + p * SrcStride, sizeof word);
        auto element = [word](int k) { return static_cast<TrgWord>(static_cast<T>(word >> (bits * k))); };
        TrgWord pixel = static_cast<TrgWord>(element(S0) << (bits * T0));
        if constexpr (Shape.Colours == 3)
          pixel |= static_cast<TrgWord>((element(S1) << (bits * T1)) | (element(S2) << (bits * T2)));
        if constexpr (TrgAlpha >= 0) {
          TrgWord const alpha = SrcAlpha >= 0 ? element(SrcAlpha) : static_cast<TrgWord>(fill);
          pixel |= static_cast<TrgWord>(alpha << (bits * TrgAlpha));
        }
        std::memcpy(trg + p * TrgStride, &pixel, sizeof pixel);
      }
    } else {
      for (std::size_t p = 0; p < count; ++p) {
        T* t = trg + p * TrgStride;
        T const* s = src + p * SrcStride;
        if constexpr (Pass != EPass::AlphaOnly) {
          t[T0] = s[S0];
          if constexpr (Shape.Colours == 3) {
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
  }
};

// ---- permutes (VBMI) ---------------------------------------------------------------------------
// Each 64 bytes of target come from a window of at most 256 source bytes through one or two
// two-register permutes (one register in both operands where the window fits in it, which
// spares a load per vector), the filled alpha is a blend, and the store is whole. A partial pass
// writes one element of each two-element target pixel and must leave the other untouched: in
// the body it stores back the bytes it has just read (inside the run, in one thread), at the
// ends it uses a byte-masked store, which writes exactly the chosen bytes. A target pixel of
// 3 * 2^k bytes repeats every three vectors, each with its own table.
template <class T>
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline __m512i Permute2(__m512i lo, __m512i index,
                                                                           __m512i hi) noexcept {
  if constexpr (sizeof(T) == 1) return _mm512_permutex2var_epi8(lo, index, hi);
  if constexpr (sizeof(T) == 2) return _mm512_permutex2var_epi16(lo, index, hi);
  if constexpr (sizeof(T) == 4) return _mm512_permutex2var_epi32(lo, index, hi);
  if constexpr (sizeof(T) == 8) return _mm512_permutex2var_epi64(lo, index, hi);
}

template <class T, SShape Shape, EPass Pass>
struct TPermuteMove {
  static constexpr std::size_t Lanes = 64 / sizeof(T);
  static constexpr std::size_t TrgPixel = Shape.TrgStride * sizeof(T);
  static constexpr std::size_t SrcPixel = Shape.SrcStride * sizeof(T);
  static constexpr std::size_t Vectors = PermuteVectors(Shape, sizeof(T));
  static constexpr std::size_t Pixels = 64 * Vectors / TrgPixel;  // target pixels per group of vectors
  static_assert(Pixels * TrgPixel == 64 * Vectors && Permutes(Shape, sizeof(T), Pass));

  struct alignas(64) SIndex {
    T Lane[Lanes];
  };
  struct STables {
    SIndex Index[Vectors][2];       // into the window's registers 0-1 and 2-3
    std::uint64_t Upper[Vectors];   // bytes taken from registers 2-3
    std::uint64_t Filled[Vectors];  // bytes of the filled alpha
    std::uint64_t Written[Vectors];
    std::size_t Window[Vectors];  // first source element of each vector's window
  };
  static constexpr STables Tables = [] {
    STables t{};
    std::size_t const trgStride = Shape.TrgStride, srcStride = Shape.SrcStride;
    for (std::size_t v = 0; v < Vectors; ++v) {
      t.Window[v] = PermuteWindow(Shape, sizeof(T), v);
      for (std::size_t lane = 0; lane < Lanes; ++lane) {
        std::size_t const element = v * Lanes + lane;
        int const from = SourceElementOf(Shape, Pass, static_cast<int>(element % trgStride));
        std::uint64_t const bytes = ((std::uint64_t{1} << sizeof(T)) - 1) << (lane * sizeof(T));
        if (from != KeepElement) t.Written[v] |= bytes;
        if (from == FillElement) t.Filled[v] |= bytes;
        if (from < 0) continue;
        std::size_t const source = element / trgStride * srcStride + static_cast<std::size_t>(from) - t.Window[v];
        bool const upper = source >= 2 * Lanes;
        if (upper) t.Upper[v] |= bytes;
        t.Index[v][upper ? 1 : 0].Lane[lane] = static_cast<T>(source % (2 * Lanes));
      }
    }
    return t;
  }();
  static constexpr std::size_t Span = PermuteSpan(Shape, sizeof(T), Pass);
  static constexpr std::size_t Registers = Span > 2 * Lanes ? 4 : Span > Lanes ? 2 : 1;
  // Source bytes a group reads past its first pixel: its last window's end.
  static constexpr std::size_t WindowEnd = Tables.Window[Vectors - 1] * sizeof(T) + Registers * 64;
};

inline std::uint64_t BytesBelow(std::size_t at, std::size_t total) noexcept {
  if (at >= total) return 0;
  return total - at >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (total - at)) - 1;
}

// What happens to the moved values before the filled alpha goes in: nothing, or the rule
// between the two byte types from its table, or between two types of 16 or 32 bits in their
// lanes.
struct SAsMoved {
  NU_TARGET_Avx512Vbmi __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    return value;
  }
};
struct SMappedBytes {
  SByteRegisters Table;
  NU_TARGET_Avx512Vbmi __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    return LookUpBytes(value, Table);
  }
};
template <class TE, class SE>
struct TMappedWords {
  NU_TARGET_Avx512Vbmi __attribute__((always_inline)) __m512i operator()(__m512i value) const noexcept {
    if constexpr (sizeof(TE) == 2)
      return SmallLanes<TE, SE>(value);
    else
      return Lanes32<TE, SE>(value);
  }
};

// One target vector of a group; Tail: near the ends of the runs, every access masked to them.
template <class Move, bool Tail, class T, class Map>
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline void MovePermuteVector(
    std::size_t group, std::size_t v, char* trg, char const* src, std::size_t trgTotal, std::size_t srcTotal,
    __m512i fill, Map const& map) noexcept {
  constexpr auto const& tables = Move::Tables;
  std::size_t const trgAt = group * Move::Pixels * Move::TrgPixel + v * 64;
  std::size_t const srcAt = group * Move::Pixels * Move::SrcPixel + tables.Window[v] * sizeof(T);
  __m512i r[4];
  for (std::size_t k = 0; k < Move::Registers; ++k)
    r[k] = Tail ? _mm512_maskz_loadu_epi8(BytesBelow(srcAt + 64 * k, srcTotal), src + srcAt + 64 * k)
                : _mm512_loadu_si512(src + srcAt + 64 * k);
  __m512i value = Permute2<T>(r[0], _mm512_load_si512(&tables.Index[v][0]), r[Move::Registers == 1 ? 0 : 1]);
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

template <class T, SShape Shape, EPass Pass, class Map>
NU_TARGET_Avx512Vbmi __attribute__((always_inline)) inline void MovePermuteLoop(std::size_t count, T* trg,
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

template <class T, SShape Shape, EPass Pass>
NU_TARGET_Avx512Vbmi NU_NOCLONE void MovePermute(std::size_t count, T* trg, T const* src, T fill) noexcept {
  MovePermuteLoop<T, Shape, Pass>(count, trg, src, fill, SAsMoved{});
}

// The permute applies to every shape here, word-sized pixels included: the mapping would cost
// the word loop a second pass.
template <class TE, class SE, SShape Shape>
NU_TARGET_Avx512Vbmi NU_NOCLONE void MoveMapped(std::size_t count, TE* trg, SE const* src) noexcept {
  using Bits = TBits<TE>;
  static_assert(MapsAsMoved(InfoOf<TE>(DataIdOf<TE>()), InfoOf<SE>(DataIdOf<SE>()), Shape));
  Bits const fill = MaximumBits<TE>();
  auto* const to = reinterpret_cast<Bits*>(trg);
  auto const* const from = reinterpret_cast<Bits const*>(src);
  if constexpr (sizeof(TE) == 1)
    MovePermuteLoop<Bits, Shape, EPass::Full>(count, to, from, fill, SMappedBytes{LoadByteTable<TRuleBytes<TE, SE>>()});
  else
    MovePermuteLoop<Bits, Shape, EPass::Full>(count, to, from, fill, TMappedWords<TE, SE>{});
}

// ---- the dispatch by the plan ------------------------------------------------------------------
template <SMoveKernel K, class T, SShape Shape, EPass Pass>
inline void RunMoveKernel(std::size_t count, T* trg, T const* src, T fill) noexcept {
  if constexpr (K.Kind == EMoveKernel::Permute)
    MovePermute<T, Shape, Pass>(count, trg, src, fill);
  else
    TAt<K.At>::template Run<TMoveBody<T, Shape, Pass, K.Kind>>(count, trg, src, fill);
}

template <class T, SShape Shape, EPass Pass>
void MoveElements(ELevel level, std::size_t count, T* trg, T const* src, T fill) noexcept {
  switch (level) {
#define NU_MOVES_AT_(L) \
  case ELevel::L: return RunMoveKernel<MoveKernelOf(Shape, sizeof(T), Pass, ELevel::L), T, Shape, Pass>(count, trg, src, fill);
    NU_LEVELS(NU_MOVES_AT_)
#undef NU_MOVES_AT_
  }
}

// ---- what the move units emit ------------------------------------------------------------------
// The target layouts of distinct shape (Bayer targets move as Lum does): move unit N emits the
// kernels into the N-th.
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

// Addresses that escape, so that the unit emits the kernels behind them.
template <class F>
inline void Keep(F kernel) noexcept {
  asm volatile("" : : "r"(kernel));
}
template <auto... Kernels>
inline void Emit() noexcept {
  (Keep(Kernels), ...);
}

template <SShape Shape, class TE, class SE>
inline void EmitMapped() noexcept {
  if constexpr (MapsAsMoved(InfoOf<TE>(DataIdOf<TE>()), InfoOf<SE>(DataIdOf<SE>()), Shape))
    Emit<&MoveMapped<TE, SE, Shape>>();
}

// Every kernel a pair into this target layout may call, from one source layout: the full pass
// unless the layouts are the same, the LumA rule's two partial passes for a LumA target, and
// for other targets the mapped sweeps between the types of this size.
template <int TrgLayout, class T, int SrcLayout>
inline void EmitMovesOf() noexcept {
  constexpr SShape Shape = ShapeOf(LayoutOf(TrgLayout), LayoutOf(SrcLayout));
  if constexpr (!Shape.Identity()) Emit<&MoveElements<T, Shape, EPass::Full>>();
  if constexpr (TrgLayout == EPixelType::LumA) {
    Emit<&MoveElements<T, Shape, EPass::ColourOnly>, &MoveElements<T, Shape, EPass::AlphaOnly>>();
  } else if constexpr (sizeof(T) == 1) {
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
#define NU_CONVERT_INSTANTIATE_MOVES(INDEX, COUNT)                                                 \
  static_assert(::Nu::Detail::DistinctTargetLayouts().Count == (COUNT),                            \
                "one move unit per distinct target layout of the list");                           \
  template void ::Nu::Detail::EmitMovesInto<::Nu::Detail::DistinctTargetLayouts().Layout[INDEX]>() noexcept;
