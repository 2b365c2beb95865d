#include <k7/foundation/error_string.h>

#include <gtest/gtest.h>

#include <iterator>

TEST(K7ErrorString, HasOneMessageForEachCode) {
  // The published table's codes, in order.
  const int codes[] = {-11801, -11619, -11601, -11518, -11517, -11516, -11515, -11514, -11513, -11512,
                       -11511, -11510, -11509, -11506, -11504, -11401, -11301, -11202, -11201, -11116,
                       -11115, -11114, -11107, -11103, -11099, -11011, -11010, -11009, -11008, -11007,
                       -11006, -11005, -11004, -11003, -11002, -11001, 0};
  const int* next = codes;
  for (int code = -20000; code <= 20000; ++code) {
    if (!K7ErrorString::ErrorString(code)) continue;
    ASSERT_NE(next, std::end(codes)) << code;
    ASSERT_EQ(code, *next++);
  }
  EXPECT_EQ(next, std::end(codes));
  EXPECT_STREQ(K7ErrorString::ErrorString(-11301), "Memory allocation error");
}
