#include <Nu.Core/Guid.h>
#include <Nu.Core/NuException.h>

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

using Nu::CGuid;

static_assert(sizeof(CGuid) == 16 && std::is_trivially_copyable_v<CGuid>);

TEST(Guid, ParsesAndPrintsTheBraceFormInUpperCase) {
  CGuid const guid("{5ed51757-2d30-4b8d-be92-731ec81023ee}");
  EXPECT_STREQ(guid.ToString().ToCString(), "{5ED51757-2D30-4B8D-BE92-731EC81023EE}");
  EXPECT_EQ(guid.Data1, 0x5ED51757u);
  EXPECT_EQ(guid.Data2, 0x2D30u);
  EXPECT_EQ(guid.Data4[7], 0xEEu);
  EXPECT_EQ(guid, CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EE}"));
  EXPECT_NE(guid, CGuid("{5ED51757-2D30-4B8D-BE92-731EC81023EF}"));
  EXPECT_NE(guid, CGuid());
}

TEST(Guid, CopiesAsSixteenPlainBytes) {
  CGuid const source("{00112233-4455-6677-8899-AABBCCDDEEFF}");
  CGuid copy;
  std::memcpy(&copy, &source, sizeof copy);
  EXPECT_EQ(copy, source);
}

TEST(Guid, RefusesMalformedText) {
  for (char const* text : {"", "{00112233-4455-6677-8899-AABBCCDDEEF}",
                           "{00112233-4455-6677-8899-AABBCCDDEEFG}", "00112233-4455-6677-8899-AABBCCDDEEFF",
                           "{00112233+4455-6677-8899-AABBCCDDEEFF}"}) {
    SCOPED_TRACE(text);
    try {
      CGuid const guid(text);
      ADD_FAILURE() << "accepted";
    } catch (Nu::CNuException const& e) {
      EXPECT_STREQ(e.GetMessageText(), "Invalid GUID text");
      EXPECT_STREQ(e.GetFile(), "Nu.Core/Guid.cpp");
    }
  }
  EXPECT_THROW(CGuid(static_cast<char const*>(nullptr)), Nu::CNuException);
}
