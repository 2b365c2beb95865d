// Airways: segments put in order, and a header for each chain of them.

#include "store/import_chain.h"
#include "store/import_rows.h"
#include "store/import_run.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace {

constexpr double SAME_PLACE = 0.5;  // NM between two writings of one place
constexpr double PLACE_OF_FIX = 3;  // and to the fix that is meant
constexpr int FIRST_LEVEL = 180;    // hundreds of feet; altitudes from here on are flight levels
constexpr size_t LONGEST_NAME = 6;

// The ends of segments, each place once.
class Nodes {
 public:
  explicit Nodes(ImportRun& run) : m_run(run) {}

  int Find(const AirwayRow::End& end) {
    std::vector<int>& same = m_byIdent[std::string(end.ident)];
    for (const int node : same)
      if (m_places[static_cast<size_t>(node)].Distance(end.at) <= SAME_PLACE) return node;
    same.push_back(static_cast<int>(m_places.size()));
    m_places.push_back(end.at);
    m_idents.emplace_back(end.ident);
    m_keys.push_back(m_run.places.Nearest(end.ident, end.at, PLACE_OF_FIX));
    return same.back();
  }
  const std::vector<K7LatLon>& Places() const { return m_places; }
  const K7LatLon& Place(int node) const { return m_places[static_cast<size_t>(node)]; }
  const std::string& Ident(int node) const { return m_idents[static_cast<size_t>(node)]; }
  K7NavKey Key(int node) const { return m_keys[static_cast<size_t>(node)]; }

 private:
  ImportRun& m_run;
  std::unordered_map<std::string, std::vector<int>> m_byIdent;
  std::vector<K7LatLon> m_places;
  std::vector<std::string> m_idents;
  std::vector<K7NavKey> m_keys;
};

struct Segment {
  ChainEdge ends;
  int base;
  int top;
};
struct AirwayName {
  bool high;
  std::string name;
  bool operator<(const AirwayName& other) const {
    return high != other.high ? high < other.high : name < other.name;
  }
};
using Airways = std::map<AirwayName, std::vector<Segment>>;

class AirwayWriter {
 public:
  AirwayWriter(ImportRun& run, const Nodes& nodes) : m_run(run), m_nodes(nodes) {}
  /// All chains of a name.
  void Write(const AirwayName& airway, std::vector<Segment>& segments);

 private:
  static void Merge(std::vector<Segment>& segments);
  void WriteChain(const AirwayName& airway, const std::vector<Segment>& segments, const Chain& chain);
  K7Course Course(int from, int to) const;
  static K7Alt Altitude(int hundreds);

  ImportRun& m_run;
  const Nodes& m_nodes;
};

// The same segment in several rows, for parts of its height, is one.
void AirwayWriter::Merge(std::vector<Segment>& segments) {
  const auto ends = [](const Segment& s) {
    return std::pair(std::min(s.ends.from, s.ends.to), std::max(s.ends.from, s.ends.to));
  };
  std::sort(segments.begin(), segments.end(),
            [&](const Segment& a, const Segment& b) { return ends(a) < ends(b); });
  size_t kept = 0;
  for (size_t i = 1; i < segments.size(); ++i) {
    if (ends(segments[i]) == ends(segments[kept])) {
      segments[kept].base = std::min(segments[kept].base, segments[i].base);
      segments[kept].top = std::max(segments[kept].top, segments[i].top);
    } else {
      segments[++kept] = segments[i];
    }
  }
  segments.resize(std::min(kept + 1, segments.size()));
}

K7Course AirwayWriter::Course(int from, int to) const {
  const K7LatLon& at = m_nodes.Place(from);
  const double course = at.InitCourse(m_nodes.Place(to));
  double variation = 0;
  const bool known = m_run.variation.At(at, variation);
  return K7Course(static_cast<uint32_t>(TenthsOf(course - variation)),
                  known ? K7Course::MAGNETIC : K7Course::TRUE_NORTH);
}

K7Alt AirwayWriter::Altitude(int hundreds) {
  return K7Alt(static_cast<uint32_t>(hundreds) * 100, hundreds >= FIRST_LEVEL ? K7Alt::FLIGHT_LEVEL : 0);
}

void AirwayWriter::WriteChain(const AirwayName& airway, const std::vector<Segment>& segments,
                              const Chain& chain) {
  const K7NavType type = airway.high ? K7NAV_HIGH_AIRWAY : K7NAV_LOW_AIRWAY;
  const auto nodeOf = [&](const ChainStep& step, bool end) {
    const ChainEdge& ends = segments[static_cast<size_t>(step.edge)].ends;
    return step.reversed != end ? ends.to : ends.from;
  };
  K7AirwayHeader header;
  header.key = K7NavKey(0, K7NAV_AIRWAY_HEADER);
  CopyText(header.ident, airway.name);
  header.fromKey = m_nodes.Key(nodeOf(chain.front(), false));
  header.toKey = m_nodes.Key(nodeOf(chain.back(), true));
  header.segCount = static_cast<uint16_t>(std::min<size_t>(chain.size(), 0xFFFF));
  header.firstSeg = m_run.sink.Count(type);
  m_run.sink.Add(header);
  uint32_t sequence = 0;
  for (const ChainStep& step : chain) {
    const Segment& segment = segments[static_cast<size_t>(step.edge)];
    const int from = nodeOf(step, false), to = nodeOf(step, true);
    K7AirwaySeg rec;
    rec.key = K7NavKey(0, type);
    CopyText(rec.ident, airway.name);
    rec.fromKey = m_nodes.Key(from);
    rec.toKey = m_nodes.Key(to);
    rec.fromLat = K7NavData::DecDeg2FixPt(m_nodes.Place(from).Lat());
    rec.fromLon = K7NavData::DecDeg2FixPt(m_nodes.Place(from).Lon());
    rec.toLat = K7NavData::DecDeg2FixPt(m_nodes.Place(to).Lat());
    rec.toLon = K7NavData::DecDeg2FixPt(m_nodes.Place(to).Lon());
    CopyText(rec.fromIdent, m_nodes.Ident(from));
    CopyText(rec.toIdent, m_nodes.Ident(to));
    rec.sequence = sequence++;
    rec.mea = Altitude(segment.base);
    rec.maa = Altitude(segment.top);
    rec.course = Course(from, to);
    rec.courseOpposite = Course(to, from);
    rec.distance = static_cast<uint32_t>(std::lround(m_nodes.Place(from).Distance(m_nodes.Place(to)) * 100));
    rec.header = header.key;
    m_run.sink.Add(rec);
  }
}

void AirwayWriter::Write(const AirwayName& airway, std::vector<Segment>& segments) {
  Merge(segments);
  std::vector<ChainEdge> edges;
  edges.reserve(segments.size());
  for (const Segment& segment : segments) edges.push_back(segment.ends);
  for (const Chain& chain : ChainEdges(m_nodes.Places(), edges)) WriteChain(airway, segments, chain);
}

std::string TakeRow(std::string_view line, Nodes& nodes, Airways& airways) {
  AirwayRow row;
  std::string problem = ReadAirwayRow(line, row);
  if (!problem.empty()) return problem;
  const ChainEdge ends{nodes.Find(row.from), nodes.Find(row.to)};
  if (ends.from == ends.to) return "both ends are the same";
  for (size_t at = 0; at <= row.names.size();) {
    const size_t dash = std::min(row.names.find('-', at), row.names.size());
    const std::string_view name = row.names.substr(at, dash - at);
    at = dash + 1;
    if (!name.empty() && name.size() <= LONGEST_NAME)
      airways[{row.high, std::string(name)}].push_back({ends, row.base, row.top});
    else
      problem = "the airway '" + std::string(name.substr(0, 20)) + "' has no name, or one that is too long";
  }
  return problem;
}

}  // namespace

std::string ImportAirways(ByteSource& source, const std::string& name, ImportRun& run) {
  Nodes nodes(run);
  Airways airways;
  std::string refused =
      ReadRows(source, name, 640, run, [&](std::string_view line) { return TakeRow(line, nodes, airways); });
  if (!refused.empty()) return refused;
  AirwayWriter writer(run, nodes);
  size_t done = 0;
  for (auto& [airway, segments] : airways) {
    run.progress("putting airways in order",
                 static_cast<double>(done++) / static_cast<double>(airways.size()));
    writer.Write(airway, segments);
  }
  return {};
}
