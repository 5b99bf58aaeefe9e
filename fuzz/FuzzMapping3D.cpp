// CNuMapping3D::Create, Set and Map against a direct model of the lookup: strict box test,
// float quotients truncated toward zero, upper index tests, zero nodes refused.
#include <Nu.Core.Ex/NuMapping3D.h>

#include "FuzzInput.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// Truncation as the processor does it: anything outside int's range becomes INT_MIN.
int Truncate(float q) {
  if (!(q >= -2147483648.0f && q < 2147483648.0f)) return INT32_MIN;
  return static_cast<int>(q);
}

struct CModel {
  float Min[3], Max[3], Step[3];
  int Count[3];
  std::vector<float> Table;

  bool Map(float x, float y, float& z) const {
    float const p[3] = {x, y, z};
    for (int a = 0; a < 3; ++a)
      if (!(Min[a] < p[a] && p[a] < Max[a])) return false;
    int index[3];
    for (int a = 0; a < 3; ++a) {
      index[a] = Truncate((p[a] - Min[a]) / Step[a]);
    }
    for (int a = 0; a < 3; ++a)
      if (index[a] >= Count[a] || index[a] < 0) return false;
    float const value = Table[static_cast<std::size_t>(index[2] * (Count[0] * Count[1]) + index[0] * Count[1] + index[1])];
    if (value == 0.0f) return false;
    z = z + value;
    return true;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  NuFuzz::CInput input(data, size);
  CModel model{};
  for (int a = 0; a < 3; ++a) model.Min[a] = input.Take<float>();
  for (int a = 0; a < 3; ++a) model.Max[a] = input.Take<float>();
  // Counts stay small: a table whose true size passes 2^32 bytes is read past its wrapped block
  // by design, which is the caller's affair and not something to fuzz.
  for (int a = 0; a < 3; ++a) model.Count[a] = static_cast<int>(input.Below(12)) - 1;
  Nu::CNuMapping3D mapping;
  bool const valid = model.Count[0] > 0 && model.Count[1] > 0 && model.Count[2] > 0;
  std::size_t const nodes = valid ? static_cast<std::size_t>(model.Count[0] * model.Count[1] * model.Count[2]) : 0;
  model.Table.resize(nodes);
  for (float& node : model.Table) {
    std::uint8_t const kind = input.Take<std::uint8_t>();
    node = kind < 64 ? 0.0f : kind < 96 ? -0.0f : kind < 104 ? NAN : static_cast<float>(kind) * 0.25f - 40.0f;
  }
  bool const created = mapping.Create(model.Min[0], model.Min[1], model.Min[2], model.Max[0], model.Max[1],
                                      model.Max[2], model.Count[0], model.Count[1], model.Count[2],
                                      valid ? model.Table.data() : nullptr);
  if (created != valid || mapping.IsValid() != valid) std::abort();
  if (!valid) return 0;
  if (mapping.GetByteCount() != nodes * 4) std::abort();
  for (int a = 0; a < 3; ++a)
    model.Step[a] = (model.Max[a] - model.Min[a]) / static_cast<float>(model.Count[a] - 1);
  if (mapping.Set(model.Table.data())) std::abort();

  while (!input.Empty()) {
    float x = input.Take<float>(), y = input.Take<float>(), z = input.Take<float>();
    // Points inside the box are more interesting than random bits: mix them in.
    if ((input.Take<std::uint8_t>() & 1) != 0) {
      x = model.Min[0] + (model.Max[0] - model.Min[0]) * std::fabs(std::fmod(x, 1.0f));
      y = model.Min[1] + (model.Max[1] - model.Min[1]) * std::fabs(std::fmod(y, 1.0f));
      z = model.Min[2] + (model.Max[2] - model.Min[2]) * std::fabs(std::fmod(z, 1.0f));
    }
    float mx = x, my = y, mz = z;
    float ex = x, ey = y, ez = z;
    bool const mapped = mapping.Map(mx, my, mz);
    bool const expected = model.Map(ex, ey, ez);
    if (mapped != expected) std::abort();
    if (std::memcmp(&mx, &x, 4) != 0 || std::memcmp(&my, &y, 4) != 0 || std::memcmp(&mz, &ez, 4) != 0) std::abort();
  }
  return 0;
}
