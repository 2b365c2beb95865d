#include <k7/foundation.h>

#include "support/leaks.h"
#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

class OptionsTest : public testing::Test {
 protected:
  OptionsTest() : m_scope(&m_io) {}
  ~OptionsTest() override { K7Options::Destroy(); }

  MemIO m_io;
  ScopedIO m_scope;
  K7Options& m_options = *K7Options::Inst();
};

TEST_F(OptionsTest, SettingsSurviveTheFile) {
  EXPECT_EQ(m_options.SetOption("Size", "64", "Terrain"), 0);
  EXPECT_EQ(m_options.SetOption("Size", "3", "a \"b\" & <c>"), 0);
  EXPECT_EQ(m_options.SetOption("Ratio", 2.5), 0);
  EXPECT_EQ(m_options.SetOption("Null", 0, "g"), 0);
  EXPECT_EQ(m_options.SetOption("Size", "128", nullptr), 0);  // the first of that key, in any group
  EXPECT_EQ(m_options.SetOption("Size", "7", ""), 0);         // none without a group yet
  ASSERT_EQ(m_options.Write("o.xml"), 0);
  const std::string whole = m_io.Text("o.xml");
  EXPECT_EQ(whole,
            "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n"
            "<Options>\n\t<Size Group=\"Terrain\">128</Size>\n"
            "\t<Size Group=\"a &quot;b&quot; &amp; &lt;c&gt;\">3</Size>\n"
            "\t<Ratio>2.500000</Ratio>\n\t<Null Group=\"g\">(null)</Null>\n\t<Size>7</Size>\n</Options>\n");

  m_options.SetOption("Lost", "1");
  ASSERT_EQ(m_options.Read("o.xml"), 0);
  const char* const rows[][3] = {{"Lost", nullptr, nullptr},     {"size", nullptr, nullptr},
                                 {nullptr, nullptr, nullptr},    {"Size", nullptr, "128"},
                                 {"Size", "a \"b\" & <c>", "3"}, {"Size", "", "7"}};
  for (const auto& [key, group, value] : rows) EXPECT_STREQ(m_options.GetValueByKey(key, group), value);
  EXPECT_STREQ(m_options.GetKeyValueByIndex(0)->value, "128");
  EXPECT_STREQ(m_options.GetKeyValueByIndex(4)->value, "7");
  for (const int outside : {-1, 5}) EXPECT_EQ(m_options.GetKeyValueByIndex(outside), nullptr);
  K7PtrArray found;
  EXPECT_EQ(m_options.GetKeyValuesByGroup("", found), 0);
  EXPECT_EQ(found.Count(), 2);
  EXPECT_EQ(m_options.GetKeyValuesByGroup(nullptr, found), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_options.SetOption("Empty", static_cast<const char*>(nullptr)), 0);
  EXPECT_STREQ(m_options.GetValueByKey("Empty"), "");
  EXPECT_EQ(m_options.SetOption(nullptr, "1"), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_options.SetOption(nullptr, 0), K7_ERR_BAD_ARGUMENT);

  // Failures leave settings and file alone.
  EXPECT_EQ(m_options.Read("none.xml"), K7_ERR_FILE_IO);
  m_io.Put("cut.xml", whole.substr(0, whole.size() - 3));  // behind the settings
  EXPECT_EQ(m_options.Read("cut.xml"), K7_ERR_XML_MISMATCHED_TAG);
  EXPECT_STREQ(m_options.GetValueByKey("Ratio"), "2.500000");
  m_io.room = whole.size() - 1;
  EXPECT_EQ(m_options.Write("other.xml"), K7_ERR_INVALID_DATA);
  EXPECT_FALSE(Leaks([&] { m_options.Read("o.xml"); }));
  m_io.Put("empty.xml", std::string("<Options/>"));
  ASSERT_EQ(m_options.Read("empty.xml"), 0);
  EXPECT_EQ(m_options.GetKeyValueByIndex(0), nullptr);
}

// A key that no file can give back is refused, and leaves the file alone; any other comes back.
TEST_F(OptionsTest, KeysNameElements) {
  const auto write = [&](const char* key) {
    K7Options::Destroy();
    m_io.Put("o.xml", std::string("before"));
    K7Options::Inst()->SetOption(key, "1", "g \"/>");
    return K7Options::Inst()->Write("o.xml");
  };
  for (const char* const key : {"", "a b", "a\n", "a<", "a>", "?a", "!a", "/a", "a/", "/"}) {
    EXPECT_EQ(write(key), K7_ERR_INVALID_DATA) << key;
    EXPECT_EQ(m_io.Text("o.xml"), "before") << key;
  }
  for (const char* const key : {"a/b", "a//b", "a?", "a\"b=\"", "-", "&amp;", "="}) {
    EXPECT_EQ(write(key), 0) << key;
    EXPECT_EQ(K7Options::Inst()->Read("o.xml"), 0) << key;
    EXPECT_STREQ(K7Options::Inst()->GetValueByKey(key, "g \"/>"), "1") << key;
  }
}

// What other operations do beside each other is seen with the threads that share files.
TEST_F(OptionsTest, ThreadsAddToTheTable) {
  std::vector<std::thread> threads;
  for (const char* const group : {"0", "1", "2"})
    threads.emplace_back([this, group] {
      for (int i = 0; i < 300; ++i) m_options.SetOption(std::to_string(i).c_str(), "x", group);
    });
  for (std::thread& thread : threads) thread.join();
  K7PtrArray found;
  for (const char* const group : {"0", "1", "2"}) m_options.GetKeyValuesByGroup(group, found);
  EXPECT_EQ(found.Count(), 900);
}

}  // namespace
