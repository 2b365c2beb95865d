#include <k7/foundation.h>

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

  int Size() const { return static_cast<int>(text.size()); }
  bool Has(int i) const { return i >= 0 && i < Size(); }
  int Grow() {
    if (Size() + 1 > capacity) capacity = Size() + 1 + std::max(Size() / 10, 7);
    return Size();
  }
  int Replace(const std::string& from, const std::string& to) {
    int count = 0;
    if (from.empty() || from == to) return 0;
    for (size_t p = 0; (p = text.find(from, p)) != std::string::npos; p += to.size(), ++count) {
      text.replace(p, from.size(), to);
      Grow();
    }
    return count;
  }
  int Insert(int at, const std::string& added) {
    if (at == Size() || Has(at)) text.insert(static_cast<size_t>(at), added);
    return Size();
  }
  int Trim(const std::string& set) {
    text.erase(0, std::min(text.find_first_not_of(set), text.size()));
    return text.erase(text.find_last_not_of(set) + 1), 0;
  }
  // A negative count means the rest.
  std::string Part(int start, int count) const {
    return Has(start) ? text.substr(static_cast<size_t>(start), static_cast<size_t>(count)) : "";
  }
};

int Map(std::string& text, int (*change)(int)) {
  for (char& c : text) c = static_cast<char>(change(static_cast<unsigned char>(c)));
  return 0;
}
int Sign(int n) { return (n > 0) - (n < 0); }
std::mt19937 random_bits(7);
int Number(int below) { return static_cast<int>(random_bits() % static_cast<unsigned>(below)); }
char Letter() { return "aZz_ \xE4"[Number(6)]; }
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
  EXPECT_EQ(std::string(bytes, 111), "ab" + std::string(109, '\0'));
  // Exhausted memory leaves the text and its place.
  for (const int size : {INT_MAX - 1, INT_MAX}) EXPECT_EQ(s.Alloc(size), K7_ERR_MEMORY);
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
  moved.SetChar(90, 'z');
  moved.Clear();
  EXPECT_EQ(std::string(moved, 111), std::string(111, '\0'));
}

TEST(K7String, EditsAgreeWithARestatement) {
  // From null on, for some edits or for thousands.
  for (int round = 0; round < 56; ++round) {
    K7String s;
    Model model;
    std::string a, b;
    char c = 0;
    int at = 0, n = 0;
    // Each edit on both, with its result; those that lengthen the text stand last.
    const std::pair<std::function<int()>, std::function<int()>> edits[] = {
        {[&] { return s.Trim(a.c_str()), 0; }, [&] { return model.Trim(a); }},
        {[&] { return s.Trim(c), 0; }, [&] { return model.Trim({c}); }},
        {[&] { return s.MakeReverse(), 0; }, [&] { return std::ranges::reverse(model.text), 0; }},
        {[&] { return s.MakeUpper(), 0; }, [&] { return Map(model.text, std::toupper); }},
        {[&] { return s.MakeLower(), 0; }, [&] { return Map(model.text, std::tolower); }},
        {[&] { return s.Delete(at, n); },
         [&] {
           if (n > 0 && model.Has(at)) model.text.erase(static_cast<size_t>(at), static_cast<size_t>(n));
           return model.Size();
         }},
        {[&] { return s.Remove(c); }, [&] { return static_cast<int>(std::erase(model.text, c)); }},
        {[&] { return s.Replace(c, '-'); }, [&] { return model.Replace({c}, "-"); }},
        {[&] { return s.Create(b.c_str()); }, [&] { return model.text = b, 1; }},
        {[&] { return s.Copy(b.c_str(), n); },
         [&] { return model.text = b.substr(0, static_cast<size_t>(n)), model.Size(); }},
        {[&] { return s.Replace(a.c_str(), b.c_str()); }, [&] { return model.Replace(a, b); }},
        {[&] { return s.Insert(at, b.c_str()); }, [&] { return model.Insert(at, b); }},
        {[&] { return s.Insert(at, c); }, [&] { return model.Insert(at, {c}); }},
        {[&] { return s += c; }, [&] { return model.text += c, 0; }},
        {[&] { return s += b.c_str(); }, [&] { return model.text += b, 0; }}};
    for (int step = 0; step < 1 << round % 14; ++step) {
      a = Letters(3);
      b = Letters(9);
      c = Letter();
      at = Number(model.Size() + 3) - 1;
      n = Number(9) - 1;
      const auto& [ours, theirs] = edits[Number(model.Size() > 200 ? 11 : 15)];
      ASSERT_EQ(ours(), theirs()) << step;
      if (s.AllocLen() > 0) model.Grow();
      ASSERT_EQ(Text(s), model.text) << step;
      ASSERT_EQ(s.AllocLen(), model.capacity) << step;
      const int place = std::clamp(at, 0, model.Size()), i = Number(300) - 1;
      const size_t start = static_cast<size_t>(place);
      const std::string key =
          s.AllocLen() > 0 ? a : "~";  // in a null string not even the empty text is found
      ASSERT_EQ(s.Find(key.c_str(), place), static_cast<int>(model.text.find(key, start)));
      ASSERT_EQ(s.Find(c, place), static_cast<int>(model.text.find(c, start)));
      ASSERT_EQ(s.FindAny(a.c_str(), place), static_cast<int>(model.text.find_first_of(a, start)));
      ASSERT_EQ(s.ReverseFind(c), static_cast<int>(model.text.rfind(c)));
      ASSERT_EQ(Text(s.Mid(at, n)), model.Part(at, n));
      ASSERT_EQ(Text(s.Left(at)), model.Part(0, std::max(at, 0)));
      ASSERT_EQ(Text(s.Right(at)), model.Part(std::max(model.Size() - std::max(at, 0), 0), -1));
      ASSERT_EQ(s[i], model.Has(i) ? model.text[static_cast<size_t>(i)] : 0);
      ASSERT_EQ(Text(s + b.c_str() + c), model.text + b + c);
      // Bytes are compared without signs; with n < 0 the whole texts, to exactly -1, 0 or 1.
      const size_t limit = n < 0 ? 99 : static_cast<size_t>(n);
      const int order = Sign(std::strncmp(a.c_str(), b.c_str(), limit));
      const int compared = K7String(a.c_str()).Comp(b.c_str(), n);
      ASSERT_EQ(n < 0 ? compared : Sign(compared), order) << a << " " << b;
      const int ignoring = Sign(K7String(a.c_str()).IComp(b.c_str(), n));
      Map(a, std::toupper);
      Map(b, std::toupper);
      ASSERT_EQ(ignoring, Sign(std::strncmp(a.c_str(), b.c_str(), limit)));
    }
  }
}

TEST(K7String, ArgumentsMayPointIntoTheTextItself) {
  K7String s("abcabc");
  const auto at = [&](int i) { return static_cast<const char*>(s) + i; };
  EXPECT_EQ(s.Create(at(0)), 0);
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
  s = "-a-";
  EXPECT_EQ(s.Replace('-', '\0'), 2);
  EXPECT_STREQ(at(1), "a");
}

TEST(K7String, NullTextsHaveTheirAnswers) {
  const K7String null, text("abc");
  const char* const list[] = {"ABC", "def", nullptr};
  int err = 1;
  for (const int none : {null.Comp(nullptr, 2), K7String::IComp(nullptr, "a"), K7String::Index(nullptr, list),
                         text.Left(0, &err).AllocLen(), K7String().Copy(nullptr), K7String() += nullptr})
    EXPECT_EQ(none, 0);
  for (const int less :
       {null.Comp("a"), null.Comp("abc", 2), -text.Comp(nullptr, 2), K7String::Index("de", list),
        K7String::Index("de", nullptr), K7String::Index(nullptr, list + 2)})
    EXPECT_EQ(less, -1);
  EXPECT_EQ(K7String::Index("DEF", list), 1);
  EXPECT_EQ(null.Dup(), nullptr);
  EXPECT_EQ(err, 0);
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
  for (const int none : {5, -1}) EXPECT_EQ(text.Token(",", none, token), 0);
  EXPECT_EQ(Text(token), "b");
  EXPECT_EQ(text.Token(nullptr, 1, token), 5);
  const std::pair<bool (*)(char), int (*)(int)> classes[] = {
      {K7String::IsLower, std::islower}, {K7String::IsAlpha, std::isalpha},
      {K7String::IsDigit, std::isdigit}, {K7String::IsSpace, std::isspace},
      {K7String::IsAlnum, std::isalnum}, {K7String::IsPrint, std::isprint}};
  for (const auto& [ours, theirs] : classes)
    for (int i = 0; i < 256; ++i) EXPECT_EQ(ours(static_cast<char>(i)), theirs(i) != 0) << i;
}
