#include <Nu.Core/NuException.h>

#include <Support/ExceptionCheck.h>

#include <gtest/gtest.h>

#include <string>

using Nu::CNuException;

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

TEST(NuException, WrapKeepsTheCauseInClonesAndCopiesAndPrintsTheWholeChain) {
  Nu::IException* clone = nullptr;
  try {
    RaiseOuter();
  } catch (CNuException const& e) {
    EXPECT_TRUE(e.HasException(e.GetGUID()) && !e.HasException(Nu::CGuid("{00000000-0000-0000-0000-000000000001}")));
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
