#include "web/desk.h"

NavStore* Desk::Store(std::string& problem) {
  if (!m_store) m_store = m_data.OpenStore(problem);
  return m_store.get();
}
