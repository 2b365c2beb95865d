// Lines of equal value of a field over the device.
#pragma once

#include "layers/device_line.h"

#include <cmath>
#include <functional>
#include <vector>

/// The value at a device point; not a number where there is none.
using DeviceField = std::function<double(double dx, double dy)>;

/// A field sampled once, from which lines of any value are drawn (marching squares).
class Contours {
 public:
  /// Over a window of that size, sampled every `cell` pixels. Nothing runs between samples that are more than
  /// `leap` apart, as those of an angle where it comes around.
  Contours(DeviceField field, int width, int height, double cell, double leap = INFINITY);

  double Least() const { return m_least; }
  double Most() const { return m_most; }
  /// The lines of a value, each as long as it goes. Their points lie on it to within `tolerance` of the
  /// field's unit, and so does what is between them. With an infinite tolerance the field is not asked again:
  /// between samples it is taken for even, which is right, and many times as fast, where cells are small.
  std::vector<DeviceLine> At(double value, double tolerance) const;

 private:
  struct Links;

  double Value(int column, int row) const {
    return m_values[static_cast<size_t>(row) * static_cast<size_t>(m_columns) + static_cast<size_t>(column)];
  }
  DevicePoint Node(int column, int row) const { return {column * m_cell, row * m_cell}; }
  DevicePoint OnEdge(int edge, double value, int steps) const;
  void LinkCell(int column, int row, double value, Links& links) const;
  DeviceLine Follow(int edge, double value, int steps, Links& links) const;
  void Bend(const DevicePoint& a, const DevicePoint& b, double value, double tolerance, int depth,
            std::vector<DevicePoint>& points) const;

  DeviceField m_field;
  double m_cell, m_leap;
  int m_columns, m_rows;  // of nodes
  std::vector<double> m_values;
  double m_least, m_most;
};
