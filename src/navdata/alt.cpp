#include "io/xml_field.h"

#include <k7/navdata/alt.h>

#include <algorithm>

namespace {

// The words of the special values, from CLASS_B on; four of them say nothing.
constexpr const char* SPECIAL[] = {"CLASS B", "ATC",   "TMZ",       "",    "", "",
                                   "MSL",     "NOTAM", "Unlimited", "GND", ""};

}  // namespace

int K7Alt::ToString(K7String& out, bool numberOnly, bool metric) const {
  const uint32_t value = Value(), flags = Flags();
  const bool isMetric = flags & METRIC;
  const char* format = "%d ft";
  uint32_t number = value;
  if (IsSpecialValue()) {
    format = SPECIAL[value - CLASS_B];
  } else if (flags & FLIGHT_LEVEL) {
    format = isMetric ? "FL%dm" : "FL%02d";
    if (!isMetric) number /= 100;
  } else if (flags & ABOVE_GROUND) {
    format = value ? "%d AGL" : "GND";
  } else if (flags & ABOVE_AERODROME) {
    format = "%d AAL";
  } else if (!value && !numberOnly) {
    format = "";
  } else if (numberOnly) {
    format = "%d";
  } else if (isMetric || metric) {
    format = "%d m";
  }
  return std::min(out.Format(format, number), 0);
}

K7String K7Alt::GetAltString() const {
  K7String text;
  ToString(text);
  return text;
}

int K7Alt::ToXML(K7NavData*, K7XmlOutputType_t, K7XmlElem& parent, const char* name, bool metric) const {
  K7String text;
  const int err = ToString(text, false, metric);
  return err ? err : k7xml::AddElement(parent, name, name, text);
}
