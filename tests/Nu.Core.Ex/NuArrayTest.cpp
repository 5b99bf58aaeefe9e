#include <Nu.Core.Ex/NuArray2DDouble.h>
#include <Nu.Core.Ex/NuArray2DInt.h>
#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayInt.h>
#include <Nu.Core.Ex/NuArrayString.h>
#include <Nu.Core.Ex/NuArrayUChar.h>
#include <Nu.Core.Ex/NuArrayUInt.h>
#include <Nu.Core.Ex/NuArrayUShort.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Nu;
using namespace NuTest;
using Texts = std::vector<std::string>;

namespace {

template <class T>
std::vector<T> Values(IMemoryAccess const& array) {
  auto const* data = static_cast<T const*>(array.GetPointer());
  return data == nullptr ? std::vector<T>() : std::vector<T>(data, data + array.Length());
}

Texts TextsOf(CNuArrayString const& array) {
  Texts texts;
  for (unsigned long i = 0; i < array.Length(); ++i) texts.emplace_back(array[i].ToCString());
  return texts;
}

// A string whose text holds a NUL, which no public constructor of CNuString can build.
struct TextWithNul : CNuString {
  TextWithNul(char const* text, std::size_t size) { Assign(text, size); }
};

template <class TArray>
class NuNamedArray : public testing::Test {};
using NamedArrays = testing::Types<CNuArrayDouble, CNuArrayInt, CNuArrayUChar, CNuArrayUInt, CNuArrayUShort>;
TYPED_TEST_SUITE(NuNamedArray, NamedArrays);

}  // namespace

TYPED_TEST(NuNamedArray, FillsTestsBoundsInBothFormsAndCopiesDeep) {
  using T = std::remove_pointer_t<decltype(TypeParam().GetDataPtr())>;
  TypeParam array(3, T(7));
  TypeParam const copy(array);
  array.Reset();
  EXPECT_TRUE(Values<T>(array) == std::vector<T>(3, T(0)) && Values<T>(copy) == std::vector<T>(3, T(7)));
  EXPECT_EQ(&copy[2], copy.GetDataPtr() + 2);
  ExpectRaises([&] { array[3]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
  ExpectRaises([&] { copy[3]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
  EXPECT_TRUE(TypeParam().IsValid() && TypeParam().GetPointer() == nullptr);
}

TEST(NuArrayBase, NewAndResizeKeepContentAndGrowByOldLengthPlusTheLargerPart) {
  struct Probe : CNuArrayBase<int> {
    using CNuArrayBase<int>::CNuArrayBase;
    std::size_t Capacity() const { return Elements.capacity(); }
  } array(4);
  std::vector<int> model = {1, 2, 5, 7};
  for (int i = 0; i < 4; ++i) array[i] = model[i];
  // (New or Resize, length, capacity): 4 + max(4, 1) = 8, 8 + max(8, 22) = 30, 30 + max(30, 1) = 60.
  for (auto [useNew, length, capacity] : {std::tuple{true, 3ul, 4ul}, {false, 4ul, 4ul}, {true, 5ul, 8ul}, {false, 8ul, 8ul},
                                           {true, 30ul, 30ul}, {false, 31ul, 60ul}, {true, 2ul, 60ul}}) {
    bool const moves = capacity != array.Capacity();
    void const* block = array.GetPointer();
    useNew ? array.New(length) : array.Resize(length);
    model.resize(length);  // what was dropped comes back as zero
    EXPECT_TRUE(Values<int>(array) == model && array.Capacity() == capacity && (array.GetPointer() != block) == moves)
        << (useNew ? "New(" : "Resize(") << length << ")";
  }
  void const* block = array.GetPointer();
  array.Delete();
  EXPECT_TRUE(array.Length() == 0 && array.GetPointer() == block && array.Capacity() == 60);
}

TEST(NuArrayBase, CopyFromComparesElementSizesOnlyAndLengthsPastTheLimitChangeNothing) {
  CNuArrayInt array(2, 3);
  CNuArrayUShort const shorts(5, 1);
  CNuArrayUInt const bits(3, 0x80000000u), none;
  ExpectRaises([&] { array.CopyFrom(nullptr); }, {{"Invalid memory interface pointer", "CopyFrom", ArrayFile}});
  ExpectRaises([&] { array.CopyFrom(&shorts); }, {{"Element sizes of memory blocks do not agree", "CopyFrom", ArrayFile}});
  array.CopyFrom(&array);
  EXPECT_EQ(Values<int>(array), (std::vector<int>{3, 3}));
  array.CopyFrom(&bits);
  EXPECT_EQ(Values<int>(array), std::vector<int>(3, std::numeric_limits<int>::min()));
  array.CopyFrom(&none);
  EXPECT_EQ(array.Length(), 0u);
  // None of these lengths reaches the allocator.
  unsigned long const limit = std::numeric_limits<unsigned long>::max() / sizeof(double);
  CNuArrayDouble doubles(2, 1.25);
  void const* block = doubles.GetPointer();
  EXPECT_THROW(doubles.Resize(limit + 1), std::length_error);
  ExpectRaises<CNuOutOfMemoryException>([&] { doubles.New(limit); }, {{"std::bad_alloc", "New", ArrayFile}});
  ExpectRaises<CNuOutOfMemoryException>([&] { doubles.Resize(limit); }, {{"std::bad_alloc", "Resize", ArrayFile}});
  EXPECT_TRUE(Values<double>(doubles) == std::vector<double>(2, 1.25) && doubles.GetPointer() == block);
}

TEST(NuArrayString, SplitsKeepingEmptyTokensExceptAfterATrailingDelimiterAndCopiesDeep) {
  std::pair<char const*, Texts> const cases[] = {{"", {}},          {"a", {"a"}}, {"a,,b", {"a", "", "b"}}, {",a", {"", "a"}},
                                                 {"a,", {"a"}},     {",", {""}},  {"a,,", {"a", ""}},       {" a , b", {" a ", " b"}}};
  for (auto const& [text, tokens] : cases) EXPECT_EQ(TextsOf(CNuArrayString(CNuString(text), ',')), tokens) << text;
  EXPECT_EQ(TextsOf(CNuArrayString(TextWithNul("a;b,c\0;d", 8), ';')), (Texts{"a", "b,c"}));
  CNuArrayString array(CNuString("one,two,three"), ','), copy(1, CNuString("old"));
  array.Resize(2);
  array.Resize(3);
  copy.CopyFrom(&array);
  CNuArrayString const assigned = copy;
  array[0] = "changed";
  copy[1] = "z";
  CNuArrayDouble const doubles(3);
  ExpectRaises([&] { copy.CopyFrom(&doubles); }, {{"Element sizes of memory blocks do not agree", "CopyFrom", ArrayFile}});
  EXPECT_TRUE(TextsOf(assigned) == (Texts{"one", "two", ""}) && TextsOf(copy) == (Texts{"one", "z", ""}));
}

// Sizing and copying are the matrix's; the 2-D arrays add tested element access and deep copies.
TEST(NuArray2D, ElementsStandRowAfterRowBothIndicesAreTestedAndCopiesAreDeep) {
  CNuArray2DDouble array(2, 3), assigned;
  array(1, 2) = 6.5;
  array(0, 1) = 1.5;
  CNuArray2DDouble const copy(array);
  assigned = array;
  array(0, 1) = 0;
  for (CNuArray2DDouble const* deep : {&copy, static_cast<CNuArray2DDouble const*>(&assigned)})
    EXPECT_EQ(std::vector<double>(deep->GetDataPtr(), &(*deep)(1, 2) + 1), (std::vector<double>{0, 1.5, 0, 0, 0, 6.5}));
  CNuArray2DInt const empty(0, 4);
  Chain const outside = {{"Array index out of bounds", "operator()", Array2DFile}};
  for (auto const& at : {std::pair{2ul, 0ul}, {0ul, 3ul}, {1ul, 5ul}}) {
    ExpectRaises([&] { array(at.first, at.second); }, outside);
    ExpectRaises([&] { copy(at.first, at.second); }, outside);
    ExpectRaises([&] { empty(at.first % 2, 0); }, outside);
  }
}
