// k7chart profile: the ground under a way from fix to fix.

#include "app/chart_options.h"
#include "app/level_text.h"
#include "app/nav_source.h"
#include "app/progress_line.h"
#include "app/sheet_options.h"
#include "app/terrain_options.h"
#include "app_common/save_file.h"
#include "app_common/verb.h"
#include "ink/pen.h"
#include "route/route_ends.h"
#include "sheet/page.h"
#include "sheet/profile_panel.h"
#include "sheet/way_ground.h"

#include <algorithm>
#include <cstdio>

namespace {

struct WayOptions {
  std::vector<std::string> ends;
  std::string nav;
  std::optional<int> altitude;
};

std::string SetAltitude(const char* text, WayOptions& way) {
  int feet = 0;
  if (std::string problem = ReadLevel(text, feet); !problem.empty()) return problem;
  way.altitude = feet;
  return {};
}

constexpr OptionRow<WayOptions> WAY_OPTIONS[] = {
    {"--altitude", "LEVEL",
     "the planned cruising altitude, as 9500 feet or FL120: draws it and warns where it is less than 1000 ft "
     "above the ground, or less than 2000 ft above ground that is higher than 5000 ft. What "
     "counts is the ground right under the way; obstacles and the pressure of the day are not known here",
     SetAltitude},
};

class ProfileVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(WAY_OPTIONS, m_way);
    AddNavOption(table, m_way.nav);
    AddTerrainOptions(table, m_terrain);
    AddThemeOption(table, m_look);
    AddSheetOptions(table, m_sheet);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (argument.empty()) return "an identifier has letters";
    m_way.ends.push_back(argument);
    return {};
  }

  std::string Run() override {
    if (m_way.ends.size() < 2) return "a profile needs two identifiers or positions or more, as CYVR CYYJ";
    Profile profile;
    profile.altitude = m_way.altitude;
    if (std::string problem = FindFixes(profile); !problem.empty()) return problem;
    Elevations terrain;
    if (std::string problem = terrain.Open(m_terrain.folder); !problem.empty()) return problem;
    std::string problem = MeasureGround(terrain, m_terrain.resolution, profile);
    if (problem.empty()) problem = Draw(profile);
    if (problem.empty()) Print(profile);
    return problem;
  }

 private:
  std::string FindFixes(Profile& profile) {
    NavStore store;
    if (std::any_of(m_way.ends.begin(), m_way.ends.end(), MayBeIdent))
      if (std::string problem = WhyNoStore(m_way.nav, store); !problem.empty()) return problem;
    std::vector<RouteEnd> places;
    if (std::string problem = FindPlaces(store, m_way.ends, places); !problem.empty()) return problem;
    for (const RouteEnd& place : places) {
      profile.fixes.push_back({place.ident, place.place});
      if (!place.note.empty()) m_notes.push_back(place.note);
    }
    return {};
  }

  // Not into a picture that goes to the standard output.
  void Print(const Profile& profile) const {
    std::FILE* const out = IsDevice(m_sheet.output) ? stderr : stdout;
    std::fprintf(out, "%s  %.1f NM, %s\n", WayText(profile).c_str(), profile.Length(),
                 HighestText(profile).c_str());
    for (const std::string& line : {GapText(profile), ClearanceText(profile)})
      if (!line.empty()) std::fprintf(out, "%s\n", line.c_str());
    for (const std::string& note : m_notes) std::fprintf(out, "%s\n", note.c_str());
  }

  std::string Draw(const Profile& profile) const {
    PageFormat format{};
    PageFormatOf(m_sheet.output, format);
    Page page(format, m_sheet.width, m_sheet.height);
    if (!page.IsValid()) return "out of memory";
    SetColor(page.Cairo(), m_look.theme[ThemeItem::Paper].fill);
    cairo_paint(page.Cairo());
    const PixelBox box = {0, 0, m_sheet.width * 1.0, m_sheet.height * 1.0};
    DrawProfile(page.Cairo(), box, ProfileTextSize(box.right, box.bottom), profile, m_look.theme);
    ProgressLine progress;
    return page.Save(m_sheet.output, progress);
  }

  WayOptions m_way;
  TerrainOptions m_terrain;
  LookOptions m_look;
  SheetOptions m_sheet{.smallest = 300, .width = 1600, .height = 700, .output = "profile.png"};
  std::vector<std::string> m_notes;
};

}  // namespace

std::unique_ptr<Verb> MakeProfile() { return std::make_unique<ProfileVerb>(); }
