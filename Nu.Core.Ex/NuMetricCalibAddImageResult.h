#pragma once
#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuCoreExExport.h>
#include <Nu.Core/NuString.h>

namespace Nu {

/// What a metric calibration reports after adding one image.
///
/// A plain record filled by the calibration; this library only sets the default, which says
/// that nothing was added. The meaning of the fields is the calibration's.
class NU_CORE_EX_EXPORT CNuMetricCalibAddImageResult {
public:
  /// ObjectId -1, ValueA and ValueB 0, Flag false, Message "No object added to metric
  /// calibration", three empty arrays. A failed allocation passes through unchanged.
  CNuMetricCalibAddImageResult();
  /// Destroys Texts, ListB, ListA and Message, in this order.
  virtual ~CNuMetricCalibAddImageResult();

  int ObjectId;           ///< An object id; -1 by default, with the default Message.
  int ValueA;             ///< 0 by default.
  int ValueB;             ///< 0 by default.
  bool Flag;              ///< False by default.
  CNuString Message;      ///< "No object added to metric calibration" by default.
  CNuArrayUInt ListA;     ///< Empty by default.
  CNuArrayUInt ListB;     ///< Empty by default.
  CNuArrayString Texts;   ///< Empty by default.
};

}  // namespace Nu
