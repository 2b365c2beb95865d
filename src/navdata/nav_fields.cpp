#include "navdata/field_table.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using k7nav::Field;

const Field* FindField(uint32_t type, int index) {
  const k7nav::Type* found = k7nav::FindType(type);
  return found && index >= 0 && index < found->fieldCount ? &found->fields[index] : nullptr;
}

template <class T>
T Load(const uint8_t* at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

template <class T>
void Store(uint8_t* at, const T& value) {
  std::memcpy(at, &value, sizeof value);
}

bool IsNumber(K7NavFieldStorage storage) {
  return storage == K7STORE_FIXED_DEGREES || (storage >= K7STORE_U8 && storage <= K7STORE_FLOAT);
}

// Whether a field's kind can be read from its storage.
bool IsReadable(const Field& field) {
  switch (field.kind) {
    case K7FIELD_CHAR:
      return field.storage == K7STORE_CHAR;
    case K7FIELD_STRING:
      return field.storage == K7STORE_TEXT || field.storage == K7STORE_ABSENT ||
             field.storage == K7STORE_POINTER;
    case K7FIELD_KEY:
      return field.storage == K7STORE_KEY;
    case K7FIELD_REAL:
      return IsNumber(field.storage);
    default:
      return IsNumber(field.storage) && field.storage != K7STORE_FIXED_DEGREES &&
             field.storage != K7STORE_FLOAT;
  }
}

// Every whole number that a record stores, of 32 bits at most.
int64_t LoadInteger(K7NavFieldStorage storage, const uint8_t* at) {
  switch (storage) {
    case K7STORE_U8:
      return *at;
    case K7STORE_U16:
      return Load<uint16_t>(at);
    case K7STORE_U32:
      return Load<uint32_t>(at);
    case K7STORE_I16:
      return Load<int16_t>(at);
    case K7STORE_ALT_VALUE:
      return Load<uint32_t>(at) & 0xFFFFFF;
    case K7STORE_ALT_FLAG:
      return Load<uint32_t>(at) >> 24;
    default:
      return Load<int32_t>(at);
  }
}

double LoadReal(const Field& field, const uint8_t* at) {
  double value;
  switch (field.storage) {
    case K7STORE_FIXED_DEGREES:
      value = K7NavData::FixPt2DecDeg(Load<int32_t>(at));
      break;
    case K7STORE_FLOAT:
      value = static_cast<double>(Load<float>(at));
      break;
    default:
      value = static_cast<double>(LoadInteger(field.storage, at));
  }
  return field.scale == 1.0 ? value : value * field.scale;
}

// The number, rounded, within [low, high]; 0 for not-a-number.
template <class T>
T Limited(double value, double low = std::numeric_limits<T>::min(),
          double high = std::numeric_limits<T>::max()) {
  return std::isnan(value) ? T(0) : static_cast<T>(std::clamp(std::nearbyint(value), low, high));
}

void StoreNumber(K7NavFieldStorage storage, uint8_t* at, double value) {
  switch (storage) {
    case K7STORE_FIXED_DEGREES:
      return Store<int32_t>(at, Limited<int32_t>(value * 8388608.0));
    case K7STORE_FLOAT:
      return Store<float>(at, static_cast<float>(value));
    case K7STORE_U8:
      return Store<uint8_t>(at, Limited<uint8_t>(value));
    case K7STORE_U16:
      return Store<uint16_t>(at, Limited<uint16_t>(value));
    case K7STORE_U32:
      return Store<uint32_t>(at, Limited<uint32_t>(value));
    case K7STORE_I16:
      return Store<int16_t>(at, Limited<int16_t>(value));
    case K7STORE_ALT_VALUE:
      return Store<uint32_t>(at, (Load<uint32_t>(at) & 0xFF000000) | Limited<uint32_t>(value, 0, 0xFFFFFF));
    case K7STORE_ALT_FLAG:
      return Store<uint32_t>(at, (Load<uint32_t>(at) & 0xFFFFFF) | Limited<uint32_t>(value, 0, 0xFF) << 24);
    default:
      return Store<int32_t>(at, Limited<int32_t>(value));
  }
}

// A text in the record: cut to its room, the rest cleared. The byte behind a text of full length is the next
// field's, or the NUL that a cleared record has there.
void StoreText(const Field& field, uint8_t* at, const char* text) {
  const size_t room = static_cast<size_t>(field.bits) / 8;
  const size_t length = text ? strnlen(text, room) : 0;
  if (length) std::memcpy(at, text, length);
  std::memset(at + length, 0, room - length);
}

}  // namespace

int K7NavData::GetFieldCount(K7NavType type) {
  const k7nav::Type* found = k7nav::FindType(type);
  return found ? found->fieldCount : 0;
}

bool K7NavData::GetFieldInfo(K7NavType type, int index, K7NavFieldDataType& kind, const char*& name,
                             const char*& note) {
  const Field* field = FindField(type, index);
  if (!field) return false;
  kind = field->kind;
  name = field->name;
  note = field->note;
  return true;
}

bool K7NavData::GetFieldLayout(K7NavType type, int index, K7NavFieldLayout& layout) {
  const Field* field = FindField(type, index);
  if (field) layout = {field->storage, field->at, field->bits, field->scale};
  return field;
}

int K7NavData::GetFieldIndex(K7NavType type, const char* name) {
  if (!name) name = "";
  for (int i = 0; const Field* field = FindField(type, i); i++) {
    if (std::strcmp(field->name, name) == 0) return i;
  }
  return -1;
}

bool K7NavData::GetField(const K7NavRec* rec, int index, K7NavField* out) {
  const Field* field = rec && out ? FindField(rec->Type(), index) : nullptr;
  if (!field) return false;
  std::memset(static_cast<void*>(out), 0, sizeof *out);
  if (!IsReadable(*field)) return false;
  const uint8_t* at = reinterpret_cast<const uint8_t*>(rec) + field->at;
  switch (field->kind) {
    case K7FIELD_CHAR:
      out->c = static_cast<char>(*at);
      break;
    case K7FIELD_STRING:
      if (field->storage == K7STORE_TEXT) out->str = reinterpret_cast<const char*>(at);
      if (field->storage == K7STORE_POINTER) out->str = Load<const char*>(at);
      break;
    case K7FIELD_KEY:
      out->key = Load<K7NavKey>(at);
      break;
    case K7FIELD_REAL:
      out->d = LoadReal(*field, at);
      break;
    default: {
      int64_t value = LoadInteger(field->storage, at);
      if (field->scale != 1.0) value = static_cast<int64_t>(static_cast<double>(value) * field->scale);
      out->u = static_cast<uint32_t>(value);
    }
  }
  return true;
}

bool K7NavData::SetField(K7NavRec* rec, int index, const K7NavField& value) {
  const Field* field = rec ? FindField(rec->Type(), index) : nullptr;
  if (!field || !IsReadable(*field)) return false;
  uint8_t* at = reinterpret_cast<uint8_t*>(rec) + field->at;
  switch (field->kind) {
    case K7FIELD_CHAR:
      *at = static_cast<uint8_t>(value.c);
      break;
    case K7FIELD_STRING:
      if (field->storage == K7STORE_TEXT) StoreText(*field, at, value.str);
      if (field->storage == K7STORE_POINTER) Store(at, value.str);
      break;
    case K7FIELD_KEY:
      Store(at, value.key);
      break;
    case K7FIELD_REAL:
      StoreNumber(field->storage, at, value.d / field->scale);
      break;
    case K7FIELD_UNSIGNED:
      StoreNumber(field->storage, at, value.u / field->scale);
      break;
    default:
      StoreNumber(field->storage, at, value.i / field->scale);
  }
  return true;
}

int K7NavData::DecDeg2FixPt(double degrees) {
  const double units = degrees * 8388608.0;
  if (std::isnan(units)) return 0;
  return static_cast<int>(std::clamp(units, -2147483648.0, 2147483647.0));
}
