// The engine that renders records, and the table of renderers.

#include "navdata/nav_xml.h"

#include "navdata/nav_xml_forms.h"

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/navdata/note.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

namespace k7nav {
namespace {

using std::string_view;

constexpr bool FIX = true, LOST = true, NESTED = true;

// By type.
constexpr Renderer RENDERERS[] = {
    {&rows::VOR, FIX},
    {&rows::NDB, FIX},
    {&rows::NDB, FIX},
    {&rows::WAYPOINT, FIX},
    {&rows::WAYPOINT, FIX},
    {&rows::AIRPORT, FIX},
    {&rows::RUNWAY, FIX},
    {&rows::LOCALIZER, FIX},
    {&rows::MARKER, FIX},
    {&rows::AIRWAY_SEG},
    {&rows::AIRWAY_SEG},
    {&rows::AIRPORT_COMM},
    {&rows::ENROUTE_COMM},
    {&rows::CTRL_AIRSPACE},
    {&rows::SPECIAL_USE},
    {&rows::FIR},
    {&rows::FIR},
    {&rows::HOLDING},
    {&rows::MORA},
    {},
    {&rows::LOW_USE_AIRPORT, FIX},
    {&rows::FORMATION},
    {&rows::OBSTACLE},
    {&rows::OBSTACLE},
    {&rows::LEG},
    {&rows::LEG},
    {&rows::LEG},
    {&rows::AIRSPACE_SEG},
    {&rows::RESTRICTION},
    {&rows::AIRWAY_HEADER},
    {&rows::MIN_CROSSING},
    {},
    {},
    {},
    {},
    {},
    {},
    {},  // regional notes are no XML
    {},
    {&rows::TRANSIT_ROUTE},
    {},
    {&rows::SPECIAL_ACTIVITY},
    {&rows::COMPANY_AIRPORT, false, LOST},
    {},
    {&rows::FLEET_AIRPORT, false, LOST},
    {&rows::ENDPOINT, false, LOST},
    {&rows::SHORELINE, false, LOST},
    {},
    {&rows::BOUNDARY, false, LOST},
    {&rows::MORA, false, LOST},
    {&rows::ETOPS, false, LOST},
    {&rows::COMPANY_COMM, false, LOST},
    {&rows::AIRWAY_SEG},
    {&rows::AIRWAY_SEG},
    {&rows::OBSTACLE},
    {&rows::OBSTACLE},
    {&rows::OBSTACLE},
    {&rows::FIR},
    {},
    {},
    {},
    {},
    {},
    {},
    {},
    {},
    {},
    {},
    {&rows::SMART_NOTE, false, LOST},
    {&rows::NOTE_LINK, false, false, NESTED},
    {&rows::NOTE_COMM, false, false, NESTED},
    {&rows::NOTE_ALTITUDE, false, false, NESTED},
    {},
    {},
};
static_assert(std::size(RENDERERS) == K7NAV_TYPE_COUNT);
constexpr Renderer SHARED;

const Renderer& FindRenderer(K7NavType type) { return type < K7NAV_TYPE_COUNT ? RENDERERS[type] : SHARED; }

string_view Trimmed(string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void AddNote(XmlSink& out, K7XmlText& text, const char* element, const char* label) {
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
void AddNotes(XmlSink& out, K7XmlText& text, string_view notes) {
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
void AddShared(XmlSink& out, K7XmlText& text, const K7NavRec& rec, K7XmlOutputType_t type) {
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
  if (renderer.isFix) AddRows(r, rows::FIX, rec);
  if (renderer.rows) AddRows(r, *renderer.rows, rec);
  r.out.Close(element);
}

int Render(K7NavData* data, const Renderer& renderer, const K7NavRec& rec, K7XmlOutputType_t type,
           K7String& out) {
  XmlDocument document;
  Rendering r{data, type, document};
  AddRecord(r, renderer, rec, "Record");
  const bool failed = r.failed || r.text.Failed() || document.Failed();
  if (!failed && out.Copy(document.Text(), document.Size()) >= 0) return 0;
  out.Clear();
  return K7_ERR_MEMORY;
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
  k7nav::XmlTree tree(root);
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
