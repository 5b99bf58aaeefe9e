#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayString.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Nu;
using NuTest::ExpectRaises;

namespace {

constexpr char ArrayFile[] = "Nu.Core.Ex/NuArrayBase.h";

std::vector<std::string> Texts(CNuArrayString const& array) {
  std::vector<std::string> texts;
  for (unsigned long i = 0; i < array.Length(); ++i) texts.emplace_back(array[i].ToCString());
  return texts;
}

// A string whose text holds a NUL, which no public constructor of CNuString can build.
class TextWithNul : public CNuString {
public:
  TextWithNul(char const* text, std::size_t size) { Assign(text, size); }
};

}  // namespace

TEST(NuArrayString, ElementsAreStringObjects) {
  CNuArrayString const array(2);
  EXPECT_EQ(array.GetElementSize(), sizeof(CNuString));
  EXPECT_EQ(Texts(array), (std::vector<std::string>{"", ""}));
  EXPECT_EQ(Texts(CNuArrayString(2, CNuString("ab"))), (std::vector<std::string>{"ab", "ab"}));
}

TEST(NuArrayString, SplittingKeepsEmptyTokensExceptAfterATrailingDelimiter) {
  struct Case {
    char const* Text;
    std::vector<std::string> Tokens;
  };
  std::vector<Case> const cases = {
      {"", {}},
      {"a", {"a"}},
      {"a,b", {"a", "b"}},
      {"a,,b", {"a", "", "b"}},
      {",a", {"", "a"}},
      {"a,", {"a"}},
      {"a,,", {"a", ""}},
      {",", {""}},
      {" a , b", {" a ", " b"}},
  };
  for (Case const& c : cases) {
    SCOPED_TRACE(std::string("\"") + c.Text + "\"");
    EXPECT_EQ(Texts(CNuArrayString(CNuString(c.Text), ',')), c.Tokens);
  }
  EXPECT_EQ(Texts(CNuArrayString(CNuString("a;b,c"), ';')), (std::vector<std::string>{"a", "b,c"}));
}

TEST(NuArrayString, SplittingStopsAtANulInsideTheText) {
  TextWithNul const text("a,b\0c,d", 7);
  ASSERT_EQ(text.Length(), 7u);
  EXPECT_EQ(Texts(CNuArrayString(text, ',')), (std::vector<std::string>{"a", "b"}));
}

TEST(NuArrayString, ResizeDestroysDroppedStringsAndAddsEmptyOnes) {
  CNuArrayString array(CNuString("one,two,three"), ',');
  array.Resize(2);
  EXPECT_EQ(Texts(array), (std::vector<std::string>{"one", "two"}));
  array.Resize(3);
  EXPECT_EQ(Texts(array), (std::vector<std::string>{"one", "two", ""}));
  array.Delete();
  EXPECT_EQ(array.Length(), 0u);
  EXPECT_NE(array.GetPointer(), nullptr);
}

TEST(NuArrayString, CopiesAreDeepAndOtherElementSizesAreRefused) {
  CNuArrayString source(CNuString("x,y"), ',');
  CNuArrayString copy(1, CNuString("old"));
  copy.CopyFrom(&source);
  source[0] = "changed";
  EXPECT_EQ(Texts(copy), (std::vector<std::string>{"x", "y"}));
  copy.CopyFrom(&copy);
  CNuArrayString assigned;
  assigned = copy;
  copy[1] = "z";
  EXPECT_EQ(Texts(assigned), (std::vector<std::string>{"x", "y"}));

  CNuArrayDouble const doubles(3);
  ExpectRaises([&] { copy.CopyFrom(&doubles); },
               {{"Element sizes of memory blocks do not agree", "CopyFrom", ArrayFile}});
  EXPECT_EQ(Texts(copy), (std::vector<std::string>{"x", "z"}));
  ExpectRaises([&] { copy[2]; }, {{"Array index out of bounds", "operator[]", ArrayFile}});
}
