#include "geometry/poly_bifurcator_side.h"

#include "geodesy/exact_sum.h"

namespace k7poly {

double ExactSide(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c) {
  k7geo::ExactSum<12> area;
  area.AddProduct(a.x, b.y);
  area.AddProduct(-a.y, b.x);
  area.AddProduct(b.x, c.y);
  area.AddProduct(-b.y, c.x);
  area.AddProduct(c.x, a.y);
  area.AddProduct(-c.y, a.x);
  return area.Value();
}

}  // namespace k7poly
