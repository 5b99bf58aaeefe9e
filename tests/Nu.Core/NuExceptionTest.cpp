#include <Nu.Core/NuException.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using Nu::CGuid;
using Nu::CNuException;
using Nu::IException;

namespace {

struct ExceptionDeleter {
  void operator()(IException* e) const { delete static_cast<CNuException*>(e); }
};
using ExceptionPtr = std::unique_ptr<IException, ExceptionDeleter>;

[[noreturn]] void RaiseInner() { NU_RAISE("Nu.Core/Inner.cpp", "inner failure"); }

[[noreturn]] void RaiseOuter() {
  try {
    RaiseInner();
  } catch (CNuException& cause) {
    NU_RAISE_WRAPPED("Nu.Core/Outer.cpp", "outer failure", cause);
  }
}

}  // namespace

TEST(NuException, RaiseCarriesMessageBareFunctionFileAndLine) {
  try {
    RaiseInner();
  } catch (CNuException const& e) {
    EXPECT_STREQ(e.GetMessageText(), "inner failure");
    EXPECT_STREQ(e.GetFunction(), "RaiseInner");
    EXPECT_STREQ(e.GetFile(), "Nu.Core/Inner.cpp");
    EXPECT_GT(e.GetLine(), 0);
    EXPECT_STREQ(e.GetName(), "Nu.Exception");
    EXPECT_EQ(e.GetInnerException(), nullptr);
    return;
  }
  FAIL();
}

TEST(NuException, WrapKeepsTheCauseAsInnerException) {
  try {
    RaiseOuter();
  } catch (CNuException const& e) {
    EXPECT_STREQ(e.GetMessageText(), "outer failure");
    EXPECT_STREQ(e.GetFunction(), "RaiseOuter");
    IException const* inner = e.GetInnerException();
    ASSERT_NE(inner, nullptr);
    EXPECT_STREQ(inner->GetMessageText(), "inner failure");
    EXPECT_STREQ(inner->GetFunction(), "RaiseInner");
    EXPECT_EQ(inner->GetInnerException(), nullptr);
    EXPECT_TRUE(e.HasException(e.GetGUID()));
    EXPECT_FALSE(e.HasException(CGuid("{00000000-0000-0000-0000-000000000001}")));
    std::string const text = e.ToString().ToCString();
    EXPECT_NE(text.find("outer failure"), std::string::npos);
    EXPECT_NE(text.find("\n  inner: Nu.Exception: inner failure (RaiseInner, Nu.Core/Inner.cpp:"),
              std::string::npos)
        << text;
    return;
  }
  FAIL();
}

TEST(NuException, CloneOutlivesItsSourceInEitherOrder) {
  ExceptionPtr clone;
  ExceptionPtr secondClone;
  {
    try {
      RaiseOuter();
    } catch (CNuException const& e) {
      clone.reset(e.Clone());
      secondClone.reset(clone->Clone());
    }
  }
  ASSERT_TRUE(clone);
  EXPECT_STREQ(clone->GetMessageText(), "outer failure");
  clone.reset();
  ASSERT_NE(secondClone->GetInnerException(), nullptr);
  EXPECT_STREQ(secondClone->GetInnerException()->GetMessageText(), "inner failure");
}

TEST(NuException, CopiesShareNothing) {
  CNuException const original("m", "f", "fn", 7, CNuException("i", "f2", "fn2", 8));
  auto* copy = new CNuException(original);
  CNuException assigned("x", "y", "z", 1);
  assigned = *copy;
  delete copy;
  EXPECT_STREQ(assigned.GetInnerException()->GetMessageText(), "i");
  EXPECT_EQ(assigned.GetLine(), 7);
}
