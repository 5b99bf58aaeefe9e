#pragma once
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core.Ex/NuImageFormat.h>

namespace Nu {

class CNuImage;

/// The IImage interface over memory that belongs to someone else: a format and a pointer.
///
/// It never allocates, copies pixels or releases anything; the memory must outlive its use.
/// Unlike CNuImage it refuses bad sizes and void types with false and lets format raises out
/// bare.
class NU_CORE_EX_EXPORT CNuImageMoniker : public IImage {
public:
  /// Empty: no format, no memory.
  CNuImageMoniker();
  /// Empties, then the throwing Create(format, data).
  CNuImageMoniker(CNuImageFormat const& format, void const* data);
  /// Copies format and pointer: two monikers of one memory.
  CNuImageMoniker(CNuImageMoniker const& other);
  /// Copies format and pointer, then empties `other`.
  CNuImageMoniker(CNuImageMoniker&& other) noexcept;
  /// Copies format and pointer over the old ones; nothing is released.
  CNuImageMoniker& operator=(CNuImageMoniker const& other);
  /// Copies format and pointer, then empties `other`; a self-move empties.
  CNuImageMoniker& operator=(CNuImageMoniker&& other) noexcept;

  // ---- IImage ----
  /// Create(width, height, pixelType, dataType, nullptr): a format without memory, not valid.
  bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType) override;
  /// Empties first; false for a size <= 0 or a void type (moniker left empty); raises the
  /// format's own message for integral or unknown types; else keeps `data`, even null.
  bool Create(int width, int height, EPixelType::ID pixelType, EDataType::ID dataType,
              void const* data) override;
  /// False (moniker untouched) for a null or invalid image; else views that image's memory.
  ///
  /// Raises as the throwing Create(format, data) does for a format it cannot view.
  bool Create(IImage const* image) override;
  /// Forgets format and pointer; releases nothing. Always true.
  bool Destroy() override;
  bool IsValid() const override;
  unsigned int GetBytesPerPixel() const override;
  unsigned int GetPixelCount() const override;
  unsigned int GetByteCount() const override;
  void GetSize(int& width, int& height) const override;
  void GetType(EPixelType::ID& pixelType, EDataType::ID& dataType) const override;
  /// The foreign memory, handed out writable although it was taken read-only.
  void* GetDataPtr() override;
  /// The foreign memory, null when there is none.
  void const* GetDataPtr() const override;
  /// Destroy(): releases nothing.
  virtual ~CNuImageMoniker();
  /// The pixel type and data type as raw ints, pixel type first.
  virtual void GetType(int& pixelType, int& dataType) const;

  /// Stores the pointer and nothing else: no test, no copy, the format stays.
  void Set(void const* data);
  /// Throwing form of Create(IImage const*): true, or raises "Error creating image moniker"
  /// where that form says false.
  bool Create(CNuImage const& image);
  /// Throwing form of the five-argument Create, with the ids as raw ints: true, or raises
  /// "Error creating image moniker" where that form says false.
  bool Create(int width, int height, int pixelType, int dataType, void const* data);
  /// Throwing form of the five-argument Create, with the fields of `format`: true, or raises
  /// "Error creating image moniker" where that form says false.
  bool Create(CNuImageFormat const& format, void const* data);

protected:
  /// Width, height and the two type ids; all zero when empty.
  CNuImageFormat Format;
  /// The foreign memory, never owned; null when there is none.
  void* Data;
};

}  // namespace Nu
