#include "surface.h"

#include <k7/geodesy/ecef.h>

#include <map>

namespace {

struct Corner {
  double x, y, z;
};

Corner Less(const Corner& a, const Corner& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Corner Cross(const Corner& a, const Corner& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Dot(const Corner& a, const Corner& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Corner At(const K7TerMesh& mesh, int triangle, int corner) {
  const int32_t i = mesh.Triangles()[3 * triangle + corner];
  EXPECT_TRUE(i >= 0 && i < mesh.VertexCount());
  const K7TerVertex& v = mesh.Vertices()[i];
  return {mesh.Origin()[0] + v.x, mesh.Origin()[1] + v.y, mesh.Origin()[2] + v.z};
}

// Twice the area as a vector, which points up for a triangle counter-clockwise from above.
Corner Area(const K7TerMesh& mesh, int triangle) {
  const Corner a = At(mesh, triangle, 0);
  return Cross(Less(At(mesh, triangle, 1), a), Less(At(mesh, triangle, 2), a));
}

// Edges that belong to one triangle only; every other is run along once in each direction.
int OpenEdges(const K7TerMesh& mesh) {
  std::map<std::pair<int, int>, int> edges;
  for (int i = 0; i < 3 * mesh.TriangleCount(); ++i) {
    const int a = mesh.Triangles()[i], b = mesh.Triangles()[i % 3 == 2 ? i - 2 : i + 1];
    const int times = ++edges[{a, b}];
    EXPECT_EQ(1, times);
  }
  int open = 0;
  for (const auto& edge : edges) open += !edges.count({edge.first.second, edge.first.first});
  return open;
}

// A shell 6378 m (a thousandth of a radius) above the sea, exaggerated twice, across 180.
TEST(TerMesh, AShellHasItsAreaAndRadialNormals) {
  const double pi = 3.14159265358979, south = 30, north = 50;
  const auto tile = MakeTile({north, south, -170, 170}, 81, 121, [](double, double) { return 6378; });
  K7TerMesh mesh;
  ASSERT_EQ(0, mesh.Create(*tile, K7_TER_MESH_GLOBE, 2));
  EXPECT_EQ(81 * 121, mesh.VertexCount());
  EXPECT_EQ(2 * 80 * 120, mesh.TriangleCount());
  EXPECT_EQ(2 * 80 + 2 * 120, OpenEdges(mesh));
  double area = 0;
  for (int i = 0; i < mesh.TriangleCount(); ++i) {
    const Corner normal = Area(mesh, i), a = At(mesh, i, 0);
    EXPECT_GT(Dot(normal, a), 0);
    area += std::sqrt(Dot(normal, normal)) / 2;
  }
  const double radius = 1 + 2 * 6378 / 6378137.0;
  const double half = 10.0 / 81;  // the outermost posts stand within the edges
  const double zone = radius * radius * 20 * 120 / 121 * pi / 180 *
                      (std::sin((north - half) * pi / 180) - std::sin((south + half) * pi / 180));
  EXPECT_NEAR(1, area / zone, 2e-5);
  for (int i = 0; i < mesh.VertexCount(); ++i) {
    const K7TerVertex& v = mesh.Vertices()[i];
    const K7ECEF up(south + (north - south) * (i / 121 + 0.5) / 81, 170 + 20 * (i % 121 + 0.5) / 121);
    EXPECT_NEAR(radius,
                Dot({mesh.Origin()[0] + v.x, mesh.Origin()[1] + v.y, mesh.Origin()[2] + v.z},
                    {up.X(), up.Y(), up.Z()}),
                1e-7);
    EXPECT_NEAR(1, Dot({v.nx, v.ny, v.nz}, {up.X(), up.Y(), up.Z()}), 1e-6);
  }
}

// A plane in degrees near the equator: every triangle's normal is every vertex's, and that of the formula.
TEST(TerMesh, APlaneHasOneNormalAndHolesStay) {
  const double east = 0.3, north = -0.2;
  const auto tile = MakeTile<K7TerTileEX>({0.05, -0.05, 20.1, 20}, 21, 31, [&](double lat, double lon) {
    return (east * (lon - 20) + north * lat) * METRES_A_DEGREE + 2000;
  });
  K7TerMesh mesh;
  ASSERT_EQ(0, tile->CreateMesh(mesh, K7_TER_MESH_DEGREES, 1));
  const double length = std::sqrt(1 + east * east + north * north);
  for (int i = 0; i < mesh.VertexCount(); ++i) {
    EXPECT_NEAR(-east / length, mesh.Vertices()[i].nx, 3e-3);
    EXPECT_NEAR(-north / length, mesh.Vertices()[i].ny, 3e-3);  // posts are whole metres
  }
  for (int i = 0; i < mesh.TriangleCount(); ++i) {
    const Corner area = Area(mesh, i);
    EXPECT_NEAR(-east, area.x / area.z / METRES_A_DEGREE, 0.01);
    EXPECT_NEAR(0.1 / 21 * 0.1 / 31, area.z, 1e-9);
  }
  // One post: four squares keep a triangle each. A second one in a corner takes its square's other half.
  tile->GetMesh()[10][10] = -5000;
  ASSERT_EQ(0, tile->CreateMesh(mesh, K7_TER_MESH_DEGREES, 1));
  EXPECT_EQ(21 * 31 - 1, mesh.VertexCount());
  EXPECT_EQ(2 * 20 * 30 - 4, mesh.TriangleCount());
  EXPECT_EQ(2 * (20 + 30) + 4, OpenEdges(mesh));
  tile->GetMesh()[11][11] = -5000;
  ASSERT_EQ(0, tile->CreateMesh(mesh, K7_TER_MESH_DEGREES, 1));
  EXPECT_EQ(2 * 20 * 30 - 2 - 3 - 3, mesh.TriangleCount()) << "their common square is a hole";
}

// Merged neighbours: where the mesh of one ends, that of the other begins, with the same normals.
TEST(TerMesh, MeshesOfNeighboursMeet) {
  const auto hills = [](double lat, double lon) { return 800 * std::sin(lat * 90) * std::cos(lon * 80); };
  const auto a = MakeTile({10.5, 10, -179.9, 179.5}, 10, 12, hills),
             b = MakeTile({10.5, 10, -179, -179.9}, 10, 18, hills);
  K7TerMesh west, east;
  for (const bool isWest : {true, false}) {
    K7TerTileEX tile;
    ASSERT_EQ(0, tile.Init(isWest ? a->GetChartRect() : b->GetChartRect(), 0, 0));
    ASSERT_EQ(0, tile.AddTileForMerge(a.get()));
    ASSERT_EQ(0, tile.AddTileForMerge(b.get()));
    ASSERT_EQ(0, tile.MergeTiles());
    ASSERT_EQ(0, tile.CreateMesh(isWest ? west : east, K7_TER_MESH_GLOBE, 3));
  }
  EXPECT_EQ(10 * 13, west.VertexCount());
  EXPECT_EQ(10 * 18, east.VertexCount());
  for (int r = 0; r < 10; ++r) {
    const K7TerVertex &last = west.Vertices()[13 * r + 12], &first = east.Vertices()[18 * r];
    EXPECT_NEAR(west.Origin()[0] + last.x, east.Origin()[0] + first.x, 2e-9);
    EXPECT_NEAR(west.Origin()[1] + last.y, east.Origin()[1] + first.y, 2e-9);
    EXPECT_NEAR(west.Origin()[2] + last.z, east.Origin()[2] + first.z, 2e-9);
    EXPECT_NEAR(1, Dot({last.nx, last.ny, last.nz}, {first.nx, first.ny, first.nz}), 1e-6);
  }
}

TEST(TerMesh, RefusesWhatMakesNone) {
  K7TerMesh mesh;
  const K7TerTile unread(K7ChartRect(1, 0, 1, 0), 5, 5);
  EXPECT_EQ(-11504, mesh.Create(unread, K7_TER_MESH_GLOBE, 1));
  const auto line = MakeTile({1, 0, 1, 0}, 2, 2, [](double, double) { return -5000; });
  EXPECT_EQ(-11001, mesh.Create(*line, K7_TER_MESH_GLOBE, std::nan("")));
  EXPECT_EQ(0, mesh.Create(*line, K7_TER_MESH_GLOBE, 1));
  EXPECT_EQ(0, mesh.TriangleCount());
}

}  // namespace
