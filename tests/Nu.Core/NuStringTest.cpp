#include <Nu.Core/NuString.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using Nu::CNuString;

TEST(NuString, ChainedAppendGivesExactConcatenation) {
  CNuString text("");
  CNuString const tail("'");
  text << "Unknown data type '" << CNuString("Unknown") << tail;
  EXPECT_STREQ(text.ToCString(), "Unknown data type 'Unknown'");
  EXPECT_EQ(text.Length(), 27u);
  EXPECT_TRUE(text == "Unknown data type 'Unknown'");
}

TEST(NuString, DefaultAndNullAreEmptyAndNeverNull) {
  CNuString const empty;
  CNuString const fromNull(static_cast<char const*>(nullptr));
  ASSERT_NE(empty.ToCString(), nullptr);
  EXPECT_STREQ(empty.ToCString(), "");
  EXPECT_TRUE(empty == fromNull);
  EXPECT_EQ(fromNull.Length(), 0u);
}

TEST(NuString, CopiesAreIndependent) {
  CNuString original("abc");
  CNuString copy(original);
  CNuString assigned;
  assigned = original;
  original << "def";
  EXPECT_STREQ(copy.ToCString(), "abc");
  EXPECT_STREQ(assigned.ToCString(), "abc");
  EXPECT_STREQ(original.ToCString(), "abcdef");
  EXPECT_FALSE(copy == original);
}

TEST(NuString, SelfAssignmentAndSelfAppendKeepTheText) {
  CNuString text("ab");
  CNuString& alias = text;
  text = alias;
  EXPECT_STREQ(text.ToCString(), "ab");
  text << alias;
  EXPECT_STREQ(text.ToCString(), "abab");
  text = text.ToCString();
  EXPECT_STREQ(text.ToCString(), "abab");
}

TEST(NuString, LivesInAVectorThroughGrowthAndMoves) {
  std::vector<CNuString> strings;
  for (int i = 0; i < 100; ++i) strings.emplace_back(std::to_string(i).c_str());
  CNuString moved(std::move(strings[42]));
  EXPECT_STREQ(moved.ToCString(), "42");
  EXPECT_STREQ(strings[99].ToCString(), "99");
}
