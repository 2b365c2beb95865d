#include "route/route.h"

#include <k7/foundation/string.h>
#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "route/airway_graph.h"
#include "route/fix_kind.h"
#include "route/leg_course.h"
#include "route/route_ends.h"
#include "route/route_search.h"
#include "store/nav_store.h"
#include "store/text_1252.h"

namespace {

constexpr double SAME_PLACE_NM = 1e-3;

template <size_t N>
std::string Utf8(const char (&text)[N]) {
  return Utf8Of1252(std::string(text, strnlen(text, N)));
}

std::string Miles(double nm) {
  K7String text;
  text.Format("%.1f NM", nm);
  return std::string(text);
}

// A segment as it is flown.
struct Flown {
  const K7AirwaySeg* segment;
  bool forth;

  std::string Airway() const { return Utf8(segment->ident); }
};

class RouteMaker {
 public:
  RouteMaker(NavStore& store, const AirwayGraph& graph, const RouteRequest& request)
      : m_store(store), m_graph(graph), m_request(request) {}

  std::string Make(Route& route);

 private:
  static constexpr uint32_t NO_NODE = UINT32_MAX;

  const K7AirwaySeg* Segment(uint32_t segment) const {
    return static_cast<const K7AirwaySeg*>(m_store.GetRec(m_graph.SegmentKey(segment)));
  }
  bool IsAt(uint32_t node, int32_t lat, int32_t lon) const { return m_graph.Find(lat, lon) == node; }
  RouteFix FixAt(uint32_t node) const;
  void PutOnAirways(RouteEnd& end) const;
  std::vector<Flown> FlownBetween(uint32_t from, uint32_t to) const;
  void TakeStops(const std::vector<uint32_t>& nodes);
  void TakeLegs(Route& route) const;
  RouteLeg LegFrom(const RouteFix& from, const RouteFix& to, const Flown* flown) const;
  std::string WhyNone(const SearchResult& result) const;

  NavStore& m_store;
  const AirwayGraph& m_graph;
  const RouteRequest& m_request;
  RouteEnd m_start, m_end;
  std::vector<RouteFix> m_fixes;
  std::vector<uint32_t> m_nodes;  // of each fix; NO_NODE for an end off the airways
};

// What the airways themselves call the place: they may lead through one that no record stands for.
RouteFix RouteMaker::FixAt(uint32_t node) const {
  RouteFix fix;
  fix.place = m_graph.Place(node);
  if (const K7AirwaySeg* const segment = Segment(m_graph.SegmentAt(node))) {
    const bool first = IsAt(node, segment->fromLat, segment->fromLon);
    fix.ident = first ? Utf8(segment->fromIdent) : Utf8(segment->toIdent);
    fix.key = first ? segment->fromKey : segment->toKey;
  }
  return fix;
}

// A fix of the airways lies where they say, which may differ by a little from its own record.
void RouteMaker::PutOnAirways(RouteEnd& end) const {
  const std::unique_ptr<K7NavQueryResult> result(m_store.FixAirways(end.key));
  const K7LatLon recorded = end.place;
  double nearest = INFINITY;
  while (const K7NavRec* const rec = result ? result->Next() : nullptr) {
    const auto& segment = static_cast<const K7AirwaySeg&>(*rec);
    const bool first = segment.fromKey == end.key;
    const uint32_t node =
        m_graph.Find(first ? segment.fromLat : segment.toLat, first ? segment.fromLon : segment.toLon);
    if (node == m_graph.NodeCount() || recorded.Distance(m_graph.Place(node)) >= nearest) continue;
    end.place = m_graph.Place(node);
    nearest = recorded.Distance(end.place);
  }
}

std::vector<Flown> RouteMaker::FlownBetween(uint32_t from, uint32_t to) const {
  std::vector<Flown> flown;
  for (const AirwayGraph::Arc& arc : m_graph.ArcsFrom(from)) {
    if (arc.to != to || (m_request.feet && !arc.band.Holds(*m_request.feet))) continue;
    if (const K7AirwaySeg* const segment = Segment(arc.segment))
      flown.push_back({segment, IsAt(from, segment->fromLat, segment->fromLon)});
  }
  return flown;
}

void RouteMaker::TakeStops(const std::vector<uint32_t>& nodes) {
  const auto take = [&](const RouteFix& fix, uint32_t node) {
    m_fixes.push_back(fix);
    m_nodes.push_back(node);
  };
  const auto same = [&](uint32_t node, const RouteEnd& end) {
    return m_graph.Place(node).Distance(end.place) <= SAME_PLACE_NM;
  };
  take({m_start.ident, m_start.key, m_start.place}, NO_NODE);
  for (const uint32_t node : nodes) take(FixAt(node), node);
  // An end that lies on the airways is itself a node of them.
  if (!nodes.empty() && same(nodes.front(), m_start)) {
    m_fixes.erase(m_fixes.begin() + 1);
    m_nodes.erase(m_nodes.begin());
  }
  if (m_fixes.size() > 1 && same(nodes.back(), m_end))
    m_fixes.back() = {m_end.ident, m_end.key, m_end.place};
  else
    take({m_end.ident, m_end.key, m_end.place}, NO_NODE);
}

RouteLeg RouteMaker::LegFrom(const RouteFix& from, const RouteFix& to, const Flown* flown) const {
  RouteLeg leg;
  leg.distance = from.place.Distance(to.place);
  K7Course out, back;
  if (flown) {
    const K7AirwaySeg& segment = *flown->segment;
    leg.airway = flown->Airway();
    leg.minimum = MinimumOf(segment, flown->forth);
    leg.maximum = segment.maa;
    out = flown->forth ? segment.course : segment.courseOpposite;
    back = flown->forth ? segment.courseOpposite : segment.course;
  }
  const LegCourse leaving = CourseAt(from.place, to.place, out),
                  returning = CourseAt(to.place, from.place, back);
  leg.course = leaving.degrees;
  leg.isTrue = leaving.isTrue;
  if (returning.degrees >= 0) leg.arrival = std::fmod(returning.degrees + 180, 360);
  leg.isArrivalTrue = returning.isTrue;
  return leg;
}

// Whoever takes the airway that goes on for longest at every change changes as seldom as can be.
void RouteMaker::TakeLegs(Route& route) const {
  std::vector<std::vector<Flown>> choices;
  for (size_t i = 0; i + 1 < m_nodes.size(); ++i)
    choices.push_back(m_nodes[i] == NO_NODE || m_nodes[i + 1] == NO_NODE
                          ? std::vector<Flown>()
                          : FlownBetween(m_nodes[i], m_nodes[i + 1]));
  const auto flownAs = [&](size_t leg, const std::string& airway) -> const Flown* {
    for (const Flown& flown : choices[leg])
      if (flown.Airway() == airway) return &flown;
    return nullptr;
  };
  for (size_t i = 0; i < choices.size();) {
    std::string longest;
    size_t end = i + 1;
    for (const Flown& flown : choices[i]) {
      const std::string airway = flown.Airway();
      size_t k = i;
      while (k < choices.size() && flownAs(k, airway)) ++k;
      if (k > end || longest.empty()) longest = airway, end = k;
    }
    for (; i < end; ++i) route.legs.push_back(LegFrom(m_fixes[i], m_fixes[i + 1], flownAs(i, longest)));
  }
}

std::string RouteMaker::WhyNone(const SearchResult& result) const {
  if (result.what == SearchResult::NO_MEMORY) return "out of memory";
  std::string text = "no route from " + m_start.ident + " to " + m_end.ident;
  const std::string at = m_request.feet ? " flown at " + std::to_string(*m_request.feet) + " ft" : "";
  if (result.nearest == m_graph.NodeCount()) return text + ": there is no airway" + at;
  const std::string fix = FixAt(result.nearest).ident;
  if (result.what == SearchResult::NO_WAY_ON)
    return text + ": no airway" + at + " lies within " + Miles(m_request.directNM) + " of " + m_start.ident +
           "; the nearest passes " + fix + ", " + Miles(result.nearestNM) + " away";
  return text + ": the airways" + at + " that can be reached come no nearer to " + m_end.ident + " than " +
         fix + ", " + Miles(result.nearestNM) + " from it";
}

std::string RouteMaker::Make(Route& route) {
  route = Route();
  if (std::string problem = FindEnds(m_store, m_request.from, m_request.to, m_start, m_end); !problem.empty())
    return problem;
  PutOnAirways(m_start);
  PutOnAirways(m_end);
  const SearchResult result =
      SearchRoute(m_graph, {m_start.place, m_end.place, m_request.directNM, m_request.feet});
  if (result.what != SearchResult::FOUND) return WhyNone(result);
  TakeStops(result.nodes);
  TakeLegs(route);
  route.fixes = std::move(m_fixes);
  for (RouteFix& fix : route.fixes) fix.kind = FixKind(m_store, fix.key);
  for (const RouteLeg& leg : route.legs) route.distance += leg.distance;
  route.fromName = m_start.what;
  route.toName = m_end.what;
  for (const RouteEnd* const end : {&m_start, &m_end})
    if (!end->note.empty()) route.notes.push_back(end->note);
  return {};
}

}  // namespace

std::string FindRoute(NavStore& store, const AirwayGraph& graph, const RouteRequest& request, Route& route) {
  return RouteMaker(store, graph, request).Make(route);
}
