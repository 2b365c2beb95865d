// AirwayGraph: all airways as one network, in arrays.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/airway.h>

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

class NavStore;

/// Altitudes in feet at which something is flown.
struct AltitudeBand {
  int32_t lowest = 0;
  int32_t highest = INT32_MAX;

  bool Holds(int32_t feet) const { return feet >= lowest && feet <= highest; }
};

/// The minimum altitude that a segment states for a direction; a word of 0 without one.
const K7Alt& MinimumOf(const K7AirwaySeg& segment, bool forth);
/// The altitudes at which a segment is flown, from its first end to its second or back. Where it states no
/// limit, low airways end below, and high ones begin at, flight level 180.
AltitudeBand BandOf(const K7AirwaySeg& segment, bool forth);
/// Whether it may be flown from its first end to its second, or back.
bool LeadsThere(const K7AirwaySeg& segment, bool forth);

/// Read once, searched as often as wanted, by several threads too.
///
/// A node is a place: segments meet where their ends have the same position to the last bit (180 east and
/// west is one, and so is each pole), whatever fix, airway or level they belong to. Segments without length,
/// and such off the globe, are left out.
class AirwayGraph {
 public:
  struct Node {
    int32_t lat, lon;  ///< 2^-23 degree

    bool operator==(const Node&) const = default;
  };
  /// One way along a segment.
  struct Arc {
    uint32_t to;       ///< node
    uint32_t segment;  ///< of the graph
    AltitudeBand band;
  };

  /// Reads all airways. False when the store does not answer.
  bool Read(NavStore& store);

  uint32_t NodeCount() const { return static_cast<uint32_t>(m_nodes.size()); }
  K7LatLon Place(uint32_t node) const;
  const Node& At(uint32_t node) const { return m_nodes[node]; }
  std::span<const Arc> ArcsFrom(uint32_t node) const {
    return {m_arcs.data() + m_first[node], m_arcs.data() + m_first[node + 1]};
  }
  /// The record of a segment.
  K7NavKey SegmentKey(uint32_t segment) const { return m_segments[segment]; }
  /// A segment that begins or ends at a node.
  uint32_t SegmentAt(uint32_t node) const { return m_segmentAt[node]; }
  /// The node at a position; NodeCount() when there is none.
  uint32_t Find(int32_t lat, int32_t lon) const;

 private:
  void Add(const K7AirwaySeg& segment);
  uint32_t NodeAt(const Node& node);
  void Finish();

  std::vector<Node> m_nodes;
  std::vector<uint32_t> m_segmentAt;  // of each node
  std::unordered_map<uint64_t, uint32_t> m_byPlace;
  std::vector<K7NavKey> m_segments;
  std::vector<uint32_t> m_first;  // arc of each node, and the end
  std::vector<Arc> m_arcs;
  std::vector<uint32_t> m_from;  // of each arc, while reading
  uint32_t m_last = 0;           // node where the last segment ended
};
