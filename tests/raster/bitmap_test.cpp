// Images that other programs wrote (data/raster), and files written byte by byte.

#include "support/mem_io.h"

#include <k7/foundation/error_string.h>
#include <k7/raster.h>

#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace {

namespace fs = std::filesystem;

const fs::path IMAGES = K7_TEST_DATA "/raster";

Bytes FileBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Width and height as 16-bit words, then red, green, blue, alpha; what cannot be seen is black.
Bytes Rgba(const K7Bitmap& bitmap) {
  K7Bitmap seen;
  EXPECT_EQ(bitmap.GenTransparent(seen), 0);
  Bytes bytes;
  for (const int size : {seen.Width(), seen.Height()}) {
    bytes.push_back(static_cast<unsigned char>(size));
    bytes.push_back(static_cast<unsigned char>(size >> 8));
  }
  for (int y = 0; y < seen.Height(); ++y)
    for (int x = 0; x < seen.Width(); ++x) {
      const K7Color pixel = seen.GetPixel(x, y);
      const K7Color color = pixel.A() ? pixel : K7Color();
      bytes.insert(bytes.end(), {color.R(), color.G(), color.B(), color.A()});
    }
  return bytes;
}

std::vector<fs::path> Images() {
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(IMAGES)) {
    const auto kind = entry.path().extension();
    if (kind != ".rgba" && kind != ".py") paths.push_back(entry.path());
  }
  return paths;
}

int ReadBytes(K7Bitmap& bitmap, const Bytes& bytes) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("image", bytes);
  return bitmap.Read("image");
}

TEST(Bitmap, ReadsWhatOtherProgramsWrite) {
  ASSERT_GT(Images().size(), 25u);
  for (const fs::path& path : Images()) {
    K7Bitmap bitmap;
    ASSERT_EQ(ReadBytes(bitmap, FileBytes(path)), 0) << path;
    const std::string name = path.stem().string();
    EXPECT_EQ(Rgba(bitmap), FileBytes(IMAGES / (name.substr(0, name.find('-')) + ".rgba"))) << path;
  }
}

// What lies behind the pixels of BMP and of PCX in true colour, and the trailer of GIF, is not needed.
TEST(Bitmap, FilesCutAnywhereGiveACodeAndNoImage) {
  for (const fs::path& path : Images()) {
    const Bytes whole = FileBytes(path);
    if (whole.size() > 4000) continue;
    const bool isGif = path.extension() == ".gif";
    for (size_t n = 0; n + isGif < whole.size(); ++n) {
      K7Bitmap bitmap;
      if (ReadBytes(bitmap, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n))) == 0)
        EXPECT_GE(n + 4, whole.size()) << path << " cut at " << n;
      else
        EXPECT_TRUE(bitmap.IsEmpty() && bitmap.Width() == 0) << path << " cut at " << n;
    }
  }
}

// What libpng's own reader makes of a file, pixels that cannot be seen black.
Bytes PngPixels(const Bytes& file) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
  image.format = PNG_FORMAT_RGBA;
  Bytes pixels(PNG_IMAGE_SIZE(image));
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) << image.message;
  for (size_t i = 0; i < pixels.size(); i += 4)
    if (pixels[i + 3] == 0) pixels[i] = pixels[i + 1] = pixels[i + 2] = 0;
  return pixels;
}

TEST(Bitmap, WhatIsWrittenReadsBack) {
  for (const fs::path& path : Images()) {
    K7Bitmap bitmap, again;
    ASSERT_EQ(ReadBytes(bitmap, FileBytes(path)), 0);
    const Bytes expected = Rgba(bitmap);
    MemIO io;
    const ScopedIO scope(&io);
    ASSERT_EQ(bitmap.WritePNG("png"), 0);
    EXPECT_EQ(PngPixels(io.Get("png")), Bytes(expected.begin() + 4, expected.end())) << path;

    ASSERT_EQ(bitmap.WriteBMP("bmp", false) | again.Read("bmp"), 0);
    EXPECT_EQ(again.BitsPerPixel(), bitmap.BitsPerPixel());
    // BMP has no word for a transparent pixel.
    again.SetTransparentPixel(bitmap.GetTransparentPixel());
    EXPECT_EQ(Rgba(again), expected) << path;
  }
}

TEST(Bitmap, BmpFilesHaveTheStatedBytes) {
  MemIO io;
  const ScopedIO scope(&io);
  K7Bitmap bitmap;
  const K7Color pixels[4] = {K7Color(1, 2, 3, 4), K7Color(5, 6, 7, 8), K7Color(9, 10, 11), K7Color(0, 0, 0)};
  ASSERT_EQ(bitmap.Populate(2, 2, 32, pixels, 8), 0);
  ASSERT_EQ(bitmap.WriteBMP("24", true), 0);
  const Bytes expected = {'B', 'M', 70, 0,  0, 0, 0, 0, 0, 0, 54, 0, 0, 0,  //
                          40,  0,   0,  0,  2, 0, 0, 0, 2, 0, 0,  0, 1, 0, 24, 0, 0, 0, 0,
                          0,   16,  0,  0,  0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0,
                          0,   0,   11, 10, 9, 0, 0, 0, 0, 0, 3,  2, 1, 7, 6,  5, 0, 0};
  EXPECT_EQ(io.Get("24"), expected);

  const unsigned char bits[2] = {0x80, 0x40};
  const K7Color palette[2] = {K7Color(1, 2, 3), K7Color(4, 5, 6)};
  ASSERT_EQ(bitmap.Populate(2, 2, 1, bits, 1, palette, 2), 0);
  ASSERT_EQ(bitmap.WriteBMP("1", true), 0);
  const Bytes head = io.Get("1");
  EXPECT_EQ(Bytes(head.begin() + 54, head.end()),
            (Bytes{3, 2, 1, 0, 6, 5, 4, 0, 0x40, 0, 0, 0, 0x80, 0, 0, 0}));
  EXPECT_EQ(head[2], 70);
  EXPECT_EQ(head[46], 2);
  for (size_t room = 0; room < expected.size(); room += 3) {
    io.room = room;
    EXPECT_EQ(bitmap.WriteBMP("full", false), K7_ERR_FILE_IO) << room;
    EXPECT_EQ(bitmap.WritePNG("full"), K7_ERR_FILE_IO) << room;
  }
}

// The short header, which names one colour.
Bytes Bmp(int width, int height, int bits, int compression, const Bytes& rest) {
  Bytes bytes = {'B', 'M'};
  const auto word = [&bytes](int value) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
  };
  for (const int value : {0, 0, 0, 40, width, height, 1 | bits << 16, compression, 0, 0, 0, 1, 0})
    word(value);
  bytes.insert(bytes.end(), rest.begin(), rest.end());
  return bytes;
}

TEST(Bitmap, BmpKindsThatFewProgramsWrite) {
  K7Bitmap bitmap;
  // From the top, 5 bits each: white, and the lowest bit of blue (1 of 31 is 8.2 of 255).
  ASSERT_EQ(ReadBytes(bitmap, Bmp(2, -1, 16, 0, {0xFF, 0x7F, 0x01, 0x00})), 0);
  EXPECT_EQ(bitmap.GetPixel(0, 0), K7Color(255, 255, 255));
  EXPECT_EQ(bitmap.GetPixel(1, 0), K7Color(0, 0, 8));
  ASSERT_EQ(
      ReadBytes(bitmap, Bmp(1, 1, 16, 3, {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 31, 0, 0, 0, 0xE0, 0x07, 0, 0})), 0);
  EXPECT_EQ(bitmap.GetPixel(0, 0), K7Color(0, 255, 0));
  // Ten bits of red at the top.
  ASSERT_EQ(ReadBytes(bitmap, Bmp(1, 1, 32, 3, {0, 0, 0xC0, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x80})),
            0);
  EXPECT_EQ(bitmap.GetPixel(0, 0), K7Color(128, 0, 0));
  // Runs of 4 bits with an odd literal, a move, a run behind the row's end, and no second row's rest.
  const Bytes runs = {9, 9, 9, 0, 3, 0x12, 0, 5, 0x34, 0x56, 0x70, 0, 0, 2, 1, 1, 200, 0x89, 0, 1};
  ASSERT_EQ(ReadBytes(bitmap, Bmp(12, 3, 4, 2, runs)), 0);
  const uint32_t bottom[12] = {1, 2, 1, 3, 4, 5, 6, 7};
  const uint32_t middle[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 9, 8};
  for (int x = 0; x < 12; ++x) {
    EXPECT_EQ(bitmap.GetValue(x, 2), bottom[x]) << x;
    EXPECT_EQ(bitmap.GetValue(x, 1), middle[x]) << x;
    EXPECT_EQ(bitmap.GetValue(x, 0), 0u) << x;
  }
  for (const auto& [bits, compression] : {std::pair(8, 2), {4, 1}, {7, 0}, {24, 3}})
    EXPECT_EQ(ReadBytes(bitmap, Bmp(1, 1, bits, compression, Bytes(99))), K7_ERR_INVALID_DATA);
  EXPECT_EQ(ReadBytes(bitmap, Bmp(1, 1, 24, 4, Bytes(99))), K7_ERR_NOT_IMPLEMENTED);
}

TEST(Bitmap, RecognisesFilesByTheirFirstBytes) {
  K7Bitmap bitmap;
  EXPECT_EQ(ReadBytes(bitmap, {0xFF, 0xD8}), K7_ERR_NOT_IMPLEMENTED);
  EXPECT_EQ(ReadBytes(bitmap, {'B', 'A', 0, 0, 0, 0, 0, 0, 0}), K7_ERR_OUT_OF_RANGE);
  EXPECT_EQ(ReadBytes(bitmap, {}), K7_ERR_OUT_OF_RANGE);
  MemIO io;
  const ScopedIO scope(&io);
  EXPECT_EQ(bitmap.Read("nowhere"), K7_ERR_FILE_IO);
  EXPECT_EQ(bitmap.Read(nullptr), K7_ERR_BAD_ARGUMENT);
}

// An interlaced image of one pixel a row, whose values count up in the order of the file: 9-bit codes
// with a clear code in front of each keep the width.
Bytes CountingGif(int rows, bool withExtension, int behind = 0) {
  Bytes bytes = {'G', 'I', 'F', '8', '9', 'a', 1, 0, 10, 0, 0, 0, 0};
  const Bytes extension = {'!', 0xF9, 4, 1, 0, 0, 5, 0};
  if (withExtension) bytes.insert(bytes.end(), extension.begin(), extension.end());
  bytes.insert(bytes.end(), {',', 0, 0, 0, 0, 1, 0, static_cast<unsigned char>(rows), 0, 0x40, 8});
  Bytes packed;
  int count = 0;
  const auto put = [&](int code) {
    for (int i = 0; i < 9; ++i, ++count) {
      if (count % 8 == 0) packed.push_back(0);
      packed.back() = static_cast<unsigned char>(packed.back() | (code >> i & 1) << count % 8);
    }
  };
  for (int i = 0; i < rows; ++i) put(256), put(i);
  put(257);
  bytes.push_back(static_cast<unsigned char>(packed.size()));
  bytes.insert(bytes.end(), packed.begin(), packed.end());
  bytes.insert(bytes.end(), {0});
  bytes.insert(bytes.end(), static_cast<size_t>(behind), ';');
  return bytes;
}

TEST(Bitmap, GifBlocksAreCountedAndRowsInterlaced) {
  K7Bitmap bitmap;
  ASSERT_EQ(ReadBytes(bitmap, CountingGif(10, true, 1)), 0);
  EXPECT_EQ(bitmap.GetTransparentPixel(), 5);
  const int rows[10] = {0, 8, 4, 2, 6, 1, 3, 5, 7, 9};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(bitmap.GetValue(0, rows[i]), static_cast<uint32_t>(i));
  EXPECT_EQ(ReadBytes(bitmap, CountingGif(10, false, 1)), K7_ERR_INVALID_DATA);

  MemIO io;
  const ScopedIO scope(&io);
  io.Put("gif", CountingGif(10, false, 1));
  EXPECT_EQ(bitmap.ReadGIF("gif", 0), 0);
  EXPECT_EQ(bitmap.GetTransparentPixel(), -1);
}

// 3 x 2 pixels; clear, 2, end of 3 bits each.
TEST(Bitmap, GifPixelsBehindAnEarlyEndAreZero) {
  Bytes bytes = {'G', 'I', 'F', '8', '9', 'a', 3, 0, 2, 0, 0, 0, 0, '!', 1, 0};
  bytes.insert(bytes.end(), {',', 0, 0, 0, 0, 3, 0, 2, 0, 0, 2, 2, 4 | 2 << 3 | (5 & 3) << 6, 1, 0});
  K7Bitmap bitmap;
  ASSERT_EQ(ReadBytes(bitmap, bytes), 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(bitmap.GetValue(i % 3, i / 3), i == 0 ? 2u : 0u) << i;
}

TEST(Bitmap, PopulatesFromItsOwnRows) {
  K7Bitmap bitmap;
  const K7Color rows[3] = {K7Color(1, 2, 3), K7Color(4, 5, 6), K7Color(7, 8, 9)};
  ASSERT_EQ(bitmap.Populate(1, 3, 32, rows, 4), 0);
  ASSERT_EQ(bitmap.Populate(1, 2, 32, bitmap.Row(2), -4), 0);
  EXPECT_EQ(bitmap.GetPixel(0, 0), rows[2]);
  EXPECT_EQ(bitmap.GetPixel(0, 1), rows[1]);
}

TEST(Bitmap, ClaimsBeyondTheLimitTakeNoMemory) {
  const int64_t before = K7Bitmap::MaxPixels();
  K7Bitmap::SetMaxPixels(37 * 23 - 1);
  for (const fs::path& path : Images()) {
    K7Bitmap bitmap;
    EXPECT_EQ(ReadBytes(bitmap, FileBytes(path)), K7_ERR_BUFFER_EXCEEDED) << path;
  }
  K7Bitmap::SetMaxPixels(INT64_MAX);
  K7Bitmap bitmap;
  EXPECT_EQ(bitmap.Create(INT32_MAX, INT32_MAX, 32), K7_ERR_BUFFER_EXCEEDED);
  EXPECT_EQ(ReadBytes(bitmap, Bmp(INT32_MAX, INT32_MIN + 1, 32, 0, {})), K7_ERR_INVALID_DATA);
  K7Bitmap::SetMaxPixels(before);
}

// Against the definition, pixel by pixel, in every depth.
TEST(Bitmap, ImagesMadeOfImages) {
  std::mt19937 random(3);
  const double matrix[12] = {0.5, 0.25, 0, 10, 0, -1, 0, 255, 2, 0, 0, -0.5};
  for (const int bits : {1, 4, 8, 24, 32}) {
    Bytes raw(7 * 28);
    for (unsigned char& byte : raw) byte = static_cast<unsigned char>(random());
    K7Color palette[256];
    for (K7Color& color : palette) color = K7Color(static_cast<uint32_t>(random()));
    K7Bitmap bitmap, plain, seen, mask, flipped, changed;
    ASSERT_EQ(bitmap.Populate(7, 7, bits, raw.data(), 28, palette, 256), 0);
    bitmap.SetTransparentPixel(static_cast<int>(bitmap.GetValue(3, 2) & 0xFFFFFF));
    ASSERT_EQ(bitmap.Gen32bit(plain) | bitmap.GenTransparent(seen) | bitmap.GenMask(mask), 0);
    ASSERT_EQ(flipped.Populate(7, 7, 32, plain.Colors(), 28) | bitmap.Gen32bit(changed), 0);
    flipped.FlipVert();
    ASSERT_EQ(changed.ColorTransform(matrix), 0);
    for (int y = 0; y < 7; ++y)
      for (int x = 0; x < 7; ++x) {
        const K7Color color = bitmap.GetPixel(x, y);
        const bool hidden =
            static_cast<int>(bitmap.GetValue(x, y) & 0xFFFFFF) == bitmap.GetTransparentPixel();
        EXPECT_EQ(plain.GetPixel(x, y), color);
        EXPECT_EQ(flipped.GetPixel(x, 6 - y), color);
        EXPECT_EQ(seen.GetPixel(x, y), hidden ? K7Color() : color);
        EXPECT_EQ(mask.GetValue(x, y), !hidden && color.A() >= 128 ? 1u : 0u);
        const auto rounded = [](double v) {
          return static_cast<uint8_t>(std::lround(std::min(std::max(v, 0.0), 255.0)));
        };
        EXPECT_EQ(changed.GetPixel(x, y),
                  K7Color(rounded(color.R() / 2.0 + color.G() / 4.0 + 10),
                          static_cast<uint8_t>(255 - color.G()), rounded(2 * color.R() - 0.5), color.A()));
      }
    const double huge[12] = {1e308, -1e308, 1e308, 1e308};
    EXPECT_EQ(changed.ColorTransform(huge), 0);
    ASSERT_EQ(bitmap.GenTransparent(bitmap), 0);
    EXPECT_EQ(Rgba(bitmap), Rgba(seen));
  }
}

TEST(RasterCache, KeepsWhatWasAskedForLastWithinItsBudget) {
  MemIO io;
  const ScopedIO scope(&io);
  const std::string names = "abcdefgh";
  for (const char name : names) {
    K7Bitmap bitmap;
    ASSERT_EQ(bitmap.Create(100, 100, 32), 0);
    bitmap.Colors()[0] = K7Color(static_cast<uint8_t>(name), 0, 0);
    ASSERT_EQ(bitmap.WritePNG(std::string(1, name).c_str()), 0);
  }
  K7RasterCache cache(100 * 100 * 4 * 3 + 10000);
  for (const char* const path : {"a", "b", "c", "a", "d"}) {
    const K7Bitmap* const bitmap = cache.Get(path);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->GetPixel(0, 0).R(), *path);
  }
  EXPECT_EQ(cache.Count(), 3);
  EXPECT_LE(cache.CurSize(), 130000);
  EXPECT_FALSE(cache.Forget("b"));
  io.files.clear();
  for (const char* const path : {"a", "c", "d"}) EXPECT_NE(cache.Get(path), nullptr) << path;
  EXPECT_TRUE(cache.Forget("a"));
  int err = 0;
  EXPECT_EQ(cache.Get("a", &err), nullptr);
  EXPECT_EQ(err, K7_ERR_FILE_IO);

  K7RasterCache small(1000);
  io.Put("file", FileBytes(IMAGES / "few-8.bmp"));
  ASSERT_NE(small.Get("file", &err), nullptr);
  EXPECT_EQ(small.Count(), 0);
}

}  // namespace
