#include "FailingAllocator.h"

#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuMapping3D.h>
#include <Nu.Core.Ex/NuMetricCalibAddImageResult.h>
#include <Nu.Core.Math/NuMatrix.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <vector>

using namespace Nu;
using NuTest::AllowAllAllocations;
using NuTest::FailAllocationAfter;
using NuTest::LiveAllocations;

namespace {

constexpr char ArrayFile[] = "Nu.Core.Ex/NuArrayBase.h";
constexpr char MatrixFile[] = "Nu.Core.Math/NuMatrix.h";

// Runs `call` with its first allocation failing, `allowed` more allocations succeeding before
// the failing one; expects a CNuOutOfMemoryException with this message and function.
template <class TCall>
void ExpectOutOfMemory(TCall&& call, char const* message, char const* function, char const* file,
                       long allowed = 0) {
  try {
    FailAllocationAfter(allowed);
    call();
    AllowAllAllocations();
    ADD_FAILURE() << "nothing was raised";
  } catch (CNuOutOfMemoryException const& e) {
    AllowAllAllocations();
    NuTest::ExpectChain(e, {{message, function, file}});
  }
}

// Fails each allocation of `build` in turn, until one run needs no more; only
// CNuOutOfMemoryException or std::bad_alloc may leave, and no run may leak.
template <class TBuild>
void ExpectNoLeakAtAnyFailure(TBuild&& build) {
  for (long allowed = 0; allowed < 1000; ++allowed) {
    long const before = LiveAllocations();
    bool failed = false;
    try {
      FailAllocationAfter(allowed);
      build();
    } catch (CNuOutOfMemoryException const&) {
      failed = true;
    } catch (std::bad_alloc const&) {
      failed = true;
    }
    AllowAllAllocations();
    EXPECT_EQ(LiveAllocations(), before) << "leak with " << allowed << " allocations allowed";
    if (!failed) return;
  }
  ADD_FAILURE() << "never completed";
}

std::vector<double> Contents(CNuArrayDouble const& array) {
  return std::vector<double>(array.GetDataPtr(), array.GetDataPtr() + array.Length());
}

}  // namespace

TEST(ArrayAllocationFailure, NewAndResizeRaiseOutOfMemoryAndKeepTheArray) {
  CNuArrayDouble array(4, 1.5);
  void const* block = array.GetPointer();
  ExpectOutOfMemory([&] { array.New(5); }, "std::bad_alloc", "New", ArrayFile);
  ExpectOutOfMemory([&] { array.Resize(5); }, "std::bad_alloc", "Resize", ArrayFile);
  CNuArrayDouble const longer(9, 2.0);
  ExpectOutOfMemory([&] { array.CopyFrom(&longer); }, "std::bad_alloc", "Resize", ArrayFile);
  EXPECT_EQ(Contents(array), (std::vector<double>{1.5, 1.5, 1.5, 1.5}));
  EXPECT_EQ(array.GetPointer(), block);
}

TEST(ArrayAllocationFailure, SizeConstructorsReportNewAndLeakNothing) {
  // The first allocation is Impl, the second its block.
  ExpectOutOfMemory([] { CNuArrayDouble array(3); }, "std::bad_alloc", "New", ArrayFile, 1);
  ExpectOutOfMemory([] { CNuArrayString array(3, CNuString("x")); }, "std::bad_alloc", "New",
                    ArrayFile, 1);
  ExpectNoLeakAtAnyFailure([] { CNuArrayDouble array(3, 2.0); });
  ExpectNoLeakAtAnyFailure([] { CNuArrayString array(CNuString("a,,b,c"), ','); });
  ExpectNoLeakAtAnyFailure([] {
    CNuArrayString const array(CNuString("a,b"), ',');
    CNuArrayString const copy(array);
  });
}

TEST(ArrayAllocationFailure, DefaultConstructorAndAssignmentPassBadAlloc) {
  FailAllocationAfter(0);
  EXPECT_THROW(CNuArrayDouble(), std::bad_alloc);
  AllowAllAllocations();

  CNuArrayDouble target(2, 1.0);
  CNuArrayDouble const source(10, 2.0);
  FailAllocationAfter(0);
  EXPECT_THROW(target = source, std::bad_alloc);
  AllowAllAllocations();
  EXPECT_EQ(Contents(target), (std::vector<double>{1.0, 1.0}));
}

TEST(MatrixAllocationFailure, ResizeRaisesOutOfMemoryAndKeepsTheOldBlockUnreachable) {
  CNuMatrix<int> matrix(2, 3);
  auto* data = static_cast<int*>(matrix.GetPointer());
  for (int i = 0; i < 6; ++i) data[i] = i + 1;
  ExpectOutOfMemory([&] { matrix.Resize(3, 3); }, "Error resizing matrix:std::bad_alloc", "Resize",
                    MatrixFile);
  unsigned long rows = 9;
  unsigned long columns = 9;
  matrix.GetSize(rows, columns);
  EXPECT_EQ(rows, 0u);
  EXPECT_EQ(columns, 0u);
  EXPECT_TRUE(matrix.IsValid());
  EXPECT_EQ(matrix.GetPointer(), data);
  EXPECT_EQ(data[5], 6);

  CNuMatrix<int> empty;
  ExpectOutOfMemory([&] { empty.Resize(2, 2); }, "Error resizing matrix:std::bad_alloc", "Resize",
                    MatrixFile);
  EXPECT_FALSE(empty.IsValid());
}

TEST(MatrixAllocationFailure, SetDimensionsPassesBadAllocWithTheRequestedDimensions) {
  CNuMatrix<int> matrix(2, 3);
  void const* block = matrix.GetPointer();
  FailAllocationAfter(0);
  EXPECT_THROW(matrix.New(3, 3), std::bad_alloc);
  AllowAllAllocations();
  unsigned long rows = 0;
  unsigned long columns = 0;
  matrix.GetSize(rows, columns);
  EXPECT_EQ(rows, 3u);
  EXPECT_EQ(columns, 3u);
  EXPECT_EQ(matrix.GetPointer(), block);
  matrix.Reset();  // bounded by the old block
  matrix.Resize(4, 4);  // so is the copy by position
  EXPECT_EQ(static_cast<int const*>(matrix.GetPointer())[0], 0);
  ExpectNoLeakAtAnyFailure([] {
    CNuArray2DDouble const array(2, 3);
    CNuArray2DDouble const copy(array);
  });
}

TEST(MappingAllocationFailure, CreatePassesBadAllocAndLeavesTheMappingEmpty) {
  CNuMapping3D mapping;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  FailAllocationAfter(0);
  EXPECT_THROW(mapping.Create(0, 0, 0, 1, 1, 1, 3, 3, 3, nullptr), std::bad_alloc);
  AllowAllAllocations();
  EXPECT_FALSE(mapping.IsValid());
  EXPECT_EQ(mapping.GetByteCount(), 0u);
}

TEST(RecordAllocationFailure, ConstructorLeaksNothing) {
  ExpectNoLeakAtAnyFailure([] { CNuMetricCalibAddImageResult result; });
}
