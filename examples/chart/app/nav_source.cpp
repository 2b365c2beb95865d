#include "app/nav_source.h"

#include "app_common/shared_data.h"

#include "ink/readable.h"
#include "layers/airport_layer.h"
#include "layers/airspace_layer.h"
#include "layers/airway_layer.h"
#include "layers/fix_layer.h"
#include "layers/isogonic_layer.h"
#include "layers/navaid_layer.h"

#include <k7/foundation/error_string.h>
#include <k7/geodesy/magvar.h>

#include <mutex>

std::string WhyNoStore(const std::string& path, NavStore& store) {
  if (path.empty())
    return "no navigation data: '--nav FILE.db' names a database that 'k7nav import' has made";
  if (const std::string why = WhyUnreadable(path); !why.empty())
    return "cannot read the navigation data " + Quoted(path) + ": " + why;
  const int code = store.Open(path.c_str());
  if (code == K7_ERR_INVALID_DATA)
    return Quoted(path) + " is no database of navigation data; 'k7nav import' makes one";
  return code == 0
             ? std::string()
             : "cannot read the navigation data " + Quoted(path) + ": " + K7ErrorString::ErrorString(code);
}

std::string WhyNoMagneticModel(const std::string& path) {
  // The model is the process's, and other threads may be asking it when one more opens its layers.
  static std::mutex mutex;
  static std::string known;
  const std::lock_guard lock(mutex);
  if (!path.empty() && path == known) return {};
  if (const std::string why = WhyUnreadable(path); !why.empty())
    return "cannot read the magnetic model " + Quoted(path) + ": " + why;
  K7MagVar::SetFilename(path.c_str());
  const Tarsvald::MagVar* const model = K7MagVar::GetMagVar();
  if (!model || !model->Position(nullptr, 0, 0, 0, 0))
    return Quoted(path) + " holds no coefficients of a magnetic model";
  known = path;
  return {};
}

std::string NavSource::OpenStore(const std::string& path) {
  return m_store.IsOpen() ? std::string() : WhyNoStore(path, m_store);
}

K7NavData* NavSource::Store(const LayerOptions& options, std::string& problem) {
  problem = OpenStore(options.nav);
  return problem.empty() ? &m_store : nullptr;
}

std::unique_ptr<Layer> NavSource::Make(ThemeItem item, const LayerOptions& options, std::string& problem) {
  problem = WhyNoMagneticModel(options.magnetic);
  if (problem.empty() && item != ThemeItem::Isogonics) problem = OpenStore(options.nav);
  if (!problem.empty()) return nullptr;
  switch (item) {
    case ThemeItem::Isogonics:
      return std::make_unique<IsogonicLayer>();
    case ThemeItem::Airspaces:
      return std::make_unique<AirspaceLayer>(&m_store);
    case ThemeItem::Airways:
      return std::make_unique<AirwayLayer>(&m_store);
    case ThemeItem::Fixes:
      return std::make_unique<FixLayer>(&m_store);
    case ThemeItem::Navaids:
      return std::make_unique<NavaidLayer>(&m_store);
    case ThemeItem::Airports:
      return std::make_unique<AirportLayer>(&m_store);
    default:
      problem = std::string("there is no layer of ") + ThemeItemName(item);
      return nullptr;
  }
}

void AddNavOption(OptionTable& table, std::string& file) {
  static constexpr OptionRow<std::string> ROWS[] = {
      {"--nav", "FILE.db",
       "navigation data, made by 'k7nav import', in which identifiers are looked up (default: the sample of "
       "the "
       "Salish Sea)",
       [](const char* text, std::string& name) {
         name = text;
         return std::string();
       }},
  };
  file = SampleNav();
  table.Add(ROWS, file);
}
