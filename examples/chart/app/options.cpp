#include "app/options.h"

#include "sheet/page.h"

#include <k7/io/file.h>

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace {

constexpr double MAX_RANGE_NM = 10800;  // half way around the earth
constexpr int MIN_PIXELS = 200;
constexpr int MAX_PIXELS = 16000;

struct NamedProjection {
  const char* name;
  K7ProjType type;
};

constexpr NamedProjection PROJECTIONS[] = {
    {"lambert", K7_PROJ_LAMBERT},
    {"mercator", K7_PROJ_MERCATOR},
    {"orthographic", K7_PROJ_ORTHOGRAPHIC},
    {"rectangular", K7_PROJ_RECTANGULAR},
    {"miller", K7_PROJ_MILLER},
    {"albers", K7_PROJ_ALBERS},
    {"perspective", K7_PROJ_PERSPECTIVE},
    {"stereographic", K7_PROJ_STEREOGRAPHIC},
    {"gnomonic", K7_PROJ_GNOMONIC},
};

struct NamedLayer {
  const char* name;
  LayerKind kind;
  const char* set;  // of the data folder, behind the scale
};

constexpr NamedLayer LAYERS[] = {
    {"land", LayerKind::Land, "land"},
    {"lakes", LayerKind::Lakes, "lakes"},
    {"rivers", LayerKind::Rivers, "rivers_lake_centerlines"},
    {"borders", LayerKind::Borders, "admin_0_boundary_lines_land"},
};

// Beyond this range the coarse sets show all that the picture can.
constexpr double COARSE_FROM_NM = 2500;

bool Number(const char* text, double& value) {
  const char* const end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, value);
  return error == std::errc() && stop == end && value - value == 0;
}

std::string Quoted(const char* text) { return std::string("'") + text + "'"; }

std::string SetProjection(const char* text, Options& options) {
  std::string known;
  for (const NamedProjection& projection : PROJECTIONS) {
    if (K7String::IComp(text, projection.name) == 0) {
      options.chart.type = projection.type;
      return {};
    }
    known += (known.empty() ? "" : ", ") + std::string(projection.name);
  }
  return "unknown projection " + Quoted(text) + " (" + known + ")";
}

std::string SetCentre(const char* text, Options& options) {
  K7LatLon centre;
  if (centre.ParsePosition(text) == 0)
    return "cannot read the position " + Quoted(text) + " (write it as \"N48 30.0 W123 30.0\")";
  options.chart.centre = {centre.Lat(), centre.Lon()};
  return {};
}

std::string SetRange(const char* text, Options& options) {
  double range = 0;
  if (!Number(text, range) || range < 1 || range > MAX_RANGE_NM)
    return "the range is nautical miles from 1 to 10800, not " + Quoted(text);
  options.chart.rangeNM = range;
  return {};
}

std::string SetSize(const char* text, Options& options) {
  const char* const end = text + std::strlen(text);
  const auto [cross, widthError] = std::from_chars(text, end, options.width);
  const bool crossed = widthError == std::errc() && (*cross == 'x' || *cross == 'X');
  const auto [stop, heightError] = std::from_chars(crossed ? cross + 1 : end, end, options.height);
  const auto fits = [](int pixels) { return pixels >= MIN_PIXELS && pixels <= MAX_PIXELS; };
  if (!crossed || heightError != std::errc() || stop != end || !fits(options.width) || !fits(options.height))
    return "the size is WIDTHxHEIGHT in pixels from 200 to 16000, not " + Quoted(text);
  return {};
}

std::string AddParam(const char* text, Options& options) {
  const char* const equals = std::strrchr(text, '=');
  double value = 0;
  if (!equals || equals == text || !Number(equals + 1, value))
    return "a parameter is \"NAME=NUMBER\", not " + Quoted(text);
  options.chart.params.emplace_back(std::string(text, equals), value);
  return {};
}

std::string AddLayer(const char* text, Options& options) {
  for (const NamedLayer& layer : LAYERS)
    if (K7String::IComp(text, layer.name) == 0) {
      options.layers.push_back({layer.kind, {}});
      return {};
    }
  const char* const ending = std::strrchr(text, '.');
  if (!ending || K7String::IComp(ending, ".shp") != 0)
    return "unknown layer " + Quoted(text) + " (land, lakes, rivers, borders, or a file that ends in .shp)";
  options.layers.push_back({LayerKind::Other, text});
  return {};
}

std::string SetOutput(const char* text, Options& options) {
  PageFormat format;
  if (!PageFormatOf(text, format)) return "the output ends in .png, .svg or .pdf, unlike " + Quoted(text);
  options.output = text;
  return {};
}

std::string SetData(const char* text, Options& options) {
  options.data = text;
  return {};
}

struct ValueOption {
  const char* name;
  std::string (*set)(const char* text, Options& options);
};

constexpr ValueOption VALUE_OPTIONS[] = {
    {"--projection", SetProjection}, {"--center", SetCentre}, {"--range", SetRange},   {"--size", SetSize},
    {"--param", AddParam},           {"--layer", AddLayer},   {"--output", SetOutput}, {"--data", SetData},
};

struct Flag {
  const char* name;
  void (*set)(Options& options);
};

constexpr Flag FLAGS[] = {
    {"--gallery", [](Options& options) { options.gallery = true; }},
    {"--no-graticule", [](Options& options) { options.chart.graticule = false; }},
    {"--help", [](Options& options) { options.help = true; }},
    {"-h", [](Options& options) { options.help = true; }},
};

// The set of a named layer at the scale of the chart.
std::string PathOf(LayerKind kind, const Options& options) {
  // An eye that was placed by hand may be near the ground.
  const bool placedEye = options.chart.type == K7_PROJ_PERSPECTIVE && !options.chart.params.empty();
  const bool world = options.chart.rangeNM == 0 && !placedEye;
  const bool coarse = world || options.chart.rangeNM > COARSE_FROM_NM;
  for (const NamedLayer& layer : LAYERS)
    if (layer.kind == kind) return options.data + (coarse ? "/ne_110m_" : "/ne_50m_") + layer.set + ".shp";
  return {};
}

std::string FillLayers(Options& options) {
  const bool usual = options.layers.empty();
  if (usual)
    for (const NamedLayer& layer : LAYERS) options.layers.push_back({layer.kind, {}});
  std::vector<LayerRequest> present;
  for (LayerRequest& layer : options.layers) {
    if (layer.path.empty()) layer.path = PathOf(layer.kind, options);
    // Of the usual layers those are drawn that the data folder has; a layer that was asked for must be there.
    if (!usual || K7File::FilePathExists(layer.path.c_str())) present.push_back(layer);
  }
  if (present.empty()) return "no map data in the folder " + Quoted(options.data.c_str());
  options.layers = std::move(present);
  return {};
}

}  // namespace

std::string ParseOptions(int argc, const char* const* argv, Options& options) {
  const char* const folder = std::getenv("K7CHART_DATA");
  options.data = folder && *folder ? folder : K7CHART_DATA;

  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const size_t equals = argument.compare(0, 2, "--") == 0 ? argument.find('=') : std::string::npos;
    const std::string name = argument.substr(0, equals);
    bool known = false;
    for (const Flag& flag : FLAGS)
      if (argument == flag.name) {
        flag.set(options);
        known = true;
      }
    for (const ValueOption& option : VALUE_OPTIONS) {
      if (name != option.name) continue;
      known = true;
      if (equals == std::string::npos && i + 1 == argc) return "the option " + name + " needs a value";
      const char* const value = equals == std::string::npos ? argv[++i] : argv[i] + equals + 1;
      if (std::string problem = option.set(value, options); !problem.empty()) return problem;
    }
    if (!known) return "unknown option " + Quoted(argv[i]) + " (see k7chart --help)";
  }
  if (options.help) return {};
  if (options.gallery && !options.chart.params.empty())
    return "--gallery takes no --param: its projections share none";
  return FillLayers(options);
}

const char* HelpText() {
  return "Usage: k7chart [OPTION]...\n"
         "Draws a chart of the world's coasts, rivers and borders.\n"
         "\n"
         "  --projection NAME   lambert (default), mercator, orthographic, rectangular, miller,\n"
         "                      albers, perspective, stereographic or gnomonic\n"
         "  --center POSITION   where the chart lies, as \"N48 30.0 W123 30.0\" (default),\n"
         "                      \"48.5, -123.5\" and other usual ways of writing it\n"
         "  --range NM          nautical miles from the centre to the nearer edge, 1 to 10800;\n"
         "                      without it the chart shows all that the projection can, and a\n"
         "                      tilted perspective what its field of view holds\n"
         "  --param NAME=VALUE  sets a parameter of the projection, as \"Standard Parallel 1=49\";\n"
         "                      may be repeated\n"
         "  --layer LAYER       land, lakes, rivers, borders, or a shapefile set FILE.shp; may be\n"
         "                      repeated; without it all that the data folder has are drawn\n"
         "  --gallery           draws all nine projections on one sheet\n"
         "  --no-graticule      leaves out meridians and parallels\n"
         "  --size WIDTHxHEIGHT of the picture in pixels (default 1600x1000)\n"
         "  --output FILE       the picture: .png (default chart.png), .svg or .pdf\n"
         "  --data FOLDER       where the named layers are read from (default $K7CHART_DATA, or else\n"
         "                      the sample data of the source tree)\n"
         "  --help              shows this text\n"
         "\n"
         "Example:\n"
         "  k7chart --projection lambert --center \"N48 30.0 W123 30.0\" --range 300 --output chart.png\n";
}
