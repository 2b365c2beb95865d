#include <k7/geometry/shp_file.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/io/io.h>

#include "io/read.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace {

constexpr int FILE_HEADER_SIZE = 100;

void DeleteRecord(void* record) { delete static_cast<K7ShpRecord*>(record); }

int OpenFile(K7IO* io, const char* path, K7File*& file) {
  file = io->CreateFileX(path, "rb");
  if (!file) return K7_ERR_MEMORY;
  return file->IsValid() ? 0 : K7_ERR_FILE_IO;
}

// The file of the set that has another extension.
int OpenCompanion(K7IO* io, const K7String& path, const char* extension, K7File*& file) {
  const int dot = path.ReverseFind('.');
  if (dot < 0) return K7_ERR_FILE_IO;
  int err = 0;
  K7String name = path.Left(dot, &err);
  if (err == 0) err = name += extension;
  return err < 0 ? err : OpenFile(io, name, file);
}

bool ReadFileHeader(K7File* file, K7ShpFileHdr& hdr) {
  char raw[FILE_HEADER_SIZE];
  if (k7read::Exact(file, raw, FILE_HEADER_SIZE) != 0) return false;
  k7read::Cursor cursor(raw, FILE_HEADER_SIZE);
  cursor.Big(hdr.fileCode);
  for (int32_t& word : hdr.unused) cursor.Big(word);
  cursor.Big(hdr.fileLength);
  cursor.Little(hdr.version);
  cursor.Little(hdr.shapeType);
  cursor.Little(hdr.box);
  for (double* const limit : {&hdr.zMin, &hdr.zMax, &hdr.mMin, &hdr.mMax}) cursor.Little(*limit);
  return cursor.IsWhole();
}

}  // namespace

K7ShpFile::K7ShpFile() : m_records(4, nullptr, DeleteRecord) {}

K7ShpFile::~K7ShpFile() { Clear(); }

void K7ShpFile::Close() {
  for (K7File** file : {&m_mainFile, &m_attrFile, &m_indexFile}) {
    delete *file;
    *file = nullptr;
  }
}

void K7ShpFile::Clear() {
  Close();
  m_records.FreeElems();
  m_hdr = {};
}

int K7ShpFile::ReadHeader(const char* path, K7IO* io) {
  m_badFile = K7_SHP_NO_FILE;
  if (!path || !io) return K7_ERR_BAD_ARGUMENT;
  Clear();
  m_dbfHdr.Clear();
  int err = OpenFiles(path, io);
  if (err == 0) {
    m_badFile = K7_SHP_MAIN_FILE;
    err = ReadFileHeader(m_mainFile, m_hdr) ? 0 : K7_ERR_FILE_IO;
  }
  if (err == 0) {
    m_badFile = K7_SHP_ATTR_FILE;
    err = m_dbfHdr.Read(m_attrFile);
  }
  if (err == 0 || err == K7_ERR_MEMORY) m_badFile = K7_SHP_NO_FILE;
  return err;
}

int K7ShpFile::OpenFiles(const char* path, K7IO* io) {
  K7String mainPath;
  if (const int err = mainPath.Create(path); err < 0) return err;
  m_badFile = K7_SHP_MAIN_FILE;
  if (const int err = OpenFile(io, mainPath, m_mainFile)) return err;
  m_badFile = K7_SHP_ATTR_FILE;
  if (const int err = OpenCompanion(io, mainPath, ".dbf", m_attrFile)) return err;
  m_badFile = K7_SHP_INDEX_FILE;
  return OpenCompanion(io, mainPath, ".shx", m_indexFile);
}

int K7ShpFile::Read(const char* path, K7IO* io) {
  if (const int err = ReadHeader(path, io)) return err;
  const int err = ReadRecords();
  Close();
  return err;
}

int K7ShpFile::RecordCount() const { return m_dbfHdr.recordCount; }

K7ShpRecord* K7ShpFile::GetRecord(int index) const { return static_cast<K7ShpRecord*>(m_records[index]); }

K7DbfField* K7ShpFile::GetAttrs(int index) {
  if (!m_attrFile || index < 0 || index >= RecordCount()) return nullptr;
  const int64_t pos = m_dbfHdr.headerLength + int64_t{m_dbfHdr.recordLength} * index;
  const int next = m_attrFile->Tell();
  if (pos > INT32_MAX || next < 0) return nullptr;
  K7DbfField* attrs = nullptr;
  if (m_attrFile->Seek(static_cast<int>(pos))) m_dbfHdr.ReadAttrs(m_attrFile, &attrs);
  // Without the way back the next record would have another's attributes.
  if (m_attrFile->Seek(next)) return attrs;
  m_badFile = K7_SHP_ATTR_FILE;
  ReleaseAttrs(attrs);
  return nullptr;
}

void K7ShpFile::ReleaseAttrs(K7DbfField* attrs) { K7DbfFileHdr::ReleaseAttrs(attrs); }

bool K7ShpFile::XY2LatLon(const K7ShpXY* xy, double& lat, double& lon) {
  if (!xy) return false;
  lat = xy->y;
  lon = xy->x;
  return true;
}

bool K7ShpFile::K7Shp2ChartRect(const K7ShpRect* rect, double& north, double& south, double& east,
                                double& west) {
  if (!rect) return false;
  const double xMid = rect->xMin + (rect->xMax - rect->xMin) / 2;
  const double yMid = rect->yMin + (rect->yMax - rect->yMin) / 2;
  const K7ShpXY samples[] = {{rect->xMin, rect->yMin}, {rect->xMax, rect->yMin}, {rect->xMin, rect->yMax},
                             {rect->xMax, rect->yMax}, {xMid, rect->yMin},       {xMid, yMid},
                             {xMid, rect->yMax}};
  double bounds[4] = {-999, 999, -999, 999};
  int unchangedCorners = 0;
  for (const K7ShpXY& xy : samples) {
    double lat = 0;
    double lon = 0;
    if (!XY2LatLon(&xy, lat, lon)) return false;
    unchangedCorners += &xy < samples + 4 && lat == xy.y && lon == xy.x;
    if (unchangedCorners == 4) break;
    bounds[0] = std::max(bounds[0], lat);
    bounds[1] = std::min(bounds[1], lat);
    bounds[2] = std::max(bounds[2], lon);
    bounds[3] = std::min(bounds[3], lon);
  }
  const bool identity = unchangedCorners == 4;
  north = identity ? rect->yMax : bounds[0];
  south = identity ? rect->yMin : bounds[1];
  east = identity ? rect->xMax : bounds[2];
  west = identity ? rect->xMin : bounds[3];
  return true;
}

void K7ShpFile::Print() const {
  std::fputs(K7FmtString("Shapefile type %d, code %d, version %d, %d words\n",
                         static_cast<int>(m_hdr.shapeType), static_cast<int>(m_hdr.fileCode),
                         static_cast<int>(m_hdr.version), static_cast<int>(m_hdr.fileLength)),
             stdout);
  std::fputs(K7FmtString("  x %.9g to %.9g, y %.9g to %.9g, z %.9g to %.9g, m %.9g to %.9g\n", m_hdr.box.xMin,
                         m_hdr.box.xMax, m_hdr.box.yMin, m_hdr.box.yMax, m_hdr.zMin, m_hdr.zMax, m_hdr.mMin,
                         m_hdr.mMax),
             stdout);
  m_dbfHdr.Print();
  for (int i = 0; i < m_records.Count(); ++i) {
    std::fputs(K7FmtString("Record %d: ", i), stdout);
    static_cast<const K7ShpRecord*>(m_records[i])->Print();
  }
}
