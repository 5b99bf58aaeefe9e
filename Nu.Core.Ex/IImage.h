#pragma once
#include <Nu.Core.Ex/NuImageFormat.h>

namespace Nu::Interop::Runtime28 {

// The interop face of an image: one gapless run of packed pixels, row after row. The order of
// the operations is a published binary interface. There is no virtual destructor: an IImage
// pointer never owns the object behind it.
class IImage {
public:
  virtual bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) = 0;
  virtual bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType,
                      void const* data) = 0;
  virtual bool Create(IImage const* image) = 0;
  virtual bool Destroy() = 0;
  virtual bool IsValid() const = 0;
  virtual unsigned int GetBytesPerPixel() const = 0;
  virtual unsigned int GetPixelCount() const = 0;
  virtual unsigned int GetByteCount() const = 0;
  virtual void GetSize(int& width, int& height) const = 0;
  virtual void GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const = 0;
  virtual void* GetDataPtr() = 0;
  virtual void const* GetDataPtr() const = 0;

protected:
  IImage() = default;
  IImage(IImage const&) = default;
  IImage& operator=(IImage const&) = default;
  ~IImage() = default;
};

}  // namespace Nu::Interop::Runtime28

namespace Nu {
using Interop::Runtime28::IImage;
}
