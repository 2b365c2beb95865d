// Where the layers of navigation data come from: a database and the magnetic model, opened when the first of
// them is wanted.
#pragma once

#include "app/layer_options.h"
#include "app_common/option_table.h"
#include "layers/layer.h"

#include "store/nav_store.h"

#include <memory>

/// Must outlive the layers.
class NavSource {
 public:
  /// Null with `problem` in words when a file cannot be read, or for an item that has no such layer.
  std::unique_ptr<Layer> Make(ThemeItem item, const LayerOptions& options, std::string& problem);
  /// Null with `problem` in words when it cannot be read.
  K7NavData* Store(const LayerOptions& options, std::string& problem);

 private:
  std::string OpenStore(const std::string& path);

  NavStore m_store;
};

/// Empty, or why the file cannot serve.
std::string WhyNoStore(const std::string& path, NavStore& store);
/// Makes it the model of the process; once it is, any thread may call this for it.
std::string WhyNoMagneticModel(const std::string& path);
/// --nav, for verbs that draw no layers of them: `file` becomes the sample's, until the option is given.
void AddNavOption(OptionTable& table, std::string& file);
