#include <Nu.Core.Ex/NuMapping3D.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

using Nu::CNuMapping3D;
using NuTest::ExpectRaises;

namespace {

constexpr char MappingFile[] = "Nu.Core.Ex/NuMapping3D.cpp";
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

// Each node holds its own float index + 1, so a mapped z tells which node was used.
std::vector<float> Numbered(std::size_t count) {
  std::vector<float> nodes(count);
  std::iota(nodes.begin(), nodes.end(), 1.0f);
  return nodes;
}

// A box of 0..3, 0..2, 0..2 with counts 4, 3, 3: every step is 1.
CNuMapping3D UnitSteps() {
  CNuMapping3D mapping;
  std::vector<float> const nodes = Numbered(36);
  EXPECT_TRUE(mapping.Create(0, 0, 0, 3, 2, 2, 4, 3, 3, nodes.data()));
  return mapping;
}

// The z that Map gives, or 1000 when Map refuses; x and y must never change.
float MappedZ(CNuMapping3D& mapping, float x, float y, float z) {
  float const x0 = x;
  float const y0 = y;
  bool const mapped = mapping.Map(x, y, z);
  EXPECT_EQ(x, x0);
  EXPECT_EQ(y, y0);
  return mapped ? z : 1000.0f;
}

// A mapping whose size queries raise, to reach the wraps.
class FailingMapping : public CNuMapping3D {
public:
  unsigned int GetByteCount() const override {
    if (Fail) NU_RAISE("Failing.h", "no byte count");
    return CNuMapping3D::GetByteCount();
  }
  bool Fail = false;
};

}  // namespace

TEST(NuMapping3D, EmptyMappingRefusesEverything) {
  CNuMapping3D mapping;
  EXPECT_FALSE(mapping.IsValid());
  EXPECT_EQ(mapping.GetByteCount(), 0u);
  EXPECT_EQ(mapping.GetDataPtr(), nullptr);
  float x = 0.5f, y = 0.5f, z = 0.5f;
  EXPECT_FALSE(mapping.Map(x, y, z));
  EXPECT_EQ(z, 0.5f);
  float const node = 1.0f;
  EXPECT_FALSE(mapping.Set(&node));
  mapping.SetZero();
  EXPECT_TRUE(mapping.Destroy());
  EXPECT_TRUE(mapping.Destroy());
}

TEST(NuMapping3D, NodeTableRunsYFastestThenXThenZ) {
  CNuMapping3D mapping = UnitSteps();
  EXPECT_EQ(mapping.GetByteCount(), 144u);
  // ix 2, iy 1, iz 1: float index 1 * 12 + 2 * 3 + 1 = 19.
  EXPECT_EQ(MappedZ(mapping, 2.5f, 1.5f, 1.5f), 1.5f + 20.0f);
  EXPECT_EQ(MappedZ(mapping, 0.5f, 0.5f, 0.5f), 0.5f + 1.0f);
  EXPECT_EQ(MappedZ(mapping, 0.5f, 1.5f, 0.5f), 0.5f + 2.0f);
  EXPECT_EQ(MappedZ(mapping, 1.5f, 0.5f, 0.5f), 0.5f + 4.0f);
}

TEST(NuMapping3D, MapTruncatesToTheLowerCornerNode) {
  CNuMapping3D mapping;
  std::vector<float> nodes(8, 5.0f);
  nodes[0] = 0.25f;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nodes.data()));
  EXPECT_EQ(MappedZ(mapping, 0.5f, 0.5f, 0.5f), 0.75f);
  EXPECT_EQ(MappedZ(mapping, 0.999f, 0.999f, 0.999f), 0.999f + 0.25f);
}

TEST(NuMapping3D, FacesEdgesCornersAndNaNAreOutside) {
  CNuMapping3D mapping = UnitSteps();
  struct Point {
    float X, Y, Z;
  };
  for (Point p :
       {Point{0, 0.5f, 0.5f}, Point{3, 0.5f, 0.5f}, Point{1, 0, 1}, Point{1, 1, 2}, Point{0, 0, 0},
        Point{3, 2, 2}, Point{-1, 1, 1}, Point{NaN, 1, 1}, Point{1, NaN, 1}, Point{1, 1, NaN}}) {
    SCOPED_TRACE(testing::Message() << p.X << ", " << p.Y << ", " << p.Z);
    EXPECT_FALSE(mapping.Contains(p.X, p.Y, p.Z));
    float x = p.X, y = p.Y, z = p.Z;
    EXPECT_FALSE(mapping.Map(x, y, z));
  }
  EXPECT_TRUE(mapping.Contains(0.001f, 1.999f, 1.0f));
}

TEST(NuMapping3D, ZeroNodesRefuseAndNaNNodesApply) {
  CNuMapping3D mapping;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  for (float node : {0.0f, -0.0f}) {
    std::vector<float> nodes(8, node);
    mapping.Set(nodes.data());
    float x = 0.5f, y = 0.5f, z = 0.5f;
    EXPECT_FALSE(mapping.Map(x, y, z));
    EXPECT_EQ(z, 0.5f);
  }
  std::vector<float> const nans(8, NaN);
  mapping.Set(nans.data());
  float x = 0.5f, y = 0.5f, z = 0.5f;
  EXPECT_TRUE(mapping.Map(x, y, z));
  EXPECT_TRUE(std::isnan(z));
}

TEST(NuMapping3D, OneNodeAxisHasAnInfiniteStepAndIndexZero) {
  CNuMapping3D mapping;
  std::vector<float> const nodes = Numbered(4);
  ASSERT_TRUE(mapping.Create(0, 0, 0, 10, 1, 1, 1, 2, 2, nodes.data()));
  EXPECT_EQ(MappedZ(mapping, 9.5f, 0.5f, 0.5f), 0.5f + 1.0f);
  EXPECT_EQ(MappedZ(mapping, 0.5f, 0.5f, 0.5f), 0.5f + 1.0f);
  // min == max: the step is a NaN, and no point lies inside.
  ASSERT_TRUE(mapping.Create(2, 0, 0, 2, 1, 1, 1, 2, 2, nodes.data()));
  EXPECT_FALSE(mapping.Contains(2, 0.5f, 0.5f));
}

TEST(NuMapping3D, AQuotientThatIsNoNumberIsRefused) {
  // Max - Min overflows: the step is infinite, and far from MinX x - MinX is infinite too, so
  // the quotient is a NaN. Its conversion must not be undefined; it is refused.
  CNuMapping3D mapping;
  std::vector<float> const nodes(8, 1.0f);
  ASSERT_TRUE(mapping.Create(-3e38f, 0, 0, 3e38f, 1, 1, 2, 2, 2, nodes.data()));
  EXPECT_EQ(MappedZ(mapping, 2e38f, 0.5f, 0.5f), 1000.0f);
  EXPECT_EQ(MappedZ(mapping, 0.0f, 0.5f, 0.5f), 1.5f);
}

TEST(NuMapping3D, AnInvertedBoxIsAcceptedButContainsNothing) {
  CNuMapping3D mapping;
  ASSERT_TRUE(mapping.Create(1, 0, 0, 0, 1, 1, 2, 2, 2, nullptr));
  EXPECT_TRUE(mapping.IsValid());
  EXPECT_FALSE(mapping.Contains(0.5f, 0.5f, 0.5f));
}

TEST(NuMapping3D, CreateKeepsTheBlockWhileTheByteCountIsUnchanged) {
  CNuMapping3D mapping;
  std::vector<float> const nodes = Numbered(24);
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 2, 3, 2, 3, 4, nodes.data()));
  float const* block = mapping.GetDataPtr();
  ASSERT_TRUE(mapping.Create(0, 0, 0, 3, 2, 1, 4, 3, 2, nullptr));
  EXPECT_EQ(mapping.GetDataPtr(), block);
  EXPECT_EQ(mapping.GetDataPtr()[23], 24.0f);  // old values under the new box
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  EXPECT_EQ(mapping.GetByteCount(), 32u);
}

TEST(NuMapping3D, BadCountsEmptyTheMappingWithoutRaising) {
  for (auto counts : {std::tuple{0, 2, 2}, {2, -1, 2}, {2, 2, 0}}) {
    CNuMapping3D mapping = UnitSteps();
    auto [cx, cy, cz] = counts;
    EXPECT_FALSE(mapping.Create(0, 0, 0, 1, 1, 1, cx, cy, cz, nullptr));
    EXPECT_FALSE(mapping.IsValid());
    EXPECT_EQ(mapping.GetByteCount(), 0u);
  }
}

TEST(NuMapping3D, ByteCountWrapsAt32Bits) {
  CNuMapping3D mapping;
  EXPECT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 32768, 32768, 1, nullptr));
  EXPECT_EQ(mapping.GetByteCount(), 0u);
  EXPECT_FALSE(mapping.IsValid());
}

TEST(NuMapping3D, SetCopiesTheTableAndStillReturnsFalse) {
  CNuMapping3D mapping = UnitSteps();
  std::vector<float> const nodes(36, 2.0f);
  EXPECT_FALSE(mapping.Set(nodes.data()));
  EXPECT_EQ(mapping.GetDataPtr()[35], 2.0f);
  mapping.SetZero();
  EXPECT_EQ(mapping.GetDataPtr()[35], 0.0f);
  EXPECT_EQ(mapping.GetDataPtr()[0], 0.0f);
}

TEST(NuMapping3D, CopiesOwnTheirTable) {
  CNuMapping3D original = UnitSteps();
  CNuMapping3D copy(original);
  CNuMapping3D assigned;
  assigned = original;
  EXPECT_NE(copy.GetDataPtr(), original.GetDataPtr());
  original.SetZero();
  EXPECT_EQ(MappedZ(copy, 2.5f, 1.5f, 1.5f), 21.5f);
  EXPECT_EQ(MappedZ(assigned, 2.5f, 1.5f, 1.5f), 21.5f);
  assigned = *&assigned;
  EXPECT_EQ(MappedZ(assigned, 2.5f, 1.5f, 1.5f), 21.5f);

  CNuMapping3D const empty;
  EXPECT_FALSE(assigned.Create(empty));
  EXPECT_FALSE(assigned.IsValid());
}

TEST(NuMapping3D, MoveTakesTheBlockAndEmptiesTheSource) {
  CNuMapping3D source = UnitSteps();
  float const* block = source.GetDataPtr();
  CNuMapping3D moved(std::move(source));
  EXPECT_EQ(moved.GetDataPtr(), block);
  EXPECT_FALSE(source.IsValid());
  EXPECT_EQ(source.GetByteCount(), 0u);
  EXPECT_EQ(MappedZ(moved, 2.5f, 1.5f, 1.5f), 21.5f);
  CNuMapping3D target = UnitSteps();
  target = std::move(moved);
  EXPECT_EQ(target.GetDataPtr(), block);
  EXPECT_FALSE(moved.IsValid());
}

TEST(NuMapping3D, SelfMoveEmptiesTheMapping) {
  CNuMapping3D mapping = UnitSteps();
  CNuMapping3D& alias = mapping;
  EXPECT_TRUE(mapping.Create(std::move(alias)));
  EXPECT_FALSE(mapping.IsValid());
  EXPECT_EQ(mapping.GetByteCount(), 0u);
}

TEST(NuMapping3D, WrapsNameTheOperationAroundTheCause) {
  FailingMapping mapping;
  ASSERT_TRUE(mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr));
  mapping.Fail = true;
  ExpectRaises([&] { mapping.Create(0, 0, 0, 1, 1, 1, 2, 2, 2, nullptr); },
               {{"Error creating mapping", "Create", MappingFile},
                {"no byte count", "GetByteCount", "Failing.h"}});
  ExpectRaises([&] { mapping.SetZero(); }, {{"Error setting image to zero", "SetZero", MappingFile},
                                            {"no byte count", "GetByteCount", "Failing.h"}});
}
