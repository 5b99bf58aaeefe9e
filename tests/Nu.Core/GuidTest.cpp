#include <Nu.Core/Guid.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

using Nu::CGuid;

TEST(Guid, ParsesEitherCasePrintsUpperCaseAndRefusesAnythingElse) {
  CGuid const guid("{5ed51757-2d30-4b8d-be92-731ec81023ee}");
  EXPECT_STREQ(guid.ToString().ToCString(), "{5ED51757-2D30-4B8D-BE92-731EC81023EE}");
  EXPECT_EQ(guid, CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EE}"));
  EXPECT_NE(guid, CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EF}"));
  for (char const* text : {static_cast<char const*>(nullptr), "", "00112233-4455-6677-8899-AABBCCDDEEFF",
                           "{00112233-4455-6677-8899-AABBCCDDEEF}", "{00112233-4455-6677-8899-AABBCCDDEEFG}",
                           "{00112233+4455-6677-8899-AABBCCDDEEFF}"})
    NuTest::ExpectRaises([&] { CGuid{text}; }, {{"Invalid GUID text", "CGuid", "Nu.Core/Guid.cpp"}});
}
