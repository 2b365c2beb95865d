#include "support/disk_file.h"

#include <k7/geodesy/magvar.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using Tarsvald::MagVarWMM;

namespace {

const char* const MODEL = K7_SAMPLE_DATA "/magnetic/WMM.COF";

struct Field {
  double x = 0, y = 0, z = 0, h = 0, f = 0, declination = 0, inclination = 0;
};

bool Compute(const MagVarWMM& model, double lat, double lon, double alt, double year, Field& o) {
  return model.ComputeField(lat, lon, alt, year, o.x, o.y, o.z, o.h, o.f, o.declination, o.inclination);
}

}  // namespace

// Published to a tenth of a nanotesla and a hundredth of a degree, which single precision of the ellipsoid
// leaves.
TEST(MagVarWMM, GivesThePublishedValues) {
  const MagVarWMM model(MODEL);
  EXPECT_EQ(model.Epoch(), 2025.0f);
  EXPECT_STREQ(model.ModelName(), "WMM-2025");
  std::ifstream in(K7_TEST_DATA "/geodesy/wmm2025_test_values.csv");
  int rows = 0;
  for (std::string line; std::getline(in, line);) {
    std::istringstream cells(line);
    std::vector<double> v;
    for (std::string cell;
         std::getline(cells, cell, ',') && (std::isdigit(cell.back()) || cell.back() == '.');) {
      v.push_back(std::stod(cell));
    }
    if (v.size() != 11) continue;
    rows++;
    SCOPED_TRACE(line);
    Field field;
    ASSERT_TRUE(Compute(model, v[2], v[3], v[1], v[0], field));
    EXPECT_NEAR(field.x, v[4], 0.05);
    EXPECT_NEAR(field.y, v[5], 0.05);
    EXPECT_NEAR(field.z, v[6], 0.05);
    EXPECT_NEAR(field.h, v[7], 0.05);
    EXPECT_NEAR(field.f, v[8], 0.05);
    EXPECT_NEAR(field.inclination, v[9], 0.0051);
    EXPECT_NEAR(field.declination, v[10], 0.0051);
  }
  EXPECT_EQ(rows, 50);
}

TEST(MagVarWMM, PolesAndDatesBeyondTheModelAreFinite) {
  const MagVarWMM model(MODEL);
  for (const double pole : {90.0, -90.0}) {
    Field at, beside;
    ASSERT_TRUE(Compute(model, pole, 30, 0, 2027, at));
    ASSERT_TRUE(Compute(model, pole - std::copysign(1e-6, pole), 30, 0, 2027, beside));
    EXPECT_NEAR(at.x, beside.x, 0.01) << pole;
    EXPECT_NEAR(at.y, beside.y, 0.01) << pole;
    EXPECT_NEAR(at.z, beside.z, 0.01) << pole;
  }
  Field early, base, late;
  ASSERT_TRUE(Compute(model, 48, -123, 0, 1925, early));
  ASSERT_TRUE(Compute(model, 48, -123, 0, 2025, base));
  ASSERT_TRUE(Compute(model, 48, -123, 0, 2125, late));
  EXPECT_NEAR(early.z + late.z, 2 * base.z, 1e-6) << "change is linear, without a limit";
}

// What a thread keeps from one date or model serves no other.
TEST(MagVarWMM, DatesModelsAndThreadsDoNotMix) {
  TempDir dir;
  std::string halved = GetFile(MODEL);
  halved.replace(halved.find("-29351.8"), 8, "-14351.8");
  const std::string path = dir / "other.cof";
  PutFile(path, halved);
  MagVarWMM model(MODEL);
  const MagVarWMM other(path.c_str());
  Field first, second, field;
  Compute(model, 48, -123, 0, 2025, first);
  Compute(model, 48, -123, 0, 2029, second);
  EXPECT_NE(first.x, second.x);
  Compute(other, 48, -123, 0, 2029, field);
  EXPECT_GT(std::abs(field.x - second.x), 1000);
  Compute(model, 48, -123, 0, 2025, field);
  EXPECT_EQ(field.x, first.x);
  std::thread([&] {
    Compute(model, 48, -123, 0, 2029, field);
    EXPECT_EQ(field.x, second.x);
  }).join();
  ASSERT_TRUE(model.ReadWMMTable(path.c_str()));
  Compute(model, 48, -123, 0, 2025, field);
  EXPECT_GT(std::abs(field.x - first.x), 1000) << "the same object, read again";
  model.ClearWMMTable();
  EXPECT_FALSE(Compute(model, 48, -123, 0, 2025, field));
}

TEST(MagVarWMM, ReadsWhatIsAModelOnly) {
  TempDir dir;
  const std::string path = dir / "model.cof";
  const std::string record = "1 0 -29351.8 0 12 0\n";
  const struct {
    const char* text;
    bool isModel;
  } cases[] = {{"", false},
               {"2025.0\n", false},
               {"2025.0 WMM 11/13/2024\n", false},
               {"WMM 2025.0\n1 0 -29351.8 0 12 0\n", false},
               {"nan WMM\n1 0 -29351.8 0 12 0\n", false},
               {"2025.0 WMM\n1 0 -29351.8 0 12 0\n", true},
               {"2025.0 WMM\r\n  1  0\t-29351.8\n0 12 0\r\n", true},
               {"2025.0 WMM\n1 0 -29351.8 0 12\n", false},
               {"2025.0 WMM\n0 0 5 0 0 0\n13 0 5 0 0 0\n2 3 5 0 0 0\n2 -1 5 0 0 0\n", false},
               {"2025.0 WMM\n13 0 5 0 0 0\n+1 1 5e2 0 0 0\n", true},
               {"2025.0 WMM\n1 0 nan 0 0 0\n", false},
               {"2025.0 WMM\n1 0 1e999 0 0 0\n", false},
               {"2025.0 WMM\n99999999999999999999 0 1 0 0 0\n1 0 -29351.8 0 12 0\n", false}};
  for (const auto& [text, isModel] : cases) {
    PutFile(path, text);
    MagVarWMM model(MODEL);
    EXPECT_EQ(model.ReadWMMTable(path.c_str()), isModel) << text;
    EXPECT_EQ(model.IsLoaded(), isModel) << "nothing is left of the model before";
    EXPECT_EQ(model.Position(48, -123, 0, 0, 77.0) == 77.0, !isModel) << text;
  }
  PutFile(path, std::string(256, ' ') + "2025.0 WMM\n" + record);
  EXPECT_FALSE(MagVarWMM(path.c_str()).IsLoaded()) << "a header behind the first 255 characters";
  PutFile(path, "2025.0 " + std::string(200, 'n') + "\n" + record);
  EXPECT_EQ(std::string(MagVarWMM(path.c_str()).ModelName()), std::string(127, 'n'));
  EXPECT_FALSE(MagVarWMM((dir / "missing").c_str()).IsLoaded());
  EXPECT_FALSE(MagVarWMM(dir.Path().c_str()).IsLoaded());
  EXPECT_FALSE(MagVarWMM(nullptr).IsLoaded());

  // Cut anywhere, the coefficients that are whole stay.
  const std::string whole = GetFile(MODEL);
  for (size_t size = 0; size < whole.size(); size += 37) {
    PutFile(path, whole.substr(0, size));
    const MagVarWMM model(path.c_str());
    EXPECT_EQ(model.IsLoaded(), size > whole.find("12.0 ") + 12) << size;
  }
}

TEST(MagVarWMM, YearsCountDaysInUtc) {
  const struct {
    int64_t time;
    double year;
  } cases[] = {{0, 1970},
               {1593648000, 2020 + 183 / 366.0},
               {1593648000 + 86399, 2020 + 183 / 366.0},
               {1577836799, 2019 + 364 / 365.0},
               {951782400, 2000 + 59 / 366.0},
               {-1, 1969 + 364 / 365.0},
               {4107542399, 2100 + 58 / 365.0},
               {std::numeric_limits<int64_t>::max(), 0}};
  for (const auto& [time, year] : cases) EXPECT_DOUBLE_EQ(MagVarWMM::GetYear(time), year) << time;

  const MagVarWMM model(MODEL);
  double variation = 0, now = 0;
  Field field;
  ASSERT_TRUE(model.Position(&variation, 48, -123, 0, 1593648000));
  Compute(model, 48, -123, 0, 2020.5, field);
  EXPECT_EQ(variation, field.declination);
  EXPECT_TRUE(model.Position(nullptr, 48, -123, 0, 1593648000));
  EXPECT_EQ(model.Position(48, -123, 0, 1593648000, 77), variation);
  ASSERT_TRUE(model.Position(&now, 48, -123, 0, 0));
  Compute(model, 48, -123, 0, MagVarWMM::GetYear(std::time(nullptr)), field);
  EXPECT_EQ(now, field.declination);
  Compute(model, 48, -123, 0, -1.0, field);
  EXPECT_EQ(now, field.declination) << "a year that is none is now";
  EXPECT_FALSE(model.Position(&now, 48, -123, 0, -70000000000)) << "before the year 1";
}

TEST(K7MagVar, KeepsOneModelForTheProcess) {
  K7MagVar::DeleteMagVar();
  ASSERT_NE(K7MagVar::GetMagVar(), nullptr);
  EXPECT_FALSE(K7MagVar::GetMagVar()->Position(nullptr, 48, -123, 0, 0)) << "no file yet";
  K7MagVar::SetFilename(MODEL);
  Tarsvald::MagVar* const model = K7MagVar::GetMagVar();
  EXPECT_TRUE(model->Position(nullptr, 48, -123, 0, 0));
  std::string shouted = MODEL;
  for (char& c : shouted) c = static_cast<char>(std::toupper(c));
  K7MagVar::SetFilename(shouted.c_str());
  EXPECT_EQ(K7MagVar::GetMagVar(), model) << "the same name in other letters";
  EXPECT_TRUE(model->Position(nullptr, 48, -123, 0, 0));
  K7MagVar::SetFilename(nullptr);
  EXPECT_FALSE(K7MagVar::GetMagVar()->Position(nullptr, 48, -123, 0, 0));
  K7MagVar::SetFilename(MODEL);
  EXPECT_TRUE(K7MagVar::GetMagVar()->Position(nullptr, 48, -123, 0, 0));
  K7MagVar::DeleteMagVar();
  EXPECT_FALSE(K7MagVar::GetMagVar()->Position(nullptr, 48, -123, 0, 0)) << "neither model nor name is left";
  K7MagVar::DeleteMagVar();
}
