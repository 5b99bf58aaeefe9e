#include <Nu.Core.Ex/NuMetricCalibAddTargetImageResult.h>

#include <gtest/gtest.h>

TEST(NuMetricCalibAddImageResult, DefaultSaysNothingWasAdded) {
  Nu::CNuMetricCalibAddImageResult const result;
  EXPECT_EQ(result.ObjectId, -1);
  EXPECT_EQ(result.ValueA, 0);
  EXPECT_EQ(result.ValueB, 0);
  EXPECT_FALSE(result.Flag);
  EXPECT_STREQ(result.Message.ToCString(), "No object added to metric calibration");
  EXPECT_EQ(result.ListA.Length(), 0u);
  EXPECT_EQ(result.ListB.Length(), 0u);
  EXPECT_EQ(result.Texts.Length(), 0u);
}
