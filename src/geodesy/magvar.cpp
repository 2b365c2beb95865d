#include "foundation/forever.h"

#include <k7/geodesy/magvar.h>

#include <new>

Tarsvald::MagVar* K7MagVar::m_magVar = nullptr;

namespace {

K7String& Filename() {
  static K7Forever<K7String> filename;
  return *filename;
}

}  // namespace

void K7MagVar::SetFilename(const char* path) {
  if (!path) path = "";
  if (K7String::IComp(Filename(), path) == 0) return;
  delete m_magVar;
  m_magVar = nullptr;
  Filename() = path;
}

Tarsvald::MagVar* K7MagVar::GetMagVar() {
  if (!m_magVar) m_magVar = new (std::nothrow) Tarsvald::MagVarWMM(Filename());
  return m_magVar;
}

void K7MagVar::DeleteMagVar() {
  delete m_magVar;
  m_magVar = nullptr;
  Filename() = "";
}
