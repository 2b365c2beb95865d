// A whole chart: its layers, and what extensions may ask of it, behind K7Chart.
#include "svg_grfx.h"
#include "tiny_store.h"

namespace {

class Chart : public K7Chart {
 public:
  Chart(int width, int height, K7NavData& data) : m_view(nullptr, width, height), m_data(data) {}

  int LookAt(K7ProjType type, double lat, double lon, double range) {
    int code = 0;
    std::unique_ptr<K7Projection> projection(K7MapView::CreateProjection(type, lat, lon, range, &code));
    if (!projection) return code;
    m_projection = std::move(projection);
    m_view = K7MapView(m_projection.get(), m_view.Width(), m_view.Height());
    return m_view.LookAt(lat, lon, range);
  }
  int ReadLand(const char* path) { return m_land.Read(path, K7IO::Inst()); }
  void SetRoute(const K7LatLon& from, const K7LatLon& to) { m_route = {from, to}; }

  K7Projection* GetProjection() override { return m_projection.get(); }
  K7ChartRect GetExtent() const override { return m_view.GetExtent(); }
  int Render(K7Grfx* g) override {
    if (!g || !m_view.IsSet()) return K7_ERR_NOT_INITIALIZED;
    K7MapPath path(m_view);
    int code = m_isLandShown ? DrawLand(g, path) : 0;
    if (code == 0 && m_areAirportsShown) code = DrawAirports(g);
    if (code == 0 && m_isRouteShown) DrawRoute(g, path);
    return code;
  }
  void ClearRoute() override { m_route.clear(); }
  void SetRouteVisible(unsigned char visible) override { m_isRouteShown = visible != 0; }
  void ResetLayers(unsigned char visible) override {
    m_isLandShown = m_areAirportsShown = m_isRouteShown = visible != 0;
  }

 private:
  int DrawLand(K7Grfx* g, K7MapPath& path) {
    K7ShapeTable* const table = m_land.Table();
    const std::unique_ptr<K7ShapeQuery> query(table ? table->AreaQuery(GetExtent()) : nullptr);
    if (!query) return K7_ERR_MEMORY;
    g->FillColor(0.95, 0.92, 0.82, 1);
    g->LineColor(0.3, 0.4, 0.6, 1);
    g->LineStyle(1, nullptr, 0);
    while (K7ShapeRec* const record = query->Next()) {
      if (int code = m_land.Render(g, path, record)) return code;
    }
    return 0;
  }

  int DrawAirports(K7Grfx* g) {
    const std::unique_ptr<K7NavQueryResult> result(m_data.AreaQuery(K7NAV_AIRPORT, GetExtent()));
    if (!result) return K7_ERR_NOT_FOUND;
    g->FillColor(0.1, 0.2, 0.6, 1);
    while (const K7NavRec* const rec = result->Next()) {
      const auto& airport = static_cast<const K7Airport&>(*rec);
      double x = 0, y = 0;
      if (!m_view.ToDevice(K7NavData::FixPt2DecDeg(airport.lat), K7NavData::FixPt2DecDeg(airport.lon), x, y))
        continue;
      g->MoveTo(x - 4, y);
      g->LineTo(x, y - 4);
      g->LineTo(x + 4, y);
      g->LineTo(x, y + 4);
      g->ClosePath();
      g->Fill();
      if (auto* const svg = dynamic_cast<SvgGrfx*>(g)) svg->Text(x + 6, y + 4, airport.ident);
    }
    return 0;
  }

  void DrawRoute(K7Grfx* g, K7MapPath& path) {
    g->LineColor(0.8, 0, 0.5, 1);
    g->LineStyle(2, nullptr, 0);
    if (path.GreatCircle(g, m_route.data(), static_cast<int>(m_route.size())) > 0) g->Stroke();
  }

  std::unique_ptr<K7Projection> m_projection;  // outlives the view
  K7MapView m_view;
  K7NavData& m_data;
  K7ShpLayer m_land;
  std::vector<K7LatLon> m_route;
  bool m_isLandShown = true;
  bool m_areAirportsShown = true;
  bool m_isRouteShown = true;
};

}  // namespace

int main(int argc, char** argv) {
  TinyStore store;
  if (argc < 3 || !store.Add("KSEA", "SEATTLE-TACOMA INTL", 47.45, -122.31)) return 1;
  Chart chart(800, 600, store);
  int code = chart.ReadLand(argv[1]);
  if (code == 0) code = chart.LookAt(K7_PROJ_LAMBERT, 47.45, -122.31, 120);
  chart.SetRoute(K7LatLon(47.45, -122.31), K7LatLon(49.19, -123.18));
  SvgGrfx grfx(800, 600);
  if (code == 0) code = chart.Render(&grfx);
  if (code != 0) {
    std::puts(K7ErrorString::ErrorString(code));
    return 1;
  }
  const K7ChartRect extent = chart.GetExtent();
  std::printf("%s, from %.1f to %.1f north\n", chart.GetProjection()->Name(), extent.South(), extent.North());
  return grfx.Write(argv[2]) ? 0 : 1;
}
