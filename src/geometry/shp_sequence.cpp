// The records of a set: one behind the other as a rule, by the index where that fails.

#include <k7/foundation/error_string.h>
#include <k7/geometry/shp_file.h>

#include "io/read.h"

#include <algorithm>
#include <new>

namespace {

constexpr int INDEX_HEADER_SIZE = 100;
constexpr int RECORD_HEADER_SIZE = 8;
constexpr int SHAPE_TYPE_SIZE = 4;
constexpr int FIRST_RESERVE = 1024;

// Where the index has a record, both in bytes, and how long the record's content is.
struct Entry {
  int64_t offset = 0;
  int64_t length = 0;
};

bool ReadEntry(K7File* index, int i, Entry& entry) {
  char raw[8];
  const int64_t pos = INDEX_HEADER_SIZE + int64_t{i} * int64_t{sizeof raw};
  if (pos > INT32_MAX || !index->Seek(static_cast<int>(pos)) || k7read::Exact(index, raw, sizeof raw) != 0)
    return false;
  k7read::Cursor cursor(raw, sizeof raw);
  int32_t offset, length;
  cursor.Big(offset);
  cursor.Big(length);
  entry = {int64_t{offset} * 2, int64_t{length} * 2};
  return true;
}

// The length that a record's header states, in bytes; negative when the file ends within header or content.
int64_t ContentLength(K7File* mainFile, int64_t pos, int64_t end) {
  char raw[RECORD_HEADER_SIZE];
  if (pos < 0 || pos + RECORD_HEADER_SIZE > end || pos > INT32_MAX) return -1;
  if (!mainFile->Seek(static_cast<int>(pos)) || k7read::Exact(mainFile, raw, sizeof raw) != 0) return -1;
  k7read::Cursor cursor(raw, sizeof raw);
  int32_t number, words;
  cursor.Big(number);
  cursor.Big(words);
  const int64_t length = int64_t{words} * 2;
  return pos + RECORD_HEADER_SIZE + length <= end ? length : -1;
}

// 0 for a file that cannot tell.
int64_t SizeOf(K7File* file) { return file->Seek(0) ? std::max<int64_t>(k7read::BytesLeft(file), 0) : 0; }

}  // namespace

int K7ShpFile::ReadRecords() {
  const int firstRow = m_attrFile->Tell();
  int err = ReadInSequence();
  if (err == K7_ERR_MEMORY) return err;
  const bool goesOn = err == 0 && MainGoesOn();
  // A derived reader that stops the sequence finds no file bad.
  if ((goesOn || m_badFile == K7_SHP_MAIN_FILE) && IndexLeads()) {
    m_badFile = K7_SHP_NO_FILE;
    m_records.FreeElems();
    err = ReadByIndex(firstRow);
  } else if (goesOn || (err == K7_ERR_OUT_OF_RANGE && TableIsShort())) {
    m_badFile = K7_SHP_ATTR_FILE;
    err = K7_ERR_OUT_OF_RANGE;
  }
  return err == 0 && m_badFile != K7_SHP_NO_FILE ? int{K7_ERR_OUT_OF_RANGE} : err;
}

int K7ShpFile::ReadInSequence() {
  const int count = RecordCount();
  int err = 0;
  for (int i = 0; err == 0 && i < count; ++i) err = StoreNext(i);
  return err;
}

int K7ShpFile::ReadByIndex(int firstRow) {
  if (firstRow < 0 || !m_attrFile->Seek(firstRow)) {
    m_badFile = K7_SHP_ATTR_FILE;
    return K7_ERR_OUT_OF_RANGE;
  }
  const int count = RecordCount();
  int err = 0;
  for (int i = 0; err == 0 && i < count; ++i) {
    Entry entry;
    if (!ReadEntry(m_indexFile, i, entry)) {
      m_badFile = K7_SHP_INDEX_FILE;
      return K7_ERR_OUT_OF_RANGE;
    }
    if (!m_mainFile->Seek(static_cast<int>(entry.offset))) {
      m_badFile = K7_SHP_MAIN_FILE;
      return K7_ERR_OUT_OF_RANGE;
    }
    err = StoreNext(i);
  }
  return err;
}

int K7ShpFile::StoreNext(int i) {
  m_recordError = 0;
  K7ShpRecord* const record = NextRecord();
  if (!record) return m_recordError ? m_recordError : K7_ERR_OUT_OF_RANGE;
  // The array grows by few elements at a time, so room is made ahead, for as many records as have come
  // already.
  if (i >= FIRST_RESERVE ? (i & (i - 1)) == 0 : i == 0)
    m_records.GrowTo(std::min(RecordCount(), std::max(FIRST_RESERVE, i > INT32_MAX / 2 ? INT32_MAX : i * 2)),
                     false);
  const int err = m_records += record;
  if (err) delete record;
  return err;
}

// Whether the index can do better than the sequence: it has an entry for each row of the table, and all lead
// to records of their length.
bool K7ShpFile::IndexLeads() const {
  const int count = m_dbfHdr.recordCount;
  const int64_t end = SizeOf(m_mainFile);
  if (count <= 0 || RecordCount() > count || (SizeOf(m_indexFile) - INDEX_HEADER_SIZE) / 8 != count)
    return false;
  Entry entry;
  for (int i = 0; i < count; ++i)
    if (!ReadEntry(m_indexFile, i, entry) || ContentLength(m_mainFile, entry.offset, end) != entry.length)
      return false;
  return true;
}

// Behind the table's last record stands another, whole one, or the index has one more.
bool K7ShpFile::MainGoesOn() const {
  const int count = m_dbfHdr.recordCount;
  if (RecordCount() != count) return false;
  const int pos = m_mainFile->Tell();
  const int64_t end = SizeOf(m_mainFile);
  if (ContentLength(m_mainFile, pos, end) >= SHAPE_TYPE_SIZE) return true;
  Entry next;
  return count >= 0 && ReadEntry(m_indexFile, count, next) && next.length >= SHAPE_TYPE_SIZE &&
         ContentLength(m_mainFile, next.offset, end) == next.length;
}

// The table has no room for the rows that it states.
bool K7ShpFile::TableIsShort() const {
  const int64_t rows = SizeOf(m_attrFile) - m_dbfHdr.headerLength;
  return rows < int64_t{m_dbfHdr.recordCount} * m_dbfHdr.recordLength;
}

K7ShpRecord* K7ShpFile::NextRecord() {
  m_recordError = K7_ERR_MEMORY;
  K7ShpRecord* const record = new (std::nothrow) K7ShpRecord;
  if (!record) return nullptr;
  const int row = m_attrFile ? m_attrFile->Tell() : 0;
  m_recordError = record->Read(m_mainFile, m_attrFile, &m_dbfHdr, m_keepNullShapes);
  if (m_recordError == 0 && !record->Attrs()) PassRow(row);
  if (m_recordError == 0) return record;
  delete record;
  if (m_mainFile && m_recordError != K7_ERR_MEMORY) m_badFile = K7_SHP_MAIN_FILE;
  // A record cut short and one that contradicts itself are the same to a reader of the set: not readable.
  if (m_recordError != K7_ERR_INVALID_DATA && m_recordError != K7_ERR_MEMORY) m_recordError = 0;
  return nullptr;
}

// Behind a row that was not read whole stands the next one, so that the records that follow keep theirs. A
// row behind the table's end is none.
void K7ShpFile::PassRow(int row) {
  const int64_t size = int64_t{m_dbfHdr.dataLength} + 1;
  if (row < 0 || !m_attrFile->Seek(row) || size > k7read::BytesLeft(m_attrFile)) return;
  m_badFile = K7_SHP_ATTR_FILE;
  m_attrFile->Seek(static_cast<int>(row + size));
}
