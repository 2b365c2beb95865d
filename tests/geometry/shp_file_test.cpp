// Shapefile sets written byte by byte after the published formats (ESRI Shapefile Technical Description,
// 1998; dBASE III), and real sets whose numbers come from GDAL.

#include <k7/foundation/error_string.h>
#include <k7/geometry.h>

#include "failing/failing_files.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <sstream>
#include <tuple>

namespace {

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

double X(int i) { return 10.5 * i - 3; }
double Y(int i) { return 7.25 - i; }

// A shape whose point i is X(i), Y(i), with z = 100 + i and m = 1000 + i.
struct Shape {
  int type = 1, points = 1;
  std::vector<int> starts = {0};
  bool withM = true;

  bool IsPoint() const { return type % 10 == 1; }
  bool HasParts() const { return type % 10 == 3 || type % 10 == 5; }
  bool HasZ() const { return type / 10 == 1; }
  bool HasM() const { return type >= 10 && withM; }

  Bytes Content() const {
    Bytes out;
    Put(out, type);
    if (type == 0) return out;
    for (double side : {1.0, 2.0, 3.0, 4.0})
      if (!IsPoint()) Put(out, side);
    if (HasParts()) Put(out, static_cast<int>(starts.size()));
    if (!IsPoint()) Put(out, points);
    for (int start : starts)
      if (HasParts()) Put(out, start);
    for (int i = 0; i < points; ++i) Put(out, X(i)), Put(out, Y(i));
    for (const auto& [has, first] : {std::pair(HasZ(), 100.0), {HasM(), 1000.0}}) {
      if (has && !IsPoint()) Put(out, first - 50), Put(out, first + 50);
      for (int i = 0; has && i < points; ++i) Put(out, first + i);
    }
    return out;
  }
  std::string Text() const {
    std::ostringstream out;
    const char* const kinds[] = {"", "Point", "", "PolyLine", "", "Polygon", "", "", "MultiPoint"};
    if (type == 0) return "no shape\n";
    out << kinds[type % 10];
    if (IsPoint()) {
      out << " -3 7.25\n" << (type == 11 ? "  z 100 m " : type == 21 ? "  m " : "");
      return out.str() + (type == 1 ? "" : withM ? "1000\n" : "-1e+39\n");
    }
    out << " (type " << type << "), " << (HasParts() ? starts.size() : 0) << " parts, " << points
        << " points, x 1 to 3, y 2 to 4\n";
    for (int i = 0; i < std::min(points, 8); ++i) {
      out << "  " << X(i) << ' ' << Y(i);
      if (HasZ()) out << " z " << 100 + i;
      if (HasM()) out << " m " << 1000 + i;
      out << '\n';
    }
    return out.str() + (points > 8 ? "  ...\n" : "");
  }
};

using FieldDef = std::tuple<const char*, char, int, int>;  // name, type, length, decimals

// One set in memory, "a.shp" and its companions; unless it is given a table, record i has the number 100 + i.
struct Set {
  Bytes main, dbf, index = Bytes(100);
  std::vector<Shape> shapes;
  std::vector<size_t> starts, ends;  // of the records in the main file

  explicit Set(int points = 0) {
    for (int i = 0; i < 7; ++i) Put(main, i == 0 ? 9994 : 20 + i, true);
    Put(main, 1000), Put(main, 5);
    for (double d : {-1.0, -2.0, 11.0, 12.0, 13.0, 14.0, 15.0, 16.0}) Put(main, d);
    for (int i = 0; i < points; ++i) Add({});
  }
  void Add(const Shape& shape, size_t tail = 0) {
    Bytes content = shape.Content();
    content.resize(content.size() + tail);
    shapes.push_back(shape);
    starts.push_back(main.size());
    Put(main, static_cast<int>(starts.size()), true);
    Put(main, static_cast<int>(content.size() / 2), true);
    main.insert(main.end(), content.begin(), content.end());
    ends.push_back(main.size());
    NumberRows();
  }
  void AddAll(int points, const std::vector<int>& parts, bool withM = true, size_t tail = 0) {
    for (int type : {1, 3, 5, 8, 11, 13, 15, 18, 21, 23, 25, 28})
      Add({type, type % 10 == 1 ? 1 : points, parts, withM}, tail);
  }
  void Table(const std::vector<FieldDef>& fields, const std::vector<std::string>& rows) {
    dbf = {3, 126, 8, 1};
    dbf.resize(32 + 32 * fields.size());
    int recordLength = 1;
    for (size_t at = 32; const auto& [name, type, length, decimals] : fields) {
      std::memcpy(&dbf[at], name, std::strlen(name));
      PutAt(dbf, at + 11, type);
      PutAt(dbf, at + 16, static_cast<char>(length));
      PutAt(dbf, at + 17, static_cast<char>(decimals));
      recordLength += length;
      at += 32;
    }
    PutAt(dbf, 4, static_cast<int>(rows.size()));
    PutAt(dbf, 8, static_cast<uint16_t>(dbf.size() + 1));
    PutAt(dbf, 10, static_cast<uint16_t>(recordLength));
    dbf.push_back(0x0D);
    for (const std::string& row : rows) dbf.insert(dbf.end(), row.begin(), row.end());
  }
  void NumberRows() {
    std::vector<std::string> rows;
    for (size_t i = 0; i < shapes.size(); ++i) rows.push_back("*" + std::to_string(100 + i));
    Table({{"NO", 'N', 3, 0}}, rows);
  }
  // An index that names the records of the main file in another order.
  void Index(const std::vector<size_t>& order) {
    std::vector<Shape> named;
    for (size_t i : order) {
      Put(index, static_cast<int>(starts[i] / 2), true);
      Put(index, static_cast<int>((ends[i] - starts[i]) / 2 - 4), true);
      named.push_back(shapes[i]);
    }
    shapes = named;
    NumberRows();
  }
  int Read(K7ShpFile& file) const {
    MemIO io;
    Serve(io);
    return file.Read("a.shp", &io);
  }
  void Serve(MemIO& io) const { io.Put("a.shp", main), io.Put("a.dbf", dbf), io.Put("a.shx", index); }
  // Reads, and expects the first `count` records to be there, those from `rows` on without attributes.
  void Expect(K7ShpFile& file, int code, K7ShpPart bad, int count, int rows = INT32_MAX) const {
    EXPECT_EQ(Read(file), code);
    EXPECT_EQ(file.BadFile(), bad);
    std::string text;
    for (int i = 0; i < count; ++i)
      text += "Record " + std::to_string(i) + ": " + shapes[static_cast<size_t>(i)].Text() +
              (i < rows ? "  NO: " + std::to_string(100 + i) + "\n" : "");
    testing::internal::CaptureStdout();
    file.Print();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed.substr(std::min(printed.find("Record"), printed.size())), text);
  }
  void Expect(int code, K7ShpPart bad, int count, int rows = INT32_MAX) const {
    K7ShpFile file;
    Expect(file, code, bad, count, rows);
  }
};

TEST(ShpFile, ReadsEveryShapeTypeOddPartsMissingMeasuresAndTrailingWords) {
  for (const bool withM : {true, false})
    for (const auto& [points, starts] : {std::pair(5, std::vector{0, 3}), {9, {0, 2, 2}}, {8, {0}}, {0, {}}})
      for (const size_t tail : {0u, 6u}) {  // less than any measure
        Set set;
        set.AddAll(points, starts, withM, tail);
        set.Expect(0, K7_SHP_NO_FILE, 12);
      }
}

TEST(ShpFile, ShapesAnswerForThemselves) {
  Set set;
  set.AddAll(5, {0, 2, 2});
  K7ShpFile file;
  ASSERT_EQ(set.Read(file), 0);
  for (int i = 0; i < 12; ++i) {
    const K7ShpObj& obj = *file.GetRecord(i)->Obj();
    const Shape& want = set.shapes[static_cast<size_t>(i)];
    SCOPED_TRACE(want.type);
    EXPECT_EQ(obj.Type(), want.type);
    double a = 0, b = 0, c = 0, d = 0;
    EXPECT_EQ(obj.GetPoint(&file, want.points - 1, a, b), 0);
    EXPECT_EQ(std::pair(a, b), std::pair(Y(want.points - 1), X(want.points - 1)));
    for (int outside : {-1, want.points}) EXPECT_EQ(obj.GetPoint(&file, outside, a, b), K7_ERR_OUT_OF_RANGE);
    EXPECT_EQ(obj.GetPoint(nullptr, 0, a, b), K7_ERR_BAD_ARGUMENT);
    EXPECT_EQ(obj.GetBounds(nullptr, a, b, c, d), K7_ERR_BAD_ARGUMENT);
    EXPECT_EQ(obj.GetBounds(&file, a, b, c, d), 0);
    EXPECT_EQ(std::tuple(a, b, c, d),
              want.IsPoint() ? std::tuple(Y(0), Y(0), X(0), X(0)) : std::tuple(4., 2., 3., 1.));
    EXPECT_EQ(obj.GetPos(&file, a, b), want.IsPoint() ? 0 : int{K7_ERR_NOT_IMPLEMENTED});
    EXPECT_EQ(obj.GetPolyCount(), want.HasParts() ? 3 : 0);
    const int sizes[] = {2, 0, 3};
    for (int part = -1; part < 4; ++part)
      EXPECT_EQ(obj.GetPolySize(part),
                want.HasParts() && part >= 0 && part < 3 ? sizes[part] : int{K7_ERR_OUT_OF_RANGE});
    const auto* const multi = dynamic_cast<const K7ShpMulti*>(&obj);
    if (!multi) continue;
    EXPECT_EQ(multi->GetZRange(a, b), want.HasZ());
    EXPECT_EQ(multi->GetMRange(c, d), want.HasM());
    if (want.HasZ()) {
      EXPECT_EQ(std::pair(a, b), std::pair(50., 150.));
    }
    if (want.HasM()) {
      EXPECT_EQ(std::pair(c, d), std::pair(950., 1050.));
    }
  }
}

TEST(ShpFile, PrintsHeadersAndEveryKindOfField) {
  Set set(1);
  set.Table({{"NO", 'N', 3, 0}, {"TEXT", 'C', 4, 0}, {"REAL", 'F', 5, 1}}, {"  12ab  -2.50"});
  K7ShpFile file;
  ASSERT_EQ(set.Read(file), 0);
  testing::internal::CaptureStdout();
  file.Print();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Shapefile type 5, code 9994, version 1000, 26 words\n"
            "  x -1 to 11, y -2 to 12, z 13 to 14, m 15 to 16\n"
            "dBASE version 3, 26-08-01, 1 records of 13 bytes behind 129, 3 fields\n"
            "  NO N 3.0\n  TEXT C 4.0\n  REAL F 5.1\n"
            "Record 0: Point -3 7.25\n  NO: 12\n  TEXT: ab\n  REAL: -2.5\n");
}

TEST(ShpFile, NullShapesStopOrStayAndUnknownTypesStop) {
  Set set(1);
  set.Add({0});
  set.Add({0}, 4);
  set.Add({1});
  set.Expect(K7_ERR_INVALID_DATA, K7_SHP_MAIN_FILE, 1);
  K7ShpFile file;
  file.KeepNullShapes(true);
  set.Expect(file, 0, K7_SHP_NO_FILE, 4);
  EXPECT_FALSE(file.GetRecord(2)->Obj());
  for (const int type : {-9, 2, 31}) {
    Set unknown(2);
    PutAt(unknown.main, 136, type);
    unknown.Expect(K7_ERR_INVALID_DATA, K7_SHP_MAIN_FILE, 1);
  }
}

TEST(ShpFile, ConvertsAttributes) {
  // atof and atoi of the C locale give the expected numbers.
  const std::tuple<std::string, double, int32_t> cases[] = {
      {"12.50       ", 12.5, 12},      {"        0042", 42, 42},
      {"  -7.25e+01x", -72.5, -7},     {"99999999999 ", 99999999999.0, INT32_MAX},
      {"1e999       ", HUGE_VAL, 1},   {"-99999999999", -99999999999.0, INT32_MIN},
      {"-1e999      ", -HUGE_VAL, -1}, {"-1E-999     ", 0, -1},
      {"+5          ", 5, 5},          {"+-5         ", 0, 0},
      {"************", 0, 0},          {"           +", 0, 0},
      {"1,5         ", 1, 1},          {"            ", 0, 0},
      {"1e-999      ", 0, 1}};
  Set set;
  std::vector<std::string> rows;
  for (const auto& [text, number, integer] : cases) {
    set.Add({});
    rows.push_back(" " + text + text + "abc  " + '\0' + "x   " + std::string(255, ' ') + text);
  }
  set.Table({{"REAL", 'F', 12, 1},
             {"WHOLE", 'N', 12, 0},
             {"ELEVENCHARS", 'C', 10, 0},
             {"BLANK", 'C', 255, 0},
             {"FULL", 'C', 12, 4}},
            rows);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // decimal comma, where the system has it
  K7ShpFile file;
  const int err = set.Read(file);
  std::setlocale(LC_ALL, "C");
  ASSERT_EQ(err, 0);
  for (int i = 0; i < file.StoredCount(); ++i) {
    const K7ShpRecord& record = *file.GetRecord(i);
    auto [text, number, integer] = cases[i];
    EXPECT_EQ(record.Number(0), number) << text;
    EXPECT_EQ(record.Integer(1), integer) << text;
    EXPECT_EQ(record.Number(1), integer) << text;
    EXPECT_STREQ(record.Text(2), "abc");
    EXPECT_STREQ(record.Text(3), "");
    EXPECT_EQ(record.Text(4), text.erase(text.find_last_not_of(' ') + 1));
    for (const int other : {-1, 0, 2, 5}) EXPECT_EQ(record.Integer(other), 0);
    for (const int other : {-1, 2, 5}) EXPECT_EQ(record.Number(other), 0);
    for (const int other : {-1, 0, 1, 5}) EXPECT_STREQ(record.Text(other), "");
  }
  const std::pair<const char*, int> names[] = {
      {"whole", 1}, {"ElevenChars", 2}, {"ELEVENCHARSX", -1}, {nullptr, -1}};
  for (const auto& [name, field] : names) EXPECT_EQ(file.FindField(name), field);
  EXPECT_EQ(file.Field(3)->length, 255);
}

TEST(ShpFile, GetAttrsReadsAnyRecordWithoutMovingTheSequence) {
  MemIO io;
  Set(3).Serve(io);
  K7ShpFile file;
  ASSERT_EQ(file.Read("a.shp", &io), 0);
  EXPECT_FALSE(file.GetAttrs(0));  // closed
  ASSERT_EQ(file.ReadHeader("a.shp", &io), 0);
  EXPECT_EQ(file.StoredCount(), 0);
  for (const int outside : {-1, 3}) EXPECT_FALSE(file.GetAttrs(outside));
  for (int i = 0; i < 3; ++i) {
    K7DbfField* const attrs = file.GetAttrs(2 - i);
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
  whole.AddAll(3, {0, 1, 1});
  for (size_t cut = 0; cut < whole.main.size(); ++cut) {
    Set set = whole;
    set.main.resize(cut);
    const auto kept = std::ranges::count_if(whole.ends, [&](size_t end) { return end <= cut; });
    set.Expect(cut < 100 ? K7_ERR_FILE_IO : K7_ERR_OUT_OF_RANGE, K7_SHP_MAIN_FILE, static_cast<int>(kept));
  }
  for (size_t cut = 1; cut < whole.dbf.size(); ++cut) {
    Set set = whole;
    set.dbf.resize(cut);
    if (cut < 65)
      set.Expect(K7_ERR_FILE_IO, K7_SHP_ATTR_FILE, 0);
    else
      set.Expect(0, K7_SHP_NO_FILE, 12, static_cast<int>(cut - 65) / 4);
  }
}

// Editors that put records in place leave the tails of longer ones behind, and move what has grown to the
// end.
TEST(ShpFile, TheIndexLeadsAcrossGapsAndToMovedRecords) {
  K7ShpFile file;
  for (const bool keepNullShapes : {false, true})
    for (const Bytes& gap : {Bytes{0x35, 0xF5, 0x46, 0x40, 0x60, 0xDC, 0xCA, 0xEA, 0xD4, 0xCF, 0x1D, 0x40},
                             Bytes(40), Bytes{1, 2, 3, 4}}) {
      Set set;
      set.Add({5, 4});
      set.main.insert(set.main.end(), gap.begin(), gap.end());
      for (const Shape& shape : {Shape{3, 3, {0, 1}}, {1}, {8, 2}, {5, 6, {0, 3}}}) set.Add(shape);
      const int elsewhere[] = {0, 49, static_cast<int>(set.starts[2] / 2) + 1, INT32_MAX / 2, INT32_MIN};
      set.Index({0, 1, 4, 3});
      file.KeepNullShapes(keepNullShapes);
      set.Expect(file, 0, K7_SHP_NO_FILE, 4);
      // An index that leads elsewhere is not believed, nor one that has fewer entries or more.
      const auto expectLost = [&](const Set& lost) {
        EXPECT_NE(lost.Read(file), 0);
        EXPECT_EQ(file.BadFile(), K7_SHP_MAIN_FILE);
        EXPECT_EQ(file.StoredCount(), 1);
      };
      Set lost = set;
      for (const size_t size : {124u, 140u}) lost.index.resize(size), expectLost(lost);
      for (const int words : elsewhere) {
        lost = set;
        PutAt(lost.index, 100 + 8 * 3, __builtin_bswap32(static_cast<unsigned>(words)));
        expectLost(lost);
      }
    }
  Set moved;  // without a gap all records can be read, one of them the old one
  for (int points : {2, 3, 4, 5}) moved.Add({8, points});
  moved.Index({0, 3, 2});
  moved.Expect(0, K7_SHP_NO_FILE, 3);
}

TEST(ShpFile, NoOperationThatFailsShiftsRecords) {
  Set set;
  for (int i = 0; i < 5; ++i) set.Add({8, i + 1});
  for (const Fault fault : {Fault::FILE_CODE, Fault::FILE_HALF, Fault::FILE_NOTHING}) {
    int rowsLost = 0;
    for (int n = 0; n == 0 || plan.count >= n; ++n) {
      SCOPED_TRACE(n);
      FailingIO io;
      set.Serve(io);
      K7ShpFile file;
      plan = {fault, n, false, 0, true};
      const int err = file.Read("a.shp", &io);
      plan.armed = false;
      EXPECT_EQ(err == 0 || err == K7_ERR_MEMORY, file.BadFile() == K7_SHP_NO_FILE);
      EXPECT_TRUE(err || file.StoredCount() == 5);
      int without = 0;
      for (int i = 0; i < file.StoredCount(); ++i) {
        const K7ShpRecord& record = *file.GetRecord(i);
        without += !record.Attrs();
        EXPECT_EQ(record.Integer(0), record.Attrs() ? 100 + i : 0);
        EXPECT_EQ(record.Obj()->GetPointCount(), i + 1);
      }
      rowsLost += err == K7_ERR_OUT_OF_RANGE && without == 1 && file.StoredCount() == 5 &&
                  file.BadFile() == K7_SHP_ATTR_FILE;
    }
    EXPECT_EQ(rowsLost, 5);
  }
}

TEST(ShpFile, AbsurdCountsLengthsAndOffsetsAreRefused) {
  constexpr size_t at = 136;  // the second record's content
  const auto expect = [&](int type, size_t pos, int value, int code) {
    SCOPED_TRACE(testing::Message() << "type " << type << ", " << value << " at " << pos);
    Set set(1);
    set.Add({type, 3, {0, 2}});
    set.Add({});
    PutAt(set.main, pos, value);
    set.Expect(code, code ? K7_SHP_MAIN_FILE : K7_SHP_NO_FILE, code ? 1 : 3);
  };
  for (int type : {3, 5, 13, 25})
    for (int value : {-1, 9, 100000, 0x08000000, INT32_MAX, INT32_MIN})
      for (size_t count : {36u, 40u, 48u}) expect(type, at + count, value, K7_ERR_OUT_OF_RANGE);
  for (int value : {-1, 5, INT32_MAX}) expect(8, at + 36, value, K7_ERR_OUT_OF_RANGE);
  expect(5, at + 44, -1, K7_ERR_OUT_OF_RANGE);
  // Content lengths (as swapped in the file) that can be none: the counts tell the size.
  for (int value : {0, -1, 0x01000000, static_cast<int>(0xFFFFFF7F)}) expect(5, at - 4, value, 0);
  // Without a length to compare with, counts are held against the file before memory is taken.
  Set huge;
  huge.Add({5, 3});
  PutAt(huge.main, 104, 0), PutAt(huge.main, 108 + 40, 0x07000000);
  huge.Expect(K7_ERR_OUT_OF_RANGE, K7_SHP_MAIN_FILE, 0);
}

TEST(ShpFile, ATableThatCannotBeIsTheBadFile) {
  for (const size_t gap : {0u, 10u})
    for (const int count : {4, INT32_MAX, 2, 0, -5})
      for (const bool indexed : {false, true}) {
        SCOPED_TRACE(testing::Message() << count << " rows, gap " << gap << (indexed ? ", index" : ""));
        if (gap && (!indexed || count < 0 || count > 2)) continue;  // nothing tells
        Set set(2);
        set.main.resize(set.main.size() + gap);
        set.Add({});
        if (indexed) set.Index({0, 1, 2});
        PutAt(set.dbf, 4, count);
        set.Expect(K7_ERR_OUT_OF_RANGE, K7_SHP_ATTR_FILE, std::clamp(count, 0, gap ? 2 : 3));
      }
  Set set(3);
  set.Table(std::vector<FieldDef>(40, {"EMPTY", 'N', 0, 0}), {" "});
  set.Expect(K7_ERR_FILE_IO, K7_SHP_ATTR_FILE, 0);
  set.Table(std::vector<FieldDef>(2047, {"MANY", 'N', 1, 0}), {});
  set.Expect(K7_ERR_FILE_IO, K7_SHP_ATTR_FILE, 0);
  set.Table({}, {" ", " ", " "});
  K7ShpFile file;
  set.Expect(file, 0, K7_SHP_NO_FILE, 3, 0);
  EXPECT_FALSE(file.IsValid());
}

TEST(ShpFile, MissingFilesAndArguments) {
  MemIO io;
  Set(1).Serve(io);
  K7ShpFile file;
  io.Put("a", io.Get("a.shp"));
  EXPECT_EQ(file.Read("a", &io), K7_ERR_FILE_IO);
  EXPECT_EQ(file.BadFile(), K7_SHP_ATTR_FILE);
  EXPECT_EQ(file.Read(nullptr, &io), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(file.Read("a.shp", nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(file.BadFile(), K7_SHP_NO_FILE);
  const std::pair<const char*, K7ShpPart> parts[] = {
      {"a.shx", K7_SHP_INDEX_FILE}, {"a.dbf", K7_SHP_ATTR_FILE}, {"a.shp", K7_SHP_MAIN_FILE}};
  for (const auto& [missing, part] : parts) {
    io.files.erase(missing);
    EXPECT_EQ(file.Read("a.shp", &io), K7_ERR_FILE_IO);
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
  for (int i = 0; i < 2; ++i) set.Add({5, 3});
  set.Index({0, 1});
  PolarFile file;
  set.Expect(file, K7_ERR_OUT_OF_RANGE, K7_SHP_NO_FILE, 1);
  double n = 0, s = 0, e = 0, w = 0;
  for (const double up : {-1.0, 1.0}) {  // the middle of the edge that is nearest to the pole
    const K7ShpRect rect = up < 0 ? K7ShpRect{-10, -20, 10, -5} : K7ShpRect{-10, 5, 10, 20};
    ASSERT_TRUE(file.K7Shp2ChartRect(&rect, n, s, e, w));
    EXPECT_EQ(n, 85);
    EXPECT_DOUBLE_EQ(s, 90 - std::hypot(10, 20));
    EXPECT_DOUBLE_EQ(e, up < 0 ? std::atan2(10, 5) * 57.29577951308232 : 180);
    EXPECT_DOUBLE_EQ(w, up < 0 ? -e : -std::atan2(10, -20) * 57.29577951308232);
  }
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
  const std::tuple<const char*, int, int, int> sets[] = {
      {"ne_50m_land", 1420, 78447, 0},
      {"ne_110m_admin_0_boundary_lines_land", 185, 2827, 185},
      {"ne_50m_rivers_lake_centerlines", 460, 25629, 894}};
  for (const auto& [name, records, points, parts] : sets) {
    EXPECT_EQ(file.Read((std::string(K7_SAMPLE_DATA "/") + name + ".shp").c_str(), K7IO::Inst()), 0);
    int sums[2] = {};
    for (int i = 0; i < file.StoredCount(); ++i) {
      sums[0] += file.GetRecord(i)->Obj()->GetPointCount();
      sums[1] += file.GetRecord(i)->Obj()->GetPolyCount();
    }
    EXPECT_EQ(std::tuple(file.StoredCount(), sums[0], parts ? sums[1] : 0),
              std::tuple(records, points, parts));
  }
  const K7ShpRecord& river = *file.GetRecord(100);
  EXPECT_STREQ(river.Text(file.FindField("name")), "Zambezi");
  EXPECT_STREQ(river.Text(file.FindField("featurecla")), "Lake Centerline");
  EXPECT_EQ(river.Integer(file.FindField("scalerank")), 3);
  EXPECT_EQ(river.Obj()->GetPolySize(0), 10);
  EXPECT_NEAR(river.Obj()->Points()[10].x, 32.7084224787145, 1e-12);
  EXPECT_NEAR(river.Obj()->Points()[10].y, -15.5792037903226, 1e-12);
}

}  // namespace
