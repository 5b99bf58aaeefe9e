#include <Nu.Core/NuString.h>

#include <gtest/gtest.h>

using Nu::CNuString;

TEST(NuString, AppendsAndCopiesExactlyAlsoFromItself) {
  CNuString text(static_cast<char const*>(nullptr));
  text << "Unknown data type '" << CNuString("Unknown") << static_cast<char const*>(nullptr) << "'";
  CNuString const copy(text);
  text << text;
  text = text.ToCString();
  text = static_cast<CNuString const&>(text);
  EXPECT_STREQ(text.ToCString(), "Unknown data type 'Unknown'Unknown data type 'Unknown'");
  EXPECT_TRUE(text.Length() == 54 && copy == "Unknown data type 'Unknown'" && !(copy == text));
}
