// K7ShpFile: reads a shapefile set, shapes and attributes, into memory.
//
//   K7ShpFile file;
//   if (file.Read("land.shp", K7IO::Inst()) == 0)
//     for (int i = 0; i < file.StoredCount(); ++i) Draw(file.GetRecord(i)->Obj());
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/geometry/shp_dbf.h>
#include <k7/geometry/shp_obj.h>

#include <cstdint>

class K7File;
class K7IO;

/// Names the files of a set.
enum K7ShpPart { K7_SHP_NO_FILE, K7_SHP_MAIN_FILE, K7_SHP_ATTR_FILE, K7_SHP_INDEX_FILE };

/// Holds the header of the main file.
struct K7ShpFileHdr {
  int32_t fileCode;  ///< 9994 in a shapefile; not checked, as version and type are not
  int32_t unused[5];
  int32_t fileLength;  ///< in 16-bit words, as stated by the file
  int32_t version;
  int32_t shapeType;
  K7ShpRect box;
  double zMin, zMax;
  double mMin, mMax;
};

/// A K7ShpRecord is one feature. It owns its shape and its attributes.
class K7_API K7ShpRecord {
 public:
  K7ShpRecord() = default;
  K7ShpRecord(const K7ShpRecord&) = delete;
  K7ShpRecord& operator=(const K7ShpRecord&) = delete;
  ~K7ShpRecord();

  /// Reads the next record at the current positions of both files; `hdr` must outlive this. The attributes
  /// come first; when their file is at its end they are null, and the shape is read all the same. With
  /// `keepNullShape` a null shape is a record without a shape, else it is K7_ERR_INVALID_DATA.
  ///
  /// Answers 0, K7_ERR_BAD_ARGUMENT for null, K7_ERR_INVALID_DATA for a shape type without a class,
  /// K7_ERR_FILE_IO for a short read, K7_ERR_OUT_OF_RANGE for counts that do not fit the record, or
  /// K7_ERR_MEMORY.
  int Read(K7File* mainFile, K7File* attrFile, const K7DbfFileHdr* hdr, bool keepNullShape = false);

  /// \name Contents
  /// @{
  /// Answer the shape; null for a kept null shape.
  const K7ShpObj* Obj() const { return m_obj; }
  K7ShpObj* Obj() { return m_obj; }
  /// Answers one slot for each field of `Hdr()`; null when the attribute file had ended.
  const K7DbfField* Attrs() const { return m_attrs; }
  /// Hands the attributes over to the caller, who releases them with `K7ShpFile::ReleaseAttrs`.
  K7DbfField* DetachAttrs();
  const K7DbfFileHdr* Hdr() const { return m_hdr; }
  /// Answer the value of field i of the table by what the field holds: "" or 0 for a field of another kind,
  /// for one that the table does not have, and for a record without attributes.
  const char* Text(int i) const;
  /// Also takes integers.
  double Number(int i) const;
  int32_t Integer(int i) const;
  /// @}

  /// Writes a readable dump to the standard output.
  void Print() const;

 private:
  void Clear();

  const K7DbfFileHdr* m_hdr = nullptr;
  K7ShpObj* m_obj = nullptr;
  K7DbfField* m_attrs = nullptr;
};

/// A shapefile set: the main file that the caller names, and beside it the ".dbf" attribute table and the
/// ".shx" index, which must exist. `Read` takes all of it into memory; a host that wants one record at a time
/// calls `ReadHeader`, then `NextRecord` until it answers null. Deleted dBASE records count like any other;
/// where the attribute table ends early the records that follow have shapes and no attributes.
///
/// Records are read one behind the other. Editors leave remains of old records between them: where the
/// sequence ends before the table's last record, or the main file goes on behind it, `Read` reads the set
/// once more by the index, if that has as many entries and each leads to a record of the length it states.
///
/// A derived reader converts projected coordinates in `XY2LatLon`, or makes records of its own in
/// `NextRecord`. Reading is for one thread at a time; what is read any number of threads may use. Not
/// copyable.
class K7_API K7ShpFile {
 public:
  K7ShpFile();
  K7ShpFile(const K7ShpFile&) = delete;
  K7ShpFile& operator=(const K7ShpFile&) = delete;

  /// \name Reading
  /// @{
  /// Drops what the reader held, opens the three files and reads both headers. The files stay open, with
  /// those of a failed call, until the next call, `Close` or the destructor.
  ///
  /// Answers 0, K7_ERR_BAD_ARGUMENT for null, K7_ERR_FILE_IO for a file that does not open (a path without
  /// a '.' has no companions) or whose header is not whole, or K7_ERR_MEMORY.
  virtual int ReadHeader(const char* path, K7IO* io);
  /// Calls `ReadHeader`, then `NextRecord` for each record of the attribute table, then `Close`, also after
  /// a record that failed; the records before it are kept.
  ///
  /// Answers 0; the code of `ReadHeader`; K7_ERR_INVALID_DATA for a shape type without a class, null shapes
  /// included unless they are kept; K7_ERR_MEMORY; or K7_ERR_OUT_OF_RANGE for a record that could not be
  /// read. That is: the main file ends before it or its counts do not fit its bytes; the main file or the
  /// index has more records than the table; or the table holds a row that it fails to give, and then all
  /// records are there, that one without attributes.
  virtual int Read(const char* path, K7IO* io);
  /// Answers the records that the attribute table's header states. After a failed `Read` there may be fewer
  /// in the reader (`StoredCount`).
  virtual int RecordCount() const;
  /// Reads the next record at the current positions of the main and the attribute file. The caller deletes
  /// it while the reader lives. Answers null at the end, for a record that cannot be read, and when the
  /// files are not open. The first record's attributes follow the descriptors' terminator, each next one's
  /// the last field: in a table whose header and record lengths leave gaps there, as some writers do, only
  /// `GetAttrs` finds them.
  virtual K7ShpRecord* NextRecord();
  /// Answers a stored record; null for one that is not stored.
  virtual K7ShpRecord* GetRecord(int index) const;
  /// Reads the attributes of one record directly from the attribute file, which must be open, at the place
  /// that the table's header and record lengths give; the position that `NextRecord` reads from stays.
  /// Slots and texts are one block; the caller releases it with `ReleaseAttrs`. Answers null outside 0 ...
  /// `RecordCount` - 1, at the file's end or without memory.
  virtual K7DbfField* GetAttrs(int index);
  /// Frees an array of `GetAttrs` or `K7ShpRecord::DetachAttrs`. It ignores null.
  virtual void ReleaseAttrs(K7DbfField* attrs);
  /// @}

  /// \name Positions
  /// A derived reader overrides them for projected coordinates.
  /// @{
  /// Turns file coordinates into degrees, north and east positive. Here lat = y and lon = x; false for null
  /// only.
  virtual bool XY2LatLon(const K7ShpXY* xy, double& lat, double& lon);
  /// Answers the geographic bounds of a box, through `XY2LatLon`. Where that is the identity at the corners
  /// the bounds are the box; else they hold the box's corners and, at the middle of its x range, its lower
  /// edge, centre and upper edge, where meridians and parallels that bend between the corners reach
  /// farthest. False for null and when a conversion fails, with the bounds untouched.
  virtual bool K7Shp2ChartRect(const K7ShpRect* rect, double& north, double& south, double& east,
                               double& west);
  /// @}

  /// Stands last so that the operations above keep their places among the virtual ones.
  virtual ~K7ShpFile();

  /// Answers whether the attribute table has a field.
  bool IsValid() const { return m_dbfHdr.fieldCount > 0; }
  /// Says whether null shapes become records without a shape or end `Read`. Set it before reading; it is
  /// off at first.
  void KeepNullShapes(bool keep) { m_keepNullShapes = keep; }
  /// Answers the records in memory, which `GetRecord` has at 0 ... `StoredCount` - 1.
  int StoredCount() const { return m_records.Count(); }
  /// Answers which file the last `ReadHeader` or `Read`, or a `NextRecord` since then, found missing,
  /// damaged or at its end. It is none after success, for null arguments and without memory.
  K7ShpPart BadFile() const { return m_badFile; }
  /// Closes and deletes the three file objects.
  void Close();

  /// \name Headers
  /// @{
  const K7ShpFileHdr& Header() const { return m_hdr; }
  const K7DbfFileHdr& DbfHeader() const { return m_dbfHdr; }
  int FieldCount() const { return m_dbfHdr.fieldCount; }
  /// Answers the descriptor of field i; null outside the table.
  const K7DbfFieldDesc* Field(int i) const { return m_dbfHdr.Field(i); }
  /// Answers the index of the field of that name, without regard to case; -1 if absent.
  int FindField(const char* name) const { return m_dbfHdr.FindField(name); }
  /// @}

  /// Writes a readable dump of the headers and the stored records to the standard output.
  void Print() const;

 protected:
  /// Answer the files for a derived `NextRecord`; null while they are not open.
  K7File* MainFile() const { return m_mainFile; }
  K7File* AttrFile() const { return m_attrFile; }

 private:
  void Clear();
  int OpenFiles(const char* path, K7IO* io);
  int ReadRecords();
  int ReadInSequence();
  int ReadByIndex(int firstRow);
  int StoreNext(int i);
  bool IndexLeads() const;
  bool MainGoesOn() const;
  bool TableIsShort() const;
  void PassRow(int row);

  K7ShpFileHdr m_hdr{};
  K7DbfFileHdr m_dbfHdr;
  K7File* m_mainFile = nullptr;
  K7File* m_attrFile = nullptr;
  K7File* m_indexFile = nullptr;
  K7PtrArray m_records;
  bool m_keepNullShapes = false;
  K7ShpPart m_badFile = K7_SHP_NO_FILE;
  int m_recordError = 0;  // why the last NextRecord answered null; 0 when it was a derived reader's own
};
