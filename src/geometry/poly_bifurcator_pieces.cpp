#include "geometry/poly_bifurcator_pieces.h"

#include <algorithm>

namespace k7poly {

void Pieces::Clear() {
  m_vertices.Clear();
  m_triangles.Clear();
  m_contours.Clear();
  m_contourEnds.Clear();
}

bool Pieces::Begin(int vertexCount) {
  m_points.Clear();
  m_pieces.Clear();
  m_numbers.Clear();
  m_freePoints = NONE;
  int32_t* const numbers = m_numbers.Extend(vertexCount);
  if (!numbers && vertexCount > 0) return false;
  std::fill_n(numbers, vertexCount, NONE);
  return true;
}

void Pieces::Mark() {
  m_marks[0] = m_vertices.Count();
  m_marks[1] = m_triangles.Count();
  m_marks[2] = m_contours.Count();
  m_marks[3] = m_contourEnds.Count();
}

void Pieces::GoBack() {
  m_vertices.Truncate(m_marks[0]);
  m_triangles.Truncate(m_marks[1]);
  m_contours.Truncate(m_marks[2]);
  m_contourEnds.Truncate(m_marks[3]);
}

bool Pieces::Failed() const {
  return m_points.Failed() || m_pieces.Failed() || m_stack.Failed() || m_vertices.Failed() ||
         m_triangles.Failed() || m_contours.Failed() || m_contourEnds.Failed();
}

int Pieces::Append(int vertex, bool onLeft) {
  int point = m_freePoints;
  if (point != NONE) {
    m_freePoints = m_points[point].next;
  } else {
    if (!m_points.Extend(1)) return NONE;
    point = m_points.Count() - 1;
  }
  m_points[point] = {vertex, NONE, onLeft};
  return point;
}

int Pieces::Start(int vertex) {
  const int point = Append(vertex, true);
  if (point == NONE || !m_pieces.Extend(1)) return NONE;
  m_pieces.Last() = {point, point};
  return m_pieces.Count() - 1;
}

void Pieces::Add(int piece, int vertex, bool onLeft) {
  const int point = Append(vertex, onLeft);
  if (point == NONE) return;
  m_points[m_pieces[piece].last].next = point;
  m_pieces[piece].last = point;
}

void Pieces::Finish(const Graph& graph, int piece, int vertex) {
  Add(piece, vertex, true);
  if (Failed()) return;
  AddContour(graph, m_pieces[piece]);
  AddTriangles(graph, m_pieces[piece]);
  m_points[m_pieces[piece].last].next = m_freePoints;
  m_freePoints = m_pieces[piece].first;
}

// Vertices that no triangle uses are not handed out.
int32_t Pieces::Number(const Graph& graph, int vertex) {
  int32_t& number = m_numbers[vertex];
  if (number == NONE) {
    number = m_vertices.Count();
    m_vertices.Add(graph.At(vertex));
  }
  return number;
}

// Counter-clockwise: up on the right, and down again on the left from the highest, which counts as left.
void Pieces::AddContour(const Graph& graph, const Piece& piece) {
  const int begin = m_contours.Count();
  m_contours.Add(Number(graph, m_points[piece.first].vertex));
  int left = 0;
  for (int p = m_points[piece.first].next; p != NONE; p = m_points[p].next) {
    if (m_points[p].onLeft) {
      left++;
    } else {
      m_contours.Add(Number(graph, m_points[p].vertex));
    }
  }
  if (!m_contours.Extend(left)) return;
  for (int p = m_points[piece.first].next, at = m_contours.Count(); p != NONE; p = m_points[p].next) {
    if (m_points[p].onLeft) m_contours[--at] = Number(graph, m_points[p].vertex);
  }
  if (m_contours.Count() - begin >= 3) {
    m_contourEnds.Add(m_contours.Count());
  } else {
    m_contours.Truncate(begin);
  }
}

// The stack holds a part of one side that bends inwards: no triangle within it lies inside. The one side of
// all of it but the lowest is that of its last.
void Pieces::AddTriangles(const Graph& graph, const Piece& piece) {
  m_stack.Clear();
  m_stack.Add(m_points[piece.first].vertex);
  int p = m_points[piece.first].next;
  bool stackIsLeft = m_points[p].onLeft;
  for (; p != piece.last; p = m_points[p].next) {
    const auto [vertex, next, onLeft] = m_points[p];
    if (onLeft == stackIsLeft) {
      CutEars(graph, vertex, onLeft);
    } else {
      Fan(graph, vertex, stackIsLeft);
      stackIsLeft = onLeft;
    }
    m_stack.Add(vertex);
    if (m_stack.Failed()) return;
  }
  Fan(graph, m_points[p].vertex, stackIsLeft);
}

// From the other side all of the stack is seen.
void Pieces::Fan(const Graph& graph, int vertex, bool stackIsLeft) {
  for (int i = 0; i + 1 < m_stack.Count(); i++)
    AddTriangle(graph, m_stack[i], m_stack[i + 1], vertex, stackIsLeft);
  m_stack[0] = m_stack.Last();
  m_stack.Truncate(1);
}

void Pieces::CutEars(const Graph& graph, int vertex, bool onLeft) {
  while (m_stack.Count() > 1) {
    const int above = m_stack.Last(), below = m_stack[m_stack.Count() - 2];
    const double side = Side(graph.At(below), graph.At(above), graph.At(vertex));
    if (onLeft ? !(side < 0) : !(side > 0)) return;
    AddTriangle(graph, below, above, vertex, onLeft);
    m_stack.Truncate(m_stack.Count() - 1);
  }
}

void Pieces::AddTriangle(const Graph& graph, int below, int above, int vertex, bool onLeft) {
  int32_t* const corners = m_triangles.Extend(3);
  if (!corners) return;
  corners[0] = Number(graph, below);
  corners[onLeft ? 2 : 1] = Number(graph, above);
  corners[onLeft ? 1 : 2] = Number(graph, vertex);
}

}  // namespace k7poly
