#include "store/columns.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

namespace {

// Types may share a display name, tables may not.
std::string TableName(K7NavType type) {
  const char* display = K7NavData::TypeName(type);
  std::string name = SnakeCase(display);
  for (uint32_t other = 0; other < K7NAV_TYPE_COUNT; other++) {
    if (other != type && std::strcmp(K7NavData::TypeName(static_cast<K7NavType>(other)), display) == 0)
      return name + "_" + std::to_string(type);
  }
  return name;
}

// One place one column: fields may lie over one another, and over the record's own key.
void AddFields(TypeTable& table) {
  for (int i = 0; i < K7NavData::GetFieldCount(table.type); i++) {
    K7NavFieldDataType kind;
    const char *name, *note;
    K7NavFieldLayout layout;
    K7NavData::GetFieldInfo(table.type, i, kind, name, note);
    K7NavData::GetFieldLayout(table.type, i, layout);
    bool known = layout.storage == K7STORE_ABSENT || layout.at < static_cast<int>(sizeof(K7NavRec));
    for (const Column& column : table.columns)
      known |= column.at == layout.at && column.storage == layout.storage;
    if (known) continue;
    table.columns.push_back({SnakeCase(name), layout.storage, static_cast<uint16_t>(layout.at),
                             static_cast<uint16_t>(layout.bits > 0 ? layout.bits / 8 : 0), layout.scale});
  }
}

void AddMembers(TypeTable& table) {
  for (const Member& member : MembersOf(table.type)) {
    const auto named = [&](const Column& column) { return column.name == member.name; };
    auto column = std::find_if(table.columns.begin(), table.columns.end(), named);
    if (column == table.columns.end()) column = table.columns.emplace(column);
    const bool same = column->at == member.at && column->storage == member.storage;
    if (!same) *column = {member.name, member.storage, member.at, member.width, 1.0};
  }
}

Place PlaceOf(const TypeTable& table) {
  if (table.type == K7NAV_MORA || table.type == K7NAV_TAILORED_MORA) return Place::CELL;
  if (table.Find("north")) return Place::AREA;
  if (table.Find("from_lat")) return Place::LINE;
  return table.Find("lat") || table.Find("ref_lat") ? Place::POINT : Place::NONE;
}

std::array<TypeTable, K7NAV_TYPE_COUNT + 1> MakeTables() {
  std::array<TypeTable, K7NAV_TYPE_COUNT + 1> tables;
  for (uint32_t i = 0; i < K7NAV_TYPE_COUNT; i++) {
    TypeTable& table = tables[i];
    table.type = static_cast<K7NavType>(i);
    table.prototype.reset(K7NavData::CreateRecord(table.type));
    if (!table.prototype) continue;
    table.name = TableName(table.type);
    table.bytes = static_cast<size_t>(K7NavData::GetRecSize(table.type));
    AddFields(table);
    AddMembers(table);
    table.place = PlaceOf(table);
  }
  return tables;
}

}  // namespace

const Column* TypeTable::Find(const std::string& column) const {
  for (const Column& found : columns) {
    if (found.name == column) return &found;
  }
  return nullptr;
}

std::string TypeTable::ColumnList() const {
  std::string list = "record_notes";
  for (const Column& column : columns) list += ",\"" + column.name + "\"";
  return list;
}

const TypeTable& TableOf(K7NavType type) {
  static const auto tables = MakeTables();
  return tables[std::min<uint32_t>(type, K7NAV_TYPE_COUNT)];
}

std::string SnakeCase(const char* name) {
  std::string snake;
  for (; *name; name++) {
    const auto letter = static_cast<unsigned char>(*name);
    snake += std::isalnum(letter) ? static_cast<char>(std::tolower(letter)) : '_';
  }
  return snake;
}
