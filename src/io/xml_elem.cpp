#include <k7/io/xml_elem.h>

#include <k7/foundation/error_string.h>

#include "io/xml_text.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr int ATTRIB_BLOCK = 8;
// From this many attributes on their arrays double: whole blocks would copy them with the square of their
// number.
constexpr int MANY_ATTRIBS = 64;

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
  const char* next = nullptr;  // behind it

  /// The pair that `text` begins with. False for anything of another shape.
  bool Find(const char* text, const char* end) {
    name = text;
    while (name != end && IsXmlSpace(*name)) ++name;
    equals = FindByte(name, end, '=');
    if (!equals || end - equals < 2 || equals[1] != '"') return false;
    value = equals + 2;
    quote = FindByte(value, end, '"');
    if (!quote) return false;
    next = quote + 1;
    return true;
  }
};

}  // namespace

K7XmlElem::K7XmlElem(const char* name, const char* text, const char* attribs, unsigned flags)
    : m_name(name), m_text(text), m_flags(flags) {
  if (!attribs) return;
  K7XmlText scratch;
  ReadAttribs(attribs, attribs + std::strlen(attribs), scratch);
}

K7XmlElem::~K7XmlElem() {
  if (m_parent) m_parent->RemoveChild(this);
  DeleteChildren();
  DeleteAttribArrays();
}

void K7XmlElem::Clear() {
  DeleteChildren();
  DeleteAttribArrays();
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
  // The arrays may hold what the text cannot give back: see the class comment.
  for (int i = 0; err == 0 && m_attribNames && i < NumAttribs(); ++i)
    err = copy->AppendAttrib((*m_attribNames)[i], (*m_attribValues)[i]);
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

void K7XmlElem::DeleteAttribArrays() const {
  delete m_attribNames;
  delete m_attribValues;
  m_attribNames = m_attribValues = nullptr;
}

// To the arrays alone, to both or neither of them.
int K7XmlElem::AppendAttrib(const char* name, const char* value) const {
  if (!m_attribNames) m_attribNames = new (std::nothrow) K7StrArray(true, false, ATTRIB_BLOCK);
  if (!m_attribValues) m_attribValues = new (std::nothrow) K7StrArray(true, false, ATTRIB_BLOCK);
  if (!m_attribNames || !m_attribValues) return K7_ERR_MEMORY;
  const int n = m_attribNames->Count();
  if (n >= MANY_ATTRIBS && (n & (n - 1)) == 0)
    if (m_attribNames->GrowTo(2 * n, false) || m_attribValues->GrowTo(2 * n, false)) return K7_ERR_MEMORY;
  if (const int err = *m_attribNames += name) return err;
  const int err = *m_attribValues += value;
  if (err) m_attribNames->Remove(n, 1);
  return err;
}

// Unpacks the attribute text unless that is done. False when there are no attributes, or no memory.
bool K7XmlElem::HaveAttribArrays() const {
  if (m_attribNames && m_attribValues) return true;
  if (m_attribText.IsEmpty()) return false;
  const char* const text = m_attribText;
  const char* const end = text + std::strlen(text);
  K7XmlText scratch;
  int err = 0;
  for (AttribPair pair; err == 0 && pair.Find(pair.next ? pair.next : text, end);) {
    scratch.Clear();
    scratch.Append(pair.name, static_cast<size_t>(pair.equals - pair.name));
    scratch.AppendRun('\0', 1);
    const int valueAt = scratch.Size();
    scratch.AppendResolved(pair.value, static_cast<size_t>(pair.quote - pair.value));
    err = scratch.Failed() ? K7_ERR_MEMORY : AppendAttrib(scratch.Text(), scratch.Text() + valueAt);
  }
  if (err) DeleteAttribArrays();
  return err == 0;
}

int K7XmlElem::AddAttrib(const char* name, const char* value) {
  if (!name || !value) return K7_ERR_BAD_ARGUMENT;
  if (!HaveAttribArrays() && !m_attribText.IsEmpty()) return K7_ERR_MEMORY;
  K7XmlText text;
  if (!m_attribText.IsEmpty()) text.Append(" ", 1);
  text.Append(name);
  text.Append("=\"", 2);
  text.AppendEscaped(value);
  text.Append("\"", 1);
  if (text.Failed()) return K7_ERR_MEMORY;
  if (const int err = AppendAttrib(name, value)) return err;
  const int err = m_attribText += text.Text();
  if (err) {
    m_attribNames->Remove(m_attribNames->Count() - 1, 1);
    m_attribValues->Remove(m_attribValues->Count() - 1, 1);
  }
  return err;
}

// For an element without attributes: brings those in the text of a tag into the form in which they are
// written. They end silently at what is no name="value" pair.
int K7XmlElem::ReadAttribs(const char* text, const char* end, K7XmlText& scratch) {
  scratch.Clear();
  K7XmlText value;
  for (AttribPair pair; pair.Find(pair.next ? pair.next : text, end);) {
    if (scratch.Size() > 0) scratch.Append(" ", 1);
    if (pair.value + K7XmlText::PlainLength(pair.value) == pair.quote) {
      scratch.Append(pair.name, static_cast<size_t>(pair.next - pair.name));
      continue;
    }
    value.Clear();
    value.AppendResolved(pair.value, static_cast<size_t>(pair.quote - pair.value));
    scratch.Append(pair.name, static_cast<size_t>(pair.value - pair.name));
    scratch.AppendEscaped(value.Text());
    scratch.Append("\"", 1);
  }
  if (scratch.Failed() || value.Failed()) return K7_ERR_MEMORY;
  return scratch.Size() > 0 ? std::min(m_attribText.Copy(scratch.Text(), scratch.Size()), 0) : 0;
}

int K7XmlElem::NumAttribs() const { return HaveAttribArrays() ? m_attribNames->Count() : 0; }

bool K7XmlElem::Attrib(const char* name, K7String& value) const {
  if (!name) return false;
  for (int i = 0; i < NumAttribs(); ++i) {
    if (std::strcmp((*m_attribNames)[i], name) != 0) continue;
    value = (*m_attribValues)[i];
    return true;
  }
  return false;
}

bool K7XmlElem::GetAttribByIndex(int i, K7String& name, K7String& value) const {
  if (i < 0 || i >= NumAttribs()) return false;
  name = (*m_attribNames)[i];
  value = (*m_attribValues)[i];
  return true;
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
  static const K7String EMPTY;
  const K7XmlElem* const child = Child(name);
  return child ? child->m_text : EMPTY;
}

int K7XmlElem::SetName(const char* name) { return Assign(m_name, name); }

int K7XmlElem::SetText(const char* text) { return Assign(m_text, text); }
