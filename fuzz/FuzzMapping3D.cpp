// CNuMapping3D::Create, Set and Map against a direct model of the lookup: strict box test, float
// quotients truncated toward zero (INT_MIN where the processor gives it), upper index tests, zero
// nodes refused.
#include <Nu.Core.Ex/NuMapping3D.h>
#include "FuzzInput.h"

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  float min[3], max[3], step[3], p[3];
  int count[3];
  for (float& value : min) value = input.Take<float>();
  for (float& value : max) value = input.Take<float>();
  // Counts stay small: a table whose true size passes 2^32 bytes is read past its wrapped block by
  // design, which is the caller's affair and not something to fuzz.
  for (int& value : count) value = static_cast<int>(input.Below(12)) - 1;
  bool const valid = count[0] > 0 && count[1] > 0 && count[2] > 0;
  std::vector<float> table(valid ? static_cast<std::size_t>(count[0] * count[1] * count[2]) : 0);
  for (float& node : table) {
    std::uint8_t const kind = input.Take<std::uint8_t>();
    node = kind < 64 ? 0.0f : kind < 96 ? -0.0f : kind < 104 ? NAN : static_cast<float>(kind) * 0.25f - 40.0f;
  }
  Nu::CNuMapping3D mapping;
  bool const created =
      mapping.Create(min[0], min[1], min[2], max[0], max[1], max[2], count[0], count[1], count[2], table.data());
  if (created != valid || mapping.IsValid() != valid) std::abort();
  if (!valid) return 0;
  for (int a = 0; a < 3; ++a) step[a] = (max[a] - min[a]) / static_cast<float>(count[a] - 1);
  while (!input.Empty()) {
    bool const inside = (input.Take<std::uint8_t>() & 1) != 0;  // points inside the box matter most
    bool expected = true;
    int index[3];
    for (int a = 0; a < 3; ++a) {
      p[a] = input.Take<float>();
      if (inside) p[a] = min[a] + (max[a] - min[a]) * std::fabs(std::fmod(p[a], 1.0f));
      float const q = (p[a] - min[a]) / step[a];
      index[a] = q >= -2147483648.0f && q < 2147483648.0f ? static_cast<int>(q) : INT_MIN;
      expected = expected && min[a] < p[a] && p[a] < max[a] && index[a] >= 0 && index[a] < count[a];
    }
    float const node = expected ? table[std::size_t((index[2] * count[0] + index[0]) * count[1] + index[1])] : 0;
    float const z = node != 0.0f ? p[2] + node : p[2];
    float mapped[3] = {p[0], p[1], p[2]};
    if (mapping.Map(mapped[0], mapped[1], mapped[2]) != (node != 0.0f)) std::abort();
    if (std::memcmp(mapped, p, 8) != 0 || std::memcmp(mapped + 2, &z, 4) != 0) std::abort();
  }
  return 0;
}
