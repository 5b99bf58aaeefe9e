// Allocation failures forced through a replaced global operator new, in a binary of its own.
#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuMapping3D.h>
#include <Nu.Core.Ex/NuMetricCalibAddImageResult.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

namespace {

// The tests run on one thread: plain counters are enough.
long Countdown = -1;  // allocations still to succeed before one fails; negative: never fail
long Live = 0;

void* Allocate(std::size_t size, bool nullOnFailure = false) {
  void* block = Countdown-- == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (block == nullptr && !nullOnFailure) throw std::bad_alloc();
  Live += block != nullptr;
  return block;
}

void Release(void* block) noexcept {
  Live -= block != nullptr;
  std::free(block);
}

// Lets `allowed` allocations succeed and fails the next one, within its lifetime.
struct FailingAllocation {
  explicit FailingAllocation(long allowed = 0) { Countdown = allowed; }
  ~FailingAllocation() { Countdown = -1; }
};

}  // namespace

// Every form a library or the standard library may call, so that no block crosses allocators.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size, true); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return Allocate(size, true); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { Release(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { Release(block); }

using namespace Nu;
using namespace NuTest;

TEST(AllocationFailure, ArraysRaiseOutOfMemoryAndStayAsTheyWere) {
  CNuArrayDouble array(4, 1.5);
  CNuArrayDouble const longer(9, 2.0);
  void const* block = array.GetPointer();
  ExpectRaises<CNuOutOfMemoryException>([&] { FailingAllocation f; array.CopyFrom(&longer); }, {{"std::bad_alloc", "Resize", ArrayFile}});
  EXPECT_THROW({ FailingAllocation f; array = longer; }, std::bad_alloc);
  EXPECT_TRUE(array.Length() == 4 && array[3] == 1.5 && array.GetPointer() == block);
  // The first allocation of a sized constructor is its Impl, the second the block.
  ExpectRaises<CNuOutOfMemoryException>([] { FailingAllocation f(1); CNuArrayString(3, CNuString("x")); },
                                        {{"std::bad_alloc", "New", ArrayFile}});
  CNuMapping3D mapping;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  EXPECT_THROW({ FailingAllocation f; mapping.Create(0, 0, 0, 1, 1, 1, 3, 3, 3, nullptr); }, std::bad_alloc);
  EXPECT_FALSE(mapping.IsValid());
}

TEST(AllocationFailure, LeavesNoLeakWhereverItStrikes) {
  std::function<void()> const builds[] = {[] { CNuArrayString const array(CNuString("a,,b"), ','), copy(array); },
                                          [] { CNuArray2DDouble const array(2, 3), copy(array); },
                                          [] { CNuMetricCalibAddImageResult result; }};
  for (auto const& build : builds) {
    for (long allowed = 0; allowed < 100; ++allowed) {
      long const before = Live;
      try {
        FailingAllocation f(allowed);
        build();
        break;
      } catch (std::bad_alloc const&) {
      } catch (CNuOutOfMemoryException const&) {
      }
      EXPECT_EQ(Live, before) << "allocations allowed " << allowed;
    }
  }
}
