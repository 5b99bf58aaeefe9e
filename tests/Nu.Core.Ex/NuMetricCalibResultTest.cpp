#include <Nu.Core.Ex/NuMetricCalibResult.h>

#include <gtest/gtest.h>

TEST(NuMetricCalibResult, DefaultIsAllZero) {
  Nu::CNuMetricCalibResult const result;
  for (double value : {result.Value1, result.Value2, result.Value3, result.Value4, result.Value5,
                       result.Value6, result.Value7, result.Value8}) {
    EXPECT_EQ(value, 0.0);
  }
}
