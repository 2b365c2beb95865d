#include <k7/io/io.h>

#include <k7/io/io_native.h>

#include "foundation/forever.h"

#include <new>

namespace {

// Guards the instance pointer. A function's static, so that it stands before any host's own statics use it.
K7Mutex& InstanceMutex() {
  static K7Forever<K7Mutex> mutex;
  return *mutex;
}

}  // namespace

K7IO* K7IO::m_io = nullptr;

K7IO::~K7IO() = default;

void K7IO::FindDirs(const char*, K7StrArray&) {}
void K7IO::FindDirsRecur(const char*, K7StrArray&, int) {}
bool K7IO::DeleteFileX(const char*) { return false; }
bool K7IO::ReadURL(const char*, const char*) { return false; }
void* K7IO::LoadLibraryX(const char*) { return nullptr; }
void* K7IO::GetSymbol(void*, const char*) { return nullptr; }
int K7IO::RetrieveRVXVersionString(const char*) { return 0; }
int K7IO::GetRVXVersionString(char*, int) { return 0; }
void K7IO::UnLoadLibrary(void*) {}

void K7IO::SetInst(K7IO* io) {
  const K7LockGuard lock(InstanceMutex());
  m_io = io;
}

K7IO* K7IO::Inst() {
  const K7LockGuard lock(InstanceMutex());
  if (!m_io) m_io = new (std::nothrow) K7IOK7;
  return m_io;
}

void K7IO::Destroy() {
  const K7LockGuard lock(InstanceMutex());
  delete m_io;
  m_io = nullptr;
}
