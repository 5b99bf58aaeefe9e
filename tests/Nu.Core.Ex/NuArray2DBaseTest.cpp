#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArray2DInt.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

using namespace Nu;
using NuTest::ExpectRaises;

namespace {

constexpr char ArrayFile[] = "Nu.Core.Ex/NuArray2DBase.h";
constexpr char MatrixFile[] = "Nu.Core.Math/NuMatrix.h";

class UIntBlock2D : public IMemory2DAccess {
public:
  unsigned long GetElementSize() const override { return 4; }
  void GetSize(unsigned long& rows, unsigned long& columns) const override {
    rows = 2;
    columns = 1;
  }
  void const* GetPointer() const override { return Values; }
  bool IsValid() const override { return true; }

private:
  unsigned int Values[2] = {0xFFFFFFFFu, 0x80000000u};
};

template <class TArray>
void ExpectSize(TArray const& array, unsigned long rows, unsigned long columns) {
  unsigned long r = 99;
  unsigned long c = 99;
  array.GetSize(r, c);
  EXPECT_EQ(r, rows);
  EXPECT_EQ(c, columns);
}

}  // namespace

TEST(NuArray2D, ElementsStandRowAfterRowAndBoundsAreTested) {
  CNuArray2DDouble array(2, 3);
  ExpectSize(array, 2, 3);
  EXPECT_EQ(array.GetElementSize(), sizeof(double));
  array(1, 2) = 6.5;
  array(0, 1) = 1.5;
  EXPECT_EQ(array.GetDataPtr()[5], 6.5);
  EXPECT_EQ(array.GetDataPtr()[1], 1.5);
  CNuArray2DDouble const& constant = array;
  EXPECT_EQ(constant(1, 2), 6.5);
  for (auto const& index : {std::pair{2ul, 0ul}, {0ul, 3ul}, {5ul, 5ul}}) {
    unsigned long const row = index.first;
    unsigned long const column = index.second;
    SCOPED_TRACE(testing::Message() << row << ", " << column);
    ExpectRaises([&] { array(row, column); },
                 {{"Array index out of bounds", "operator()", ArrayFile}});
    ExpectRaises([&] { constant(row, column); },
                 {{"Array index out of bounds", "operator()", ArrayFile}});
  }
}

TEST(NuArray2D, AZeroDimensionGivesNoBlockAndNoElement) {
  CNuArray2DInt array(0, 4);
  ExpectSize(array, 0, 4);
  EXPECT_FALSE(array.IsValid());
  EXPECT_EQ(array.GetDataPtr(), nullptr);
  ExpectRaises([&] { array(0, 0); }, {{"Array index out of bounds", "operator()", ArrayFile}});
  CNuArray2DInt const empty;
  ExpectSize(empty, 0, 0);
  EXPECT_FALSE(empty.IsValid());
}

TEST(NuArray2D, CopyFromComparesElementSizesOnly) {
  CNuArray2DInt ints(1, 1);
  ints(0, 0) = 7;
  CNuArray2DDouble doubles(1, 1);
  ExpectRaises([&] { ints.CopyFrom(&doubles); },
               {{"cannot copy Memory2D, elementSize is different", "CopyFrom", MatrixFile}});
  ExpectRaises([&] { doubles.CopyFrom(&ints); },
               {{"cannot copy Memory2D, elementSize is different", "CopyFrom", MatrixFile}});
  EXPECT_EQ(ints(0, 0), 7);

  UIntBlock2D const foreign;
  ints.CopyFrom(&foreign);
  ExpectSize(ints, 2, 1);
  EXPECT_EQ(ints(0, 0), -1);
  EXPECT_EQ(ints(1, 0), std::numeric_limits<int>::min());
}

TEST(NuArray2D, CopiesAreDeep) {
  CNuArray2DDouble original(2, 2);
  original(1, 1) = 4.0;
  CNuArray2DDouble copy(original);
  CNuArray2DDouble assigned;
  assigned = original;
  original(1, 1) = -1.0;
  EXPECT_EQ(copy(1, 1), 4.0);
  EXPECT_EQ(assigned(1, 1), 4.0);
  assigned = *&assigned;
  EXPECT_EQ(assigned(1, 1), 4.0);

  CNuArray2DInt const empty;
  CNuArray2DInt fromEmpty(empty);
  ExpectSize(fromEmpty, 0, 0);
  EXPECT_FALSE(fromEmpty.IsValid());
}
