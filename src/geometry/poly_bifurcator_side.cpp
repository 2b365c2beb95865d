#include "geometry/poly_bifurcator_side.h"

namespace k7poly {

namespace {

// A sum of doubles that do not overlap, smallest first, which is exact (Shewchuk, "grow expansion").
class Expansion {
 public:
  void AddProduct(double a, double b) {
    const double product = a * b;
    Add(std::fma(a, b, -product));
    Add(product);
  }
  double Value() const {
    double sum = 0;
    for (int i = 0; i < m_count; i++) sum += m_terms[i];
    return sum;
  }

 private:
  void Add(double term) {
    for (int i = 0; i < m_count; i++) {
      const double sum = term + m_terms[i];
      const double virtualTerm = sum - term;
      m_terms[i] = (term - (sum - virtualTerm)) + (m_terms[i] - virtualTerm);
      term = sum;
    }
    m_terms[m_count++] = term;
  }

  double m_terms[12];
  int m_count = 0;
};

}  // namespace

double ExactSide(const K7ShpXY& a, const K7ShpXY& b, const K7ShpXY& c) {
  Expansion area;
  area.AddProduct(a.x, b.y);
  area.AddProduct(-a.y, b.x);
  area.AddProduct(b.x, c.y);
  area.AddProduct(-b.y, c.x);
  area.AddProduct(c.x, a.y);
  area.AddProduct(-c.y, a.x);
  return area.Value();
}

}  // namespace k7poly
