// Contours that rise on both sides, as the sweep makes them, and the triangles within.
#pragma once

#include "geometry/poly_bifurcator_graph.h"

#include <cstdint>

namespace k7poly {

/// What is handed out: all that finished pieces were made of.
class Pieces {
 public:
  void Clear();
  /// Forgets the unfinished pieces and prepares for a sweep over so many vertices; false without memory.
  bool Begin(int vertexCount);
  /// Remembers how much is finished, and goes back there.
  void Mark();
  void GoBack();

  /// A new piece whose lowest vertex is given. NONE without memory.
  int Start(int vertex);
  /// Appends a vertex to one of a piece's sides.
  void Add(int piece, int vertex, bool onLeft);
  /// Ends a piece at its highest vertex and cuts it into triangles.
  void Finish(const Graph& graph, int piece, int vertex);
  /// The piece's last vertex so far, and its side.
  int Last(int piece) const { return m_points[m_pieces[piece].last].vertex; }
  bool LastIsLeft(int piece) const { return m_points[m_pieces[piece].last].onLeft; }

  bool Failed() const;
  const Buffer<K7ShpXY>& Vertices() const { return m_vertices; }
  const Buffer<int32_t>& Triangles() const { return m_triangles; }
  const Buffer<int32_t>& Contours() const { return m_contours; }
  const Buffer<int32_t>& ContourEnds() const { return m_contourEnds; }

 private:
  struct Point {
    int vertex;
    int next;
    bool onLeft;
  };
  struct Piece {
    int first, last;
  };

  int Append(int vertex, bool onLeft);
  int32_t Number(const Graph& graph, int vertex);
  void AddContour(const Graph& graph, const Piece& piece);
  void AddTriangles(const Graph& graph, const Piece& piece);
  void Fan(const Graph& graph, int vertex, bool stackIsLeft);
  void CutEars(const Graph& graph, int vertex, bool onLeft);
  void AddTriangle(const Graph& graph, int below, int above, int vertex, bool onLeft);

  Buffer<Point> m_points;
  Buffer<Piece> m_pieces;
  Buffer<int> m_stack;
  Buffer<int32_t> m_numbers;  // in m_vertices, of the graph's vertices
  int m_freePoints = NONE;

  Buffer<K7ShpXY> m_vertices;
  Buffer<int32_t> m_triangles;
  Buffer<int32_t> m_contours;
  Buffer<int32_t> m_contourEnds;
  int m_marks[4] = {};
};

}  // namespace k7poly
