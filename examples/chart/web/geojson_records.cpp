#include "layers/airspace_outline.h"
#include "store/text_1252.h"
#include "web/geojson_features.h"
#include "web/geojson_geometry.h"

#include <k7/foundation/string.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>

namespace {

constexpr double CHORD_NM = 30;  // of a great circle: off it by less than the width of a drawn line
constexpr int FIELD_DECIMALS = 6;

K7LatLon Place(int32_t lat, int32_t lon) {
  return {K7NavData::FixPt2DecDeg(lat), K7NavData::FixPt2DecDeg(lon)};
}

bool IsAirway(K7NavType type) {
  return type == K7NAV_HIGH_AIRWAY || type == K7NAV_LOW_AIRWAY || type == K7NAV_HIGH_TACAN_AIRWAY ||
         type == K7NAV_LOW_TACAN_AIRWAY;
}

bool IsAirspace(K7NavType type) {
  return type == K7NAV_CTRL_AIRSPACE || type == K7NAV_SPECIAL_USE_AIRSPACE || type == K7NAV_FIR_SECTOR ||
         type == K7NAV_COMM_SECTOR || type == K7NAV_FIR || type == K7NAV_TAILORED_BOUNDARY ||
         type == K7NAV_ETOPS;
}

bool HasPosition(K7NavType type) {
  return K7IsFix(type) ||
         (K7NavData::GetFieldIndex(type, "Lat") >= 0 && K7NavData::GetFieldIndex(type, "Lon") >= 0);
}

std::vector<K7LatLon> GreatCircle(const K7LatLon& from, const K7LatLon& to) {
  const double distance = from.Distance(to), course = from.InitCourse(to);
  const int chords = course < 0 ? 1 : std::max(1, static_cast<int>(std::ceil(distance / CHORD_NM)));
  std::vector<K7LatLon> points = {from};
  for (int i = 1; i < chords; ++i) {
    points.emplace_back();
    points.back().EndPoint(from, course, distance * i / chords);
  }
  points.push_back(to);
  return points;
}

void AddAirspace(JsonWriter& json, K7NavData& store, const K7NavKey& key) {
  std::vector<K7AirspaceSeg> pieces;
  const std::unique_ptr<K7NavQueryResult> result(store.AirspaceSegments(key));
  while (const K7NavRec* const piece = result ? result->Next() : nullptr)
    pieces.push_back(static_cast<const K7AirspaceSeg&>(*piece));
  WriteArea(json, {AirspaceOutline(pieces)});
}

void AddPoint(JsonWriter& json, const K7NavRec& rec) {
  if (K7IsFix(rec.Type())) {
    const auto& fix = static_cast<const K7NavFix&>(rec);
    return WritePoints(json, {Place(fix.lat, fix.lon)});
  }
  K7NavField lat, lon;
  K7NavData::GetField(&rec, K7NavData::GetFieldIndex(rec.Type(), "Lat"), &lat);
  K7NavData::GetField(&rec, K7NavData::GetFieldIndex(rec.Type(), "Lon"), &lon);
  WritePoints(json, {K7LatLon(lat.d, lon.d)});
}

void AddGeometry(JsonWriter& json, K7NavData& store, const K7NavRec& rec) {
  if (IsAirspace(rec.Type())) return AddAirspace(json, store, rec.key);
  if (!IsAirway(rec.Type())) return AddPoint(json, rec);
  const auto& leg = static_cast<const K7AirwaySeg&>(rec);
  WriteLines(json, {GreatCircle(Place(leg.fromLat, leg.fromLon), Place(leg.toLat, leg.toLon))});
}

// The text of an altitude, which numbers and flags do not tell alone: "FL180", "GND".
std::string AltitudeOf(const K7NavRec& rec, int index, const std::string& name) {
  K7NavField value, flags;
  K7NavData::GetField(&rec, index, &value);
  K7NavData::GetField(&rec, K7NavData::GetFieldIndex(rec.Type(), (name + " Flag").c_str()), &flags);
  return std::string(K7Alt(static_cast<uint32_t>(value.i), flags.u).GetAltString());
}

std::string TextOf(const K7NavField& field, K7NavFieldDataType kind) {
  if (kind == K7FIELD_STRING) return field.str ? field.str : "";
  return field.c ? std::string(1, field.c) : std::string();
}

bool IsUnknown(const K7NavField& field, const char* name) {
  return (std::strcmp(name, "Elev") == 0 && field.i < K7NavFix::LOWEST_ELEV) ||
         (std::strcmp(name, "Mag Var") == 0 && field.d >= K7NavFix::TRUE_NORTH * 0.1);
}

// What says nothing is left out, and keys, which mean something to the store only; what is a position is the
// geometry's.
void AddField(JsonWriter& json, const K7NavRec& rec, int index) {
  K7NavFieldDataType kind;
  const char *name, *note;
  K7NavField field;
  K7NavFieldLayout layout;
  const K7NavType type = rec.Type();
  if (!K7NavData::GetFieldInfo(type, index, kind, name, note) ||
      !K7NavData::GetFieldLayout(type, index, layout) || !K7NavData::GetField(&rec, index, &field) ||
      K7NavData::GetFieldIndex(type, name) != index || kind == K7FIELD_KEY ||
      layout.storage == K7STORE_FIXED_DEGREES || layout.storage == K7STORE_ALT_FLAG || IsUnknown(field, name))
    return;
  const bool isAltitude = layout.storage == K7STORE_ALT_VALUE;
  if (isAltitude || kind == K7FIELD_STRING || kind == K7FIELD_CHAR) {
    const std::string text = isAltitude ? AltitudeOf(rec, index, name) : TextOf(field, kind);
    if (!text.empty() && text != " ") json.Key(name).Text(Utf8Of1252(text));
  } else if (kind == K7FIELD_REAL) {
    json.Key(name).Number(field.d, FIELD_DECIMALS);
  } else {
    json.Key(name).Integer(kind == K7FIELD_INTEGER ? int64_t{field.i} : int64_t{field.u});
  }
}

void AddProperties(JsonWriter& json, K7NavData& store, const K7NavRec& rec) {
  json.Begin('{').Key("record").Text(K7NavData::TypeName(rec.Type()));
  K7String description;
  if (store.GetDescriptionByKey(rec.key, description) == 0 && !description.IsEmpty())
    json.Key("description").Text(Utf8Of1252(static_cast<const char*>(description)));
  if (K7NavData::GetFieldCount(rec.Type()) == 0 && K7IsFix(rec.Type()))
    json.Key("Ident").Text(Utf8Of1252(static_cast<const K7NavFix&>(rec).ident));
  for (int i = 0; i < K7NavData::GetFieldCount(rec.Type()); ++i) AddField(json, rec, i);
  json.End('}');
}

}  // namespace

std::string GeoTypeName(K7NavType type) {
  if (!IsAirway(type) && !IsAirspace(type) && !HasPosition(type)) return {};
  std::string name = K7NavData::TypeName(type);
  if (name == "Unknown") return {};
  for (char& c : name)
    c = std::isalnum(static_cast<unsigned char>(c))
            ? static_cast<char>(std::tolower(static_cast<unsigned char>(c)))
            : '-';
  return name;
}

bool FeatureWriter::AddRecords(K7NavData& store, K7NavType type, const K7ChartRect& area) {
  const std::unique_ptr<K7NavQueryResult> result(store.AreaQuery(type, area));
  while (const K7NavRec* const rec = result ? result->Next() : nullptr) {
    if (!HasRoom()) return false;
    const std::string id = GeoTypeName(type) + "/" + std::to_string(rec->key.Idx());
    m_json.Begin('{').Key("type").Text("Feature").Key("id").Text(id).Key("geometry");
    AddGeometry(m_json, store, *rec);
    m_json.Key("properties");
    AddProperties(m_json, store, *rec);
    m_json.End('}');
    ++m_count;
  }
  return true;
}
