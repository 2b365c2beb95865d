// The services that a host sets up first: a log, options, and whatever else it reads.
#include <k7/core.h>

#include <cstdio>
#include <memory>

namespace {

int ReadSettings(const char* path) {
  K7Options* const options = K7Options::Inst();
  if (!options) return K7_ERR_MEMORY;
  if (int code = options->Read(path)) {
    K7Log::LogMessage(K7_LOG_WARNING, "%s: %s", path, K7ErrorString::ErrorString(code));
    if (int failed = options->SetOption("TerrainCacheSize", "64", "Terrain")) return failed;
    return options->Write(path);
  }
  std::printf("%s: %s MiB for terrain\n", path, options->GetValueByKey("TerrainCacheSize", "Terrain"));
  return 0;
}

int PrintFile(const char* path) {
  const std::unique_ptr<K7File> file(K7IO::Inst()->CreateFileX(path, "rb"));
  if (!file || !file->IsValid()) return K7_ERR_FILE_IO;
  char line[256];
  while (file->ReadLine(line, sizeof line)) std::puts(line);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  K7Log::CreateLogFile(argv[2], K7IO::Inst());
  int code = ReadSettings(argv[1]);
  if (code == 0) code = PrintFile(argv[1]);
  if (code != 0) std::puts(K7ErrorString::ErrorString(code));
  K7Log::CloseLogFile();
  K7Options::Destroy();
  K7IO::Destroy();
  return code == 0 ? 0 : 1;
}
