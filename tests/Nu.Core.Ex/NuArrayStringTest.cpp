#include <Nu.Core.Ex/NuArrayDouble.h>
#include <Nu.Core.Ex/NuArrayString.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace Nu;
using Texts = std::vector<std::string>;

namespace {

Texts TextsOf(CNuArrayString const& array) {
  Texts texts;
  for (unsigned long i = 0; i < array.Length(); ++i) texts.emplace_back(array[i].ToCString());
  return texts;
}

// A string whose text holds a NUL, which no public constructor of CNuString can build.
struct TextWithNul : CNuString {
  TextWithNul(char const* text, std::size_t size) { Assign(text, size); }
};

}  // namespace

TEST(NuArrayString, SplitsKeepingEmptyTokensExceptAfterATrailingDelimiterAndCopiesDeep) {
  std::pair<char const*, Texts> const cases[] = {
      {"", {}},      {"a", {"a"}},       {"a,,b", {"a", "", "b"}}, {",a", {"", "a"}},
      {"a,", {"a"}}, {"a,,", {"a", ""}}, {",", {""}},              {" a , b", {" a ", " b"}}};
  for (auto const& [text, tokens] : cases) EXPECT_EQ(TextsOf(CNuArrayString(CNuString(text), ',')), tokens) << text;
  EXPECT_EQ(TextsOf(CNuArrayString(TextWithNul("a;b,c\0;d", 8), ';')), (Texts{"a", "b,c"}));
  // The elements are string objects, and copies are deep.
  CNuArrayString array(CNuString("one,two,three"), ','), copy(1, CNuString("old"));
  array.Resize(2);
  array.Resize(3);
  copy.CopyFrom(&array);
  CNuArrayString const assigned = copy;
  array[0] = "changed";
  copy[1] = "z";
  CNuArrayDouble const doubles(3);
  NuTest::ExpectRaises([&] { copy.CopyFrom(&doubles); },
                       {{"Element sizes of memory blocks do not agree", "CopyFrom", NuTest::ArrayFile}});
  EXPECT_EQ(TextsOf(assigned), (Texts{"one", "two", ""}));
  EXPECT_EQ(TextsOf(copy), (Texts{"one", "z", ""}));
}
