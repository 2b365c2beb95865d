#include "layers/chart.h"

#include <k7/foundation/error_string.h>

#include <algorithm>

Chart::Chart(std::vector<Layer*> layers, const Theme& theme, Progress& progress)
    : m_layers(std::move(layers)), m_visible(m_layers.size(), 1), m_theme(theme), m_progress(progress) {}

std::string Chart::Show(const ChartRequest& request, int width, int height, double scale) {
  m_path.reset();
  m_view.reset();
  const K7LatLon& c = request.center;
  m_projection.reset(K7MapView::CreateProjection(request.type, c.Lat(), c.Lon(), request.rangeNM, nullptr));
  if (!m_projection) return "out of memory";
  if (std::string problem = SetParams(*m_projection, request.params); !problem.empty()) return problem;

  auto view = std::make_unique<K7MapView>(m_projection.get(), width, height);
  if (view->IsTilted() && request.rangeNM > 0)
    return "a tilted view shows what its field of view holds: it takes no --range";
  if (const int code = view->LookAt(c.Lat(), c.Lon(), request.rangeNM)) {
    if (view->IsTilted())
      return "the eye sees nothing but sky: the chart needs a lower Pitch, a lower Altitude (ft) or a wider "
             "Field of View Y (degs)";
    return std::string("this centre, range and parameters give no ") + m_projection->Name() +
           " chart: " + K7ErrorString::ErrorString(code);
  }
  m_view = std::move(view);
  m_path = std::make_unique<K7MapPath>(*m_view);
  m_scale = scale;
  for (Layer* const layer : m_layers) layer->Prepare(Context());
  return {};
}

template <class Visit>
void Chart::VisitShown(Visit visit) const {
  for (size_t i = 0; i < m_layers.size(); ++i)
    if (m_visible[i] && m_theme[m_layers[i]->Item()].ShowsAt(m_view->NMPerPixel())) visit(*m_layers[i]);
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
  VisitShown([&](Layer& layer) {
    m_progress.Step(name + ", lines of " + layer.Name());
    layer.DrawLines(Context(), *m_path, *g);
  });
  return K7_OK;
}

void Chart::ResetLayers(unsigned char visible) {
  std::fill(m_visible.begin(), m_visible.end(), visible != 0);
}

void Chart::WriteUserThemePref(const char* path) {
  if (path) m_theme.Save(path);
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

std::vector<std::string> Chart::Pick(double dx, double dy) {
  std::vector<std::string> found;
  if (!m_view) return found;
  VisitShown([&](Layer& layer) { layer.Pick(Context(), *m_path, dx, dy, found); });
  std::reverse(found.begin(), found.end());
  return found;
}

double Chart::DataScale() const {
  double coarsest = 0;
  if (m_view) VisitShown([&](Layer& layer) { coarsest = std::max(coarsest, layer.DataScale()); });
  return coarsest;
}
