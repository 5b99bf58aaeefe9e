// The image's own malloc failing, and its free watched. This binary replaces both for the whole
// process, which the sanitizers' allocators do not allow, so it is built in plain builds only.
#include <Nu.Core.Ex/NuImage.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <cstddef>

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void __libc_free(void* block);

namespace {

bool FailNextMalloc = false;
void const* LastFreed = nullptr;

// Fails the next malloc within its lifetime.
struct FailingMalloc {
  FailingMalloc() { FailNextMalloc = true; }
  ~FailingMalloc() { FailNextMalloc = false; }
};

}  // namespace

extern "C" void* malloc(std::size_t size) {
  bool const fail = FailNextMalloc;
  FailNextMalloc = false;
  return fail ? nullptr : __libc_malloc(size);
}

extern "C" void free(void* block) {
  LastFreed = block;
  __libc_free(block);
}

using namespace Nu;
using NuTest::ImageFile;

TEST(ImageAllocation, CreateAndCopyEndEmptyOnAFailedMallocAndSwapReleasesTheBlockItHandsOver) {
  CNuImage image, source;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  ASSERT_TRUE(source.Create(3, 3, EPixelType::Lum, EDataType::Float));
  EXPECT_TRUE([&] { FailingMalloc f; return image.Create(16, 3, EPixelType::Lum, EDataType::UByte); }());
  NuTest::ExpectRaises([&] { FailingMalloc f; image.Create(8, 8, EPixelType::RGB, EDataType::UByte); },
                       {{"Error creating image", "Create", ImageFile}, {"Out of memory", "Create", ImageFile}});
  EXPECT_TRUE(!image.IsValid() && image.GetByteCount() == 0);  // the old block went before the allocation
  // A plain exception, not the containers' kind.
  NuTest::ExpectRaises([&] { FailingMalloc f; image = source; },
                       {{"Error creating image copy", "Create", ImageFile},
                        {"Error creating image", "Create", ImageFile},
                        {"Out of memory", "Create", ImageFile, "Nu.Exception"}});
  // Where the image owned its block, Swap hands that block to the other image and then releases it.
  struct CForgetful : CNuImage {
    void Forget() { Data = nullptr; }
  } owning, other;
  ASSERT_TRUE(owning.Create(2, 2, EPixelType::Lum, EDataType::UByte));
  ASSERT_TRUE(other.Create(3, 1, EPixelType::Lum, EDataType::UByte));
  void const* block = owning.GetDataPtr();
  owning.Swap(other);
  EXPECT_TRUE(LastFreed == block && other.GetDataPtr() == block && owning.GetByteCount() == 3);
  other.Forget();  // its block is released already
}
