#include <k7/foundation/error_string.h>

#include <gtest/gtest.h>

#include <vector>

TEST(K7ErrorString, HasOneMessageForEachCode) {
  std::vector<int> codes;
  for (int code = -20000; code <= 20000; ++code)
    if (K7ErrorString::ErrorString(code)) codes.push_back(code);
  // The published table's codes, in order.
  EXPECT_EQ(codes,
            (std::vector<int>{-11801, -11619, -11601, -11518, -11517, -11516, -11515, -11514, -11513, -11512,
                              -11511, -11510, -11509, -11506, -11504, -11401, -11301, -11202, -11201, -11116,
                              -11115, -11114, -11107, -11103, -11099, -11011, -11010, -11009, -11008, -11007,
                              -11006, -11005, -11004, -11003, -11002, -11001, 0}));
  EXPECT_STREQ(K7ErrorString::ErrorString(-11301), "Memory allocation error");
}
