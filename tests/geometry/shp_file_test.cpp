// Shapefile sets written byte by byte after the published formats (ESRI Shapefile Technical Description,
// 1998; dBASE III), and real sets whose numbers come from GDAL.

#include <k7/foundation/error_string.h>
#include <k7/geometry.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <tuple>

namespace {

constexpr int ALL_TYPES[] = {1, 3, 5, 8, 11, 13, 15, 18, 21, 23, 25, 28};

template <class T>
void Put(Bytes& out, T value, bool bigEndian = false) {
  unsigned char raw[sizeof value];
  std::memcpy(raw, &value, sizeof value);
  if (bigEndian) std::reverse(raw, raw + sizeof value);
  out.insert(out.end(), raw, raw + sizeof value);
}

template <class T>
void PutAt(Bytes& out, size_t pos, T value) {
  std::memcpy(out.data() + pos, &value, sizeof value);
}

int PointsOf(int type, int many) { return type % 10 == 1 ? 1 : many; }
double X(int i) { return 10.5 * i - 3; }
double Y(int i) { return 7.25 - i; }

// The content of a record whose point i is X(i), Y(i), with z = 100 + i and m = 1000 + i.
Bytes Shape(int type, int points, const std::vector<int>& starts, bool withM = true) {
  Bytes out;
  Put(out, type);
  const bool isPoint = type % 10 == 1;
  const auto measure = [&](double range, double base) {
    if (!isPoint) Put(out, range), Put(out, range + 1);
    for (int i = 0; i < points; ++i) Put(out, base + i);
  };
  if (!isPoint) {
    for (double side : {1.0, 2.0, 3.0, 4.0}) Put(out, side);
    if (type % 10 != 8) Put(out, static_cast<int>(starts.size()));
    Put(out, points);
    if (type % 10 != 8)
      for (int start : starts) Put(out, start);
  }
  for (int i = 0; i < points; ++i) Put(out, X(i)), Put(out, Y(i));
  if (type / 10 == 1) measure(-50, 100);
  if (type >= 10 && withM) measure(-70, 1000);
  return out;
}

using FieldDef = std::tuple<const char*, char, int, int>;  // name, type, length, decimals

// One set in memory, "a.shp" and its companions.
struct Set {
  Bytes main, dbf;
  MemIO io;
  Bytes index;
  std::vector<size_t> starts, ends;  // of the records in the main file

  Set() {
    for (int i = 0; i < 7; ++i) Put(main, i == 0 ? 9994 : 20 + i, true);
    Put(main, 1000), Put(main, 5);
    for (double d : {-1.0, -2.0, 11.0, 12.0, 13.0, 14.0, 15.0, 16.0}) Put(main, d);
  }
  void Add(const Bytes& content, int words = -1) {
    starts.push_back(main.size());
    Put(main, static_cast<int>(ends.size() + 1), true);
    Put(main, words < 0 ? static_cast<int>(content.size() / 2) : words, true);
    main.insert(main.end(), content.begin(), content.end());
    ends.push_back(main.size());
  }
  void Table(const std::vector<FieldDef>& fields, const std::vector<std::string>& rows) {
    dbf = {3, 126, 8, 1};
    dbf.resize(32);
    int recordLength = 1;
    for (const auto& [name, type, length, decimals] : fields) {
      const size_t at = dbf.size();
      dbf.resize(at + 32);
      std::memcpy(&dbf[at], name, std::strlen(name));
      PutAt(dbf, at + 11, type);
      PutAt(dbf, at + 16, static_cast<char>(length));
      PutAt(dbf, at + 17, static_cast<char>(decimals));
      recordLength += length;
    }
    PutAt(dbf, 4, static_cast<int>(rows.size()));
    PutAt(dbf, 8, static_cast<uint16_t>(33 + 32 * fields.size()));
    PutAt(dbf, 10, static_cast<uint16_t>(recordLength));
    dbf.push_back(0x0D);
    for (const std::string& row : rows) dbf.insert(dbf.end(), row.begin(), row.end());
  }
  void NumberedTable() {
    std::vector<std::string> rows;
    for (size_t i = 0; i < ends.size(); ++i) rows.push_back("*" + std::to_string(100 + i));
    Table({{"NO", 'N', 3, 0}}, rows);
  }
  void Index() {
    index = Bytes(100);
    for (size_t i = 0; i < starts.size(); ++i)
      Put(index, static_cast<int>(starts[i] / 2), true),
          Put(index, static_cast<int>((ends[i] - starts[i] - 8) / 2), true);
  }
  int Read(K7ShpFile& file) {
    if (dbf.empty()) NumberedTable();
    io.Put("a.shp", main), io.Put("a.dbf", dbf), io.Put("a.shx", index);
    return file.Read("a.shp", &io);
  }
};

void ExpectShape(K7ShpFile& file, const K7ShpObj* obj, int type, int points, const std::vector<int>& starts,
                 bool hasM) {
  SCOPED_TRACE(type);
  ASSERT_TRUE(obj);
  EXPECT_EQ(obj->Type(), type);
  ASSERT_EQ(obj->GetPointCount(), points);
  double a = 0, b = 0, c = 0, d = 0;
  for (int i = 0; i < points; ++i) {
    EXPECT_EQ(obj->GetPoint(&file, i, a, b), 0);
    EXPECT_TRUE(a == Y(i) && b == X(i) && obj->Points()[i].x == b && obj->Points()[i].y == a);
  }
  EXPECT_EQ(obj->GetPoint(&file, points, a, b), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(obj->GetPoint(&file, -1, a, b), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(obj->GetPoint(nullptr, 0, a, b), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(obj->GetBounds(nullptr, a, b, c, d), K7_ERR_BAD_ARGUMENT);
  ASSERT_EQ(obj->GetBounds(&file, a, b, c, d), 0);
  if (type % 10 == 1) {
    EXPECT_TRUE(a == Y(0) && b == Y(0) && c == X(0) && d == X(0));
    EXPECT_EQ(obj->GetPos(&file, a, b), 0);
    const auto* z = dynamic_cast<const K7ShpPointZ*>(obj);
    const auto* m = dynamic_cast<const K7ShpPointM*>(obj);
    EXPECT_TRUE(!z || z->Z() == 100);
    EXPECT_EQ(z ? z->M() : m ? m->M() : 0, type < 10 ? 0 : hasM ? 1000 : K7_SHP_NO_MEASURE);
    return;
  }
  EXPECT_TRUE(a == 4 && b == 2 && c == 3 && d == 1);  // north, south, east, west
  EXPECT_EQ(obj->GetPos(&file, a, b), K7_ERR_NOT_IMPLEMENTED);
  const auto& multi = dynamic_cast<const K7ShpMulti&>(*obj);
  ASSERT_EQ(multi.Z() != nullptr, type / 10 == 1);
  ASSERT_EQ(multi.M() != nullptr, hasM && type >= 10);
  for (int i = 0; i < points; ++i) {
    EXPECT_TRUE(!multi.Z() || multi.Z()[i] == 100 + i);
    EXPECT_TRUE(!multi.M() || multi.M()[i] == 1000 + i);
  }
  EXPECT_TRUE(!multi.GetZRange(a, b) || (a == -50 && b == -49));
  EXPECT_TRUE(!multi.GetMRange(a, b) || (a == -70 && b == -69));
  const int parts = type % 10 == 8 ? 0 : static_cast<int>(starts.size());
  ASSERT_EQ(obj->GetPolyCount(), parts);
  for (int i = 0; i < parts; ++i) {
    const int next = i + 1 < parts ? starts[static_cast<size_t>(i) + 1] : points;
    EXPECT_EQ(obj->GetPolySize(i), next - starts[static_cast<size_t>(i)]);
  }
  EXPECT_EQ(obj->GetPolySize(parts), K7_ERR_OUT_OF_RANGE);
}

TEST(ShpFile, ReadsEveryShapeTypeOddPartsMissingMeasuresAndTrailingWords) {
  const std::vector<std::vector<int>> partings = {{0, 3}, {0, 2, 2}, {0}};
  for (const bool withM : {true, false})
    for (const auto& starts : partings)
      for (const bool tail : {false, true}) {
        Set set;
        for (int type : ALL_TYPES) {
          Bytes content = Shape(type, PointsOf(type, 5), starts, withM);
          if (tail) content.resize(content.size() + 6);  // less than any measure
          set.Add(content);
        }
        K7ShpFile file;
        ASSERT_EQ(set.Read(file), 0);
        ASSERT_EQ(file.StoredCount(), 12);
        for (int i = 0; i < 12; ++i) {
          const int type = ALL_TYPES[i];
          ExpectShape(file, file.GetRecord(i)->Obj(), type, PointsOf(type, 5), starts, withM);
          EXPECT_EQ(file.GetRecord(i)->Integer(0), 100 + i);
        }
        const K7ShpFileHdr& hdr = file.Header();
        EXPECT_TRUE(hdr.fileCode == 9994 && hdr.unused[4] == 25 && hdr.fileLength == 26 &&
                    hdr.version == 1000 && hdr.shapeType == 5 && hdr.box.yMin == -2 && hdr.box.xMax == 11 &&
                    hdr.mMax == 16);
        testing::internal::CaptureStdout();
        file.Print();
        EXPECT_NE(testing::internal::GetCapturedStdout().find("NO: 111"), std::string::npos);
      }
}

TEST(ShpFile, NullShapesStopOrStay) {
  Set set;
  set.Add(Shape(1, 1, {}));
  set.Add({0, 0, 0, 0});
  set.Add({0, 0, 0, 0, 9, 9, 9, 9});  // extra words
  set.Add(Shape(1, 1, {}));
  K7ShpFile file;
  EXPECT_EQ(set.Read(file), K7_ERR_INVALID_DATA);
  EXPECT_EQ(file.StoredCount(), 1);
  file.KeepNullShapes(true);
  ASSERT_EQ(set.Read(file), 0);
  ASSERT_EQ(file.StoredCount(), 4);
  EXPECT_FALSE(file.GetRecord(2)->Obj());
  EXPECT_EQ(file.GetRecord(2)->Integer(0), 102);
  ExpectShape(file, file.GetRecord(3)->Obj(), 1, 1, {}, false);
  set.Add(Bytes{31, 0, 0, 0});
  set.dbf.clear();
  EXPECT_EQ(set.Read(file), K7_ERR_INVALID_DATA);
  EXPECT_EQ(file.StoredCount(), 4);
}

TEST(ShpFile, ConvertsAttributes) {
  // atof and atoi of the C locale give the expected numbers.
  const std::tuple<std::string, double, int32_t> cases[] = {{"12.50       ", 12.5, 12},
                                                            {"        0042", 42, 42},
                                                            {"  -7.25e+01x", -72.5, -7},
                                                            {"99999999999 ", 99999999999.0, INT32_MAX},
                                                            {"-99999999999", -99999999999.0, INT32_MIN},
                                                            {"+5          ", 5, 5},
                                                            {"************", 0, 0},
                                                            {"1e999       ", HUGE_VAL, 1},
                                                            {"-1e-999     ", 0, -1},
                                                            {"1,5         ", 1, 1}};
  Set set;
  std::vector<std::string> rows;
  for (const auto& [text, number, integer] : cases) {
    set.Add(Shape(1, 1, {}));
    rows.push_back(" " + text + text + "abc   " + std::string(255, ' ') + text);
  }
  set.Table({{"REAL", 'F', 12, 3},
             {"WHOLE", 'N', 12, 0},
             {"ELEVENCHARS", 'C', 6, 0},
             {"BLANK", 'C', 255, 0},
             {"FULL", 'C', 12, 4}},
            rows);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // decimal comma, where the system has it
  K7ShpFile file;
  const int err = set.Read(file);
  std::setlocale(LC_ALL, "C");
  ASSERT_EQ(err, 0);
  EXPECT_EQ(file.FindField("whole"), 1);
  EXPECT_EQ(file.FindField("ElevenChars"), 2);
  EXPECT_EQ(file.FindField("ELEVENCHARSX"), -1);
  EXPECT_EQ(file.Field(3)->length, 255);
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7ShpRecord& record = *file.GetRecord(i);
    auto [text, number, integer] = cases[i];
    EXPECT_EQ(record.Number(0), number) << text;
    EXPECT_EQ(record.Integer(1), integer) << text;
    EXPECT_STREQ(record.Text(2), "abc");
    EXPECT_STREQ(record.Text(3), "");
    EXPECT_EQ(record.Text(4), text.erase(text.find_last_not_of(' ') + 1));
  }
}

TEST(ShpFile, GetAttrsReadsAnyRecordWithoutMovingTheSequence) {
  Set set;
  for (int i = 0; i < 3; ++i) set.Add(Shape(21, 1, {}));
  K7ShpFile file;
  ASSERT_EQ(set.Read(file), 0);
  EXPECT_FALSE(file.GetAttrs(0));  // closed
  ASSERT_EQ(file.ReadHeader("a.shp", &set.io), 0);
  EXPECT_EQ(file.StoredCount(), 0);
  EXPECT_FALSE(file.GetAttrs(-1));
  EXPECT_FALSE(file.GetAttrs(3));
  for (int i = 0; i < 3; ++i) {
    K7DbfField* attrs = file.GetAttrs(2 - i);
    ASSERT_TRUE(attrs);
    EXPECT_EQ(attrs[0].integer, 102 - i);
    file.ReleaseAttrs(attrs);
    const std::unique_ptr<K7ShpRecord> record(file.NextRecord());
    ASSERT_TRUE(record);
    EXPECT_EQ(record->Integer(0), 100 + i);
    file.ReleaseAttrs(record->DetachAttrs());
    EXPECT_EQ(record->Integer(0), 0);
  }
  EXPECT_FALSE(file.NextRecord());
  file.ReleaseAttrs(nullptr);
}

TEST(ShpFile, SetsCutAnywhereKeepTheRecordsBefore) {
  Set whole;
  for (int type : ALL_TYPES) whole.Add(Shape(type, PointsOf(type, 3), {0, 1, 1}));
  whole.NumberedTable();
  for (size_t cut = 0; cut < whole.main.size(); ++cut) {
    Set set;
    set.dbf = whole.dbf;
    set.main.assign(&whole.main[0], &whole.main[cut]);
    K7ShpFile file;
    EXPECT_EQ(set.Read(file), cut < 100 ? K7_ERR_FILE_IO : K7_ERR_OUT_OF_RANGE);
    EXPECT_EQ(file.BadFile(), K7_SHP_MAIN_FILE);
    const auto kept = std::ranges::count_if(whole.ends, [&](size_t end) { return end <= cut; });
    ASSERT_EQ(file.StoredCount(), kept) << cut;
    for (int i = 0; i < file.StoredCount(); ++i)
      ExpectShape(file, file.GetRecord(i)->Obj(), ALL_TYPES[i], PointsOf(ALL_TYPES[i], 3), {0, 1, 1}, true);
  }
  for (size_t cut = 1; cut < whole.dbf.size(); ++cut) {
    Set set;
    set.main = whole.main;
    set.dbf.assign(&whole.dbf[0], &whole.dbf[cut]);
    K7ShpFile file;
    EXPECT_EQ(set.Read(file), cut < 65 ? K7_ERR_FILE_IO : 0);
    EXPECT_EQ(file.IsValid(), cut >= 65);
    EXPECT_EQ(file.BadFile(), cut < 65 ? K7_SHP_ATTR_FILE : K7_SHP_NO_FILE);
    for (size_t i = 0; i < static_cast<size_t>(file.StoredCount()); ++i)
      EXPECT_EQ(file.GetRecord(static_cast<int>(i))->Attrs() != nullptr, 65 + 4 * (i + 1) <= cut);
  }
}

// Editors that put records in place leave the tails of longer ones behind, and move what has grown to the
// end.
TEST(ShpFile, TheIndexLeadsAcrossGapsAndToMovedRecords) {
  const Bytes junk = {0x35, 0xF5, 0x46, 0x40, 0x60, 0xDC, 0xCA, 0xEA, 0xD4, 0xCF, 0x1D, 0x40};
  for (const Bytes& gap : {junk, Bytes(40), Bytes{1, 2, 3, 4}})
    for (const bool keepNullShapes : {false, true}) {
      Set set;
      set.Add(Shape(5, 4, {0}));
      set.main.insert(set.main.end(), gap.begin(), gap.end());
      set.Add(Shape(3, 3, {0, 1}));
      const size_t stale = set.main.size();
      set.Add(Shape(1, 1, {}));
      set.Add(Shape(8, 2, {}));
      set.Add(Shape(5, 6, {0, 3}));
      set.starts.erase(set.starts.begin() + 2), set.ends.erase(set.ends.begin() + 2);
      std::swap(set.starts[2], set.starts[3]), std::swap(set.ends[2], set.ends[3]);
      set.Index();
      K7ShpFile file;
      file.KeepNullShapes(keepNullShapes);
      ASSERT_EQ(set.Read(file), 0);
      ASSERT_EQ(file.StoredCount(), 4);
      ExpectShape(file, file.GetRecord(1)->Obj(), 3, 3, {0, 1}, false);
      ExpectShape(file, file.GetRecord(2)->Obj(), 5, 6, {0, 3}, false);
      ExpectShape(file, file.GetRecord(3)->Obj(), 8, 2, {}, false);
      for (int i = 0; i < 4; ++i) EXPECT_EQ(file.GetRecord(i)->Integer(0), 100 + i);

      // An index that leads elsewhere is not believed.
      for (const int words : {0, 49, static_cast<int>(stale / 2) + 1, INT32_MAX / 2, INT32_MIN}) {
        Bytes offset;
        Put(offset, words, true);
        std::copy(offset.begin(), offset.end(), set.index.begin() + 100 + 8 * 3);
        EXPECT_NE(set.Read(file), 0);
        EXPECT_EQ(file.StoredCount(), 1);
        EXPECT_EQ(file.BadFile(), K7_SHP_MAIN_FILE);
      }
    }
  Set moved;  // without a gap all records can be read, one of them the old one
  for (int points : {2, 3, 4, 5}) moved.Add(Shape(8, points, {}));
  moved.starts[1] = moved.starts[3], moved.ends[1] = moved.ends[3];
  moved.starts.pop_back(), moved.ends.pop_back();
  moved.Index();
  K7ShpFile file;
  ASSERT_EQ(moved.Read(file), 0);
  EXPECT_EQ(file.GetRecord(1)->Obj()->GetPointCount(), 5);
  EXPECT_EQ(file.GetRecord(2)->Obj()->GetPointCount(), 4);
}

// Serves a table of which one read fails.
struct FlakyTableIO : MemIO {
  struct Table : MemFile {
    explicit Table(FlakyTableIO& owner) : MemFile(owner.files["a.dbf"], "rb"), io(owner) {}
    int Read(void* buf, int n) override { return io.left-- == 0 ? io.result : MemFile::Read(buf, n); }
    FlakyTableIO& io;
  };
  K7File* CreateFileX(const char* path, const char* mode) override {
    return std::strcmp(path, "a.dbf") == 0 ? new Table(*this) : MemIO::CreateFileX(path, mode);
  }
  int left = 0, result = 0;
};

TEST(ShpFile, AReadOfTheTableThatFailsShiftsNothing) {
  Set set;
  for (int i = 0; i < 5; ++i) set.Add(Shape(1, 1, {}));
  K7ShpFile file;
  ASSERT_EQ(set.Read(file), 0);
  FlakyTableIO io;
  io.files = set.io.files;
  for (const int result : {0, 2, 5, int{K7_ERR_FILE_IO}})  // nothing, a part, more than was asked, a code
    for (int failing = 0; failing < 10; ++failing) {
      io.left = failing;
      io.result = result;
      // Header, descriptor, terminator; descriptor and terminator once more; then a read a row.
      EXPECT_EQ(file.Read("a.shp", &io), failing < 5 ? K7_ERR_FILE_IO : K7_ERR_OUT_OF_RANGE) << failing;
      EXPECT_EQ(file.BadFile(), K7_SHP_ATTR_FILE);
      EXPECT_EQ(file.StoredCount(), failing < 5 ? 0 : 5);
      for (int i = 0; i < file.StoredCount(); ++i)
        EXPECT_EQ(file.GetRecord(i)->Integer(0), i == failing - 5 ? 0 : 100 + i);
    }
}

TEST(ShpFile, AbsurdCountsLengthsAndOffsetsAreRefused) {
  constexpr size_t at = 136;  // the second record's content
  const auto readWith = [&](int type, size_t pos, int value) {
    Set set;
    set.Add(Shape(1, 1, {}));
    set.Add(Shape(type, 3, {0, 2}));
    PutAt(set.main, pos, value);
    set.Add(Shape(1, 1, {}));
    K7ShpFile file;
    const int err = set.Read(file);
    EXPECT_EQ(file.StoredCount(), err ? 1 : 3);
    return err;
  };
  for (int type : {3, 5, 13, 25})
    for (int value : {-1, 9, 100000, 0x08000000, INT32_MAX, INT32_MIN}) {
      EXPECT_EQ(readWith(type, at + 36, value), K7_ERR_OUT_OF_RANGE) << "parts " << value;
      EXPECT_EQ(readWith(type, at + 40, value), K7_ERR_OUT_OF_RANGE) << "points " << value;
      EXPECT_EQ(readWith(type, at + 48, value), K7_ERR_OUT_OF_RANGE) << "start " << value;
    }
  for (int value : {-1, 5, INT32_MAX}) EXPECT_EQ(readWith(8, at + 36, value), K7_ERR_OUT_OF_RANGE);
  // Content lengths (as swapped in the file) that can be none: the counts tell the size.
  for (int value : {0, -1, 0x01000000, static_cast<int>(0xFFFFFF7F)})
    EXPECT_EQ(readWith(5, at - 4, value), 0);
  // Without a length to compare with, counts are held against the file before memory is taken.
  Set set;
  Bytes huge = Shape(5, 3, {0});
  PutAt(huge, 40, 0x07000000);
  set.Add(huge, 0);
  K7ShpFile file;
  EXPECT_EQ(set.Read(file), K7_ERR_OUT_OF_RANGE);

  Set counted;
  for (int i = 0; i < 3; ++i) counted.Add(Shape(1, 1, {}));
  counted.NumberedTable();
  for (const int count : {4, INT32_MAX, 2, 0, -5}) {
    PutAt(counted.dbf, 4, count);
    EXPECT_EQ(counted.Read(file), K7_ERR_OUT_OF_RANGE) << count;
    EXPECT_EQ(file.BadFile(), K7_SHP_ATTR_FILE) << count;
    EXPECT_EQ(file.StoredCount(), std::clamp(count, 0, 3));
  }
  counted.Table(std::vector<FieldDef>(40, {"EMPTY", 'N', 0, 0}), {" "});
  EXPECT_EQ(counted.Read(file), K7_ERR_FILE_IO);
  counted.Table(std::vector<FieldDef>(2047, {"MANY", 'N', 1, 0}), {});
  EXPECT_EQ(counted.Read(file), K7_ERR_FILE_IO);
  counted.Table({}, {" ", " ", " "});
  EXPECT_EQ(counted.Read(file), 0);
  EXPECT_FALSE(file.IsValid());
}

TEST(ShpFile, MissingFilesAndArguments) {
  Set set;
  set.Add(Shape(1, 1, {}));
  K7ShpFile file;
  ASSERT_EQ(set.Read(file), 0);
  EXPECT_EQ(file.Read(nullptr, &set.io), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(file.Read("a.shp", nullptr), K7_ERR_BAD_ARGUMENT);
  set.io.Put("a", set.main);
  EXPECT_EQ(file.Read("a", &set.io), K7_ERR_FILE_IO);
  const std::pair<const char*, K7ShpPart> parts[] = {
      {"a.shx", K7_SHP_INDEX_FILE}, {"a.dbf", K7_SHP_ATTR_FILE}, {"a.shp", K7_SHP_MAIN_FILE}};
  for (const auto& [missing, part] : parts) {
    set.io.files.erase(missing);
    EXPECT_EQ(file.Read("a.shp", &set.io), K7_ERR_FILE_IO);
    EXPECT_EQ(file.BadFile(), part);
    EXPECT_EQ(file.RecordCount(), 0);
  }
}

// Degrees from the pole, which lies at 0, 0: meridians and parallels bend.
class PolarFile : public K7ShpFile {
 public:
  bool XY2LatLon(const K7ShpXY* xy, double& lat, double& lon) override {
    if (!xy || refuse) return false;
    lat = 90 - std::hypot(xy->x, xy->y);
    lon = std::atan2(xy->x, -xy->y) * 57.29577951308232;
    return true;
  }
  K7ShpRecord* NextRecord() override { return --left >= 0 ? K7ShpFile::NextRecord() : nullptr; }
  bool refuse = false;
  int left = 1;
};

TEST(ShpFile, DerivedReaderConvertsAndMayStop) {
  Set set;
  set.Add(Shape(5, 3, {0}));
  set.Add(Shape(5, 3, {0}));
  PolarFile file;
  EXPECT_EQ(set.Read(file), K7_ERR_OUT_OF_RANGE);
  ASSERT_EQ(file.StoredCount(), 1);
  double n = 0, s = 0, e = 0, w = 0;
  const K7ShpRect rect{-10, -20, 10, -5};
  ASSERT_TRUE(file.K7Shp2ChartRect(&rect, n, s, e, w));
  EXPECT_EQ(n, 85);  // the middle of the upper edge is nearest to the pole
  EXPECT_DOUBLE_EQ(s, 90 - std::hypot(10, 20));
  EXPECT_DOUBLE_EQ(e, std::atan2(10, 5) * 57.29577951308232);
  EXPECT_DOUBLE_EQ(w, -e);
  EXPECT_FALSE(file.K7Shp2ChartRect(nullptr, n, s, e, w));
  file.refuse = true;
  const K7ShpObj* obj = file.GetRecord(0)->Obj();
  EXPECT_EQ(obj->GetBounds(&file, n, s, e, w), K7_ERR_INVALID_DATA);
  EXPECT_EQ(obj->GetPoint(&file, 0, n, s), K7_ERR_INVALID_DATA);
}

// The numbers are those of GDAL's ogrinfo 3.6: counts and point and part totals (ST_NPoints,
// ST_NumGeometries) and the river that stands at 100.
TEST(ShpFile, RealSets) {
  K7ShpFile file;
  const auto totals = [&](const char* name) {
    EXPECT_EQ(file.Read((std::string(K7_SAMPLE_DATA "/") + name + ".shp").c_str(), K7IO::Inst()), 0);
    std::vector<int> sums(3);
    for (int i = 0; i < file.StoredCount(); ++i) {
      const K7ShpObj* obj = file.GetRecord(i)->Obj();
      sums[0] += 1, sums[1] += obj->GetPointCount(), sums[2] += obj->GetPolyCount();
    }
    return sums;
  };
  const std::vector<int> land = totals("ne_50m_land");
  EXPECT_TRUE(land[0] == 1420 && land[1] == 78447);
  EXPECT_EQ(totals("ne_110m_admin_0_boundary_lines_land"), (std::vector{185, 2827, 185}));
  EXPECT_EQ(totals("ne_50m_rivers_lake_centerlines"), (std::vector{460, 25629, 894}));
  const K7ShpRecord& river = *file.GetRecord(100);
  EXPECT_STREQ(river.Text(file.FindField("name")), "Zambezi");
  EXPECT_STREQ(river.Text(file.FindField("featurecla")), "Lake Centerline");
  EXPECT_EQ(river.Integer(file.FindField("scalerank")), 3);
  EXPECT_EQ(river.Obj()->GetPolySize(0), 10);
  EXPECT_NEAR(river.Obj()->Points()[10].x, 32.7084224787145, 1e-12);
  EXPECT_NEAR(river.Obj()->Points()[10].y, -15.5792037903226, 1e-12);
}

}  // namespace
