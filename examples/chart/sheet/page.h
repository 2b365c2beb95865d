// The sheet that is drawn on and the file that it becomes.
#pragma once

#include "ink/progress.h"

#include <cairo.h>

#include <string>
#include <vector>

enum class PageFormat { PNG, SVG, PDF };

/// From the ending of a file name, without regard to case; a device gets a PNG. False for another ending.
bool PageFormatOf(const std::string& path, PageFormat& format);

/// A sheet of `width` x `height` pixels of 1/96 inch.
class Page {
 public:
  Page(PageFormat format, int width, int height);
  ~Page();
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  bool IsValid() const;
  cairo_t* Cairo() const { return m_cairo; }
  /// Finishes the sheet and appends its file. Empty, or what went wrong.
  std::string Encode(std::vector<unsigned char>& bytes, Progress& progress);
  /// Finishes the sheet and saves it with `SaveFile`. Empty, or what went wrong.
  std::string Save(const std::string& path, Progress& progress);

 private:
  static cairo_status_t Collect(void* page, const unsigned char* data, unsigned length);

  PageFormat m_format;
  std::vector<unsigned char> m_bytes;
  Progress* m_progress = nullptr;  // while saving
  cairo_surface_t* m_surface = nullptr;
  cairo_t* m_cairo = nullptr;
};
