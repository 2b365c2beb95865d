// Any text that the XML parser takes is, once written, read as the same tree; and so is its clone.

#include <k7/io/xml_elem.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  K7XmlElem elem;
  int err = 0;
  const char* const next = elem.Parse(text.c_str(), &err);
  if (next && (err || next < text.c_str() || next > text.c_str() + text.size())) std::abort();
  const std::unique_ptr<K7XmlElem> copy(elem.Clone());
  K7String written, cloned;
  if (elem.Write(written) || copy->Write(cloned) || written != cloned) std::abort();
  if (!next || elem.Parse(written, &err) == nullptr) {
    if (next) std::abort();
    return 0;
  }
  K7String again;
  if (err || elem.Write(again) || again != written) std::abort();
  return 0;
}
