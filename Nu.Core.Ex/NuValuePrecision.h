#pragma once
#include <Nu.Core.Ex/NuCoreExExport.h>

namespace Nu {

// A default precision value per numeric type, inherited by the matrices as `Precision`.
template <class T>
class CNuValuePrecision {
public:
  // Precision = DefaultPrecision().
  CNuValuePrecision() : Precision(DefaultPrecision()) {}

  // A constant: 1e-6 for float, 1e-12 for double, 0 for every integer type.
  static T DefaultPrecision() { return T(0); }

  T Precision;
};

template <>
NU_CORE_EX_EXPORT float CNuValuePrecision<float>::DefaultPrecision();
template <>
NU_CORE_EX_EXPORT double CNuValuePrecision<double>::DefaultPrecision();
template <>
NU_CORE_EX_EXPORT int CNuValuePrecision<int>::DefaultPrecision();
template <>
NU_CORE_EX_EXPORT unsigned int CNuValuePrecision<unsigned int>::DefaultPrecision();
template <>
NU_CORE_EX_EXPORT unsigned long CNuValuePrecision<unsigned long>::DefaultPrecision();

}  // namespace Nu
