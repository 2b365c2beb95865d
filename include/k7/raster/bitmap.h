// K7Bitmap: raster images and the files that they come from.
#pragma once

#include <k7/export.h>
#include <k7/raster/color.h>

#include <cstddef>
#include <cstdint>

/// A raster image of 1, 4 or 8 bits a pixel with a palette, or of 24 or 32 bits in true colour. A row is
/// padded to a multiple of 4 bytes. Its pixels lie as in BMP files: the first in the highest bits of a byte;
/// blue, green, red and, of 32 bits, alpha. A new bitmap is empty.
///
/// What makes or reads an image answers 0 or a code and leaves the bitmap empty when it fails:
/// K7_ERR_MEMORY; K7_ERR_BUFFER_EXCEEDED for more pixels than the limit, or more bytes than an int counts;
/// and those named below.
class K7_API K7Bitmap {
 public:
  K7Bitmap() = default;
  virtual ~K7Bitmap();
  K7Bitmap(const K7Bitmap&) = delete;
  K7Bitmap& operator=(const K7Bitmap&) = delete;

  /// \name Files
  /// Files are opened through `K7IO`, images decoded without state beyond the call. Codes:
  /// K7_ERR_BAD_ARGUMENT for a null path, K7_ERR_FILE_IO when the file cannot be opened or read,
  /// K7_ERR_INVALID_DATA for an image that is damaged or cut short, K7_ERR_NOT_IMPLEMENTED for a kind of it
  /// that is not read.
  /// @{
  /// Reads the image in a file of any format below, which it tells by the first bytes: K7_ERR_OUT_OF_RANGE
  /// for others, K7_ERR_NOT_IMPLEMENTED for JPEG.
  int Read(const char* path);
  /// Reads an uncompressed or run-length encoded BMP of 1, 4, 8, 16, 24 or 32 bits; 16 bits become 32. With
  /// `alpha`, the fourth bytes of 32-bit pixels without masks are their alpha unless all of them are 0; with
  /// 0 such images are opaque.
  virtual int ReadBMP(const char* path, int alpha);
  /// Reads the image that is block number `block` of a GIF. Extensions and images count alike, from 0, so
  /// that 1 is the image behind one extension: an image that comes first is not found by 1, which `Read` asks
  /// for. Blocks before it are decoded, and must be sound. The transparent index that was named last becomes
  /// the transparent pixel.
  virtual int ReadGIF(const char* path, int block);
  /// Reads a PNG: palettes and greys of up to 8 bits as 8 bits, all else as 24 bits, with any alpha as 32.
  /// Samples of 16 bits are rounded to 8. Gamma is not applied. Images more than a million pixels wide or
  /// high are K7_ERR_INVALID_DATA: a row takes memory before it is known to be there.
  virtual int ReadPNG(const char* path);
  /// Reads a PCX of up to 8 bits a pixel, in one plane or spread over up to four, as 8 bits; of three and
  /// four planes of 8 bits as 24 and 32.
  virtual int ReadPCX(const char* path);
  /// Answers K7_ERR_NOT_IMPLEMENTED.
  virtual int ReadJPEG(const char* path);
  /// Writes an uncompressed BMP, an image of 32 bits with 24 when `to24` is set. Palettes lose their alpha.
  /// Answers 0, K7_ERR_BITMAP for an empty bitmap, K7_ERR_MEMORY, or K7_ERR_FILE_IO, which may leave a part
  /// of the file.
  virtual int WriteBMP(const char* path, bool to24) const;
  /// Writes a PNG of the same depth, with alpha and transparent pixel. Codes as above.
  virtual int WritePNG(const char* path) const;
  /// @}

  /// \name Making images
  /// @{
  /// Makes an image whose pixels are 0, with an opaque black palette and no transparent pixel.
  /// K7_ERR_BAD_ARGUMENT for a width or height below 1 or bits other than those above.
  int Create(int width, int height, int bits);
  /// Makes an image of the rows at `pixels`, packed as the bitmap's own: from the top, `stride` bytes apart
  /// (negative when the top row lies last in memory). `palette` gives the first `colors` entries. The rows
  /// may be this bitmap's own. K7_ERR_BAD_ARGUMENT as above, and for null or rows that overlap.
  int Populate(int width, int height, int bits, const void* pixels, ptrdiff_t stride,
               const K7Color* palette = nullptr, int colors = 0);
  void Clear();
  void Swap(K7Bitmap& other) noexcept;

  /// \name Images made of this one
  /// `out` may be this bitmap. K7_ERR_BITMAP when this one is empty.
  /// @{
  /// The image in 32 bits, each pixel in its own colour, the transparent one too.
  int Gen32bit(K7Bitmap& out) const;
  /// The same, pixels of the transparent colour fully transparent black.
  int GenTransparent(K7Bitmap& out) const;
  /// An image of 1 bit: 1, white, where a pixel's alpha in `GenTransparent` is 128 or more; else 0, black.
  int GenMask(K7Bitmap& out) const;
  /// @}

  /// \name Changing the whole image
  /// @{
  /// Gives each colour (of a palette, or of all pixels) new red, green and blue: `matrix` holds three rows of
  /// the factors of red, green and blue and an addend, for components 0 ... 255. Results are rounded and
  /// limited to that range; alpha stays. A transparent pixel of 24 or 32 bits follows its colour.
  /// K7_ERR_BAD_ARGUMENT for null or what is no finite number, the image as it was.
  int ColorTransform(const double* matrix);
  /// Turns the image upside down.
  void FlipVert();
  /// @}

  /// \name Looking at it
  /// @{
  bool IsEmpty() const { return !m_data; }
  int Width() const { return m_width; }
  int Height() const { return m_height; }
  int BitsPerPixel() const { return m_bits; }
  /// The bytes of a row with its padding.
  int RowBytes() const { return m_rowBytes; }
  /// The row `y` from the top; null outside. Images with a palette lie in memory from the bottom up, as BMP
  /// files have them, others from the top.
  uint8_t* Row(int y) { return const_cast<uint8_t*>(RowAt(y)); }
  const uint8_t* Row(int y) const { return RowAt(y); }
  /// All pixels of an image of 32 bits, rows from the top; null for others.
  K7Color* Colors() { return const_cast<K7Color*>(AllColors()); }
  const K7Color* Colors() const { return AllColors(); }
  /// The same as `K7Grfx::Image` takes them, 0xAARRGGBB.
  const uint32_t* Pixels() const { return reinterpret_cast<const uint32_t*>(AllColors()); }
  /// The palette index or 0xAARRGGBB (with alpha 0 for 24 bits) of a pixel; 0 outside.
  uint32_t GetValue(int x, int y) const;
  /// The colour of a pixel, without regard to the transparent one; transparent black outside.
  K7Color GetPixel(int x, int y) const;
  /// 2, 16, 256, or 0 for true colour.
  int PaletteCount() const { return m_bits > 0 && m_bits <= 8 ? 1 << m_bits : 0; }
  /// Transparent black outside.
  K7Color GetPaletteEntry(int i) const { return i >= 0 && i < PaletteCount() ? m_palette[i] : K7Color(); }
  /// Does nothing outside.
  void SetPaletteEntry(int i, K7Color color);
  /// The palette index, or 0x00RRGGBB, of pixels that are not to be seen; -1 for none.
  int GetTransparentPixel() const { return m_transparent; }
  /// Takes -1 or such a value; any other means none.
  void SetTransparentPixel(int value);
  /// @}

  /// \name Limit
  /// How many pixels an image may have, checked before memory is taken: a file of a few bytes can claim
  /// billions. 2^27 unless a host sets another; free of locks.
  /// @{
  static int64_t MaxPixels();
  static void SetMaxPixels(int64_t pixels);
  /// @}

 private:
  const uint8_t* RowAt(int y) const;
  const K7Color* AllColors() const {
    return m_bits == 32 ? reinterpret_cast<const K7Color*>(m_data) : nullptr;
  }
  int Gen32bit(K7Bitmap& out, bool transparent) const;

  int32_t m_width = 0;
  int32_t m_height = 0;
  int32_t m_bits = 0;
  int32_t m_rowBytes = 0;
  int32_t m_transparent = -1;
  uint8_t* m_data = nullptr;
  K7Color m_palette[256];
};
