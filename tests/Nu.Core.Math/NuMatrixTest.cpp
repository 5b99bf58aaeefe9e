#include <Nu.Core.Math/NuMatrix.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

using namespace Nu;
using namespace NuTest;
using Ints = std::vector<int>;
using Size = std::pair<unsigned long, unsigned long>;

namespace {

Size SizeOf(IMemory2DAccess const& matrix) {
  Size size{99, 99};
  matrix.GetSize(size.first, size.second);
  return size;
}

// The rows * columns elements, row after row.
Ints Flat(CNuMatrix<int> const& matrix) {
  auto const* data = static_cast<int const*>(matrix.GetPointer());
  return Ints(data, data + SizeOf(matrix).first * SizeOf(matrix).second);
}

// The rows [1, 2, 3] and [4, 5, 6], in a block of exactly six.
CNuMatrix<int> OneToSix() {
  CNuMatrix<int> matrix(2, 3);
  for (int i = 0; i < 6; ++i) static_cast<int*>(matrix.GetPointer())[i] = i + 1;
  return matrix;
}

constexpr unsigned long Huge = std::numeric_limits<unsigned long>::max() / sizeof(int);

// An element whose construction can be made to raise, to reach the wrap of SetDimensions.
struct Fragile {
  Fragile() { if (Armed) NU_RAISE("Fragile.h", "element refused"); }
  explicit Fragile(int) {}  // the default precision's zero
  static inline bool Armed = false;
};

}  // namespace

TEST(NuMatrix, ResizeKeepsPositionsNewKeepsTheFlatPrefixAndCopyFromTakesTheSourceShape) {
  // (New or Resize, rows, columns, elements); the same size changes nothing.
  for (auto const& [useNew, rows, columns, expected] :
       {std::tuple{false, 3ul, 2ul, Ints{1, 2, 4, 5, 0, 0}}, {false, 6ul, 1ul, Ints{1, 4, 0, 0, 0, 0}},
        {false, 3ul, 4ul, Ints{1, 2, 3, 0, 4, 5, 6, 0, 0, 0, 0, 0}}, {false, 2ul, 3ul, Ints{1, 2, 3, 4, 5, 6}},
        {true, 6ul, 1ul, Ints{1, 2, 3, 4, 5, 6}}, {true, 1ul, 4ul, Ints{1, 2, 3, 4}},
        {true, 2ul, 4ul, Ints{1, 2, 3, 4, 5, 6, 0, 0}}}) {
    SCOPED_TRACE(testing::Message() << (useNew ? "New(" : "Resize(") << rows << ", " << columns << ")");
    CNuMatrix<int> matrix = OneToSix();
    void const* block = matrix.GetPointer();
    useNew ? matrix.New(rows, columns) : matrix.Resize(rows, columns);
    EXPECT_TRUE(SizeOf(matrix) == Size(rows, columns) && Flat(matrix) == expected);
    EXPECT_EQ(matrix.GetPointer() == block, useNew ? expected.size() <= 6 : rows * 10 + columns == 23);
  }
  // A zero dimension empties a filled matrix to 0 by 0 but keeps the dimensions of an empty one.
  CNuMatrix<int> filled = OneToSix(), fresh(0, 4);
  void const* block = filled.GetPointer();
  filled.Resize(0, 3);
  fresh.Resize(0, 3);
  filled.Delete();  // keeps the block, so the matrix stays valid
  EXPECT_TRUE(SizeOf(filled) == Size(0, 0) && SizeOf(fresh) == Size(0, 3) && !fresh.IsValid() && filled.GetPointer() == block &&
              filled.IsValid());
  // A copy takes the source's shape through SetDimensions, and compares element sizes only.
  CNuMatrix<int> target(4, 4);
  block = target.GetPointer();
  CNuMatrix<int> const source = OneToSix();
  target.CopyFrom(&source);
  target.CopyFrom(&target);
  EXPECT_TRUE(SizeOf(target) == Size(2, 3) && target.GetPointer() == block);
  CNuMatrix<double> const doubles(1, 1);
  ExpectRaises([&] { target.CopyFrom(&doubles); }, {{"cannot copy Memory2D, elementSize is different", "CopyFrom", MatrixFile}});
  EXPECT_TRUE(Flat(target) == Flat(CNuMatrix<int>(source)) && Flat(target) == Flat(OneToSix()));
  // The precision every matrix inherits, exact to the bit.
  EXPECT_TRUE(std::bit_cast<std::uint64_t>(doubles.Precision) == 0x3D719799812DEA11u && target.Precision == 0 &&
              std::bit_cast<std::uint32_t>(CNuValuePrecision<float>::DefaultPrecision()) == 0x358637BDu);
}

// The two resize paths fail differently, by design; none of these sizes reaches the allocator.
TEST(NuMatrix, ResizeTurnsAnImpossibleBlockIntoOutOfMemoryWhileSetDimensionsPassesIt) {
  Chain const outOfMemory = {{"Error resizing matrix:std::bad_alloc", "Resize", MatrixFile}};
  CNuMatrix<int> matrix = OneToSix(), empty;
  void const* block = matrix.GetPointer();
  ExpectRaises<CNuOutOfMemoryException>([&] { matrix.Resize(Huge, 3); }, outOfMemory);
  ExpectRaises<CNuOutOfMemoryException>([&] { empty.Resize(Huge, 1); }, outOfMemory);
  EXPECT_TRUE(SizeOf(matrix) == Size(0, 0) && matrix.GetPointer() == block && SizeOf(empty) == Size(0, 0));
  EXPECT_THROW(empty.Resize(Huge + 1, 1), std::length_error);
  EXPECT_EQ(SizeOf(empty), Size(Huge + 1, 1));
  matrix = OneToSix();
  EXPECT_THROW(matrix.SetDimensions(3, Huge / 3), std::bad_alloc);
  EXPECT_TRUE(SizeOf(matrix) == Size(3, Huge / 3) && matrix.GetPointer() == block);
  matrix.Reset();       // bounded by the old block
  matrix.Resize(4, 4);  // so is the copy by position
  EXPECT_EQ(Flat(matrix), Ints(16, 0));
  EXPECT_THROW(matrix.New(Huge + 1, 1), std::length_error);
  EXPECT_EQ(SizeOf(matrix), Size(Huge + 1, 1));
  CNuMatrix<Fragile> fragile(1, 2);
  Fragile::Armed = true;
  Chain const wrapped = {{"Error resizing matrix", "SetDimensions", MatrixFile}, {"element refused", "Fragile", "Fragile.h"}};
  ExpectRaises([&] { fragile.SetDimensions(2, 2); }, wrapped);
  ExpectRaises([&] { CNuMatrix<Fragile>(1, 1); }, wrapped);
  Fragile::Armed = false;
  EXPECT_EQ(SizeOf(fragile), Size(0, 0));
}
