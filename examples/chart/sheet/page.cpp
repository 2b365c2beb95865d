#include "sheet/page.h"

#include "app_common/save_file.h"
#include "sheet/png.h"

#include <k7/foundation/string.h>

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <filesystem>
#include <new>

namespace {

constexpr double POINTS_PER_PIXEL = 72.0 / 96.0;

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
  format = PageFormat::PNG;
  return IsDevice(path);
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
  Page& self = *static_cast<Page*>(page);
  if (self.m_progress) self.m_progress->Within(0);
  try {
    self.m_bytes.insert(self.m_bytes.end(), data, data + length);
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
  return CAIRO_STATUS_SUCCESS;
}

std::string Page::Encode(std::vector<unsigned char>& bytes, Progress& progress) {
  cairo_status_t status = cairo_status(m_cairo);
  if (status == CAIRO_STATUS_SUCCESS && m_format == PageFormat::PNG &&
      !EncodePng(m_surface, m_bytes, progress))
    status = CAIRO_STATUS_NO_MEMORY;
  m_progress = &progress;
  cairo_surface_finish(m_surface);
  m_progress = nullptr;
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(m_surface);
  if (status != CAIRO_STATUS_SUCCESS) return std::string("cannot draw: ") + cairo_status_to_string(status);
  bytes.insert(bytes.end(), m_bytes.begin(), m_bytes.end());
  return {};
}

std::string Page::Save(const std::string& path, Progress& progress) {
  progress.Step("writing " + std::filesystem::path(path).filename().string());
  std::vector<unsigned char> bytes;
  if (std::string problem = Encode(bytes, progress); !problem.empty()) return problem;
  const std::string problem = SaveFile(path, bytes);
  return problem.empty() ? problem : "cannot write '" + path + "': " + problem;
}
