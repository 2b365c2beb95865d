// The ground under a route, as a picture.

#include "ink/pen.h"
#include "sheet/page.h"
#include "sheet/profile_panel.h"
#include "sheet/trip.h"
#include "sheet/way_ground.h"
#include "web/api_answer.h"
#include "web/limits.h"
#include "web/page_api.h"
#include "web/view_request.h"

#include <cmath>

namespace {

constexpr double MOST_NM = 5000;  // of which every post is looked at

struct ProfileRequest {
  double width = 1000, height = 300;
  const Theme* theme = nullptr;
  Profile profile{};
};

std::string Read(const HttpRequest& request, Desk& desk, ProfileRequest& wanted) {
  static const double SMALLEST = 100, LARGEST = MAX_SQUARE_SIDE, HIGHEST = 100000;
  if (std::string problem = ReadWithin(request, "width", SMALLEST, LARGEST, wanted.width); !problem.empty())
    return problem;
  if (std::string problem = ReadWithin(request, "height", SMALLEST, LARGEST, wanted.height); !problem.empty())
    return problem;
  double feet = -1;
  if (std::string problem = ReadWithin(request, "altitude", 0, HIGHEST, feet); !problem.empty())
    return problem;
  const std::string* const theme = request.Find("theme");
  const std::string name = theme ? *theme : std::string();
  if (std::string problem = desk.Data().WhyNoTheme(name); !problem.empty()) return problem;
  wanted.theme = desk.Data().FindTheme(name);
  Route route;
  if (std::string problem = ReadRoute(request, desk, route); !problem.empty()) return problem;
  if (route.legs.empty()) return "a profile needs two points or more";
  if (route.distance > MOST_NM) return "a profile is of at most 5000 NM";
  const auto altitude = static_cast<int>(std::lround(feet));
  wanted.profile = ProfileOf(route, feet < 0 ? std::nullopt : std::optional(altitude));
  return {};
}

std::string Draw(const ProfileRequest& wanted, std::vector<unsigned char>& svg) {
  const PixelBox box = {0, 0, std::round(wanted.width), std::round(wanted.height)};
  Page page(PageFormat::SVG, static_cast<int>(box.right), static_cast<int>(box.bottom));
  if (!page.IsValid()) return "out of memory";
  SetColor(page.Cairo(), (*wanted.theme)[ThemeItem::Paper].fill);
  cairo_paint(page.Cairo());
  DrawProfile(page.Cairo(), box, ProfileTextSize(box.right, box.bottom), wanted.profile, *wanted.theme);
  NoProgress progress;
  return page.Encode(svg, progress);
}

}  // namespace

HttpAnswer AnswerProfile(const HttpRequest& request, Desk& desk) {
  ProfileRequest wanted;
  if (const std::string problem = Read(request, desk, wanted); !problem.empty()) return Problem(400, problem);
  Elevations* const terrain = desk.Data().Terrain();
  if (!terrain) return Problem(404, "there is no terrain");
  if (const std::string problem = MeasureGround(*terrain, 0, wanted.profile); !problem.empty())
    return Problem(400, problem);
  std::vector<unsigned char> svg;
  if (const std::string problem = Draw(wanted, svg); !problem.empty()) return Problem(500, problem);
  return {.type = "image/svg+xml", .body = std::string(svg.begin(), svg.end())};
}
