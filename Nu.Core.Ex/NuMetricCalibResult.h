#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>

namespace Nu {

/// What a metric calibration reports as a whole: eight values that only the calibration
/// interprets.
///
/// A plain record; this library only sets the default.
class NU_CORE_EX_EXPORT CNuMetricCalibResult {
public:
  /// All eight values 0.0.
  CNuMetricCalibResult();
  /// Nothing to release.
  virtual ~CNuMetricCalibResult();

  double Value1;  ///< 0.0 by default.
  double Value2;  ///< 0.0 by default.
  double Value3;  ///< 0.0 by default.
  double Value4;  ///< 0.0 by default.
  double Value5;  ///< 0.0 by default.
  double Value6;  ///< 0.0 by default.
  double Value7;  ///< 0.0 by default.
  double Value8;  ///< 0.0 by default.
};

}  // namespace Nu
