#pragma once
#include <Nu.Core/NuException.h>
#include <gtest/gtest.h>

#include <initializer_list>

namespace NuTest {

// The source paths that the library's raises name.
inline constexpr char ArrayFile[] = "Nu.Core.Ex/NuArrayBase.h", Array2DFile[] = "Nu.Core.Ex/NuArray2DBase.h",
                      MatrixFile[] = "Nu.Core.Math/NuMatrix.h", FormatFile[] = "Nu.Core.Ex/NuImageFormat.h",
                      ImageFile[] = "Nu.Core.Ex/NuImage.cpp", MonikerFile[] = "Nu.Core.Ex/NuImageMoniker.cpp",
                      MappingFile[] = "Nu.Core.Ex/NuMapping3D.cpp";

// One level of an exception chain, and its class where that matters; a Chain lists them
// outermost first.
struct ExpectedLevel {
  char const *Message, *Function, *File, *Name = nullptr;
};
using Chain = std::initializer_list<ExpectedLevel>;

// Checks every level of an exception's inner chain, and that the chain ends there.
inline void ExpectChain(Nu::IException const& e, Chain levels) {
  Nu::IException const* level = &e;
  for (ExpectedLevel const& expected : levels) {
    SCOPED_TRACE(expected.Message);
    ASSERT_NE(level, nullptr) << "chain ends early";
    EXPECT_STREQ(level->GetMessageText(), expected.Message);
    EXPECT_STREQ(level->GetFunction(), expected.Function);
    EXPECT_STREQ(level->GetFile(), expected.File);
    EXPECT_GT(level->GetLine(), 0);
    if (expected.Name != nullptr) {
      EXPECT_STREQ(level->GetName(), expected.Name);
    }
    level = level->GetInnerException();
  }
  EXPECT_EQ(level, nullptr) << "chain is longer than expected: " << level->GetMessageText();
}

// Runs `call`, which must raise a TException with exactly this chain; other exceptions escape.
template <class TException = Nu::CNuException, class TCall>
void ExpectRaises(TCall&& call, Chain levels) {
  try {
    call();
  } catch (TException const& e) {
    return ExpectChain(e, levels);
  }
  ADD_FAILURE() << "nothing was raised";
}

}  // namespace NuTest
