#include "layers/aerodrome_layer.h"

#include "layers/aerodrome_kinds.h"
#include "layers/aerodrome_marks.h"
#include "layers/nav_places.h"
#include "layers/pick_grfx.h"
#include "layers/place_label.h"
#include "layers/shape_value.h"

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>
#include <k7/projection/map_features.h>
#include "store/text_1252.h"

#include <map>

namespace {

using enum AerodromeMark;

constexpr double PICK_REACH = 4;   // pixels of an ordinary sheet
constexpr double CROSS_ARM = 6;    // of what is closed
constexpr double SAME_APART = 36;  // between two letterings of the same taxiway
constexpr double DASHES[] = {6, 3};

int NumberOf(const K7ShapeRec& record) { return record.GetKey() - 1; }

bool IsArea(const AerodromeKind& kind) { return kind.mark == Area || kind.mark == DashedArea; }

void UseDashes(const LayerContext& context, K7Grfx& g) {
  const ThemeEntry& entry = context.theme[ThemeItem::AerodromeLines];
  UseLine(g, entry, context.scale);
  const double dashes[] = {DASHES[0] * context.scale, DASHES[1] * context.scale};
  g.LineStyle(entry.width * context.scale, dashes, 2);
}

// Two lines are one broad line with another within.
struct Band {
  ThemeItem item;
  double widths;  // in those of its item
};
constexpr Band DOUBLE_LINE[] = {{ThemeItem::AerodromeLines, 3.6}, {ThemeItem::Taxiways, 1.6}};

void UseBand(const LayerContext& context, const Band& band, K7Grfx& g) {
  ThemeEntry entry = context.theme[band.item];
  if (band.item != ThemeItem::AerodromeLines) entry.line = entry.fill;
  entry.width = band.widths;
  UseLine(g, entry, context.scale);
}

void Letters(const K7Shape& shape, const K7ShapeRec& record, const AerodromeKind& kind, std::string& text) {
  text.clear();
  for (const char* const name : kind.letters) {
    const std::string value = name ? ShapeText(shape, record, name) : std::string();
    if (!value.empty()) text += (text.empty() ? "" : " ") + value;
  }
}

void DrawCross(const LayerContext& context, K7Grfx& g, double x, double y) {
  UseLine(g, context.theme[ThemeItem::Hotspots], context.scale);
  AddCross(g, x, y, CROSS_ARM * context.scale);
  g.Stroke();
}

// A record's bounds on the device; about its place where they do not show.
PixelBox BoundsOf(const LayerContext& context, const K7ShapeRec& record, double x, double y) {
  K7ChartRect box;
  double left, top, right, bottom;
  if (record.GetBounds(box) != 0 || !context.view.ToDevice(box.North(), box.West(), left, top) ||
      !context.view.ToDevice(box.South(), box.East(), right, bottom))
    return BoxAbout(x, y, 0);
  return {left, top, right, bottom};
}

double RingRadius(const LayerContext& context, const K7ShapeRec& record) {
  const PixelBox box = BoundsOf(context, record, 0, 0);
  return std::max({(box.right - box.left) / 2, (box.bottom - box.top) / 2, LEAST_RING * context.scale});
}

// As the legend shows a kind.
void DrawSample(const LayerContext& context, const AerodromeKind& kind, K7Grfx& g, double x, double y) {
  const double scale = context.scale, half = 7 * scale;
  const auto line = [&] {
    g.MoveTo(x - half, y);
    g.LineTo(x + half, y);
    g.Stroke();
  };
  UseLine(g, context.theme[kind.item], scale);
  if (IsArea(kind)) {
    UseFill(g, context.theme[kind.item]);
    AddBox(g, x, y, half, half / 2);
    g.Fill();
  }
  switch (kind.mark) {
    case DoubleLine:
      for (const Band& band : DOUBLE_LINE) {
        UseBand(context, band, g);
        line();
      }
      return;
    case Line:
      line();
      return;
    case Ring:
    case Dot:
      AddCircle(g, x, y, (kind.mark == Ring ? 5 : DOT) * scale);
      break;
    case Dashes:
    case DashedArea:
      UseDashes(context, g);
      [[fallthrough]];
    default:
      AddBox(g, x, y, half, half / 2);
      break;
  }
  g.Stroke();
}

}  // namespace

void AerodromeLayer::Prepare(const LayerContext& context) {
  for (Set& set : m_sets) {
    set.shown.clear();
    const std::unique_ptr<K7ShapeQuery> query(set.layer->Table()->AreaQuery(context.view.GetExtent()));
    while (K7ShapeRec* const record = query ? query->Next() : nullptr)
      if (set.isOurs[static_cast<size_t>(NumberOf(*record))]) set.shown.push_back(record);
    std::sort(set.shown.begin(), set.shown.end(),
              [](const K7ShapeRec* a, const K7ShapeRec* b) { return a->GetKey() < b->GetKey(); });
  }
}

// All outlines, then all fills: where pieces of one thing meet is no line.
void AerodromeLayer::DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  for (const Set& set : m_sets) {
    if (!IsArea(*set.kind)) continue;
    const K7MapFeatures& features = *set.layer->Features();
    UseLine(g, context.theme[set.kind->item], 2 * context.scale);
    for (const K7ShapeRec* const record : set.shown)
      if (path.Outline(&g, features, NumberOf(*record)) > 0) g.Stroke();
    UseFill(g, context.theme[set.kind->item]);
    for (const K7ShapeRec* const record : set.shown)
      if (path.Area(&g, features, NumberOf(*record)) > 0) g.Fill();
  }
}

template <class Visit>
void AerodromeLayer::VisitPlaces(const LayerContext& context, const Set& set, Visit visit) const {
  for (const K7ShapeRec* const record : set.shown) {
    double lat, lon, x, y;
    if (record->GetPos(lat, lon) == 0 && context.view.ToDevice(lat, lon, x, y)) visit(*record, x, y);
  }
}

void AerodromeLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  for (const Set& set : m_sets) {
    const auto stroke = [&] {
      for (const K7ShapeRec* const record : set.shown)
        if (path.Outline(&g, *set.layer->Features(), NumberOf(*record)) > 0) g.Stroke();
    };
    switch (set.kind->mark) {
      case Dashes:
      case DashedArea:
        UseDashes(context, g);
        stroke();
        break;
      case Line:
        UseLine(g, context.theme[set.kind->item], 0.7 * context.scale);
        stroke();
        break;
      case DoubleLine:
        for (const Band& band : DOUBLE_LINE) {
          UseBand(context, band, g);
          stroke();
        }
        break;
      case Ring:
      case Dot:
        UseLine(g, context.theme[set.kind->item], context.scale);
        VisitPlaces(context, set, [&](const K7ShapeRec& record, double x, double y) {
          AddCircle(g, x, y, set.kind->mark == Ring ? RingRadius(context, record) : DOT * context.scale);
          g.Stroke();
        });
        break;
      default:
        break;
    }
  }
  VisitClosed(context, [&](double x, double y) { DrawCross(context, g, x, y); });
}

// Runways are left to the layer that letters them, which crosses out their whole length.
template <class Visit>
void AerodromeLayer::VisitClosed(const LayerContext& context, Visit visit) const {
  for (const Set& set : m_sets)
    VisitPlaces(context, set, [&](const K7ShapeRec& record, double x, double y) {
      if (set.kind->type != K7_SHAPE_RUNWAY && IsClosedShape(*set.layer, record)) visit(x, y);
    });
}

void AerodromeLayer::KeepSymbols(const LayerContext& context, LabelPlan& plan) {
  for (const Set& set : m_sets)
    VisitPlaces(context, set, [&](const K7ShapeRec& record, double x, double y) {
      if (set.kind->mark == DoubleLine) {
        const PixelBox box = BoundsOf(context, record, x, y);
        const double edge = DOUBLE_LINE[0].widths / 2 * context.scale;
        plan.Keep(PixelBox{box.left - edge, box.top - edge, box.right + edge, box.bottom + edge});
      }
      if (set.kind->mark == Dot) plan.Keep(BoxAbout(x, y, DOT * context.scale));
    });
  VisitClosed(context, [&](double x, double y) { plan.Keep(BoxAbout(x, y, CROSS_ARM * context.scale)); });
}

void AerodromeLayer::OfferLabels(const LayerContext& context, K7MapPath&, double size, LabelPlan& plan) {
  static const double CAPITALS = 0.72;
  const PixelBox window = context.Part();
  std::string text;
  for (auto set = m_sets.rbegin(); set != m_sets.rend(); ++set) {
    const AerodromeKind& kind = *set->kind;
    const Lettering lettering = {.size = size * kind.size, .halo = true, .item = kind.ink};
    std::map<std::string, Spacing> spacings;
    VisitPlaces(context, *set, [&](const K7ShapeRec& record, double x, double y) {
      Letters(*set->layer, record, kind, text);
      if (text.empty()) return;
      Spacing& spacing = spacings.try_emplace(text, SAME_APART * context.scale).first->second;
      if (!spacing.IsFree(x, y)) return;
      Label label = {text, x, y + CAPITALS * lettering.size / 2, lettering};
      label.lettering.align = Align::Centre;
      label.lettering.bold = kind.type == K7_SHAPE_TAXIWAY || kind.type == K7_SHAPE_HOTSPOT;
      const double radius = kind.mark == Ring ? RingRadius(context, record) : DOT * context.scale;
      PixelBox about = BoxAbout(x, y, radius);
      if (kind.isBeside && kind.mark == Area) about = BoundsOf(context, record, x, y);
      if ((!kind.isBeside && plan.OfferWithin(window, label)) || OfferBeside(context, about, {label}, plan))
        spacing.Take(x, y);
    });
  }
}

void AerodromeLayer::AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const {
  for (const Set& set : m_sets) {
    const AerodromeKind& kind = *set.kind;
    const auto isThis = [&](const LegendEntry& entry) { return kind.legend && entry.text == kind.legend; };
    if (!kind.legend || set.shown.empty() || std::any_of(legend.begin(), legend.end(), isThis)) continue;
    legend.push_back({kind.legend, [&kind, context](K7Grfx& g, double x, double y) {
                        DrawSample(context, kind, g, x, y);
                      }});
  }
  bool hasClosed = false;
  VisitClosed(context, [&](double, double) { hasClosed = true; });
  if (hasClosed)
    legend.push_back({"closed", [context](K7Grfx& g, double x, double y) { DrawCross(context, g, x, y); }});
}

void AerodromeLayer::Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
                          std::vector<Picked>& found) {
  PickGrfx picker(dx, dy);
  for (const Set& set : m_sets) {
    const double reach = PICK_REACH * context.scale;
    const auto isUnder = [&](const K7ShapeRec& record) {
      const int number = NumberOf(record);
      picker.Clear();
      if (IsArea(*set.kind)) return path.Area(&picker, *set.layer->Features(), number) > 0 && picker.Covers();
      if (record.GetPolyCount() > 0 && set.kind->mark != Ring)
        return path.Outline(&picker, *set.layer->Features(), number) > 0 && picker.Distance() <= reach;
      double lat, lon, x, y;
      const double radius = set.kind->mark == Ring ? RingRadius(context, record) : reach;
      return record.GetPos(lat, lon) == 0 && context.view.ToDevice(lat, lon, x, y) &&
             std::hypot(x - dx, y - dy) <= radius;
    };
    for (K7ShapeRec* const record : set.shown) {
      K7String text;
      if (isUnder(*record) && set.layer->GetDescription(record, text) == 0)
        found.push_back(PickedShape(Utf8Of1252(static_cast<const char*>(text)), *set.layer, *record));
    }
  }
}
