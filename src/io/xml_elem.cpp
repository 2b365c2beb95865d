#include <k7/io/xml_elem.h>

#include <k7/foundation/error_string.h>

#include "io/xml_attribs.h"
#include "io/xml_text.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

void SetCode(int* err, int code) {
  if (err) *err = code;
}

int Assign(K7String& to, const char* text) { return std::min(to.Create(text ? text : ""), 0); }

// Empty texts of a copy stay without a buffer.
int CopyText(K7String& to, const K7String& from) { return from.IsEmpty() ? 0 : Assign(to, from); }

const char* FindByte(const char* p, const char* end, char c) {
  return static_cast<const char*>(std::memchr(p, c, static_cast<size_t>(end - p)));
}

// One name="value" pair of an attribute text.
struct AttribPair {
  const char* name;
  const char* equals;
  const char* value;
  const char* quote;           // the closing one
  bool plain;                  // the value has none of the reserved characters
  const char* next = nullptr;  // behind it

  /// The pair that `text` begins with. False for anything of another shape. A terminator, ">" or "/>" stands
  /// at `end`.
  bool Find(const char* text, const char* end) {
    name = text;
    while (name != end && IsXmlSpace(*name)) ++name;
    equals = name;
    while (equals != end && *equals != '=') ++equals;
    if (end - equals < 2 || equals[1] != '"') return false;
    value = equals + 2;
    quote = value + K7XmlText::PlainLength(value);
    if (quote >= end) return false;
    plain = *quote == '"';
    if (!plain) quote = FindByte(quote, end, '"');
    if (!quote) return false;
    next = quote + 1;
    return true;
  }
};

}  // namespace

K7XmlElem::K7XmlElem(const char* name, const char* text, const char* attribs, unsigned flags)
    : m_name(name), m_text(text), m_flags(flags) {
  if (!attribs) return;
  K7XmlAttribScratch scratch;
  ReadAttribs(attribs, attribs + std::strlen(attribs), scratch);
}

K7XmlElem::~K7XmlElem() {
  if (m_parent) m_parent->RemoveChild(this);
  DeleteChildren();
  K7XmlAttribs::Delete(m_attribs);
}

void K7XmlElem::Clear() {
  DeleteChildren();
  K7XmlAttribs::Delete(m_attribs);
  m_attribs = nullptr;
  m_name.Clear();
  m_text.Clear();
  m_attribText.Clear();
  m_flags = 0;
}

// The children of an element about to go take its place at the head of the one list that is left to delete.
void K7XmlElem::DeleteChildren() {
  K7XmlElem* list = m_firstChild;
  m_firstChild = m_lastChild = nullptr;
  while (list) {
    K7XmlElem* const elem = list;
    list = elem->m_nextSibling;
    if (elem->m_firstChild) {
      elem->m_lastChild->m_nextSibling = list;
      list = elem->m_firstChild;
      elem->m_firstChild = nullptr;
    }
    elem->m_parent = nullptr;
    delete elem;
  }
}

K7XmlElem* K7XmlElem::CloneAlone() const {
  K7XmlElem* const copy = new (std::nothrow) K7XmlElem(nullptr, nullptr, nullptr, m_flags);
  if (!copy) return nullptr;
  int err = CopyText(copy->m_name, m_name);
  if (err == 0) err = CopyText(copy->m_text, m_text);
  if (err == 0) err = CopyText(copy->m_attribText, m_attribText);
  // Not split anew: these may hold what the text cannot give back, see the class comment.
  if (err == 0 && m_attribs && !(copy->m_attribs = m_attribs->Clone())) err = K7_ERR_MEMORY;
  if (err == 0) return copy;
  delete copy;
  return nullptr;
}

K7XmlElem* K7XmlElem::Clone(int* err) const {
  SetCode(err, 0);
  K7XmlElem* const top = CloneAlone();
  K7XmlElem* parent = top;  // of the next copy
  const K7XmlElem* elem = top ? m_firstChild : nullptr;
  while (elem) {
    K7XmlElem* const copy = elem->CloneAlone();
    if (!copy) {
      delete top;
      SetCode(err, K7_ERR_MEMORY);
      return nullptr;
    }
    parent->Append(copy);
    if (elem->m_firstChild) {
      parent = copy;
      elem = elem->m_firstChild;
      continue;
    }
    while (elem != this && !elem->m_nextSibling) {
      elem = elem->m_parent;
      parent = parent->m_parent;
    }
    elem = elem == this ? nullptr : elem->m_nextSibling;
  }
  if (!top) SetCode(err, K7_ERR_MEMORY);
  return top;
}

void K7XmlElem::Append(K7XmlElem* child) {
  child->m_parent = this;
  child->m_nextSibling = nullptr;
  (m_lastChild ? m_lastChild->m_nextSibling : m_firstChild) = child;
  m_lastChild = child;
}

int K7XmlElem::AddChild(K7XmlElem* child) {
  if (!child || child == this) return K7_ERR_BAD_ARGUMENT;
  // Only an element with children can be above this one; a new one is appended without the climb.
  if (child->m_firstChild)
    for (const K7XmlElem* above = m_parent; above; above = above->m_parent)
      if (above == child) return K7_ERR_BAD_ARGUMENT;
  if (child->m_parent) child->m_parent->RemoveChild(child);
  Append(child);
  return 0;
}

bool K7XmlElem::RemoveChild(K7XmlElem* child) {
  if (!child || child->m_parent != this) return false;
  K7XmlElem* before = nullptr;
  for (K7XmlElem* elem = m_firstChild; elem != child; elem = elem->m_nextSibling) before = elem;
  (before ? before->m_nextSibling : m_firstChild) = child->m_nextSibling;
  if (m_lastChild == child) m_lastChild = before;
  child->m_parent = child->m_nextSibling = nullptr;
  return true;
}

int K7XmlElem::AddAttrib(const char* name, const char* value) {
  if (!name || !value) return K7_ERR_BAD_ARGUMENT;
  K7XmlText text;
  if (!m_attribText.IsEmpty()) text.Append(" ", 1);
  text.Append(name);
  text.Append("=\"", 2);
  text.AppendEscaped(value);
  text.Append("\"", 1);
  if (text.Failed() || !K7XmlAttribs::Append(m_attribs, name, value)) return K7_ERR_MEMORY;
  const int err = m_attribText += text.Text();
  if (err) m_attribs->RemoveLast();
  return err;
}

// For an element without attributes: splits those in the text of a tag, and brings them into the form in
// which they are written. They end silently at what is no name="value" pair.
int K7XmlElem::ReadAttribs(const char* text, const char* end, K7XmlAttribScratch& scratch) {
  K7XmlText& written = scratch.written;
  K7XmlText& split = scratch.split;
  written.Clear();
  split.Clear();
  scratch.pairs.Clear();
  int count = 0;
  for (AttribPair pair; pair.Find(pair.next ? pair.next : text, end); ++count) {
    if (count > 0) written.Append(" ", 1);
    const int nameAt = split.Size();
    split.Append(pair.name, static_cast<size_t>(pair.equals - pair.name));
    split.Append("", 1);
    const int valueAt = split.Size();
    const size_t length = static_cast<size_t>(pair.quote - pair.value);
    if (pair.plain) {
      written.Append(pair.name, static_cast<size_t>(pair.next - pair.name));
      split.Append(pair.value, length);
    } else {
      written.Append(pair.name, static_cast<size_t>(pair.value - pair.name));
      split.AppendResolved(pair.value, length);
      written.AppendEscaped(split.Text() + valueAt);
      written.Append("\"", 1);
    }
    split.Append("", 1);
    const K7XmlAttribs::Pair places{static_cast<unsigned>(nameAt), static_cast<unsigned>(valueAt)};
    scratch.pairs.Append(reinterpret_cast<const char*>(&places), sizeof places);
  }
  if (count == 0) return 0;
  if (written.Failed() || split.Failed() || scratch.pairs.Failed()) return K7_ERR_MEMORY;
  m_attribs =
      K7XmlAttribs::Make(scratch.pairs.Text(), count, split.Text(), static_cast<size_t>(split.Size()));
  return m_attribs ? std::min(m_attribText.Copy(written.Text(), written.Size()), 0) : K7_ERR_MEMORY;
}

int K7XmlElem::NumAttribs() const { return m_attribs ? m_attribs->Count() : 0; }

const char* K7XmlElem::AttribValue(const char* name) const {
  const int i = name && m_attribs ? m_attribs->Find(name) : -1;
  return i < 0 ? nullptr : m_attribs->Value(i);
}

bool K7XmlElem::Attrib(const char* name, K7String& value) const {
  const char* const found = AttribValue(name);
  return found && value.Create(found) >= 0;
}

bool K7XmlElem::GetAttribByIndex(int i, K7String& name, K7String& value) const {
  if (i < 0 || i >= NumAttribs()) return false;
  return name.Create(m_attribs->Name(i)) >= 0 && value.Create(m_attribs->Value(i)) >= 0;
}

K7XmlElem* K7XmlElem::Child(const char* name, int index) const {
  if (index < 0) return nullptr;
  for (K7XmlElem* elem = m_firstChild; elem; elem = elem->m_nextSibling)
    if (elem->m_name == name && index-- == 0) return elem;
  return nullptr;
}

K7XmlElem* K7XmlElem::Child(const char* name, const char* parentName, int index) const {
  return parentName && m_name != parentName ? nullptr : Child(name, index);
}

const K7String& K7XmlElem::ChildText(const char* name) const {
  // Never destroyed, so that a host's static objects may still ask in their destructors.
  union Shared {
    Shared() : empty() {}
    ~Shared() {}
    K7String empty;
  };
  static const Shared SHARED;
  const K7XmlElem* const child = Child(name);
  return child ? child->m_text : SHARED.empty;
}

int K7XmlElem::SetName(const char* name) { return Assign(m_name, name); }

int K7XmlElem::SetText(const char* text) { return Assign(m_text, text); }
