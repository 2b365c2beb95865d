// What hosts call with files from outside: ParseFile, and through it the options. Any text that the XML
// parser takes is, once written, read as the same tree; so is its clone; and options that were read are
// options once they are written.

#include <k7/foundation/options.h>
#include <k7/io/xml_elem.h>

#include "support/mem_io.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

void CheckTree(const std::string& text) {
  K7XmlElem elem;
  int err = 0;
  const char* const next = elem.Parse(text.c_str(), &err);
  Check(!next || (!err && next >= text.c_str() && next <= text.c_str() + text.size()));
  const std::unique_ptr<K7XmlElem> copy(elem.Clone());
  K7String written, cloned;
  Check(!elem.Write(written) && !copy->Write(cloned) && written == cloned);
  if (!next) return;
  K7String again;
  Check(elem.Parse(written, &err) && !err && !elem.Write(again) && again == written);
}

void CheckFile(const char* path) {
  K7XmlElem elem;
  if (elem.ParseFile(path) != 0) return;
  Check(!elem.Name().IsEmpty());
  Check(elem.WriteFile("copy") == 0);
  K7XmlElem back;
  Check(back.ParseFile("copy") == 0);
  K7String written, again;
  Check(!elem.Write(written) && !back.Write(again) && again == written);
}

void CheckOptions(const char* path) {
  K7Options& options = *K7Options::Inst();
  if (options.Read(path) == 0 && options.Write("copy") == 0) {
    int count = 0;
    while (options.GetKeyValueByIndex(count)) ++count;
    Check(options.Read("copy") == 0 && !options.GetKeyValueByIndex(count));
    Check(count == 0 || options.GetKeyValueByIndex(count - 1));
  }
  K7Options::Destroy();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("file", Bytes(data, data + size));
  CheckTree(std::string(reinterpret_cast<const char*>(data), size));
  CheckFile("file");
  CheckOptions("file");
  return 0;
}
