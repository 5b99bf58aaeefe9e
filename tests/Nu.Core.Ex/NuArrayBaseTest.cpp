#include <Nu.Core.Ex/NuArrayBase.h>
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuArrayUChar.h>
#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuArrayUShort.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace Nu;
using NuTest::ExpectRaises;

namespace {

constexpr char ArrayFile[] = "Nu.Core.Ex/NuArrayBase.h";

// Lets the tests see the capacity, which the contract fixes but the interface does not show.
template <class T>
class CapacityProbe : public CNuArrayBase<T> {
public:
  using CNuArrayBase<T>::CNuArrayBase;
  std::size_t Capacity() const { return this->Elements.capacity(); }
};

// A foreign block of 4-byte floats, to be read by arrays of 4-byte integers.
class FloatBlock : public IMemoryAccess {
public:
  explicit FloatBlock(std::vector<float> values) : Values(std::move(values)) {}
  unsigned long GetElementSize() const override { return sizeof(float); }
  unsigned long Length() const override { return Values.size(); }
  void const* GetPointer() const override { return Values.data(); }
  bool IsValid() const override { return false; }  // never asked by CopyFrom

private:
  std::vector<float> Values;
};

template <class TArray>
std::vector<double> Contents(TArray const& array) {
  std::vector<double> values;
  for (unsigned long i = 0; i < array.Length(); ++i) values.push_back(array[i]);
  return values;
}

CNuArrayInt Ints(std::vector<int> const& values) {
  CNuArrayInt array(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) array[i] = values[i];
  return array;
}

template <class TCall>
void ExpectOutOfMemory(TCall&& call, char const* function) {
  try {
    call();
  } catch (CNuOutOfMemoryException const& e) {
    NuTest::ExpectChain(e, {{"std::bad_alloc", function, ArrayFile}});
    return;
  }
  ADD_FAILURE() << "no CNuOutOfMemoryException";
}

}  // namespace

// ---- what holds alike for the five numeric arrays ----

template <class TArray>
class NuNumericArray : public testing::Test {};

template <class TArray, class T>
struct ArrayOf {
  using Array = TArray;
  using Element = T;
};
using NumericArrays =
    testing::Types<ArrayOf<CNuArrayDouble, double>, ArrayOf<CNuArrayInt, int>,
                   ArrayOf<CNuArrayUChar, unsigned char>, ArrayOf<CNuArrayUInt, unsigned int>,
                   ArrayOf<CNuArrayUShort, unsigned short>>;
TYPED_TEST_SUITE(NuNumericArray, NumericArrays);

TYPED_TEST(NuNumericArray, DefaultIsEmptyButValidWithNoBlock) {
  typename TypeParam::Array array;
  EXPECT_EQ(array.Length(), 0u);
  EXPECT_TRUE(array.IsValid());
  EXPECT_EQ(array.GetPointer(), nullptr);
  EXPECT_EQ(array.GetElementSize(), sizeof(typename TypeParam::Element));
  array.Reset();
  EXPECT_EQ(array.Length(), 0u);
  ExpectRaises([&] { array[0]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
}

TYPED_TEST(NuNumericArray, SizedConstructorsFillZerosOrTheValue) {
  using T = typename TypeParam::Element;
  typename TypeParam::Array const zeros(3);
  EXPECT_EQ(Contents(zeros), (std::vector<double>{0, 0, 0}));
  typename TypeParam::Array const sevens(2, T(7));
  EXPECT_EQ(Contents(sevens), (std::vector<double>{7, 7}));
  EXPECT_EQ(typename TypeParam::Array(0).GetPointer(), nullptr);
}

TYPED_TEST(NuNumericArray, BoundsAreTestedInBothForms) {
  typename TypeParam::Array array(4);
  array[3] = 9;
  typename TypeParam::Array const& constant = array;
  EXPECT_EQ(constant[3], 9);
  EXPECT_EQ(&array[3], array.GetDataPtr() + 3);
  ExpectRaises([&] { array[4]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
  ExpectRaises([&] { constant[4]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
}

// ---- sizing ----

TEST(NuArrayBase, NewAndResizeBothKeepContent) {
  for (bool useNew : {true, false}) {
    SCOPED_TRACE(useNew ? "New" : "Resize");
    auto size = [&](CNuArrayInt& array, unsigned long length) {
      useNew ? array.New(length) : array.Resize(length);
    };
    CNuArrayInt shorter = Ints({1, 2, 5, 7});
    size(shorter, 3);
    EXPECT_EQ(Contents(shorter), (std::vector<double>{1, 2, 5}));
    CNuArrayInt longer = Ints({1, 2, 5, 7});
    size(longer, 6);
    EXPECT_EQ(Contents(longer), (std::vector<double>{1, 2, 5, 7, 0, 0}));
  }
}

TEST(NuArrayBase, ShrinkingKeepsTheBlockAndRegrowingZeroesWhatWasDropped) {
  CNuArrayInt array = Ints({1, 2, 5, 7});
  void const* block = array.GetPointer();
  array.New(3);
  array.New(4);
  EXPECT_EQ(Contents(array), (std::vector<double>{1, 2, 5, 0}));
  EXPECT_EQ(array.GetPointer(), block);
}

TEST(NuArrayBase, CapacityGrowsByOldLengthPlusTheLargerOfOldLengthAndAdded) {
  CapacityProbe<int> array;
  array.New(4);
  EXPECT_EQ(array.Capacity(), 4u);  // the first block is exact
  array.New(5);
  EXPECT_EQ(array.Capacity(), 8u);  // step by step it doubles
  void const* block = array.GetPointer();
  array.New(8);
  EXPECT_EQ(array.GetPointer(), block);
  array.New(30);
  EXPECT_EQ(array.Capacity(), 30u);  // a large step takes exactly what is asked
  array.New(31);
  EXPECT_EQ(array.Capacity(), 60u);
  array.New(2);
  EXPECT_EQ(array.Capacity(), 60u);
}

TEST(NuArrayBase, DeleteEmptiesButKeepsTheBlock) {
  CapacityProbe<double> array(5, 3.5);
  void const* block = array.GetPointer();
  array.Delete();
  EXPECT_EQ(array.Length(), 0u);
  EXPECT_TRUE(array.IsValid());
  EXPECT_EQ(array.GetPointer(), block);
  EXPECT_EQ(array.Capacity(), 5u);
  array.New(5);
  EXPECT_EQ(array.GetPointer(), block);
  for (unsigned long i = 0; i < 5; ++i) EXPECT_EQ(array[i], 0.0);
}

TEST(NuArrayBase, ResetZeroesBytesAndKeepsTheLength) {
  CNuArrayDouble array(3, -1.5);
  array.Reset();
  ASSERT_EQ(array.Length(), 3u);
  double const* data = array.GetDataPtr();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(data[i], 0.0);
    EXPECT_FALSE(std::signbit(data[i]));
  }
}

TEST(NuArrayBase, AssignmentReusesALargeEnoughBlockAndOtherwiseTakesAnExactOne) {
  CapacityProbe<int> big(10, 1);
  CapacityProbe<int> const small(3, 2);
  void const* block = big.GetPointer();
  big = small;
  EXPECT_EQ(big.GetPointer(), block);
  EXPECT_EQ(big.Length(), 3u);
  CapacityProbe<int> target(2, 0);
  target = CapacityProbe<int>(7, 4);
  EXPECT_EQ(target.Capacity(), 7u);
  CNuArrayInt self = Ints({4, 5});
  self = *&self;
  EXPECT_EQ(Contents(self), (std::vector<double>{4, 5}));
}

// ---- CopyFrom ----

TEST(NuArrayBase, CopyFromRefusesNullAndUnequalElementSizesUnchanged) {
  CNuArrayInt array = Ints({3, 4});
  ExpectRaises([&] { array.CopyFrom(nullptr); },
               {{"Invalid memory interface pointer", "CopyFrom", ArrayFile}});
  CNuArrayUShort const shorts(5, 1);
  ExpectRaises([&] { array.CopyFrom(&shorts); },
               {{"Element sizes of memory blocks do not agree", "CopyFrom", ArrayFile}});
  CNuArrayDouble const doubles(1);
  ExpectRaises([&] { array.CopyFrom(&doubles); },
               {{"Element sizes of memory blocks do not agree", "CopyFrom", ArrayFile}});
  EXPECT_EQ(Contents(array), (std::vector<double>{3, 4}));
}

TEST(NuArrayBase, CopyFromJudgesByElementSizeAloneAndCarriesBits) {
  CNuArrayInt ints = Ints({1, 2, 3});
  CNuArrayUInt const all(2, 0xFFFFFFFFu);
  ints.CopyFrom(&all);
  EXPECT_EQ(Contents(ints), (std::vector<double>{-1, -1}));

  FloatBlock const floats({1.0f, -0.0f});
  CNuArrayUInt bits;
  bits.CopyFrom(&floats);
  ASSERT_EQ(bits.Length(), 2u);
  EXPECT_EQ(bits[0], 0x3F800000u);
  EXPECT_EQ(bits[1], 0x80000000u);
}

TEST(NuArrayBase, CopyFromEmptySourceOrItself) {
  CNuArrayInt array = Ints({6, 7, 8});
  array.CopyFrom(&array);
  EXPECT_EQ(Contents(array), (std::vector<double>{6, 7, 8}));
  CNuArrayInt const empty;
  array.CopyFrom(&empty);
  EXPECT_EQ(array.Length(), 0u);
}

// ---- limits: nothing here reaches the allocator ----

TEST(NuArrayBase, LengthAboveTheLimitPassesLengthErrorAndKeepsTheArray) {
  CNuArrayDouble array(2, 1.25);
  void const* block = array.GetPointer();
  unsigned long const aboveLimit = std::numeric_limits<unsigned long>::max() / sizeof(double) + 1;
  try {
    array.Resize(aboveLimit);
    ADD_FAILURE() << "nothing was raised";
  } catch (std::length_error const& e) {
    EXPECT_STREQ(e.what(), "vector::_M_default_append");
  }
  EXPECT_EQ(Contents(array), (std::vector<double>{1.25, 1.25}));
  EXPECT_EQ(array.GetPointer(), block);
}

TEST(NuArrayBase, LengthAtTheLimitIsAnAllocationFailureAndKeepsTheArray) {
  unsigned long const limit = std::numeric_limits<unsigned long>::max() / sizeof(double);
  CNuArrayDouble array(2, 1.25);
  void const* block = array.GetPointer();
  ExpectOutOfMemory([&] { array.New(limit); }, "New");
  ExpectOutOfMemory([&] { array.Resize(limit); }, "Resize");
  EXPECT_EQ(Contents(array), (std::vector<double>{1.25, 1.25}));
  EXPECT_EQ(array.GetPointer(), block);
  ExpectOutOfMemory([&] { CNuArrayDouble tooLong(limit); }, "New");
}
