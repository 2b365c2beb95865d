// Magnetic variation: the World Magnetic Model, and the process-wide model that the host names.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

#include <cstdint>

namespace Tarsvald {

/// A model of the earth's magnetic field, as those see it who turn true courses into magnetic ones.
class K7_API MagVar {
 public:
  virtual ~MagVar();
  /// The declination in degrees, east positive, at a latitude and longitude in degrees (north and east
  /// positive) and an altitude in kilometres above the ellipsoid, at a moment in seconds since 1970-01-01
  /// UTC; 0 means now. False, with `*variation` untouched, when it cannot be computed. `variation` may be
  /// null.
  virtual bool Position(double* variation, double lat, double lon, double alt, int64_t time) const = 0;
  /// The same; `fallback` when it cannot be computed.
  virtual double Position(double lat, double lon, double alt, int64_t time, double fallback) const = 0;

 protected:
  MagVar() = default;
  MagVar(const MagVar&) = default;
  MagVar& operator=(const MagVar&) = default;
};

/// The World Magnetic Model, read from a published coefficient file.
///
/// Synthesis to degree and order 12: Chulliat et al., "The US/UK World Magnetic Model for 2020-2025:
/// Technical Report", equations 7 to 19, and the same in the report of 2025. The ellipsoid's axes and the
/// reference radius are held in single precision, so that results agree with the tables that people compare
/// with.
///
/// Any number of threads may ask a loaded model; loading and clearing are for a time when none does.
class K7_API MagVarWMM : public MagVar {
 public:
  static constexpr int MAX_DEGREE = 12;

  /// Reads the file at `path`, unless it is null or empty.
  explicit MagVarWMM(const char* path);
  MagVarWMM(const MagVarWMM&) = delete;
  MagVarWMM& operator=(const MagVarWMM&) = delete;
  ~MagVarWMM() override;

  /// Replaces the coefficients by those of a file: a line with the epoch and the model's name, then lines of
  /// n, m, g, h and their changes a year, until one that is not six numbers. Records beyond degree 12 are
  /// skipped. False, with no coefficients, when the file does not open, its first line is none, or it holds
  /// none of degree 1 or more.
  bool ReadWMMTable(const char* path);
  /// Forgets the coefficients.
  void ClearWMMTable();
  /// True when coefficients are loaded.
  bool IsLoaded() const { return m_loaded; }
  /// Decimal year of the model's base, and its name; 0 and empty without a model.
  float Epoch() const { return m_epoch; }
  const char* ModelName() const { return m_name; }

  /// The field at a position and decimal year; 0 or less is now. In nanotesla: north, east and down
  /// components `x`, `y`, `z`, horizontal and total intensity `h` and `f`; in degrees: `declination`, east
  /// positive, and `inclination`, down positive. No limit is set to the distance from the epoch; a model is
  /// published for five years. False, with the outputs untouched, without coefficients.
  bool ComputeField(double lat, double lon, double alt, double year, double& x, double& y, double& z,
                    double& h, double& f, double& declination, double& inclination) const;
  /// The same at a moment; 0 means now.
  bool ComputeField(double lat, double lon, double alt, int64_t time, double& x, double& y, double& z,
                    double& h, double& f, double& declination, double& inclination) const;

  bool Position(double* variation, double lat, double lon, double alt, int64_t time) const override;
  double Position(double lat, double lon, double alt, int64_t time, double fallback) const override;

  /// Decimal year of a moment: the year and its days that have passed, in UTC, the time of day ignored. 0 for
  /// one that no calendar holds.
  static double GetYear(int64_t time);

 private:
  struct Dated;

  const Dated& CoefficientsOf(double year) const;
  void FillFactors();

  // Of degree n and order m at [n][m], and their change a year.
  double m_g[MAX_DEGREE + 1][MAX_DEGREE + 1];
  double m_h[MAX_DEGREE + 1][MAX_DEGREE + 1];
  double m_gRate[MAX_DEGREE + 1][MAX_DEGREE + 1];
  double m_hRate[MAX_DEGREE + 1][MAX_DEGREE + 1];
  // Factors of the recursion for Schmidt's semi-normalised functions.
  double m_diagonal[MAX_DEGREE + 1];                 // sqrt((2n - 1) / 2n)
  double m_former[MAX_DEGREE + 1][MAX_DEGREE + 1];   // sqrt((n - 1)^2 - m^2)
  double m_divisor[MAX_DEGREE + 1][MAX_DEGREE + 1];  // 1 / sqrt(n^2 - m^2)
  float m_epoch = 0;
  K7String m_name;
  bool m_loaded = false;
  uint64_t m_load = 0;  // no two loads of the process share it
};

}  // namespace Tarsvald

/// The model of the process. Not locked: `SetFilename` and `DeleteMagVar` are for a time when no thread uses
/// it, and the first `GetMagVar` comes before several do.
class K7_API K7MagVar {
 public:
  /// Names the coefficient file of the model. Another name, without regard to case, destroys the present
  /// model; the file is read when the model is asked for. Null counts as empty.
  static void SetFilename(const char* path);
  /// The model, made on first use; without a file it answers no question. It lives until the name changes or
  /// `DeleteMagVar`. Null without memory.
  static Tarsvald::MagVar* GetMagVar();
  /// Destroys the model and forgets the name.
  static void DeleteMagVar();

 private:
  static Tarsvald::MagVar* m_magVar;
};
