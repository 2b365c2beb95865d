// The plain-text cases of tests/data/projection.
#pragma once

#include <array>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

struct GoldenCase {
  std::string name;
  int kind = 0;  // K7ProjType
  std::vector<double> parameters;
  double tolerance = 0;
  std::vector<std::array<double, 4>> rows;  // lat, lon and two coordinates
};

inline std::vector<GoldenCase> ReadGolden(const char* file) {
  std::vector<GoldenCase> cases;
  std::ifstream in(std::string(K7_TEST_DATA "/projection/") + file);
  for (std::string line; std::getline(in, line);) {
    std::istringstream fields(line);
    std::string word;
    if (line.rfind("case ", 0) == 0) {
      GoldenCase next;
      fields >> word >> next.kind >> next.name;
      for (double value; fields >> value;) next.parameters.push_back(value);
      next.tolerance = next.parameters.back();
      next.parameters.pop_back();
      cases.push_back(next);
    } else if (!line.empty() && line[0] != '#') {
      std::array<double, 4> row{};
      for (double& value : row) fields >> value;
      cases.back().rows.push_back(row);
    }
  }
  return cases;
}
