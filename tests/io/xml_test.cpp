#include <k7/core.h>

#include "support/disk_file.h"
#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>
#include <tuple>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string Written(const K7XmlElem& elem, int depth = 0) {
  K7String out;
  EXPECT_EQ(elem.Write(out, depth), 0);
  return static_cast<const char*>(out);
}

// What a text is after reading and writing, or the code.
std::string Reread(const std::string& text) {
  K7XmlElem elem;
  int err = 0;
  const char* const next = elem.Parse(text.c_str(), &err);
  if (err) return std::to_string(err);
  return next ? Written(elem) : "end";
}

std::string Repeat(const std::string& text, int n) {
  std::string all;
  for (int i = 0; i < n; ++i) all += text;
  return all;
}

TEST(Xml, LenientReading) {
  const struct {
    const char* text;
    const char* expected;
  } CASES[] = {
      {"<a/>", "<a/>\n"},
      {" junk <a></a >", "<a/>\n"},
      {"<?xml version=\"1.0\"?>\n<!-- > -- <b> --><a>  text \n</a>", "<a>text</a>\n"},
      // Comments and declarations leave nothing behind, wherever they stand; one without its "?" takes its
      // subtree.
      {"<a><!----><!-->x<b/><?pi v=\">\"?><!-- last --></a>", "<a>x\n\t<b/>\n</a>\n"},
      {"<a><b/><?pi><c><?in/></c></?pi><?pi/><d/></a>", "<a>\n\t<b/>\n\t<d/>\n</a>\n"},
      {"<?pi></pi><a/>", "<a/>\n"},
      {"<a><!b/><!-c/></a>", "<a>\n\t<!b/>\n\t<!-c/>\n</a>\n"},
      // The first text counts, also behind children.
      {"<a><b/> one <c/> two </a>", "<a>one\n\t<b/>\n\t<c/>\n</a>\n"},
      {"<a>\v1 &lt; &amp;lt; &amp;amp; &quot;&apos;&gt;&unknown;&</a>",
       "<a>1 &lt; &lt; &amp;amp; &quot;&apos;&gt;&amp;unknown;&amp;</a>\n"},
      // Attributes: between any whitespace, "<" and ">" in values, and the list ends at another shape.
      {"<a\n b=\"1\"\tc=\"x > y\"/>", "<a b=\"1\" c=\"x &gt; y\"/>\n"},
      {"<a b=\"<\" c=\"&quot;\"d=\"/\">t</a>", "<a b=\"&lt;\" c=\"&quot;\" d=\"/\">t</a>\n"},
      {"<a b=\"1\" c='2' d=\"3\"/>", "<a b=\"1\"/>\n"},
      {"<a b=\"never closed>t</a>", "<a>t</a>\n"},
      {"<a>< /><b></b></a>", "<a>\n\t< />\n\t<b/>\n</a>\n"},
      {"<a></b>", "-11603"},
      {"<a><b></a></b>", "-11603"},
      {"<a>text", "-11603"},
      {"<a", "-11603"},
      {"", "end"},
      {"no tag", "end"},
      {"<!-- only --> ", "end"},
  };
  for (const auto& [text, expected] : CASES) EXPECT_EQ(Reread(text), expected) << text;
}

TEST(Xml, ParseLeavesTheCallersInputInPlace) {
  K7XmlElem elem;
  int err = 1;
  const char* const closing = " </caller>";
  EXPECT_EQ(elem.Parse(closing, &err), closing);
  EXPECT_EQ(err, 0);
  EXPECT_STREQ(elem.Parse("<a>1</a> \n<b/>rest", &err), "<b/>rest");
  EXPECT_EQ(elem.Parse(nullptr, &err), nullptr);
  EXPECT_EQ(err, K7_ERR_BAD_ARGUMENT);
}

TEST(Xml, TreeIsReadAndWritten) {
  K7XmlElem root("Record", nullptr, "Name=\"A &amp; B\" x");
  auto* const key = new K7XmlElem("Key", "5");
  auto* const second = new K7XmlElem("Key", "7 < 8");
  for (K7XmlElem* const child : {key, second, new K7XmlElem(nullptr, "nameless")})
    EXPECT_EQ(root.AddChild(child), 0);
  EXPECT_EQ(root.AddAttrib("Quote", "\"'<&>\n"), 0);
  const std::string text =
      "\t<Record Name=\"A &amp; B\" Quote=\"&quot;&apos;&lt;&amp;&gt;\n\">\n"
      "\t\t<Key>5</Key>\n\t\t<Key>7 &lt; 8</Key>\n\t\t<>nameless</>\n\t</Record>\n";
  EXPECT_EQ(Written(root, 1), text);
  EXPECT_EQ(Written(*std::unique_ptr<K7XmlElem>(root.Clone()), 1), text);

  EXPECT_EQ(root.Child("Key", 1), second);
  EXPECT_EQ(root.Child("Key", -1), nullptr);
  EXPECT_EQ(root.Child("key"), nullptr);
  EXPECT_EQ(root.Child("Key", "Record", 0), key);
  EXPECT_EQ(root.Child("Key", "Other", 0), nullptr);
  EXPECT_EQ(root.ChildText(nullptr), "nameless");
  EXPECT_EQ(root.ChildText("none"), "");

  // Marked elements that a caller made are dropped again by whoever reads the text.
  root.Clear();
  EXPECT_EQ(root.NumAttribs(), 0);
  EXPECT_EQ(Written(root), "< />\n");
  root.AddAttrib("a", "1");
  root.AddChild(new K7XmlElem(nullptr, "--> <b/>", nullptr, K7XmlElem::COMMENT));
  root.AddChild(new K7XmlElem("pi", "text", "a=\"1\"", K7XmlElem::DECLARATION));
  EXPECT_EQ(Written(root, -1), "< a=\"1\">\n\t<!----&gt; &lt;b/&gt;-->\n\t<?pi a=\"1\"?>\n</>\n");
  EXPECT_EQ(root.SetName("r"), 0);
  EXPECT_EQ(Reread(Written(root)), "<r a=\"1\"/>\n");
}

TEST(Xml, ChildrenMoveAndKeepTheirOrder) {
  K7XmlElem root("r"), other;
  K7XmlElem* child[4];
  for (int i = 0; i < 4; ++i) child[i] = new K7XmlElem(std::to_string(i).c_str());
  for (int i = 0; i < 3; ++i) root.AddChild(child[i]);
  EXPECT_FALSE(other.RemoveChild(child[2]));
  EXPECT_TRUE(root.RemoveChild(child[2]));  // the last, so that the next is appended behind another
  EXPECT_EQ(child[2]->Parent(), nullptr);
  root.AddChild(child[3]);
  delete child[0];          // takes itself out
  root.AddChild(child[1]);  // to the end
  EXPECT_EQ(Written(root), "<r>\n\t<3/>\n\t<1/>\n</r>\n");
  other.AddChild(child[3]);
  EXPECT_EQ(Written(root), "<r>\n\t<1/>\n</r>\n");
  child[1]->AddChild(child[2]);
  for (K7XmlElem* const above : {&root, child[1], child[2], static_cast<K7XmlElem*>(nullptr)})
    EXPECT_EQ(child[2]->AddChild(above), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(child[1]->SetText("t"), 0);
  child[1]->Clear();
  EXPECT_EQ(Written(root), "<r>\n\t< />\n</r>\n");
}

// Also those that their text cannot give back: see the class comment.
TEST(Xml, AttributesAreKeptAsTheyAreSet) {
  K7XmlElem root("r");
  std::vector<std::pair<std::string, std::string>> expected{{"0", "&lt;"}};
  for (int i = 1; i < 100; ++i) expected.emplace_back(std::to_string(i % 50), std::string(i % 30, 'x'));
  for (const auto& [name, value] : expected) EXPECT_EQ(root.AddAttrib(name.c_str(), value.c_str()), 0);
  EXPECT_EQ(root.AddAttrib("self", root.AttribValue("29")), 0);
  expected.emplace_back("self", std::string(29, 'x'));
  EXPECT_EQ(root.AddAttrib(nullptr, ""), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(root.AddAttrib("n", nullptr), K7_ERR_BAD_ARGUMENT);
  const std::unique_ptr<K7XmlElem> copy(root.Clone());
  root.Clear();
  K7String name, value;
  for (int i = 0; i < 101; ++i) {
    EXPECT_TRUE(copy->GetAttribByIndex(i, name, value));
    EXPECT_EQ(std::pair(std::string(name), std::string(value)), expected[static_cast<size_t>(i)]);
  }
  for (const int outside : {-1, 101}) EXPECT_FALSE(copy->GetAttribByIndex(outside, name, value));
  EXPECT_TRUE(copy->Attrib("7", value));
  EXPECT_STREQ(value, "xxxxxxx") << "the first of that name";
  EXPECT_TRUE(copy->Attrib("30", value)) << "an empty value is one";
  EXPECT_FALSE(copy->Attrib("SELF", value));
  EXPECT_EQ(copy->AttribValue(nullptr), nullptr);
}

// Broken-off comments, declarations and quotes too: linear, whatever the input.
TEST(Xml, SizeOfTheInputCostsNeitherStackNorSquares) {
  const int million = 1000000;
  const std::string deep = Repeat("<a>", million);
  K7XmlElem elem;
  EXPECT_NE(elem.Parse((deep + Repeat("</a>", million)).c_str()), nullptr);
  const std::unique_ptr<K7XmlElem> copy(elem.Clone());
  EXPECT_NE(copy, nullptr);
  K7String out;
  EXPECT_EQ(elem.Write(out), K7_ERR_MEMORY);  // a million million tabs
  // Indented by 0 ... n - 1 tabs at their starts and all but the innermost at their ends: (n - 1)^2.
  const size_t outer = 9999;
  EXPECT_EQ(Reread(Repeat("<a>", 10000) + Repeat("</a>", 10000)).size(),
            outer * outer + outer * std::strlen("<a>\n</a>\n") + std::strlen("<a/>\n"));

  for (const std::string& broken : {deep, Repeat("<?a>", million), "<a>" + Repeat("<b c=\">", million)})
    EXPECT_EQ(Reread(broken), "-11603");
  const std::string wide = "<a>\n" + Repeat("\t<b/>\n", million) + "</a>\n";
  for (const std::string& whole :
       {wide, "<a" + Repeat(" b=\"&lt;\"", million) + "/>\n", "<a>" + Repeat("&amp;", million) + "</a>\n"})
    EXPECT_TRUE(Reread(whole) == whole);
  EXPECT_TRUE(Reread("<a>" + Repeat("<b/>", million) + Repeat("<?p></?p>", million) + "</a>") == wide);
}

const char DOCUMENT[] =
    "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n"
    "<Options>\n\t<Units Group=\"a &amp; b\">100% m\xB0</Units>\n\t<Empty/>\n</Options>\n";

TEST(Xml, FilesCutAtEveryByteGiveACodeAndALogLine) {
  MemIO io;
  const ScopedIO scope(&io);
  K7XmlElem root;
  const std::string document = DOCUMENT;
  io.Put("whole.xml", document);
  EXPECT_EQ(root.ParseFile("whole.xml"), 0);
  EXPECT_EQ(root.WriteFile("copy.xml"), 0);
  EXPECT_EQ(io.Get("copy.xml"), io.Get("whole.xml"));

  std::vector<std::string> damaged{"< />", "< a=\"1\"/>", "<></>"};  // without a name it is none for a file
  for (size_t n = 0; n + 1 < document.size(); ++n) damaged.push_back(document.substr(0, n));
  for (const std::string& text : damaged) {
    io.Put("cut.xml", text);
    EXPECT_EQ(root.ParseFile("cut.xml"), K7_ERR_XML_MISMATCHED_TAG) << text;
  }
  EXPECT_STREQ(root.ChildText("Units"), "100% m\xB0") << "what was read stays";
  EXPECT_EQ(root.ParseFile("none.xml"), K7_ERR_FILE_IO);
  EXPECT_STREQ(root.Name(), "Options");

  K7Log::CreateLogFile("log", &io);
  K7Log::SetMinReportedSeverity(K7_LOG_DEBUG);
  io.Put("bad.xml", std::string("<a>\n<b>\n</c>\n</a>"));
  root.ParseFile("bad.xml");
  K7Log::CloseLogFile();
  const Bytes log = io.Get("log");
  EXPECT_NE(std::string(log.begin(), log.end()).find("D  bad.xml: reading XML stopped at line 3"),
            std::string::npos);
}

// Text may come with fewer bytes than the file has, as where line ends are translated.
TEST(Xml, FilesAreWhatTheHostReadsOfThem) {
  AnsweringIO io;
  const ScopedIO scope(&io);
  io.Put("a.xml", std::string("<a>1</a>\r\n<b/>"));
  const int size = static_cast<int>(io.Get("a.xml").size());
  const std::pair<int, int> CASES[] = {{8, 0},
                                       {size, 0},
                                       {7, K7_ERR_XML_MISMATCHED_TAG},
                                       {0, K7_ERR_FILE_IO},
                                       {size + 1, K7_ERR_FILE_IO},
                                       {K7_ERR_MEMORY, K7_ERR_FILE_IO}};
  for (const auto& [result, code] : CASES) {
    io.result = result;
    EXPECT_EQ(K7XmlElem().ParseFile("a.xml"), code) << result;
  }
}

TEST(Xml, HostsServicesOpenTheNamedFileAlone) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("o.xml.tmp", std::string("the user's"));
  K7XmlElem root("New", "text");
  for (io.room = 0; root.WriteFile("o.xml") != 0; ++io.room) ASSERT_EQ(io.files.size(), 2u) << io.room;
  EXPECT_EQ(io.room, io.Get("o.xml").size());
  EXPECT_EQ(io.files.size(), 2u);
  EXPECT_EQ(io.Get("o.xml.tmp").size(), 10u);
}

// A folder of the test's own, and the native services.
class XmlFile : public testing::Test {
 protected:
  int Write(const std::string& path) const { return m_tree.WriteFile(path.c_str()); }
  std::ptrdiff_t Names() const { return std::distance(fs::directory_iterator(m_dir.Path()), {}); }

  K7IOK7 m_io;
  ScopedIO m_scope{&m_io};
  TempDir m_dir;
  K7XmlElem m_tree{"New", "100% sure"};
  const std::string m_text = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<New>100% sure</New>\n";
};

TEST_F(XmlFile, IsReplacedBehindItsLink) {
  if (ON_WINDOWS) GTEST_SKIP() << "symbolic links need a privilege there";
  // On another file system than the link, where there is one.
  const TempDir other(fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path());
  const std::string real = other / "real.xml", link = m_dir / "o.xml";
  PutFile(real, "old");
  fs::permissions(real, static_cast<fs::perms>(0640));
  fs::create_symlink(real, link);
  PutFile(real + ".tmp", "the user's");
  std::ifstream reader(real);  // still sees the file that it opened
  EXPECT_EQ(Write(link), 0);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(GetFile(real), m_text);
  EXPECT_EQ(fs::status(real).permissions(), static_cast<fs::perms>(0640));
  EXPECT_EQ(GetFile(real + ".tmp"), "the user's");
  std::string before;
  reader >> before;
  EXPECT_EQ(before, "old");
  EXPECT_EQ(Names(), 1);
}

TEST_F(XmlFile, IsWrittenItselfWhereNoOtherMayTakeItsPlace) {
  if (ON_WINDOWS) GTEST_SKIP() << "symbolic links need a privilege there";
  // A second name, and a chain of links that leads to no file yet.
  PutFile(m_dir / "one.xml", "old");
  fs::create_hard_link(m_dir / "one.xml", m_dir / "two.xml");
  EXPECT_EQ(Write(m_dir / "two.xml"), 0);
  EXPECT_EQ(GetFile(m_dir / "one.xml"), m_text);
  const std::string later = m_dir / "sub/later.xml";
  fs::create_directory(m_dir / "sub");
  fs::create_symlink("later.xml", m_dir / "sub/second");
  fs::create_symlink("sub/second", m_dir / "first");
  EXPECT_EQ(Write(m_dir / "first"), 0);
  EXPECT_TRUE(fs::is_symlink(m_dir / "first"));
  EXPECT_EQ(GetFile(later), m_text);

  // Another owner, whom only root can make.
  if (chown(later.c_str(), 12345, 12345) == 0) {
    PutFile(later, "old");
    EXPECT_EQ(Write(later), 0);
    struct stat info {};
    EXPECT_EQ(stat(later.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 12345u);
    EXPECT_EQ(GetFile(later), m_text);
  }
  // A pipe takes the text; nothing is made of it.
  const std::string pipe = m_dir / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string piped;
  std::thread reader([&] { piped = GetFile(pipe); });
  EXPECT_EQ(Write(pipe), 0);
  reader.join();
  EXPECT_EQ(piped, m_text);
  EXPECT_TRUE(fs::is_fifo(pipe));

  fs::create_symlink("loop", m_dir / "loop");
  for (const std::string& path : {m_dir / "loop", m_dir / "none/o.xml", m_dir.Path()})
    EXPECT_EQ(Write(path), K7_ERR_FILE_IO) << path;
  EXPECT_EQ(m_tree.WriteFile(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(K7XmlElem().ParseFile(m_dir.Path().c_str()), K7_ERR_FILE_IO);
  EXPECT_EQ(Names(), 6);
}

TEST_F(XmlFile, ClosedFoldersAndProtectedFiles) {
  if (ON_WINDOWS) GTEST_SKIP() << "no mode bits";
  // Mode of the folder and of the file in it, and what writing to that gives.
  for (const auto& [folder, file, expected] :
       {std::tuple{0555, 0666, 0}, {0777, 0444, int{K7_ERR_FILE_IO}}}) {
    PutFile(m_dir / "o.xml", "old");
    fs::permissions(m_dir / "o.xml", static_cast<fs::perms>(file));
    fs::permissions(m_dir.Path(), static_cast<fs::perms>(folder));
    {
      const Nobody nobody(m_dir);
      EXPECT_EQ(Write(m_dir / "o.xml"), expected);
    }
    EXPECT_EQ(GetFile(m_dir / "o.xml"), expected ? "old" : m_text);
  }
  EXPECT_EQ(Names(), 1);
}

TEST_F(XmlFile, FullDiskLeavesTheOldFile) {
  if (ON_WINDOWS) GTEST_SKIP() << "no limit of a file's size";
  PutFile(m_dir / "o.xml", "old");
  const auto write = [this] {
    const SmallDisk disk(m_text.size() - 1);
    return Write(m_dir / "o.xml");
  };
  EXPECT_EQ(write(), K7_ERR_FILE_IO);
  EXPECT_EQ(GetFile(m_dir / "o.xml"), "old");
  EXPECT_EQ(Names(), 1);
}

}  // namespace
