#include "web/desk.h"

NavStore* Desk::Store(std::string& problem) {
  if (!m_store) m_store = m_data.OpenStore(problem);
  return m_store.get();
}

const AirwayGraph* Desk::Airways(std::string& problem) {
  NavStore* const store = Store(problem);
  if (!store || m_airways) return m_airways.get();
  auto airways = std::make_unique<AirwayGraph>();
  if (!airways->Read(*store))
    problem = "cannot read the airways of the navigation data";
  else
    m_airways = std::move(airways);
  return m_airways.get();
}
