// One chart: a projection's view of the world with its layers, in a frame with labels and a margin.
#pragma once

#include "ink/progress.h"
#include "layers/shape_layer.h"
#include "sheet/projection_params.h"

#include <k7/projection/chart.h>

#include <memory>
#include <string>
#include <vector>

/// What a chart shows and how.
struct ChartRequest {
  K7ProjType type = K7_PROJ_LAMBERT;
  GeoPoint centre{48.5, -123.5};
  double rangeNM = 0;  // from the centre to the nearer edge; 0: all that the projection can show
  bool graticule = true;
  ProjectionParams params;
};

/// Where a chart stands on the sheet, in pixels, and how large its lettering is.
struct ChartBox {
  double x, y, width, height;
  double textSize;
};

class WorldChart : public K7Chart {
 public:
  /// Layers are drawn in their order and stay the caller's.
  WorldChart(ChartRequest request, const std::vector<const ShapeLayer*>& layers, Progress& progress)
      : m_request(std::move(request)), m_layers(layers), m_progress(progress) {}

  /// Draws the chart with frame and margin into a box of the sheet. Empty, or what went wrong.
  std::string Draw(cairo_t* cairo, const ChartBox& box);

  K7Projection* GetProjection() override { return m_projection.get(); }
  K7ChartRect GetExtent() const override;
  int Render(K7Grfx* g) override;

 private:
  std::string SetUp(CairoGrfx& grfx);
  bool ShowsEarth() const;
  void DrawMargin(cairo_t* cairo, const ChartBox& window) const;
  std::string Params() const;
  std::string CentreText() const;

  ChartRequest m_request;
  const std::vector<const ShapeLayer*>& m_layers;
  Progress& m_progress;
  std::unique_ptr<K7Projection> m_projection;
  std::unique_ptr<View> m_view;
  double m_scale = 1;
};
