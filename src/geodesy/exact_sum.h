// Sums of products without rounding, for signs that must be right.
#pragma once

#include <cmath>

namespace k7geo {

/// A sum as doubles that do not overlap, smallest first (Shewchuk, "Adaptive Precision Floating-Point
/// Arithmetic", 1997: grow expansion). Room for TERMS of them: two for each product of two numbers, four for
/// each of three. Exact while no product overflows or loses digits at the small end.
template <int TERMS>
class ExactSum {
 public:
  void AddProduct(double a, double b) {
    const double product = a * b;
    Add(std::fma(a, b, -product));
    Add(product);
  }
  void AddProduct(double a, double b, double c) {
    const double product = a * b;
    AddProduct(std::fma(a, b, -product), c);
    AddProduct(product, c);
  }
  /// The sign is exact, the number good to its last digits.
  double Value() const {
    double sum = 0;
    for (int i = 0; i < m_count; i++) sum += m_terms[i];
    return sum;
  }

 private:
  void Add(double term) {
    int kept = 0;
    for (int i = 0; i < m_count; i++) {
      const double sum = term + m_terms[i], virtualTerm = sum - term;
      const double error = (term - (sum - virtualTerm)) + (m_terms[i] - virtualTerm);
      if (error != 0) m_terms[kept++] = error;
      term = sum;
    }
    if (term != 0) m_terms[kept++] = term;
    m_count = kept;
  }

  double m_terms[TERMS];
  int m_count = 0;
};

}  // namespace k7geo
