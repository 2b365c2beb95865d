// What hosts do, each in a few lines.
#pragma once

#include "failing/driver.h"
#include "support/small_store.h"

#include <memory>

namespace scenarios {

#define TRY(call) \
  if (const int code = (call); code < 0) return code

constexpr const char* NAMES[] = {"Rhine", "Elbe", "Danube", "Rhone", "Po",   "Loire", "Weser", "Oder",
                                 "Tagus", "Ebro", "Seine",  "Main",  "Elbe", "Po",    "Drau",  "Sava"};
constexpr char DOCUMENT[] =
    "<Chart scale=\"1:50000\" name=\"a &amp; &quot;b&quot;\"><!-- made by hand -->\n<Layer id=\"1\" "
    "colour=\"blue\">Sea &lt; Land</Layer><Layer id=\"2\"><Part>x</Part><Part/></Layer></Chart>";
constexpr char OLD[] = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<Old/>\n";

inline int IfKept(bool kept, int err) { return err < 0 && !kept ? DAMAGED : err; }
inline int Memory(bool done) { return done ? 0 : int{K7_ERR_MEMORY}; }

inline int Strings(FailingIO&, Digest& got) {
  K7String text;
  for (int (*const step)(K7String&) : {
           +[](K7String& s) { return s.Create("Victor airways"); },
           +[](K7String& s) { return s += " and more text than fits"; },
           +[](K7String& s) { return s.Insert(3, "inserted in front, long enough to grow"); },
           +[](K7String& s) { return s.Replace("r", "<r is longer now>"); },
           +[](K7String& s) { return s.Format("%s: %08.3f %C", static_cast<const char*>(s), 2.5, 'x'); },
           +[](K7String& s) { return s.Copy("jet routes, in place of all that there was before"); },
           +[](K7String& s) { return s.Alloc(2000); },
       }) {
    const Digest before(text);
    const int result = step(text);
    if (result < 0) return IfKept(Digest(text) == before, result);
    got.Add(text);
  }
  return 0;
}

inline int StringParts(FailingIO&, Digest& got) {
  int errs[4] = {};
  const K7String text("alpha,bravo,,charlie");
  for (const K7String& part :
       {text, text.Left(5, &errs[0]), text.Right(7, &errs[1]), text.Mid(6, 5, &errs[2]), text + ", delta",
        text + '!', K7String(K7FmtString("%s %d", "echo", 5)), K7Time(951782400).Format("%Y-%m-%d")}) {
    if (part.IsEmpty()) return K7_ERR_MEMORY;
    got.Add(part);
  }
  if (errs[0] || errs[1] || errs[2]) return DAMAGED;
  K7String token;
  for (int pos = 0; (pos = text.Token(",", pos, token)) != 0; got.Add(token)) TRY(pos);
  char* const copy = text.Dup(&errs[3]);
  got.Add(copy ? copy : "");
  std::free(copy);
  return errs[3];
}

inline int Arrays(FailingIO&, Digest& got) {
  K7StrArray names, removed;
  K7PtrArray pointers, shared;
  for (const char* const name : NAMES) {
    const int count = names.Count();
    if (const int err = names += name) return IfKept(names.Count() == count, err);
    TRY(names.Insert(name, 0));
    TRY(pointers += const_cast<char*>(name));
  }
  TRY(names.Put(0, "Po"));
  int* const order = names.IndexSort();
  for (int i = 0; order && i < names.Count(); ++i) got.Add(order[i]);
  std::free(order);
  if (!order) return K7_ERR_MEMORY;
  names.QuickSort();
  const int gone = names.RemoveAdjDups(nullptr, &removed);
  if (names.Count() + gone != 32 || gone != removed.Count()) return DAMAGED;
  if (const int err = shared.DeepCopy(&pointers)) return IfKept(shared.Count() == 0, err);
  for (int i = 0; i < names.Count(); ++i) got.Add(names[i]);
  for (int i = 0; i < shared.Count(); ++i) got.Add(static_cast<const char*>(shared[i]));
  return Memory(names.Count() == 14);  // what cannot be handed over stays
}

inline int Map(FailingIO&, Digest& got) {
  K7StrMap map([](void* value) { std::free(value); });
  int err = 0;
  for (const char* const name : NAMES) {
    const K7String key(name);
    char* const value = K7String::Dup(name, &err);
    const int before = map.Count();
    void* const old = value && !key.IsEmpty() ? map.Insert(key, value, &err) : nullptr;
    const bool refused = err || key.IsEmpty();
    std::free(refused ? value : old);
    if (refused) err = IfKept(map.Count() == before, K7_ERR_MEMORY);
    if (err) break;
  }
  for (int i = 0; i < map.Count(); ++i) got.Add(static_cast<const char*>(map.Get(map.GetKey(i))));
  map.FreeElems();
  return err;
}

struct Member : K7HeapObj, K7CacheObj {
  bool Precedes(const K7HeapObj& other) const override {
    return rank < static_cast<const Member&>(other).rank;
  }
  int CacheSize() const override { return 10; }
  void FreeContents() override {}
  int rank = 0;
};

inline int HeapAndCache(FailingIO&, Digest& got) {
  static Member members[2100];
  K7Heap heap(K7_HEAP_MIN, 4);
  K7Cache cache(400);
  int err = 0, last = -1, cached = 0;
  for (int i = 0; i < 2100; ++i) {
    members[i].rank = i * 7919 % 2100;
    if (!err) err = heap.Insert(&members[i]);
    if (const int cacheErr = i < 60 ? cache.Insert(&members[i]) : 0; !err) err = cacheErr;
  }
  while (const K7HeapObj* const top = heap.PopTop()) {
    if (static_cast<const Member*>(top)->rank < last) return DAMAGED;
    last = static_cast<const Member*>(top)->rank;
  }
  for (const Member& member : members) cached += member.CachePosition() >= 0;
  got.Add(last, cached);
  const bool agree = cache.CurSize() == 10 * cached;
  cache.FreeAll();
  return agree ? err : DAMAGED;
}

inline Digest Contents(K7Options& options) {
  Digest all;
  for (int i = 0; const K7KeyValue* const s = options.GetKeyValueByIndex(i); ++i)
    all.Add(s->key, s->value, s->group);
  return all;
}

inline int OptionsRead(FailingIO&, Digest& got) {
  K7Options* const options = K7Options::Inst();
  if (!options) return K7_ERR_MEMORY;
  TRY(options->SetOption("Old", "1", "G"));
  const Digest before = Contents(*options);
  const int err = options->Read("o.xml");
  got = Contents(*options);
  return IfKept(got == before, err);
}

inline int OptionsSetAndWrite(FailingIO&, Digest& got) {
  K7Options* const options = K7Options::Inst();
  if (!options) return K7_ERR_MEMORY;
  for (int i = 0; i < 40; ++i) {
    const Digest before = Contents(*options);
    const char* const name = NAMES[i % 16];
    const int err = i % 3 ? options->SetOption(name, "a <b> & \"c\" that grows", i % 2 ? "G & H" : nullptr)
                          : options->SetOption(name, i * 0.5, "");
    got = Contents(*options);
    if (err) return err == K7_ERR_MEMORY ? IfKept(got == before, err) : DAMAGED;
  }
  K7PtrArray group;
  if (options->GetKeyValuesByGroup("G & H", group)) return K7_ERR_MEMORY;
  got.Add(group.Count());
  return options->Write("o.xml");
}

inline int Log(FailingIO& host, Digest& got) {
  bool logged = K7Log::CreateLogFile("log.txt", &host);
  for (int i = 0; i < 3; ++i) logged = K7Log::LogMessage(K7_LOG_WARNING, "%s %d", NAMES[i], i) && logged;
  const Quiet quiet;
  const std::string text = host.Text("log.txt");
  // The time of day differs from run to run.
  for (size_t at = 0; (at = text.find("  W  ", at)) != std::string::npos; ++at)
    got.Add(text.substr(at, text.find('\n', at) - at));
  return logged ? 0 : K7_ERR_LOG;
}

inline int XmlTree(FailingIO&, Digest& got) {
  K7XmlElem root;
  int err = 0;
  if (!root.Parse(DOCUMENT, &err)) return err;
  for (int i = 0; i < 12; ++i) TRY(root.AddAttrib(NAMES[i], "v & w"));
  const std::unique_ptr<K7XmlElem> copy(root.Clone(&err));
  if (!copy) return err;
  K7String name, value, text;
  for (int i = 0; i < 14; ++i) {
    if (!copy->GetAttribByIndex(i, name, value) || !copy->Attrib(name, text)) return K7_ERR_MEMORY;
    got.Add(name, value, text);
  }
  TRY(copy->SetText("text"));
  TRY(copy->FirstChild()->SetName("First"));
  TRY(copy->Write(text, 1));
  got.Add(text);
  return 0;
}

template <bool ON_DISK>
int XmlRead(FailingIO&, Digest& got) {
  K7XmlElem root;
  K7String text;
  TRY(root.ParseFile(ON_DISK ? OnDisk("d.xml") : "d.xml"));
  if (root.NumAttribs() != 2) return K7_ERR_MEMORY;
  TRY(root.Write(text));
  got.Add(text);
  return 0;
}

template <bool ON_DISK>
int XmlWrite(FailingIO&, Digest&) {
  K7XmlElem root;
  int err = 0;
  return root.Parse(DOCUMENT, &err) ? root.WriteFile(ON_DISK ? OnDisk("o.xml") : "o.xml") : err;
}

// That a name is left out is how a search fails; one of another folder is damage.
template <void (*FIND)(K7StrArray& names), int COUNT>
int Search(FailingIO&, Digest& got) {
  for (const char* const below : {"alpha/alpha one/alpha two", "beta/beta one"}) {
    const Quiet quiet;
    std::filesystem::create_directories(OnDisk(below));
  }
  K7StrArray names;
  FIND(names);
  for (int i = 0; i < names.Count(); ++i) {
    if (!std::strstr("alpha.txt beta ..", names[i]) && !std::strstr(names[i], "/disk/")) return DAMAGED;
    got.Add(names[i]);
  }
  return Memory(names.Count() >= COUNT);
}
inline void FindFiles(K7StrArray& names) { Native().FindFiles(OnDisk("*"), names); }
inline void FindDirs(K7StrArray& names) { Native().FindDirs(OnDisk("*"), names); }
inline void FindDirsRecur(K7StrArray& names) { Native().FindDirsRecur(OnDisk(""), names, 0); }

inline int NativeFiles(FailingIO&, Digest& got) {
  char line[32] = "";
  for (const char* const mode : {"wb", "rb"}) {
    const std::unique_ptr<K7File> file(Native().CreateFileX(OnDisk("file.bin"), mode));
    if (!file || !file->IsValid()) return K7_ERR_MEMORY;
    const bool done = *mode == 'w' ? file->Write("text\n", 5) == 5 : file->ReadLine(line, sizeof line);
    if (!done) return K7_ERR_FILE_IO;
  }
  got.Add(line);
  return Memory(K7File::FilePathExists(OnDisk("file.bin")) && Native().DeleteFileX(OnDisk("file.bin")));
}

inline int Version(FailingIO&, Digest& got) {
  const int err = Native().RetrieveRVXVersionString("data/");
  char version[30] = "";
  Native().GetRVXVersionString(version, sizeof version);
  got.Add(version);
  return err;
}

inline std::unique_ptr<K7File> Opened(FailingIO& host, const char* mode) {
  const Quiet quiet;
  return std::unique_ptr<K7File>(host.CreateFileX("f.bin", mode));
}

// Writing may fail without a word, as is stated: then reading it again tells.
inline int Compressed(FailingIO& host, Digest& got) {
  char* out = nullptr;
  TRY(Opened(host, "wb")->SecureCompress(DOCUMENT, sizeof DOCUMENT));
  const int err = Opened(host, "rb")->SecureDecompress(&out);
  got.Add(out ? out : "");
  const bool kept = !err || !out;
  std::free(out);
  return IfKept(kept, err);
}

inline int StringFile(FailingIO& host, Digest& got) {
  K7String text;
  TRY(text.Create("a text in a file"));
  TRY(text.Write(Opened(host, "wb").get()));
  TRY(text.Read(Opened(host, "rb").get()));
  got.Add(text);
  return 0;
}

inline int Checksum(FailingIO& host, Digest& got) {
  TRY(K7CRC::createCRCFile("data.bin"));
  const int err = K7CRC::CheckCRC("data.bin", 0);
  const Quiet quiet;
  got.Add(host.Text("data.crc"));
  return err;
}

inline void AddRecord(K7ShpFile& file, const K7ShpRecord& record, Digest& got) {
  for (int i = 0; i < record.Obj()->GetPointCount(); ++i) {
    double lat, lon;
    record.Obj()->GetPoint(&file, i, lat, lon);
    got.Add(lat, lon);
  }
  for (int i = 0; i < file.FieldCount(); ++i) got.Add(record.Text(i), record.Number(i));
}

inline int Shapes(FailingIO& host, Digest& got) {
  K7ShpFile file;
  TRY(file.Read("rivers.shp", &host));
  for (int i = 0; i < file.StoredCount(); ++i) AddRecord(file, *file.GetRecord(i), got);
  return 0;
}

inline int ShapesOneByOne(FailingIO& host, Digest& got) {
  K7ShpFile file;
  TRY(file.ReadHeader("rivers.shp", &host));
  for (int i = 0; i < file.RecordCount(); ++i) {
    const std::unique_ptr<K7ShpRecord> record(file.NextRecord());
    K7DbfField* const attrs = file.GetAttrs(i);
    const bool both = record && attrs;
    if (both) AddRecord(file, *record, got);
    if (const int name = file.FindField("name"); both && name >= 0) got.Add(attrs[name].text);
    file.ReleaseAttrs(attrs);
    if (file.BadFile() != K7_SHP_NO_FILE) return K7_ERR_FILE_IO;
    if (!both) return K7_ERR_MEMORY;
  }
  return 0;
}

// What did not get memory leaves the layer empty, and no half document.
inline int ShapeLayer(FailingIO& host, Digest& got) {
  K7ShpLayer layer;
  const int err = layer.Read("land.shp", &host);
  K7ShapeTable* const table = layer.Table();
  if (err) return IfKept(!table || table->RecordCount() == 0, err);
  if (!table) return K7_ERR_MEMORY;
  const std::unique_ptr<K7ShapeQuery> query(table->AreaQuery({50, 0, 60, -120}));
  if (!query || !layer.Features()) return K7_ERR_MEMORY;
  K7String text("before");
  while (K7ShapeRec* const record = query->Next()) {
    if (const int code = layer.ToXML(record, K7XML_FULL, text)) return text.IsEmpty() ? code : DAMAGED;
    got.Add(text);
    if (const int code = layer.GetDescription(record, text)) return text.IsEmpty() ? code : DAMAGED;
    double lat, lon;
    TRY(record->GetPos(lat, lon));
    got.Add(text, lat, lon, layer.Features()->PointCount(record->GetKey() - 1));
    const int vertices = record->GetTriVertCount();
    if (vertices == 0) return K7_ERR_MEMORY;
    got.Add(vertices);
  }
  return 0;
}

inline int Images(FailingIO& host, Digest& got) {
  const ScopedIO scope(&host);
  K7RasterCache cache(1 << 20);
  for (const char* const path : {"a.gif", "a.bmp", "a.pcx", "a.png"}) {
    int err = 0;
    const K7Bitmap* const bitmap = cache.Get(path, &err);
    if (!bitmap) return err;
    K7Bitmap image;
    TRY(bitmap->GenTransparent(image));
    for (int i = 0; i < image.Width() * image.Height(); ++i)
      got.Add(static_cast<int>(image.Colors()[i].BGRA()));
    TRY(bitmap->GenMask(image));
    got.Add(static_cast<int>(image.GetValue(3, 3)));
  }
  return 0;
}

inline int Positions(FailingIO&, Digest& got) {
  for (const char* const text : {"N47 30.0 W122 18.5", "4728N12218W", "50N40", "47.5, -122.3"}) {
    K7LatLon position(1, 2);
    if (position.ParsePosition(text) <= 0)
      return IfKept(position.Lat() == 1 && position.Lon() == 2, K7_ERR_MEMORY);
    K7String lat, lon;
    if (!position.FormatLat("%H%02d %0200.4M", lat) || !position.FormatLon("%H%03d%02m%02s", lon))
      return K7_ERR_MEMORY;
    got.Add(lat, lon);
  }
  return 0;
}

inline int Projections(FailingIO&, Digest& got) {
  for (int i = 0; i <= 8; ++i) {
    const K7ProjType type = static_cast<K7ProjType>(i);
    int err = 0;
    const std::unique_ptr<K7Projection> made(K7Projection::Create(type, &err));
    const std::unique_ptr<K7Projection> copy(made ? made->Clone(&err) : nullptr);
    const std::unique_ptr<K7Projection> fit(K7MapView::CreateProjection(type, 48, 10, 300, &err));
    if (!copy || !fit) return err;
    for (const K7Projection* const projection : {copy.get(), fit.get()}) {
      double x, y, z;
      projection->LatLon2World(47, 11, x, y, z);
      got.Add(x + y);
    }
  }
  return 0;
}

struct DigestGrfx : K7GrfxK7 {
  explicit DigestGrfx(Digest& digest) : K7GrfxK7(1, 1), got(digest) {}
  void MoveTo(double x, double y) override { got.Add(x, y); }
  void LineTo(double x, double y) override { got.Add(x, y); }
  Digest& got;
};

inline int Charts(FailingIO&, Digest& got) {
  DigestGrfx grfx(got);
  for (const K7ProjType type : {K7_PROJ_LAMBERT, K7_PROJ_MERCATOR, K7_PROJ_ORTHOGRAPHIC}) {
    const std::unique_ptr<K7Projection> projection(K7Projection::Create(type, nullptr));
    if (!projection) return K7_ERR_MEMORY;
    K7MapView view(projection.get(), 300, 200);
    view.LookAt(20, 30, 0);
    K7MapPath path(view);
    K7MapFeatures features;
    // Rings around a place on the far side of the seam, and so large that they are cut there and at the limb.
    for (int size : {5, 300, 40}) {
      K7LatLon ring[300];
      for (int i = 0; i < size; ++i) ring[i].EndPoint(K7LatLon(30, 170), 360.0 * i / size, 300.0 + 10 * size);
      const int before = features.Count();
      const int added = features.Add(size == 40 ? K7_MAP_LINES : K7_MAP_AREA, ring, &size, 1);
      if (added < 0) return IfKept(features.Count() == before, added);
      for (const int points : {path.Area(&grfx, features, added), path.Outline(&grfx, features, added),
                               path.Line(&grfx, ring, size), path.GreatCircle(&grfx, ring, size),
                               path.Area(&grfx, ring, &size, 1), path.WholeMap(&grfx)})
        TRY(points);
    }
  }
  return 0;
}

// What did not get memory leaves no half document.
inline int NavRecords(FailingIO&, Digest& got) {
  static SmallStore store;
  static K7Airport& airport = []() -> K7Airport& {
    const Quiet quiet;
    return AddBusyAirport(store);
  }();
  K7String text("before");
  for (const K7XmlOutputType_t output : {K7XML_FULL, K7XML_DISPLAY}) {
    if (const int err = store.ToXML(&airport, output, text)) return text.IsEmpty() ? err : DAMAGED;
    got.Add(text);
  }
  if (const int err = airport.ToXML(&store, K7XML_FULL, text)) return text.IsEmpty() ? err : DAMAGED;
  got.Add(text);
  TRY(store.GetDescriptionByKey(airport.key, text));
  got.Add(text);
  return 0;
}

using Files = std::vector<std::pair<std::string, std::string>>;

inline Files Land() {
  Files files = {{"land.cpg", "UTF-8"}};
  for (const char* const extension : {"shp", "dbf", "shx"})
    files.emplace_back(std::string("land.") + extension,
                       GetFile(std::string(K7_SAMPLE_DATA "/ne_110m_land.") + extension));
  return files;
}

// Remains of an old record in front of the sixth: the sequence fails, and the index leads on.
inline Files Rivers(bool gap) {
  Files files;
  for (const char* const extension : {"shp", "dbf", "shx"})
    files.emplace_back(std::string("rivers.") + extension,
                       GetFile(std::string(K7_SAMPLE_DATA "/ne_110m_rivers_lake_centerlines.") + extension));
  std::string& main = files[0].second;
  std::string& index = files[2].second;
  const auto byte = [&](size_t at) { return static_cast<size_t>(static_cast<unsigned char>(index[at])); };
  const size_t sixth = 100 + 8 * 5;
  if (gap) main.insert(2 * (byte(sixth + 2) * 256 + byte(sixth + 3)), 512, 'x');
  for (size_t at = sixth; gap && at < index.size(); at += 8) ++index[at + 2];  // 256 words
  return files;
}

inline Files Data() {
  std::string data(250000, 'x');
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 256);
  return {{"data.bin", data}};
}

// A read that falls short is the end of the file: a document cut off, or data that are shorter.
inline std::vector<std::pair<std::string, std::string>> Pictures() {
  const std::string folder = K7_TEST_DATA "/raster/";
  return {{"a.gif", GetFile(folder + "key-5.gif")},
          {"a.bmp", GetFile(folder + "few-rle8.bmp")},
          {"a.pcx", GetFile(folder + "few-8.pcx")},
          {"a.png", GetFile(folder + "key-palette.png")}};
}

constexpr int IO = K7_ERR_FILE_IO, CUT = K7_ERR_XML_MISMATCHED_TAG, BAD = K7_ERR_INVALID_DATA,
              HOST = FailingFile::CODE;
constexpr char OPTIONS[] = "<Options><A Group=\"one\">1</A><B Group=\"two\">2</B><C/></Options>";

inline const Scenario ALL[] = {
    {"Strings", Strings},
    {"StringParts", StringParts},
    {"Arrays", Arrays},
    {"Map", Map},
    {"HeapAndCache", HeapAndCache},
    {"OptionsSetAndWrite", OptionsSetAndWrite, {BAD}, {{"o.xml", OLD}}, "</Options>\n"},
    {"OptionsRead", OptionsRead, {IO, CUT}, {{"o.xml", OPTIONS}}},
    {"Log", Log, {K7_ERR_LOG}},
    {"XmlTree", XmlTree},
    {"HostXmlRead", XmlRead<false>, {IO, CUT}, {{"d.xml", DOCUMENT}}},
    {"NativeXmlRead", XmlRead<true>, {IO}, {{"d.xml", DOCUMENT}}, nullptr, true},
    {"HostXmlWrite", XmlWrite<false>, {IO}, {{"o.xml", OLD}}, "</Chart>\n"},
    {"NativeXmlWrite", XmlWrite<true>, {IO}, {{"o.xml", OLD}}, "</Chart>\n", true},
    {"FindFiles", Search<FindFiles, 5>, {}, {{"alpha.txt", "x"}}, nullptr, true},
    {"FindDirs", Search<FindDirs, 2>, {}, {{"alpha.txt", "x"}}, nullptr, true},
    {"FindDirsRecur", Search<FindDirsRecur, 5>, {}, {}, nullptr, true},
    {"NativeFiles", NativeFiles, {}, {}, nullptr, true},
    {"Version", Version, {BAD}, {{"RVX.version", "9.9.9"}, {"data/RVX.version", "1.2.3"}}},
    {"Compressed", Compressed, {-1}},
    {"Checksum",
     Checksum,
     {IO, K7_ERR_CRC_MISSING, K7_ERR_CRC_UNREADABLE, K7_ERR_CRC_MISMATCH, HOST},
     Data()},
    {"StringFile", StringFile, {IO, HOST}},
    {"ShapesWhole", Shapes, {IO, K7_ERR_OUT_OF_RANGE}, Rivers(false)},
    {"ShapesByIndex", Shapes, {IO, K7_ERR_OUT_OF_RANGE, BAD}, Rivers(true)},
    {"ShapesOneByOne", ShapesOneByOne, {IO}, Rivers(false)},
    {"ShapeLayer", ShapeLayer, {IO, K7_ERR_OUT_OF_RANGE, HOST}, Land()},
    {"Images", Images, {IO, HOST}, Pictures()},
    {"Positions", Positions},
    {"Projections", Projections},
    {"Charts", Charts},
    {"NavRecords", NavRecords},
};

#undef TRY

}  // namespace scenarios
