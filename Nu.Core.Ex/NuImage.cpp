#include <Nu.Core.Ex/NuImage.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Nu {
namespace {

constexpr char FileText[] = "Nu.Core.Ex/NuImage.cpp";

// Pixel access computes y * width as a wrapping signed 32-bit product and widens only that.
// The address is formed as an integer: the access is unchecked by design, and a wild
// coordinate or a null block must not turn into undefined pointer arithmetic before the copy.
template <class TPixelType>
inline std::uintptr_t PixelAddress(void const* data, int width, int x, int y) noexcept {
  auto const row = static_cast<int>(static_cast<unsigned int>(y) * static_cast<unsigned int>(width));
  std::int64_t const index = static_cast<std::int64_t>(row) + static_cast<std::int64_t>(x);
  return reinterpret_cast<std::uintptr_t>(data) +
         static_cast<std::uintptr_t>(index) * sizeof(TPixelType);
}

}  // namespace

CNuImage::CNuImage() : Format(), Data(nullptr), AttachedTag(0), AttachedValue(0), IsMoniker(false) {
  CNuImage::Destroy();
}

CNuImage::CNuImage(CNuImageFormat const& format) : CNuImage() { Create(format); }

CNuImage::CNuImage(CNuImage const& image) : CNuImage() { Create(image); }

CNuImage::CNuImage(CNuImage&& image) : CNuImage() { Create(std::move(image)); }

CNuImage& CNuImage::operator=(CNuImage const& image) {
  Create(image);
  return *this;
}

CNuImage& CNuImage::operator=(CNuImage&& image) {
  Create(std::move(image));
  return *this;
}

CNuImage::~CNuImage() { CNuImage::Destroy(); }

bool CNuImage::Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) {
  return Create(width, height, pixelType, dataType, nullptr);
}

bool CNuImage::Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType,
                      void const* data) {
  try {
    if (width <= 0 || height <= 0) NU_RAISE(FileText, "Image width or height is 0");
    // Both counts are known before anything changes, so a bad present or requested format
    // leaves the image untouched. The decision looks at byte counts alone: that is what lets a
    // block serve every format of the same size without a new allocation.
    unsigned int const presentBytes = Format.GetByteCount();
    CNuImageFormat const requested(width, height, pixelType, dataType);
    unsigned int const byteCount = requested.GetByteCount();
    if (presentBytes != byteCount) {
      Destroy();
      void* block = std::malloc(byteCount);
      if (block == nullptr) NU_RAISE(FileText, "Out of memory");
      Data = block;
      IsMoniker = false;
    }
    Format = requested;
    // memmove: a copy of an image onto itself or onto a borrowed view of itself overlaps.
    if (data != nullptr && byteCount != 0) std::memmove(Data, data, byteCount);
    return true;
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error creating image", cause);
  }
}

bool CNuImage::Create(IImage const* image) {
  try {
    if (image == nullptr || !image->IsValid()) NU_RAISE(FileText, "Given image is invalid");
    EPixelType::ID pixelType;
    EDataType::ID dataType;
    image->GetType(pixelType, dataType);
    int width;
    int height;
    image->GetSize(width, height);
    void const* data = image->GetDataPtr();
    return Create(width, height, pixelType, dataType, data);
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error creating image copy", cause);
  }
}

bool CNuImage::Create(CNuImageFormat const& format) {
  return Create(format.Width, format.Height, format.PixelType, format.DataType, nullptr);
}

bool CNuImage::Create(CNuImageFormat const& format, void const* data) {
  return Create(format.Width, format.Height, format.PixelType, format.DataType, data);
}

void CNuImage::Create(CNuImage const& image) {
  Create(static_cast<IImage const*>(&image));
  AttachedTag = image.AttachedTag;
  AttachedValue = image.AttachedValue;
}

// No self-move test: Destroy runs first, so a self-move ends empty with its block released.
void CNuImage::Create(CNuImage&& image) {
  Destroy();
  Format = image.Format;
  Data = image.Data;
  AttachedTag = image.AttachedTag;
  AttachedValue = image.AttachedValue;
  IsMoniker = image.IsMoniker;
  image.Data = nullptr;
  image.Destroy();
}

void CNuImage::CreateMoniker(CNuImageFormat const& format, void* data, double attachedValue,
                             unsigned int attachedTag) {
  Destroy();
  Format = format;
  AttachedValue = attachedValue;
  Data = data;
  AttachedTag = attachedTag;
  IsMoniker = true;
}

bool CNuImage::Destroy() {
  if (Data != nullptr && !IsMoniker) std::free(Data);
  Format = CNuImageFormat();
  Data = nullptr;
  AttachedTag = 0;
  AttachedValue = 0;
  IsMoniker = false;
  return true;
}

// The order is part of the contract and is not a plain exchange: where this image owned its
// block, the move-assignment below releases the block that `image` has just been given.
void CNuImage::Swap(CNuImage& image) {
  CNuImage temporary(std::move(image));
  image.Format = Format;
  image.Data = Data;
  image.AttachedTag = AttachedTag;
  image.AttachedValue = AttachedValue;
  image.IsMoniker = IsMoniker;
  *this = std::move(temporary);
}

bool CNuImage::IsValid() const { return Data != nullptr; }
unsigned int CNuImage::GetBytesPerPixel() const { return Format.GetBytesPerPixel(); }
unsigned int CNuImage::GetPixelCount() const { return Format.GetPixelCount(); }
unsigned int CNuImage::GetByteCount() const { return Format.GetByteCount(); }

void CNuImage::GetSize(int& width, int& height) const {
  width = Format.Width;
  height = Format.Height;
}

void CNuImage::GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const {
  pixelType = Format.PixelType;
  dataType = Format.DataType;
}

void* CNuImage::GetDataPtr() { return Data; }
void const* CNuImage::GetDataPtr() const { return Data; }

#define NU_PIXEL_ACCESS_DEFINE_(L, C, A, R, G, B, Al, D, E)                                   \
  void CNuImage::GetPixel(NU_TPIXEL(L, C, A, R, G, B, Al, D, E) & pixel, int x, int y) const { \
    using Pixel = NU_TPIXEL(L, C, A, R, G, B, Al, D, E);                                      \
    std::memcpy(&pixel, reinterpret_cast<void const*>(PixelAddress<Pixel>(Data, Format.Width, x, y)), \
                sizeof(Pixel));                                                               \
  }                                                                                           \
  void CNuImage::SetPixel(NU_TPIXEL(L, C, A, R, G, B, Al, D, E) const& pixel, int x, int y) {  \
    using Pixel = NU_TPIXEL(L, C, A, R, G, B, Al, D, E);                                      \
    std::memcpy(reinterpret_cast<void*>(PixelAddress<Pixel>(Data, Format.Width, x, y)), &pixel, \
                sizeof(Pixel));                                                               \
  }
NU_ALL_PIXELS(NU_PIXEL_ACCESS_DEFINE_)
#undef NU_PIXEL_ACCESS_DEFINE_

// False on every path, by design: callers are not to lean on the result.
bool CNuImage::Set(void const* data) {
  if (!IsValid()) return false;
  if (IsMoniker) return false;
  unsigned int const byteCount = Format.GetByteCount();
  if (byteCount != 0) std::memmove(Data, data, byteCount);
  return false;
}

void CNuImage::SetZero() {
  try {
    if (!IsValid()) NU_RAISE(FileText, "This image is invalid");
    unsigned int const byteCount = GetByteCount();
    if (byteCount != 0) std::memset(Data, 0, byteCount);
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED(FileText, "Error setting image to zero", cause);
  }
}

// The seeds -1e9 and 1e9 are inner limits of the measured range, and the pixel count is asked
// of the virtual GetPixelCount before every pixel: both are part of the contract.
bool CNuImage::Normalize() {
  if (Format.DataType != EDataType::Float || Format.PixelType != EPixelType::Lum) return false;
  auto* pixels = static_cast<float*>(Data);
  float max = -1e9f;
  float min = 1e9f;
  for (unsigned int i = 0; i < GetPixelCount(); ++i) {
    float const p = pixels[i];
    if (p > max) max = p;
    if (p < min) min = p;
  }
  float const range = max - min;
  if (!(static_cast<double>(range) > 1e-9)) return true;
  for (unsigned int i = 0; i < GetPixelCount(); ++i) pixels[i] = (pixels[i] - min) / range;
  return true;
}

}  // namespace Nu
