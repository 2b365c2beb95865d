// The edges of a polygon, each from its lower to its upper vertex.
#pragma once

#include "foundation/buffer.h"
#include "geometry/poly_bifurcator_side.h"

namespace k7poly {

inline constexpr int NONE = -1;

struct Edge {
  int lower;
  int upper;
  int nextOut;  // of the edges that start at the lower vertex
  int node;     // in the sweep's status, or NONE
  int line;     // of which it is a part, once lines are kept
};

struct Line {
  K7ShpXY from, to;
};

/// Vertices in the order of the sweep, and edges. Edges of which nothing is left have equal ends.
class Graph {
 public:
  void Clear();
  /// Appends a ring of `count` points; false without memory.
  bool AddRing(const K7ShpXY* points, int count);
  /// Sorts the vertices, makes one of equal ones and turns the edges upwards. Needed before a sweep; false
  /// without memory.
  bool Prepare();
  /// Remembers the edges as they are, before crossings, rounded, bend them; false without memory.
  bool KeepLines();

  int VertexCount() const { return m_vertices.Count(); }
  const K7ShpXY& At(int vertex) const { return m_vertices[vertex]; }
  /// Adds a vertex behind the others; NONE without memory.
  int AddVertex(const K7ShpXY& at);

  Edge& operator[](int edge) { return m_edges[edge]; }
  /// A crossing on the grid that holds all of them: as fine as the numbers are where they are greatest. Near
  /// 0 they are finer in one direction, and edges would be bent over one another without end.
  K7ShpXY OnGrid(const K7ShpXY& p) const {
    return {std::nearbyint(p.x / m_step) * m_step, std::nearbyint(p.y / m_step) * m_step};
  }
  /// Whether an edge's line meets the grid's square around a vertex.
  bool IsBeside(int edge, int vertex) const {
    const K7ShpXY &a = Lower(edge), &b = Upper(edge);
    return std::fabs(SideOf(edge, vertex)) <= m_step / 2 * (std::fabs(b.x - a.x) + (b.y - a.y));
  }
  const Line& LineOf(int edge) const { return m_lines[m_edges[edge].line]; }
  const K7ShpXY& Lower(int edge) const { return At(m_edges[edge].lower); }
  const K7ShpXY& Upper(int edge) const { return At(m_edges[edge].upper); }
  double SideOf(int edge, int vertex) const { return Side(Lower(edge), Upper(edge), At(vertex)); }
  /// Whether the sweep comes to the vertex behind the one end and before the other.
  bool Spans(int edge, int vertex) const {
    return Before(Lower(edge), At(vertex)) && Before(At(vertex), Upper(edge));
  }

  /// The first of the edges that start at a vertex; the others by `nextOut`.
  int FirstOut(int vertex) const { return m_links[vertex].firstOut; }
  void ForgetOut(int vertex) { m_links[vertex].firstOut = NONE; }
  /// An edge of the status that ends at a vertex, or NONE: there may still be others.
  int NodeEndingAt(int vertex) const {
    const int edge = m_links[vertex].ending;
    return edge != NONE && m_edges[edge].upper == vertex ? m_edges[edge].node : NONE;
  }
  /// Lets an edge start at a vertex.
  void Hang(int edge, int vertex);
  void Drop(int edge) { m_edges[edge].upper = m_edges[edge].lower; }
  /// Ends an edge at a vertex within it, from where a new one goes on; false without memory.
  bool Split(int edge, int vertex);

 private:
  struct Placed {
    K7ShpXY at;
    int index;
  };
  struct Links {
    int firstOut = NONE;
    int ending = NONE;
  };

  bool SortVertices();

  Buffer<K7ShpXY> m_vertices;
  Buffer<Links> m_links;
  Buffer<Edge> m_edges;
  Buffer<Line> m_lines;
  double m_step = 1;
  Buffer<Placed> m_placed;
  Buffer<int> m_rank;
};

}  // namespace k7poly
