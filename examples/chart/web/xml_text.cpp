#include "web/xml_text.h"

#include "store/text_1252.h"

std::string XmlText(std::string_view text) {
  const bool isUtf8 = IsUtf8(text);
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isControl = (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += isControl || (byte >= 0x80 && !isUtf8) ? '?' : c;
    }
  }
  for (const std::string_view none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
    for (size_t at = 0; (at = out.find(none, at)) != std::string::npos;) out.replace(at, none.size(), 1, '?');
  return out;
}
