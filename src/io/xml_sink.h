// Where the elements of a rendered record go.
#pragma once

#include "io/xml_text.h"

#include <k7/foundation/string.h>
#include <k7/io/xml_elem.h>

namespace k7xml {

/// Takes elements in the order of the text. What fails is kept and asked for at the end.
class XmlSink {
 public:
  virtual void Open(const char* element) = 0;
  virtual void Close(const char* element) = 0;
  /// An element with a text and, unless it is null, the attribute Name="label".
  virtual void Add(const char* element, const char* label, const char* text) = 0;

 protected:
  ~XmlSink() = default;
};

/// Adds the elements to a tree.
class XmlTree final : public XmlSink {
 public:
  explicit XmlTree(K7XmlElem& top) : m_top(&top) {}
  void Open(const char* element) override;
  void Close(const char* element) override;
  void Add(const char* element, const char* label, const char* text) override;
  /// 0 or K7_ERR_MEMORY.
  int Result() const { return m_err; }

 private:
  K7XmlElem* m_top;
  int m_err = 0;
};

/// Writes them as `K7XmlElem::Write` would write their tree, behind the declaration. A record's tree would be
/// made, written once and deleted, which takes several times as long.
class XmlDocument final : public XmlSink {
 public:
  XmlDocument();
  void Open(const char* element) override;
  void Close(const char* element) override;
  void Add(const char* element, const char* label, const char* text) override;

  bool Failed() const { return m_text.Failed(); }
  const char* Text() const { return m_text.Text(); }
  int CopyTo(K7String& out, bool failed) const { return m_text.CopyTo(out, failed); }
  int Size() const { return m_text.Size(); }
  /// Replaces all from `at` on.
  void Replace(int at, const K7XmlText& text);

 private:
  void Start(const char* element);

  K7XmlText m_text;
  size_t m_depth = 0;
};

}  // namespace k7xml
