#include "sheet/gallery.h"

#include "sheet/chart_sheet.h"

#include <algorithm>

namespace {

// Charts made for regions first, then those of the whole world, then the globes.
constexpr K7ProjType ORDER[] = {
    K7_PROJ_LAMBERT,     K7_PROJ_ALBERS,       K7_PROJ_STEREOGRAPHIC, K7_PROJ_MERCATOR, K7_PROJ_MILLER,
    K7_PROJ_RECTANGULAR, K7_PROJ_ORTHOGRAPHIC, K7_PROJ_PERSPECTIVE,   K7_PROJ_GNOMONIC,
};
constexpr int COLUMNS = 3;
constexpr int ROWS = 3;
static_assert(COLUMNS * ROWS == GALLERY_CHARTS && std::size(ORDER) == GALLERY_CHARTS);

// Mercator's poles lie at infinity: a sheet about a pole shows what is nearest to it there.
constexpr double MERCATOR_LIMIT = 80;

}  // namespace

std::string DrawGallery(cairo_t* cairo, const ChartRequest& common, int sheetWidth, int sheetHeight,
                        const Theme& theme, Chart& chart) {
  const double width = static_cast<double>(sheetWidth) / COLUMNS;
  const double height = static_cast<double>(sheetHeight) / ROWS;
  const double size = std::max(6.5, std::min(width, height) / 40);
  for (int i = 0; i < COLUMNS * ROWS; ++i) {
    ChartRequest request = common;
    request.type = ORDER[i];
    if (request.type == K7_PROJ_MERCATOR)
      request.center.Init(std::clamp(common.center.Lat(), -MERCATOR_LIMIT, MERCATOR_LIMIT),
                          common.center.Lon());
    const int row = i / COLUMNS;
    const ChartBox box = {width * (i % COLUMNS), height * row, width, height, size};
    if (std::string problem = DrawChart(cairo, box, request, theme, chart); !problem.empty()) return problem;
  }
  return {};
}
