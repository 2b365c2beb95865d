// K7Chart: the host's chart, as the library and its extensions see it.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/projection/chart_rect.h>

class K7Grfx;
class K7Projection;

/// A K7Chart is what the host shows, in which projection, and how it is drawn. The host implements it. The
/// operations with a body are what only some hosts offer; their defaults say "not here".
class K7_API K7Chart {
 public:
  virtual ~K7Chart();

  /// Answers the projection in use, which stays the chart's. Null before one is chosen.
  virtual K7Projection* GetProjection() = 0;
  /// Answers the extent shown, empty before the first view is set.
  virtual K7ChartRect GetExtent() const = 0;
  /// Draws the chart's layers on `g`, which the projection has been set up on. Answers 0,
  /// K7_ERR_RENDER_CANCELLED when the user broke it off, or another negative code.
  virtual int Render(K7Grfx* g) = 0;

  /// \name What only some hosts offer
  /// @{
  /// Answers the name of the layer that the named component belongs to; empty when there is none.
  virtual K7String GetComponentParentName(const char* component);
  /// Sets the opacity (255: opaque) of what lies off the route. Answers false when the chart does not
  /// support it.
  virtual bool SetOffRouteAlpha(unsigned char alpha);
  virtual bool CanToggleTerrainContours();
  virtual void ToggleTerrainContours();
  virtual void ClearRoute();
  /// Sets every layer visible (not 0) or hidden (0).
  virtual void ResetLayers(unsigned char visible);
  virtual void SetRouteVisible(unsigned char visible);
  /// Stores the user's preferences of the current theme at `path`.
  virtual void WriteUserThemePref(const char* path);
  /// @}

 protected:
  K7Chart() = default;
  K7Chart(const K7Chart&) = default;
  K7Chart& operator=(const K7Chart&) = default;
};
