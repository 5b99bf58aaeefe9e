#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>

#include <cstdint>
#include <limits>
#include <type_traits>

/// @file
/// The pixel type and data type ids, TPixel, the format record CNuImageFormat and the one list
/// of the 80 carried formats.

// The element types are part of exported symbol names and of the value rule: Byte is `char`.
static_assert(std::is_signed_v<char>, "EDataType::Byte is a signed char");
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

namespace Nu::Interop::Runtime28 {

/// Pixel type ids; most are the values of the OpenGL enumerants of the same meaning.
///
/// Stored and compared as a signed 32-bit int; any other value is an unknown id.
struct NU_CORE_EX_EXPORT EPixelType {
  /// A pixel type id: which components a pixel has, in which order in memory.
  enum ID : int {
    Void = 0,          ///< No pixel: no components.
    RGB = 6407,        ///< Red, green, blue.
    RGBA = 6408,       ///< Red, green, blue, alpha.
    Lum = 6409,        ///< Luminance.
    LumA = 6410,       ///< Luminance, alpha.
    Bayer1 = 8193,     ///< One raw mosaic sample, with no filter pattern attached: read as Lum,
                       ///< and as a target it takes only its own Bayer type.
    Bayer2 = 8194,     ///< As Bayer1, with an id of its own.
    Bayer3 = 8195,     ///< As Bayer1, with an id of its own.
    Bayer4 = 8196,     ///< As Bayer1, with an id of its own.
    BGR = 32992,       ///< Blue, green, red.
    BGRA = 32993,      ///< Blue, green, red, alpha.
    YCbCr = 34647,     ///< Two components with a size and nothing else: no TPixel, no pixel
                       ///< access, converted only to itself.
  };
};

/// Data type ids. 5127 to 5129 are unknown ids although they lie between known ones.
struct NU_CORE_EX_EXPORT EDataType {
  /// A data type id: how one component is stored.
  enum ID : int {
    Void = 0,                 ///< No storage: 0 bytes per channel.
    Custom_10in16_LSB = 10,   ///< A 10-bit sample in the low bits of a 16-bit word, the whole
                              ///< word its value; CNuImage::ConvertCustomType widens it.
    Custom_10in16_MSB = 11,   ///< A 10-bit sample in a 16-bit word whose bits are never read:
                              ///< a size and a name, no conversion.
    Custom_12in16_LSB = 12,   ///< A 12-bit sample in the low bits of a 16-bit word, the whole
                              ///< word its value; CNuImage::ConvertCustomType widens it.
    Custom_12in16_MSB = 13,   ///< A 12-bit sample in a 16-bit word whose bits are never read:
                              ///< a size and a name, no conversion.
    Byte = 5120,              ///< `char`, signed 8 bits.
    UByte = 5121,             ///< `unsigned char`.
    Short = 5122,             ///< `short`.
    UShort = 5123,            ///< `unsigned short`.
    Int = 5124,               ///< `int`.
    UInt = 5125,              ///< `unsigned int`.
    Float = 5126,             ///< `float`.
    Double = 5130,            ///< `double`.
    Integral_5per4 = 5136,    ///< Packed across pixels, five bytes per four: a byte count for
                              ///< the whole image, no bytes per channel or pixel, no name.
    Integral_3per2 = 5137,    ///< Packed across pixels, three bytes per two; as Integral_5per4.
  };
};

}  // namespace Nu::Interop::Runtime28

namespace Nu {

using Interop::Runtime28::EDataType;
using Interop::Runtime28::EPixelType;

/// The one list of the ten carried layouts:
/// X(Name, Colours, Alphas, RedIndex, GreenIndex, BlueIndex, AlphaIndex, pass-through...).
///
/// An index that a layout does not use is 0. A Bayer layout is a Lum with its own id.
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

/// The one list of the eight numeric data types: X(Name, Element, pass-through...).
#define NU_DATA_TYPES(X, ...)            \
  X(Byte, char, __VA_ARGS__)             \
  X(UByte, unsigned char, __VA_ARGS__)   \
  X(Short, short, __VA_ARGS__)           \
  X(UShort, unsigned short, __VA_ARGS__) \
  X(Int, int, __VA_ARGS__)               \
  X(UInt, unsigned int, __VA_ARGS__)     \
  X(Float, float, __VA_ARGS__)           \
  X(Double, double, __VA_ARGS__)

/// All 80 carried formats: X(Layout, Colours, Alphas, Red, Green, Blue, Alpha, DataName, Element).
#define NU_ALL_PIXELS(X) NU_PIXEL_LAYOUTS(NU_ALL_PIXELS_LAYOUT_, X)
#define NU_ALL_PIXELS_LAYOUT_(L, C, A, R, G, B, Al, X) \
  NU_DATA_TYPES(NU_ALL_PIXELS_TYPE_, L, C, A, R, G, B, Al, X)
#define NU_ALL_PIXELS_TYPE_(D, E, L, C, A, R, G, B, Al, X) X(L, C, A, R, G, B, Al, D, E)

/// The TPixel of one entry of NU_ALL_PIXELS.
#define NU_TPIXEL(L, C, A, R, G, B, Al, D, E) \
  ::Nu::TPixel<E, C, A, R, G, B, Al, ::Nu::EPixelType::L, ::Nu::EDataType::D>

/// One pixel as a plain array of its elements in memory order: no gap, nothing else, so that
/// image memory can be read as an array of TPixel.
///
/// Red, Green, Blue and Alpha are the element indices of those channels. The 80 carried
/// formats are named by TPixelOf.
template <class TElement, unsigned int Colours, unsigned int Alphas, int Red, int Green, int Blue,
          int Alpha, int PixelType, int DataType>
class NU_CORE_EX_EXPORT TPixel {
public:
  /// The type of one element (`char` for EDataType::Byte).
  using Element = TElement;
  /// The colour elements: 3, or 1 for Lum, LumA and the Bayer types.
  static constexpr unsigned int ColourCount = Colours;
  /// The alpha elements: 0 or 1.
  static constexpr unsigned int AlphaCount = Alphas;
  /// The elements of one pixel.
  static constexpr unsigned int ElementCount = Colours + Alphas;
  /// The element index of red; for a one-colour layout, of that colour.
  static constexpr int RedIndex = Red;
  /// The element index of green; 0 where there is one colour.
  static constexpr int GreenIndex = Green;
  /// The element index of blue; 0 where there is one colour.
  static constexpr int BlueIndex = Blue;
  /// The element index of alpha; 0 where there is no alpha.
  static constexpr int AlphaIndex = Alpha;
  /// The pixel type id (EPixelType::ID) of the format.
  static constexpr int PixelTypeId = PixelType;
  /// The data type id (EDataType::ID) of the format.
  static constexpr int DataTypeId = DataType;

  /// Element `index` in memory order; `index` is not tested.
  TElement& operator[](unsigned int index) noexcept { return Elements[index]; }
  /// Element `index` in memory order, read-only; `index` is not tested.
  TElement const& operator[](unsigned int index) const noexcept { return Elements[index]; }

  /// The elements in memory order.
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

// One specialisation per carried format, each checked against the format's sizes.
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
/// The TPixel of a carried format: `TPixelOf<EPixelType::RGB, EDataType::UByte>`.
///
/// There is none for the void, YCbCr, custom and integral types.
template <int PixelType, int DataType>
using TPixelOf = typename TPixelSelect<PixelType, DataType>::Type;

/// Width, height and the two type ids of an image.
///
/// Data type stands before pixel type here, while every argument list names pixel type first.
/// Sizes are computed on demand as unsigned 32-bit products that wrap without any check, by
/// design.
class CNuImageFormat {
public:
  /// All four fields zero: no size, void types.
  CNuImageFormat() noexcept = default;
  /// Stores the four values, pixel type first as in every argument list; nothing is tested.
  CNuImageFormat(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) noexcept
      : Width(width), Height(height), DataType(dataType), PixelType(pixelType) {}

  /// Components per pixel, 0 for the void type. Raises "Unknown pixel type".
  unsigned int GetComponentCount() const {
    int const count = Detail::ComponentCountOf(PixelType);
    if (count < 0) NU_RAISE(Detail::FormatFileText, "Unknown pixel type");
    return static_cast<unsigned int>(count);
  }

  /// Bytes per channel, 0 for the void type; 2 for the custom types.
  ///
  /// Raises "Unknown data type 'Unknown'" for unknown ids and the integral types.
  unsigned int GetBytesPerChannel() const {
    int const bytes = Detail::BytesPerChannelOf(DataType);
    if (bytes < 0)
      NU_RAISE(Detail::FormatFileText, CNuString("") << "Unknown data type '" << DataType2String(DataType) << "'");
    return static_cast<unsigned int>(bytes);
  }

  /// Bytes per channel times components.
  ///
  /// Refuses the integral types ("Unable to determine bytes per pixel from integral data
  /// formats"), then asks the data type before the pixel type and raises as they do.
  unsigned int GetBytesPerPixel() const {
    if (DataType == EDataType::Integral_5per4 || DataType == EDataType::Integral_3per2)
      NU_RAISE(Detail::FormatFileText, "Unable to determine bytes per pixel from integral data formats");
    unsigned int const bytes = GetBytesPerChannel();
    return bytes * GetComponentCount();
  }

  /// Width * Height, wrapping modulo 2^32.
  unsigned int GetPixelCount() const noexcept {
    return static_cast<unsigned int>(Width) * static_cast<unsigned int>(Height);
  }

  /// The bytes of the whole image, a 32-bit count that wraps without any check.
  ///
  /// The packed types ignore the pixel type: pixels * 1.25 or * 1.5 in double, cut toward zero,
  /// low 32 bits kept. Otherwise the wrapping product, data type asked before pixel type; an
  /// unknown id raises as GetBytesPerChannel and GetComponentCount do.
  unsigned int GetByteCount() const {
    if (DataType == EDataType::Integral_5per4) return PackedByteCount(1.25);
    if (DataType == EDataType::Integral_3per2) return PackedByteCount(1.5);
    unsigned int const bytes = GetBytesPerChannel();
    unsigned int const components = GetComponentCount();
    return GetPixelCount() * bytes * components;
  }

  /// The name of a data type id; "Unknown" for every id without one. Never fails.
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

  /// Pixels per row.
  int Width = 0;
  /// Rows.
  int Height = 0;
  /// How one component is stored.
  EDataType::ID DataType = EDataType::Void;
  /// Which components, in which order.
  EPixelType::ID PixelType = EPixelType::Void;

private:
  unsigned int PackedByteCount(double bytesPerPixel) const noexcept {
    double const bytes = static_cast<double>(GetPixelCount()) * bytesPerPixel;
    return static_cast<unsigned int>(static_cast<std::uint64_t>(bytes));
  }
};

static_assert(sizeof(CNuImageFormat) == 16 && std::is_trivially_copyable_v<CNuImageFormat>);

}  // namespace Nu
