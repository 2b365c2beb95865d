// A coefficient file of any bytes: what is accepted as a model answers with numbers everywhere.

#include "support/mem_io.h"

#include <k7/geodesy/magvar.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("file", Bytes(data, data + size));
  const Tarsvald::MagVarWMM model("file");
  for (const double lat : {-90.0, 0.0, 48.5, 90.0}) {
    double x = 0, y, z, h, f, declination = 0, inclination;
    const bool answered = model.ComputeField(lat, 30, 0, 2025.5, x, y, z, h, f, declination, inclination);
    if (answered != model.IsLoaded()) std::abort();
    if (answered && (!std::isfinite(declination) || !(std::abs(declination) <= 180))) std::abort();
  }
  return 0;
}
