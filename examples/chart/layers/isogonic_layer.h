// Lines of equal magnetic variation, from the model of the process.
#pragma once

#include "layers/device_line.h"
#include "layers/layer.h"

/// Degrees between lines on a chart of a scale whose variations span so many degrees.
int IsogonicStep(double nmPerPixel, double span);
/// "5° W"
std::string VariationText(double degrees);

class IsogonicLayer : public Layer {
 public:
  struct Isogonic {
    double variation;  ///< degrees east
    DeviceLine line;
  };

  std::string Name() const override { return "isogonics"; }
  ThemeItem Item() const override { return ThemeItem::Isogonics; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

  const std::vector<Isogonic>& Lines() const { return m_lines; }

 private:
  std::vector<Isogonic> m_lines;
};
