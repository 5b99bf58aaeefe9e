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

TEST(NuMetricCalibAddImageResult, CopiesOwnTheirArrays) {
  Nu::CNuMetricCalibAddImageResult result;
  result.Texts.Resize(1);
  result.Texts[0] = "first";
  Nu::CNuMetricCalibAddImageResult copy(result);
  result.Texts[0] = "second";
  EXPECT_STREQ(copy.Texts[0].ToCString(), "first");
}
