// A coast and a route on a chart: a view says where, a path says along which pixels.
#include "svg_grfx.h"

#include <memory>

namespace {

int Draw(const char* shapes, SvgGrfx& grfx) {
  int code = 0;
  const std::unique_ptr<K7Projection> projection(
      K7MapView::CreateProjection(K7_PROJ_STEREOGRAPHIC, 48.5, -123.5, 300, &code));
  if (!projection) return code;
  K7MapView view(projection.get(), grfx.Width(), grfx.Height());
  if ((code = view.LookAt(48.5, -123.5, 300)) != 0) return code;  // 300 NM to the nearer edges

  K7ShpLayer land;
  if ((code = land.Read(shapes, K7IO::Inst())) != 0) return code;
  const K7MapFeatures* const areas = land.Features();
  if (!areas) return K7_ERR_MEMORY;

  K7MapPath path(view);
  grfx.FillColor(0.95, 0.92, 0.82, 1);
  for (int i = 0; i < areas->Count(); ++i) {
    if (path.Area(&grfx, *areas, i) > 0) grfx.Fill();
  }
  const K7LatLon route[] = {{47.45, -122.31}, {49.19, -123.18}};
  grfx.LineColor(0.8, 0, 0.5, 1);
  grfx.LineStyle(2, nullptr, 0);
  if (path.GreatCircle(&grfx, route, 2) > 0) grfx.Stroke();

  double dx = 0, dy = 0;
  if (view.ToDevice(48.5, -123.5, dx, dy)) std::printf("centre at %.1f %.1f\n", dx, dy);
  std::printf("%.3f NM a pixel\n", view.NMPerPixel());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  SvgGrfx grfx(800, 600);
  if (int code = Draw(argv[1], grfx)) {
    std::puts(K7ErrorString::ErrorString(code));
    return 1;
  }
  return grfx.Write(argv[2]) ? 0 : 1;
}
