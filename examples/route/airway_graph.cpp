#include "route/airway_graph.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>

#include "store/nav_store.h"

namespace {

constexpr int32_t FIRST_HIGH = 18000;  // feet
constexpr double FEET_PER_METRE = 1 / 0.3048;

constexpr int32_t DEGREE = 1 << 23;

AirwayGraph::Node NodeOf(int32_t lat, int32_t lon) {
  if (lat == 90 * DEGREE || lat == -90 * DEGREE) lon = 0;
  return {lat, lon == -180 * DEGREE ? 180 * DEGREE : lon};
}

uint64_t WordOf(const AirwayGraph::Node& node) {
  return uint64_t{static_cast<uint32_t>(node.lat)} << 32 | static_cast<uint32_t>(node.lon);
}

bool IsStated(const K7Alt& altitude) { return altitude.Value() > 0 && !altitude.IsSpecialValue(); }

int32_t FeetOf(const K7Alt& altitude) {
  const bool metres = (altitude.Flags() & K7Alt::METRIC) != 0;
  return static_cast<int32_t>(std::lround(altitude.Value() * (metres ? FEET_PER_METRE : 1)));
}

bool IsHigh(K7NavType type) { return type == K7NAV_HIGH_AIRWAY || type == K7NAV_HIGH_TACAN_AIRWAY; }

bool IsOnGlobe(int32_t lat, int32_t lon) {
  return std::abs(int64_t{lat}) <= 90 * DEGREE && std::abs(int64_t{lon}) <= 180 * DEGREE;
}

}  // namespace

const K7Alt& MinimumOf(const K7AirwaySeg& segment, bool forth) {
  return !forth && IsStated(segment.meaOpposite) ? segment.meaOpposite : segment.mea;
}

AltitudeBand BandOf(const K7AirwaySeg& segment, bool forth) {
  AltitudeBand band;
  const bool high = IsHigh(segment.Type());
  const K7Alt& minimum = MinimumOf(segment, forth);
  if (IsStated(minimum))
    band.lowest = FeetOf(minimum);
  else if (high)
    band.lowest = FIRST_HIGH;
  if (IsStated(segment.maa))
    band.highest = FeetOf(segment.maa);
  else if (!high && segment.maa.Value() != K7Alt::UNLIMITED)
    band.highest = FIRST_HIGH - 1;
  return band;
}

bool LeadsThere(const K7AirwaySeg& segment, bool forth) {
  return segment.direction != (forth ? K7AirwaySeg::BACKWARD : K7AirwaySeg::FORWARD);
}

bool AirwayGraph::Read(NavStore& store) {
  *this = AirwayGraph();
  const auto count = [&](K7NavType type) { return static_cast<size_t>(store.GetCount(type)); };
  constexpr size_t MOST_AHEAD = size_t(1) << 20;
  const size_t segments = std::min(count(K7NAV_LOW_AIRWAY) + count(K7NAV_HIGH_AIRWAY), MOST_AHEAD);
  m_byPlace.reserve(segments / 2);
  m_segments.reserve(segments);
  m_arcs.reserve(2 * segments);
  m_from.reserve(2 * segments);
  const bool good = store.VisitAirwayNetwork([this](const K7AirwaySeg& segment) { Add(segment); });
  Finish();
  return good;
}

K7LatLon AirwayGraph::Place(uint32_t node) const {
  return {K7NavData::FixPt2DecDeg(m_nodes[node].lat), K7NavData::FixPt2DecDeg(m_nodes[node].lon)};
}

uint32_t AirwayGraph::Find(int32_t lat, int32_t lon) const {
  const auto found = m_byPlace.find(WordOf(NodeOf(lat, lon)));
  return found == m_byPlace.end() ? NodeCount() : found->second;
}

uint32_t AirwayGraph::NodeAt(const Node& node) {
  const auto [place, isNew] = m_byPlace.try_emplace(WordOf(node), NodeCount());
  if (isNew) {
    m_nodes.push_back(node);
    m_segmentAt.push_back(static_cast<uint32_t>(m_segments.size()));
  }
  return place->second;
}

void AirwayGraph::Add(const K7AirwaySeg& segment) {
  if (!IsOnGlobe(segment.fromLat, segment.fromLon) || !IsOnGlobe(segment.toLat, segment.toLon)) return;
  const Node first = NodeOf(segment.fromLat, segment.fromLon), second = NodeOf(segment.toLat, segment.toLon);
  if (first == second) return;
  // Segments come in the order of their airway: one begins where the one before has ended.
  const bool goesOn = m_last < NodeCount() && m_nodes[m_last] == first;
  const uint32_t from = goesOn ? m_last : NodeAt(first);
  const uint32_t to = m_last = NodeAt(second);
  const auto number = static_cast<uint32_t>(m_segments.size());
  m_segments.push_back(segment.key);
  for (const bool forth : {true, false}) {
    if (!LeadsThere(segment, forth)) continue;
    m_arcs.push_back({forth ? to : from, number, BandOf(segment, forth)});
    m_from.push_back(forth ? from : to);
  }
}

// Arcs stand behind each other by the node that they leave.
void AirwayGraph::Finish() {
  m_first.assign(m_nodes.size() + 1, 0);
  for (const uint32_t from : m_from) ++m_first[from + 1];
  for (size_t i = 1; i < m_first.size(); ++i) m_first[i] += m_first[i - 1];
  std::vector<uint32_t> next(m_first.begin(), m_first.end() - 1);
  std::vector<Arc> arcs(m_arcs.size());
  for (size_t i = 0; i < m_arcs.size(); ++i) arcs[next[m_from[i]]++] = m_arcs[i];
  m_arcs = std::move(arcs);
  m_from = {};
}
