#include <k7/foundation/string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <string>
#include <utility>

namespace {

// Capacity of a fresh string that Format has sized for `estimate` characters.
int CapacityFor(int estimate) { return estimate + 2 + std::max((estimate + 1) / 10, 7); }

template <class... Args>
void ExpectEstimate(int estimate, const char* format, Args... args) {
  K7String s;
  s.Format(format, args...);
  EXPECT_EQ(s.AllocLen(), CapacityFor(estimate)) << format;
}

}  // namespace

TEST(K7StringFormat, SizingPassFixesTheCapacity) {
  const char* const null = nullptr;
  int written = 0;
  ExpectEstimate(35, "ab%%%d", 1);
  ExpectEstimate(45, "%15.30u", 1u);
  ExpectEstimate(128, "%g", 1.0);
  ExpectEstimate(150, "%100.50e", 1.0);
  ExpectEstimate(1, "%5c", 'x');
  ExpectEstimate(8, "%f", 1.5);             // 1.500000
  ExpectEstimate(10, "%5.2f", 3.14159);     // 3.14159000
  ExpectEstimate(20, "%*.*f", 20, 2, 3.0);  // a blank-padded 3.00000000
  ExpectEstimate(7, "%.*f", -1, 1.5);       // 1.50000
  ExpectEstimate(8, "%.*f", -10, 1.5);      // 1.500000
  ExpectEstimate(208, "%.200f", 1.5);
  ExpectEstimate(9, "%s%.3s", null, null);
  ExpectEstimate(16, "%s, %10s", "abcd", "abc");
  ExpectEstimate(18, "%.*s, %.2s, %.9s", -1, "eight of", "abc", "abcd");
  ExpectEstimate(36, "%##lx", 1L);
  ExpectEstimate(2, "ab%n", &written);
  ExpectEstimate(11, "%E", 1.0);  // no part of the estimate: the 12 characters written make it grow
  // Behind "%C" the pass sees shifted arguments: wide stars count as none, texts as null ones.
  ExpectEstimate(50, "%C%*d", 50, 5, 7);
  ExpectEstimate(4096, "%C%*d", 4096, 5, 7);
  ExpectEstimate(0, "%C%.*s", 4097, 3, "abc");
  ExpectEstimate(6, "%C%s", 0xB0, "abcdef");
  ExpectEstimate(38, "%Ld%s", 1LL, "abcdefgh");
}

TEST(K7StringFormat, TextsAreExact) {
  K7String s;
  EXPECT_EQ(s.Format("%C%s%*d", 'x', "abc", 5, 7), 9);
  EXPECT_STREQ(s, "xabc    7");
  EXPECT_LT(s.AllocLen(), 70000);  // the pass takes half of a pointer for the width
  const std::string longer(5000, 'y');
  EXPECT_EQ(s.Format("%C%s%E%s", 0xB0, longer.c_str(), 1.0, "z"), 5014);
  EXPECT_EQ(std::string(s), "\xB0" + longer + "1.000000E+00z");
  const std::pair<K7FmtString, const char*> rows[] = {
      {K7FmtString("%Fs%FC%5C", 1.5, 2.5, 'q'), "1.500000s2.500000C    q"},
      {K7FmtString("AC%%C%C", 'q'), "AC%Cq"},
      // The first escape becomes its byte.
      {K7FmtString("a\\x41b"), "aAb"},
      {K7FmtString("%d\\xB0 \\x41", 5), "5\xB0 \\x41"},
      {K7FmtString("\\xaf0\\xaf"),
       "\xAF"
       "0\\xaf"},
      {K7FmtString("\\xFa:"), "\xFA:"},
      {K7FmtString("\\x9@\\x`"), "\t@\\x`"},
      {K7FmtString("a\\xg"), "a\\xg"},
      {K7FmtString("\\x25d", 5), "5"},
      // A percent sign at the end stands for itself.
      {K7FmtString("100%"), "100%"},
      {K7FmtString("%d%%%", 5), "5%%"},
      {K7FmtString("%C%", 0xB0), "\xB0%"},
      {K7FmtString("a\\x25"), "a%"},
      {K7FmtString("%d%%", 5), "5%"}};
  for (const auto& [text, expected] : rows) EXPECT_STREQ(text, expected);
  EXPECT_EQ(K7FmtString(nullptr).AllocLen(), 0);
  for (size_t length = 509; length < 515; ++length) {
    const std::string text(length, 'x');
    EXPECT_EQ(std::string(K7FmtString("%s|", text.c_str())), text + "|");
  }
  // Format and arguments may point into the text itself.
  s = "%s-%s";
  EXPECT_EQ(s.Format(s, static_cast<const char*>(s), static_cast<const char*>(s) + 3), 8);
  EXPECT_STREQ(s, "%s-%s-%s");
  EXPECT_EQ(s.Format("%s", ""), 0);
  EXPECT_STREQ(s, "");
}

TEST(K7StringFormat, WritesAPointUnderADecimalCommaLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "locale not installed";
  const K7FmtString text("%.1f %g %5.2e", 1.5, 2.5, 3.5);
  const K7FmtString wide("%ls %lc %.1f", L"Z\u00FCrich", L'\u00E9', 1.5);
  char comma[8];
  std::snprintf(comma, sizeof comma, "%.1f", 1.5);
  std::setlocale(LC_ALL, before.c_str());
  EXPECT_STREQ(comma, "1,5");  // the host's locale is back in force
  EXPECT_STREQ(text, "1.5 2.5 3.50e+00");
  EXPECT_STREQ(wide, "Z\u00FCrich \u00E9 1.5");
}
