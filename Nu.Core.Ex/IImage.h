#pragma once
#include <Nu.Core.Ex/NuImageFormat.h>

namespace Nu::Interop::Runtime28 {

/// The interop face of an image: one gapless run of packed pixels, row after row.
///
/// The order of the operations is a published binary interface. There is no virtual
/// destructor: an IImage pointer never owns the object behind it. Nu::CNuImage owns its
/// memory, Nu::CNuImageMoniker views foreign memory; their entries say what false means and
/// what each raises.
class IImage {
public:
  /// The five-argument Create with no pixel data.
  virtual bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) = 0;
  /// Gives the image a format and, where `data` is non-null, its pixels.
  ///
  /// An owning image copies the pixels, a view keeps the pointer.
  virtual bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType,
                      void const* data) = 0;
  /// Takes the format and pixels of `image`: an owning image copies them, a view shares them.
  virtual bool Create(IImage const* image) = 0;
  /// Returns to the empty state, releasing only memory of its own. Always true.
  virtual bool Destroy() = 0;
  /// True when the image has memory: a format may stand without it.
  virtual bool IsValid() const = 0;
  /// The bytes per pixel of the format: 0 for a void type.
  ///
  /// Raises as CNuImageFormat::GetBytesPerPixel does: for the integral data types and for
  /// unknown ids.
  virtual unsigned int GetBytesPerPixel() const = 0;
  /// Width * height, an unsigned 32-bit product that wraps without any check.
  virtual unsigned int GetPixelCount() const = 0;
  /// The bytes of the whole image, a 32-bit count that wraps without any check.
  ///
  /// Raises as CNuImageFormat::GetByteCount does, for unknown ids.
  virtual unsigned int GetByteCount() const = 0;
  /// Writes the width to `width` and the height to `height`.
  virtual void GetSize(int& width, int& height) const = 0;
  /// Writes the pixel type to `pixelType` and the data type to `dataType`.
  virtual void GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const = 0;
  /// The pixel memory, null when there is none.
  virtual void* GetDataPtr() = 0;
  /// The pixel memory, read-only; null when there is none.
  virtual void const* GetDataPtr() const = 0;

protected:
  /// Only a derived class constructs the interface part.
  IImage() = default;
  /// Only a derived class copies the interface part.
  IImage(IImage const&) = default;
  /// Only a derived class assigns the interface part.
  IImage& operator=(IImage const&) = default;
  /// Not virtual: an IImage pointer never owns, so nothing is deleted through it.
  ~IImage() = default;
};

}  // namespace Nu::Interop::Runtime28

namespace Nu {
using Interop::Runtime28::IImage;
}
