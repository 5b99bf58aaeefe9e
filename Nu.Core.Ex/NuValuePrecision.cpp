#include <Nu.Core.Ex/NuValuePrecision.h>

namespace Nu {

// The bits are part of the contract: 0x358637BD and 0x3D719799812DEA11.
template <>
float CNuValuePrecision<float>::DefaultPrecision() {
  return 1e-6f;
}

template <>
double CNuValuePrecision<double>::DefaultPrecision() {
  return 1e-12;
}

template <>
int CNuValuePrecision<int>::DefaultPrecision() {
  return 0;
}

template <>
unsigned int CNuValuePrecision<unsigned int>::DefaultPrecision() {
  return 0;
}

template <>
unsigned long CNuValuePrecision<unsigned long>::DefaultPrecision() {
  return 0;
}

}  // namespace Nu
