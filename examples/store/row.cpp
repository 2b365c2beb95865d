#include "store/row.h"

#include <k7/navdata/airway.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "store/text_1252.h"

namespace {

/// Whole numbers in a record: where they begin, their bytes, and what they hold.
struct Range {
  size_t offset;
  size_t bytes;
  double low;
  double high;
};
Range RangeOf(K7NavFieldStorage storage) {
  switch (storage) {
    case K7STORE_U8:
      return {0, 1, 0, 255};
    case K7STORE_U16:
      return {0, 2, 0, 65535};
    case K7STORE_U32:
      return {0, 4, 0, 4294967295.0};
    case K7STORE_I16:
      return {0, 2, -32768, 32767};
    case K7STORE_ALT_VALUE:
      return {0, 3, 0, 0xFFFFFF};
    case K7STORE_ALT_FLAG:
      return {3, 1, 0, 255};
    default:
      return {0, 4, -2147483648.0, 2147483647.0};
  }
}

// Stored numbers to what people read, where the two differ.
double ScaleOf(const Column& column) {
  return column.storage == K7STORE_FIXED_DEGREES ? 1.0 / 8388608.0 : column.scale;
}

int64_t LoadInteger(const Column& column, const char* at) {
  const Range range = RangeOf(column.storage);
  uint32_t bits = 0;
  std::memcpy(&bits, at + range.offset, range.bytes);
  if (range.low >= 0) return bits;
  return range.bytes == 2 ? static_cast<int16_t>(bits) : static_cast<int32_t>(bits);
}

void StoreInteger(const Column& column, double value, char* at) {
  const Range range = RangeOf(column.storage);
  if (std::isnan(value)) value = 0;
  const auto whole = static_cast<int64_t>(std::clamp(std::nearbyint(value), range.low, range.high));
  std::memcpy(at + range.offset, &whole, range.bytes);
}

int BindText(sqlite3_stmt* statement, int parameter, std::string_view text) {
  const bool ascii = IsAscii(text);
  const std::string utf8 = ascii ? std::string() : Utf8Of1252(text);
  const std::string_view bound = ascii ? text : utf8;
  return sqlite3_bind_text(statement, parameter, bound.data(), static_cast<int>(bound.size()),
                           ascii ? SQLITE_STATIC : SQLITE_TRANSIENT);
}

int BindColumn(const Column& column, const char* at, sqlite3_stmt* statement, int parameter) {
  switch (static_cast<int>(column.storage)) {
    case K7STORE_CHAR:
      return *at ? BindText(statement, parameter, {at, 1}) : sqlite3_bind_null(statement, parameter);
    case K7STORE_TEXT: {
      const size_t length = strnlen(at, column.width);
      return length ? BindText(statement, parameter, {at, length}) : sqlite3_bind_null(statement, parameter);
    }
    case K7STORE_POINTER: {
      const char* text;
      std::memcpy(&text, at, sizeof text);
      return text ? BindText(statement, parameter, text) : sqlite3_bind_null(statement, parameter);
    }
    case K7STORE_KEY: {
      K7NavKey key;
      std::memcpy(static_cast<void*>(&key), at, sizeof key);
      return key.NoRecord() ? sqlite3_bind_null(statement, parameter)
                            : sqlite3_bind_int64(statement, parameter, KeyNumber(key));
    }
    case K7STORE_FLOAT: {
      float value;
      std::memcpy(&value, at, sizeof value);
      return sqlite3_bind_double(statement, parameter, static_cast<double>(value));
    }
    case K7STORE_BYTES:
      return sqlite3_bind_blob(statement, parameter, at, column.width, SQLITE_STATIC);
    default: {
      const int64_t value = LoadInteger(column, at);
      const double scale = ScaleOf(column);
      return scale == 1.0 ? sqlite3_bind_int64(statement, parameter, value)
                          : sqlite3_bind_double(statement, parameter, static_cast<double>(value) * scale);
    }
  }
}

// The text of a column in the arena; null for anything else.
const char* ReadText(sqlite3_stmt* row, int number, Arena& arena) {
  if (sqlite3_column_type(row, number) != SQLITE_TEXT) return nullptr;
  const auto* utf8 = reinterpret_cast<const char*>(sqlite3_column_text(row, number));
  if (!utf8) return nullptr;
  const auto bytes = static_cast<size_t>(sqlite3_column_bytes(row, number));
  char* text = arena.Take(bytes + 1);
  text[Write1252({utf8, bytes}, text)] = 0;
  return text;
}

void ReadNumber(const Column& column, sqlite3_stmt* row, int number, char* at) {
  const int type = sqlite3_column_type(row, number);
  if (type != SQLITE_INTEGER && type != SQLITE_FLOAT) return;
  const double value = sqlite3_column_double(row, number);
  if (column.storage == K7STORE_FLOAT) {
    constexpr double LARGEST = std::numeric_limits<float>::max();
    const auto real = static_cast<float>(std::clamp(value, -LARGEST, LARGEST));
    std::memcpy(at, &real, sizeof real);
  } else {
    StoreInteger(column, value / ScaleOf(column), at);
  }
}

void ReadColumn(const Column& column, sqlite3_stmt* row, int number, Arena& arena, char* at) {
  switch (static_cast<int>(column.storage)) {
    case K7STORE_CHAR:
    case K7STORE_TEXT: {
      const char* text = ReadText(row, number, arena);
      const size_t room = column.storage == K7STORE_CHAR ? 1 : column.width;
      std::memset(at, 0, room);
      if (text) std::memcpy(at, text, strnlen(text, room));
      return;
    }
    case K7STORE_POINTER: {
      const char* text = ReadText(row, number, arena);
      std::memcpy(at, &text, sizeof text);
      return;
    }
    case K7STORE_KEY:
      if (sqlite3_column_type(row, number) == SQLITE_INTEGER) {
        const K7NavKey key = KeyOf(sqlite3_column_int64(row, number));
        std::memcpy(at, &key, sizeof key);
      }
      return;
    case K7STORE_BYTES:
      if (sqlite3_column_type(row, number) == SQLITE_BLOB &&
          sqlite3_column_bytes(row, number) == column.width)
        std::memcpy(at, sqlite3_column_blob(row, number), column.width);
      return;
    default:
      ReadNumber(column, row, number, at);
  }
}

}  // namespace

int64_t KeyNumber(const K7NavKey& key) {
  return static_cast<int64_t>(static_cast<uint64_t>(key.NavType()) << 32 | key.Idx());
}

K7NavKey KeyOf(int64_t number) {
  const auto words = static_cast<uint64_t>(number);
  return {static_cast<uint32_t>(words), static_cast<K7NavType>(words >> 32)};
}

bool BindRow(const TypeTable& table, const K7NavRec& rec, sqlite3_stmt* statement, int first) {
  const char* notes = rec.notes;
  int state = notes ? BindText(statement, first, notes) : sqlite3_bind_null(statement, first);
  const char* bytes = reinterpret_cast<const char*>(&rec);
  for (const Column& column : table.columns) {
    if (state == SQLITE_OK) state = BindColumn(column, bytes + column.at, statement, ++first);
  }
  return state == SQLITE_OK;
}

K7NavRec* ReadRow(const TypeTable& table, uint32_t idx, sqlite3_stmt* row, int first, Arena& arena) {
  char* bytes = arena.Take(table.bytes);
  std::memcpy(bytes, static_cast<const void*>(table.prototype.get()), table.bytes);
  auto* rec = reinterpret_cast<K7NavRec*>(bytes);
  rec->key = K7NavKey(idx, table.type);
  rec->notes = ReadText(row, first, arena);
  for (const Column& column : table.columns) ReadColumn(column, row, ++first, arena, bytes + column.at);
  if (table.type == K7NAV_CRUISE_TABLE) {
    constexpr int16_t NONE = 0, ALL = K7CruiseTable::MAX_LEVELS;
    auto* cruise = static_cast<K7CruiseTable*>(rec);
    cruise->englishCount = std::clamp(cruise->englishCount, NONE, ALL);
    cruise->metricCount = std::clamp(cruise->metricCount, NONE, ALL);
  }
  return rec;
}
