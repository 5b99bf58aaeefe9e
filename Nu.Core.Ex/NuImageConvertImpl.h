#pragma once
// Private to the library (not installed, not in the umbrella header): the value rule between
// the eight numeric data types, the layout kernel and the definitions of the two conversion templates.
// Only the generated instantiation units (cmake/NuConvertUnits.cmake) include this file, so
// that every other unit links against the exported instantiations instead of compiling them.
#include <Nu.Core.Ex/NuImage.h>

#include <cstddef>
#include <cstdint>
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
    if constexpr (std::is_same_v<TTrg, unsigned int>)
      return c != c ? Traits::NaNResult
                    : static_cast<unsigned int>(static_cast<std::uint64_t>(static_cast<std::int64_t>(c)));
    else
      return c != c ? Traits::NaNResult : static_cast<TTrg>(static_cast<int>(c));
  }
}

// One channel value from the source's element type to the target's. Equal types
// are a bit copy: no clamp, NaN payloads and negative zero kept.
template <class TTrg, class TSrc>
inline TTrg ConvertChannelValue(TSrc x) noexcept {
  if constexpr (std::is_same_v<TTrg, TSrc>)
    return x;
  else
    return TargetStep<TTrg>(SourceStep<TSrc>(x));
}

// ---- the layout kernel ----------------------------------------------------------------------
// One loop shape for every pair, templated on the element types and the index map only, so
// that pairs with the same code (Lum <- Bayer2 and Lum <- Lum, Bayer3 <- RGB and Lum <- RGB)
// share one kernel and the 6,400 exported leaves stay thin.
//   TrgStride, SrcStride: elements per pixel. Colours: 1 or 3 target colours.
//   (T0, S0), (T1, S1), (T2, S2): target element <- source element, written in this order
//   (red, green, blue). TrgAlpha: target alpha element or -1. SrcAlpha: source alpha or -1.
//   AlphaShift: the LumA-target rule for different data types, see below.
template <class TE, class SE, unsigned int TrgStride, unsigned int SrcStride, unsigned int Colours,
          int T0, int S0, int T1, int S1, int T2, int S2, int TrgAlpha, int SrcAlpha, bool AlphaShift>
__attribute__((noinline)) void ConvertRun(unsigned int count, TE* trg, SE const* src) noexcept {
  // Plain forward loops element by element: runs may overlap (a conversion in place), and then
  // every read sees the writes before it, in the documented order.
  for (std::size_t p = 0; p < count; ++p) {
    TE* t = trg + p * TrgStride;
    SE const* s = src + p * SrcStride;
    t[T0] = ConvertChannelValue<TE, SE>(s[S0]);
    if constexpr (Colours == 3) {
      t[T1] = ConvertChannelValue<TE, SE>(s[S1]);
      t[T2] = ConvertChannelValue<TE, SE>(s[S2]);
    }
  }
  if constexpr (TrgAlpha >= 0) {
    // Deliberate and documented: for a LumA target of another data type the alpha
    // pass goes on where the colour pass stopped, at pixel count of both runs, for count
    // pixels. It writes (and, for an alpha-bearing source, reads) count pixels beyond the runs,
    // and the alphas of the run's own pixels stay unwritten. Do not "fix".
    std::size_t const first = AlphaShift ? count : 0;
    std::size_t const end = first + count;
    for (std::size_t p = first; p < end; ++p) {
      if constexpr (SrcAlpha >= 0)
        trg[p * TrgStride + TrgAlpha] = ConvertChannelValue<TE, SE>(src[p * SrcStride + SrcAlpha]);
      else
        trg[p * TrgStride + TrgAlpha] = TDataTraits<TE>::TargetMaximum;
    }
  }
}

// The kernel of one pair of TPixel types. Unused indices are normalised to 0 / -1 so that
// identical leaves name the identical kernel.
template <class TTrg, class TSrc>
struct TConvertKernel {
  using TE = typename TTrg::Element;
  using SE = typename TSrc::Element;
  static constexpr bool ThreeColours = TTrg::ColourCount == 3;
  static constexpr int TrgAlpha = TTrg::AlphaCount != 0 ? TTrg::AlphaIndex : -1;
  static constexpr int SrcAlpha = (TrgAlpha >= 0 && TSrc::AlphaCount != 0) ? TSrc::AlphaIndex : -1;
  static constexpr bool AlphaShift =
      TTrg::PixelTypeId == EPixelType::LumA && TTrg::DataTypeId != TSrc::DataTypeId;
  static constexpr auto Run =
      &ConvertRun<TE, SE, TTrg::ElementCount, TSrc::ElementCount, TTrg::ColourCount,
                  TTrg::RedIndex, TSrc::RedIndex,
                  ThreeColours ? TTrg::GreenIndex : 0, ThreeColours ? TSrc::GreenIndex : 0,
                  ThreeColours ? TTrg::BlueIndex : 0, ThreeColours ? TSrc::BlueIndex : 0,
                  TrgAlpha, SrcAlpha, AlphaShift>;
};

// The 80 carried formats in list order; the instantiation unit N fixes target AllFormats[N].
struct SFormatIds {
  int PixelType;
  int DataType;
};
#define NU_CONVERT_FORMAT_IDS_(L, C, A, R, G, B, Al, D, E) {EPixelType::L, EDataType::D},
inline constexpr SFormatIds AllFormats[] = {NU_ALL_PIXELS(NU_CONVERT_FORMAT_IDS_)};
#undef NU_CONVERT_FORMAT_IDS_

}  // namespace Nu::Detail

namespace Nu {

template <class TTrg, class TSrc>
bool CNuImage::_Convert(unsigned int count, TTrg* trg, TSrc const* src) {
  using Kernel = Detail::TConvertKernel<TTrg, TSrc>;
  if (count == 0) return true;
  Kernel::Run(count, reinterpret_cast<typename Kernel::TE*>(trg),
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
