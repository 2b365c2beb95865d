#include <k7/geometry/shp_dbf.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include "io/read.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr int HEADER_SIZE = 32;
constexpr int DESC_SIZE = 32;
constexpr char TERMINATOR = 0x0D;
constexpr int MAX_FIELDS = (UINT16_MAX - HEADER_SIZE - 1) / DESC_SIZE;

bool IsText(const K7DbfFieldDesc& field) { return field.type == 'C'; }

// A descriptor's name with a terminator.
struct FieldName {
  explicit FieldName(const K7DbfFieldDesc& field) { std::memcpy(text, field.name, sizeof field.name); }
  char text[sizeof K7DbfFieldDesc::name + 1] = {};
};

// The descriptors in front of the terminator, or a code.
int CountFields(K7File* file) {
  char raw[DESC_SIZE] = {};
  for (int count = 0; count <= MAX_FIELDS; ++count) {
    const int n = file->Read(raw, DESC_SIZE);
    if (n > 0 && raw[0] == TERMINATOR) return count;  // nothing need stand behind it
    if (n != DESC_SIZE) return K7_ERR_FILE_IO;
  }
  return K7_ERR_FILE_IO;
}

bool ReadField(K7File* file, K7DbfFieldDesc& field) {
  char raw[DESC_SIZE];
  if (k7read::Exact(file, raw, DESC_SIZE) != 0) return false;
  k7read::Cursor cursor(raw, DESC_SIZE);
  uint8_t length, decimals;
  cursor.Little(field.name);
  cursor.Little(field.type);
  cursor.Skip(sizeof(int32_t));  // an address in the memory of the writer
  cursor.Little(length);
  cursor.Little(decimals);
  field.length = length;
  field.decimals = decimals;
  return cursor.IsWhole();
}

// Length of the text in a field: up to a NUL, trailing blanks removed.
size_t TextLength(const char* text, size_t n) {
  constexpr char BLANKS[] = "        ";
  while (n >= 8 && std::memcmp(text + n - 8, BLANKS, 8) == 0) n -= 8;
  while (n > 0 && text[n - 1] == ' ') --n;
  const void* const nul = std::memchr(text, 0, n);
  if (!nul) return n;
  for (n = static_cast<size_t>(static_cast<const char*>(nul) - text); n > 0 && text[n - 1] == ' ';) --n;
  return n;
}

// from_chars takes neither blanks nor a plus sign.
const char* NumberStart(const char* p, const char* end) {
  while (p < end && K7String::IsSpace(*p)) ++p;
  return p + 1 < end && *p == '+' && p[1] != '-' ? p + 1 : p;
}

double ToDouble(const char* text, const char* end) {
  const char* const start = NumberStart(text, end);
  double value = 0;
  const auto [last, err] = std::from_chars(start, end, value);
  if (err != std::errc::result_out_of_range) return value;
  // The digits of a field do not leave the range of a double by themselves: an exponent says which way.
  const bool tiny = std::adjacent_find(start, last, [](char e, char sign) {
                      return (e == 'e' || e == 'E') && sign == '-';
                    }) != last;
  const double limit = tiny ? 0 : std::numeric_limits<double>::infinity();
  return *start == '-' ? -limit : limit;
}

int32_t ToInteger(const char* text, const char* end) {
  const char* const start = NumberStart(text, end);
  int32_t value = 0;
  if (std::from_chars(start, end, value).ec == std::errc::result_out_of_range)
    value = *start == '-' ? INT32_MIN : INT32_MAX;
  return value;
}

// Slots for a record's fields and behind them their texts, in one block. Null without memory.
K7DbfField* Convert(const K7DbfFileHdr& hdr, char* data) {
  // First the texts are ended in place, so that the block's size is known; a text that fills its field ends
  // with it.
  size_t size = static_cast<size_t>(hdr.fieldCount) * sizeof(K7DbfField);
  char* p = data;
  for (const K7DbfFieldDesc* field = hdr.fields; field != hdr.fields + hdr.fieldCount; p += field++->length) {
    if (!IsText(*field)) continue;
    const size_t length = TextLength(p, field->length);
    if (length < field->length) p[length] = 0;
    size += length + 1;
  }

  K7DbfField* const slots = static_cast<K7DbfField*>(std::malloc(std::max(size, sizeof(K7DbfField))));
  if (!slots) return nullptr;
  K7DbfField* slot = slots;
  char* text = reinterpret_cast<char*>(slots + hdr.fieldCount);
  p = data;
  for (const K7DbfFieldDesc* field = hdr.fields; field != hdr.fields + hdr.fieldCount; ++field, ++slot) {
    char* const end = p + field->length;
    if (IsText(*field)) {
      slot->text = text;
      text = std::copy(p, std::find(p, end, '\0'), text);
      *text++ = 0;
    } else if (field->decimals > 0) {
      slot->number = ToDouble(p, end);
    } else {
      slot->integer = ToInteger(p, end);
    }
    p = end;
  }
  return slots;
}

}  // namespace

K7DbfFileHdr::~K7DbfFileHdr() { std::free(fields); }

void K7DbfFileHdr::Clear() {
  std::free(fields);
  fields = nullptr;
  fieldCount = dataLength = recordCount = 0;
}

int K7DbfFileHdr::Read(K7File* file) {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  Clear();
  const int err = ReadFixed(file) ? ReadFields(file) : K7_ERR_FILE_IO;
  if (err) Clear();
  return err;
}

bool K7DbfFileHdr::ReadFixed(K7File* file) {
  char raw[HEADER_SIZE];
  if (!file->Seek(0) || k7read::Exact(file, raw, HEADER_SIZE) != 0) return false;
  k7read::Cursor cursor(raw, HEADER_SIZE);
  cursor.Little(version);
  cursor.Little(lastUpdate);
  cursor.Little(recordCount);
  cursor.Little(headerLength);
  cursor.Little(recordLength);
  cursor.Little(reserved1);
  cursor.Little(incompleteTransaction);
  cursor.Little(encrypted);
  cursor.Little(reserved2);
  cursor.Little(productionIndex);
  cursor.Little(languageDriver);
  cursor.Little(reserved3);
  return cursor.IsWhole();
}

int K7DbfFileHdr::ReadFields(K7File* file) {
  const int count = CountFields(file);
  if (count < 0) return count;
  if (count > 0) {
    fields = static_cast<K7DbfFieldDesc*>(std::malloc(static_cast<size_t>(count) * sizeof(K7DbfFieldDesc)));
    if (!fields) return K7_ERR_MEMORY;
  }
  if (!file->Seek(HEADER_SIZE)) return K7_ERR_FILE_IO;
  for (; fieldCount < count; ++fieldCount) {
    if (!ReadField(file, fields[fieldCount])) return K7_ERR_FILE_IO;
    dataLength += fields[fieldCount].length;
  }
  // A slot takes memory even for a field without bytes: a table of such fields would swell without bound.
  if (count > dataLength + 1) return K7_ERR_FILE_IO;
  char terminator = 0;
  return k7read::Exact(file, &terminator, 1) == 0 ? 0 : K7_ERR_FILE_IO;
}

int K7DbfFileHdr::ReadAttrs(K7File* file, K7DbfField** attrs) const {
  if (!file || !attrs) return K7_ERR_BAD_ARGUMENT;
  *attrs = nullptr;
  char local[4096];
  const int size = dataLength + 1;
  char* const record =
      size <= int{sizeof local} ? local : static_cast<char*>(std::malloc(static_cast<size_t>(size)));
  if (!record) return K7_ERR_MEMORY;
  int err = K7_ERR_FILE_IO;
  if (k7read::Exact(file, record, size) == 0) {
    *attrs = Convert(*this, record + 1);
    err = *attrs ? 0 : K7_ERR_MEMORY;
  }
  if (record != local) std::free(record);
  return err;
}

void K7DbfFileHdr::ReleaseAttrs(K7DbfField* attrs) { std::free(attrs); }

int K7DbfFileHdr::FindField(const char* name) const {
  if (!name) return -1;
  for (int i = 0; i < fieldCount; ++i)
    if (K7String::IComp(FieldName(fields[i]).text, name) == 0) return i;
  return -1;
}

void K7DbfFileHdr::Print() const {
  std::fputs(
      K7FmtString("dBASE version %d, %02d-%02d-%02d, %d records of %d bytes behind %d, %d fields\n", version,
                  lastUpdate[0] % 100, lastUpdate[1], lastUpdate[2], static_cast<int>(recordCount),
                  recordLength, headerLength, static_cast<int>(fieldCount)),
      stdout);
  for (int i = 0; i < fieldCount; ++i)
    std::fputs(K7FmtString("  %s %c %d.%d\n", FieldName(fields[i]).text, fields[i].type, fields[i].length,
                           fields[i].decimals),
               stdout);
}

void K7DbfFileHdr::PrintAttrs(const K7DbfField* attrs) const {
  for (int i = 0; attrs && i < fieldCount; ++i) {
    const FieldName name(fields[i]);
    K7String value;
    if (IsText(fields[i]))
      value = attrs[i].text;
    else if (fields[i].decimals > 0)
      value.Format("%.15g", attrs[i].number);
    else
      value.Format("%d", static_cast<int>(attrs[i].integer));
    std::fputs(K7FmtString("  %s: %s\n", name.text, static_cast<const char*>(value)), stdout);
  }
}
