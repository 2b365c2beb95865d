#include "geometry/poly_bifurcator_graph.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace k7poly {

void Graph::Clear() {
  m_vertices.Clear();
  m_edges.Clear();
}

bool Graph::AddRing(const K7ShpXY* points, int count) {
  if (count < 3) return true;
  const int first = m_vertices.Count();
  K7ShpXY* const vertices = m_vertices.Extend(count);
  Edge* const edges = m_edges.Extend(count);
  if (!vertices || !edges) return false;
  for (int i = 0; i < count; i++) {
    const auto near0 = [](double value) { return std::fabs(value) < LEAST ? 0 : value; };
    vertices[i] = {near0(points[i].x), near0(points[i].y)};
    edges[i] = {first + i, first + (i + 1 < count ? i + 1 : 0), NONE, NONE, NONE};
  }
  return true;
}

bool Graph::SortVertices() {
  const int count = m_vertices.Count();
  m_placed.Clear();
  m_rank.Clear();
  Placed* const placed = m_placed.Extend(count);
  int* const rank = m_rank.Extend(count);
  if (count > 0 && (!placed || !rank)) return false;
  for (int i = 0; i < count; i++) placed[i] = {m_vertices[i], i};
  std::sort(placed, placed + count, [](const Placed& a, const Placed& b) { return Before(a.at, b.at); });
  int kept = 0;
  for (int i = 0; i < count; i++) {
    if (i == 0 || !Same(placed[i].at, m_vertices[kept - 1])) m_vertices[kept++] = placed[i].at;
    rank[placed[i].index] = kept - 1;
  }
  m_vertices.Truncate(kept);
  return true;
}

bool Graph::Prepare() {
  if (!SortVertices()) return false;
  m_links.Clear();
  Links* const links = m_links.Extend(m_vertices.Count());
  if (!links && m_vertices.Count() > 0) return false;
  std::fill_n(links, m_vertices.Count(), Links{});
  int kept = 0;
  for (int i = 0; i < m_edges.Count(); i++) {
    int lower = m_rank[m_edges[i].lower], upper = m_rank[m_edges[i].upper];
    if (lower == upper) continue;
    if (lower > upper) std::swap(lower, upper);
    m_edges[kept] = {lower, upper, NONE, NONE, m_edges[i].line};
    Hang(kept, lower);
    links[upper].ending = kept++;
  }
  m_edges.Truncate(kept);
  return true;
}

bool Graph::KeepLines() {
  m_lines.Clear();
  Line* const lines = m_lines.Extend(m_edges.Count());
  if (!lines) return false;
  for (int i = 0; i < m_edges.Count(); i++) {
    lines[i] = {Lower(i), Upper(i)};
    m_edges[i].line = i;
  }
  double most = 0;
  for (int i = 0; i < m_vertices.Count(); i++)
    most = std::max({most, std::fabs(m_vertices[i].x), std::fabs(m_vertices[i].y)});
  m_step = std::ldexp(1.0, std::ilogb(most) - (std::numeric_limits<double>::digits - 1));
  return true;
}

int Graph::AddVertex(const K7ShpXY& at) {
  K7ShpXY* const vertex = m_vertices.Extend(1);
  Links* const links = m_links.Extend(1);
  if (!vertex || !links) return NONE;
  *vertex = at;
  *links = {};
  return m_vertices.Count() - 1;
}

void Graph::Hang(int edge, int vertex) {
  m_edges[edge].lower = vertex;
  m_edges[edge].nextOut = std::exchange(m_links[vertex].firstOut, edge);
}

bool Graph::Split(int edge, int vertex) {
  if (!m_edges.Extend(1)) return false;
  const int rest = m_edges.Count() - 1;
  const int upper = std::exchange(m_edges[edge].upper, vertex);
  m_edges[rest] = {vertex, upper, NONE, NONE, m_edges[edge].line};
  Hang(rest, vertex);
  m_links[vertex].ending = edge;
  m_links[upper].ending = rest;
  return true;
}

}  // namespace k7poly
