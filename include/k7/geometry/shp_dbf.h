// The attribute table of a shapefile set: a dBASE III file's header, field descriptors and values.
#pragma once

#include <k7/export.h>

#include <cstdint>

class K7File;

/// Describes one field of the attribute table.
struct K7DbfFieldDesc {
  char name[11];  ///< as in the file: padded with NULs, none behind a name of 11 bytes
  char type;      ///< 'C' text, 'N' and 'F' numbers, 'D' date, 'L' logical, 'M' memo
  uint16_t length;
  uint16_t decimals;
};
static_assert(sizeof(K7DbfFieldDesc) == 16);

/// The value of one field in one record; the field's descriptor tells which member holds it.
union K7DbfField {
  char* text;       ///< type 'C': NUL-terminated, trailing blanks removed
  double number;    ///< any other type with decimals
  int32_t integer;  ///< any other type without decimals
};
static_assert(sizeof(K7DbfField) == 8);

/// Holds the header of the attribute table, member by member as the file has it, and its field descriptors.
/// Once it is read it serves any number of threads, each with a file of its own.
struct K7_API K7DbfFileHdr {
  K7DbfFileHdr() = default;
  K7DbfFileHdr(const K7DbfFileHdr&) = delete;
  K7DbfFileHdr& operator=(const K7DbfFileHdr&) = delete;
  ~K7DbfFileHdr();

  /// \name Reading
  /// @{
  /// Reads the header and the descriptors, from the file's start to their terminator, and drops what was
  /// held before. After a failure it has no fields.
  ///
  /// Answers 0, K7_ERR_BAD_ARGUMENT for null, K7_ERR_MEMORY, or K7_ERR_FILE_IO when the file ends before
  /// the terminator or its descriptors cannot be those of a table: more than fit in front of offset 65535,
  /// the farthest that a header reaches, or more fields than a record has bytes.
  int Read(K7File* file);
  /// Drops the fields and the record count.
  void Clear();
  /// Reads one record from the file's current position: the deletion flag, which is ignored, and the
  /// fields, in one read. `*attrs` receives a slot a field, in field order. Slots and texts are one block,
  /// which the caller frees with `ReleaseAttrs`. Answers 0, or K7_ERR_FILE_IO or K7_ERR_MEMORY with
  /// `*attrs` null.
  ///
  /// Numbers are read as `atof` and `atoi` read them, but with a decimal point in every locale and no
  /// hexadecimal: blanks and a sign, then the longest valid beginning; 0 without one. Integers saturate at
  /// 32 bits.
  int ReadAttrs(K7File* file, K7DbfField** attrs) const;
  /// Frees what `ReadAttrs` made. It ignores null.
  static void ReleaseAttrs(K7DbfField* attrs);
  /// @}

  /// \name Fields
  /// @{
  /// Answers the descriptor of field i; null outside the table.
  const K7DbfFieldDesc* Field(int i) const { return i >= 0 && i < fieldCount ? fields + i : nullptr; }
  /// Answers the index of the field of that name, without regard to case; -1 if absent.
  int FindField(const char* name) const;
  /// @}

  /// Write a readable dump of the table's header, and of one record's values, to the standard output.
  void Print() const;
  void PrintAttrs(const K7DbfField* attrs) const;

  /// \name The header as the file has it
  /// @{
  uint8_t version = 0;
  uint8_t lastUpdate[3] = {};  ///< year - 1900, month, day
  int32_t recordCount = 0;
  uint16_t headerLength = 0;
  uint16_t recordLength = 0;
  uint8_t reserved1[2] = {};
  uint8_t incompleteTransaction = 0;
  uint8_t encrypted = 0;
  int32_t reserved2[3] = {};
  uint8_t productionIndex = 0;
  uint8_t languageDriver = 0;
  uint8_t reserved3[2] = {};
  /// @}

  int32_t fieldCount = 0;
  K7DbfFieldDesc* fields = nullptr;
  /// Counts the bytes of a record behind its deletion flag: the sum of the fields' lengths.
  int32_t dataLength = 0;

 private:
  bool ReadFixed(K7File* file);
  int ReadFields(K7File* file);
};
