// Airways: lines between fixes with their names, minimum altitudes, magnetic courses and distances.
#pragma once

#include "layers/airway_legs.h"
#include "layers/device_line.h"
#include "layers/layer.h"

class K7NavData;

class AirwayLayer : public Layer {
 public:
  /// The store stays the caller's and open.
  explicit AirwayLayer(K7NavData* data) : m_data(data) {}

  std::string Name() const override { return "airways"; }
  ThemeItem Item() const override { return ThemeItem::Airways; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  /// All names, then altitudes; courses and distances are details.
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void OfferDetails(const LayerContext& context, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

 private:
  struct Shown {
    AirwayLeg leg;
    DeviceLine line;        // without the symbols' places at its ends
    bool hasFrom, hasTo;    // the leg's end is the line's
    bool far;               // towards a tilted view's horizon: without lettering
    double nameAlong = -1;  // where the name stands; none below 0
    double nameHalf = 0;
  };
  struct Writer;

  std::vector<Shown*> LongestFirst();
  double Apart(const LayerContext& context) const;
  void Thin(const LayerContext& context);
  void Show(const LayerContext& context, const AirwayLeg& leg, K7MapPath& path);

  K7NavData* m_data;
  std::vector<Shown> m_shown;
  double m_apart = 0;  // pixels between lines, on average
};
