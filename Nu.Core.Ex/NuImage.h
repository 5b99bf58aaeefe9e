#pragma once
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Ex/NuImageFormat.h>

namespace Nu {

/// The owning image: one malloc block of packed pixels (rows without gaps) and the format that
/// says what it holds.
///
/// Create may be called again and again and keeps the block whenever the byte count stays the
/// same. CreateMoniker makes the image borrow foreign memory instead. Failures are CNuException;
/// the wrapping operations name themselves in the outer message.
class NU_CORE_EX_EXPORT CNuImage : public IImage {
public:
  /// The empty image: no format, no memory.
  CNuImage();
  /// Create(format): sizes the image and leaves the pixels unset; raises as Create does.
  explicit CNuImage(CNuImageFormat const& format);
  /// Create(image): copies the pixels; raises "Error creating image copy" for an image without
  /// memory.
  CNuImage(CNuImage const& image);
  /// Create(std::move(image)): takes over the block and empties `image`.
  CNuImage(CNuImage&& image);
  /// Create(image) and returns this image. Raises "Error creating image copy"; a source without
  /// memory leaves this image unchanged.
  CNuImage& operator=(CNuImage const& image);
  /// Create(std::move(image)) and returns this image. Self-move leaves the image empty, by
  /// design.
  CNuImage& operator=(CNuImage&& image);

  // ---- IImage ----
  /// Create(width, height, pixelType, dataType, nullptr).
  bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) override;
  /// Sizes the image, reusing the block when the byte count is unchanged (pixels then stay as
  /// they were), copies the byte count from `data` when it is non-null.
  ///
  /// A new block comes from malloc and is not cleared; a reused block may be borrowed memory.
  /// Returns true or raises "Error creating image" around the cause; a bad size or id leaves
  /// the image untouched, a failed malloc ("Out of memory") leaves it empty.
  bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType,
              void const* data) override;
  /// A copy of another image's format and pixels; raises "Error creating image copy".
  ///
  /// A null image or one without memory ("Given image is invalid") leaves this image as it was.
  bool Create(IImage const* image) override;
  /// Releases an own block (never a borrowed one) and returns to the empty state. Always true.
  bool Destroy() override;
  bool IsValid() const override;
  unsigned int GetBytesPerPixel() const override;
  unsigned int GetPixelCount() const override;
  unsigned int GetByteCount() const override;
  void GetSize(int& width, int& height) const override;
  void GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const override;
  void* GetDataPtr() override;
  void const* GetDataPtr() const override;
  /// Destroy(): frees an own block.
  virtual ~CNuImage();

  /// The five-argument Create with the fields of `format` and no data.
  bool Create(CNuImageFormat const& format);
  /// The five-argument Create with the fields of `format` and `data`.
  bool Create(CNuImageFormat const& format, void const* data);
  /// Copies format and pixels through Create(IImage const*), then tag and value; the copy owns
  /// its block even where `image` borrows.
  void Create(CNuImage const& image);
  /// Takes over everything of `image` and empties it. No self-move test: a self-move empties.
  void Create(CNuImage&& image);
  /// Borrows `data` (kept, never freed) under `format`, which is not validated.
  ///
  /// Destroys first. The value and the tag ride with the image; the library never reads them.
  void CreateMoniker(CNuImageFormat const& format, void* data, double attachedValue,
                     unsigned int attachedTag);
  /// Gives this image what `image` held, and `image` this image's former members.
  ///
  /// Kept in its historic order (move out, member copy, move back): where this image owned its
  /// block, `image` ends with a pointer to memory that has been released.
  void Swap(CNuImage& image);

  // ---- pixel access: one overload per carried TPixel, with no test of any kind ----
  // The pixel at Data + (int64(y * Width) + int64(x)) * sizeof(pixel); y * Width wraps in 32 bits.
#define NU_PIXEL_ACCESS_DECLARE_(L, C, A, R, G, B, Al, D, E)                              \
  /** Copies the pixel at (x, y) into `pixel`, element by element, with no test of any kind. \
      One overload per carried TPixel: L is a layout (RGBA to Bayer4), D a data type (Byte   \
      to Double). The address is Data + (int64(y * Width) + int64(x)) * sizeof(pixel), and  \
      y * Width wraps in 32 bits: coordinates, memory and format are not looked at. */       \
  void GetPixel(NU_TPIXEL(L, C, A, R, G, B, Al, D, E) & pixel, int x, int y) const;         \
  /** Copies `pixel` to (x, y), element by element, with no test of any kind; the address is \
      that of GetPixel. Writes into borrowed memory as well. */                               \
  void SetPixel(NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const& pixel, int x, int y);
  NU_ALL_PIXELS(NU_PIXEL_ACCESS_DECLARE_)
#undef NU_PIXEL_ACCESS_DECLARE_

  // ---- whole-image operations ----
  /// Copies GetByteCount bytes from `data` unless the image has no memory or borrows it.
  ///
  /// Returns false on every path, by design; raises an unknown id's message unwrapped.
  bool Set(void const* data);
  /// Zeroes the memory, also borrowed memory. Raises "Error setting image to zero".
  ///
  /// An image without memory raises it around "This image is invalid".
  void SetZero();
  /// Stretches Lum/Float pixels to 0..1 in place and returns true; false for every other format.
  ///
  /// Min starts at 1e9 and max at -1e9, by design: min never rises above 1e9, max never falls
  /// below -1e9. A range of 1e-9 or less, or NaN, leaves the pixels as they are. Tests neither
  /// memory nor borrowing, and raises nothing.
  bool Normalize();

  // ---- conversion ----
  /// Converts `src` into `trg` as pixelType/dataType with the source's size; creates the target
  /// first when `create` is true.
  ///
  /// With `create` false only the target's memory is used: it must already be large enough. False
  /// when the source is invalid, Create refuses or the pair is not carried; raises "Error
  /// converting image memory" (Create's own raises pass as they are).
  static bool ConvertType(IImage* trg, IImage const* src, EPixelType::ID pixelType,
                          EDataType::ID dataType, bool create);
  /// ConvertType(&trg, this, pixelType, dataType, true).
  bool ConvertType(CNuImage& trg, EPixelType::ID pixelType, EDataType::ID dataType) const;
  /// Raw memory: one block copy for equal formats, else the loop of the format pair.
  ///
  /// True, false for an uncarried pair, or raises "Error converting image memory" around the
  /// cause: an unknown id in the block copy, a Bayer target from another pixel type. Only the
  /// source's width and height count; nothing is written on a raise.
  static bool ConvertMemory(void* trg, void const* src, CNuImageFormat const& trgFormat,
                            CNuImageFormat const& srcFormat);
  /// Chooses the target TPixel (target pixel type, Bayer gate, target data type).
  ///
  /// False for an uncarried target; raises "Can only convert the data type of a bayer pixel
  /// type" for a Bayer target from another pixel type.
  static bool _ConvertTrgSwitch(void* trg, void const* src, CNuImageFormat const& trgFormat,
                                CNuImageFormat const& srcFormat);
  /// Chooses the source TPixel (source pixel type, source data type); one per target TPixel.
  ///
  /// False for an uncarried source.
  template <class TTrg>
  static bool _ConvertSrcSwitch(void const* src, CNuImageFormat const& srcFormat, TTrg* trg);
  /// The loop of one format pair over `count` pixels. Always true.
  template <class TTrg, class TSrc>
  static bool _Convert(unsigned int count, TTrg* trg, TSrc const* src);
  /// Widens a Custom_10in16_LSB or Custom_12in16_LSB image to UShort into `target`, which may
  /// be this image. Raises "Error converting image custom data type".
  ///
  /// Each word becomes w / 1023 (or 4095) * 65535 in single precision, truncated, with no clamp:
  /// a word above the range wraps. Only the first width * height words are widened, pixels and
  /// not channels, by design. Any other data type raises before `target` is touched.
  void ConvertCustomType(CNuImage& target) const;

protected:
  /// Width, height and the two type ids.
  CNuImageFormat Format;
  /// The pixel memory: an own malloc block, borrowed memory (IsMoniker) or null.
  void* Data;
  /// Set by CreateMoniker and carried along; the library never reads it.
  unsigned int AttachedTag;
  /// Set by CreateMoniker and carried along; the library never reads it.
  double AttachedValue;
  /// True when Data is borrowed: Destroy never frees it and Set refuses it.
  bool IsMoniker;
};

}  // namespace Nu
