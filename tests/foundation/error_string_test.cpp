#include <k7/foundation/error_string.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

TEST(K7ErrorString, HasOneMessageForEachCode) {
  std::set<std::string> messages;
  for (int code = -20000; code <= 20000; ++code)
    if (const char* const message = K7ErrorString::ErrorString(code)) messages.insert(message);
  EXPECT_EQ(messages.size(), 37u);
  EXPECT_STREQ(K7ErrorString::ErrorString(-11301), "Memory allocation error");
  for (int code : {1, -11000, -11100, -11602, -11603})
    EXPECT_EQ(K7ErrorString::ErrorString(code), nullptr) << code;
}
