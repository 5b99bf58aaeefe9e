#pragma once
// Private to the library: the definitions of the value kernels declared in
// NuImageConvertImpl.h. Included by the generated kernel units (one per target data type,
// compiled with -O3) and by the tests of the instruction-set paths, nowhere else.
#include <Nu.Core.Ex/NuImageConvertImpl.h>
#include <Nu.Core.Ex/NuImageConvertLanesImpl.h>

namespace Nu::Detail {

// One loop over contiguous elements, compiled once per instruction set from this one source.
// The runs do not overlap (the caller tests that), so the loop is free to vectorise; vector
// division, multiplication, comparison and truncation give the scalar IEEE bits (no FMA
// contraction, no reciprocal), and the tail runs through the same arithmetic.
#define NU_CONVERT_VALUES_ISA_(ISA, ATTR)                                                    \
  template <class TE, class SE>                                                              \
  ATTR NU_NOCLONE void ConvertValues##ISA(std::size_t n, TE* __restrict trg,  \
                                                         SE const* __restrict src) noexcept { \
    for (std::size_t i = 0; i < n; ++i) trg[i] = ConvertChannelValue<TE, SE>(src[i]);        \
  }
NU_CONVERT_VALUES_ISA_(Avx2, NU_ISA_AVX2)
NU_CONVERT_VALUES_ISA_(Baseline, NU_ISA_BASELINE)
#undef NU_CONVERT_VALUES_ISA_

// Between the two byte types every value is one of 256: a table of the rule's results.
template <class TE, class SE>
struct TRuleBytes {
  static constexpr unsigned char Of(unsigned int b) noexcept {
    return static_cast<unsigned char>(ConvertChannelValue<TE, SE>(static_cast<SE>(b)));
  }
};

template <class TE, class SE>
NU_ISA_AVX512_VBMI NU_NOCLONE void ConvertBytesAvx512(std::size_t n, TE* trg, SE const* src) noexcept {
  SByteRegisters const table = LoadByteTable<TRuleBytes<TE, SE>>();
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) _mm512_storeu_si512(trg + i, LookUpBytes(_mm512_loadu_si512(src + i), table));
  if (i < n) {
    __mmask64 const mask = (std::uint64_t{1} << (n - i)) - 1;
    _mm512_mask_storeu_epi8(trg + i, mask, LookUpBytes(_mm512_maskz_loadu_epi8(mask, src + i), table));
  }
}

// AVX-512 takes the lane kernels into integer targets (NuImageConvertLanesImpl.h) and the
// table between the byte types.
template <class TE, class SE>
NU_ISA_AVX512 NU_NOCLONE void ConvertValuesAvx512(std::size_t n, TE* __restrict trg, SE const* __restrict src) noexcept {
  if constexpr (sizeof(TE) == 1 && sizeof(SE) == 1 && !std::is_same_v<TE, SE>) {
    if (HasVbmi()) return ConvertBytesAvx512<TE, SE>(n, trg, src);
  }
  if constexpr (sizeof(SE) == 1 && LaneFormOf<TE, SE>() == ELaneForm::Widen) {
    if (HasVbmi()) return ConvertWidenBytesAvx512<TE, SE>(n, trg, src);
  }
  if constexpr (LaneFormOf<TE, SE>() != ELaneForm::None) {
    ConvertValuesLanesAvx512<TE, SE>(n, trg, src);
  } else {
    for (std::size_t i = 0; i < n; ++i) trg[i] = ConvertChannelValue<TE, SE>(src[i]);
  }
}

template <EIsa Isa, class TE, class SE>
void ConvertValues(std::size_t n, TE* trg, SE const* src) noexcept {
  if constexpr (Isa == EIsa::Avx512)
    ConvertValuesAvx512<TE, SE>(n, trg, src);
  else if constexpr (Isa == EIsa::Avx2)
    ConvertValuesAvx2<TE, SE>(n, trg, src);
  else
    ConvertValuesBaseline<TE, SE>(n, trg, src);
}

template <class TE, class SE>
void ConvertValuesHere(std::size_t n, TE* trg, SE const* src) noexcept {
  switch (CurrentIsa()) {
    case EIsa::Avx512: return ConvertValuesAvx512<TE, SE>(n, trg, src);
    case EIsa::Avx2: return ConvertValuesAvx2<TE, SE>(n, trg, src);
    case EIsa::Baseline: return ConvertValuesBaseline<TE, SE>(n, trg, src);
  }
}

}  // namespace Nu::Detail

// The body of one generated kernel unit: the value kernels from every data type into data type
// AllDataTypes[INDEX], for the three instruction sets.
#define NU_CONVERT_INSTANTIATE_VALUES_FROM_(D, E, ...)                                                     \
  template void ConvertValues<EIsa::Avx512, TConvertUnitElement, E>(std::size_t, TConvertUnitElement*, E const*) noexcept; \
  template void ConvertValues<EIsa::Avx2, TConvertUnitElement, E>(std::size_t, TConvertUnitElement*, E const*) noexcept;   \
  template void ConvertValues<EIsa::Baseline, TConvertUnitElement, E>(std::size_t, TConvertUnitElement*, E const*) noexcept; \
  template void ConvertValuesHere<TConvertUnitElement, E>(std::size_t, TConvertUnitElement*, E const*) noexcept;
#define NU_CONVERT_INSTANTIATE_VALUES(INDEX, COUNT)                                                      \
  static_assert(std::size(::Nu::Detail::AllDataTypes) == (COUNT),                                       \
                "cmake/NuConvertUnits.cmake must generate one kernel unit per data type");              \
  namespace Nu::Detail {                                                                                \
  using TConvertUnitElement = typename TPixelOf<EPixelType::Lum, AllDataTypes[INDEX]>::Element;         \
  NU_DATA_TYPES(NU_CONVERT_INSTANTIATE_VALUES_FROM_)                                                    \
  }
