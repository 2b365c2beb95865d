// The writer of K7XmlElem.

#include <k7/io/xml_elem.h>

#include <k7/foundation/error_string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/io/io_native.h>

#include "io/xml_file.h"
#include "io/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <typeinfo>

namespace {

constexpr char DECLARATION_LINE[] = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n";
constexpr int DECLARATION_LENGTH = sizeof DECLARATION_LINE - 1;

// Only the native file system can put one file into the place of another; a host's own has the named file
// opened and no other. `text` begins with the declaration line.
int Save(K7IO& io, const char* path, const K7XmlText& text) {
  if (typeid(io) == typeid(K7IOK7)) return SaveXmlFile(path, text);
  const std::unique_ptr<K7File> file(io.CreateFileX(path, "w"));
  if (!file || !file->IsValid() || !file->WriteLine(DECLARATION_LINE)) return K7_ERR_FILE_IO;
  const int rest = text.Size() - DECLARATION_LENGTH;
  return file->Write(text.Text() + DECLARATION_LENGTH, rest) == rest ? 0 : K7_ERR_FILE_IO;
}

}  // namespace

// Visits the subtree of `top` in the order of the text: `enter` at an element's start, true to go on to its
// children, and then `leave` at its end.
template <class Enter, class Leave>
void K7XmlElem::Walk(const K7XmlElem& top, Enter enter, Leave leave) {
  const K7XmlElem* elem = &top;
  while (true) {
    if (enter(*elem)) {
      elem = elem->m_firstChild;
      continue;
    }
    while (elem != &top && !elem->m_nextSibling) {
      elem = elem->m_parent;
      leave(*elem);
    }
    if (elem == &top) return;
    elem = elem->m_nextSibling;
  }
}

class K7XmlElem::Writer {
 public:
  Writer(K7XmlText& out, int depth) : m_out(out), m_depth(std::max(depth, 0)) {}

  /// 0 or K7_ERR_MEMORY.
  int Write(const K7XmlElem& top);

 private:
  // Above this many levels a text's indentation is small beside what fits into memory.
  static constexpr int64_t DEEP = 4096;

  static bool HasContent(const K7XmlElem& elem) { return elem.m_firstChild && !elem.m_flags; }
  bool IndentFits(const K7XmlElem& top, int64_t depth) const;
  void WriteStart(const K7XmlElem& elem);
  void WriteMarked(const K7XmlElem& elem);
  void WriteEnd(const K7XmlElem& elem);
  void Indent() { m_out.AppendRun('\t', static_cast<size_t>(m_depth)); }

  K7XmlText& m_out;
  int64_t m_depth;
  bool m_fits = true;
};

int K7XmlElem::Writer::Write(const K7XmlElem& top) {
  const int64_t first = m_depth;
  const int64_t deep = std::max(first, DEEP);
  m_fits = first <= DEEP || IndentFits(top, first);
  bool measured = false;
  Walk(
      top,
      [&](const K7XmlElem& elem) {
        if (!m_fits) return false;
        Indent();
        elem.m_flags ? WriteMarked(elem) : WriteStart(elem);
        if (!HasContent(elem)) return false;
        if (++m_depth > deep && !measured) {
          measured = true;
          m_fits = IndentFits(top, first);
        }
        return true;
      },
      [this](const K7XmlElem& elem) {
        --m_depth;
        if (!m_fits) return;
        Indent();
        WriteEnd(elem);
      });
  return m_fits && !m_out.Failed() ? 0 : K7_ERR_MEMORY;
}

// Indentation grows with the square of the depth: a text that it makes too long is refused before gigabytes
// of tabs. Measured only once a tree turns out to be deep.
bool K7XmlElem::Writer::IndentFits(const K7XmlElem& top, int64_t depth) const {
  int64_t total = 0;
  Walk(
      top,
      [&](const K7XmlElem& elem) {
        total += depth;
        if (!HasContent(elem)) return false;
        ++depth;
        return true;
      },
      [&](const K7XmlElem&) { total += --depth; });
  return total < INT32_MAX;
}

void K7XmlElem::Writer::WriteStart(const K7XmlElem& elem) {
  m_out.Append("<", 1);
  m_out.Append(elem.m_name);
  if (!elem.m_attribText.IsEmpty()) {
    m_out.Append(" ", 1);
    m_out.Append(elem.m_attribText);
  }
  if (elem.m_text.IsEmpty() && !elem.m_firstChild) {
    // Without a name and attributes it would be "</>", a closing tag.
    if (elem.m_name.IsEmpty() && elem.m_attribText.IsEmpty()) m_out.Append(" ", 1);
    m_out.Append("/>\n", 3);
    return;
  }
  m_out.Append(">", 1);
  m_out.AppendEscaped(elem.m_text);
  if (elem.m_firstChild) {
    m_out.Append("\n", 1);
  } else {
    WriteEnd(elem);
  }
}

// Comments and declarations that a caller made. Escaped, a text cannot end its comment.
void K7XmlElem::Writer::WriteMarked(const K7XmlElem& elem) {
  if (elem.m_flags & COMMENT) {
    m_out.Append("<!--");
    m_out.AppendEscaped(elem.m_text);
    m_out.Append("-->\n");
    return;
  }
  m_out.Append("<?");
  m_out.Append(elem.m_name);
  if (!elem.m_attribText.IsEmpty()) m_out.Append(" ");
  m_out.Append(elem.m_attribText);
  m_out.Append("?>\n");
}

void K7XmlElem::Writer::WriteEnd(const K7XmlElem& elem) {
  m_out.Append("</", 2);
  m_out.Append(elem.m_name);
  m_out.Append(">\n", 2);
}

int K7XmlElem::Write(K7String& out, int depth) const {
  K7XmlText text;
  if (const int err = Writer(text, depth).Write(*this)) return err;
  return out += text.Text();
}

int K7XmlElem::WriteFile(const char* path) const {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  K7XmlText text;
  text.Append(DECLARATION_LINE, DECLARATION_LENGTH);
  if (const int err = Writer(text, 0).Write(*this)) return err;
  K7IO* const io = K7IO::Inst();
  if (!io) return K7_ERR_FILE_IO;
  return Save(*io, path, text);
}
