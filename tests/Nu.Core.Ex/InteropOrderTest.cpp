// The interop interfaces are a published binary interface: a caller compiled against its own
// copy of the declarations must reach the same operations through the same vtable slots. These
// mirrors are written from the published order and share nothing with the library's headers
// but the plain value types; library objects are called through them.
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Ex/NuImageMoniker.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace Mirror {

using Nu::CGuid;

class IImage {
public:
  virtual bool Create(int, int, int, int) = 0;
  virtual bool Create(int, int, int, int, void const*) = 0;
  virtual bool Create(IImage const*) = 0;
  virtual bool Destroy() = 0;
  virtual bool IsValid() const = 0;
  virtual unsigned int GetBytesPerPixel() const = 0;
  virtual unsigned int GetPixelCount() const = 0;
  virtual unsigned int GetByteCount() const = 0;
  virtual void GetSize(int&, int&) const = 0;
  virtual void GetType(int&, int&) const = 0;
  virtual void* GetDataPtr() = 0;
  virtual void const* GetDataPtr() const = 0;
};

class IException {
public:
  virtual char const* GetMessageText() const = 0;
  virtual char const* GetFunction() const = 0;
  virtual char const* GetFile() const = 0;
  virtual int GetLine() const = 0;
  virtual char const* GetName() const = 0;
  virtual CGuid GetGUID() const = 0;
  virtual IException const* GetInnerException() const = 0;
  virtual bool HasException(CGuid const&) const = 0;
  virtual IException* Clone() const = 0;
};

}  // namespace Mirror

namespace {

// Hides where a pointer came from, so that the optimiser cannot use the object's known dynamic
// type to bypass the vtable: these calls must go through the slots, as a foreign caller's do.
template <class T>
T* Opaque(T* pointer) {
  asm volatile("" : "+r"(pointer));
  return pointer;
}

// Calling through a mirror is exactly the foreign call being proven; the sanitizer's dynamic
// type check would object to the mirror type, so it is switched off for these helpers only.
#if defined(__clang__)
#define NU_MIRROR_CALL __attribute__((no_sanitize("vptr")))
#else
#define NU_MIRROR_CALL
#endif

NU_MIRROR_CALL void DriveImage(Mirror::IImage* image, Mirror::IImage const* source) {
  ASSERT_TRUE(image->Create(1, 1, Nu::EPixelType::Lum, Nu::EDataType::UByte));
  unsigned short const words[18] = {};
  ASSERT_TRUE(image->Create(2, 3, Nu::EPixelType::RGB, Nu::EDataType::UShort, words));
  EXPECT_TRUE(image->IsValid());
  EXPECT_EQ(image->GetBytesPerPixel(), 6u);
  EXPECT_EQ(image->GetPixelCount(), 6u);
  EXPECT_EQ(image->GetByteCount(), 36u);
  int width = 0, height = 0, pixelType = 0, dataType = 0;
  image->GetSize(width, height);
  image->GetType(pixelType, dataType);
  EXPECT_EQ(width, 2);
  EXPECT_EQ(height, 3);
  EXPECT_EQ(pixelType, Nu::EPixelType::RGB);
  EXPECT_EQ(dataType, Nu::EDataType::UShort);
  EXPECT_EQ(image->GetDataPtr(), static_cast<Mirror::IImage const*>(image)->GetDataPtr());
  unsigned char const bytes[4] = {1, 2, 3, 4};
  ASSERT_TRUE(image->Create(4, 1, Nu::EPixelType::Lum, Nu::EDataType::UByte, bytes));
  EXPECT_EQ(std::memcmp(image->GetDataPtr(), bytes, 4), 0);
  ASSERT_TRUE(image->Create(source));
  EXPECT_EQ(image->GetByteCount(), 8u);
  EXPECT_TRUE(image->Destroy());
  EXPECT_FALSE(image->IsValid());
}

NU_MIRROR_CALL void DriveException(Mirror::IException const* e, Nu::CGuid const& guid) {
  EXPECT_STREQ(e->GetMessageText(), "outer");
  EXPECT_STREQ(e->GetFunction(), "fn");
  EXPECT_STREQ(e->GetFile(), "file");
  EXPECT_EQ(e->GetLine(), 12);
  EXPECT_STREQ(e->GetName(), "Nu.Exception");
  EXPECT_NE(e->GetGUID(), Nu::CGuid());
  ASSERT_NE(e->GetInnerException(), nullptr);
  EXPECT_STREQ(e->GetInnerException()->GetName(), "Nu.OutOfMemoryException");
  EXPECT_TRUE(e->HasException(guid));
  Mirror::IException* clone = e->Clone();
  EXPECT_STREQ(clone->GetMessageText(), "outer");
  delete static_cast<Nu::CNuException*>(reinterpret_cast<Nu::IException*>(clone));
}

}  // namespace

TEST(InteropOrder, ImageOperationsSitInThePublishedSlots) {
  Nu::CNuImage source;
  ASSERT_TRUE(source.Create(2, 2, Nu::EPixelType::Lum, Nu::EDataType::UShort));
  Nu::CNuImage image;
  DriveImage(Opaque(reinterpret_cast<Mirror::IImage*>(static_cast<Nu::IImage*>(&image))),
             Opaque(reinterpret_cast<Mirror::IImage const*>(static_cast<Nu::IImage const*>(&source))));
  Nu::CNuImageMoniker moniker;
  DriveImage(Opaque(reinterpret_cast<Mirror::IImage*>(static_cast<Nu::IImage*>(&moniker))),
             Opaque(reinterpret_cast<Mirror::IImage const*>(static_cast<Nu::IImage const*>(&source))));
}

TEST(InteropOrder, ExceptionOperationsSitInThePublishedSlots) {
  Nu::CNuOutOfMemoryException const inner("inner", "f", "g", 1);
  Nu::CNuException const outer("outer", "file", "fn", 12, inner);
  DriveException(Opaque(reinterpret_cast<Mirror::IException const*>(static_cast<Nu::IException const*>(&outer))),
                 inner.GetGUID());
}
