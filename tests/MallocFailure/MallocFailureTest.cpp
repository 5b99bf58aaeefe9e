// The image's own allocation failing. This binary replaces malloc for the whole process (the
// library's calls bind to the executable's definition), so it is built without sanitizers,
// whose allocators cannot be replaced.
#include <Nu.Core.Ex/NuImage.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cstddef>

extern "C" void* __libc_malloc(std::size_t size);

namespace {

// The number of malloc calls still to succeed before one fails; negative: never fail.
int MallocsBeforeFailure = -1;

class FailingMalloc {
public:
  explicit FailingMalloc(int successesFirst = 0) { MallocsBeforeFailure = successesFirst; }
  ~FailingMalloc() { MallocsBeforeFailure = -1; }
};

constexpr char ImageFile[] = "Nu.Core.Ex/NuImage.cpp";

}  // namespace

extern "C" void* malloc(std::size_t size) {
  if (MallocsBeforeFailure == 0) {
    MallocsBeforeFailure = -1;
    return nullptr;
  }
  if (MallocsBeforeFailure > 0) --MallocsBeforeFailure;
  return __libc_malloc(size);
}

using Nu::CNuImage;
using Nu::EDataType;
using Nu::EPixelType;

TEST(ImageOutOfMemory, CreateEndsEmptyWithAPlainException) {
  CNuImage image;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  try {
    FailingMalloc failing;
    image.Create(8, 8, EPixelType::RGB, EDataType::UByte);
    ADD_FAILURE() << "nothing was raised";
  } catch (Nu::CNuException const& e) {
    NuTest::ExpectChain(e, {{"Error creating image", "Create", ImageFile}, {"Out of memory", "Create", ImageFile}});
    EXPECT_STREQ(e.GetInnerException()->GetName(), "Nu.Exception");  // not the containers' exception
  }
  // The old block went before the allocation was tried.
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetByteCount(), 0u);
}

TEST(ImageOutOfMemory, CopyReportsThreeLevels) {
  CNuImage source;
  ASSERT_TRUE(source.Create(3, 3, EPixelType::Lum, EDataType::Float));
  CNuImage target;
  try {
    FailingMalloc failing;
    target = source;
    ADD_FAILURE() << "nothing was raised";
  } catch (Nu::CNuException const& e) {
    NuTest::ExpectChain(e, {{"Error creating image copy", "Create", ImageFile},
                            {"Error creating image", "Create", ImageFile},
                            {"Out of memory", "Create", ImageFile}});
  }
  EXPECT_FALSE(target.IsValid());
}

TEST(ImageOutOfMemory, EqualByteCountNeedsNoAllocation) {
  CNuImage image;
  ASSERT_TRUE(image.Create(4, 4, EPixelType::RGB, EDataType::UByte));
  FailingMalloc failing;
  EXPECT_TRUE(image.Create(16, 3, EPixelType::Lum, EDataType::UByte));
  EXPECT_TRUE(image.IsValid());
}
