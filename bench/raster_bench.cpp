// Images of 4000 x 4000 pixels beside giflib and plain libpng: noise in runs, as charts and pictures of
// palettes have them, and noise throughout. The files lie in the temporary folder and in the system's cache.

#include <k7/raster.h>

#include <benchmark/benchmark.h>
#include <gif_lib.h>
#include <png.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int SIZE = 4000;

// `run`: how many pixels of one colour follow each other at most.
std::vector<uint8_t> Indexes(int run) {
  std::mt19937 random(1);
  std::vector<uint8_t> pixels(SIZE * SIZE);
  for (size_t i = 0; i < pixels.size();) {
    const uint8_t index = static_cast<uint8_t>(random() % (run > 1 ? 24 : 256));
    for (size_t n = 1 + random() % static_cast<unsigned>(run); n > 0 && i < pixels.size(); --n)
      pixels[i++] = index;
  }
  return pixels;
}

struct Files {
  Files() {
    std::filesystem::create_directories(folder);
    for (const int run : {1, 40}) {
      WriteGif(Gif(run), Indexes(run));
      K7Bitmap bitmap;
      const std::vector<uint8_t> pixels = Indexes(run);
      bitmap.Populate(SIZE, SIZE, 8, pixels.data(), SIZE);
      for (int i = 0; i < 256; ++i)
        bitmap.SetPaletteEntry(i, K7Color(uint8_t(i), uint8_t(i * 7), uint8_t(255 - i)));
      bitmap.WriteBMP(Path("8.bmp", run).c_str(), false);
      bitmap.Gen32bit(bitmap);
      bitmap.WritePNG(Png(run).c_str());
    }
  }
  ~Files() { std::filesystem::remove_all(folder); }

  static void WriteGif(const std::string& path, const std::vector<uint8_t>& pixels) {
    int err = 0;
    GifFileType* const gif = EGifOpenFileName(path.c_str(), false, &err);
    std::vector<GifColorType> colors(256);
    ColorMapObject* const map = GifMakeMapObject(256, colors.data());
    EGifSetGifVersion(gif, true);
    EGifPutScreenDesc(gif, SIZE, SIZE, 8, 0, map);
    // `K7Bitmap::Read` takes the image behind one extension.
    const uint8_t control[4] = {0, 0, 0, 0};
    EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, control);
    EGifPutImageDesc(gif, 0, 0, SIZE, SIZE, false, nullptr);
    for (int y = 0; y < SIZE; ++y) EGifPutLine(gif, const_cast<uint8_t*>(&pixels[size_t(y) * SIZE]), SIZE);
    EGifCloseFile(gif, &err);
    GifFreeMapObject(map);
  }
  std::string Path(const char* name, int run) const { return folder / (std::to_string(run) + name); }
  std::string Gif(int run) const { return Path(".gif", run); }
  std::string Png(int run) const { return Path(".png", run); }
  std::filesystem::path folder = std::filesystem::temp_directory_path() / "k7_raster_bench";
};

const Files& All() {
  static const Files files;
  return files;
}

int Run(const benchmark::State& state) { return static_cast<int>(state.range(0)); }

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(int64_t{SIZE} * SIZE * state.iterations());
}

void ReadImage(benchmark::State& state, const std::string& path) {
  for (auto _ : state) {
    K7Bitmap bitmap;
    if (bitmap.Read(path.c_str()) != 0) state.SkipWithError("not read");
    benchmark::DoNotOptimize(bitmap.Row(0));
  }
  CountPixels(state);
}

void GifOurs(benchmark::State& state) { ReadImage(state, All().Gif(Run(state))); }

void GifGiflib(benchmark::State& state) {
  const std::string path = All().Gif(Run(state));
  for (auto _ : state) {
    int err = 0;
    GifFileType* const gif = DGifOpenFileName(path.c_str(), &err);
    if (!gif || DGifSlurp(gif) != GIF_OK) state.SkipWithError("not read");
    benchmark::DoNotOptimize(gif->SavedImages[0].RasterBits);
    DGifCloseFile(gif, &err);
  }
  CountPixels(state);
}

void PngOurs(benchmark::State& state) { ReadImage(state, All().Png(Run(state))); }

void PngLibpng(benchmark::State& state) {
  const std::string path = All().Png(Run(state));
  for (auto _ : state) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    png_set_bgr(png);
    png_read_update_info(png, info);
    const size_t rowBytes = png_get_rowbytes(png, info);
    const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(rowBytes * SIZE);
    for (size_t y = 0; y < SIZE; ++y) png_read_row(png, pixels.get() + y * rowBytes, nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    benchmark::DoNotOptimize(pixels.get());
  }
  CountPixels(state);
}

void BmpOurs(benchmark::State& state) { ReadImage(state, All().Path("8.bmp", Run(state))); }

// The bytes of the file and nothing else.
void BmpPlain(benchmark::State& state) {
  const std::string path = All().Path("8.bmp", Run(state));
  for (auto _ : state) {
    const auto size = static_cast<size_t>(std::filesystem::file_size(path));
    const auto bytes = std::make_unique_for_overwrite<uint8_t[]>(size);
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    benchmark::DoNotOptimize(std::fread(bytes.get(), 1, size, file));
    std::fclose(file);
  }
  CountPixels(state);
}

void ToColors(benchmark::State& state) {
  K7Bitmap bitmap, out;
  bitmap.Read(All().Gif(Run(state)).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(bitmap.GenTransparent(out));
  CountPixels(state);
}

void TransformColors(benchmark::State& state) {
  const double dimmed[12] = {0.5, 0.1, 0, 3, 0.1, 0.5, 0, 3, 0, 0.1, 0.5, 3};
  K7Bitmap bitmap;
  bitmap.Read(All().Png(Run(state)).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(bitmap.ColorTransform(dimmed));
  CountPixels(state);
}

BENCHMARK(GifOurs)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(GifGiflib)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(PngOurs)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(PngLibpng)->Arg(1)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(BmpOurs)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(BmpPlain)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(ToColors)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(TransformColors)->Arg(40)->Unit(benchmark::kMillisecond);

}  // namespace
