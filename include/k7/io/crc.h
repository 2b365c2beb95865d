// K7CRC: checksum companions that protect data files against corruption.
#pragma once

#include <k7/export.h>

class K7File;
class K7String;

/// Beside a protected data file lies a companion that holds the checksum of the data in its first four
/// bytes, little-endian; what follows them is ignored. Its path is the data file's with everything from the
/// last "." on, wherever in the path that stands, replaced by ".crc".
///
/// The checksum leaves out line feeds and carriage returns, so that files which differ only in their line
/// ends have the same one. A K7CRC has no state: any thread may use it, any number at once.
class K7_API K7CRC {
 public:
  static constexpr const char* CRC_FILE_EXTENSION = ".crc";

  /// Compares the data file, from `offset` to its end, with its companion. Answers 0 when they agree;
  /// K7_ERR_BAD_ARGUMENT for a null path; K7_ERR_FILE_IO for a path without "." and for data that cannot be
  /// opened; K7_ERR_CRC_MISSING or K7_ERR_CRC_UNREADABLE for the companion; K7_ERR_CRC_MISMATCH;
  /// K7_ERR_MEMORY.
  static int CheckCRC(const char* path, int offset);
  /// Writes the companion of the whole data file. Answers 0; K7_ERR_BAD_ARGUMENT for a null path, a path
  /// without "." and one that is its own companion; K7_ERR_FILE_IO when the data cannot be read or the
  /// companion not written whole; K7_ERR_MEMORY.
  static int createCRCFile(const char* path);
  /// Computes the checksum of a file from `offset` to its end; behind the end it is that of no data, 0.
  /// Answers 0; K7_ERR_BAD_ARGUMENT for a null path; K7_ERR_INVALID_DATA for a null `crc`; K7_ERR_FILE_IO
  /// when the file cannot be opened, no file reaches to `offset` or the reading ends before the file does;
  /// the file's own negative result; K7_ERR_MEMORY.
  static int crcFileFromOffset(const char* path, unsigned offset, unsigned* crc);

 protected:
  static constexpr unsigned crcSeed = 0xFFFFFFFF;
  static constexpr unsigned crcComplement = 0xFFFFFFFF;
  static constexpr int complementCrc = 1;

  /// Computes the checksum of the rest of an open file. The codes are those above.
  static int crcFile(K7File* file, unsigned* crc);
  /// Carries `crc` on over `n` bytes; 0 for null data.
  static unsigned crcData(const unsigned char* data, unsigned n, unsigned crc);

 private:
  static int setSeed(unsigned* crc);
  static int complement(unsigned* crc);
};
