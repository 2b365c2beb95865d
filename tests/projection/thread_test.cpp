// One view and one set of features, drawn and asked by many threads at once.
#include <k7/projection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "projection/path_recorder.h"

namespace {

TEST(Threads, DrawAndPickThroughOneView) {
  const std::unique_ptr<K7Projection> projection(K7Projection::Create(K7_PROJ_ORTHOGRAPHIC, nullptr));
  Looking view(*projection, 300, 200, 40, 10, 3000);
  K7MapFeatures features;
  for (const int n : {5, 60, 300}) {
    K7LatLon ring[300];
    for (int i = 0; i < n; ++i) ring[i].EndPoint({50, 20}, 360.0 * i / n, 500.0 + 8 * n);
    features.Add(K7_MAP_AREA, ring, &n, 1);
  }
  const auto draw = [&] {
    PathRecorder recorder;
    K7MapPath path(view);
    std::vector<double> numbers;
    for (int i = 0; i < features.Count(); ++i) path.Area(&recorder, features, i);
    for (const PathRecorder::Piece& piece : recorder.pieces)
      for (const PathRecorder::Point& point : piece.points) numbers.insert(numbers.end(), {point.x, point.y});
    for (int x = 0; x < 300; x += 30) {
      double lat = 0, lon = 0, north = 0, east = 0, angle = 0;
      view.FromDevice(x, 100, lat, lon);
      view.Scale(lat, lon, north, east);
      view.TrueNorth(lat, lon, angle);
      const double inside = features.Contains(2, lat, lon);
      numbers.insert(numbers.end(), {lat, lon, north, east, angle, inside, view.GetExtent().North()});
    }
    return numbers;
  };
  const std::vector<double> alone = draw();
  ASSERT_GT(alone.size(), 200u);
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread)
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) wrong += draw() != alone;
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
