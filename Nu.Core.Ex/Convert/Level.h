#pragma once
// The instruction-set levels of the conversion engine, the one place that asks the CPU for
// them, and the one idiom that compiles a piece of code for a level.
#include <cstddef>
#include <cstdint>

namespace Nu::Detail {

// Each level contains the ones before it. Avx512 is F, BW, DQ and VL; Avx512Vbmi adds the
// byte permutes that the table and permute kernels are built on.
enum class ELevel : std::uint8_t { Baseline, Avx2, Avx512, Avx512Vbmi };
inline constexpr std::size_t LevelCount = 4;
inline constexpr ELevel AllLevels[LevelCount] = {ELevel::Baseline, ELevel::Avx2, ELevel::Avx512, ELevel::Avx512Vbmi};

constexpr char const* LevelName(ELevel level) noexcept {
  switch (level) {
    case ELevel::Baseline: return "baseline";
    case ELevel::Avx2: return "avx2";
    case ELevel::Avx512: return "avx512";
    case ELevel::Avx512Vbmi: return "avx512vbmi";
  }
  return "?";
}

// The highest level this CPU runs, from the features the compiler's runtime has read (no state
// of the library's own). Called once per conversion, at the top of its road; everything below
// takes the level as an argument, so that a test can run any level the CPU has.
inline ELevel DetectLevel() noexcept {
  if (!__builtin_cpu_supports("avx2")) return ELevel::Baseline;
  if (!__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512bw") ||
      !__builtin_cpu_supports("avx512dq") || !__builtin_cpu_supports("avx512vl"))
    return ELevel::Avx2;
  return __builtin_cpu_supports("avx512vbmi") ? ELevel::Avx512Vbmi : ELevel::Avx512;
}

// ---- the target of each level ---------------------------------------------------------------
#if defined(__clang__)
#define NU_TARGET_Avx512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"), min_vector_width(512)))
#define NU_TARGET_Avx512Vbmi \
  __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi"), min_vector_width(512)))
#else
#define NU_TARGET_Avx512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,prefer-vector-width=512")))
#define NU_TARGET_Avx512Vbmi \
  __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,prefer-vector-width=512")))
#endif
#define NU_TARGET_Avx2 __attribute__((target("avx2")))
#define NU_TARGET_Baseline

// X(Level) for every level, lowest first.
#define NU_LEVELS(X) X(Baseline) X(Avx2) X(Avx512) X(Avx512Vbmi)

// Kernels are shared by many units: no unit-local specialised clones of them.
#if defined(__clang__)
#define NU_NOCLONE __attribute__((noinline))
#else
#define NU_NOCLONE __attribute__((noinline, noclone))
#endif

// ---- code compiled for a level ----------------------------------------------------------------
// Code that reads the same at every level is written once, as the always-inline static Body of
// a struct, and compiled for level L as TAt<L>::Run<TBody>: each level's Run carries that
// level's target, so that the compiler vectorises the inlined body for it. Code that exists for
// one level only (intrinsics) carries NU_TARGET_<Level> itself.
template <ELevel L>
struct TAt;
#define NU_AT_LEVEL_(L)                                                               \
  template <>                                                                        \
  struct TAt<ELevel::L> {                                                            \
    template <class TBody, class... TArgs>                                           \
    NU_TARGET_##L NU_NOCLONE static void Run(TArgs... args) noexcept {                \
      TBody::Body(args...);                                                          \
    }                                                                                \
  };
NU_LEVELS(NU_AT_LEVEL_)
#undef NU_AT_LEVEL_

// ---- the plain forward passes ---------------------------------------------------------------
// Element by element, small and not vectorised: they serve runs of a few pixels and runs that
// overlap, where the order of the element writes is the result.
#if defined(__clang__)
#define NU_FORWARD_FUNCTION
#define NU_FORWARD_LOOP _Pragma("clang loop vectorize(disable) interleave(disable)")
#else
#define NU_FORWARD_FUNCTION __attribute__((optimize("Os", "no-tree-vectorize")))
#define NU_FORWARD_LOOP
#endif

}  // namespace Nu::Detail
