// A Cairo context that takes down what is drawn: Cairo's own script of it, and each text with its place.
#pragma once

#include <cairo-script.h>

#include <sstream>
#include <string>
#include <vector>

class DrawingTrace {
 public:
  struct Text {
    std::string text;
    double x, y;  // left end of the baseline
  };

  DrawingTrace(double width, double height)
      : m_device(cairo_script_create_for_stream(Take, &m_script)),
        m_surface(cairo_script_surface_create(m_device, CAIRO_CONTENT_COLOR, width, height)),
        m_cairo(cairo_create(m_surface)) {}
  ~DrawingTrace() {
    cairo_destroy(m_cairo);
    cairo_surface_destroy(m_surface);
    cairo_device_destroy(m_device);
  }
  DrawingTrace(const DrawingTrace&) = delete;
  DrawingTrace& operator=(const DrawingTrace&) = delete;

  cairo_t* Cairo() const { return m_cairo; }

  /// What has been drawn so far, a line an operation.
  std::vector<std::string> Lines() const {
    cairo_device_flush(m_device);
    std::istringstream script(m_script);
    std::vector<std::string> lines;
    for (std::string line; std::getline(script, line);) lines.push_back(line);
    return lines;
  }

  std::vector<Text> Texts() const {
    std::vector<Text> texts;
    for (const std::string& line : Lines()) {
      if (line[0] != '(' || !line.ends_with("show-text-glyphs")) continue;
      Text text{};
      size_t at = 1;
      for (; line[at] != ')'; ++at) {
        const bool octal = line[at] == '\\' && line[at + 1] >= '0' && line[at + 1] <= '7';
        if (line[at] == '\\') ++at;
        text.text += octal ? static_cast<char>(std::stoi(line.substr(at, 3), nullptr, 8)) : line[at];
        if (octal) at += 2;
      }
      std::istringstream(line.substr(line.find('[', at) + 1)) >> text.x >> text.y;
      texts.push_back(text);
    }
    return texts;
  }

 private:
  static cairo_status_t Take(void* script, const unsigned char* bytes, unsigned count) {
    static_cast<std::string*>(script)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
  }

  std::string m_script;
  cairo_device_t* m_device;
  cairo_surface_t* m_surface;
  cairo_t* m_cairo;
};
