#include "app/sheet_options.h"

#include "sheet/page.h"

#include <charconv>
#include <cstring>

namespace {

constexpr int MAX_PIXELS = 16000;

std::string SizeRange(const SheetOptions& options) {
  return "from " + std::to_string(options.smallest) + " to " + std::to_string(MAX_PIXELS);
}

std::string SetSize(const char* text, SheetOptions& options) {
  const char* const end = text + std::strlen(text);
  const auto [cross, widthError] = std::from_chars(text, end, options.width);
  const bool crossed = widthError == std::errc() && (*cross == 'x' || *cross == 'X');
  const auto [stop, heightError] = std::from_chars(crossed ? cross + 1 : end, end, options.height);
  const auto fits = [&](int pixels) { return pixels >= options.smallest && pixels <= MAX_PIXELS; };
  if (!crossed || heightError != std::errc() || stop != end || !fits(options.width) || !fits(options.height))
    return "the size is WIDTHxHEIGHT in pixels " + SizeRange(options) + ", not " + Quoted(text);
  return {};
}

std::string SetOutput(const char* text, SheetOptions& options) {
  PageFormat format;
  if (!PageFormatOf(text, format)) return "the output ends in .png, .svg or .pdf, unlike " + Quoted(text);
  options.output = text;
  return {};
}

constexpr OptionRow<SheetOptions> SIZE_OPTIONS[] = {
    {"--size", "WIDTHxHEIGHT", "of the picture in pixels, each ", SetSize, false,
     [](const SheetOptions& options) {
       return SizeRange(options) + " (default " + std::to_string(options.width) + "x" +
              std::to_string(options.height) + ")";
     }},
};

constexpr OptionRow<SheetOptions> OUTPUT_OPTIONS[] = {
    {"--output", "FILE", "the picture: .png, .svg or .pdf, or a device as /dev/stdout for a PNG (default ",
     SetOutput, false, [](const SheetOptions& options) { return options.output + ")"; }},
};

}  // namespace

void AddSizeOptions(OptionTable& table, SheetOptions& options) { table.Add(SIZE_OPTIONS, options); }

void AddSheetOptions(OptionTable& table, SheetOptions& options) {
  AddSizeOptions(table, options);
  table.Add(OUTPUT_OPTIONS, options);
}
