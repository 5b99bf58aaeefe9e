// The interop interfaces are a published binary interface: a caller compiled against its own
// copy of the declarations must reach the same operations through the same vtable slots. These
// mirrors are written from the published order and share nothing with the library's headers
// but the plain value types; library objects are called through them.
#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuImage.h>
#include <Nu.Core.Math/NuMatrix.h>
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

class IMemoryAccess {
public:
  virtual unsigned long GetElementSize() const = 0;
  virtual unsigned long Length() const = 0;
  virtual void const* GetPointer() const = 0;
  virtual bool IsValid() const = 0;
  virtual ~IMemoryAccess() {}
};

class IMemory : public IMemoryAccess {
public:
  virtual void New(unsigned long) = 0;
  virtual void Resize(unsigned long) = 0;
  virtual void Delete() = 0;
  virtual void Reset() = 0;
  virtual void CopyFrom(IMemoryAccess const*) = 0;
  virtual void* GetPointer() = 0;
  using IMemoryAccess::GetPointer;
};

class IMemory2DAccess {
public:
  virtual unsigned long GetElementSize() const = 0;
  virtual void GetSize(unsigned long&, unsigned long&) const = 0;
  virtual void const* GetPointer() const = 0;
  virtual bool IsValid() const = 0;
  virtual ~IMemory2DAccess() {}
};

class IMemory2D : public IMemory2DAccess {
public:
  virtual void New(unsigned long, unsigned long) = 0;
  virtual void Resize(unsigned long, unsigned long) = 0;
  virtual void Delete() = 0;
  virtual void Reset() = 0;
  virtual void CopyFrom(IMemory2DAccess const*) = 0;
  virtual void* GetPointer() = 0;
  using IMemory2DAccess::GetPointer;
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

NU_MIRROR_CALL void DriveMemory(Mirror::IMemory* memory, Mirror::IMemoryAccess const* source) {
  EXPECT_EQ(memory->GetElementSize(), 4u);
  EXPECT_TRUE(memory->IsValid());
  memory->New(3);
  EXPECT_EQ(memory->Length(), 3u);
  memory->Resize(5);
  EXPECT_EQ(memory->Length(), 5u);
  static_cast<int*>(memory->GetPointer())[4] = 9;
  EXPECT_EQ(static_cast<int const*>(static_cast<Mirror::IMemoryAccess const*>(memory)->GetPointer())[4], 9);
  memory->Reset();
  EXPECT_EQ(static_cast<int const*>(memory->GetPointer())[4], 0);
  memory->CopyFrom(source);
  EXPECT_EQ(memory->Length(), 2u);
  EXPECT_EQ(static_cast<int const*>(memory->GetPointer())[1], -1);
  memory->Delete();
  EXPECT_EQ(memory->Length(), 0u);
}

NU_MIRROR_CALL void DriveMemory2D(Mirror::IMemory2D* memory, Mirror::IMemory2DAccess const* source) {
  EXPECT_EQ(memory->GetElementSize(), 8u);
  EXPECT_FALSE(memory->IsValid());
  memory->New(2, 3);
  unsigned long rows = 0, columns = 0;
  memory->GetSize(rows, columns);
  EXPECT_EQ(rows, 2u);
  EXPECT_EQ(columns, 3u);
  static_cast<double*>(memory->GetPointer())[5] = 1.5;
  memory->Resize(3, 3);
  EXPECT_EQ(static_cast<double const*>(static_cast<Mirror::IMemory2DAccess const*>(memory)->GetPointer())[5], 1.5);
  memory->Reset();
  EXPECT_EQ(static_cast<double const*>(memory->GetPointer())[5], 0.0);
  memory->CopyFrom(source);
  memory->GetSize(rows, columns);
  EXPECT_EQ(rows, 1u);
  EXPECT_EQ(columns, 4u);
  memory->Delete();
  memory->GetSize(rows, columns);
  EXPECT_EQ(rows + columns, 0u);
  EXPECT_TRUE(memory->IsValid());
}

}  // namespace

TEST(InteropOrder, MemoryOperationsSitInThePublishedSlots) {
  Nu::CNuArrayUInt const source(2, 0xFFFFFFFFu);
  Nu::CNuArrayInt array;
  DriveMemory(Opaque(reinterpret_cast<Mirror::IMemory*>(static_cast<Nu::IMemory*>(&array))),
              Opaque(reinterpret_cast<Mirror::IMemoryAccess const*>(static_cast<Nu::IMemoryAccess const*>(&source))));
  Nu::CNuArray2DDouble const grid(1, 4);
  Nu::CNuArray2DDouble target;
  DriveMemory2D(Opaque(reinterpret_cast<Mirror::IMemory2D*>(static_cast<Nu::IMemory2D*>(&target))),
                Opaque(reinterpret_cast<Mirror::IMemory2DAccess const*>(static_cast<Nu::IMemory2DAccess const*>(&grid))));
  Nu::CNuMatrix<double> matrix;
  DriveMemory2D(Opaque(reinterpret_cast<Mirror::IMemory2D*>(static_cast<Nu::IMemory2D*>(&matrix))),
                Opaque(reinterpret_cast<Mirror::IMemory2DAccess const*>(static_cast<Nu::IMemory2DAccess const*>(&grid))));
}

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
