#pragma once
#include <Nu.Core/NuException.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace NuTest {

// One level of an expected exception chain, outermost first.
struct ExpectedLevel {
  char const* Message;
  char const* Function;
  char const* File;  // null: not checked
};

// Checks the whole inner chain of a raised CNuException, level by level, and that it ends.
inline void ExpectChain(Nu::IException const& e, std::initializer_list<ExpectedLevel> levels) {
  Nu::IException const* level = &e;
  int depth = 0;
  for (ExpectedLevel const& expected : levels) {
    SCOPED_TRACE("level " + std::to_string(depth++));
    ASSERT_NE(level, nullptr) << "chain ends early";
    EXPECT_STREQ(level->GetMessageText(), expected.Message);
    EXPECT_STREQ(level->GetFunction(), expected.Function);
    if (expected.File != nullptr) {
      EXPECT_STREQ(level->GetFile(), expected.File);
    }
    EXPECT_GT(level->GetLine(), 0);
    level = level->GetInnerException();
  }
  EXPECT_EQ(level, nullptr) << "chain is longer than expected: " << level->GetMessageText();
}

// Runs `call`, which must raise a CNuException with exactly this chain.
template <class TCall>
void ExpectRaises(TCall&& call, std::initializer_list<ExpectedLevel> levels) {
  try {
    call();
  } catch (Nu::CNuException const& e) {
    ExpectChain(e, levels);
    return;
  }
  ADD_FAILURE() << "nothing was raised";
}

}  // namespace NuTest
