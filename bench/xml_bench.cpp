// XML and the log. A document is read into a tree, with the tree's end, its names, texts and attributes are
// visited, and it is written, beside pugixml and TinyXML-2 where they are installed, each in its own default
// encoding. Bytes are those of the same document; the peers' writers lay it out and escape it differently.

#include <k7/foundation/log.h>
#include <k7/io/xml_elem.h>

#include <benchmark/benchmark.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>

#if __has_include(<pugixml.hpp>)
#include <pugixml.hpp>
#define HAS_PUGIXML
#endif
#if __has_include(<tinyxml2.h>)
#include <tinyxml2.h>
#define HAS_TINYXML2
#endif

namespace {

#if defined(__GLIBC__)
// Large blocks stay with the process: whether they cost page faults would hang on which row ran before.
const bool KEEPS_BLOCKS = mallopt(M_MMAP_THRESHOLD, 1 << 30) != 0 && mallopt(M_TRIM_THRESHOLD, 1 << 30) != 0;
#endif

// What a chart host reads and writes all day: rendered airport records.
const std::string& Document() {
  static const std::string document = [] {
    std::string text = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n<Records>\n";
    char record[1024];
    for (int i = 0; i < 4000; ++i) {
      std::snprintf(record, sizeof record,
                    "\t<Record>\n"
                    "\t\t<Type Name=\"Type\">Airport</Type>\n"
                    "\t\t<NavKey>\n\t\t\t<Index>%d</Index>\n\t\t\t<NavType>5</NavType>\n\t\t</NavKey>\n"
                    "\t\t<Latitude Name=\"Latitude\">N %02d %04.1f</Latitude>\n"
                    "\t\t<Longitude Name=\"Longitude\">W %03d %04.1f</Longitude>\n"
                    "\t\t<Ident Name=\"Ident\">K%03X</Ident>\n"
                    "\t\t<Name Name=\"Name\">Smith &amp; Sons Field %d</Name>\n"
                    "\t\t<Elevation Name=\"Elevation\">%d ft</Elevation>\n"
                    "\t\t<MagVar Name=\"Magnetic Variation\">12.5 W</MagVar>\n"
                    "\t\t<Runway Name=\"Runway\" Length=\"%d\" Lit=\"yes\"/>\n"
                    "\t</Record>\n",
                    i, i % 90, i % 600 / 10.0, i % 180, i % 599 / 10.0, i, i, i % 9000, 2000 + i);
      text += record;
    }
    return text + "</Records>\n";
  }();
  return document;
}

void SetBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Document().size()));
}

void Parse(benchmark::State& state) {
  for (auto _ : state) {
    K7XmlElem root;
    if (!root.Parse(Document().c_str())) state.SkipWithError("not read");
  }
  SetBytes(state);
}
BENCHMARK(Parse);

// What reading a document is for: every attribute and text of it. Visitors add up the bytes seen.
size_t Visit(const K7XmlElem& elem) {
  size_t sum = static_cast<size_t>(elem.Text().Len());
  const int count = elem.NumAttribs();
  K7String name, value;
  for (int i = 0; i < count; ++i) {
    elem.GetAttribByIndex(i, name, value);
    sum += static_cast<size_t>(name.Len() + value.Len());
  }
  for (const K7XmlElem* child = elem.FirstChild(); child; child = child->NextSibling()) sum += Visit(*child);
  return sum;
}

void ParseAndVisit(benchmark::State& state) {
  for (auto _ : state) {
    K7XmlElem root;
    root.Parse(Document().c_str());
    benchmark::DoNotOptimize(Visit(root));
  }
  SetBytes(state);
}
BENCHMARK(ParseAndVisit);

void VisitAlone(benchmark::State& state) {
  K7XmlElem root;
  root.Parse(Document().c_str());
  for (auto _ : state) benchmark::DoNotOptimize(Visit(root));
  SetBytes(state);
}
BENCHMARK(VisitAlone);

void Write(benchmark::State& state) {
  K7XmlElem root;
  root.Parse(Document().c_str());
  for (auto _ : state) {
    K7String text;
    if (root.Write(text) != 0) state.SkipWithError("not written");
  }
  SetBytes(state);
}
BENCHMARK(Write);

void CloneAndDelete(benchmark::State& state) {
  K7XmlElem root;
  root.Parse(Document().c_str());
  for (auto _ : state) delete root.Clone();
  SetBytes(state);
}
BENCHMARK(CloneAndDelete);

#ifdef HAS_PUGIXML
void ParsePugixml(benchmark::State& state) {
  for (auto _ : state) {
    pugi::xml_document document;
    if (!document.load_buffer(Document().data(), Document().size())) state.SkipWithError("not read");
  }
  SetBytes(state);
}
BENCHMARK(ParsePugixml);

size_t Visit(pugi::xml_node node) {
  size_t sum = std::strlen(node.child_value());
  for (const pugi::xml_attribute attribute : node.attributes())
    sum += std::strlen(attribute.name()) + std::strlen(attribute.value());
  for (const pugi::xml_node child : node.children()) sum += Visit(child);
  return sum;
}

void ParseAndVisitPugixml(benchmark::State& state) {
  for (auto _ : state) {
    pugi::xml_document document;
    document.load_buffer(Document().data(), Document().size());
    benchmark::DoNotOptimize(Visit(document));
  }
  SetBytes(state);
}
BENCHMARK(ParseAndVisitPugixml);

struct StringWriter : pugi::xml_writer {
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
  std::string text;
};

void WritePugixml(benchmark::State& state) {
  pugi::xml_document document;
  document.load_buffer(Document().data(), Document().size());
  for (auto _ : state) {
    StringWriter writer;
    document.save(writer);
    benchmark::DoNotOptimize(writer.text.data());
  }
  SetBytes(state);
}
BENCHMARK(WritePugixml);
#endif

#ifdef HAS_TINYXML2
void ParseTinyXml2(benchmark::State& state) {
  for (auto _ : state) {
    tinyxml2::XMLDocument document;
    if (document.Parse(Document().data(), Document().size()) != 0) state.SkipWithError("not read");
  }
  SetBytes(state);
}
BENCHMARK(ParseTinyXml2);

size_t Visit(const tinyxml2::XMLElement& elem) {
  size_t sum = elem.GetText() ? std::strlen(elem.GetText()) : 0;
  for (const tinyxml2::XMLAttribute* a = elem.FirstAttribute(); a; a = a->Next())
    sum += std::strlen(a->Name()) + std::strlen(a->Value());
  for (const tinyxml2::XMLElement* c = elem.FirstChildElement(); c; c = c->NextSiblingElement())
    sum += Visit(*c);
  return sum;
}

void ParseAndVisitTinyXml2(benchmark::State& state) {
  for (auto _ : state) {
    tinyxml2::XMLDocument document;
    document.Parse(Document().data(), Document().size());
    benchmark::DoNotOptimize(Visit(*document.RootElement()));
  }
  SetBytes(state);
}
BENCHMARK(ParseAndVisitTinyXml2);

void WriteTinyXml2(benchmark::State& state) {
  tinyxml2::XMLDocument document;
  document.Parse(Document().data(), Document().size());
  for (auto _ : state) {
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    benchmark::DoNotOptimize(printer.CStr());
  }
  SetBytes(state);
}
BENCHMARK(WriteTinyXml2);
#endif

// A line of the log to a file of the system that swallows it, with the flush: what of it is the line's
// making.
void LogLine(benchmark::State& state) {
  if (!K7Log::CreateLogFile("/dev/null", nullptr)) state.SkipWithError("no log");
  int count = 0;
  for (auto _ : state) K7Log::LogMessage(K7_LOG_INFO, "%d files in %s", ++count, "a/b");
  K7Log::CloseLogFile();
}
BENCHMARK(LogLine);

void LogLinePlain(benchmark::State& state) {
  std::FILE* const file = std::fopen("/dev/null", "a");
  int count = 0;
  for (auto _ : state) {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    localtime_r(&now, &fields);
    std::fprintf(file, "%02d:%02d:%02d  %c  %d files in %s\n", fields.tm_hour, fields.tm_min, fields.tm_sec,
                 'I', ++count, "a/b");
    std::fflush(file);
  }
  std::fclose(file);
}
BENCHMARK(LogLinePlain);

}  // namespace
