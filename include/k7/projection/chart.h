// K7Chart: the host's chart, as the library and its extensions see it.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/projection/chart_rect.h>

class K7Grfx;
class K7Projection;

/// Abstract chart, implemented by the host: what is shown, in which projection, and how it is drawn. The
/// operations with a body are what only some hosts offer; the defaults say "not here".
class K7_API K7Chart {
 public:
  virtual ~K7Chart();

  /// The projection in use; stays the chart's. Null before one is chosen.
  virtual K7Projection* GetProjection() = 0;
  /// The extent shown, empty before the first view is set.
  virtual K7ChartRect GetExtent() const = 0;
  /// Draws the chart's layers on `g`, which the projection has been set up on. 0, K7_ERR_RENDER_CANCELLED
  /// when the user broke it off, or another negative code.
  virtual int Render(K7Grfx* g) = 0;

  /// Name of the layer that the named component belongs to; empty when there is none.
  virtual K7String GetComponentParentName(const char* component);
  /// Opacity (255: opaque) of what lies off the route. False when the chart does not support it.
  virtual bool SetOffRouteAlpha(unsigned char alpha);
  virtual bool CanToggleTerrainContours();
  virtual void ToggleTerrainContours();
  virtual void ClearRoute();
  /// Sets every layer visible (not 0) or hidden (0).
  virtual void ResetLayers(unsigned char visible);
  virtual void SetRouteVisible(unsigned char visible);
  /// Stores the user's preferences of the current theme at `path`.
  virtual void WriteUserThemePref(const char* path);

 protected:
  K7Chart() = default;
  K7Chart(const K7Chart&) = default;
  K7Chart& operator=(const K7Chart&) = default;
};
