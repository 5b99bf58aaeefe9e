// The interop interfaces are a published binary interface: a caller compiled against its own copy of
// the declarations reaches each operation through a fixed vtable slot. The slots below are the
// published order, read back through the Itanium C++ ABI's pointer to a virtual member (1 + offset).
#include <Nu.Core.Ex/IImage.h>
#include <Nu.Core.Ex/IMemory.h>
#include <Nu.Core.Ex/IMemory2D.h>
#include <Nu.Core.Ex/NuOutOfMemoryException.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

using namespace Nu;

namespace {

template <class TMember>
long SlotOf(TMember member) {
  std::uintptr_t raw[2];
  static_assert(sizeof member == sizeof raw);
  std::memcpy(raw, &member, sizeof raw);
  return static_cast<long>((raw[0] - 1) / sizeof(void*));
}

using Slots = std::vector<long>;

}  // namespace

TEST(InteropOrder, OperationsSitInThePublishedSlots) {
  using Pixel = EPixelType::ID;
  using Data = EDataType::ID;
  EXPECT_EQ((Slots{SlotOf(static_cast<bool (IImage::*)(int, int, Pixel, Data)>(&IImage::Create)),
                   SlotOf(static_cast<bool (IImage::*)(int, int, Pixel, Data, void const*)>(&IImage::Create)),
                   SlotOf(static_cast<bool (IImage::*)(IImage const*)>(&IImage::Create)), SlotOf(&IImage::Destroy),
                   SlotOf(&IImage::IsValid), SlotOf(&IImage::GetBytesPerPixel), SlotOf(&IImage::GetPixelCount),
                   SlotOf(&IImage::GetByteCount), SlotOf(&IImage::GetSize), SlotOf(&IImage::GetType),
                   SlotOf(static_cast<void* (IImage::*)()>(&IImage::GetDataPtr)),
                   SlotOf(static_cast<void const* (IImage::*)() const>(&IImage::GetDataPtr))}),
            (Slots{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
  EXPECT_EQ((Slots{SlotOf(&IException::GetMessageText), SlotOf(&IException::GetFunction), SlotOf(&IException::GetFile),
                   SlotOf(&IException::GetLine), SlotOf(&IException::GetName), SlotOf(&IException::GetGUID),
                   SlotOf(&IException::GetInnerException), SlotOf(&IException::HasException), SlotOf(&IException::Clone)}),
            (Slots{0, 1, 2, 3, 4, 5, 6, 7, 8}));
  // The virtual destructor takes slots 4 and 5.
  EXPECT_EQ((Slots{SlotOf(&IMemory::GetElementSize), SlotOf(&IMemory::Length),
                   SlotOf(static_cast<void const* (IMemory::*)() const>(&IMemory::GetPointer)), SlotOf(&IMemory::IsValid),
                   SlotOf(&IMemory::New), SlotOf(&IMemory::Resize), SlotOf(&IMemory::Delete), SlotOf(&IMemory::Reset),
                   SlotOf(&IMemory::CopyFrom), SlotOf(static_cast<void* (IMemory::*)()>(&IMemory::GetPointer)),
                   SlotOf(&IMemory2D::GetElementSize), SlotOf(&IMemory2D::GetSize),
                   SlotOf(static_cast<void const* (IMemory2D::*)() const>(&IMemory2D::GetPointer)), SlotOf(&IMemory2D::IsValid),
                   SlotOf(&IMemory2D::New), SlotOf(&IMemory2D::Resize), SlotOf(&IMemory2D::Delete), SlotOf(&IMemory2D::Reset),
                   SlotOf(&IMemory2D::CopyFrom), SlotOf(static_cast<void* (IMemory2D::*)()>(&IMemory2D::GetPointer))}),
            (Slots{0, 1, 2, 3, 6, 7, 8, 9, 10, 11, 0, 1, 2, 3, 6, 7, 8, 9, 10, 11}));
}

// Inner exceptions are clones that keep their name and GUID, and HasException searches the chain.
TEST(InteropOrder, InnerExceptionsKeepTheirNameAndGuid) {
  CNuOutOfMemoryException const inner("inner", "f", "g", 1);
  CNuException const outer("outer", "file", "fn", 12, CNuException("middle", "f", "g", 2, inner));
  EXPECT_STREQ(outer.GetInnerException()->GetInnerException()->GetName(), "Nu.OutOfMemoryException");
  EXPECT_TRUE(outer.HasException(inner.GetGUID()) && inner.GetGUID() != outer.GetGUID());
}
