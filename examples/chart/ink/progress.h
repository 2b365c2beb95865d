// How far something has come that may take long. The drawing code reports; who shows it is the application's
// matter.
#pragma once

#include <string>

class Progress {
 public:
  virtual ~Progress() = default;
  /// Begins the next step.
  virtual void Step(const std::string& what) = 0;
  /// How far the step has come, 0 to 1. Cheap enough to be called for every shape.
  virtual void Within(double share) = 0;

 protected:
  Progress() = default;
  Progress(const Progress&) = default;
  Progress& operator=(const Progress&) = default;
};

/// For those who show nothing.
class NoProgress : public Progress {
 public:
  void Step(const std::string&) override {}
  void Within(double) override {}
};
