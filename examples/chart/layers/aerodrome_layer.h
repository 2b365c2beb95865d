// An aerodrome as its mapping sets show it: runways, taxiways, aprons, stands, buildings and what else there
// is.
#pragma once

#include "layers/layer.h"
#include "layers/runway_strips.h"

#include <k7/geometry/shp_layer.h>

#include <memory>

struct AerodromeKind;

/// Sets are shapefiles of a folder: "runway.shp", or "ksea_runway.shp" for one airport, each of one kind of
/// feature. Records are the airport's by their attribute IDARPT, or where that says nothing, by their set's
/// name. The folder may have any of the kinds, or none.
class AerodromeLayer : public Layer {
 public:
  /// Reads the sets of an airport. Empty, or what went wrong.
  std::string Load(const std::string& folder, const std::string& airport);
  /// Whether there is anything of a kind, and of any.
  bool Has(K7ShapeType type) const;
  bool IsEmpty() const { return m_sets.empty(); }
  /// The extent of it all; empty without any.
  K7ChartRect Bounds() const;
  /// Replaces what the sets know better: measures, what is displaced or closed, elevations of thresholds.
  void Complete(std::vector<RunwayStrip>& runways) const;

  std::string Name() const override { return "aerodrome"; }
  ThemeItem Item() const override { return ThemeItem::Aprons; }
  void Prepare(const LayerContext& context) override;
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

 private:
  struct Set {
    const AerodromeKind* kind;
    std::unique_ptr<K7ShpLayer> layer;
    std::vector<char> isOurs;        // by a record's number
    std::vector<K7ShapeRec*> shown;  // in the order of their keys
  };
  std::string LoadSet(const std::string& path, const AerodromeKind& kind, const std::string& airport,
                      bool isNamed);
  template <class Visit>
  void VisitOurs(K7ShapeType type, Visit visit) const;
  template <class Visit>
  void VisitPlaces(const LayerContext& context, const Set& set, Visit visit) const;

  template <class Visit>
  void VisitClosed(const LayerContext& context, Visit visit) const;

  std::vector<Set> m_sets;  // from the ground up
};
