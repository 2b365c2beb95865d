// What there is to choose from, for the page to offer.

#include "layers/projection_names.h"
#include "layers/projection_params.h"
#include "web/api_answer.h"
#include "web/desk.h"
#include "web/home.h"
#include "web/page_api.h"

namespace {

void WriteProjections(JsonWriter& json) {
  json.Key("projections").Begin('[');
  for (const NamedProjection& named : Projections()) {
    const std::unique_ptr<K7Projection> projection(K7Projection::Create(named.type, nullptr));
    if (!projection) continue;
    json.Begin('{').Key("name").Text(named.name).Key("title").Text(projection->Name());
    json.Key("tilted").Bool(named.type == K7_PROJ_PERSPECTIVE);
    // Unless they are set, a cone's are laid through the chart.
    json.Key("laid").Bool(projection->IsConic()).Key("params").Begin('[');
    for (int i = 0; i < projection->ParamCount(); ++i) {
      json.Begin('{').Key("name").Text(projection->ParamName(i));
      json.Key("value").Number(projection->ParamValue(i), 6);
      json.Key("range").Text(ParamRange(*projection, i)).End('}');
    }
    json.End(']').End('}');
  }
  json.End(']');
}

void WriteThemes(JsonWriter& json, const MapData& data) {
  json.Key("themes").Begin('[');
  for (const NamedTheme& theme : data.Themes()) json.Text(theme.name);
  json.End(']');
}

// From the ground up, as the usual theme has them.
void WriteLayers(JsonWriter& json, const LayerList& layers) {
  json.Key("layers").Begin('[');
  for (const std::string& name : layers.Names()) {
    json.Begin('{').Key("name").Text(name).Key("title").Text(TitleOf(name));
    json.Key("visible").Bool(layers.IsVisible(name)).End('}');
  }
  json.End(']');
}

void WriteHome(JsonWriter& json, const Home& home) {
  json.Key("home").Begin('{').Key("lat").Number(home.lat, 4).Key("lon").Number(home.lon, 4);
  json.Key("range").Number(home.rangeNM, 0).End('}');
}

}  // namespace

HttpAnswer AnswerAbout(const HttpRequest&, Desk& desk) {
  static const int SMALL = 16;
  std::string problem;
  NavStore* const store = desk.Store(problem);
  if (problem.empty()) problem = desk.Painter().Show({.chart = {}, .width = SMALL, .height = SMALL});
  if (!problem.empty()) return Problem(500, problem);
  JsonWriter json;
  json.Begin('{').Key("version").Text(K7CHART_VERSION);
  WriteProjections(json);
  WriteThemes(json, desk.Data());
  WriteLayers(json, desk.Painter().Shown().Layers());
  WriteHome(json, HomeOf(store));
  json.Key("attribution").Text(AttributionOf(store)).End('}');
  return JsonAnswer(std::move(json));
}
