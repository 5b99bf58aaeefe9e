#include <Nu.Core.Ex/NuMetricCalibResult.h>

namespace Nu {

CNuMetricCalibResult::CNuMetricCalibResult()
    : Value1(0.0),
      Value2(0.0),
      Value3(0.0),
      Value4(0.0),
      Value5(0.0),
      Value6(0.0),
      Value7(0.0),
      Value8(0.0) {}

CNuMetricCalibResult::~CNuMetricCalibResult() = default;

}  // namespace Nu
