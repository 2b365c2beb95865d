// K7XmlElem: a small tree of XML elements with a lenient parser and a tab-indenting writer.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

class K7XmlAttribs;
struct K7XmlAttribScratch;

/// One element: its name, text, attributes and children. It owns its children: deleting or clearing it
/// deletes the whole subtree. Nothing here recurses, so depth and number of elements are limited by memory
/// alone.
///
///     K7XmlElem root;
///     if (root.ParseFile("options.xml") == 0)
///       for (K7XmlElem* e = root.FirstChild(); e; e = e->NextSibling()) Use(e->Name(), e->Text());
///
/// What is understood: elements, attributes in double quotes, text, the five predefined entities. Comments
/// and declarations are dropped. There are no namespaces, CDATA sections, DTDs or numeric character
/// references, and all text is bytes, declared windows-1252. An element keeps the first text that it holds;
/// text loses its whitespace on both sides when it is read. Everything else survives writing and reading
/// again, with one exception: "&amp;" is resolved before the other entities, so text or a value that spells
/// one of these out ("&lt;") comes back as its character.
///
/// Not locked: a tree belongs to one thread while it is built or changed. Any number of threads may read a
/// finished one.
class K7_API K7XmlElem {
 public:
  /// Bits of the flags.
  static constexpr unsigned COMMENT = 1;
  static constexpr unsigned DECLARATION = 2;

  /// Parses `attribs` at once: name="value" pairs between whitespace. The list ends at the first thing that
  /// is not name="value", and what follows that is ignored. What memory runs out for is missing: `SetName`,
  /// `SetText` and `AddAttrib` tell.
  explicit K7XmlElem(const char* name = nullptr, const char* text = nullptr, const char* attribs = nullptr,
                     unsigned flags = 0);
  K7XmlElem(const K7XmlElem&) = delete;
  K7XmlElem& operator=(const K7XmlElem&) = delete;
  /// Also takes the element out of its parent.
  ~K7XmlElem();

  /// Makes this an element without name, text, attributes, flags and children. It stays where it is in its
  /// parent.
  void Clear();
  /// Copies the subtree. The caller deletes the copy, which is null without memory; `err` (optional)
  /// receives 0 or K7_ERR_MEMORY.
  K7XmlElem* Clone(int* err = nullptr) const;

  /// \name Changing the tree
  /// @{
  /// Appends `child` and owns it from now on; a child of another element moves here. Answers 0, or
  /// K7_ERR_BAD_ARGUMENT for null and for this element itself or one above it.
  int AddChild(K7XmlElem* child);
  /// Takes `child` out without deleting it; the caller owns it then. Answers false when it is not a child.
  bool RemoveChild(K7XmlElem* child);
  /// @}

  /// \name Attributes
  /// @{
  /// Appends an attribute, also under a name that is there already. Answers 0, K7_ERR_BAD_ARGUMENT for
  /// null, or K7_ERR_MEMORY with the element unchanged.
  int AddAttrib(const char* name, const char* value);
  /// Copies the first attribute of that name (case matters). Answers false, with `value` untouched, when
  /// there is none, and without memory for the copy.
  bool Attrib(const char* name, K7String& value) const;
  /// Answers the same value without a copy, good until the attributes change; null when there is none.
  const char* AttribValue(const char* name) const;
  /// Copies one attribute. Answers false, with both untouched, outside 0 to `NumAttribs` - 1; also without
  /// memory.
  bool GetAttribByIndex(int i, K7String& name, K7String& value) const;
  int NumAttribs() const;
  /// @}

  /// \name Children
  /// @{
  /// Answer the index-th child, from 0, of that name (case matters); null without one. A null name matches
  /// children with an empty name. With a `parentName` that is not this element's name the answer is null.
  K7XmlElem* Child(const char* name) const { return Child(name, 0); }
  K7XmlElem* Child(const char* name, int index) const;
  K7XmlElem* Child(const char* name, const char* parentName, int index) const;
  /// Answers the text of the first child of that name, or an empty text.
  const K7String& ChildText(const char* name) const;
  /// @}

  /// \name This element
  /// @{
  const K7String& Name() const { return m_name; }
  const K7String& Text() const { return m_text; }
  /// Answers the attributes as they are written: name="value" pairs with single blanks between them.
  const K7String& AttribText() const { return m_attribText; }
  unsigned Flags() const { return m_flags; }
  K7XmlElem* Parent() const { return m_parent; }
  K7XmlElem* FirstChild() const { return m_firstChild; }
  K7XmlElem* NextSibling() const { return m_nextSibling; }
  /// Answer 0 or K7_ERR_MEMORY; null is the empty text.
  int SetName(const char* name);
  int SetText(const char* text);
  /// @}

  /// \name As text
  /// @{
  /// Reads the first element of `text`, with its subtree, into this one, which is cleared before. Answers
  /// the position behind it; `text` itself, or the position behind the comments that it starts with, when a
  /// closing tag comes first. Answers null at the end of the input, where `err` (optional) is 0, and on
  /// failure: K7_ERR_XML_MISMATCHED_TAG for a closing tag of another name, a tag without its ">" and an
  /// element that is never closed; K7_ERR_MEMORY; K7_ERR_BAD_ARGUMENT for null. A failure leaves what was
  /// read in the tree and writes a line to the log, at debug level, that tells at which line of the text it
  /// stopped.
  ///
  /// A tag ends at the first ">" that is no part of a quoted value; a declaration that does not end in "?>"
  /// counts as an element whose whole subtree is dropped.
  const char* Parse(const char* text, int* err = nullptr);
  /// Appends this subtree to `out`, indented by `depth` and more tabs. An element without children stays on
  /// one line. A comment that a caller made shows its text, a declaration its name and attributes; their
  /// children are left out. Answers 0, or K7_ERR_MEMORY with `out` unchanged, also for a text longer than
  /// an int counts.
  int Write(K7String& out, int depth = 0) const;
  /// @}

  /// \name Files
  /// @{
  /// Reads the root element of a file, opened as text; what comes of it is parsed, which may be less than
  /// the file's size where line ends are translated. Answers the code of `Parse`; K7_ERR_XML_MISMATCHED_TAG
  /// for a file without a named element; K7_ERR_FILE_IO, with this element unchanged, for one that does not
  /// open or read, and K7_ERR_MEMORY.
  int ParseFile(const char* path);
  /// Writes the declaration line and this subtree. Answers 0, K7_ERR_MEMORY, K7_ERR_BAD_ARGUMENT for null,
  /// or K7_ERR_FILE_IO.
  ///
  /// On the native file system a file is replaced in one step once the new bytes are on the disk: neither a
  /// full disk nor a crash costs a whole file that was there. They go to a file beside it, under a name
  /// that nobody uses; a link leads to the file that is replaced, and permissions stay. Where another file
  /// cannot take its place (the folder takes no new files, the file has several names or another owner, the
  /// link leads to none yet, it is a device) the named file itself is written. Through a host's own `K7IO`
  /// the named file is opened, and no other.
  int WriteFile(const char* path) const;
  /// @}

 private:
  class Reader;
  class Writer;

  K7XmlElem* CloneAlone() const;
  void Append(K7XmlElem* child);
  void DeleteChildren();
  template <class Enter, class Leave>
  static void Walk(const K7XmlElem& top, Enter enter, Leave leave);
  const char* Read(const char* text, const char* source, bool isDocument, int& err);

  int ReadAttribs(const char* text, const char* end, K7XmlAttribScratch& scratch);

  K7String m_name;
  K7String m_text;
  K7String m_attribText;
  K7XmlAttribs* m_attribs = nullptr;  // null without any
  unsigned m_flags = 0;
  K7XmlElem* m_parent = nullptr;
  K7XmlElem* m_firstChild = nullptr;
  K7XmlElem* m_nextSibling = nullptr;
  K7XmlElem* m_lastChild = nullptr;
};
