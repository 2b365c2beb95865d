// Files beside the C library and zlib: reading word by word, checksums, compressed files. The files lie in
// the temporary folder, 16 MB of words that count up or text of that kind, and are in the system's cache.

#include <k7/io.h>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int SIZE = 1 << 24;

std::string Text() {
  std::string text;
  for (uint32_t i = 0; text.size() < SIZE; ++i) text += "waypoint " + std::to_string(i * 2654435761u % 1000);
  text.resize(SIZE);
  return text;
}

struct Paths {
  Paths() {
    std::filesystem::create_directories(folder);
    std::ofstream out(words, std::ios::binary);
    for (uint32_t i = 0; i < SIZE / 4; ++i) out.write(reinterpret_cast<const char*>(&i), 4);
  }
  ~Paths() { std::filesystem::remove_all(folder); }
  std::filesystem::path folder = std::filesystem::temp_directory_path() / "k7_io_bench";
  std::string words = folder / "words.bin";
  std::string packed = folder / "packed.bin";
};

const Paths& Files() {
  static const Paths paths;
  return paths;
}

void SetBytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(SIZE) * static_cast<int64_t>(state.iterations()));
}

void WordsRead32(benchmark::State& state) {
  for (auto _ : state) {
    K7FileK7 file(Files().words.c_str(), "rb");
    uint32_t word = 0, sum = 0;
    while (file.Read32(&word) == 0) sum += word;
    benchmark::DoNotOptimize(sum);
  }
  SetBytes(state);
}
BENCHMARK(WordsRead32)->Unit(benchmark::kMillisecond);

void WordsCLibrary(benchmark::State& state) {
  for (auto _ : state) {
    std::FILE* const file = std::fopen(Files().words.c_str(), "rb");
    uint32_t word = 0, sum = 0;
    while (std::fread(&word, sizeof word, 1, file) == 1) sum += word;
    std::fclose(file);
    benchmark::DoNotOptimize(sum);
  }
  SetBytes(state);
}
BENCHMARK(WordsCLibrary)->Unit(benchmark::kMillisecond);

void WordsInBlocks(benchmark::State& state) {
  std::vector<uint32_t> block(16384);
  for (auto _ : state) {
    std::FILE* const file = std::fopen(Files().words.c_str(), "rb");
    uint32_t sum = 0;
    while (const size_t n = std::fread(block.data(), 4, block.size(), file))
      for (size_t i = 0; i < n; ++i) sum += block[i];
    std::fclose(file);
    benchmark::DoNotOptimize(sum);
  }
  SetBytes(state);
}
BENCHMARK(WordsInBlocks)->Unit(benchmark::kMillisecond);

struct Crc : K7CRC {
  using K7CRC::crcData;
};

// Texts in lines, binary data, or neither line feeds nor carriage returns.
std::string Data(int64_t kind) {
  if (kind == 2) return Text();
  std::string data(SIZE, '\0');
  uint32_t x = 1;
  for (char& c : data) c = static_cast<char>((x = x * 1664525 + 1013904223) >> 24);
  if (kind == 0)
    for (size_t i = 0; i < data.size(); ++i)
      data[i] = i % 60 == 59 ? '\n' : static_cast<char>(' ' + data[i] % 32);
  return data;
}

void CrcData(benchmark::State& state) {
  const std::string data = Data(state.range(0));
  for (auto _ : state)
    benchmark::DoNotOptimize(Crc::crcData(reinterpret_cast<const unsigned char*>(data.data()), SIZE, ~0u));
  SetBytes(state);
}
BENCHMARK(CrcData)->ArgName("lines_binary_none")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

// One look-up a byte.
void CrcPlain(benchmark::State& state) {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    table[i] = i << 24;
    for (int bit = 0; bit < 8; ++bit) table[i] = (table[i] << 1) ^ (table[i] >> 31 ? 0x04C11DB7 : 0);
  }
  const std::string data = Data(state.range(0));
  for (auto _ : state) {
    uint32_t crc = ~0u;
    for (const char c : data)
      if (c != '\n' && c != '\r') crc = (crc << 8) ^ table[(static_cast<unsigned char>(c) ^ crc) & 0xFF];
    benchmark::DoNotOptimize(crc);
  }
  SetBytes(state);
}
BENCHMARK(CrcPlain)->ArgName("lines_binary_none")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void CrcZlib(benchmark::State& state) {
  const std::string data = Data(2);
  for (auto _ : state) benchmark::DoNotOptimize(crc32(0, reinterpret_cast<const Bytef*>(data.data()), SIZE));
  SetBytes(state);
}
BENCHMARK(CrcZlib)->Unit(benchmark::kMillisecond);

void Pack(benchmark::State& state) {
  const std::string text = Text();
  for (auto _ : state) {
    K7FileK7 file(Files().packed.c_str(), "wb");
    if (file.SecureCompress(text.data(), SIZE) != 0) return state.SkipWithError("not written");
  }
  SetBytes(state);
}
BENCHMARK(Pack)->Unit(benchmark::kMillisecond);

void PackZlib(benchmark::State& state) {
  const std::string text = Text();
  std::vector<Bytef> out(compressBound(SIZE));
  for (auto _ : state) {
    uLongf size = out.size();
    compress2(out.data(), &size, reinterpret_cast<const Bytef*>(text.data()), SIZE, 6);
    std::ofstream(Files().packed, std::ios::binary)
        .write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(size));
  }
  SetBytes(state);
}
BENCHMARK(PackZlib)->Unit(benchmark::kMillisecond);

void Unpack(benchmark::State& state) {
  const std::string text = Text();
  K7FileK7(Files().packed.c_str(), "wb").SecureCompress(text.data(), SIZE);
  for (auto _ : state) {
    K7FileK7 file(Files().packed.c_str(), "rb");
    char* out = nullptr;
    if (file.SecureDecompress(&out) != 0) return state.SkipWithError("not read");
    std::free(out);
  }
  SetBytes(state);
}
BENCHMARK(Unpack)->Unit(benchmark::kMillisecond);

void UnpackZlib(benchmark::State& state) {
  const std::string text = Text();
  std::vector<Bytef> packed(compressBound(SIZE));
  uLongf size = packed.size();
  compress2(packed.data(), &size, reinterpret_cast<const Bytef*>(text.data()), SIZE, 6);
  std::ofstream(Files().packed, std::ios::binary)
      .write(reinterpret_cast<const char*>(packed.data()), static_cast<std::streamsize>(size));
  for (auto _ : state) {
    std::ifstream(Files().packed, std::ios::binary)
        .read(reinterpret_cast<char*>(packed.data()), static_cast<std::streamsize>(size));
    char* const out = static_cast<char*>(std::malloc(SIZE));
    uLongf length = SIZE;
    uncompress(reinterpret_cast<Bytef*>(out), &length, packed.data(), size);
    benchmark::DoNotOptimize(out[length - 1]);
    std::free(out);
  }
  SetBytes(state);
}
BENCHMARK(UnpackZlib)->Unit(benchmark::kMillisecond);

}  // namespace
