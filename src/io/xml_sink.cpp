#include "io/xml_sink.h"

#include "io/xml_field.h"

#include <k7/foundation/error_string.h>

#include <new>

namespace k7xml {

void XmlTree::Open(const char* element) {
  if (m_err) return;
  K7XmlElem* const child = new (std::nothrow) K7XmlElem;
  m_err = child ? child->SetName(element) : int{K7_ERR_MEMORY};
  if (!m_err) m_err = m_top->AddChild(child);
  if (m_err) {
    delete child;
  } else {
    m_top = child;
  }
}

void XmlTree::Close(const char*) {
  if (!m_err) m_top = m_top->Parent();
}

void XmlTree::Add(const char* element, const char* label, const char* text) {
  if (!m_err) m_err = AddElement(*m_top, element, label, text);
}

XmlDocument::XmlDocument() { m_text.Append("<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n"); }

void XmlDocument::Start(const char* element) {
  m_text.AppendRun('\t', m_depth);
  m_text.Append("<", 1);
  m_text.Append(element);
}

void XmlDocument::Open(const char* element) {
  Start(element);
  m_text.Append(">\n", 2);
  ++m_depth;
}

void XmlDocument::Close(const char* element) {
  --m_depth;
  m_text.AppendRun('\t', m_depth);
  m_text.Append("</", 2);
  m_text.Append(element);
  m_text.Append(">\n", 2);
}

void XmlDocument::Add(const char* element, const char* label, const char* text) {
  Start(element);
  if (label) {
    m_text.Append(" Name=\"", 7);
    m_text.Append(label);
    m_text.Append("\"", 1);
  }
  if (!*text) return m_text.Append("/>\n", 3);
  m_text.Append(">", 1);
  m_text.AppendEscaped(text);
  m_text.Append("</", 2);
  m_text.Append(element);
  m_text.Append(">\n", 2);
}

void XmlDocument::Replace(int at, const K7XmlText& text) {
  m_text.Cut(at);
  m_text.Append(text.Text(), static_cast<size_t>(text.Size()));
}

}  // namespace k7xml
