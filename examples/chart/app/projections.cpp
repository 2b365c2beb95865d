// k7chart projections: the projections of the library and what can be set of each.

#include "app/chart_options.h"
#include "app_common/verb.h"
#include "layers/projection_params.h"

#include <k7/foundation/string.h>

#include <cstdio>

namespace {

class ProjectionsVerb : public Verb {
 public:
  std::string Run() override {
    std::printf("%-28s%-14s%s\n", "", "default", "values");
    for (const NamedProjection& named : Projections()) {
      const std::unique_ptr<K7Projection> projection(K7Projection::Create(named.type, nullptr));
      if (!projection) return "out of memory";
      std::printf("%-15s%s\n", named.name, projection->Name());
      for (int i = 0; i < projection->ParamCount(); ++i) {
        K7String value;
        value.Format("%.9g", projection->ParamValue(i));
        std::printf("    %-24s%-14s%s%s\n", projection->ParamName(i), static_cast<const char*>(value),
                    ParamRange(*projection, i).c_str(),
                    projection->IsConic() ? "; unless set, laid through the chart" : "");
      }
    }
    return {};
  }
};

}  // namespace

std::unique_ptr<Verb> MakeProjections() { return std::make_unique<ProjectionsVerb>(); }
