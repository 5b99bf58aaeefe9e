#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageMoniker.h>

namespace Nu {
namespace {

constexpr char FileText[] = "Nu.Core.Ex/NuImageMoniker.cpp";

}  // namespace

CNuImageMoniker::CNuImageMoniker() : Format(), Data(nullptr) {}

CNuImageMoniker::CNuImageMoniker(CNuImageFormat const& format, void const* data)
    : CNuImageMoniker() {
  Create(format, data);
}

CNuImageMoniker::CNuImageMoniker(CNuImageMoniker const& other)
    : IImage(), Format(other.Format), Data(other.Data) {}

CNuImageMoniker::CNuImageMoniker(CNuImageMoniker&& other) noexcept
    : IImage(), Format(other.Format), Data(other.Data) {
  other.Format = CNuImageFormat();
  other.Data = nullptr;
}

CNuImageMoniker& CNuImageMoniker::operator=(CNuImageMoniker const& other) {
  Format = other.Format;
  Data = other.Data;
  return *this;
}

CNuImageMoniker& CNuImageMoniker::operator=(CNuImageMoniker&& other) noexcept {
  // No self-move test: as with the image, a moniker moved onto itself ends empty.
  Format = other.Format;
  Data = other.Data;
  other.Format = CNuImageFormat();
  other.Data = nullptr;
  return *this;
}

CNuImageMoniker::~CNuImageMoniker() { CNuImageMoniker::Destroy(); }

bool CNuImageMoniker::Create(int width, int height, EPixelType::ID pixelType,
                             EDataType::ID dataType) {
  return Create(width, height, pixelType, dataType, nullptr);
}

// No wrap: the format's raise reaches the caller as it is, with the rejected format left in
// place and no memory, so that the next size query raises in its turn.
bool CNuImageMoniker::Create(int width, int height, EPixelType::ID pixelType,
                             EDataType::ID dataType, void const* data) {
  Destroy();
  if (width <= 0 || height <= 0) return false;
  Format = CNuImageFormat(width, height, pixelType, dataType);
  if (Format.GetBytesPerPixel() == 0) {
    Format = CNuImageFormat();
    return false;
  }
  Data = const_cast<void*>(data);
  return true;
}

// Refuses before touching anything: unlike the five-argument form, no Destroy runs first.
bool CNuImageMoniker::Create(IImage const* image) {
  if (image == nullptr || !image->IsValid()) return false;
  void const* data = image->GetDataPtr();
  EPixelType::ID pixelType;
  EDataType::ID dataType;
  image->GetType(pixelType, dataType);
  int width;
  int height;
  image->GetSize(width, height);
  Create(CNuImageFormat(width, height, pixelType, dataType), data);
  return true;
}

bool CNuImageMoniker::Destroy() {
  Data = nullptr;
  Format = CNuImageFormat();
  return true;
}

bool CNuImageMoniker::IsValid() const { return Data != nullptr; }
unsigned int CNuImageMoniker::GetBytesPerPixel() const { return Format.GetBytesPerPixel(); }
unsigned int CNuImageMoniker::GetPixelCount() const { return Format.GetPixelCount(); }
unsigned int CNuImageMoniker::GetByteCount() const { return Format.GetByteCount(); }

void CNuImageMoniker::GetSize(int& width, int& height) const {
  width = Format.Width;
  height = Format.Height;
}

void CNuImageMoniker::GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const {
  pixelType = Format.PixelType;
  dataType = Format.DataType;
}

void CNuImageMoniker::GetType(int& pixelType, int& dataType) const {
  pixelType = Format.PixelType;
  dataType = Format.DataType;
}

void* CNuImageMoniker::GetDataPtr() { return Data; }
void const* CNuImageMoniker::GetDataPtr() const { return Data; }

void CNuImageMoniker::Set(void const* data) { Data = const_cast<void*>(data); }

bool CNuImageMoniker::Create(CNuImage const& image) {
  if (!Create(static_cast<IImage const*>(&image))) NU_RAISE(FileText, "Error creating image moniker");
  return true;
}

bool CNuImageMoniker::Create(int width, int height, int pixelType, int dataType, void const* data) {
  if (!Create(width, height, static_cast<EPixelType::ID>(pixelType),
              static_cast<EDataType::ID>(dataType), data))
    NU_RAISE(FileText, "Error creating image moniker");
  return true;
}

bool CNuImageMoniker::Create(CNuImageFormat const& format, void const* data) {
  if (!Create(format.Width, format.Height, format.PixelType, format.DataType, data))
    NU_RAISE(FileText, "Error creating image moniker");
  return true;
}

}  // namespace Nu
