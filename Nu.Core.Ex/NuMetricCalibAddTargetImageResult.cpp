#include <Nu.Core.Ex/NuMetricCalibAddTargetImageResult.h>

namespace Nu {

CNuMetricCalibAddImageResult::CNuMetricCalibAddImageResult() {
  ObjectId = -1;
  ValueA = 0;
  ValueB = 0;
  Flag = false;
  Message = "No object added to metric calibration";
  // The arrays are empty here, so these change nothing; a Reset on a filled string array would
  // break its strings.
  ListA.Reset();
  ListB.Reset();
  Texts.Reset();
}

CNuMetricCalibAddImageResult::~CNuMetricCalibAddImageResult() = default;

}  // namespace Nu
