#include "io/xml_field.h"

#include <k7/foundation/error_string.h>
#include <k7/navdata/course.h>

#include <algorithm>

int K7Course::ToString(K7String& out) const {
  static constexpr char DEGREE = '\xB0';
  const int degrees = static_cast<int>(Tenths() / 10);
  if (Reference() == MAGNETIC) return std::min(out.Format("%03d%C", degrees, DEGREE), 0);
  if (Reference() == TRUE_NORTH) return std::min(out.Format("%03d%C%c", degrees, DEGREE, 'T'), 0);
  return 0;
}

int K7Course::GetCardinalDir(K7String& out) const {
  static constexpr const char* SECTORS[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW", "N"};
  if (Tenths() > 3600) return K7_ERR_OUT_OF_RANGE;
  // Sectors of 450 tenths, closed at their upper bounds of 225, 675 ...
  return std::min(out.Create(SECTORS[(Tenths() + 224) / 450]), 0);
}

int K7Course::ToXML(K7NavData*, K7XmlOutputType_t, K7XmlElem& parent, const char* name) const {
  K7String text;
  const int err = ToString(text);
  return err ? err : k7xml::AddElement(parent, name, name, text);
}
