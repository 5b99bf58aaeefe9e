#pragma once
// The code of one pair and the definitions of the two conversion templates. Included by the
// generated loop units (one per target format, cmake/NuConvertUnits.cmake), which instantiate
// the 6,400 exported leaves, and by the tests of the levels; every other unit links against
// the exported instantiations.
#include <Nu.Core.Ex/Convert/Kernels.h>
#include <Nu.Core.Ex/NuImage.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>

namespace Nu::Detail {

// One pair's passes, templated on its key only, so that pairs with the same code share one
// kernel and the 6,400 exported leaves stay thin.
template <SPairKey Key>
struct TPair {
  using TE = TElementOf<Key.TrgData>;
  using SE = TElementOf<Key.SrcData>;
  using Bits = TBits<TE>;
  using SourceBits = TBits<SE>;
  static constexpr SShape Shape = Key.Shape;
  static constexpr std::size_t TrgStride = Shape.TrgStride, SrcStride = Shape.SrcStride;
  static_assert(TrgStride * sizeof(TE) <= MaxPixelBytes);

  template <ELevel L>
  static constexpr SPlan PlanAt = PlanOf(Key, L);
  // Read at compile time only: a run-time use of Key would make some compilers emit its
  // template parameter object as an exported symbol.
  static constexpr std::uint64_t RunKey = PackRunKey(Key);

  // ---- the plain forward passes, for short runs and runs that overlap (a conversion in place):
  // every read sees the writes before it, in the documented order. The elements are read and
  // written as bytes (memcpy), because the two runs may share memory under two element types,
  // which typed accesses would let the optimiser reorder.
  static TE ReadConvert(SE const* s) noexcept {
    SE value;
    std::memcpy(&value, s, sizeof value);
    return ConvertChannelValue<TE, SE>(value);
  }
  static void Write(TE* t, TE value) noexcept { std::memcpy(t, &value, sizeof value); }

  NU_FORWARD_FUNCTION static void Forward(std::size_t count, void* trgBytes, void const* srcBytes) noexcept {
    auto* const trg = static_cast<TE*>(trgBytes);
    auto const* const src = static_cast<SE const*>(srcBytes);
    NU_FORWARD_LOOP
    for (std::size_t p = 0; p < count; ++p) {
      TE* t = trg + p * TrgStride;
      SE const* s = src + p * SrcStride;
      Write(t + Shape.T0, ReadConvert(s + Shape.S0));
      if constexpr (Shape.Colours == 3) {
        Write(t + Shape.T1, ReadConvert(s + Shape.S1));
        Write(t + Shape.T2, ReadConvert(s + Shape.S2));
      }
    }
    if constexpr (Shape.TrgAlpha >= 0) {
      // Deliberate and documented: for a LumA target of another data type the alpha
      // pass goes on where the colour pass stopped, at pixel count of both runs, for count
      // pixels. It writes (and, for an alpha-bearing source, reads) count pixels beyond the
      // runs, and the alphas of the run's own pixels stay unwritten. Do not "fix".
      std::size_t const first = Key.LumAShift ? count : 0;
      std::size_t const end = first + count;
      NU_FORWARD_LOOP
      for (std::size_t p = first; p < end; ++p) {
        if constexpr (Shape.SrcAlpha >= 0)
          Write(trg + p * TrgStride + Shape.TrgAlpha, ReadConvert(src + p * SrcStride + Shape.SrcAlpha));
        else
          Write(trg + p * TrgStride + Shape.TrgAlpha, TDataTraits<TE>::TargetMaximum);
      }
    }
  }

  // ---- the fused path of separate runs: the same result as the forward passes (each element is
  // written once from a value that no write changes), in the order of the plan. Pixels p .. p +
  // count - 1 into `to`, in the target layout (the LumA rule: its colour pass).
  template <EOrder Order, std::size_t Block>
  __attribute__((always_inline)) static void ProduceAs(ELevel level, std::size_t p, std::size_t count, void* toBytes, void const* srcBytes) noexcept {
    auto* to = static_cast<Bits*>(toBytes);
    auto const* src = static_cast<SE const*>(srcBytes) + p * SrcStride;
    if constexpr (Order == EOrder::Mapped) {
      MoveMapped<TE, SE, Shape>(count, reinterpret_cast<TE*>(to), src);
    } else if constexpr (Order == EOrder::Values) {
      ConvertValues<TE, SE>(level, count * TrgStride, reinterpret_cast<TE*>(to), src);
    } else if constexpr (Order == EOrder::Moves) {
      MoveElements<Bits, Shape, EPass::Full>(level, count, to, reinterpret_cast<Bits const*>(src), MaximumBits<TE>());
    } else if constexpr (Order == EOrder::MovesFirst) {
      alignas(64) SE tmp[Block * TrgStride];
      for (std::size_t q = 0; q < count; q += Block) {
        std::size_t const n = count - q < Block ? count - q : Block;
        MoveElements<SourceBits, Shape, EPass::Full>(level, n, reinterpret_cast<SourceBits*>(tmp),
                                                     reinterpret_cast<SourceBits const*>(src + q * SrcStride),
                                                     SourceBits{});
        ConvertValues<TE, SE>(level, n * TrgStride, reinterpret_cast<TE*>(to + q * TrgStride), tmp);
      }
    } else {
      static_assert(Order == EOrder::ValuesFirst || Order == EOrder::LumAShift);
      constexpr EPass Pass = Order == EOrder::LumAShift ? EPass::ColourOnly : EPass::Full;
      alignas(64) TE tmp[Block * SrcStride];
      for (std::size_t q = 0; q < count; q += Block) {
        std::size_t const n = count - q < Block ? count - q : Block;
        ConvertValues<TE, SE>(level, n * SrcStride, tmp, src + q * SrcStride);
        MoveElements<Bits, Shape, Pass>(level, n, to + q * TrgStride, reinterpret_cast<Bits const*>(tmp),
                                        MaximumBits<TE>());
      }
    }
  }

  template <std::size_t... L>
  static constexpr bool SamePlanAtEveryLevel(std::index_sequence<L...>) noexcept {
    return ((PlanAt<AllLevels[L]>.Order == PlanAt<ELevel::Baseline>.Order &&
             PlanAt<AllLevels[L]>.Block == PlanAt<ELevel::Baseline>.Block) &&
            ...);
  }
  static constexpr bool OneOrder = SamePlanAtEveryLevel(std::make_index_sequence<LevelCount>{});

  // Where the levels differ, each order once, and the levels that share it jump to it.
  template <EOrder Order, std::size_t Block>
  __attribute__((noinline)) static void ProduceApart(ELevel level, std::size_t p, std::size_t count, void* to,
                                                     void const* src) noexcept {
    ProduceAs<Order, Block>(level, p, count, to, src);
  }

  static void Produce(ELevel level, std::size_t p, std::size_t count, void* to, void const* src) noexcept {
    if constexpr (OneOrder) {
      ProduceAs<PlanAt<ELevel::Baseline>.Order, PlanAt<ELevel::Baseline>.Block>(level, p, count, to, src);
    } else {
      switch (level) {
#define NU_PRODUCE_AT_(L) \
  case ELevel::L: return ProduceApart<PlanAt<ELevel::L>.Order, PlanAt<ELevel::L>.Block>(level, p, count, to, src);
        NU_LEVELS(NU_PRODUCE_AT_)
#undef NU_PRODUCE_AT_
      }
    }
  }

  // The LumA rule's alpha pass: alphas of pixels count .. 2 count - 1, see Forward.
  static void AlphaPass(ELevel level, std::size_t count, void* trgBytes, void const* srcBytes) noexcept {
    constexpr std::size_t Block = PlanAt<ELevel::Baseline>.Block;
    auto* trg = static_cast<Bits*>(trgBytes);
    auto const* src = static_cast<SE const*>(srcBytes);
    alignas(64) TE tmp[Block * SrcStride];
    auto const* tmpBits = reinterpret_cast<Bits const*>(tmp);
    for (std::size_t p = count; p < 2 * count; p += Block) {
      std::size_t const n = 2 * count - p < Block ? 2 * count - p : Block;
      if constexpr (Shape.SrcAlpha >= 0) ConvertValues<TE, SE>(level, n * SrcStride, tmp, src + p * SrcStride);
      MoveElements<Bits, Shape, EPass::AlphaOnly>(level, n, trg + p * TrgStride, tmpBits, MaximumBits<TE>());
    }
  }

  // No producer where the driver copies the block.
  static constexpr FProduce Producer() noexcept {
    if constexpr (OneOrder && PlanAt<ELevel::Baseline>.Order == EOrder::Copy)
      return nullptr;
    else
      return &Produce;
  }
  static constexpr FAlphaPass AlphaPasser() noexcept {
    if constexpr (Key.LumAShift)
      return &AlphaPass;
    else
      return nullptr;
  }
  static SPairRun Kernels() noexcept { return {&Forward, Producer(), AlphaPasser(), RunKey}; }

  // The entry of the pair's leaves; runs too short for the fused path go straight to the
  // forward passes, before anything asks the CPU.
  __attribute__((noinline)) static void Run(unsigned int count, TE* trg, SE const* src) noexcept {
    if (count < FusedFrom) return Forward(count, trg, src);
    if constexpr (Key.LumAShift)
      ConvertRunLumA(count, trg, src, Kernels());
    else
      ConvertRun(count, trg, src, &Forward, Producer(), RunKey);
  }
};

template <class TTrg, class TSrc>
constexpr SPairKey PairKeyOf() noexcept {
  return PairKeyOf(TTrg::PixelTypeId, TTrg::DataTypeId, TSrc::PixelTypeId, TSrc::DataTypeId);
}
template <class TTrg, class TSrc>
using TPairOf = TPair<PairKeyOf<TTrg, TSrc>()>;

}  // namespace Nu::Detail

namespace Nu {

template <class TTrg, class TSrc>
bool CNuImage::_Convert(unsigned int count, TTrg* trg, TSrc const* src) {
  using Pair = Detail::TPairOf<TTrg, TSrc>;
  if (count == 0) return true;
  Pair::Run(count, reinterpret_cast<typename Pair::TE*>(trg), reinterpret_cast<typename Pair::SE const*>(src));
  return true;
}

// Two-level choice, source pixel type then source data type, expanded from the two lists.
template <class TTrg>
bool CNuImage::_ConvertSrcSwitch(void const* src, CNuImageFormat const& srcFormat, TTrg* trg) {
  unsigned int const count = srcFormat.GetPixelCount();  // wraps modulo 2^32, by design
#define NU_CONVERT_SRC_DATA_CASE_(D, E, L, C, A, R, G, B, Al)     \
  case EDataType::D:                                              \
    return _Convert<TTrg, NU_TPIXEL(L, C, A, R, G, B, Al, D, E)>( \
        count, trg, static_cast<NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const*>(src));
#define NU_CONVERT_SRC_LAYOUT_CASE_(L, C, A, R, G, B, Al, ...)       \
  case EPixelType::L:                                                \
    switch (srcFormat.DataType) {                                    \
      NU_DATA_TYPES(NU_CONVERT_SRC_DATA_CASE_, L, C, A, R, G, B, Al) \
      default: return false;                                         \
    }
  switch (srcFormat.PixelType) {
    NU_PIXEL_LAYOUTS(NU_CONVERT_SRC_LAYOUT_CASE_)
    default: return false;
  }
#undef NU_CONVERT_SRC_LAYOUT_CASE_
#undef NU_CONVERT_SRC_DATA_CASE_
}

}  // namespace Nu

// The body of one generated loop unit: the 80 leaves into target format INDEX and its source
// switch. COUNT is the number of units CMake generated, checked against the list.
#define NU_CONVERT_INSTANTIATE_LEAF_(L, C, A, R, G, B, Al, D, E)                               \
  template bool CNuImage::_Convert<TConvertUnitTarget, NU_TPIXEL(L, C, A, R, G, B, Al, D, E)>( \
      unsigned int, TConvertUnitTarget*, NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const*);
#define NU_CONVERT_INSTANTIATE_TARGET(INDEX, COUNT)                                                      \
  static_assert(std::size(::Nu::Detail::AllFormats) == (COUNT), "one loop unit per format of the list"); \
  namespace Nu {                                                                                         \
  using TConvertUnitTarget =                                                                             \
      TPixelOf<Detail::AllFormats[INDEX].PixelType, Detail::AllFormats[INDEX].DataType>;                 \
  NU_ALL_PIXELS(NU_CONVERT_INSTANTIATE_LEAF_)                                                            \
  template bool CNuImage::_ConvertSrcSwitch<TConvertUnitTarget>(void const*, CNuImageFormat const&,      \
                                                                TConvertUnitTarget*);                    \
  }
