// The lenient parser of K7XmlElem.

#include <k7/io/xml_elem.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/log.h>
#include <k7/io/file.h>
#include <k7/io/io.h>

#include "io/read.h"
#include "io/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

const char* SkipSpace(const char* p) {
  while (IsXmlSpace(*p)) ++p;
  return p;
}

bool BeginsComment(const char* tag) { return tag[1] == '!' && tag[2] == '-' && tag[3] == '-'; }

// A tag with its brackets.
struct Tag {
  const char* begin;
  const char* end;

  bool IsClosing() const { return begin[1] == '/'; }
  bool IsDeclaration() const { return begin[1] == '?'; }
  /// Holds no element: a comment, or a declaration from "<?" to "?>".
  bool IsDropped() const { return BeginsComment(begin) || (IsDeclaration() && end[-2] == '?'); }
};

const char* Behind(const char* found, int length) { return found ? found + length : nullptr; }

// The end of the tag at `begin`, null without one: the first ">" that is no part of an attribute's value.
// Where a "<" shows that a quote was never closed it is the first ">" of all.
const char* FindTagEnd(const char* begin) {
  // The "--" may be the one that opens the comment.
  if (BeginsComment(begin)) return Behind(std::strstr(begin + 2, "-->"), 3);
  const char* p = begin + 1;
  while (*p && *p != '>' && *p != '<' && !IsXmlSpace(*p)) ++p;
  bool quoted = false;
  for (; *p && *p != '<'; ++p) {
    if (*p == '>' && !quoted) return p + 1;
    if (*p == '"') quoted = !quoted && p[-1] == '=';
  }
  return Behind(std::strchr(begin, '>'), 1);
}

int AssignPart(K7String& to, const char* begin, const char* end) {
  if (end - begin > INT32_MAX - 1) return K7_ERR_MEMORY;
  return std::min(to.Copy(begin, static_cast<int>(end - begin)), 0);
}

int LineOf(const char* text, const char* stop) { return 1 + static_cast<int>(std::count(text, stop, '\n')); }

}  // namespace

// Reads one element with its subtree. The elements still open are the chain from `m_open` up to the root, so
// that the depth of a text costs no stack.
class K7XmlElem::Reader {
 public:
  explicit Reader(K7XmlElem& root) : m_root(root) {}

  /// As `Parse`; where it failed `Error` and `Stop` tell.
  const char* Read(const char* text);
  int Error() const { return m_error; }
  const char* Stop() const { return m_stop; }

 private:
  const char* Fail(const char* stop, int error);
  int TakeText(const char* begin, const char* end);
  int OpenElement(const Tag& tag, bool& empty);
  bool ClosesOpen(const Tag& tag) const;
  bool CloseElement();

  K7XmlElem& m_root;
  K7XmlElem* m_open = nullptr;
  K7XmlText m_scratch;
  K7XmlAttribScratch m_attribs;
  int m_error = 0;
  const char* m_stop = nullptr;
};

const char* K7XmlElem::Reader::Read(const char* text) {
  while (true) {
    Tag tag{std::strchr(text, '<'), nullptr};
    if (tag.begin) tag.end = FindTagEnd(tag.begin);
    if (!tag.end) {
      const char* const stop = tag.begin ? tag.begin : text + std::strlen(text);
      return Fail(stop, tag.begin || m_open ? K7_ERR_XML_MISMATCHED_TAG : 0);
    }
    m_stop = tag.begin;
    const char* const next = SkipSpace(tag.end);
    if (m_open)
      if (const int err = TakeText(text, tag.begin)) return Fail(text, err);

    if (tag.IsClosing()) {
      if (!m_open) return text;
      if (!ClosesOpen(tag)) return Fail(tag.begin, K7_ERR_XML_MISMATCHED_TAG);
      if (CloseElement()) return next;
    } else if (!tag.IsDropped()) {
      bool empty = false;
      if (const int err = OpenElement(tag, empty)) return Fail(tag.begin, err);
      if (empty && CloseElement()) return next;
    }
    text = next;
  }
}

const char* K7XmlElem::Reader::Fail(const char* stop, int error) {
  m_error = error;
  m_stop = stop;
  // Open declarations hang from the chain only by their parent pointers: see OpenElement.
  while (m_open && m_open != &m_root) {
    K7XmlElem* const elem = m_open;
    m_open = elem->m_parent;
    if (!elem->m_flags) continue;
    elem->m_parent = nullptr;
    delete elem;
  }
  return nullptr;
}

// Only the first text of an element counts.
int K7XmlElem::Reader::TakeText(const char* begin, const char* end) {
  while (end != begin && IsXmlSpace(end[-1])) --end;
  if (begin == end || !m_open->m_text.IsEmpty()) return 0;
  const size_t length = static_cast<size_t>(end - begin);
  if (!std::memchr(begin, '&', length)) return AssignPart(m_open->m_text, begin, end);
  m_scratch.Clear();
  m_scratch.AppendResolved(begin, length);
  if (m_scratch.Failed()) return K7_ERR_MEMORY;
  return AssignPart(m_open->m_text, m_scratch.Text(), m_scratch.Text() + m_scratch.Size());
}

int K7XmlElem::Reader::OpenElement(const Tag& tag, bool& empty) {
  K7XmlElem* const elem = m_open ? new (std::nothrow) K7XmlElem : &m_root;
  if (!elem) return K7_ERR_MEMORY;
  elem->m_flags = tag.IsDeclaration() ? DECLARATION : 0;
  // A declaration is dropped when it closes, so that its parent's chain never holds it.
  if (m_open && elem->m_flags) elem->m_parent = m_open;
  if (m_open && !elem->m_flags) m_open->Append(elem);
  m_open = elem;

  const char* const begin = tag.begin + (elem->m_flags ? 2 : 1);
  const char* end = tag.end - 1;
  empty = end != begin && end[-1] == '/';
  if (empty) --end;
  const char* nameEnd = begin;
  while (nameEnd != end && !IsXmlSpace(*nameEnd)) ++nameEnd;
  if (const int err = AssignPart(elem->m_name, begin, nameEnd)) return err;
  return nameEnd == end ? 0 : elem->ReadAttribs(nameEnd, end, m_attribs);
}

bool K7XmlElem::Reader::ClosesOpen(const Tag& tag) const {
  const bool declaration = m_open->m_flags != 0;
  const auto isMark = [&](char c) { return c == '<' || c == '/' || c == '>' || (c == '?' && declaration); };
  const char* begin = tag.begin;
  const char* end = tag.end;
  while (begin != end && isMark(*begin)) ++begin;
  while (end != begin && (isMark(end[-1]) || IsXmlSpace(end[-1]))) --end;
  const char* name = m_open->m_name;
  while (begin != end && *name == *begin) ++name, ++begin;
  return begin == end && *name == 0;
}

// True when the root is complete.
bool K7XmlElem::Reader::CloseElement() {
  K7XmlElem* const elem = m_open;
  const bool dropped = elem->m_flags != 0;
  if (elem == &m_root) {
    m_open = nullptr;
    if (dropped) m_root.Clear();
    return !dropped;
  }
  m_open = elem->m_parent;
  if (dropped) {
    elem->m_parent = nullptr;
    delete elem;
  }
  return false;
}

// `source` is what the log calls the text. A document needs an element with a name.
const char* K7XmlElem::Read(const char* text, const char* source, bool isDocument, int& err) {
  Clear();
  Reader reader(*this);
  const char* const next = reader.Read(text);
  err = reader.Error();
  if (err == 0 && isDocument && m_name.IsEmpty()) err = K7_ERR_XML_MISMATCHED_TAG;
  if (err) {
    K7Log::LogMessage(K7_LOG_DEBUG, "%s: reading XML stopped at line %d (%d)", source,
                      LineOf(text, reader.Stop()), err);
  }
  return next;
}

const char* K7XmlElem::Parse(const char* text, int* err) {
  int code = K7_ERR_BAD_ARGUMENT;
  const char* const next = text ? Read(text, "text", false, code) : nullptr;
  if (err) *err = code;
  return next;
}

int K7XmlElem::ParseFile(const char* path) {
  K7IO* const io = K7IO::Inst();
  const std::unique_ptr<K7File> file(io && path ? io->CreateFileX(path, "r") : nullptr);
  if (!file || !file->IsValid()) return K7_ERR_FILE_IO;
  k7read::Block text;
  int err = text.ReadText(file.get());
  if (err == 0) Read(reinterpret_cast<const char*>(text.Bytes()), path, true, err);
  return err;
}
