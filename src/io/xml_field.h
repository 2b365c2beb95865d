// One field as an element: its text, and the label that people read.
#pragma once

class K7XmlElem;

namespace k7xml {

/// Appends a child with the attribute Name="label", none for null. 0 or K7_ERR_MEMORY.
int AddElement(K7XmlElem& parent, const char* name, const char* label, const char* text);

}  // namespace k7xml
