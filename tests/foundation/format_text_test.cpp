#include <k7/foundation/string.h>

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <utility>

// By the rules of the C standard (7.21.6.1) from exact values, worked out by hand or with Python's decimal.
TEST(K7StringFormat, WritesTheSameBytesOnEveryPlatform) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::pair<K7FmtString, const char*> rows[] = {
      {K7FmtString("%e %g %G", 1e10, 1e10, 1e-10), "1.000000e+10 1e+10 1E-10"},
      {K7FmtString("%e %.0e", 1e-300, 1e100), "1.000000e-300 1e+100"},
      {K7FmtString("%F %Fs", infinity, 1.5), "INF 1.500000s"},
      {K7FmtString("%06.1f|%-6g|%+e", infinity, -infinity, infinity), "   inf|-inf  |+inf"},
      {K7FmtString("%.0f %.0f %.0f %.0f", 0.5, 1.5, 2.5, -0.5), "0 2 2 -0"},  // ties go to even
      {K7FmtString("%.1f %.2f %.2f", 0.25, 0.125, 1.005), "0.2 0.12 1.00"},
      {K7FmtString("%.20f", 0.1), "0.10000000000000000555"},
      {K7FmtString("%.17g %.0f", 0.1, 1e23), "0.10000000000000001 99999999999999991611392"},
      {K7FmtString("%#.0f %#x %#o %#.3g %#g", 3.0, 255, 8, 1e5, 0.0), "3. 0xff 010 1.00e+05 0.00000"},
      {K7FmtString("%#x %#o %#.0o %.0d|", 0, 0, 0, 0), "0 0 0 |"},
      {K7FmtString("%a %A %.1a %a", 1.0, -0.5, 1.96875, 0.0), "0x1p+0 -0X1P-1 0x2.0p+0 0x0p+0"},
      {K7FmtString("%012.3a|%#.0a", -1.0, 1.0), "-0x01.000p+0|0x1.p+0"},
      {K7FmtString("%05d|%-5d|%+d|% d|%05.2d", -42, 42, 42, 42, 7), "-0042|42   |+42| 42|   07"},
      {K7FmtString("%lld %llu", LLONG_MIN, ULLONG_MAX), "-9223372036854775808 18446744073709551615"},
      {K7FmtString("%hhd %hu %zu %td %jd", 300, 70000, size_t{7}, ptrdiff_t{-7}, intmax_t{-1} << 40),
       "44 4464 7 -7 -1099511627776"},
      {K7FmtString("%*d|%-*d|%*.*f", -4, 7, 3, 7, 6, -1, 0.5), "7   |7  |0.500000"},
      {K7FmtString("%p %8p", reinterpret_cast<void*>(0x1F), static_cast<void*>(nullptr)), "0x1f    (nil)"},
      {K7FmtString("%s|%.3s|%5.1s|%-3s|", static_cast<const char*>(nullptr), "abcdef", "xyz", "q"),
       "(null)|abc|    x|q  |"},
      {K7FmtString("%Lf %.3Le %LF", 1.5L, -2.0L, 0.25L), "1.500000 -2.000e+00 0.250000"},
      {K7FmtString("%ls|%5lc|%.3ls|%-4ls|", L"\u00E9\u20AC\U0001F6E9", L'\u00E9', L"\u20AC\u20AC", L"\u00E9"),
       "\u00E9\u20AC\U0001F6E9|   \u00E9|\u20AC|\u00E9  |"},
      {K7FmtString("%%|%5%|%y|%-08.3k|"), "%|%|%y|%-8.3k|"}};
  for (const auto& [text, expected] : rows) EXPECT_STREQ(text, expected);
}

TEST(K7StringFormat, WritesLongTextsAndRefusesBrokenOnes) {
  K7String s;
  EXPECT_EQ(s.Format("%.3000f", 0x1p-1074), 3002);
  EXPECT_EQ(std::string(s).find_last_not_of('0'), 1075U);  // the last digit of the smallest number
  EXPECT_EQ(s.Format("%-5000d|%05000d", 1, -1), 10001);
  EXPECT_EQ(std::string(s), "1" + std::string(4999, ' ') + "|-" + std::string(4998, '0') + "1");
  const wchar_t surrogate[] = {static_cast<wchar_t>(0xD800), 0};
  EXPECT_LT(s.Format("%ls", surrogate), 0);
  for (const char* const bad : {"%5", "%.", "%l", "%2147483648d", "%.99999999999f", "%2147483647d%d"})
    EXPECT_LT(s.Format(bad, 1, 1), 0) << bad;
  EXPECT_EQ(s.Len(), 10001);
  long long wide = 0;
  signed char narrow = 0;
  s.Format("abc%lln%300s%hhn", &wide, "", &narrow);
  EXPECT_EQ(wide, 3);
  EXPECT_EQ(narrow, 303 - 256);
}

#ifdef __GLIBC__
namespace {

using Random = std::mt19937_64;

std::string RandomConversion(Random& random, const char* size, const char* letters) {
  std::string format = "<%";
  while (random() % 2) format += "-+ #0'"[random() % 6];
  if (random() % 2) format += std::to_string(random() % 40);
  if (random() % 2)
    format += "." + (random() % 4 ? std::to_string(random() % (random() % 8 ? 30 : 1200)) : "");
  return format + size + letters[random() % std::char_traits<char>::length(letters)] + ">";
}

// The system's formatter in the "C" locale, which is in force here.
template <class... Args>
void ExpectAsSystem(const std::string& format, Args... args) {
  static char expected[16384];
  const int length = std::snprintf(expected, sizeof expected, format.c_str(), args...);
  K7String s;
  ASSERT_EQ(s.Format(format.c_str(), args...), length) << format;
  ASSERT_STREQ(s, expected) << format;
}

// Any bits, and numbers near ties and powers.
double RandomDouble(Random& random) {
  switch (random() % 4) {
    case 0:
      return std::bit_cast<double>(random());
    case 1:
      return static_cast<double>(static_cast<int64_t>(random() % 200001) - 100000) / 8;
    case 2:
      return static_cast<double>(static_cast<int64_t>(random() % 2000001) - 1000000) / 1000;
    default:
      return std::stod((random() % 2 ? "9.9995e" : "1e") +
                       std::to_string(static_cast<int>(random() % 600) - 300));
  }
}

}  // namespace

TEST(K7StringFormat, AgreesWithTheSystemOnRandomConversions) {
  Random random(13);
  const char* const words = "diuoxX";
  const char* const floats = "fFeEgGaA";
  for (int i = 0; i < 40000; ++i) {
    const uint64_t bits = random() >> random() % 64;
    ExpectAsSystem(RandomConversion(random, "hh", words), static_cast<int>(bits));
    ExpectAsSystem(RandomConversion(random, "h", words), static_cast<int>(bits));
    ExpectAsSystem(RandomConversion(random, "", words), static_cast<int>(bits));
    ExpectAsSystem(RandomConversion(random, "l", words), static_cast<long>(bits));
    ExpectAsSystem(RandomConversion(random, "ll", words), static_cast<long long>(bits));
    ExpectAsSystem(RandomConversion(random, "z", words), static_cast<size_t>(bits));
    ExpectAsSystem(RandomConversion(random, "", "p"),
                   static_cast<const void*>(bits % 3 ? words + bits % 7 : nullptr));
    ExpectAsSystem(RandomConversion(random, "", "s"), bits % 9 ? "some text" : nullptr);
    ExpectAsSystem(RandomConversion(random, "", "c"), static_cast<int>(bits % 255 + 1));
    ExpectAsSystem(RandomConversion(random, "", floats), RandomDouble(random));
    const long double numbers[] = {static_cast<long double>(RandomDouble(random)) / 3, LDBL_MAX, LDBL_MIN, 0};
    ExpectAsSystem(RandomConversion(random, "L", floats), numbers[i % 40 > 3 ? 0 : i % 40]);
    ExpectAsSystem("%*.*f|%s%%", static_cast<int>(bits % 60) - 30, static_cast<int>(bits % 20) - 5, 1.0 / 3,
                   "x");
    if (HasFatalFailure()) return;
  }
}
#endif
