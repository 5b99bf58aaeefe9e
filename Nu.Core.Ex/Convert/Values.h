#pragma once
// The value kernels declared in Convert/Kernels.h. Included by the generated kernel units
// (one per target data type, compiled with -O3) and nowhere else.
#include <Nu.Core.Ex/Convert/Kernels.h>
#include <Nu.Core.Ex/Convert/Lanes.h>

#include <cstring>

namespace Nu::Detail {

// The plain loop of the rule, the same at every level. The runs do not overlap (the driver
// tests that), so the loop is free to vectorise; vector division, multiplication, comparison
// and truncation give the scalar IEEE bits (no FMA contraction, no reciprocal), and the tail
// runs through the same arithmetic.
template <class TE, class SE>
struct TValuesLoop {
  __attribute__((always_inline)) static void Body(std::size_t n, TE* __restrict trg,
                                                  SE const* __restrict src) noexcept {
    for (std::size_t i = 0; i < n; ++i) trg[i] = ConvertChannelValue<TE, SE>(src[i]);
  }
};

template <SValueKernel K, class TE, class SE>
inline void RunValueKernel(std::size_t n, TE* trg, SE const* src) noexcept {
  if constexpr (K.Kind == EValueKernel::None)
    std::memcpy(trg, src, n * sizeof(TE));
  else if constexpr (K.Kind == EValueKernel::Loop)
    TAt<K.At>::template Run<TValuesLoop<TE, SE>>(n, trg, src);
  else if constexpr (K.Kind == EValueKernel::ByteTable)
    ConvertBytes<TE, SE>(n, trg, src);
  else if constexpr (K.Kind == EValueKernel::WidenBytes)
    ConvertWidenBytes<TE, SE>(n, trg, src);
  else
    ConvertLanes<K.Kind, TE, SE>(n, trg, src);
}

template <class TE, class SE>
void ConvertValues(ELevel level, std::size_t n, TE* trg, SE const* src) noexcept {
  constexpr SDataInfo trgInfo = InfoOf<TE>(DataIdOf<TE>()), srcInfo = InfoOf<SE>(DataIdOf<SE>());
  switch (level) {
#define NU_VALUES_AT_(L) \
  case ELevel::L: return RunValueKernel<ValueKernelOf(trgInfo, srcInfo, ELevel::L), TE, SE>(n, trg, src);
    NU_LEVELS(NU_VALUES_AT_)
#undef NU_VALUES_AT_
  }
}

}  // namespace Nu::Detail

// The body of one generated kernel unit: the value kernels from every data type into data type
// INDEX of the list. COUNT is the number of units CMake generated, checked against the list.
#define NU_CONVERT_INSTANTIATE_VALUES_FROM_(D, E, ...) \
  template void ConvertValues<TConvertUnitElement, E>(ELevel, std::size_t, TConvertUnitElement*, E const*) noexcept;
#define NU_CONVERT_INSTANTIATE_VALUES(INDEX, COUNT)                                                 \
  namespace Nu::Detail {                                                                           \
  static_assert(std::size(AllDataTypes) == (COUNT), "one kernel unit per data type of the list"); \
  using TConvertUnitElement = TElementOf<AllDataTypes[INDEX]>;                                     \
  NU_DATA_TYPES(NU_CONVERT_INSTANTIATE_VALUES_FROM_)                                               \
  }
