#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>

namespace Nu {

// What a metric calibration reports as a whole: eight values that only the calibration
// interprets. A plain record; this library only sets the default.
class NU_CORE_EX_EXPORT CNuMetricCalibResult {
public:
  // All eight values 0.0.
  CNuMetricCalibResult();
  // Nothing to release.
  virtual ~CNuMetricCalibResult();

  double Value1;
  double Value2;
  double Value3;
  double Value4;
  double Value5;
  double Value6;
  double Value7;
  double Value8;
};

}  // namespace Nu
