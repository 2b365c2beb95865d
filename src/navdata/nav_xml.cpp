// The engine that renders records, and the table of renderers.

#include "navdata/nav_xml.h"

#include "navdata/nav_xml_forms.h"

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/navdata/note.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

namespace k7nav {
namespace {

using std::string_view;

constexpr const Rows *FIX = &rows::FIX, *AREA = &rows::AREA, *BARE = nullptr;
constexpr bool LOST = true, KEPT = false, NESTED = true;

struct Entry {
  K7NavType type;
  Renderer renderer;
};

constexpr Entry ENTRIES[] = {
    {K7NAV_VOR, {&rows::VOR, FIX}},
    {K7NAV_TERMINAL_NDB, {&rows::NDB, FIX}},
    {K7NAV_ENROUTE_NDB, {&rows::NDB, FIX}},
    {K7NAV_TERMINAL_FIX, {&rows::WAYPOINT, FIX}},
    {K7NAV_ENROUTE_FIX, {&rows::WAYPOINT, FIX}},
    {K7NAV_AIRPORT, {&rows::AIRPORT, FIX}},
    {K7NAV_RUNWAY, {&rows::RUNWAY, FIX}},
    {K7NAV_LOCALIZER, {&rows::LOCALIZER, FIX}},
    {K7NAV_MARKER, {&rows::MARKER, FIX}},
    {K7NAV_HIGH_AIRWAY, {&rows::AIRWAY_SEG}},
    {K7NAV_LOW_AIRWAY, {&rows::AIRWAY_SEG}},
    {K7NAV_HIGH_TACAN_AIRWAY, {&rows::AIRWAY_SEG}},
    {K7NAV_LOW_TACAN_AIRWAY, {&rows::AIRWAY_SEG}},
    {K7NAV_AIRPORT_COMM, {&rows::AIRPORT_COMM}},
    {K7NAV_ENROUTE_COMM, {&rows::ENROUTE_COMM}},
    {K7NAV_CTRL_AIRSPACE, {&rows::CTRL_AIRSPACE, AREA}},
    {K7NAV_SPECIAL_USE_AIRSPACE, {&rows::SPECIAL_USE, AREA}},
    {K7NAV_FIR_SECTOR, {&rows::FIR, AREA}},
    {K7NAV_COMM_SECTOR, {&rows::FIR, AREA}},
    {K7NAV_FIR, {&rows::FIR, AREA}},
    {K7NAV_HOLDING, {&rows::HOLDING}},
    {K7NAV_MORA, {&rows::MORA}},
    {K7NAV_TAILORED_MORA, {&rows::MORA, BARE, LOST}},
    {K7NAV_LOW_USE_AIRPORT, {&rows::LOW_USE_AIRPORT, FIX}},
    {K7NAV_FORMATION, {&rows::FORMATION}},
    {K7NAV_OBSTACLE, {&rows::OBSTACLE}},
    {K7NAV_LINE_OBSTACLE, {&rows::OBSTACLE}},
    {K7NAV_OBSTACLE_54, {&rows::OBSTACLE}},
    {K7NAV_OBSTACLE_55, {&rows::OBSTACLE}},
    {K7NAV_OBSTACLE_56, {&rows::OBSTACLE}},
    {K7NAV_SID, {&rows::LEG}},
    {K7NAV_STAR, {&rows::LEG}},
    {K7NAV_APPROACH, {&rows::LEG}},
    {K7NAV_AIRSPACE_SEG, {&rows::AIRSPACE_SEG}},
    {K7NAV_AIRWAY_RESTRICTION, {&rows::RESTRICTION}},
    {K7NAV_AIRWAY_HEADER, {&rows::AIRWAY_HEADER}},
    {K7NAV_MIN_CROSSING_ALT, {&rows::MIN_CROSSING}},
    {K7NAV_TRANSIT_ROUTE, {&rows::TRANSIT_ROUTE}},
    {K7NAV_SPECIAL_ACTIVITY, {&rows::SPECIAL_ACTIVITY}},
    {K7NAV_COMPANY_AIRPORT, {&rows::COMPANY_AIRPORT, BARE, LOST}},
    {K7NAV_FLEET_AIRPORT, {&rows::FLEET_AIRPORT, BARE, LOST}},
    {K7NAV_TAILORED_ENDPOINT, {&rows::ENDPOINT, BARE, LOST}},
    {K7NAV_SHORELINE_DISTANCE, {&rows::SHORELINE, BARE, LOST}},
    {K7NAV_TAILORED_BOUNDARY, {&rows::BOUNDARY, AREA, LOST}},
    {K7NAV_ETOPS, {&rows::ETOPS, AREA, LOST}},
    {K7NAV_COMPANY_COMM, {&rows::COMPANY_COMM, AREA, LOST}},
    {K7NAV_SMART_NOTE, {&rows::SMART_NOTE, BARE, LOST}},
    {K7NAV_SMART_NOTE_LINK, {&rows::NOTE_LINK, BARE, KEPT, NESTED}},
    {K7NAV_SMART_NOTE_COMM, {&rows::NOTE_COMM, BARE, KEPT, NESTED}},
    {K7NAV_SMART_NOTE_ALTITUDE, {&rows::NOTE_ALTITUDE, BARE, KEPT, NESTED}},
};

// The same by type; those without an entry have the shared elements.
constexpr auto RENDERERS = [] {
  std::array<Renderer, K7NAV_TYPE_COUNT> renderers;
  for (const Entry& entry : ENTRIES) renderers[entry.type] = entry.renderer;
  return renderers;
}();
constexpr Renderer SHARED;

const Renderer& FindRenderer(K7NavType type) { return type < K7NAV_TYPE_COUNT ? RENDERERS[type] : SHARED; }

string_view Trimmed(string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void AddNote(k7xml::XmlSink& out, K7XmlText& text, const char* element, const char* label) {
  if (text.Size() > 0) out.Add(element, label, text.Text());
}

struct Service {
  string_view marker;
  const char* element;
  const char* label;
};
constexpr Service SERVICES[] = {{"CPDLC:", "CPDLCService", "CPDLC Service"},
                                {"VFR:", "VFRNote", "VFR Note"},
                                {"SATCOM:", "SATCOMService", "SATCOM Service"},
                                {"INMARSAT:", "INMARSATService", "INMARSAT Service"}};

// A marker takes all that is behind it, divided where it stands again: a marker that comes later in the list
// is looked for in what the earlier ones left.
void AddNotes(k7xml::XmlSink& out, K7XmlText& text, string_view notes) {
  string_view taken[std::size(SERVICES)];
  for (size_t i = 0; i < std::size(SERVICES); ++i) {
    const size_t at = notes.find(SERVICES[i].marker);
    if (at == notes.npos) continue;
    taken[i] = notes.substr(at);
    notes = notes.substr(0, at);
  }
  const auto put = [&text](string_view part) {
    part = Trimmed(part);
    if (part.empty()) return;
    if (text.Size() > 0) text.Append(" ", 1);
    text.Append(part.data(), part.size());
  };
  text.Clear();
  put(notes);
  AddNote(out, text, "OperationalNotes", "Operational Notes");
  for (size_t i = 0; i < std::size(SERVICES); ++i) {
    const string_view marker = SERVICES[i].marker;
    text.Clear();
    for (string_view rest = taken[i]; !rest.empty();) {
      rest.remove_prefix(marker.size());
      const size_t end = std::min(rest.find(marker), rest.size());
      put(rest.substr(0, end));
      rest.remove_prefix(end);
    }
    AddNote(out, text, SERVICES[i].element, SERVICES[i].label);
  }
}

// What all types have.
void AddShared(k7xml::XmlSink& out, K7XmlText& text, const K7NavRec& rec, K7XmlOutputType_t type) {
  if (type == K7XML_FULL) WriteKey(out, text, "NavKey", rec.key);
  out.Add("Type", "Type", K7NavData::TypeName(rec.Type()));
  if (const char* notes = rec.notes) AddNotes(out, text, notes);
}

bool Applies(When when, K7XmlOutputType_t type) {
  switch (when) {
    case When::FULL:
      return type == K7XML_FULL;
    case When::DISPLAY:
      return type == K7XML_DISPLAY;
    case When::NOT_DISPLAY:
      return type != K7XML_DISPLAY;
    default:
      return true;
  }
}

void AddRows(Rendering& r, Rows rows, const K7NavRec& rec) {
  const char* const base = reinterpret_cast<const char*>(&rec);
  for (const Row& row : rows) {
    if (!Applies(row.when, r.type)) continue;
    r.row = &row;
    r.text.Clear();
    if (row.form(r, base + row.at)) r.out.Add(row.element, row.label, r.text.Text());
  }
}

void AddRecord(Rendering& r, const Renderer& renderer, const K7NavRec& rec, const char* element) {
  r.out.Open(element);
  AddShared(r.out, r.text, rec, r.type);
  if (renderer.base) AddRows(r, *renderer.base, rec);
  if (renderer.rows) AddRows(r, *renderer.rows, rec);
  r.out.Close(element);
}

int Render(K7NavData* data, const Renderer& renderer, const K7NavRec& rec, K7XmlOutputType_t type,
           K7String& out) {
  k7xml::XmlDocument document;
  Rendering r{data, type, document};
  AddRecord(r, renderer, rec, "Record");
  return document.CopyTo(out, r.failed || r.text.Failed());
}

int WriteContent(const char* content, K7String& out) {
  if (out.Create(content) >= 0) return 0;
  out.Clear();
  return K7_ERR_MEMORY;
}

// A nested record's place in the document.
struct Piece {
  K7NavKey key;
  char ident[sizeof(K7NavFix::ident)];
  int at;
  int size;
};

int CompareIdents(const void* a, const void* b) {
  const Piece& x = *static_cast<const Piece*>(a);
  const Piece& y = *static_cast<const Piece*>(b);
  const int order = std::strncmp(x.ident, y.ident, sizeof x.ident);
  return order ? order : K7NavKey::Comp(&x.key, &y.key);
}

// Puts the pieces, which fill the document from the first one on, into their order.
void Arrange(Rendering& r, K7Array& pieces, Order order) {
  const int count = pieces.Count();
  if (order == Order::AS_FOUND || count < 2) return;
  const int start = static_cast<const Piece*>(pieces[0])->at;
  if (order == Order::BY_IDENT) {
    pieces.QuickSort(CompareIdents);
    pieces.RemoveAdjDups(CompareIdents);
  }
  K7XmlText arranged;
  for (int i = 0; i < pieces.Count(); ++i) {
    const Piece& piece = *static_cast<const Piece*>(pieces[order == Order::BACKWARD ? count - 1 - i : i]);
    arranged.Append(r.out.Text() + piece.at, static_cast<size_t>(piece.size));
  }
  r.failed |= arranged.Failed() || r.out.Failed();
  if (!r.failed) r.out.Replace(start, arranged);
}

}  // namespace

// Rendered as they come, since a stream's record lives until the next, and then put into their order.
void Nest(Rendering& r, K7NavQueryResult* query, const char* element, Order order) {
  const std::unique_ptr<K7NavQueryResult> found(query);
  if (!found) return;
  K7Array pieces(sizeof(Piece), 8);
  r.nests = false;
  while (const K7NavRec* rec = found->Next()) {
    Piece piece{rec->key, {}, r.out.Size(), 0};
    if (K7IsFix(rec->Type()))
      std::memcpy(piece.ident, static_cast<const K7NavFix*>(rec)->ident, sizeof piece.ident);
    AddRecord(r, FindRenderer(rec->Type()), *rec, element);
    piece.size = r.out.Size() - piece.at;
    r.failed |= (pieces += &piece) < 0;
    if (r.failed) break;
  }
  r.nests = true;
  if (!r.failed) Arrange(r, pieces, order);
}

}  // namespace k7nav

int K7NavRec::ToXML(K7NavData* data, K7XmlOutputType_t type, K7String& out) const {
  return k7nav::Render(data, k7nav::SHARED, *this, type, out);
}

int K7NavRec::ToXML(K7NavData*, K7XmlOutputType_t type, K7XmlElem& root) const {
  k7xml::XmlTree tree(root);
  K7XmlText text;
  k7nav::AddShared(tree, text, *this, type);
  return text.Failed() ? int{K7_ERR_MEMORY} : tree.Result();
}

int K7NavData::ToXML(K7NavRec* rec, K7XmlOutputType_t type, K7String& out) {
  if (!rec) return 0;
  if (rec->Type() == K7NAV_REGIONAL_NOTE) {
    const char* content = static_cast<const K7RegionalNote*>(rec)->content;
    return k7nav::WriteContent(type == K7XML_DOCUMENT ? content : "", out);
  }
  const k7nav::Renderer& renderer = k7nav::FindRenderer(rec->Type());
  const int err = k7nav::Render(this, renderer.isForNesting ? k7nav::SHARED : renderer, *rec, type, out);
  return renderer.isResultLost ? 0 : err;
}
