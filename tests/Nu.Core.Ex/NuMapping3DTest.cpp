#include <Nu.Core.Ex/NuMapping3D.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>
#include <vector>

using Nu::CNuMapping3D;
using namespace NuTest;

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Refused = 1000.0f;

// A box of 0..3, 0..2, 0..2 with counts 4, 3, 3 (every step 1); node i holds i + 1, so a mapped z
// tells which node was used.
CNuMapping3D UnitSteps() {
  std::vector<float> nodes(36);
  std::iota(nodes.begin(), nodes.end(), 1.0f);
  CNuMapping3D mapping;
  EXPECT_TRUE(mapping.Create(0, 0, 0, 3, 2, 2, 4, 3, 3, nodes.data()));
  return mapping;
}

// The z that Map gives, or Refused where it refuses with z untouched; x and y never change.
float MappedZ(CNuMapping3D& mapping, float x, float y, float z) {
  float point[3] = {x, y, z};
  bool const mapped = mapping.Map(point[0], point[1], point[2]);
  EXPECT_EQ(std::memcmp(point, &x, 4) + std::memcmp(point + 1, &y, 4), 0);
  EXPECT_TRUE(mapped || std::memcmp(point + 2, &z, 4) == 0);
  return mapped ? point[2] : Refused;
}

}  // namespace

TEST(NuMapping3D, MapAddsTheLowerCornerNodeYFastestThenXThenZStrictlyInsideAndNeverAZeroNode) {
  CNuMapping3D mapping = UnitSteps(), empty;
  // (x, y, z, mapped z): node 1 * 12 + 2 * 3 + 1 first; then truncated, not rounded.
  for (auto [x, y, z, mapped] : {std::array{2.5f, 1.5f, 1.5f, 1.5f + 20}, {0.5f, 1.5f, 0.5f, 0.5f + 2}, {1.5f, 0.5f, 0.5f, 0.5f + 4},
                                 {0.999f, 0.999f, 0.999f, 0.999f + 1}, {0, 0.5f, 0.5f, Refused}, {3, 0.5f, 0.5f, Refused},
                                 {1, 0, 1, Refused}, {1, 1, 2, Refused}, {-1, 1, 1, Refused}, {NaN, 1, 1, Refused},
                                 {1, NaN, 1, Refused}, {1, 1, NaN, Refused}})
    EXPECT_EQ(MappedZ(mapping, x, y, z), mapped) << x << " " << y << " " << z;
  EXPECT_EQ(MappedZ(empty, 0.5f, 0.5f, 0.5f), Refused);
  for (float node : {0.0f, -0.0f, NaN}) {
    std::vector<float> const nodes(8, node);
    ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nodes.data()));
    float const z = MappedZ(mapping, 0.5f, 0.5f, 0.5f);
    EXPECT_TRUE(std::isnan(node) ? std::isnan(z) : z == Refused) << node;
  }
  // One node on z: an infinite step, index 0. Max - Min overflows on x: an infinite step too, so far
  // from MinX the quotient is a NaN, which must be refused, not converted.
  std::vector<float> const nodes = {1, 2, 3, 4};
  ASSERT_TRUE(mapping.Create(-3e38f, 0, 0, 3e38f, 1, 1, 2, 2, 1, nodes.data()));
  EXPECT_EQ(MappedZ(mapping, 0.0f, 0.5f, 0.5f), 1.5f);
  EXPECT_EQ(MappedZ(mapping, 2e38f, 0.5f, 0.5f), Refused);
}

TEST(NuMapping3D, CreateKeepsTheBlockWhileTheWrappingByteCountStaysCopiesOwnTheirTableAndMovesTakeIt) {
  CNuMapping3D mapping = UnitSteps(), assigned;
  float const* block = mapping.GetDataPtr();
  CNuMapping3D copy(mapping);
  assigned = mapping;
  assigned = static_cast<CNuMapping3D const&>(assigned);
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 3, 3, 4, nullptr));
  EXPECT_TRUE(mapping.GetDataPtr() == block && block[35] == 36.0f);  // old values under the new box
  std::vector<float> const twos(36, 2.0f);
  EXPECT_TRUE(!mapping.Set(twos.data()) && block[0] == 2.0f && block[35] == 2.0f);
  mapping.SetZero();
  EXPECT_TRUE(block[0] + block[35] == 0.0f && MappedZ(copy, 2.5f, 1.5f, 1.5f) + MappedZ(assigned, 2.5f, 1.5f, 1.5f) == 43.0f);
  block = copy.GetDataPtr();
  CNuMapping3D moved(std::move(copy));
  assigned = std::move(moved);
  EXPECT_TRUE(assigned.GetDataPtr() == block && !copy.IsValid() && !moved.IsValid() && moved.GetByteCount() == 0);
  CNuMapping3D& alias = assigned;
  EXPECT_TRUE(assigned.Create(std::move(alias)) && !assigned.IsValid());  // a self-move empties
  for (auto [x, y, z] : {std::tuple{0, 2, 2}, {2, -1, 2}, {2, 2, 0}}) {
    ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
    EXPECT_FALSE(mapping.Create(0, 0, 0, 1, 1, 1, x, y, z, nullptr) || mapping.IsValid() || copy.Create(mapping));
  }
  EXPECT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 32768, 32768, 1, nullptr) && !mapping.IsValid());  // 2^32 bytes wrap to 0
}

TEST(NuMapping3D, WrapsNameTheOperationAroundTheCause) {
  struct CFailing : CNuMapping3D {
    unsigned int GetByteCount() const override {
      if (Fail) NU_RAISE("Failing.h", "no byte count");
      return CNuMapping3D::GetByteCount();
    }
    bool Fail = false;
  } mapping;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  mapping.Fail = true;
  ExpectedLevel const cause{"no byte count", "GetByteCount", "Failing.h"};
  ExpectRaises([&] { mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr); }, {{"Error creating mapping", "Create", MappingFile}, cause});
  ExpectRaises([&] { mapping.SetZero(); }, {{"Error setting image to zero", "SetZero", MappingFile}, cause});
}
