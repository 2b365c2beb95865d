// The sweep over a polygon's vertices, from south to north.
#pragma once

#include "geometry/poly_bifurcator_graph.h"
#include "geometry/poly_bifurcator_pieces.h"
#include "geometry/poly_bifurcator_status.h"

namespace k7poly {

/// Where edges do not cross (a vertex may lie within an edge, which is then split there without rounding) one
/// sweep finds that out and makes the pieces, all by signs that are exact. Where they do, other sweeps must
/// first split them at the crossings. These are rounded, which bends edges, perhaps over others: one sweep
/// after the other until nothing crosses.
class Sweep {
 public:
  enum Mode { PIECES, CROSSINGS };
  /// More crossings than any real polygon has, in all its sweeps.
  static constexpr int MAX_CROSSINGS = 1 << 22;

  Sweep(Graph& graph, Status& status, Pieces& pieces, Buffer<int>& heap, Buffer<int>& out)
      : m_graph(graph), m_status(status), m_pieces(pieces), m_heap(heap), m_out(out) {}

  /// Sweeps a prepared graph. Answers 0 when the pieces are made, or the number of crossings, the first of
  /// which ends the making of pieces, or K7_ERR_MEMORY. After splits at crossings the graph is to be prepared
  /// again.
  int Run(Mode mode);

 private:
  // Nodes of the edges that end at a vertex, from first to last, and their neighbours. Any may be NONE.
  struct Place {
    int first, last, left, right;
  };

  void Visit(int vertex);
  Place Find(int vertex);
  Place Search(int vertex);
  bool EndsAt(int node, int vertex, bool look);
  void TakeOut(int vertex);
  int Telescope(int vertex, int begin, int end, int kept);
  void Replace(const Place& place, int vertex);
  void CutPieces(const Place& place, int vertex, int& leftPiece, int& rightPiece, int& pending);
  int StartPiece(int vertex);
  void Test(int left, int right);
  void Cross(int a, int b);
  void Split(int edge, int vertex);
  void Push(int vertex);
  int Pop();
  int EdgeOf(int node) { return m_status[node].edge; }

  Graph& m_graph;
  Status& m_status;
  Pieces& m_pieces;
  Buffer<int>& m_heap;  // vertices to visit besides the sorted ones
  Buffer<int>& m_out;   // edges that start at the vertex, from left to right
  Mode m_mode = PIECES;
  int m_crossings = 0;
  bool m_failed = false;
};

}  // namespace k7poly
