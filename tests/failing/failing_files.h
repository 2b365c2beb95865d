// One planned failure, and a host's file system in memory whose operations fail as planned.
#pragma once

#include "support/mem_io.h"

/// What fails, and how: memory, or a host's files by a code, by half of what was asked, or without a word.
enum class Fault { NONE, MEMORY, FILE_CODE, FILE_HALF, FILE_NOTHING };

/// The one failure that is planned. Only what runs under `Disturbed` counts.
struct Plan {
  Fault fault = Fault::NONE;
  int at = -1;
  bool onwards = false;
  int count = 0;
  bool armed = false;

  bool Fails() {
    if (!armed) return false;
    const int i = count++;
    return at >= 0 && (i == at || (onwards && i > at));
  }
};
inline constinit Plan plan;
/// Allocations and files that are held.
inline constinit long held = 0;

/// The library's work, and within it what a host does, whose memory is not at issue.
template <bool ARMED>
struct Arming {
  Arming() { plan.armed = ARMED; }
  ~Arming() { plan.armed = before; }
  Arming(const Arming&) = delete;
  Arming& operator=(const Arming&) = delete;
  const bool before = plan.armed;
};
using Disturbed = Arming<true>;
using Quiet = Arming<false>;

inline bool FileFails() { return plan.fault > Fault::MEMORY && plan.Fails(); }

class FailingFile : public MemFile {
 public:
  FailingFile(const std::shared_ptr<Bytes>& bytes, const char* mode) : MemFile(bytes, mode), m_kept(bytes) {
    ++held;
  }
  ~FailingFile() override {
    // The end of a buffered stream, which a full disk refuses when it is closed.
    if (m_lastWritten > 0 && FileFails()) m_kept->resize(m_kept->size() - m_lastWritten);
    --held;
  }

  bool ReadLine(char* buf, int size) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && MemFile::ReadLine(buf, size);
  }
  bool WriteLine(const char* text) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && MemFile::WriteLine(text);
  }
  int Read(void* buf, int n) override {
    const int part = Part(n);
    const Quiet quiet;
    return part == CODE ? CODE : MemFile::Read(buf, part);
  }
  int Write(const void* buf, int n) override {
    const int part = Part(n);
    const Quiet quiet;
    const size_t before = m_kept ? m_kept->size() : 0;
    const int result = part == CODE ? CODE : MemFile::Write(buf, part);
    m_lastWritten = m_kept ? m_kept->size() - before : 0;
    return result;
  }
  bool Seek(int pos) override { return !FileFails() && MemFile::Seek(pos); }
  int Tell() override { return FileFails() ? -1 : MemFile::Tell(); }

  static constexpr int CODE = -4711;  ///< a host's own

 private:
  // What of n bytes goes through.
  static int Part(int n) {
    if (!FileFails()) return n;
    if (plan.fault == Fault::FILE_CODE) return CODE;
    return plan.fault == Fault::FILE_HALF ? n / 2 : 0;
  }
  std::shared_ptr<Bytes> m_kept;
  size_t m_lastWritten = 0;
};

/// The library's file system for as long as it lives.
class FailingIO : public MemIO {
 public:
  K7File* CreateFileX(const char* path, const char* mode) override {
    const bool fails = plan.Fails();
    const Quiet quiet;
    if (fails && plan.fault != Fault::FILE_CODE && plan.fault != Fault::FILE_HALF) return nullptr;
    return new FailingFile(fails ? nullptr : Find(path, mode), mode);
  }
  void FindFiles(const char*, K7StrArray&) override {}
  bool DeleteFileX(const char* path) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && MemIO::DeleteFileX(path);
  }

 private:
  ScopedIO m_scope{this};
};
