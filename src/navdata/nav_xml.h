// Rendering of records: a table of rows a type, a row an element.
#pragma once

#include "io/xml_sink.h"

#include <k7/navdata/nav_data.h>

#include <cstddef>
#include <cstdint>
#include <span>

// The records derive from one another, where the language leaves offsetof to the compiler; all that we build
// with have it.
#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif

namespace k7nav {

struct Row;

/// One document in the making, and what its rows need.
struct Rendering {
  K7NavData* data;  ///< null when nothing is looked up
  K7XmlOutputType_t type;
  k7xml::XmlDocument& out;
  bool nests = true;         ///< rows of related records count: in the record itself, not in those within
  const Row* row = nullptr;  ///< the row at work
  K7XmlText text = {};       ///< of its element
  K7String scratch = {};
  bool failed = false;  ///< for memory, where neither text can tell
};

/// Writes the text of an element. False when the element is left out, or when it wrote elements itself.
using Form = bool (*)(Rendering& r, const void* member);

enum class When : uint8_t { ALWAYS, FULL, DISPLAY, NOT_DISPLAY };

struct Row {
  const char* element;
  const char* label;
  When when;
  uint16_t at;  ///< position of the member; 0 for a form that takes the record
  Form form;
};

using Rows = std::span<const Row>;

struct Renderer {
  const Rows* rows = nullptr;  ///< null for the elements that all types share
  const Rows* base = nullptr;  ///< before them, of what the record derives from
  bool isResultLost = false;   ///< hosts count on 0
  bool isForNesting = false;   ///< alone it has the shared elements only
};

namespace rows {
extern const Rows FIX, AREA;
extern const Rows VOR, NDB, WAYPOINT, AIRPORT, RUNWAY, LOCALIZER, MARKER, LOW_USE_AIRPORT;
extern const Rows AIRWAY_SEG, AIRWAY_HEADER, RESTRICTION, MIN_CROSSING, HOLDING, LEG, MORA, TRANSIT_ROUTE;
extern const Rows AIRPORT_COMM, ENROUTE_COMM, COMPANY_COMM;
extern const Rows CTRL_AIRSPACE, SPECIAL_USE, FIR, AIRSPACE_SEG, SPECIAL_ACTIVITY, ENDPOINT, SHORELINE,
    BOUNDARY, ETOPS;
extern const Rows FORMATION, OBSTACLE, COMPANY_AIRPORT, FLEET_AIRPORT;
extern const Rows SMART_NOTE, NOTE_LINK, NOTE_COMM, NOTE_ALTITUDE;
}  // namespace rows

enum class Order : uint8_t { AS_FOUND, BACKWARD, BY_IDENT };

/// Renders the records of a query into elements of that name, and deletes the query, which may be null.
/// BY_IDENT leaves out a record that is there already.
void Nest(Rendering& r, K7NavQueryResult* found, const char* element, Order order = Order::AS_FOUND);

/// Rows. FORM is a template over the member's type; RECORD's takes the whole record.
#define K7ROW(element, label, when, record, member, form)                               \
  {                                                                                     \
    element, label, k7nav::When::when, static_cast<uint16_t>(offsetof(record, member)), \
        &k7nav::form<decltype(record::member)>                                          \
  }
#define K7ROW_CODE(element, label, record, member, words)                                 \
  {                                                                                       \
    element, label, k7nav::When::ALWAYS, static_cast<uint16_t>(offsetof(record, member)), \
        &k7nav::Code<decltype(record::member), words>                                     \
  }
#define K7ROW_BITS(element, label, record, member, bits)                                  \
  {                                                                                       \
    element, label, k7nav::When::ALWAYS, static_cast<uint16_t>(offsetof(record, member)), \
        &k7nav::Flags<decltype(record::member), bits>                                     \
  }
#define K7ROW_KEY(element, record, member) K7ROW(element, nullptr, FULL, record, member, Key)
/// Key of a fix, and the identifier that the store knows of it.
#define K7ROWS_FIX_KEY(element, label, record, member) \
  K7ROW_KEY(element "Key", record, member), K7ROW(element "Ident", label, ALWAYS, record, member, IdentOf)
#define K7ROW_RECORD(element, label, when, form) \
  { element, label, k7nav::When::when, 0, &(form) }
/// What a query of the store finds of the record, nested.
#define K7ROW_RELATED(element, query, order) \
  { element, nullptr, k7nav::When::ALWAYS, 0, &k7nav::Related<&K7NavData::query, k7nav::Order::order> }
/// A position: `lat`, followed by its longitude; KNOWN leaves out 0/0, which is none.
#define K7ROWS_AT(element, label, record, lat, known)                                         \
  K7ROW(element "LatLong", label "Lat/Long", DISPLAY, record, lat, known##LatLong),           \
      K7ROW(element "Latitude", label "Latitude", NOT_DISPLAY, record, lat, known##Latitude), \
      K7ROW(element "Longitude", label "Longitude", NOT_DISPLAY, record, lat, known##Longitude)
#define K7ROWS_POSITION(element, label, record, lat) K7ROWS_AT(element, label, record, lat, )
#define K7ROWS_KNOWN_POSITION(element, label, record, lat) K7ROWS_AT(element, label, record, lat, Known)

}  // namespace k7nav
