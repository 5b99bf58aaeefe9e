#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <cstdint>
#include <limits>
#include <type_traits>

// The element types are part of exported symbol names and of the value rule: Byte is `char`.
static_assert(std::is_signed_v<char>, "EDataType::Byte is a signed char");
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

namespace Nu::Interop::Runtime28 {

// Pixel type ids; most are the values of the OpenGL enumerants of the same meaning.
// Stored and compared as a signed 32-bit int; any other value is an unknown id.
struct NU_CORE_EX_EXPORT EPixelType {
  enum ID : int {
    Void = 0,
    RGB = 6407,
    RGBA = 6408,
    Lum = 6409,
    LumA = 6410,
    Bayer1 = 8193,
    Bayer2 = 8194,
    Bayer3 = 8195,
    Bayer4 = 8196,
    BGR = 32992,
    BGRA = 32993,
    YCbCr = 34647,
  };
};

// Data type ids. 5127 to 5129 are unknown ids although they lie between known ones.
struct NU_CORE_EX_EXPORT EDataType {
  enum ID : int {
    Void = 0,
    Custom_10in16_LSB = 10,
    Custom_10in16_MSB = 11,
    Custom_12in16_LSB = 12,
    Custom_12in16_MSB = 13,
    Byte = 5120,
    UByte = 5121,
    Short = 5122,
    UShort = 5123,
    Int = 5124,
    UInt = 5125,
    Float = 5126,
    Double = 5130,
    Integral_5per4 = 5136,
    Integral_3per2 = 5137,
  };
};

}  // namespace Nu::Interop::Runtime28

namespace Nu {

using Interop::Runtime28::EDataType;
using Interop::Runtime28::EPixelType;

// The one list of the ten carried layouts:
// X(Name, Colours, Alphas, RedIndex, GreenIndex, BlueIndex, AlphaIndex, pass-through...).
// An index that a layout does not use is 0. A Bayer layout is a Lum with its own id.
#define NU_PIXEL_LAYOUTS(X, ...)            \
  X(RGBA, 3u, 1u, 0, 1, 2, 3, __VA_ARGS__)   \
  X(RGB, 3u, 0u, 0, 1, 2, 0, __VA_ARGS__)    \
  X(BGRA, 3u, 1u, 2, 1, 0, 3, __VA_ARGS__)   \
  X(BGR, 3u, 0u, 2, 1, 0, 0, __VA_ARGS__)    \
  X(Lum, 1u, 0u, 0, 0, 0, 0, __VA_ARGS__)    \
  X(LumA, 1u, 1u, 0, 0, 0, 1, __VA_ARGS__)   \
  X(Bayer1, 1u, 0u, 0, 0, 0, 0, __VA_ARGS__) \
  X(Bayer2, 1u, 0u, 0, 0, 0, 0, __VA_ARGS__) \
  X(Bayer3, 1u, 0u, 0, 0, 0, 0, __VA_ARGS__) \
  X(Bayer4, 1u, 0u, 0, 0, 0, 0, __VA_ARGS__)

// The one list of the eight numeric data types: X(Name, Element, pass-through...).
#define NU_DATA_TYPES(X, ...)            \
  X(Byte, char, __VA_ARGS__)             \
  X(UByte, unsigned char, __VA_ARGS__)   \
  X(Short, short, __VA_ARGS__)           \
  X(UShort, unsigned short, __VA_ARGS__) \
  X(Int, int, __VA_ARGS__)               \
  X(UInt, unsigned int, __VA_ARGS__)     \
  X(Float, float, __VA_ARGS__)           \
  X(Double, double, __VA_ARGS__)

// All 80 carried formats: X(Layout, Colours, Alphas, Red, Green, Blue, Alpha, DataName, Element).
#define NU_ALL_PIXELS(X) NU_PIXEL_LAYOUTS(NU_ALL_PIXELS_LAYOUT_, X)
#define NU_ALL_PIXELS_LAYOUT_(L, C, A, R, G, B, Al, X) \
  NU_DATA_TYPES(NU_ALL_PIXELS_TYPE_, L, C, A, R, G, B, Al, X)
#define NU_ALL_PIXELS_TYPE_(D, E, L, C, A, R, G, B, Al, X) X(L, C, A, R, G, B, Al, D, E)

// The TPixel of one entry of NU_ALL_PIXELS.
#define NU_TPIXEL(L, C, A, R, G, B, Al, D, E) \
  ::Nu::TPixel<E, C, A, R, G, B, Al, ::Nu::EPixelType::L, ::Nu::EDataType::D>

// One pixel as a plain array of its elements in memory order: no gap, nothing else, so that
// image memory can be read as an array of TPixel. Red, Green, Blue and Alpha are the element
// indices of those channels.
template <class TElement, unsigned int Colours, unsigned int Alphas, int Red, int Green, int Blue,
          int Alpha, int PixelType, int DataType>
class NU_CORE_EX_EXPORT TPixel {
public:
  using Element = TElement;
  static constexpr unsigned int ColourCount = Colours;
  static constexpr unsigned int AlphaCount = Alphas;
  static constexpr unsigned int ElementCount = Colours + Alphas;
  static constexpr int RedIndex = Red;
  static constexpr int GreenIndex = Green;
  static constexpr int BlueIndex = Blue;
  static constexpr int AlphaIndex = Alpha;
  static constexpr int PixelTypeId = PixelType;
  static constexpr int DataTypeId = DataType;

  TElement& operator[](unsigned int index) noexcept { return Elements[index]; }
  TElement const& operator[](unsigned int index) const noexcept { return Elements[index]; }

  TElement Elements[Colours + Alphas];
};

namespace Detail {

inline constexpr char FormatFileText[] = "Nu.Core.Ex/NuImageFormat.h";

// Components per pixel, or -1 for an unknown pixel type id.
constexpr int ComponentCountOf(int pixelType) noexcept {
  switch (pixelType) {
    case EPixelType::Void: return 0;
    case EPixelType::Lum:
    case EPixelType::Bayer1:
    case EPixelType::Bayer2:
    case EPixelType::Bayer3:
    case EPixelType::Bayer4: return 1;
    case EPixelType::LumA:
    case EPixelType::YCbCr: return 2;
    case EPixelType::RGB:
    case EPixelType::BGR: return 3;
    case EPixelType::RGBA:
    case EPixelType::BGRA: return 4;
    default: return -1;
  }
}

// Bytes per channel, or -1 for an unknown id and for the integral types, which have none.
constexpr int BytesPerChannelOf(int dataType) noexcept {
  switch (dataType) {
    case EDataType::Void: return 0;
    case EDataType::Byte:
    case EDataType::UByte: return 1;
    case EDataType::Custom_10in16_LSB:
    case EDataType::Custom_10in16_MSB:
    case EDataType::Custom_12in16_LSB:
    case EDataType::Custom_12in16_MSB:
    case EDataType::Short:
    case EDataType::UShort: return 2;
    case EDataType::Int:
    case EDataType::UInt:
    case EDataType::Float: return 4;
    case EDataType::Double: return 8;
    default: return -1;
  }
}

}  // namespace Detail

// TPixelOf<EPixelType::RGB, EDataType::UByte> names the TPixel of a carried format.
template <int PixelType, int DataType>
struct TPixelSelect;
#define NU_TPIXEL_SELECT_(L, C, A, R, G, B, Al, D, E)                  \
  template <>                                                          \
  struct TPixelSelect<EPixelType::L, EDataType::D> {                   \
    using Type = NU_TPIXEL(L, C, A, R, G, B, Al, D, E);                \
    static_assert(sizeof(Type) == sizeof(E) * (C + A));                \
    static_assert(sizeof(E) == Detail::BytesPerChannelOf(EDataType::D)); \
    static_assert(C + A == Detail::ComponentCountOf(EPixelType::L));   \
    static_assert(std::is_standard_layout_v<Type>);                    \
    static_assert(std::is_trivially_copyable_v<Type>);                 \
  };
NU_ALL_PIXELS(NU_TPIXEL_SELECT_)
#undef NU_TPIXEL_SELECT_
template <int PixelType, int DataType>
using TPixelOf = typename TPixelSelect<PixelType, DataType>::Type;

// Width, height and the two type ids of an image. Data type stands before pixel type here,
// while every argument list names pixel type first. Sizes are computed on demand as unsigned
// 32-bit products that wrap without any check, by design.
class CNuImageFormat {
public:
  CNuImageFormat() noexcept = default;
  CNuImageFormat(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) noexcept
      : Width(width), Height(height), DataType(dataType), PixelType(pixelType) {}

  // Raises "Unknown pixel type".
  unsigned int GetComponentCount() const {
    int const count = Detail::ComponentCountOf(PixelType);
    if (count < 0) NU_RAISE(Detail::FormatFileText, "Unknown pixel type");
    return static_cast<unsigned int>(count);
  }

  // Raises "Unknown data type 'Unknown'" for unknown ids and the integral types.
  unsigned int GetBytesPerChannel() const {
    int const bytes = Detail::BytesPerChannelOf(DataType);
    if (bytes < 0)
      NU_RAISE(Detail::FormatFileText, CNuString("") << "Unknown data type '" << DataType2String(DataType) << "'");
    return static_cast<unsigned int>(bytes);
  }

  // Refuses the integral types, then asks the data type before the pixel type.
  unsigned int GetBytesPerPixel() const {
    if (DataType == EDataType::Integral_5per4 || DataType == EDataType::Integral_3per2)
      NU_RAISE(Detail::FormatFileText, "Unable to determine bytes per pixel from integral data formats");
    unsigned int const bytes = GetBytesPerChannel();
    return bytes * GetComponentCount();
  }

  // Width * Height, wrapping modulo 2^32.
  unsigned int GetPixelCount() const noexcept {
    return static_cast<unsigned int>(Width) * static_cast<unsigned int>(Height);
  }

  // The packed types ignore the pixel type: pixels * 1.25 or * 1.5 in double, cut toward zero,
  // low 32 bits kept. Otherwise the wrapping product, data type asked before pixel type.
  unsigned int GetByteCount() const {
    if (DataType == EDataType::Integral_5per4) return PackedByteCount(1.25);
    if (DataType == EDataType::Integral_3per2) return PackedByteCount(1.5);
    unsigned int const bytes = GetBytesPerChannel();
    unsigned int const components = GetComponentCount();
    return GetPixelCount() * bytes * components;
  }

  // The name of a data type id; "Unknown" for every id without one. Never fails.
  static CNuString DataType2String(EDataType::ID id) {
    switch (id) {
      case EDataType::Void: return "Void";
      case EDataType::Byte: return "Byte";
      case EDataType::UByte: return "UByte";
      case EDataType::Short: return "Short";
      case EDataType::UShort: return "UShort";
      case EDataType::Int: return "Int";
      case EDataType::UInt: return "UInt";
      case EDataType::Float: return "Float";
      case EDataType::Double: return "Double";
      case EDataType::Custom_10in16_LSB: return "Custom_10in16_LSB";
      case EDataType::Custom_10in16_MSB: return "Custom_10in16_MSB";
      case EDataType::Custom_12in16_LSB: return "Custom_12in16_LSB";
      case EDataType::Custom_12in16_MSB: return "Custom_12in16_MSB";
      default: return "Unknown";
    }
  }

  int Width = 0;
  int Height = 0;
  EDataType::ID DataType = EDataType::Void;
  EPixelType::ID PixelType = EPixelType::Void;

private:
  unsigned int PackedByteCount(double bytesPerPixel) const noexcept {
    double const bytes = static_cast<double>(GetPixelCount()) * bytesPerPixel;
    return static_cast<unsigned int>(static_cast<std::uint64_t>(bytes));
  }
};

static_assert(sizeof(CNuImageFormat) == 16 && std::is_trivially_copyable_v<CNuImageFormat>);

}  // namespace Nu
