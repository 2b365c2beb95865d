#include "layers/place_label.h"

#include <algorithm>

namespace {

// Where lettering stands, seen from the symbol, the usual first.
struct Side {
  int right, down;
};
constexpr Side SIDES[] = {{1, 0}, {-1, 0}, {0, -1}, {0, 1}, {1, -1}, {1, 1}, {-1, -1}, {-1, 1}};

// Pixels from the symbol; as far as the last, a reader still sees which symbol it is.
constexpr double GAPS[] = {1, 6};

// Rounding is not to make neighbouring lines touch.
constexpr double BETWEEN = 0.01;

// The lower end of a span of `length` before, about or behind another.
double Beside(int side, double from, double to, double length, double gap) {
  return side > 0 ? to + gap : side < 0 ? from - gap - length : (from + to - length) / 2;
}

// The block that lines take together, and their own places in it.
struct Block {
  std::vector<PixelBox> boxes;
  double width = 0, height = 0;
};

Block Measure(const LabelPlan& plan, std::vector<Label>& lines) {
  Block block;
  for (Label& line : lines) {
    line.x = line.y = 0;
    line.lettering.align = Align::Left;
    const PixelBox box = plan.BoxOf(line);
    block.boxes.push_back(box);
    block.width = std::max(block.width, box.right - box.left);
    block.height += box.bottom - box.top + BETWEEN;
  }
  return block;
}

}  // namespace

bool OfferBeside(const LayerContext& context, const PixelBox& symbol, const std::vector<Label>& lines,
                 LabelPlan& plan) {
  std::vector<Label> placed = lines;
  if (!lines.empty() && plan.IsNamed(lines[0].text, symbol)) placed.erase(placed.begin());
  if (placed.empty()) return true;
  const Block block = Measure(plan, placed);
  const PixelBox window = context.Part();
  for (const double gap : GAPS)
    for (const auto& [right, down] : SIDES) {
      const double left = Beside(right, symbol.left, symbol.right, block.width, gap * context.scale);
      double top = Beside(down, symbol.top, symbol.bottom, block.height, gap * context.scale);
      const PixelBox place = {left, top, left + block.width, top + block.height};
      if (!window.Holds(place) || !plan.IsFree(place)) continue;
      for (size_t i = 0; i < placed.size(); ++i) {
        const PixelBox& box = block.boxes[i];
        const double spare = block.width - (box.right - box.left);
        placed[i].x = left - box.left + (right > 0 ? 0 : right < 0 ? spare : spare / 2);
        placed[i].y = top - box.top;
        top += box.bottom - box.top + BETWEEN;
        plan.OfferWithin(window, placed[i]);
      }
      plan.Keep(place);
      return true;
    }
  return false;
}
