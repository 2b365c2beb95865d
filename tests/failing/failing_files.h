// A host's file system in memory whose operations fail as planned.
#pragma once

#include "failing/driver.h"
#include "support/mem_io.h"

inline bool FileFails() { return plan.fault > Fault::MEMORY && plan.Fails(); }

class FailingFile : public K7File {
  template <class Transfer>
  auto Written(Transfer transfer) {
    const size_t before = m_bytes ? m_bytes->size() : 0;
    const auto result = transfer();
    m_lastWritten = m_bytes ? m_bytes->size() - before : 0;
    return result;
  }

 public:
  FailingFile(K7File* file, std::shared_ptr<Bytes> bytes) : m_file(file), m_bytes(std::move(bytes)) {
    ++held;
  }
  ~FailingFile() override {
    // The end of a buffered stream, which a full disk refuses when it is closed.
    if (m_lastWritten > 0 && FileFails()) m_bytes->resize(m_bytes->size() - m_lastWritten);
    --held;
  }

  bool IsValid() override { return m_file->IsValid(); }
  bool Open(const char*, const char*) override { return false; }
  void Close() override { m_file->Close(); }
  bool ReadLine(char* buf, int size) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && m_file->ReadLine(buf, size);
  }
  bool WriteLine(const char* text) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && Written([&] { return m_file->WriteLine(text); });
  }
  int Read(void* buf, int n) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return fails ? Broken([&](int m) { return m_file->Read(buf, m); }, n) : m_file->Read(buf, n);
  }
  int Write(const void* buf, int n) override {
    const bool fails = FileFails();
    const Quiet quiet;
    const auto write = [&](int m) { return Written([&] { return m_file->Write(buf, m); }); };
    return fails ? Broken(write, n) : write(n);
  }
  bool Seek(int pos) override { return !FileFails() && m_file->Seek(pos); }
  int Tell() override { return FileFails() ? -1 : m_file->Tell(); }
  void Flush() override {}

  static constexpr int CODE = -4711;  ///< a host's own

 private:
  template <class Transfer>
  int Broken(Transfer transfer, int n) {
    if (plan.fault == Fault::FILE_CODE) return CODE;
    return plan.fault == Fault::FILE_HALF ? transfer(n / 2) : 0;
  }
  std::unique_ptr<K7File> m_file;
  std::shared_ptr<Bytes> m_bytes;
  size_t m_lastWritten = 0;
};

/// Its own instance of the library's file system for as long as it lives.
class FailingIO : public K7IO {
 public:
  FailingIO() : m_scope(this) {}

  K7File* CreateFileX(const char* path, const char* mode) override {
    const bool fails = plan.Fails();
    const Quiet quiet;
    if (fails && plan.fault != Fault::FILE_CODE && plan.fault != Fault::FILE_HALF) return nullptr;
    if (fails) return new FailingFile(new MemFile(nullptr, mode), nullptr);
    K7File* const file = memory.CreateFileX(path, mode);
    const auto bytes = memory.files.find(path);
    return new FailingFile(file, bytes == memory.files.end() ? nullptr : bytes->second);
  }
  void FindFiles(const char*, K7StrArray&) override {}
  bool DeleteFileX(const char* path) override {
    const bool fails = FileFails();
    const Quiet quiet;
    return !fails && memory.DeleteFileX(path);
  }

  std::string Text(const char* path) const {
    const Bytes bytes = memory.Get(path);
    return std::string(bytes.begin(), bytes.end());
  }

  MemIO memory;

 private:
  ScopedIO m_scope;
};
