// By which attributes the features of an aerodrome are read.
#pragma once

#include <k7/geometry/shape.h>

#include <span>

namespace k7shape {

enum class Form { Text, List, Metres };

struct FeatureRow {
  const char* key;    ///< the attribute's name
  const char* label;  ///< what people read
  Form form = Form::Text;
};

/// The airport first, then what the kind is read by, in the order of the rendering: first what identifies the
/// feature. Empty for plain shapes.
std::span<const FeatureRow> RowsOf(K7ShapeType type);

}  // namespace k7shape
