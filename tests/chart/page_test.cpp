// Pictures of k7chart: what was drawn is in the file, and the file is whole or not there.

#include "sheet/page.h"
#include "app_common/save_file.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

struct Counted : Progress {
  void Step(const std::string&) override { ++steps; }
  void Within(double share) override { last = share; }
  int steps = 0;
  double last = 0;
};

class PageTest : public testing::Test {
 protected:
  static std::string Contents(const std::string& path) {
    std::ostringstream out;
    out << std::ifstream(path, std::ios::binary).rdbuf();
    return out.str();
  }
  void Put(const std::string& name, const std::string& text) { std::ofstream(m_dir / name) << text; }
  size_t Files() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(m_dir.Path()), fs::directory_iterator()));
  }
  std::string Save(const std::string& name, const std::string& text) {
    return SaveFile(m_dir / name, {text.begin(), text.end()});
  }

  TempDir m_dir;
};

// Anything: a gradient, edges that are half a pixel off, odd sizes.
void Scribble(cairo_t* cairo) {
  cairo_pattern_t* const gradient = cairo_pattern_create_linear(0, 0, 301, 203);
  cairo_pattern_add_color_stop_rgb(gradient, 0, 1, 0.5, 0);
  cairo_pattern_add_color_stop_rgb(gradient, 1, 0, 0.2, 0.9);
  cairo_set_source(cairo, gradient);
  cairo_paint(cairo);
  cairo_pattern_destroy(gradient);
  cairo_set_source_rgb(cairo, 0.1, 0.7, 0.3);
  cairo_arc(cairo, 100.5, 80.25, 60, 0, 6);
  cairo_fill(cairo);
}

TEST_F(PageTest, PngHoldsThePixelsAndTheirSize) {
  Page page(PageFormat::PNG, 301, 203);
  Scribble(page.Cairo());
  Counted progress;
  ASSERT_EQ(page.Save(m_dir / "p.png", progress), "");
  EXPECT_EQ(progress.steps, 1);
  EXPECT_GT(progress.last, 0.99);

  cairo_surface_t* const drawn = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 301, 203);
  cairo_t* const cairo = cairo_create(drawn);
  Scribble(cairo);
  cairo_surface_flush(drawn);
  cairo_surface_t* const read = cairo_image_surface_create_from_png((m_dir / "p.png").c_str());
  ASSERT_EQ(cairo_image_surface_get_width(read), 301);
  ASSERT_EQ(cairo_image_surface_get_height(read), 203);
  int different = 0;
  for (int y = 0; y < 203; ++y)
    for (int x = 0; x < 301; ++x) {
      const auto at = [&](cairo_surface_t* s) {
        return cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s) + x * 4;
      };
      different += std::memcmp(at(drawn), at(read), 3) != 0;
    }
  EXPECT_EQ(different, 0);
  cairo_destroy(cairo);
  cairo_surface_destroy(drawn);
  cairo_surface_destroy(read);

  // Byte by byte (PNG, second edition, 11.2.2 and 11.3.5.3): 8 bits of true colour; 3780 pixels a metre.
  const std::string bytes = Contents(m_dir / "p.png");
  EXPECT_EQ(bytes.substr(12, 14), std::string("IHDR\0\0\x01\x2d\0\0\0\xcb\x08\x02", 14));
  const size_t phys = bytes.find("pHYs");
  ASSERT_NE(phys, std::string::npos);
  EXPECT_EQ(bytes.substr(phys + 4, 9), std::string("\0\0\x0e\xc4\0\0\x0e\xc4\x01", 9));
}

TEST_F(PageTest, LinksStayAndTheirTargetsAreReplaced) {
  fs::create_directory(m_dir / "far");
  Put("far/target", "old");
  fs::permissions(m_dir / "far/target", fs::perms(0640));
  fs::create_symlink("far/target", m_dir / "near");
  fs::create_symlink(m_dir / "near", m_dir / "nearer");
  fs::create_symlink("far/new", m_dir / "dangling");
  fs::create_symlink("loop", m_dir / "loop");
  EXPECT_EQ(Save("nearer", "new"), "");
  EXPECT_TRUE(fs::is_symlink(m_dir / "nearer") && fs::is_symlink(m_dir / "near"));
  EXPECT_FALSE(fs::is_symlink(m_dir / "far/target"));
  EXPECT_EQ(Contents(m_dir / "far/target"), "new");
  EXPECT_EQ(fs::status(m_dir / "far/target").permissions(), fs::perms(0640));
  EXPECT_EQ(Save("dangling", "made"), "");
  EXPECT_TRUE(fs::is_symlink(m_dir / "dangling"));
  EXPECT_EQ(Contents(m_dir / "far/new"), "made");
  EXPECT_EQ(Save("loop", "x"), std::strerror(ELOOP));
  EXPECT_EQ(Files(), 5u);  // no litter
}

// Two names of one file stay that; a name as long as names may be leaves no room for a longer one beside it.
TEST_F(PageTest, WritesDirectlyWhereNothingCanStandBeside) {
  Put("one", "a longer old text");
  fs::create_hard_link(m_dir / "one", m_dir / "two");
  EXPECT_EQ(Save("one", "new"), "");
  EXPECT_EQ(Contents(m_dir / "two"), "new");
  const std::string longest(255, 'x');
  EXPECT_EQ(Save(longest, "long"), "");
  EXPECT_EQ(Contents(m_dir / longest), "long");
  EXPECT_TRUE(IsDevice("/dev/null"));
  EXPECT_FALSE(IsDevice(m_dir / "one"));
  EXPECT_FALSE(IsDevice(m_dir.Path()));
}

TEST_F(PageTest, SaysTheReasonAndKeepsWhatWasThere) {
  EXPECT_EQ(Save("no/such/file", "x"), std::strerror(ENOENT));
  EXPECT_EQ(Save("", "x"), std::strerror(EISDIR));
  EXPECT_EQ(SaveFile("/dev/full", {'x'}), std::strerror(ENOSPC));

  // A disk that fills up, as far as one process can have one.
  Put("kept", "old");
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {4096, 4096};
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool kept = SaveFile(m_dir / "kept", std::vector<unsigned char>(10000)) == std::strerror(EFBIG);
    const bool made = SaveFile(m_dir / "made", std::vector<unsigned char>(10000)) == std::strerror(EFBIG);
    _exit(kept && made ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "reason";
  EXPECT_EQ(Contents(m_dir / "kept"), "old");
  EXPECT_EQ(Files(), 1u);
}

// Only for a user who can be refused.
TEST_F(PageTest, ObeysPermissions) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write anything";
  Put("protected", "old");
  fs::permissions(m_dir / "protected", fs::perms(0444));
  EXPECT_EQ(Save("protected", "x"), std::strerror(EACCES));
  Put("open", "old");
  fs::permissions(m_dir.Path(), fs::perms(0555));
  EXPECT_EQ(Save("open", "new"), "");
  EXPECT_EQ(Contents(m_dir / "open"), "new");
  fs::permissions(m_dir.Path(), fs::perms(0755));
}

}  // namespace
