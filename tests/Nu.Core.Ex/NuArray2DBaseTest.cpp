#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArray2DInt.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Nu;

// Sizing and copying are the matrix's; the arrays add tested element access and deep copies.
TEST(NuArray2D, ElementsStandRowAfterRowBothIndicesAreTestedAndCopiesAreDeep) {
  CNuArray2DDouble array(2, 3), assigned;
  array(1, 2) = 6.5;
  array(0, 1) = 1.5;
  CNuArray2DDouble const copy(array);
  assigned = array;
  array(0, 1) = 0;
  for (CNuArray2DDouble const* deep : {&copy, static_cast<CNuArray2DDouble const*>(&assigned)})
    EXPECT_EQ(std::vector<double>(deep->GetDataPtr(), &(*deep)(1, 2) + 1), (std::vector<double>{0, 1.5, 0, 0, 0, 6.5}));
  CNuArray2DInt const empty(0, 4);
  for (auto const& at : {std::pair{2ul, 0ul}, {0ul, 3ul}, {1ul, 5ul}}) {
    NuTest::Chain const outside = {{"Array index out of bounds", "operator()", NuTest::Array2DFile}};
    NuTest::ExpectRaises([&] { array(at.first, at.second); }, outside);
    NuTest::ExpectRaises([&] { copy(at.first, at.second); }, outside);
    NuTest::ExpectRaises([&] { empty(at.first % 2, 0); }, outside);
  }
}
