// A chart: a projection's view of the world and the layers that are drawn in it.
#pragma once

#include "layers/layer_list.h"
#include "layers/layer_table.h"
#include "layers/projection_params.h"
#include "layers/route_veil.h"

#include <k7/projection/chart.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a chart shows.
struct ChartRequest {
  K7ProjType type = K7_PROJ_LAMBERT;
  K7LatLon center{48.5, -123.5};
  double rangeNM = 0;  // from the centre to the nearer edge; 0: all that the projection can show
  ProjectionParams params;
  std::string title{};  // in the margin, where there is one
  double turn = 0;      // the true course that points up, degrees
  double zoom = 0;      // a magnification in place of the range, as `K7Grfx::GetZoom` counts it; 0: none
  // Of one piece of a larger picture, whose pieces agree where they meet:
  double overhang = 0;    // pixels of the window on each side that the pieces around it show; 0: no piece
  double nmPerPixel = 0;  // the scale by which all pieces choose what they show; 0: the centre's
};

/// The scale of the data that suit a chart.
const DataScale& DataScaleOf(const ChartRequest& request);

/// Keeps its view from one drawing to the next and draws into any graphics context; layers and theme stay
/// the caller's and must outlive it.
class Chart : public K7Chart {
 public:
  Chart(const std::vector<Layer*>& layers, const Theme& theme, Progress& progress);

  /// Looks at what is wanted through a window of `width` by `height` pixels, `scale` being that of lines and
  /// symbols. Empty, or why there is no such chart; the chart then shows nothing.
  std::string Show(const ChartRequest& request, int width, int height, double scale);

  K7Projection* GetProjection() override { return m_projection.get(); }
  K7ChartRect GetExtent() const override;
  /// Any context will do: the chart sets it up. K7_ERR_NOT_INITIALIZED before the first view.
  int Render(K7Grfx* g) override;

  /// Which layers are on and how they lie.
  LayerList& Layers() { return m_layers; }
  /// Components are the theme's items and kinds of symbols: "CompassRoses" and "VOR" belong to "navaids".
  K7String GetComponentParentName(const char* component) override;
  void ResetLayers(unsigned char visible) override;
  bool CanToggleTerrainContours() override;
  void ToggleTerrainContours() override;
  /// False without a route that is visible. The veil is the paper's colour; labels off the route fade alike.
  bool SetOffRouteAlpha(unsigned char alpha) override;
  void SetRouteVisible(unsigned char visible) override;
  /// Takes the route off the chart.
  void ClearRoute() override;
  void WriteUserThemePref(const char* path) override;
  /// Writes the theme with the layers as they are on and lie now. Empty, or what went wrong.
  std::string SaveTheme(const std::string& path) const;

  /// Null before the first view.
  const K7MapView* View() const { return m_view.get(); }
  /// To be called before `Render`: symbols whose labels find no room are not drawn.
  void OfferLabels(double size, LabelPlan& plan);
  /// What becomes of labels when that which is off the route is dimmed; empty when nothing is.
  LabelPlan::Opacity LabelOpacity() const;
  /// Without one, `Legend` is empty.
  void UseLegend(bool use) { m_useLegend = use; }
  /// The kinds of symbols that are drawn, the uppermost layer's first; valid as long as the view is.
  std::vector<LegendEntry> Legend() const;
  /// What is drawn under a pixel, the uppermost layer first.
  std::vector<Picked> Pick(double dx, double dy);
  /// Denominator of the coarsest data that are shown; 0 when none has a scale.
  double DataScale() const;

 private:
  LayerContext Context() const { return {*m_view, m_theme, m_scale, m_progress, m_overhang}; }
  template <class Visit>
  void VisitShown(Visit visit) const;
  Layer* VisibleRoute() const;
  std::optional<RouteVeil> Veil() const;

  LayerList m_layers;
  const Theme& m_theme;
  Progress& m_progress;
  std::unique_ptr<K7Projection> m_projection;
  std::unique_ptr<K7MapView> m_view;
  std::unique_ptr<K7MapPath> m_path;
  double m_scale = 1;
  double m_overhang = 0;
  bool m_useLegend = true;
  unsigned char m_offRouteAlpha = 255;
};
