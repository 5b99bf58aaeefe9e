#include <Nu.Core.Math/NuMatrix.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <vector>

using namespace Nu;
using NuTest::ExpectRaises;

namespace {

constexpr char MatrixFile[] = "Nu.Core.Math/NuMatrix.h";

// Shows what the interface hides: the storage's capacity.
template <class T>
class MatrixProbe : public CNuMatrix<T> {
public:
  using CNuMatrix<T>::CNuMatrix;
  std::size_t Capacity() const { return this->Storage.capacity(); }
  std::size_t StorageLength() const { return this->Storage.size(); }
};

std::vector<int> Flat(CNuMatrix<int> const& matrix) {
  unsigned long rows = 0;
  unsigned long columns = 0;
  matrix.GetSize(rows, columns);
  auto const* data = static_cast<int const*>(matrix.GetPointer());
  return std::vector<int>(data, data + rows * columns);
}

// The rows [1, 2, 3] and [4, 5, 6].
MatrixProbe<int> OneToSix() {
  MatrixProbe<int> matrix(2, 3);
  auto* data = static_cast<int*>(matrix.GetPointer());
  for (int i = 0; i < 6; ++i) data[i] = i + 1;
  return matrix;
}

void ExpectSize(CNuMatrix<int> const& matrix, unsigned long rows, unsigned long columns) {
  unsigned long r = 99;
  unsigned long c = 99;
  matrix.GetSize(r, c);
  EXPECT_EQ(r, rows);
  EXPECT_EQ(c, columns);
}

// A foreign 2-D block of 4-byte floats.
class FloatBlock2D : public IMemory2DAccess {
public:
  FloatBlock2D(unsigned long rows, unsigned long columns, std::vector<float> values)
      : Rows(rows), Columns(columns), Values(std::move(values)) {}
  unsigned long GetElementSize() const override { return sizeof(float); }
  void GetSize(unsigned long& rows, unsigned long& columns) const override {
    rows = Rows;
    columns = Columns;
  }
  void const* GetPointer() const override { return Values.data(); }
  bool IsValid() const override { return true; }

private:
  unsigned long Rows;
  unsigned long Columns;
  std::vector<float> Values;
};

// An element whose construction can be made to raise, to reach the wrap of SetDimensions.
struct Fragile {
  Fragile() {
    if (Armed) NU_RAISE("Fragile.h", "element refused");
  }
  explicit Fragile(int value) : Value(value) {}
  int Value = 0;
  static inline bool Armed = false;
};

}  // namespace

TEST(NuMatrix, DefaultIsEmptyAndInvalid) {
  CNuMatrix<int> matrix;
  ExpectSize(matrix, 0, 0);
  EXPECT_FALSE(matrix.IsValid());
  EXPECT_EQ(matrix.GetPointer(), nullptr);
  matrix.Reset();
  matrix.Delete();
  EXPECT_FALSE(matrix.IsValid());
  EXPECT_EQ(matrix.GetElementSize(), sizeof(int));
  EXPECT_EQ(CNuMatrix<double>().GetElementSize(), sizeof(double));
  EXPECT_EQ(CNuMatrix<double>().Precision, 1e-12);
}

TEST(NuMatrix, ZeroProductAllocatesNothingAndKeepsTheDimensions) {
  CNuMatrix<int> const matrix(0, 4);
  ExpectSize(matrix, 0, 4);
  EXPECT_FALSE(matrix.IsValid());
  EXPECT_EQ(Flat(CNuMatrix<int>(2, 2)), (std::vector<int>{0, 0, 0, 0}));
}

// ---- Resize keeps positions, in a new block ----

TEST(NuMatrix, ResizeKeepsEachElementAtItsPosition) {
  struct Case {
    unsigned long Rows, Columns;
    std::vector<int> Expected;
  };
  std::vector<Case> const cases = {
      {3, 2, {1, 2, 4, 5, 0, 0}},
      {1, 4, {1, 2, 3, 0}},
      {6, 1, {1, 4, 0, 0, 0, 0}},  // same count, new shape: still a new block
      {3, 4, {1, 2, 3, 0, 4, 5, 6, 0, 0, 0, 0, 0}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Rows << " x " << c.Columns);
    MatrixProbe<int> matrix = OneToSix();
    void const* block = matrix.GetPointer();
    matrix.Resize(c.Rows, c.Columns);
    ExpectSize(matrix, c.Rows, c.Columns);
    EXPECT_EQ(Flat(matrix), c.Expected);
    EXPECT_NE(matrix.GetPointer(), block);
    EXPECT_EQ(matrix.Capacity(), c.Rows * c.Columns);
  }
}

TEST(NuMatrix, ResizeToTheSameSizeTouchesNothing) {
  MatrixProbe<int> matrix = OneToSix();
  void const* block = matrix.GetPointer();
  matrix.Resize(2, 3);
  EXPECT_EQ(matrix.GetPointer(), block);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(NuMatrix, ResizeWithAZeroDimensionDependsOnWhetherTheMatrixWasEmpty) {
  MatrixProbe<int> filled = OneToSix();
  void const* block = filled.GetPointer();
  filled.Resize(0, 3);
  ExpectSize(filled, 0, 0);
  EXPECT_TRUE(filled.IsValid());
  EXPECT_EQ(filled.GetPointer(), block);

  CNuMatrix<int> fresh;
  fresh.Resize(0, 3);
  ExpectSize(fresh, 0, 3);
  EXPECT_FALSE(fresh.IsValid());
  fresh.Resize(2, 3);  // from an empty matrix the flat path sizes the block
  EXPECT_EQ(Flat(fresh), (std::vector<int>(6, 0)));
}

// ---- New reshapes the flat block ----

TEST(NuMatrix, NewKeepsTheFlatPrefixInTheOldBlock) {
  MatrixProbe<int> matrix = OneToSix();
  void const* block = matrix.GetPointer();
  matrix.New(3, 2);
  ExpectSize(matrix, 3, 2);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(matrix.GetPointer(), block);
  matrix.New(2, 2);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(matrix.Capacity(), 6u);
  matrix.New(2, 4);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{1, 2, 3, 4, 0, 0, 0, 0}));
  EXPECT_EQ(matrix.Capacity(), 8u);  // 4 + max(4, 4)
  matrix.New(3, 3);
  EXPECT_EQ(matrix.Capacity(), 16u);
}

TEST(NuMatrix, DeleteKeepsTheBlockAndStaysValid) {
  MatrixProbe<int> matrix = OneToSix();
  void const* block = matrix.GetPointer();
  matrix.Delete();
  ExpectSize(matrix, 0, 0);
  EXPECT_TRUE(matrix.IsValid());
  EXPECT_EQ(matrix.GetPointer(), block);
  matrix.Resize(2, 2);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{0, 0, 0, 0}));
}

TEST(NuMatrix, ResetZeroesAndKeepsTheDimensions) {
  MatrixProbe<int> matrix = OneToSix();
  matrix.Reset();
  ExpectSize(matrix, 2, 3);
  EXPECT_EQ(Flat(matrix), (std::vector<int>(6, 0)));
}

// ---- CopyFrom ----

TEST(NuMatrix, CopyFromTakesTheSourceShapeThroughSetDimensions) {
  MatrixProbe<int> target(4, 4);
  void const* block = target.GetPointer();
  MatrixProbe<int> const source = OneToSix();
  target.CopyFrom(&source);
  ExpectSize(target, 2, 3);
  EXPECT_EQ(Flat(target), (std::vector<int>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(target.GetPointer(), block);  // large enough: no allocation
  target.CopyFrom(&target);
  EXPECT_EQ(Flat(target), (std::vector<int>{1, 2, 3, 4, 5, 6}));

  CNuMatrix<int> const zeroByFour(0, 4);
  target.CopyFrom(&zeroByFour);
  ExpectSize(target, 0, 4);
  CNuMatrix<int> const empty;
  target.CopyFrom(&empty);
  ExpectSize(target, 0, 0);
}

TEST(NuMatrix, CopyFromComparesElementSizesOnly) {
  MatrixProbe<int> matrix = OneToSix();
  CNuMatrix<double> const doubles(1, 1);
  ExpectRaises([&] { matrix.CopyFrom(&doubles); },
               {{"cannot copy Memory2D, elementSize is different", "CopyFrom", MatrixFile}});
  ExpectSize(matrix, 2, 3);
  EXPECT_EQ(Flat(matrix), (std::vector<int>{1, 2, 3, 4, 5, 6}));

  FloatBlock2D const floats(1, 2, {1.0f, -2.0f});
  matrix.CopyFrom(&floats);
  ExpectSize(matrix, 1, 2);
  auto const* bits = static_cast<unsigned int const*>(matrix.GetPointer());
  EXPECT_EQ(bits[0], 0x3F800000u);
  EXPECT_EQ(bits[1], 0xC0000000u);
}

TEST(NuMatrix, CopiesAreDeep) {
  MatrixProbe<int> original = OneToSix();
  CNuMatrix<int> copy(original);
  CNuMatrix<int> assigned;
  assigned = original;
  static_cast<int*>(original.GetPointer())[0] = 9;
  EXPECT_EQ(Flat(copy), (std::vector<int>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(Flat(assigned), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

// ---- the two resize paths fail differently; none of these sizes reaches the allocator ----

TEST(NuMatrix, ResizeTurnsAnImpossibleBlockIntoOutOfMemoryWithDimensionsZero) {
  unsigned long const huge = std::numeric_limits<unsigned long>::max() / 4;
  for (unsigned long columns : {3ul, huge}) {
    SCOPED_TRACE(columns);
    MatrixProbe<int> matrix = OneToSix();
    void const* block = matrix.GetPointer();
    try {
      matrix.Resize(huge, columns);  // 3a: the true count is past the limit
      ADD_FAILURE() << "nothing was raised";
    } catch (CNuOutOfMemoryException const& e) {
      NuTest::ExpectChain(e, {{"Error resizing matrix:std::bad_alloc", "Resize", MatrixFile}});
    }
    ExpectSize(matrix, 0, 0);
    EXPECT_TRUE(matrix.IsValid());
    EXPECT_EQ(matrix.GetPointer(), block);
  }
  CNuMatrix<int> empty;
  try {
    empty.Resize(huge, 1);  // the flat path, past what the vector can hold
    ADD_FAILURE() << "nothing was raised";
  } catch (CNuOutOfMemoryException const& e) {
    NuTest::ExpectChain(e, {{"Error resizing matrix:std::bad_alloc", "Resize", MatrixFile}});
  }
  ExpectSize(empty, 0, 0);
  EXPECT_FALSE(empty.IsValid());
}

TEST(NuMatrix, ResizeOfAnEmptyMatrixPastTheLimitPassesLengthError) {
  CNuMatrix<int> matrix;
  unsigned long const aboveLimit = std::numeric_limits<unsigned long>::max() / 4 + 1;
  EXPECT_THROW(matrix.Resize(aboveLimit, 1), std::length_error);
  ExpectSize(matrix, aboveLimit, 1);
}

TEST(NuMatrix, SetDimensionsLetsAllocationFailuresPassWithTheRequestedDimensions) {
  MatrixProbe<int> matrix = OneToSix();
  void const* block = matrix.GetPointer();
  unsigned long const huge = std::numeric_limits<unsigned long>::max() / 4;
  EXPECT_THROW(matrix.SetDimensions(huge, 1), std::bad_alloc);
  ExpectSize(matrix, huge, 1);
  EXPECT_EQ(matrix.GetPointer(), block);
  EXPECT_EQ(matrix.StorageLength(), 6u);
  matrix.Reset();  // stays within the old block
  EXPECT_THROW(matrix.New(huge + 1, 1), std::length_error);
  ExpectSize(matrix, huge + 1, 1);
}

TEST(NuMatrix, SetDimensionsWrapsAnExceptionOfTheRuntime) {
  CNuMatrix<Fragile> matrix(1, 2);
  Fragile::Armed = true;
  ExpectRaises([&] { matrix.SetDimensions(2, 2); },
               {{"Error resizing matrix", "SetDimensions", MatrixFile},
                {"element refused", "Fragile", "Fragile.h"}});
  ExpectRaises([&] { CNuMatrix<Fragile> failing(1, 1); },
               {{"Error resizing matrix", "SetDimensions", MatrixFile},
                {"element refused", "Fragile", "Fragile.h"}});
  Fragile::Armed = false;
  unsigned long rows = 9;
  unsigned long columns = 9;
  matrix.GetSize(rows, columns);
  EXPECT_EQ(rows, 0u);
  EXPECT_EQ(columns, 0u);
}
