#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>

namespace Nu {

/// A default precision value per numeric type, inherited by the matrices as `Precision`.
template <class T>
class CNuValuePrecision {
public:
  /// Sets Precision to DefaultPrecision().
  CNuValuePrecision() : Precision(DefaultPrecision()) {}

  /// A constant: 1e-6 for float, 1e-12 for double, 0 for every integer type.
  /// It reads nothing of an object. The library exports it for float, double, int, unsigned int
  /// and unsigned long.
  static T DefaultPrecision() { return T(0); }

  /// The default precision, set at construction; the library itself never reads it.
  T Precision;
};

/// 1e-6 for float: the bits 0x358637BD.
template <>
NU_CORE_EX_EXPORT float CNuValuePrecision<float>::DefaultPrecision();
/// 1e-12 for double: the bits 0x3D719799812DEA11.
template <>
NU_CORE_EX_EXPORT double CNuValuePrecision<double>::DefaultPrecision();
/// 0 for int.
template <>
NU_CORE_EX_EXPORT int CNuValuePrecision<int>::DefaultPrecision();
/// 0 for unsigned int.
template <>
NU_CORE_EX_EXPORT unsigned int CNuValuePrecision<unsigned int>::DefaultPrecision();
/// 0 for unsigned long.
template <>
NU_CORE_EX_EXPORT unsigned long CNuValuePrecision<unsigned long>::DefaultPrecision();

}  // namespace Nu
