// The values of attributes as people read them.
#pragma once

#include "geometry/shape_feature.h"

#include "io/xml_text.h"

#include <k7/geometry/shape_table.h>

namespace k7shape {

/// Appends a host's text as it may stand in a line or a document; nothing for null.
void AppendText(K7XmlText& out, const char* text);
/// Appends an attribute's value. False, with nothing appended, for one that says that there is none, and for
/// an empty text.
bool AppendValue(K7XmlText& out, K7ShapeAttribType type, const K7ShapeAttrib& value, Form form);

}  // namespace k7shape
