#include "sheet/page.h"

#include <k7/foundation/string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <filesystem>
#include <memory>
#include <system_error>

namespace {

constexpr double POINTS_PER_PIXEL = 72.0 / 96.0;

bool WriteFile(const std::string& path, const std::vector<unsigned char>& bytes) {
  const std::unique_ptr<K7File> file(K7IO::Inst()->CreateFileX(path.c_str(), "wb"));
  if (!file || !file->IsValid()) return false;
  const int size = static_cast<int>(bytes.size());
  const bool written = file->Write(bytes.data(), size) == size;
  file->Close();
  std::error_code error;
  return written && std::filesystem::file_size(path, error) == bytes.size();
}

}  // namespace

bool PageFormatOf(const std::string& path, PageFormat& format) {
  static const struct {
    const char* ending;
    PageFormat format;
  } FORMATS[] = {{".png", PageFormat::PNG}, {".svg", PageFormat::SVG}, {".pdf", PageFormat::PDF}};
  const std::string ending = std::filesystem::path(path).extension().string();
  for (const auto& known : FORMATS) {
    if (ending.empty() || K7String::IComp(ending.c_str(), known.ending) != 0) continue;
    format = known.format;
    return true;
  }
  return false;
}

Page::Page(PageFormat format, int width, int height) : m_format(format) {
  switch (format) {
    case PageFormat::PNG:
      m_surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
      break;
    case PageFormat::SVG:
      m_surface = cairo_svg_surface_create_for_stream(Collect, this, width, height);
      cairo_svg_surface_set_document_unit(m_surface, CAIRO_SVG_UNIT_PX);
      break;
    case PageFormat::PDF:
      m_surface = cairo_pdf_surface_create_for_stream(Collect, this, width * POINTS_PER_PIXEL,
                                                      height * POINTS_PER_PIXEL);
      break;
  }
  m_cairo = cairo_create(m_surface);
  if (format == PageFormat::PDF) cairo_scale(m_cairo, POINTS_PER_PIXEL, POINTS_PER_PIXEL);
}

Page::~Page() {
  cairo_destroy(m_cairo);
  cairo_surface_destroy(m_surface);
}

bool Page::IsValid() const { return cairo_status(m_cairo) == CAIRO_STATUS_SUCCESS; }

cairo_status_t Page::Collect(void* page, const unsigned char* data, unsigned length) {
  std::vector<unsigned char>& bytes = static_cast<Page*>(page)->m_bytes;
  bytes.insert(bytes.end(), data, data + length);
  return CAIRO_STATUS_SUCCESS;
}

std::string Page::Save(const std::string& path, Progress& progress) {
  progress.Step("writing " + std::filesystem::path(path).filename().string());
  cairo_status_t status = cairo_status(m_cairo);
  if (status == CAIRO_STATUS_SUCCESS && m_format == PageFormat::PNG)
    status = cairo_surface_write_to_png_stream(m_surface, Collect, this);
  cairo_surface_finish(m_surface);
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(m_surface);
  if (status != CAIRO_STATUS_SUCCESS) return std::string("cannot draw: ") + cairo_status_to_string(status);

  const std::string part = path + ".part";
  std::error_code error;
  if (WriteFile(part, m_bytes))
    std::filesystem::rename(part, path, error);
  else
    error = std::make_error_code(std::errc::io_error);
  if (!error) return {};
  std::error_code ignored;
  std::filesystem::remove(part, ignored);
  return "cannot write '" + path + "'";
}
