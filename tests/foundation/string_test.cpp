#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string Text(const K7String& s) { return static_cast<const char*>(s); }

// A std::string beside the capacity that the growth rule asks for.
struct Model {
  std::string text;
  int capacity = 0;

  void Grow(size_t length) {
    const int n = static_cast<int>(length);
    if (n + 1 > capacity) capacity = n + 1 + std::max(n / 10, 7);
  }
  int Replace(const std::string& from, const std::string& to) {
    int count = 0;
    if (from.empty() || from == to) return 0;
    for (size_t p = 0; (p = text.find(from, p)) != std::string::npos; p += to.size(), ++count) {
      text.replace(p, from.size(), to);
      Grow(text.size());
    }
    return count;
  }
  void Trim(const std::string& set) {
    text.erase(0, std::min(text.find_first_not_of(set), text.size()));
    text.erase(text.find_last_not_of(set) + 1);
  }
};

std::mt19937 random_bits(7);
int Number(int below) { return static_cast<int>(random_bits() % static_cast<unsigned>(below)); }
char Letter() { return "abc, "[Number(5)]; }
std::string Letters(int longest) {
  std::string s(static_cast<size_t>(Number(longest + 1)), ' ');
  for (char& c : s) c = Letter();
  return s;
}

}  // namespace

TEST(K7String, CapacityFollowsTheGrowthRule) {
  K7String s;
  EXPECT_EQ(s.Alloc(1), 0);
  EXPECT_EQ(s.AllocLen(), 9);
  s = "ab";
  EXPECT_EQ(s.Alloc(100), 0);
  EXPECT_EQ(s.AllocLen(), 111);
  const char* const bytes = s;
  EXPECT_TRUE(std::all_of(bytes + 2, bytes + 111, [](char c) { return c == 0; }));
  // Exhausted memory leaves the text and its place.
  EXPECT_EQ(s.Alloc(INT_MAX - 1), K7_ERR_MEMORY);
  EXPECT_EQ(static_cast<const char*>(s), bytes);
  EXPECT_EQ(Text(s), "ab");
  EXPECT_EQ(K7String(s).AllocLen(), 111);
  // A move takes the larger of the two buffers.
  K7String moved("x");
  moved = std::move(s);
  EXPECT_EQ(moved.AllocLen(), 111);
  moved = K7String("y");
  EXPECT_EQ(Text(moved), "y");
  EXPECT_EQ(moved.AllocLen(), 111);
}

TEST(K7String, EditsAgreeWithARestatement) {
  K7String s("");
  Model model{"", 8};
  std::string a, b;
  char c = 0;
  int at = 0;
  size_t from = 0;
  const auto size = [&] { return static_cast<int>(model.text.size()); };
  // Each edit on both, with its result; those that lengthen the text stand last.
  const std::vector<std::pair<std::function<int()>, std::function<int()>>> edits = {
      {[&] { return s.Trim(a.c_str()), 0; }, [&] { return model.Trim(a), 0; }},
      {[&] { return s.Trim(c), 0; }, [&] { return model.Trim({c}), 0; }},
      {[&] { return s.Delete(at, 9); },
       [&] { return at < size() ? (model.text.erase(from, 9), size()) : size(); }},
      {[&] { return s.Remove(c); }, [&] { return static_cast<int>(std::erase(model.text, c)); }},
      {[&] { return s.Replace(c, '-'); }, [&] { return model.Replace({c}, "-"); }},
      {[&] { return s.Create(b.c_str()); }, [&] { return model.text = b, 1; }},
      {[&] { return s.Copy(b.c_str(), 4); }, [&] { return model.text = b.substr(0, 4), size(); }},
      {[&] { return s.Replace(a.c_str(), b.c_str()); }, [&] { return model.Replace(a, b); }},
      {[&] { return s.Insert(at, b.c_str()); }, [&] { return model.text.insert(from, b), size(); }},
      {[&] { return s += c; }, [&] { return model.text += c, 0; }},
      {[&] { return s += b.c_str(); }, [&] { return model.text += b, 0; }}};
  for (int step = 0; step < 20000; ++step) {
    a = Letters(3);
    b = Letters(6);
    c = Letter();
    at = Number(size() + 1);
    from = static_cast<size_t>(at);
    const auto& [ours, theirs] = edits[static_cast<size_t>(Number(size() > 200 ? 7 : 11))];
    ASSERT_EQ(ours(), theirs()) << step;
    model.Grow(model.text.size());
    ASSERT_EQ(Text(s), model.text) << step;
    ASSERT_EQ(s.AllocLen(), model.capacity) << step;
    const size_t start = std::min(from, model.text.size());
    const int place = static_cast<int>(start);
    ASSERT_EQ(s.Find(a.c_str(), place), static_cast<int>(model.text.find(a, start)));
    ASSERT_EQ(s.Find(c, place), static_cast<int>(model.text.find(c, start)));
    ASSERT_EQ(s.FindAny(a.c_str(), place), static_cast<int>(model.text.find_first_of(a, start)));
    ASSERT_EQ(s.ReverseFind(c), static_cast<int>(model.text.rfind(c)));
    ASSERT_EQ(Text(s.Mid(place, 5)), model.text.substr(start, 5));
    ASSERT_EQ(Text(s.Left(place)) + Text(s.Mid(place)), model.text);
    ASSERT_EQ(Text(s.Right(place)), model.text.substr(model.text.size() - start));
    ASSERT_EQ(s[place], model.text.c_str()[start]);
    ASSERT_EQ(Text(s + b.c_str() + c), model.text + b + c);
  }
}

TEST(K7String, ArgumentsMayPointIntoTheTextItself) {
  K7String s("abcabc");
  const auto at = [&](int i) { return static_cast<const char*>(s) + i; };
  s = at(2);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(s += at(0), 0);
  EXPECT_EQ(s.Len(), 4 * 32);
  EXPECT_EQ(s.Copy(at(1), 3), 3);
  EXPECT_EQ(s.Insert(1, at(1)), 5);
  EXPECT_EQ(Text(s), "abcbc");
  EXPECT_EQ(s.Replace(at(3), at(0)), 2);
  EXPECT_EQ(Text(s), "aabcbcabcbc");
  EXPECT_EQ(s.Token("c", 2, s), 4);
  EXPECT_EQ(Text(s), "b");
  s = "xa-ax";
  s.Trim(at(3));  // the set "ax"
  EXPECT_EQ(Text(s), "-");
}

TEST(K7String, ANullStringIsTheEmptyText) {
  K7String s;
  s.SetChar(3, 'x');
  s.MakeReverse();
  s.MakeInitial();
  s.Trim("x");
  for (const int none : {s.Replace('a', 'b'), s.Replace("a", "b"), s.Remove('a'), s.Delete(0),
                         s.Copy(nullptr), s.Insert(1, "x"), s += nullptr, s.Token(",", 0, s), s.Len(),
                         int{s[0]}, K7String("abc").Left(0).AllocLen(), K7String("abc").Mid(3).AllocLen()})
    EXPECT_EQ(none, 0);
  for (const int none : {s.Find('a'), s.Find("a"), s.FindAny("a"), s.ReverseFind('a'), s.Comp("a"),
                         s.Comp("abc", 2), -K7String("a").Comp(nullptr), -K7String("abc").Comp(nullptr, 2)})
    EXPECT_EQ(none, -1);
  EXPECT_STREQ(s, "");
  EXPECT_TRUE(s.IsEmpty());
  EXPECT_EQ(s.Comp(nullptr, 2), 0);
  int err = 1;
  EXPECT_EQ(s.Dup(&err), nullptr);
  EXPECT_EQ(err, 0);
}

TEST(K7String, ComparesUnsignedBytes) {
  // Pairs in ascending order, both ways; "_" lies between the cases of letters, "\xB0" behind all of them.
  const char* const ascending[][2] = {{"Zulu", "Zulu~"}, {"Zulu~", "Zulu\xB0"}, {"z", "\xB0"}, {"", "a"}};
  for (const auto& [low, high] : ascending) {
    EXPECT_EQ(K7String(low).Comp(high), -1) << low;
    EXPECT_EQ(K7String(high).Comp(low), 1) << low;
    EXPECT_LT(K7String(low).IComp(high), 0) << low;
    EXPECT_TRUE(K7String(high) > low) << low;
  }
  EXPECT_GT(K7String("_").IComp("a"), 0);
  EXPECT_EQ(K7String("Zulu").Comp("Zulx", 3), 0);
  EXPECT_EQ(K7String("Zulu\xB0").IComp("zULU\xB0"), 0);
  EXPECT_EQ(K7String("Zulu").IComp("zuma", 2), 0);
  EXPECT_EQ(K7String::IComp(nullptr, "a"), 0);
  const char* const list[] = {"ABC", "def", nullptr};
  EXPECT_EQ(K7String::Index("DEF", list), 1);
  EXPECT_EQ(K7String::Index("de", list), -1);
  EXPECT_EQ(K7String::Index(nullptr, list), 0);
  EXPECT_EQ(K7String::Index(nullptr, list + 2), -1);
}

TEST(K7String, TitleCase) {
  K7String s("NEW YORK-JFK 4 (KJFK)");
  s.MakeInitial();
  EXPECT_EQ(Text(s), "New York-Jfk 4 (Kjfk)");
  const char* const exceptions[] = {"of", "JFK", "McMurdo", nullptr};
  s = "isle OF man/jfk, mcmurdo MCM 12b-";
  s.MakeInitial(exceptions);
  EXPECT_EQ(Text(s), "Isle of Man/JFK, McMurdo McM 12B-");
}

TEST(K7String, TokensAndClasses) {
  const K7String text("a,,b,");
  std::string tokens;
  K7String token;
  for (int pos = 0; (pos = text.Token(",", pos, token)) > 0;) tokens += "[" + Text(token) + "]";
  EXPECT_EQ(tokens, "[a][][b]");
  EXPECT_EQ(text.Token(",", 5, token), 0);
  EXPECT_EQ(Text(token), "b");
  const std::pair<bool (*)(char), int (*)(int)> classes[] = {
      {K7String::IsLower, std::islower}, {K7String::IsAlpha, std::isalpha},
      {K7String::IsDigit, std::isdigit}, {K7String::IsSpace, std::isspace},
      {K7String::IsAlnum, std::isalnum}, {K7String::IsPrint, std::isprint}};
  for (const auto& [ours, theirs] : classes)
    for (int i = 0; i < 256; ++i) EXPECT_EQ(ours(static_cast<char>(i)), theirs(i) != 0) << i;
}
