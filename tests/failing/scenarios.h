// What hosts do, each as a function that answers 0 and what came of it, or how it failed.
#pragma once

#include <k7/core.h>

#include "failing/failing_files.h"
#include "support/temp_dir.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace scenarios {

inline void Store(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}
inline std::string Load(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
inline K7IOK7& Native() {
  static K7IOK7 io;
  return io;
}
/// To be made before the first child process, which would leave it behind.
inline const TempDir& Folder() {
  static const TempDir folder;
  return folder;
}

inline int Strings(Digest& d) {
  static constexpr int (*STEPS[])(K7String&) = {
      [](K7String& s) { return s.Create("Victor airways"); },
      [](K7String& s) { return s += " and more text than fits"; },
      [](K7String& s) { return s.Insert(3, "inserted in front, long enough to grow"); },
      [](K7String& s) { return s.Replace("r", "<r is longer now>"); },
      [](K7String& s) { return s.Format("%s: %08.3f %C", static_cast<const char*>(s), 2.5, 'x'); },
      [](K7String& s) { return s.Copy("jet routes, in place of all that there was before"); },
      [](K7String& s) { return s.Alloc(2000); },
  };
  const Disturbed on;
  K7String text;
  for (const auto step : STEPS) {
    const Digest before(text);
    const int result = step(text);
    if (result < 0) return Digest(text) == before ? result : DAMAGED;
    d.Add(text);
  }
  return 0;
}

inline int StringParts(Digest& d) {
  const Disturbed on;
  int errs[4] = {};
  const K7String text("alpha,bravo,,charlie");
  const K7String parts[] = {text,
                            text.Left(5, &errs[0]),
                            text.Right(7, &errs[1]),
                            text.Mid(6, 5, &errs[2]),
                            text + ", delta",
                            text + '!',
                            K7FmtString("%s %d", "echo", 5),
                            K7Time(951782400).Format("%Y-%m-%d")};
  for (const K7String& part : parts) {
    if (part.IsEmpty()) return K7_ERR_MEMORY;
    d.Add(part);
  }
  if (errs[0] || errs[1] || errs[2]) return DAMAGED;
  K7String token;
  for (int pos = 0; (pos = text.Token(",", pos, token)) != 0;) {
    if (pos < 0) return pos;
    d.Add(token);
  }
  char* const copy = text.Dup(&errs[3]);
  d.Add(copy ? copy : "");
  std::free(copy);
  return errs[3];
}

inline const char* const NAMES[] = {"Rhine", "Elbe", "Danube", "Rhone", "Po",   "Loire", "Weser", "Oder",
                                    "Tagus", "Ebro", "Seine",  "Main",  "Elbe", "Po",    "Drau",  "Sava"};

inline int Arrays(Digest& d) {
  const Disturbed on;
  K7StrArray names;
  K7PtrArray pointers;
  for (const char* const name : NAMES) {
    const int count = names.Count();
    if (const int err = names += name) return names.Count() == count ? err : DAMAGED;
    if (const int err = names.Insert(name, 0)) return err;
    if (const int err = pointers += const_cast<char*>(name)) return err;
  }
  if (const int err = names.Put(0, "Po")) return err;
  int* const order = names.IndexSort();
  if (!order) return K7_ERR_MEMORY;
  d.Add(order, sizeof(int) * static_cast<size_t>(names.Count()));
  std::free(order);
  names.QuickSort();
  K7StrArray removed;
  const int gone = names.RemoveAdjDups(nullptr, &removed);
  if (names.Count() + gone != 32 || gone != removed.Count()) return DAMAGED;
  K7PtrArray shared;
  if (const int err = shared.DeepCopy(&pointers)) return shared.Count() == 0 ? err : DAMAGED;
  for (int i = 0; i < names.Count(); ++i) d.Add(names[i]);
  for (int i = 0; i < shared.Count(); ++i) d.Add(static_cast<const char*>(shared[i]));
  return names.Count() == 14 ? 0 : K7_ERR_MEMORY;  // what cannot be handed over stays
}

inline int Map(Digest& d) {
  const Disturbed on;
  K7StrMap map([](void* value) { std::free(value); });
  int err = 0;
  for (const char* const name : NAMES) {
    const K7String key(name);
    char* const value = K7String::Dup(name, &err);
    const int before = map.Count();
    void* const old = value && !key.IsEmpty() ? map.Insert(key, value, &err) : nullptr;
    const bool refused = err || key.IsEmpty();
    std::free(refused ? value : old);
    if (refused) err = map.Count() == before ? K7_ERR_MEMORY : DAMAGED;
    if (err) break;
  }
  for (int i = 0; i < map.Count(); ++i) d.Add(static_cast<const char*>(map.Get(map.GetKey(i))));
  map.FreeElems();
  return err;
}

inline int HeapAndCache(Digest& d) {
  static struct Member : K7HeapObj, K7CacheObj {
    bool Precedes(const K7HeapObj& other) const override {
      return rank < static_cast<const Member&>(other).rank;
    }
    int CacheSize() const override { return 10; }
    void FreeContents() override {}
    int rank = 0;
  } members[2100];
  const Disturbed on;
  K7Heap heap(K7_HEAP_MIN, 4);
  K7Cache cache(400);
  int err = 0;
  for (int i = 0; i < 2100; ++i) {
    members[i].rank = i * 7919 % 2100;
    if (!err) err = heap.Insert(&members[i]);
    if (const int cacheErr = i < 60 ? cache.Insert(&members[i]) : 0; !err) err = cacheErr;
  }
  int last = -1, cached = 0;
  while (const K7HeapObj* const top = heap.PopTop()) {
    if (static_cast<const Member*>(top)->rank < last) return DAMAGED;
    last = static_cast<const Member*>(top)->rank;
  }
  for (const Member& member : members) cached += member.CachePosition() >= 0;
  d.Add(last);
  d.Add(cached);
  const bool agree = cache.CurSize() == 10 * cached;
  cache.FreeAll();
  return agree ? err : DAMAGED;
}

struct ScopedOptions {
  ~ScopedOptions() { K7Options::Destroy(); }
  Digest Contents() const {
    Digest d;
    for (int i = 0; const K7KeyValue* const s = options->GetKeyValueByIndex(i); ++i)
      for (const K7String* const text : {&s->key, &s->value, &s->group}) d.Add(*text);
    return d;
  }
  K7Options* const options = K7Options::Inst();
};

// A failed writing leaves the old file or the whole new one. A host's own file that is being written may be
// lost with its disk, though not with memory.
constexpr char OLD[] = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<Old/>\n";
inline int Failed(int err, const std::string& now, const char* end) {
  return plan.fault != Fault::MEMORY || now == OLD || now.ends_with(end) ? err : DAMAGED;
}

inline int OptionsWrite(Digest& d) {
  FailingIO host;
  host.memory.Put("o.xml", std::string(OLD));
  const ScopedOptions scope;
  scope.options->SetOption("Colour", "a <b> & \"c\"", "Sea & land");
  scope.options->SetOption("Ratio", 2.5);
  int err;
  {
    const Disturbed on;
    err = scope.options->Write("o.xml");
  }
  d.Add(host.Text("o.xml").c_str());
  return err ? Failed(err, host.Text("o.xml"), "</Options>\n") : 0;
}

inline int OptionsRead(Digest& d) {
  FailingIO host;
  host.memory.Put("o.xml",
                  std::string("<Options><A Group=\"one\">1</A><B Group=\"two\">2</B><C/></Options>"));
  const ScopedOptions scope;
  scope.options->SetOption("Old", "1", "G");
  const Digest before = scope.Contents();
  const Disturbed on;
  const int err = scope.options->Read("o.xml");
  d = scope.Contents();
  return err && !(d == before) ? DAMAGED : err;
}

inline int OptionsSet(Digest& d) {
  const Disturbed on;
  const ScopedOptions scope;
  if (!scope.options) return K7_ERR_MEMORY;
  for (int i = 0; i < 40; ++i) {
    const Digest before = scope.Contents();
    const int err = i % 3
                        ? scope.options->SetOption(NAMES[i % 16], "a value that grows", i % 2 ? "G" : nullptr)
                        : scope.options->SetOption(NAMES[i % 16], i * 0.5, "");
    d = scope.Contents();
    if (err) return d == before ? err : DAMAGED;
  }
  K7PtrArray group;
  const int err = scope.options->GetKeyValuesByGroup("G", group);
  d.Add(group.Count());
  return err;
}

inline int Log(Digest& d) {
  FailingIO host;
  bool logged;
  {
    const Disturbed on;
    logged = K7Log::CreateLogFile("log.txt", &host);
    for (int i = 0; i < 3; ++i) logged = K7Log::LogMessage(K7_LOG_WARNING, "%s %d", NAMES[i], i) && logged;
  }
  const std::string text = host.Text("log.txt");
  K7Log::CloseLogFile();
  tzset();  // the C library gets back what it keeps of the zone
  // The time of day differs from run to run.
  for (size_t at = 0; (at = text.find("  W  ", at)) != std::string::npos; ++at)
    d.Add(text.substr(at, text.find('\n', at) - at).c_str());
  return logged ? 0 : K7_ERR_LOG;
}

constexpr char DOCUMENT[] =
    "<Chart scale=\"1:50000\" name=\"a &amp; &quot;b&quot;\"><!-- made by hand -->\n<Layer id=\"1\" "
    "colour=\"blue\">Sea &lt; Land</Layer><Layer id=\"2\"><Part>x</Part><Part/></Layer></Chart>";

inline int XmlTree(Digest& d) {
  const Disturbed on;
  K7XmlElem root;
  int err = 0;
  if (!root.Parse(DOCUMENT, &err)) return err;
  for (int i = 0; i < 12; ++i)
    if ((err = root.AddAttrib(NAMES[i], "v & w"))) return err;
  const std::unique_ptr<K7XmlElem> copy(root.Clone(&err));
  if (!copy) return err;
  K7String name, value, text;
  for (int i = 0; i < 14; ++i) {
    if (!copy->GetAttribByIndex(i, name, value) || !copy->Attrib(name, text)) return K7_ERR_MEMORY;
    for (const K7String* const part : {&name, &value, &text}) d.Add(*part);
  }
  if ((err = copy->SetText("text")) || (err = copy->FirstChild()->SetName("First"))) return err;
  err = copy->Write(text, 1);
  d.Add(text);
  return err;
}

template <bool NATIVE>
int XmlRead(Digest& d) {
  static const std::string native = Folder() / "d.xml";
  Store(native, DOCUMENT);
  FailingIO host;
  host.memory.Put("d.xml", std::string(DOCUMENT));
  if (NATIVE) K7IO::SetInst(&Native());
  K7XmlElem root;
  K7String text;
  {
    const Disturbed on;
    if (const int err = root.ParseFile(NATIVE ? native.c_str() : "d.xml")) return err;
    if (root.NumAttribs() != 2) return K7_ERR_MEMORY;
  }
  root.Write(text);
  d.Add(text);
  return 0;
}

template <bool NATIVE>
int XmlWrite(Digest& d) {
  static const std::string folder = Folder() / "write";
  static const std::string native = folder + "/o.xml";
  std::filesystem::create_directory(folder);
  Store(native, OLD);
  FailingIO host;
  host.memory.Put("o.xml", std::string(OLD));
  if (NATIVE) K7IO::SetInst(&Native());
  K7XmlElem root;
  root.Parse(DOCUMENT);
  int err;
  {
    const Disturbed on;
    err = root.WriteFile(NATIVE ? native.c_str() : "o.xml");
  }
  const std::string now = NATIVE ? Load(native) : host.Text("o.xml");
  d.Add(now.c_str());
  const auto entries = std::distance(std::filesystem::directory_iterator(folder), {});
  std::filesystem::remove_all(folder);
  if (entries != 1) return LITTERED;
  return err ? Failed(err, now, NATIVE ? OLD : "</Chart>\n") : 0;
}

// That a name is left out is how a search fails; one of another folder is damage.
template <int WHAT>
int Search(Digest& d) {
  static const std::string root = Folder() / "tree/", pattern = root + "*";
  std::filesystem::create_directories(root + "alpha/alpha one/alpha two");
  std::filesystem::create_directories(root + "beta/beta one");
  Store(root + "alpha.txt", "x");
  Native();
  K7StrArray names;
  const Disturbed on;
  if (WHAT == 0) Native().FindFiles(pattern.c_str(), names);
  if (WHAT == 1) Native().FindDirs(pattern.c_str(), names);
  if (WHAT == 2) Native().FindDirsRecur(root.c_str(), names, 0);
  for (int i = 0; i < names.Count(); ++i) {
    if (!std::strstr("alpha.txt beta ..", names[i]) && !std::strstr(names[i], "/tree/")) return DAMAGED;
    d.Add(names[i]);
  }
  return names.Count() < (WHAT == 1 ? 2 : 5) ? K7_ERR_MEMORY : 0;
}

inline int NativeFiles(Digest& d) {
  static const std::string path = Folder() / "file.bin";
  Native();
  const Disturbed on;
  char line[32] = "";
  for (const char* const mode : {"wb", "rb"}) {
    const std::unique_ptr<K7File> file(Native().CreateFileX(path.c_str(), mode));
    if (!file || !file->IsValid()) return K7_ERR_MEMORY;
    if (*mode == 'w' ? file->Write("text\n", 5) != 5 : !file->ReadLine(line, sizeof line))
      return K7_ERR_FILE_IO;
  }
  d.Add(line);
  return K7File::FilePathExists(path.c_str()) && Native().DeleteFileX(path.c_str()) ? 0 : K7_ERR_MEMORY;
}

inline int Version(Digest& d) {
  FailingIO host;
  host.memory.Put("RVX.version", std::string("9.9.9"));
  host.memory.Put("data/RVX.version", std::string("1.2.3"));
  Native();
  const Disturbed on;
  const int err = Native().RetrieveRVXVersionString("data/");
  char version[30] = "";
  Native().GetRVXVersionString(version, sizeof version);
  d.Add(version);
  return err;
}

// Writing may fail without a word, as is stated: then reading it again tells.
inline int Compressed(Digest& d) {
  FailingIO host;
  for (const char* const mode : {"wb", "rb"}) {
    const std::unique_ptr<K7File> file(host.CreateFileX("c.bin", mode));
    const Disturbed on;
    char* out = nullptr;
    const int err =
        *mode == 'w' ? file->SecureCompress(DOCUMENT, sizeof DOCUMENT) : file->SecureDecompress(&out);
    d.Add(out ? out : "");
    std::free(out);
    if (err) return out ? DAMAGED : err;
  }
  return 0;
}

inline int Checksum(Digest& d) {
  FailingIO host;
  std::string data(250000, 'x');
  for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 256);
  host.memory.Put("data.bin", data);
  int err;
  {
    const Disturbed on;
    err = K7CRC::createCRCFile("data.bin");
    if (!err) err = K7CRC::CheckCRC("data.bin", 0);
  }
  const std::string sum = host.Text("data.crc");
  d.Add(sum.data(), sum.size());
  return err;
}

inline int StringFile(Digest& d) {
  FailingIO host;
  K7String text("a text in a file");
  for (const char* const mode : {"wb", "rb"}) {
    const std::unique_ptr<K7File> file(host.CreateFileX("s.bin", mode));
    const Disturbed on;
    if (const int err = *mode == 'w' ? text.Write(file.get()) : text.Read(file.get())) return err;
  }
  d.Add(text);
  return 0;
}

inline void AddRecord(K7ShpFile& file, const K7ShpRecord& record, Digest& d) {
  for (int i = 0; i < record.Obj()->GetPointCount(); ++i) {
    double lat, lon;
    record.Obj()->GetPoint(&file, i, lat, lon);
    d.Add(lat);
    d.Add(lon);
  }
  for (int i = 0; i < file.FieldCount(); ++i) {
    d.Add(record.Text(i));
    d.Add(record.Number(i));
  }
}

template <bool WHOLE>
int Shapes(Digest& d) {
  FailingIO host;
  for (const char* const extension : {"shp", "dbf", "shx"})
    host.memory.Put((std::string("rivers.") + extension).c_str(),
                    Load(std::string(K7_SAMPLE_DATA "/ne_110m_rivers_lake_centerlines.") + extension));
  K7ShpFile file;
  const Disturbed on;
  if (const int err = WHOLE ? file.Read("rivers.shp", &host) : file.ReadHeader("rivers.shp", &host))
    return err;
  for (int i = 0; i < file.StoredCount(); ++i) AddRecord(file, *file.GetRecord(i), d);
  for (int i = WHOLE ? file.RecordCount() : 0; i < file.RecordCount(); ++i) {
    const std::unique_ptr<K7ShpRecord> record(file.NextRecord());
    K7DbfField* const attrs = file.GetAttrs(i);
    const bool both = record && attrs;
    if (both) AddRecord(file, *record, d);
    if (const int name = file.FindField("name"); both && name >= 0) d.Add(attrs[name].text);
    file.ReleaseAttrs(attrs);
    if (file.BadFile() != K7_SHP_NO_FILE) return K7_ERR_FILE_IO;
    if (!both) return K7_ERR_MEMORY;
  }
  return 0;
}

inline int Positions(Digest& d) {
  const Disturbed on;
  for (const char* const text : {"N47 30.0 W122 18.5", "4728N12218W", "50N40", "47.5, -122.3"}) {
    K7LatLon position(1, 2);
    if (position.ParsePosition(text) <= 0)
      return position.Lat() == 1 && position.Lon() == 2 ? K7_ERR_MEMORY : DAMAGED;
    K7String lat, lon;
    if (!position.FormatLat("%H%02d %0200.4M", lat) || !position.FormatLon("%H%03d%02m%02s", lon))
      return K7_ERR_MEMORY;
    d.Add(lat);
    d.Add(lon);
  }
  return 0;
}

inline int Projections(Digest& d) {
  const Disturbed on;
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
      d.Add(x + y);
    }
  }
  return 0;
}

inline int Charts(Digest& d) {
  struct Grfx : K7GrfxK7 {
    explicit Grfx(Digest& digest) : K7GrfxK7(1, 1), out(digest) {}
    void MoveTo(double x, double y) override { LineTo(x, y); }
    void LineTo(double x, double y) override {
      out.Add(x);
      out.Add(y);
    }
    Digest& out;
  } grfx(d);
  for (const K7ProjType type : {K7_PROJ_LAMBERT, K7_PROJ_MERCATOR, K7_PROJ_ORTHOGRAPHIC}) {
    const std::unique_ptr<K7Projection> projection(K7Projection::Create(type, nullptr));
    const Disturbed on;
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
      if (added < 0) return features.Count() == before ? added : DAMAGED;
      for (const int points : {path.Area(&grfx, features, added), path.Outline(&grfx, features, added),
                               path.Line(&grfx, ring, size), path.GreatCircle(&grfx, ring, size),
                               path.Area(&grfx, ring, &size, 1), path.WholeMap(&grfx)})
        if (points < 0) return points;
    }
  }
  return 0;
}

inline const Scenario ALL[] = {
    {"Strings", Strings, {K7_ERR_MEMORY}},
    {"StringParts", StringParts, {K7_ERR_MEMORY}},
    {"Arrays", Arrays, {K7_ERR_MEMORY}},
    {"Map", Map, {K7_ERR_MEMORY}},
    {"HeapAndCache", HeapAndCache, {K7_ERR_MEMORY}},
    {"OptionsWrite", OptionsWrite, {K7_ERR_MEMORY, K7_ERR_INVALID_DATA}, true},
    {"OptionsRead", OptionsRead, {K7_ERR_MEMORY, K7_ERR_FILE_IO, K7_ERR_XML_MISMATCHED_TAG}, true},
    {"OptionsSet", OptionsSet, {K7_ERR_MEMORY}},
    {"Log", Log, {K7_ERR_LOG}, true},
    {"XmlTree", XmlTree, {K7_ERR_MEMORY}},
    // A read that falls short is the end of the file: a document cut off, or data that are shorter.
    {"HostXmlRead", XmlRead<false>, {K7_ERR_MEMORY, K7_ERR_FILE_IO, K7_ERR_XML_MISMATCHED_TAG}, true},
    {"NativeXmlRead", XmlRead<true>, {K7_ERR_MEMORY, K7_ERR_FILE_IO}},
    {"HostXmlWrite", XmlWrite<false>, {K7_ERR_MEMORY, K7_ERR_FILE_IO}, true},
    {"NativeXmlWrite", XmlWrite<true>, {K7_ERR_MEMORY, K7_ERR_FILE_IO}},
    {"FindFiles", Search<0>, {K7_ERR_MEMORY}},
    {"FindDirs", Search<1>, {K7_ERR_MEMORY}},
    {"FindDirsRecur", Search<2>, {K7_ERR_MEMORY}},
    {"NativeFiles", NativeFiles, {K7_ERR_MEMORY}},
    {"Version", Version, {K7_ERR_INVALID_DATA, K7_ERR_MEMORY}, true},
    {"Compressed", Compressed, {-1}, true},
    {"Checksum",
     Checksum,
     {K7_ERR_MEMORY, K7_ERR_FILE_IO, K7_ERR_CRC_MISSING, K7_ERR_CRC_UNREADABLE, K7_ERR_CRC_MISMATCH,
      FailingFile::CODE},
     true},
    {"StringFile", StringFile, {K7_ERR_MEMORY, K7_ERR_FILE_IO, FailingFile::CODE}, true},
    {"ShapesWhole", Shapes<true>, {K7_ERR_MEMORY, K7_ERR_FILE_IO, K7_ERR_OUT_OF_RANGE}, true},
    {"ShapesOneByOne", Shapes<false>, {K7_ERR_MEMORY, K7_ERR_FILE_IO}, true},
    {"Positions", Positions, {K7_ERR_MEMORY}},
    {"Projections", Projections, {K7_ERR_MEMORY}},
    {"Charts", Charts, {K7_ERR_MEMORY}},
};

}  // namespace scenarios
