// Pieces are taken apart into runs of edges, from one created point to the next, and edges along borders. Of
// the latter those that two tiles have in common cancel out. What is left meets in pairs at its ends, since
// every piece is a closed ring: followed from end to end it makes rings again.
#include <k7/geometry/tile_join.h>

#include <k7/foundation/error_string.h>

#include "foundation/buffer.h"

#include <algorithm>
#include <new>
#include <tuple>

namespace {

// Where an edge along a parallel or a meridian begins (+1) or ends (-1) when it runs to the north or east,
// the other way around when it does not.
struct Toggle {
  bool meridian;
  double line, at;
  int sign;
  bool SameLine(const Toggle& other) const { return meridian == other.meridian && line == other.line; }
};

struct Chain {
  int first, count;  // of the points
  int vertex[2];     // where it starts and ends
  bool used;
};

struct End {
  double lat, lon;
  int chain;
  bool isEnd;
};

// The ends that lie at one place, starts before ends, and how many of each have been looked at.
struct Vertex {
  int nextStart, nextEnd, starts, ends, total;
};

bool InOrder(const End& a, const End& b) {
  return std::tie(a.lat, a.lon, a.isEnd) < std::tie(b.lat, b.lon, b.isEnd);
}

}  // namespace

struct K7TileJoin::State {
  void AddEdge(const K7LatLon& a, const K7LatLon& b);
  void AddRing(const K7TileString& piece);
  void AddChain(const K7LatLon& a, const K7LatLon& b);
  void AddBorders();
  void FindVertices();
  int NextEnd(Vertex& vertex);
  void Follow(int chain, bool backwards);
  bool IsCreated(const K7TileString& piece, int i) const { return !piece.IsOwnPoint(kept[i]); }
  K7LatLon At(const K7TileString& piece, int i) const {
    double lat = 0, lon = 0;
    piece.GetPoint(kept[i], lat, lon);
    return {lat, lon};
  }
  bool Failed() const {
    return points.Failed() || chains.Failed() || toggles.Failed() || ends.Failed() || vertices.Failed() ||
           rows.Failed() || sizes.Failed();
  }

  K7IntArray kept;
  Buffer<K7LatLon> points;
  Buffer<Chain> chains;
  Buffer<Toggle> toggles;
  Buffer<End> ends;
  Buffer<Vertex> vertices;
  Buffer<K7LatLon> rows;  // what is made up, row by row
  Buffer<int> sizes;
};

void K7TileJoin::State::AddChain(const K7LatLon& a, const K7LatLon& b) {
  const int first = points.Count();
  points.Add(a);
  points.Add(b);
  chains.Add({first, 2, {0, 0}, false});
}

// Both points are created. Whether one that runs along a parallel or a meridian is of a border does not
// matter: where it is not nothing cancels it out.
void K7TileJoin::State::AddEdge(const K7LatLon& a, const K7LatLon& b) {
  const bool meridian = a.Lon() == b.Lon();
  if (meridian && a.Lat() == b.Lat()) return;
  if (!meridian && a.Lat() != b.Lat()) return AddChain(a, b);
  const double line = meridian ? a.Lon() : a.Lat();
  const double from = meridian ? a.Lat() : a.Lon(), to = meridian ? b.Lat() : b.Lon();
  toggles.Add({meridian, line, from, 1});
  toggles.Add({meridian, line, to, -1});
}

void K7TileJoin::State::AddRing(const K7TileString& piece) {
  const int count = kept.Count();
  int start = 0;
  while (start < count && !IsCreated(piece, start)) ++start;
  if (start == count) {
    for (int i = 0; i < count; ++i) rows.Add(At(piece, i));
    sizes.Add(count);
    return;
  }
  for (int done = 0; done < count;) {
    const int from = (start + done) % count;
    int length = 1;
    while (!IsCreated(piece, (from + length) % count)) ++length;
    if (length == 1) {
      AddEdge(At(piece, from), At(piece, (from + 1) % count));
    } else {
      const int first = points.Count();
      for (int i = 0; i <= length; ++i) points.Add(At(piece, (from + i) % count));
      chains.Add({first, length + 1, {0, 0}, false});
    }
    done += length;
  }
}

// An edge adds 1 between its start and its end one way, and takes it away the other way: what is odd stays.
void K7TileJoin::State::AddBorders() {
  std::sort(toggles.Data(), toggles.Data() + toggles.Count(), [](const Toggle& a, const Toggle& b) {
    return std::tie(a.meridian, a.line, a.at) < std::tie(b.meridian, b.line, b.at);
  });
  int sum = 0;
  double from = 0;
  for (int i = 0; i < toggles.Count();) {
    const Toggle at = toggles[i];
    const int before = sum;
    for (; i < toggles.Count() && toggles[i].SameLine(at) && toggles[i].at == at.at; ++i)
      sum += toggles[i].sign;
    if (sum == before) continue;
    if (before % 2 != 0) {
      K7LatLon a(at.line, from), b(at.line, at.at);
      if (at.meridian) {
        a = K7LatLon(from, at.line);
        b = K7LatLon(at.at, at.line);
      }
      if (before > 0)
        AddChain(a, b);
      else
        AddChain(b, a);
    }
    from = at.at;
  }
}

void K7TileJoin::State::FindVertices() {
  ends.Clear();
  vertices.Clear();
  for (int i = 0; i < chains.Count(); ++i) {
    const K7LatLon &a = points[chains[i].first], &b = points[chains[i].first + chains[i].count - 1];
    ends.Add({a.Lat(), a.Lon(), i, false});
    ends.Add({b.Lat(), b.Lon(), i, true});
  }
  if (Failed()) return;
  std::sort(ends.Data(), ends.Data() + ends.Count(), InOrder);
  for (int i = 0; i < ends.Count(); ++i) {
    const End& end = ends[i];
    if (i == 0 || end.lat != ends[i - 1].lat || end.lon != ends[i - 1].lon) vertices.Add({i, i, i, i, 0});
    Vertex& vertex = vertices.Last();
    vertex.ends = i + 1;
    ++vertex.total;
    if (!end.isEnd) vertex.starts = vertex.nextEnd = i + 1;
    chains[end.chain].vertex[end.isEnd] = vertices.Count() - 1;
  }
}

// The end of a chain that is not used up, rather a start; -1 for none.
int K7TileJoin::State::NextEnd(Vertex& vertex) {
  for (; vertex.nextStart < vertex.starts; ++vertex.nextStart)
    if (!chains[ends[vertex.nextStart].chain].used) return vertex.nextStart;
  for (; vertex.nextEnd < vertex.ends; ++vertex.nextEnd)
    if (!chains[ends[vertex.nextEnd].chain].used) return vertex.nextEnd;
  return -1;
}

void K7TileJoin::State::Follow(int number, bool backwards) {
  const int first = rows.Count(), home = chains[number].vertex[backwards];
  for (int end = 0; end >= 0;) {
    Chain& chain = chains[number];
    chain.used = true;
    // Where it begins the one before has ended.
    for (int i = rows.Count() > first ? 1 : 0; i < chain.count; ++i)
      rows.Add(points[chain.first + (backwards ? chain.count - 1 - i : i)]);
    const int at = chain.vertex[!backwards];
    if (at == home) break;
    end = NextEnd(vertices[at]);
    if (end < 0) break;
    number = ends[end].chain;
    backwards = ends[end].isEnd;
  }
  sizes.Add(rows.Count() - first);
}

K7TileJoin::K7TileJoin() : m_state(new (std::nothrow) State) {}
K7TileJoin::~K7TileJoin() { delete m_state; }

void K7TileJoin::Clear() {
  if (!m_state) return;
  m_state->points.Clear();
  m_state->chains.Clear();
  m_state->toggles.Clear();
  m_state->rows.Clear();
  m_state->sizes.Clear();
}

int K7TileJoin::Add(const K7TileString& piece, double tolerance) {
  if (!m_state) return K7_ERR_MEMORY;
  State& s = *m_state;
  s.kept.ClearNoFree();
  if (const int err = piece.Select(tolerance, s.kept)) return err;
  const int count = piece.PointCount();
  if (!piece.IsRing()) {
    const int first = s.points.Count();
    for (int i = 0; i < s.kept.Count(); ++i) s.points.Add(s.At(piece, i));
    if (s.kept.Count() > 1) s.chains.Add({first, s.kept.Count(), {0, 0}, false});
    return s.Failed() ? K7_ERR_MEMORY : 0;
  }
  if (s.kept.Count() == 0) {
    for (int i = 0; i < count; ++i)
      if (!piece.IsOwnPoint(i)) return 0;
    for (int i = 0; i < 3 && count >= 3; ++i)
      if (s.kept += i * (count / 3); s.kept.Count() != i + 1) return K7_ERR_MEMORY;
  }
  if (s.kept.Count() > 0) s.AddRing(piece);
  return s.Failed() ? K7_ERR_MEMORY : 0;
}

int K7TileJoin::AddTo(K7MapFeatures& features, K7MapFeatureKind kind) {
  if (!m_state) return K7_ERR_MEMORY;
  State& s = *m_state;
  s.AddBorders();
  s.FindVertices();
  // Lines begin where nothing leads to.
  for (int pass = 0; pass < 2 && !s.Failed(); ++pass)
    for (int i = 0; i < s.chains.Count(); ++i) {
      if (s.chains[i].used) continue;
      const Vertex& start = s.vertices[s.chains[i].vertex[0]];
      if (pass == 1 || start.total == 1) s.Follow(i, false);
    }
  const int code =
      s.Failed() ? K7_ERR_MEMORY : features.Add(kind, s.rows.Data(), s.sizes.Data(), s.sizes.Count());
  Clear();
  return code;
}
