#include "web/http_request.h"
#include "web/limits.h"
#include "web/tile_path.h"

#include <gtest/gtest.h>

TEST(HttpRequest, TakesATargetApart) {
  HttpRequest request;
  ASSERT_EQ(ReadTarget("/api/%C3%A9?p=Standard+Parallel%201%3A49&&P=x&flag", request), 200);
  EXPECT_EQ(request.path, "/api/\xC3\xA9");
  ASSERT_EQ(request.query.size(), 3U);
  EXPECT_EQ(*request.Find("p"), "Standard Parallel 1:49");
  EXPECT_EQ(*request.Find("FLAG"), "");
  EXPECT_EQ(request.Find("none"), nullptr);
  EXPECT_EQ(ReadTarget("/a+b", request), 200);
  EXPECT_EQ(request.path, "/a+b");
}

TEST(HttpRequest, RefusesWhatIsNoTarget) {
  HttpRequest request;
  for (const char* const target :
       {"", "*", "tiles/day", "http://localhost/", "/%", "/%4", "/%zz", "/a%00b", "/a%0Ab", "/?a=%7F", "/?=1",
        "/../x", "/page/%2e%2e/%2E%2E/etc", "/page/..", "/./x", "/?a=%g0"})
    EXPECT_EQ(ReadTarget(target, request), 400) << target;
  EXPECT_EQ(ReadTarget("/..x/y..", request), 200);
  EXPECT_EQ(ReadTarget("/" + std::string(MAX_TARGET_BYTES, 'a'), request), 414);
  std::string query = "/?";
  for (size_t i = 0; i < MAX_PARAMETERS; ++i) query += "a=1&";
  EXPECT_EQ(ReadTarget(query, request), 200);
  EXPECT_EQ(ReadTarget(query + "a=1", request), 400);
}

TEST(HttpRequest, AnswersToItsNamesAlone) {
  const std::string names[] = {"localhost", "127.0.0.1", "[::1]", "chart.example"};
  for (const char* const host :
       {"localhost", "LocalHost:8077", "127.0.0.1:1", "[::1]", "[::1]:8077", "Chart.Example:80"})
    EXPECT_TRUE(IsHost(host, names)) << host;
  for (const char* const host :
       {"", ":8077", "localhost:", "localhost:x", "localhost:123456", "localhost.evil.example",
        "evil.example:8077", "localhost:80@evil", "[::1", "::1", "[::1]x", "127.0.0.1.", "localhost:80:80"})
    EXPECT_FALSE(IsHost(host, names)) << host;
}

TEST(HttpRequest, KnowsPagesOfThisMachine) {
  for (const char* const origin : {"http://localhost:3000", "https://127.0.0.1", "http://[::1]:9"})
    EXPECT_TRUE(IsLoopbackOrigin(origin)) << origin;
  for (const char* const origin : {"", "null", "http://", "localhost", "http://localhost.evil.example",
                                   "ftp://localhost", "http://localhost:80/x", "http://user@localhost"})
    EXPECT_FALSE(IsLoopbackOrigin(origin)) << origin;
}

TEST(HttpRequest, FindsATagAmongOthers) {
  for (const char* const header : {"\"a\"", "W/\"a\"", "\"b\", \"a\"", "*"})
    EXPECT_TRUE(HoldsTag(header, "\"a\"")) << header;
  for (const char* const header : {"", "a", "\"aa\"", "\"b\""})
    EXPECT_FALSE(HoldsTag(header, "\"a\"")) << header;
}

TEST(HttpRequest, LeavesOneLineInTheLog) {
  EXPECT_EQ(Escaped("/a b\r\n\x1B[0m\"\\\xE9~"), "/a\\x20b\\x0D\\x0A\\x1B[0m\\x22\\x5C\\xE9~");
}

TEST(TilePath, IsReadWholeOrNotAtAll) {
  const auto tile = ReadTilePath("day/8/40/88@2x.png");
  ASSERT_TRUE(tile);
  EXPECT_EQ(tile->theme, "day");
  EXPECT_EQ(tile->id.z, 8);
  EXPECT_EQ(tile->id.x, 40);
  EXPECT_EQ(tile->id.y, 88);
  EXPECT_EQ(tile->ratio, 2);
  EXPECT_EQ(ReadTilePath("n/0/0/0.png")->ratio, 1);
  EXPECT_TRUE(ReadTilePath("n/20/1048575/1048575.png"));
  for (const char* const path :
       {"", ".png", "day/8/40/88", "day/8/40/88.PNG", "day/8/40.png", "day/8/40/88/1.png", "day/08/40/88.png",
        "day/8/-1/88.png", "day/8/+1/88.png", "day/8/256/0.png", "day/8/0/256.png", "day/21/0/0.png",
        "day/8/1e1/0.png", "day/8/4294967296/0.png", "day/8/ 1/0.png", "day/8/1/0@3x.png", "day/8//0.png",
        "/8/1/0.png", "day/99999999999999999999/0/0.png"})
    EXPECT_FALSE(ReadTilePath(path)) << path;
}
