// The writer of K7XmlElem.

#include <k7/io/xml_elem.h>

#include <k7/foundation/error_string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/io/io_native.h>

#include "io/os.h"
#include "io/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <typeinfo>

namespace {

constexpr char DECLARATION_LINE[] = "<?xml version=\"1.0\" encoding=\"windows-1252\"?>\n";
constexpr int DECLARATION_LENGTH = sizeof DECLARATION_LINE - 1;

// `text` begins with the declaration line.
bool WriteText(K7IO& io, const char* path, const K7XmlText& text) {
  const std::unique_ptr<K7File> file(io.CreateFileX(path, "w"));
  if (!file || !file->IsValid() || !file->WriteLine(DECLARATION_LINE)) return false;
  const int rest = text.Size() - DECLARATION_LENGTH;
  return file->Write(text.Text() + DECLARATION_LENGTH, rest) == rest;
}

// A full disk may show itself only when the last buffer is written, and neither flushing nor closing reports
// it: what the file holds does.
bool Holds(K7IO& io, const char* path, const K7XmlText& text) {
  const std::unique_ptr<K7File> file(io.CreateFileX(path, "r"));
  if (!file || !file->IsValid()) return false;
  char chunk[4096];
  const char* expected = text.Text();
  const char* const end = expected + text.Size();
  while (expected != end) {
    const int wanted = static_cast<int>(std::min<std::ptrdiff_t>(end - expected, sizeof chunk));
    const int n = file->Read(chunk, wanted);
    if (n <= 0 || n > wanted || std::memcmp(chunk, expected, static_cast<size_t>(n)) != 0) return false;
    expected += n;
  }
  return file->Read(chunk, 1) <= 0;
}

// Only the native file system can put one file into the place of another.
bool CanReplace(const K7IO& io) { return typeid(io) == typeid(K7IOK7); }

bool MoveOver(const char* from, const char* to) {
  const k7os::NativePath nativeFrom(from);
  const k7os::NativePath nativeTo(to);
  return nativeFrom.Text() && nativeTo.Text() && k7os::ReplaceFile(nativeFrom.Text(), nativeTo.Text());
}

bool WriteWhole(K7IO& io, const char* path, const char* beside, const K7XmlText& text) {
  if (!WriteText(io, beside, text) || !Holds(io, beside, text)) {
    io.DeleteFileX(beside);
    return false;
  }
  if (CanReplace(io)) {
    if (MoveOver(beside, path)) return true;
    io.DeleteFileX(beside);
    return false;
  }
  // From here on the file beside the target is the whole one, and stays unless the target is whole too.
  if (!WriteText(io, path, text) || !Holds(io, path, text)) return false;
  io.DeleteFileX(beside);
  return true;
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
  static bool HasContent(const K7XmlElem& elem) { return elem.m_firstChild && !elem.m_flags; }
  bool IndentFits(const K7XmlElem& top) const;
  void WriteStart(const K7XmlElem& elem);
  void WriteMarked(const K7XmlElem& elem);
  void WriteEnd(const K7XmlElem& elem);
  void Indent() { m_out.AppendRun('\t', static_cast<size_t>(m_depth)); }

  K7XmlText& m_out;
  int64_t m_depth;
};

int K7XmlElem::Writer::Write(const K7XmlElem& top) {
  if (!IndentFits(top)) return K7_ERR_MEMORY;
  Walk(
      top,
      [this](const K7XmlElem& elem) {
        Indent();
        elem.m_flags ? WriteMarked(elem) : WriteStart(elem);
        if (!HasContent(elem)) return false;
        ++m_depth;
        return true;
      },
      [this](const K7XmlElem& elem) {
        --m_depth;
        Indent();
        WriteEnd(elem);
      });
  return m_out.Failed() ? K7_ERR_MEMORY : 0;
}

// Indentation grows with the square of the depth: a text that it makes too long is refused before gigabytes
// of tabs.
bool K7XmlElem::Writer::IndentFits(const K7XmlElem& top) const {
  int64_t depth = m_depth;
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
  // Behind a link the file may be on another file system, where it can only be replaced from.
  K7String target(path);
  if (CanReplace(*io) && !k7os::FollowLinks(path, target)) return K7_ERR_MEMORY;
  K7String beside(target);
  if (beside += ".tmp") return K7_ERR_MEMORY;
  return WriteWhole(*io, target, beside, text) ? 0 : K7_ERR_FILE_IO;
}
