#include "layers/shape_value.h"

#include <k7/foundation/string.h>
#include "store/text_1252.h"

#include <charconv>
#include <cmath>
#include <cstring>

std::string ShapeText(const K7Shape& shape, const K7ShapeRec& record, const char* name) {
  K7String text;
  const bool isThere =
      shape.GetAttribText(&record, name, text) == 0 && std::strcmp(text, K7Shape::UNKNOWN) != 0;
  return isThere ? Utf8Of1252(static_cast<const char*>(text)) : std::string();
}

std::optional<double> ShapeNumber(const K7Shape& shape, const K7ShapeRec& record, const char* name) {
  const std::string text = ShapeText(shape, record, name);
  double number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop != text.data() + text.size() || !std::isfinite(number)) return {};
  return number;
}

bool IsClosedShape(const K7Shape& shape, const K7ShapeRec& record) {
  return K7String::IComp(ShapeText(shape, record, "STATUS").c_str(), "Closed") == 0;
}
