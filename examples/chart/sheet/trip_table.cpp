#include "sheet/trip_table.h"

#include "ink/pen.h"
#include "ink/text.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// Pixels.
constexpr double TITLE = 22, TEXT = 11, SMALL = 9.5, LINE = 15;
constexpr double ROW = 30, HEAD = 34;
// From the top of a row down to the baselines of its two lines.
constexpr double FIRST_LINE = 13, SECOND_LINE = 25;

enum Column { FIX, AIRWAY, OUT, IN, LEG, TOTAL, MINIMUM, TIME, ELAPSED, GROUND, CLEAR, ACTUAL, COLUMNS };

// Of a table of 704 pixels. Words begin at `at`, figures end there.
constexpr struct {
  double at, width;
  Align align;
  const char *first, *second;
} HEADS[] = {{0, 102, Align::Left, "fix", ""},
             {108, 62, Align::Left, "airway", ""},
             {206, 36, Align::Right, "course", "out"},
             {250, 38, Align::Right, "course", "in"},
             {304, 48, Align::Right, "leg", "NM"},
             {362, 52, Align::Right, "total", "NM"},
             {422, 54, Align::Right, "minimum", "altitude"},
             {468, 40, Align::Right, "leg", "h:min"},
             {520, 46, Align::Right, "total", "h:min"},
             {582, 56, Align::Right, "ground", "ft"},
             {642, 54, Align::Right, "clear at", "ft"},
             {704, 52, Align::Right, "actual", "time"}};
static_assert(std::size(HEADS) == COLUMNS);
constexpr double TABLE_WIDTH = 704;

std::string Miles(double nm) { return std::string(K7FmtString("%.1f", nm)); }

std::vector<std::string> Wrapped(cairo_t* cairo, const std::string& text, double size, double width) {
  std::vector<std::string> lines;
  std::string line;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find(' ', at), text.size());
    const std::string word = text.substr(at, end - at), longer = line.empty() ? word : line + " " + word;
    at = end + 1;
    if (!line.empty() && TextWidth(cairo, longer, size) > width) {
      lines.push_back(line);
      line = word;
    } else {
      line = longer;
    }
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

// Shrinks lettering until it fits.
void WriteWithin(TripPages& pages, const std::string& text, double x, double y, double width,
                 Lettering letters) {
  static const double SMALLEST = 6;
  const double wide = TextWidth(pages.Cairo(), text, letters.size, letters.bold);
  if (wide > width) letters.size = std::max(letters.size * width / wide, SMALLEST);
  WriteText(pages.Cairo(), pages.Look(), text, x, y, letters);
}

// What stands under the title, a paragraph each.
std::vector<std::string> Words(const Trip& trip) {
  const Route& route = trip.route;
  const double direct = route.fixes.front().place.Distance(route.fixes.back().place);
  std::string sum = Miles(route.distance) + " NM, " + Miles(direct) + " NM by the great circle; " +
                    TimeText(MinutesTo(route.distance, trip.knots)) + " h at a ground speed of " +
                    std::string(K7FmtString("%.9g", trip.knots)) + " kt";
  if (trip.profile.altitude) sum += "; planned at " + std::to_string(*trip.profile.altitude) + " ft";
  std::vector<std::string> words = {route.fromName + " to " + route.toName, sum,
                                    "Route: " + RouteText(route)};
  words.insert(words.end(), route.notes.begin(), route.notes.end());
  words.insert(words.end(), trip.sources.begin(), trip.sources.end());
  return words;
}

// What the table's signs and figures mean.
std::vector<std::string> Footnotes(const Trip& trip) {
  std::vector<std::string> notes = {
      "Courses are magnetic, those with a T true. Times are for the ground speed, without wind, climb and "
      "descent."};
  if (trip.profile.points.empty()) {
    notes.emplace_back("No terrain: nothing is said of the ground.");
    return notes;
  }
  notes.emplace_back(
      "Ground: the highest right under the leg. Clear at: 1000 ft above it, 2000 ft above ground over 5000 "
      "ft, without "
      "regard to obstacles and the pressure of the day.");
  bool gaps = false, low = false;
  for (size_t leg = 0; leg < trip.route.legs.size(); ++leg) {
    const LegGround ground = GroundUnder(trip.profile, leg);
    gaps = gaps || ground.hasGaps;
    low = low || (trip.profile.altitude && ClearAltitude(ground) > *trip.profile.altitude);
  }
  if (gaps)
    notes.emplace_back(
        "+ ground may be higher: its elevation is not known under the whole leg; ? under none of it.");
  if (low) notes.emplace_back("! the planned altitude does not clear the ground.");
  return notes;
}

// Where things stand: the same when pages are counted and when they are drawn.
class Layout {
 public:
  Layout(cairo_t* cairo, const Paper& paper, const Trip& trip) {
    const double width = paper.width - 2 * TripPages::MARGIN;
    for (const std::string& text : Words(trip)) Take(Wrapped(cairo, text, TEXT, width), words);
    for (const std::string& text : Footnotes(trip)) Take(Wrapped(cairo, text, SMALL, width), notes);
    const double top = TripPages::MARGIN, bottom = paper.height - TripPages::MARGIN - TripPages::FOOT;
    // Of all the words a hundred notes would leave no room for a row.
    const size_t most = static_cast<size_t>((bottom - top - TITLE - HEAD - 4 * ROW) / LINE);
    if (words.size() > most) words.resize(most);
    firstRow = top + TITLE + 10 + static_cast<double>(words.size()) * LINE + 12 + HEAD;
    nextRow = top + HEAD;
    const double notesHeight = static_cast<double>(notes.size()) * LINE + 8;
    double y = firstRow;
    for (size_t row = 0; row < trip.route.fixes.size(); ++row, y += ROW) {
      if (y + ROW > bottom) Break(row, y);
    }
    if (y + notesHeight > bottom) Break(trip.route.fixes.size(), y);
    notesTop = y + 8;
    left = bottom - y - notesHeight;
  }

  std::vector<std::string> words, notes;  // lines
  std::vector<size_t> breaks;             // rows before which a page begins
  double firstRow, nextRow;               // on the first page and on others
  double notesTop = 0, left = 0;          // on the last one

 private:
  static void Take(const std::vector<std::string>& from, std::vector<std::string>& to) {
    to.insert(to.end(), from.begin(), from.end());
  }
  void Break(size_t row, double& y) {
    breaks.push_back(row);
    y = nextRow;
  }
};

class Table {
 public:
  Table(TripPages& pages, const Trip& trip, const Layout& layout)
      : m_pages(pages),
        m_trip(trip),
        m_layout(layout),
        m_left(pages.Room().left),
        m_stretch((pages.Room().right - m_left) / TABLE_WIDTH) {}

  void Draw();

 private:
  double X(Column column) const { return m_left + HEADS[column].at * m_stretch; }
  void Line(double y, double width) const;
  void Write(Column column, double y, const std::string& text, bool bold = false, double size = TEXT) const;
  void DrawWords() const;
  void DrawHead(double y) const;
  void DrawRow(size_t row, double y) const;
  void DrawGround(size_t leg, double y) const;

  TripPages& m_pages;
  const Trip& m_trip;
  const Layout& m_layout;
  double m_left, m_stretch;
};

void Table::Line(double y, double width) const {
  ThemeEntry line = m_pages.Look()[ThemeItem::Neatline];
  line.width = width;
  cairo_move_to(m_pages.Cairo(), m_left, y);
  cairo_line_to(m_pages.Cairo(), m_pages.Room().right, y);
  Stroke(m_pages.Cairo(), line, 1);
}

void Table::Write(Column column, double y, const std::string& text, bool bold, double size) const {
  WriteWithin(m_pages, text, X(column), y, HEADS[column].width * m_stretch,
              {.size = size, .align = HEADS[column].align, .bold = bold});
}

void Table::DrawWords() const {
  const PixelBox room = m_pages.Room();
  double y = room.top + TITLE * 0.8;
  WriteWithin(m_pages, EndsText(m_trip.route), m_left, y, room.right - room.left,
              {.size = TITLE, .bold = true});
  y = room.top + TITLE + 10;
  for (const std::string& line : m_layout.words) {
    WriteText(m_pages.Cairo(), m_pages.Look(), line, m_left, y + TEXT * 0.8, {.size = TEXT});
    y += LINE;
  }
}

void Table::DrawHead(double y) const {
  for (int column = 0; column < COLUMNS; ++column) {
    const Column c = static_cast<Column>(column);
    Write(c, y - 18, HEADS[column].first, false, SMALL);
    Write(c, y - 6, HEADS[column].second, false, SMALL);
  }
  Line(y, 1.2);
}

void Table::DrawGround(size_t leg, double y) const {
  const LegGround ground = GroundUnder(m_trip.profile, leg);
  if (!ground.highest) return Write(GROUND, y, "?");
  const std::string more = ground.hasGaps ? "+" : "";
  const int clear = ClearAltitude(ground);
  const bool isLow = m_trip.profile.altitude && clear > *m_trip.profile.altitude;
  Write(GROUND, y, std::to_string(ground.highest->elev) + more);
  Write(CLEAR, y, (isLow ? "!" : "") + std::to_string(clear) + more, isLow);
}

void Table::DrawRow(size_t row, double y) const {
  const RouteFix& fix = m_trip.route.fixes[row];
  const double first = y + FIRST_LINE;
  Write(FIX, first, fix.ident, true);
  Write(FIX, y + SECOND_LINE, fix.kind, false, SMALL);
  Line(y + ROW, 0.4);
  if (row == 0) return;
  const RouteLeg& leg = m_trip.route.legs[row - 1];
  const double before = m_trip.profile.fixes[row - 1].distance, total = m_trip.profile.fixes[row].distance;
  const int start = MinutesTo(before, m_trip.knots), end = MinutesTo(total, m_trip.knots);
  Write(AIRWAY, first, leg.airway.empty() ? "direct" : leg.airway);
  Write(OUT, first, CourseText(leg), true);
  Write(IN, first, ArrivalText(leg));
  Write(LEG, first, Miles(leg.distance), true);
  Write(TOTAL, first, Miles(total));
  Write(MINIMUM, first, AltitudeText(leg.minimum));
  Write(TIME, first, TimeText(end - start), true);
  Write(ELAPSED, first, TimeText(end));
  if (!m_trip.profile.points.empty()) DrawGround(row - 1, first);
  // Room for a pencil.
  const double width = HEADS[ACTUAL].width * m_stretch;
  cairo_rectangle(m_pages.Cairo(), X(ACTUAL) - width, y + 4, width, ROW - 8);
  ThemeEntry line = m_pages.Look()[ThemeItem::Neatline];
  line.width = 0.4;
  Stroke(m_pages.Cairo(), line, 1);
}

void Table::Draw() {
  DrawWords();
  double y = m_layout.firstRow;
  DrawHead(y);
  auto next = m_layout.breaks.begin();
  for (size_t row = 0; row <= m_trip.route.fixes.size(); ++row, y += ROW) {
    const bool isRow = row < m_trip.route.fixes.size();
    if (next != m_layout.breaks.end() && *next == row) {
      m_pages.Next();
      y = m_layout.nextRow;
      ++next;
      if (isRow) DrawHead(y);
    }
    if (isRow) DrawRow(row, y);
  }
  y = m_layout.notesTop;
  for (const std::string& line : m_layout.notes) {
    WriteText(m_pages.Cairo(), m_pages.Look(), line, m_left, y + SMALL, {.size = SMALL});
    y += LINE;
  }
}

}  // namespace

TableLayout LayOutTable(cairo_t* cairo, const Paper& paper, const Trip& trip) {
  const Layout layout(cairo, paper, trip);
  return {1 + static_cast<int>(layout.breaks.size()), layout.left};
}

void DrawTable(TripPages& pages, const Trip& trip) {
  const Layout layout(pages.Cairo(), pages.Sheet(), trip);
  Table(pages, trip, layout).Draw();
}
