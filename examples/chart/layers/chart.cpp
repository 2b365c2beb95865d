#include "layers/chart.h"

#include <k7/foundation/error_string.h>

#include <algorithm>

namespace {

// The item that a component is drawn by; Text, which no layer is, for none.
ThemeItem ItemOf(const char* component) {
  for (int i = 0; i < THEME_ITEMS; ++i)
    if (K7String::IComp(component, ThemeItemName(static_cast<ThemeItem>(i))) == 0)
      return LayerItemOf(static_cast<ThemeItem>(i));
  for (int i = 0; i < SYMBOL_KINDS; ++i) {
    if (K7String::IComp(component, SymbolKindName(static_cast<SymbolKind>(i))) != 0) continue;
    if (i < static_cast<int>(SymbolKind::VOR)) return ThemeItem::Airports;
    return i < static_cast<int>(SymbolKind::AirwayFix) ? ThemeItem::Navaids : ThemeItem::Fixes;
  }
  return ThemeItem::Text;
}

}  // namespace

const DataScale& DataScaleOf(const ChartRequest& request) {
  // An eye that was placed by hand may be near the ground.
  static const double NEAR_NM = 1000;
  const bool placedEye = request.type == K7_PROJ_PERSPECTIVE && !request.params.empty();
  return ScaleFor(placedEye ? NEAR_NM : request.rangeNM);
}

Chart::Chart(const std::vector<Layer*>& layers, const Theme& theme, Progress& progress)
    : m_layers(layers, theme), m_theme(theme), m_progress(progress) {}

std::string Chart::Show(const ChartRequest& request, int width, int height, double scale) {
  m_path.reset();
  m_view.reset();
  const K7LatLon& c = request.center;
  m_projection.reset(K7MapView::CreateProjection(request.type, c.Lat(), c.Lon(), request.rangeNM, nullptr));
  if (!m_projection) return "out of memory";
  if (std::string problem = SetParams(*m_projection, request.params); !problem.empty()) return problem;

  auto view = std::make_unique<K7MapView>(m_projection.get(), width, height);
  view->SetTurn(request.turn);
  if (view->IsTilted() && request.rangeNM > 0)
    return "a tilted view shows what its field of view holds: it takes no --range";
  const int code = request.zoom > 0 ? view->LookAtZoom(c.Lat(), c.Lon(), request.zoom)
                                    : view->LookAt(c.Lat(), c.Lon(), request.rangeNM);
  if (code != 0) {
    if (view->IsTilted())
      return "the eye sees nothing but sky: the chart needs a lower Pitch, a lower Altitude (ft) or a wider "
             "Field of View Y (degs)";
    return std::string("this centre, range and parameters give no ") + m_projection->Name() +
           " chart: " + K7ErrorString::ErrorString(code);
  }
  if (request.nmPerPixel > 0) view->SetNMPerPixel(request.nmPerPixel);
  m_overhang = request.overhang;
  m_view = std::move(view);
  m_path = std::make_unique<K7MapPath>(*m_view);
  m_scale = scale;
  // Hidden ones too: they may be shown without another look.
  m_layers.VisitAll([this](Layer& layer) { layer.Prepare(Context()); });
  return {};
}

template <class Visit>
void Chart::VisitShown(Visit visit) const {
  m_layers.VisitVisible([&](Layer& layer) {
    if (m_theme[layer.Item()].ShowsAt(m_view->NMPerPixel())) visit(layer);
  });
}

K7ChartRect Chart::GetExtent() const { return m_view ? m_view->GetExtent() : K7ChartRect(); }

int Chart::Render(K7Grfx* g) {
  if (!g) return K7_ERR_BAD_ARGUMENT;
  if (!m_view) return K7_ERR_NOT_INITIALIZED;
  m_view->SetUp(g);
  const std::string name = m_projection->Name();
  VisitShown([&](Layer& layer) {
    m_progress.Step(name + ", areas of " + layer.Name());
    layer.DrawAreas(Context(), *m_path, *g);
  });
  const auto draw = [&](Layer& layer) {
    m_progress.Step(name + ", lines of " + layer.Name());
    layer.DrawLines(Context(), *m_path, *g);
  };
  const std::optional<RouteVeil> veil = Veil();
  Layer* const route = veil ? VisibleRoute() : nullptr;
  VisitShown([&](Layer& layer) {
    if (&layer != route) draw(layer);
  });
  if (route) {
    veil->Draw(m_theme[ThemeItem::Paper].fill, *g);
    draw(*route);
  }
  return K7_OK;
}

K7String Chart::GetComponentParentName(const char* component) {
  return component ? K7String(m_layers.NameOf(ItemOf(component)).c_str()) : K7String();
}

void Chart::ResetLayers(unsigned char visible) { m_layers.SetAllVisible(visible != 0); }

bool Chart::CanToggleTerrainContours() { return m_layers.Find(ThemeItem::Contours) != nullptr; }

void Chart::ToggleTerrainContours() {
  const std::string name = m_layers.NameOf(ThemeItem::Contours);
  m_layers.SetVisible(name, !m_layers.IsVisible(name));
}

Layer* Chart::VisibleRoute() const {
  return m_layers.IsVisible(m_layers.NameOf(ThemeItem::Route)) ? m_layers.Find(ThemeItem::Route) : nullptr;
}

bool Chart::SetOffRouteAlpha(unsigned char alpha) {
  if (!VisibleRoute()) return false;
  m_offRouteAlpha = alpha;
  return true;
}

void Chart::SetRouteVisible(unsigned char visible) {
  m_layers.SetVisible(m_layers.NameOf(ThemeItem::Route), visible != 0);
}

void Chart::ClearRoute() {
  m_layers.Remove(ThemeItem::Route);
  m_offRouteAlpha = 255;
}

std::optional<RouteVeil> Chart::Veil() const {
  const Layer* const route = m_view ? VisibleRoute() : nullptr;
  if (!route || m_offRouteAlpha == 255) return {};
  return RouteVeil(route->Corridor(), *m_view, 1 - m_offRouteAlpha / 255.0, m_scale);
}

// A label stays as whole as its brightest end: what stands at the route may be written away from it. What
// stands around the window belongs to the sheet.
LabelPlan::Opacity Chart::LabelOpacity() const {
  const std::optional<RouteVeil> veil = Veil();
  if (!veil) return {};
  const PixelBox window = {0, 0, m_view->Width() * 1.0, m_view->Height() * 1.0};
  return [veil = *veil, window](const Label& label, const TurnedBox& box) {
    if (label.lettering.item == ThemeItem::Route || !window.Holds({box.x, box.y, box.x, box.y})) return 1.0;
    double hidden = veil.OpacityAt(box.x, box.y);
    for (const double along : {-box.halfLength, box.halfLength})
      hidden = std::min(hidden, veil.OpacityAt(box.x + along * box.cos, box.y + along * box.sin));
    return 1 - hidden;
  };
}

void Chart::WriteUserThemePref(const char* path) {
  if (path) SaveTheme(path);
}

std::string Chart::SaveTheme(const std::string& path) const {
  Theme theme = m_theme;
  m_layers.KeepIn(theme);
  // A route is of one flight: hidden today, it is not to be missing tomorrow.
  theme[ThemeItem::Route].visible = m_theme[ThemeItem::Route].visible;
  return theme.Save(path);
}

void Chart::OfferLabels(double size, LabelPlan& plan) {
  if (!m_view) return;
  std::vector<Layer*> shown;
  VisitShown([&](Layer& layer) { shown.push_back(&layer); });
  for (Layer* const layer : shown) layer->KeepSymbols(Context(), plan);
  for (Layer* const layer : shown) layer->OfferFirst(Context(), size, plan);
  for (auto layer = shown.rbegin(); layer != shown.rend(); ++layer)
    (*layer)->OfferLabels(Context(), *m_path, size, plan);
  for (auto layer = shown.rbegin(); layer != shown.rend(); ++layer)
    (*layer)->OfferDetails(Context(), size, plan);
}

std::vector<LegendEntry> Chart::Legend() const {
  std::vector<const Layer*> shown;
  std::vector<LegendEntry> legend;
  if (!m_view || !m_useLegend) return legend;
  VisitShown([&](Layer& layer) { shown.push_back(&layer); });
  for (auto layer = shown.rbegin(); layer != shown.rend(); ++layer) (*layer)->AddToLegend(Context(), legend);
  return legend;
}

std::vector<Picked> Chart::Pick(double dx, double dy) {
  std::vector<Picked> found;
  if (!m_view) return found;
  VisitShown([&](Layer& layer) {
    const size_t first = found.size();
    layer.Pick(Context(), *m_path, dx, dy, found);
    for (size_t i = first; i < found.size(); ++i) found[i].layer = layer.Name();
  });
  std::reverse(found.begin(), found.end());
  return found;
}

double Chart::DataScale() const {
  double coarsest = 0;
  if (m_view) VisitShown([&](Layer& layer) { coarsest = std::max(coarsest, layer.DataScale()); });
  return coarsest;
}
