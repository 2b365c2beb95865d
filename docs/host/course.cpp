// The smallest program: a course, its length, and a place on it.
#include <k7/core.h>

#include <cstdio>

int main(int argc, char** argv) {
  K7LatLon from, to;
  if (argc < 3 || !from.ParsePosition(argv[1]) || !to.ParsePosition(argv[2])) {
    std::puts("course FROM TO: positions such as \"N33 57 W118 24\"");
    return 1;
  }
  std::printf("%.2f NM on a course of %.2f\n", from.Distance(to), from.InitCourse(to));

  K7LatLon place;
  place.EndPoint(from, from.InitCourse(to), 100);
  K7String lat, lon;
  if (!place.FormatLat("%H%d %02.0M", lat) || !place.FormatLon("%H%d %02.0M", lon)) return 1;
  std::printf("after 100 NM %s %s\n", static_cast<const char*>(lat), static_cast<const char*>(lon));
}
