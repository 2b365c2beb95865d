#include "geometry/poly_bifurcator_sweep.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <utility>

namespace k7poly {

namespace {

double Length(const Line& line) {
  return std::max(std::fabs(line.to.x - line.from.x), std::fabs(line.to.y - line.from.y));
}

// Where two lines that cross do so, to the nearest numbers: all lines through one point find the same. First
// along the shorter one, from its nearer end; then moved by what it still is beside both.
K7ShpXY Crossing(Line a, Line b) {
  if (Length(b) < Length(a)) std::swap(a, b);
  const double from = ExactSide(b.from, b.to, a.from), to = ExactSide(b.from, b.to, a.to), across = to - from;
  const bool fromIsNear = std::fabs(from) < std::fabs(to);
  const K7ShpXY near = fromIsNear ? a.from : a.to, direction = {a.to.x - a.from.x, a.to.y - a.from.y};
  const double part = -(fromIsNear ? from : to) / across;
  const K7ShpXY p = {near.x + part * direction.x, near.y + part * direction.y};
  const double besideA = ExactSide(a.from, a.to, p), besideB = ExactSide(b.from, b.to, p);
  const K7ShpXY other = {b.to.x - b.from.x, b.to.y - b.from.y};
  return {p.x - (besideB * direction.x - besideA * other.x) / across,
          p.y - (besideB * direction.y - besideA * other.y) / across};
}

bool Part(const Line& line, const Line& other) {
  const double from = Side(line.from, line.to, other.from), to = Side(line.from, line.to, other.to);
  return (from < 0 && to > 0) || (from > 0 && to < 0);
}
bool Crosses(const Line& a, const Line& b) { return Part(a, b) && Part(b, a); }

}  // namespace

int Sweep::Run(Mode mode) {
  m_mode = mode;
  const int sorted = m_graph.VertexCount();
  m_status.Clear();
  m_heap.Clear();
  m_crossings = 0;
  m_failed = mode == PIECES && !m_pieces.Begin(sorted);
  for (int next = 0; (next < sorted || m_heap.Count() > 0) && !m_failed;) {
    const bool fromHeap =
        m_heap.Count() > 0 && (next == sorted || Before(m_graph.At(m_heap[0]), m_graph.At(next)));
    Visit(fromHeap ? Pop() : next++);
    if (m_crossings > (mode == PIECES ? 0 : MAX_CROSSINGS)) break;
  }
  return m_failed || m_pieces.Failed() ? K7_ERR_MEMORY : m_crossings;
}

void Sweep::Visit(int vertex) {
  const Place place = Find(vertex);
  TakeOut(vertex);
  if (m_failed) return;
  Replace(place, vertex);
}

// In the row, edges that end at one vertex are neighbours.
Sweep::Place Sweep::Find(int vertex) {
  Place place = {NONE, NONE, NONE, NONE};
  const int known = m_graph.NodeEndingAt(vertex);
  // Neighbours that touch the vertex were split there when they became neighbours.
  const bool look = known == NONE || m_mode == CROSSINGS;
  if (known != NONE) {
    place.first = place.last = known;
  } else {
    place = Search(vertex);
    if (place.first == NONE) return place;
  }
  while ((place.left = m_status[place.first].prev) != NONE && EndsAt(place.left, vertex, look))
    place.first = place.left;
  while ((place.right = m_status[place.last].next) != NONE && EndsAt(place.right, vertex, look))
    place.last = place.right;
  return place;
}

Sweep::Place Sweep::Search(int vertex) {
  Place place = {NONE, NONE, NONE, NONE};
  for (int node = m_status.Root(); node != NONE;) {
    if (EndsAt(node, vertex, true)) {
      place.first = place.last = node;
      return place;
    }
    if (m_graph.SideOf(EdgeOf(node), vertex) > 0) {
      place.right = node;
      node = m_status[node].left;
    } else {
      place.left = node;
      node = m_status[node].right;
    }
  }
  return place;
}

// Whether a node's edge ends at the vertex; with `look`, one on which the vertex lies is made to. While
// crossings are looked for, edges that all but touch the vertex are drawn to it as well (so that those bent
// by rounding do not cross others for ever: Hobby, "Practical segment intersection with finite precision
// output", 1999); and as a vertex may be visited again, or another at its place, what starts there is taken
// out, to be put in order with what came to it.
bool Sweep::EndsAt(int node, int vertex, bool look) {
  const int edge = EdgeOf(node);
  if (m_graph[edge].upper == vertex) return true;
  if (!look) return false;
  const bool isOn = m_graph.SideOf(edge, vertex) == 0;
  if (m_mode == PIECES ? !isOn : !m_graph.IsBeside(edge, vertex)) return false;
  if (m_graph.Spans(edge, vertex)) {
    if (!isOn) m_crossings++;
    Split(edge, vertex);
    return !m_failed;
  }
  if (m_mode == PIECES) return false;
  if (Same(m_graph.Lower(edge), m_graph.At(vertex))) {
    m_graph.Hang(edge, vertex);
    return true;
  }
  return Same(m_graph.Upper(edge), m_graph.At(vertex));
}

// The edges that start at the vertex into m_out, from left to right, no two of them in one direction.
void Sweep::TakeOut(int vertex) {
  m_out.Clear();
  for (int edge = m_graph.FirstOut(vertex); edge != NONE; edge = m_graph[edge].nextOut) m_out.Add(edge);
  if (m_out.Failed()) m_failed = true;
  m_graph.ForgetOut(vertex);
  const int count = m_out.Count();
  if (count < 2) return;
  const K7ShpXY at = m_graph.At(vertex);
  std::sort(m_out.Data(), m_out.Data() + count, [&](int a, int b) {
    const double side = Side(at, m_graph.Upper(a), m_graph.Upper(b));
    return side != 0 ? side < 0 : Before(m_graph.Upper(a), m_graph.Upper(b));
  });
  int kept = 0;
  for (int begin = 0, end; begin < count; begin = end) {
    end = begin + 1;
    while (end < count && Side(at, m_graph.Upper(m_out[begin]), m_graph.Upper(m_out[end])) == 0) end++;
    kept = Telescope(vertex, begin, end, kept);
  }
  m_out.Truncate(kept);
}

// Of edges on top of one another, ends in order, each becomes what it has beyond the one before. It stays
// when an odd number of them run there.
int Sweep::Telescope(int vertex, int begin, int end, int kept) {
  for (int i = begin, lower = vertex; i < end; i++) {
    const int edge = m_out[i];
    const int upper = m_graph[edge].upper;
    if ((end - i) % 2 == 0 || Same(m_graph.At(lower), m_graph.At(upper))) {
      m_graph.Drop(edge);
    } else if (lower == vertex) {
      m_out[kept++] = edge;
    } else {
      m_graph.Hang(edge, lower);
    }
    lower = upper;
  }
  return kept;
}

// What ends at the vertex leaves the status, what starts there takes its place.
void Sweep::Replace(const Place& place, int vertex) {
  int leftPiece = NONE, rightPiece = NONE, pending = NONE;
  const int count = m_out.Count();
  if (place.first == NONE && count == 0) return;
  if (m_mode == PIECES) CutPieces(place, vertex, leftPiece, rightPiece, pending);
  for (int node = place.first; node != NONE; node = node == place.last ? NONE : m_status[node].next)
    m_graph[EdgeOf(node)].node = NONE;
  int at = place.left, free = place.first;
  bool isInside = at != NONE && m_status[at].isInside;
  for (int i = 0; i < count; i++) {
    if (free != NONE) {
      at = free;
      free = at == place.last ? NONE : m_status[at].next;
    } else {
      at = m_status.InsertAfter(at, NONE);
      if (at == NONE) {
        m_failed = true;
        return;
      }
    }
    isInside = !isInside;
    StatusNode& node = m_status[at];
    node.edge = m_out[i];
    node.isInside = isInside;
    node.pending = NONE;
    m_graph[node.edge].node = at;
    if (m_mode == CROSSINGS) continue;
    node.piece = i + 1 == count ? rightPiece : isInside ? StartPiece(vertex) : NONE;
  }
  while (free != NONE) {
    const int next = free == place.last ? NONE : m_status[free].next;
    m_status.Remove(free);
    free = next;
  }
  if (place.left != NONE && m_mode == PIECES) {
    m_status[place.left].piece = leftPiece;
    m_status[place.left].pending = pending;
  }
  if (count == 0) {
    Test(place.left, place.right);
  } else {
    Test(place.left, m_graph[m_out[0]].node);
    Test(m_graph[m_out[count - 1]].node, place.right);
  }
}

// Ends the pieces that end at the vertex, and adds it to those to its left and right. Gives the pieces that
// the spaces on both sides have from then on; `pending` when these are one space.
void Sweep::CutPieces(const Place& place, int vertex, int& leftPiece, int& rightPiece, int& pending) {
  const bool leftInside = place.left != NONE && m_status[place.left].isInside;
  if (leftInside) {
    leftPiece = m_status[place.left].piece;
    pending = std::exchange(m_status[place.left].pending, NONE);
  }
  if (place.first == NONE) {
    if (!leftInside) return;
    // The space is parted: along the line from here to its last vertex, where pieces part or parted already.
    if (pending != NONE) {
      rightPiece = std::exchange(pending, NONE);
      m_pieces.Add(leftPiece, vertex, false);
      m_pieces.Add(rightPiece, vertex, true);
    } else if (m_pieces.LastIsLeft(leftPiece)) {
      rightPiece = leftPiece;
      leftPiece = StartPiece(m_pieces.Last(rightPiece));
      if (m_failed) return;
      m_pieces.Add(leftPiece, vertex, false);
      m_pieces.Add(rightPiece, vertex, true);
    } else {
      rightPiece = StartPiece(m_pieces.Last(leftPiece));
      if (m_failed) return;
      m_pieces.Add(leftPiece, vertex, false);
      m_pieces.Add(rightPiece, vertex, true);
    }
    return;
  }
  if (leftInside) {
    if (pending != NONE) m_pieces.Finish(m_graph, std::exchange(pending, NONE), vertex);
    m_pieces.Add(leftPiece, vertex, false);
  }
  for (int node = place.first; node != place.last; node = m_status[node].next) {
    if (!m_status[node].isInside) continue;
    m_pieces.Finish(m_graph, m_status[node].piece, vertex);
    if (m_status[node].pending != NONE) m_pieces.Finish(m_graph, m_status[node].pending, vertex);
  }
  const StatusNode& last = m_status[place.last];
  if (last.isInside) {
    rightPiece = last.piece;
    if (last.pending != NONE) {
      m_pieces.Finish(m_graph, last.piece, vertex);
      rightPiece = last.pending;
    }
    m_pieces.Add(rightPiece, vertex, true);
  }
  if (m_out.Count() == 0) pending = rightPiece;
}

int Sweep::StartPiece(int vertex) {
  const int piece = m_pieces.Start(vertex);
  if (piece == NONE) m_failed = true;
  return piece;
}

// Whether neighbours stay apart until the first of them ends.
void Sweep::Test(int left, int right) {
  if (left == NONE || right == NONE || m_failed) return;
  const int a = EdgeOf(left), b = EdgeOf(right);
  const int endA = m_graph[a].upper, endB = m_graph[b].upper;
  if (endA == endB) return;
  if (Before(m_graph.At(endA), m_graph.At(endB))) {
    const double side = m_graph.SideOf(b, endA);
    if (side == 0) Split(b, endA);
    if (side < 0) Cross(a, b);
  } else {
    const double side = m_graph.SideOf(a, endB);
    if (side == 0) Split(a, endB);
    if (side > 0) Cross(a, b);
  }
}

// Once edges were bent the row may be out of order, and neighbours need not cross at all.
void Sweep::Cross(int a, int b) {
  const Line edgeA = {m_graph.Lower(a), m_graph.Upper(a)}, edgeB = {m_graph.Lower(b), m_graph.Upper(b)};
  if (!Crosses(edgeA, edgeB)) return;
  m_crossings++;
  if (m_mode == PIECES) return;
  // The later of the lower ends and the earlier of the upper ones, each an end of one edge within the other.
  const int lower = Before(edgeA.from, edgeB.from) ? m_graph[b].lower : m_graph[a].lower;
  const int upper = Before(edgeA.to, edgeB.to) ? m_graph[a].upper : m_graph[b].upper;
  const auto isWithin = [&](const K7ShpXY& p) {
    return Before(m_graph.At(lower), p) && Before(p, m_graph.At(upper));
  };
  const Line &lineA = m_graph.LineOf(a), &lineB = m_graph.LineOf(b);
  K7ShpXY at = lineA.from;
  if (Crosses(lineA, lineB)) at = m_graph.OnGrid(Crossing(lineA, lineB));
  if (!isWithin(at)) at = m_graph.OnGrid(Crossing(edgeA, edgeB));
  const int vertex = isWithin(at) ? m_graph.AddVertex(at) : Before(m_graph.At(lower), at) ? upper : lower;
  if (vertex == NONE) {
    m_failed = true;
    return;
  }
  Split(a, vertex);
  Split(b, vertex);
}

// Nothing where the vertex is not within the edge.
void Sweep::Split(int edge, int vertex) {
  if (!m_graph.Spans(edge, vertex)) return;
  if (!m_graph.Split(edge, vertex)) m_failed = true;
  // The sweep may have been there already.
  if (m_mode == CROSSINGS) Push(vertex);
}

void Sweep::Push(int vertex) {
  m_heap.Add(vertex);
  if (m_heap.Failed()) {
    m_failed = true;
    return;
  }
  std::push_heap(m_heap.Data(), m_heap.Data() + m_heap.Count(),
                 [&](int a, int b) { return Before(m_graph.At(b), m_graph.At(a)); });
}

int Sweep::Pop() {
  std::pop_heap(m_heap.Data(), m_heap.Data() + m_heap.Count(),
                [&](int a, int b) { return Before(m_graph.At(b), m_graph.At(a)); });
  const int vertex = m_heap.Last();
  m_heap.Truncate(m_heap.Count() - 1);
  return vertex;
}

}  // namespace k7poly
