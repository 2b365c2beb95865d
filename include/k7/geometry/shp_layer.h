// K7ShpLayer: a shape layer over a shapefile set.
#pragma once

#include <k7/export.h>
#include <k7/geometry/shape.h>
#include <k7/geometry/shp_file.h>

class K7IO;
class K7MapFeatures;
struct K7ShpLayerStore;

/// A layer whose records are those of one shapefile set, in one table, index 0. Keys count the records from
/// 1. Bounds are those of the points, whatever boxes the set holds; points off the earth are left out, rows
/// that jump across 180 degrees carried on, as `K7MapFeatures` does. Areas are asked for through a tree of
/// the bounds. An area's triangles are made when they are first
/// asked for, and kept until `FreeMemCache`.
///
///     K7ShpLayer stands(K7_SHAPE_PARKING_STAND, 5);
///     if (stands.Read("ksea_stands.shp", K7IO::Inst()) == 0) {
///       const std::unique_ptr<K7ShapeQuery> query(stands.Table()->AreaQuery(view));
///       while (K7ShapeRec* stand = query ? query->Next() : nullptr) stands.Render(&grfx, path, stand);
///     }
///
/// Texts are handed out in windows-1252. What they are in says the set's ".cpg" file (UTF-8, ISO 8859-1 and
/// -15, Windows 1250, 1252, 1254 and 1257, DOS 437 and 850), or else the language byte of its table; without
/// a known one they are UTF-8 where all of them can be, else taken as they stand. Letters that windows-1252
/// does not have lose their marks, other characters and bytes that it leaves open become "?", control
/// characters blanks.
///
/// One thread reads; afterwards any number of threads may use the layer and its records. `FreeMemCache` and
/// `FreeCache` are for a moment when no other thread does.
class K7_API K7ShpLayer : public K7Shape {
 public:
  /// Makes an empty layer, whose table has no records.
  explicit K7ShpLayer(K7ShapeType type = K7_SHAPE_PLAIN, int key = 0);
  ~K7ShpLayer() override;
  K7ShpLayer(const K7ShpLayer&) = delete;
  K7ShpLayer& operator=(const K7ShpLayer&) = delete;

  /// Reads a set; its name becomes the layer's: "land" of "data/land.shp". Records without a shape are kept,
  /// with their attributes. `reader`, which is the layer's from now on, turns projected coordinates into
  /// degrees, for all threads that use the layer; null for a set in degrees. Answers 0, or with the layer
  /// empty K7_ERR_BAD_ARGUMENT for null, K7_ERR_MEMORY, K7_ERR_FILE_IO for a ".cpg" file that cannot be read,
  /// or the code of `K7ShpFile::Read`.
  int Read(const char* path, K7IO* io, K7ShpFile* reader = nullptr);

  /// Answers which file of the set the last `Read` found missing or damaged, as `K7ShpFile::BadFile`.
  K7ShpPart BadFile() const;

  /// Answers the set as read; texts of its records are in windows-1252. Null before `Read`.
  const K7ShpFile* File() const;
  /// Answers the one table; null only without memory.
  K7ShapeTable* Table() const;
  /// Answers the records as features to be drawn, by their numbers from 0, made ready on first use; null
  /// without memory.
  const K7MapFeatures* Features();

  const char* Name() const override;
  K7ShapeType Type() const override { return m_type; }
  int Key() const override { return m_key; }
  K7ShapeTable* GetTable(const K7ShapeRec* record) const override;
  /// Fills areas and strokes lines and outlines; of a place nothing is drawn, its symbol being the host's.
  /// Answers 0; K7_ERR_BAD_ARGUMENT for null, K7_ERR_NOT_FOUND for a record of another layer, K7_ERR_MEMORY.
  int Render(K7Grfx* g, K7MapPath& path, K7ShapeRec* record) override;
  /// Frees all triangles.
  int FreeMemCache() override;

 private:
  K7ShapeType m_type;
  int m_key;
  K7ShpLayerStore* m_store;
};
