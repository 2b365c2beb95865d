// XML: reading a document into a tree, with the tree's end, and writing one, beside pugixml and TinyXML-2
// where they are installed. Bytes are those of the same document. The peers' writers lay it out and escape it
// differently.

#include <k7/io/xml_elem.h>

#include <benchmark/benchmark.h>

#include <cstdio>
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

struct StringWriter : pugi::xml_writer {
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
  std::string text;
};

void WritePugixml(benchmark::State& state) {
  pugi::xml_document document;
  document.load_buffer(Document().data(), Document().size());
  for (auto _ : state) {
    StringWriter writer;
    document.save(writer, "\t", pugi::format_indent, pugi::encoding_latin1);
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

}  // namespace
