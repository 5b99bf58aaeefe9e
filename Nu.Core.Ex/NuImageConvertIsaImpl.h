#pragma once
// Private to the library: the choice of instruction set for the fast conversion loops.
namespace Nu::Detail {

// ---- instruction sets ---------------------------------------------------------------------
// The fast loops exist for three instruction sets; the choice is made per call from the CPU's
// features (libgcc's/compiler-rt's own detection), and the library keeps no state of its own.
enum class EIsa { Baseline, Avx2, Avx512 };

inline EIsa CurrentIsa() noexcept {
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
    return EIsa::Avx512;
  if (__builtin_cpu_supports("avx2")) return EIsa::Avx2;
  return EIsa::Baseline;
}

// Within the AVX-512 set: the byte permutes of VBMI, which the table and permute kernels are
// built with (NU_ISA_AVX512_VBMI). Without it those kernels fall back to other AVX-512 code.
inline bool HasVbmi() noexcept { return __builtin_cpu_supports("avx512vbmi"); }

#if defined(__clang__)
#define NU_ISA_AVX512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"), min_vector_width(512)))
#define NU_ISA_AVX512_VBMI __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi"), min_vector_width(512)))
#define NU_NOVECTOR_FUNCTION
#define NU_NOVECTOR_LOOP _Pragma("clang loop vectorize(disable) interleave(disable)")
#else
#define NU_ISA_AVX512 __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,prefer-vector-width=512")))
#define NU_ISA_AVX512_VBMI \
  __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,prefer-vector-width=512")))
#define NU_NOVECTOR_FUNCTION __attribute__((optimize("no-tree-vectorize")))
#define NU_NOVECTOR_LOOP
#endif
#define NU_ISA_AVX2 __attribute__((target("avx2")))
// Kernels are shared by many units: no unit-local specialised clones of them.
#if defined(__clang__)
#define NU_NOCLONE __attribute__((noinline))
#define NU_SMALL_FUNCTION
#else
#define NU_NOCLONE __attribute__((noinline, noclone))
#define NU_SMALL_FUNCTION __attribute__((optimize("Os")))
#endif
#define NU_ISA_BASELINE

}  // namespace Nu::Detail
