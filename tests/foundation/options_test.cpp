#include <k7/foundation/error_string.h>
#include <k7/foundation/options.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

class OptionsTest : public testing::Test {
 protected:
  OptionsTest() : m_scope(&m_io) {}
  ~OptionsTest() override { K7Options::Destroy(); }

  std::string File(const char* path) const {
    const Bytes bytes = m_io.Get(path);
    return std::string(bytes.begin(), bytes.end());
  }

  MemIO m_io;
  ScopedIO m_scope;
  K7Options& m_options = *K7Options::Inst();
};

const std::string HEAD = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n";

TEST_F(OptionsTest, SettingsSurviveTheFile) {
  EXPECT_EQ(m_options.SetOption("Size", "64", "Terrain"), 0);
  EXPECT_EQ(m_options.SetOption("Size", "3", "a \"b\" & <c>"), 0);
  EXPECT_EQ(m_options.SetOption("Ratio", 2.5), 0);
  EXPECT_EQ(m_options.SetOption("Null", 0), 0);
  EXPECT_EQ(m_options.SetOption("Size", "128", nullptr), 0);  // the first of that key, in any group
  EXPECT_EQ(m_options.SetOption("Size", "7", ""), 0);         // none without a group yet
  ASSERT_EQ(m_options.Write("o.xml"), 0);
  EXPECT_EQ(File("o.xml"),
            HEAD +
                "<Options>\n\t<Size Group=\"Terrain\">128</Size>\n"
                "\t<Size Group=\"a &quot;b&quot; &amp; &lt;c&gt;\">3</Size>\n"
                "\t<Ratio>2.500000</Ratio>\n\t<Null>(null)</Null>\n\t<Size>7</Size>\n</Options>\n");

  m_options.SetOption("Lost", "1");
  ASSERT_EQ(m_options.Read("o.xml"), 0);
  EXPECT_EQ(m_options.GetKeyValueByName("Lost"), nullptr);
  EXPECT_STREQ(m_options.GetValueByKey("Size"), "128");
  EXPECT_STREQ(m_options.GetValueByKey("Size", "a \"b\" & <c>"), "3");
  EXPECT_STREQ(m_options.GetValueByKey("Size", ""), "7");
  EXPECT_STREQ(m_options.GetKeyValueByIndex(1)->value, "3");
  EXPECT_STREQ(m_options.GetKeyValueByIndex(4)->value, "7");
  EXPECT_EQ(m_options.GetKeyValueByIndex(5), nullptr);
  EXPECT_EQ(m_options.GetKeyValueByIndex(-1), nullptr);
  EXPECT_EQ(m_options.GetValueByKey("size"), nullptr);
  EXPECT_EQ(m_options.GetValueByKey(nullptr), nullptr);
  K7PtrArray found;
  EXPECT_EQ(m_options.GetKeyValuesByGroup("", found), 0);
  EXPECT_EQ(found.Count(), 3);
  EXPECT_EQ(m_options.GetKeyValuesByGroup(nullptr, found), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(m_options.SetOption(nullptr, "1"), K7_ERR_BAD_ARGUMENT);
}

TEST_F(OptionsTest, FailuresLeaveSettingsAndFileAlone) {
  m_options.SetOption("Kept", "yes");
  ASSERT_EQ(m_options.Write("o.xml"), 0);
  const std::string whole = File("o.xml");
  EXPECT_EQ(m_options.Read("none.xml"), K7_ERR_FILE_IO);
  m_io.Put("cut.xml", whole.substr(0, whole.size() - 3));  // behind the settings
  EXPECT_EQ(m_options.Read("cut.xml"), K7_ERR_XML_MISMATCHED_TAG);
  EXPECT_STREQ(m_options.GetValueByKey("Kept"), "yes");

  m_io.room = whole.size() - 1;
  EXPECT_EQ(m_options.Write("other.xml"), K7_ERR_INVALID_DATA);
  m_io.room = SIZE_MAX;

  m_io.Put("empty.xml", std::string("<Options/>"));
  ASSERT_EQ(m_options.Read("empty.xml"), 0);
  EXPECT_EQ(m_options.GetKeyValueByName("Kept"), nullptr);
}

// A key that no file can give back is refused, and leaves the file alone; any other comes back.
TEST_F(OptionsTest, KeysNameElements) {
  m_io.Put("o.xml", std::string("before"));
  for (const char* const key : {"", "a b", "a\n", "a<", "a>", "?a", "!a", "/a", "a/", "/"}) {
    K7Options::Destroy();
    K7Options::Inst()->SetOption(key, "1");
    EXPECT_EQ(K7Options::Inst()->Write("o.xml"), K7_ERR_INVALID_DATA) << key;
    EXPECT_EQ(File("o.xml"), "before") << key;
  }
  for (const char* const key : {"a/b", "a//b", "a?", "a\"b=\"", "-", "&amp;", "="}) {
    K7Options::Destroy();
    K7Options::Inst()->SetOption(key, "1", "g \"/>");
    EXPECT_EQ(K7Options::Inst()->Write("o.xml"), 0) << key;
    EXPECT_EQ(K7Options::Inst()->Read("o.xml"), 0) << key;
    const char* const value = K7Options::Inst()->GetValueByKey(key, "g \"/>");
    EXPECT_STREQ(value, "1") << key;
  }
}

// Clean under the thread sanitizer, and nothing is lost.
TEST_F(OptionsTest, ThreadsShareTheTable) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([this, t] {
      const std::string group = std::to_string(t);
      const std::string path = group + ".xml";
      for (int i = 0; i < 100; ++i) {
        m_options.SetOption(("key" + std::to_string(i)).c_str(), "x", group.c_str());
        K7PtrArray found;
        m_options.GetKeyValuesByGroup(group.c_str(), found);
        EXPECT_EQ(found.Count(), i + 1);
        EXPECT_STREQ(m_options.GetValueByKey("key0", group.c_str()), "x");
        const int err = i % 20 == 0 ? m_options.Write(path.c_str()) : 0;
        EXPECT_EQ(err, 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  K7PtrArray found;
  for (const char* group : {"0", "1", "2", "3"}) m_options.GetKeyValuesByGroup(group, found);
  EXPECT_EQ(found.Count(), 400);
}

}  // namespace
