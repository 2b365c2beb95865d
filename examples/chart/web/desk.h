// All that one thread has to answer with. Files are opened when they are first wanted.
#pragma once

#include "web/map_painter.h"

class Desk {
 public:
  /// The data stay the caller's and must outlive the desk.
  explicit Desk(const MapData& data) : m_data(data), m_painter(data) {}

  const MapData& Data() const { return m_data; }
  MapPainter& Painter() { return m_painter; }
  /// Null without navigation data; `problem` in words when they cannot be read.
  NavStore* Store(std::string& problem);

 private:
  const MapData& m_data;
  MapPainter m_painter;
  std::unique_ptr<NavStore> m_store;
};
