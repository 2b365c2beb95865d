#include <k7/foundation/error_string.h>
#include <k7/geometry/shp_file.h>

#include "io/read.h"

#include <cstdio>
#include <utility>

K7ShpRecord::~K7ShpRecord() { Clear(); }

void K7ShpRecord::Clear() {
  delete m_obj;
  m_obj = nullptr;
  K7DbfFileHdr::ReleaseAttrs(DetachAttrs());
}

int K7ShpRecord::Read(K7File* mainFile, K7File* attrFile, const K7DbfFileHdr* hdr, bool keepNullShape) {
  if (!mainFile || !attrFile || !hdr) return K7_ERR_BAD_ARGUMENT;
  Clear();
  m_hdr = hdr;
  if (hdr->ReadAttrs(attrFile, &m_attrs) == K7_ERR_MEMORY) return K7_ERR_MEMORY;

  char head[3 * sizeof(int32_t)];
  if (k7read::Exact(mainFile, head, sizeof head) != 0) return K7_ERR_FILE_IO;
  k7read::Cursor cursor(head, sizeof head);
  int32_t number, contentLength, type;
  cursor.Big(number);
  cursor.Big(contentLength);
  cursor.Little(type);
  if (type == K7_SHP_NULL && keepNullShape) {
    // A run of zeros is no shape.
    if (contentLength == 0) return K7_ERR_OUT_OF_RANGE;
    k7read::SkipWithin(mainFile, int64_t{contentLength} * 2 - int64_t{sizeof type});
    return 0;
  }
  int err = 0;
  m_obj = K7ShpObj::Create(type, &err);
  return m_obj ? m_obj->Read(mainFile, contentLength) : err;
}

K7DbfField* K7ShpRecord::DetachAttrs() { return std::exchange(m_attrs, nullptr); }

const char* K7ShpRecord::Text(int i) const {
  const K7DbfFieldDesc* const field = m_attrs ? m_hdr->Field(i) : nullptr;
  return field && field->type == 'C' ? m_attrs[i].text : "";
}

double K7ShpRecord::Number(int i) const {
  const K7DbfFieldDesc* const field = m_attrs ? m_hdr->Field(i) : nullptr;
  if (!field || field->type == 'C') return 0;
  return field->decimals > 0 ? m_attrs[i].number : m_attrs[i].integer;
}

int32_t K7ShpRecord::Integer(int i) const {
  const K7DbfFieldDesc* const field = m_attrs ? m_hdr->Field(i) : nullptr;
  return field && field->type != 'C' && field->decimals == 0 ? m_attrs[i].integer : 0;
}

void K7ShpRecord::Print() const {
  if (m_obj)
    m_obj->Print();
  else
    std::fputs("no shape\n", stdout);
  if (m_attrs) m_hdr->PrintAttrs(m_attrs);
}
