// The non-template members of the conversion road: dispatch, Bayer gate, custom widening.
// The loops themselves are the exported instantiations of the generated units; this unit sees
// only their declarations and links against them.
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/Convert/Level.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Nu {
namespace {

// Everything CNuImage raises names the class's own source, also from this unit.
constexpr char FileText[] = "Nu.Core.Ex/NuImage.cpp";

constexpr bool IsBayer(int pixelType) noexcept {
  return pixelType == EPixelType::Bayer1 || pixelType == EPixelType::Bayer2 ||
         pixelType == EPixelType::Bayer3 || pixelType == EPixelType::Bayer4;
}

// One word of the custom widening: single precision throughout, truncation to 32 bits, low 16
// bits kept.
inline std::uint16_t WidenWord(std::uint16_t word, float divisor) noexcept {
  float const value = static_cast<float>(word) / divisor * 65535.0f;
  return static_cast<std::uint16_t>(static_cast<std::int32_t>(value));
}

// The widening loop, compiled per level: separate runs, and a run onto itself (each word read
// before it is written, so a vector gives the same result as word by word).
struct SWidenApart {
  __attribute__((always_inline)) static void Body(std::size_t n, std::uint16_t* __restrict out,
                                                  std::uint16_t const* __restrict words, float divisor) noexcept {
    for (std::size_t i = 0; i < n; ++i) out[i] = WidenWord(words[i], divisor);
  }
};
struct SWidenInPlace {
  __attribute__((always_inline)) static void Body(std::size_t n, std::uint16_t* words, std::uint16_t const*,
                                                  float divisor) noexcept {
    for (std::size_t i = 0; i < n; ++i) words[i] = WidenWord(words[i], divisor);
  }
};

template <class TBody>
void WidenAt(Detail::ELevel level, std::size_t n, std::uint16_t* out, std::uint16_t const* words, float divisor) noexcept {
  switch (level) {
#define NU_WIDEN_AT_(L) \
  case Detail::ELevel::L: return Detail::TAt<Detail::ELevel::L>::Run<TBody>(n, out, words, divisor);
    NU_LEVELS(NU_WIDEN_AT_)
#undef NU_WIDEN_AT_
  }
}

void Widen(std::size_t n, std::uint16_t* out, std::uint16_t const* words, float divisor) noexcept {
  auto const outBegin = reinterpret_cast<std::uintptr_t>(out);
  auto const wordsBegin = reinterpret_cast<std::uintptr_t>(words);
  if (out == words) return WidenAt<SWidenInPlace>(Detail::DetectLevel(), n, out, words, divisor);
  if (outBegin + 2 * n <= wordsBegin || wordsBegin + 2 * n <= outBegin)
    return WidenAt<SWidenApart>(Detail::DetectLevel(), n, out, words, divisor);
  // Runs that overlap at an offset: word by word in ascending order.
  for (std::size_t i = 0; i < n; ++i) out[i] = WidenWord(words[i], divisor);
}

}  // namespace

bool CNuImage::ConvertType(IImage* trg, IImage const* src, EPixelType::ID pixelType,
                           EDataType::ID dataType, bool create) {
  if (!src->IsValid()) return false;
  int width;
  int height;
  src->GetSize(width, height);
  EPixelType::ID srcPixelType;
  EDataType::ID srcDataType;
  src->GetType(srcPixelType, srcDataType);
  // No try block: what Create raises reaches the caller as it is.
  if (create && !trg->Create(width, height, pixelType, dataType)) return false;
  // With create false the target is asked nothing: it must already be large enough.
  CNuImageFormat const srcFormat(width, height, srcPixelType, srcDataType);
  CNuImageFormat const trgFormat(width, height, pixelType, dataType);
  void const* srcData = src->GetDataPtr();
  void* trgData = trg->GetDataPtr();
  return ConvertMemory(trgData, srcData, trgFormat, srcFormat);
}

bool CNuImage::ConvertType(CNuImage& trg, EPixelType::ID pixelType, EDataType::ID dataType) const {
  return ConvertType(&trg, this, pixelType, dataType, true);
}

bool CNuImage::ConvertMemory(void* trg, void const* src, CNuImageFormat const& trgFormat,
                             CNuImageFormat const& srcFormat) {
  try {
    if (trgFormat.Width == srcFormat.Width && trgFormat.Height == srcFormat.Height &&
        trgFormat.PixelType == srcFormat.PixelType && trgFormat.DataType == srcFormat.DataType) {
      // Same-format shortcut: one block copy, no channel looked at, any format with a byte
      // count. memmove, because the same image may be passed as target and source.
      unsigned int const byteCount = trgFormat.GetByteCount();
      if (byteCount != 0) std::memmove(trg, src, byteCount);
      return true;
    }
    return _ConvertTrgSwitch(trg, src, trgFormat, srcFormat);
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error converting image memory", cause);
  }
}

// Target pixel type, then the Bayer gate (before any data type is looked at), then the target
// data type. The target's width and height are not passed on.
bool CNuImage::_ConvertTrgSwitch(void* trg, void const* src, CNuImageFormat const& trgFormat,
                                 CNuImageFormat const& srcFormat) {
#define NU_CONVERT_TRG_DATA_CASE_(D, E, L, C, A, R, G, B, Al)                      \
  case EDataType::D:                                                               \
    return _ConvertSrcSwitch(src, srcFormat,                                       \
                             static_cast<NU_TPIXEL(L, C, A, R, G, B, Al, D, E)*>(trg));
#define NU_CONVERT_TRG_LAYOUT_CASE_(L, C, A, R, G, B, Al, ...)                               \
  case EPixelType::L:                                                                        \
    if (IsBayer(EPixelType::L) && srcFormat.PixelType != EPixelType::L)                      \
      NU_RAISE(FileText, "Can only convert the data type of a bayer pixel type");            \
    switch (trgFormat.DataType) {                                                            \
      NU_DATA_TYPES(NU_CONVERT_TRG_DATA_CASE_, L, C, A, R, G, B, Al)                         \
      default: return false;                                                                 \
    }
  switch (trgFormat.PixelType) {
    NU_PIXEL_LAYOUTS(NU_CONVERT_TRG_LAYOUT_CASE_)
    default: return false;
  }
#undef NU_CONVERT_TRG_LAYOUT_CASE_
#undef NU_CONVERT_TRG_DATA_CASE_
}

void CNuImage::ConvertCustomType(CNuImage& target) const {
  try {
    void* trgData = target.GetDataPtr();
    void const* srcData = GetDataPtr();
    EDataType::ID const dataType = Format.DataType;
    bool const supported =
        dataType == EDataType::Custom_10in16_LSB || dataType == EDataType::Custom_12in16_LSB;
    if (trgData == srcData && !supported) NU_RAISE(FileText, "This image can't be converted in place");
    float divisor;
    if (dataType == EDataType::Custom_10in16_LSB)
      divisor = 1023.0f;
    else if (dataType == EDataType::Custom_12in16_LSB)
      divisor = 4095.0f;
    else
      NU_RAISE(FileText, CNuString("") << "This image hasn't a supported custom data type '"
                                       << CNuImageFormat::DataType2String(dataType) << "'");
    // Same byte count as the custom type: on the source itself the block is kept.
    target.Create(Format.Width, Format.Height, Format.PixelType, EDataType::UShort);
    srcData = GetDataPtr();
    trgData = target.GetDataPtr();
    // Pixels, not channels, by design: of a multi-channel image only the first
    // width * height words are widened. The product wraps in 32 bits.
    unsigned int const count = static_cast<unsigned int>(Format.Width) * static_cast<unsigned int>(Format.Height);
    if (count == 0) return;
    // Single precision throughout and no clamp: a word above the sample range wraps. In place
    // each word is read before it is written.
    Widen(count, static_cast<std::uint16_t*>(trgData), static_cast<std::uint16_t const*>(srcData), divisor);
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error converting image custom data type", cause);
  }
}

}  // namespace Nu
