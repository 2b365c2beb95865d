#include "layers/contour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

// Which edges of the cells a line of one value passes from one to another. An edge is numbered by the node at
// its left or upper end, twice that for one across and one more for one down.
struct Contours::Links {
  std::map<int, std::array<int, 2>> to;  // -1: none

  void Add(int a, int b) {
    for (const auto& [from, other] : {std::pair{a, b}, std::pair{b, a}}) {
      auto& ends = to.try_emplace(from, std::array{-1, -1}).first->second;
      ends[ends[0] < 0 ? 0 : 1] = other;
    }
  }
};

Contours::Contours(DeviceField field, int width, int height, double cell, double leap)
    : m_field(std::move(field)),
      m_cell(cell),
      m_leap(leap),
      m_columns(static_cast<int>(std::ceil(width / cell)) + 1),
      m_rows(static_cast<int>(std::ceil(height / cell)) + 1),
      m_least(INFINITY),
      m_most(-INFINITY) {
  for (int row = 0; row < m_rows; ++row)
    for (int column = 0; column < m_columns; ++column) {
      const DevicePoint node = Node(column, row);
      const double value = m_field(node.x, node.y);
      m_values.push_back(value);
      m_least = std::fmin(m_least, value);
      m_most = std::fmax(m_most, value);
    }
}

// By false position, which keeps to the edge.
DevicePoint Contours::OnEdge(int edge, double value, int steps) const {
  const int node = edge / 2, column = node % m_columns, row = node / m_columns;
  const bool down = edge % 2;
  DevicePoint a = Node(column, row), b = down ? Node(column, row + 1) : Node(column + 1, row);
  double fa = Value(column, row) - value;
  double fb = (down ? Value(column, row + 1) : Value(column + 1, row)) - value;
  DevicePoint p = a;
  for (int i = 0; i < steps && fa != fb; ++i) {
    const double t = fa / (fa - fb);
    p = {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    if (i + 1 == steps) break;
    const double f = m_field(p.x, p.y) - value;
    if (!std::isfinite(f) || f == 0) break;
    const bool first = (f < 0) == (fa < 0);
    (first ? a : b) = p;
    (first ? fa : fb) = f;
  }
  return p;
}

void Contours::LinkCell(int column, int row, double value, Links& links) const {
  const double corners[] = {Value(column, row), Value(column + 1, row), Value(column + 1, row + 1),
                            Value(column, row + 1)};
  const auto [least, most] = std::minmax_element(std::begin(corners), std::end(corners));
  for (const double corner : corners)
    if (!std::isfinite(corner)) return;
  if (!(*least < value) || *most < value || *most - *least > m_leap) return;
  const int node = row * m_columns + column;
  const int edges[] = {2 * node, 2 * (node + 1) + 1, 2 * (node + m_columns), 2 * node + 1};
  int crossed[4], count = 0;
  for (int i = 0; i < 4; ++i)
    if ((corners[i] < value) != (corners[(i + 1) % 4] < value)) crossed[count++] = edges[i];
  if (count == 2) links.Add(crossed[0], crossed[1]);
  if (count != 4) return;
  // A saddle: the middle tells which corners belong together.
  const double middle = (corners[0] + corners[1] + corners[2] + corners[3]) / 4;
  const int turned = (corners[0] < value) == (middle < value) ? 0 : 3;
  links.Add(crossed[turned], crossed[(turned + 1) % 4]);
  links.Add(crossed[(turned + 2) % 4], crossed[(turned + 3) % 4]);
}

DeviceLine Contours::Follow(int edge, double value, int steps, Links& links) const {
  DeviceLine line;
  const int first = edge;
  for (int last = -1; edge >= 0;) {
    line.points.push_back(OnEdge(edge, value, steps));
    const auto here = links.to.find(edge);
    if (here == links.to.end()) break;
    const int next = here->second[0] != last ? here->second[0] : here->second[1];
    links.to.erase(here);
    last = edge;
    edge = next;
    if (edge == first) {
      line.points.push_back(line.points.front());
      break;
    }
  }
  return line;
}

// Halves a chord that leaves the line, its middle moved across it by the field's own slope.
void Contours::Bend(const DevicePoint& a, const DevicePoint& b, double value, double tolerance, int depth,
                    std::vector<DevicePoint>& points) const {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  DevicePoint middle = {(a.x + b.x) / 2, (a.y + b.y) / 2};
  double off = m_field(middle.x, middle.y) - value;
  if (depth > 0 && length > 1 && std::fabs(off) > tolerance) {
    const double nx = (a.y - b.y) / length, ny = (b.x - a.x) / length;
    for (int i = 0; i < 3 && std::fabs(off) > tolerance / 4; ++i) {
      const double slope = m_field(middle.x + nx, middle.y + ny) - value - off;
      const double move = std::clamp(-off / slope, -length / 2, length / 2);
      if (!std::isfinite(move)) break;
      middle = {middle.x + nx * move, middle.y + ny * move};
      off = m_field(middle.x, middle.y) - value;
    }
    if (std::isfinite(off) && std::fabs(off) <= tolerance) {
      Bend(a, middle, value, tolerance, depth - 1, points);
      Bend(middle, b, value, tolerance, depth - 1, points);
      return;
    }
  }
  points.push_back(b);
}

std::vector<DeviceLine> Contours::At(double value, double tolerance) const {
  static const int STEPS = 4, HALVINGS = 3;
  Links links;
  for (int row = 0; row + 1 < m_rows; ++row)
    for (int column = 0; column + 1 < m_columns; ++column) LinkCell(column, row, value, links);
  std::vector<int> starts;
  for (const auto& [edge, ends] : links.to)
    if (ends[1] < 0) starts.push_back(edge);
  const bool isEven = std::isinf(tolerance);
  const int steps = isEven ? 1 : STEPS;
  std::vector<DeviceLine> lines;
  for (const int start : starts)
    if (links.to.count(start)) lines.push_back(Follow(start, value, steps, links));
  while (!links.to.empty()) lines.push_back(Follow(links.to.begin()->first, value, steps, links));

  if (isEven) return lines;
  for (DeviceLine& line : lines) {
    std::vector<DevicePoint> points = {line.points.front()};
    for (size_t i = 1; i < line.points.size(); ++i)
      Bend(line.points[i - 1], line.points[i], value, tolerance, HALVINGS, points);
    line.points = std::move(points);
  }
  return lines;
}
