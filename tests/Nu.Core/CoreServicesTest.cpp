// The services of the lower library that the raises and their messages rest on.
#include <Nu.Core/Guid.h>
#include <Nu.Core/NuException.h>
#include <Nu.Core/NuString.h>
#include <Support/ExceptionCheck.h>
#include <gtest/gtest.h>

#include <string>

using Nu::CGuid;
using Nu::CNuException;
using Nu::CNuString;

namespace {

[[noreturn]] void RaiseInner() { NU_RAISE("Nu.Core/Inner.cpp", "inner failure"); }

[[noreturn]] void RaiseOuter() {
  try {
    RaiseInner();
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED("Nu.Core/Outer.cpp", "outer failure", cause);
  }
}

}  // namespace

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

TEST(Guid, ParsesEitherCasePrintsUpperCaseAndRefusesAnythingElse) {
  CGuid const guid("{5ed51757-2d30-4b8d-be92-731ec81023ee}");
  EXPECT_STREQ(guid.ToString().ToCString(), "{5ED51757-2D30-4B8D-BE92-731EC81023EE}");
  EXPECT_TRUE(guid == CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EE}") && guid != CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EF}"));
  for (char const* text : {static_cast<char const*>(nullptr), "", "00112233-4455-6677-8899-AABBCCDDEEFF",
                           "{00112233-4455-6677-8899-AABBCCDDEEF}", "{00112233-4455-6677-8899-AABBCCDDEEFG}",
                           "{00112233+4455-6677-8899-AABBCCDDEEFF}"})
    NuTest::ExpectRaises([&] { CGuid{text}; }, {{"Invalid GUID text", "CGuid", "Nu.Core/Guid.cpp"}});
}

TEST(NuException, WrapKeepsTheCauseInClonesAndCopiesAndPrintsTheWholeChain) {
  Nu::IException* clone = nullptr;
  try {
    RaiseOuter();
  } catch (CNuException const& e) {
    EXPECT_TRUE(e.HasException(e.GetGUID()) && !e.HasException(CGuid("{00000000-0000-0000-0000-000000000001}")));
    EXPECT_EQ(e.ToString().ToCString(),
              "Nu.Exception: outer failure (RaiseOuter, Nu.Core/Outer.cpp:" + std::to_string(e.GetLine()) +
                  ")\n  inner: Nu.Exception: inner failure (RaiseInner, Nu.Core/Inner.cpp:" +
                  std::to_string(e.GetInnerException()->GetLine()) + ")");
    clone = e.Clone();
  }
  // Each clone and copy owns its chain and outlives its source.
  auto* const copy = new CNuException(*static_cast<CNuException*>(clone));
  delete static_cast<CNuException*>(clone);
  CNuException assigned("x", "y", "z", 1);
  assigned = *copy;
  delete copy;
  NuTest::ExpectChain(assigned, {{"outer failure", "RaiseOuter", "Nu.Core/Outer.cpp"},
                                 {"inner failure", "RaiseInner", "Nu.Core/Inner.cpp"}});
}
