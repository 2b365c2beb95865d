// K7Shape: a shape layer, one kind of feature, and how its records read.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>
#include <k7/io/xml_output.h>

class K7Grfx;
class K7MapPath;
class K7ShapeRec;
class K7ShapeTable;

/// Numbers the kinds of features. Those of an aerodrome have attributes of well-known names, and are rendered
/// by these.
enum K7ShapeType : int {
  K7_SHAPE_PLAIN = 0,  ///< all others
  K7_SHAPE_APRON,
  K7_SHAPE_DEICING_AREA,
  K7_SHAPE_FREQUENCY_AREA,
  K7_SHAPE_HOTSPOT,
  K7_SHAPE_PARKING_STAND,
  K7_SHAPE_DISPLACED_AREA,  ///< between a runway's end and its displaced threshold
  K7_SHAPE_RUNWAY,
  K7_SHAPE_EXIT_LINE,
  K7_SHAPE_THRESHOLD,
  K7_SHAPE_TAXIWAY,
  K7_SHAPE_HOLDING_POSITION,
  K7_SHAPE_HOLDING_LINE,  ///< a holding position of which nothing but the line is known
  K7_SHAPE_VERTICAL_STRUCTURE,
};

/// A K7Shape is a layer of records of one kind. Hosts implement it over their data; K7ShpLayer is one over a
/// shapefile set.
///
/// As texts, values that say "unknown" ("$UNK", -32767) read "Unknown", and absent ones ("$Null", "$NA",
/// "$NE", -32768, -32765, -32764) are left out, numbers as well as texts, with or without decimals.
class K7_API K7Shape {
 public:
  virtual ~K7Shape();

  /// Answers what people call the layer; never null.
  virtual const char* Name() const = 0;
  virtual K7ShapeType Type() const = 0;
  /// Answers what tells the layer from the others of its host.
  virtual int Key() const = 0;
  /// Answers the table that a record is of; null for a record of another layer.
  virtual K7ShapeTable* GetTable(const K7ShapeRec* record) const = 0;
  /// Draws a record: fills areas, strokes lines. Colours and widths are as the caller set them. Answers 0,
  /// or a code.
  virtual int Render(K7Grfx* g, K7MapPath& path, K7ShapeRec* record) = 0;

  /// Frees what the layer can make again. Answers the bytes freed; here 0.
  virtual int FreeMemCache();

  /// \name As text
  /// They answer 0; K7_ERR_NOT_FOUND, with `out` unchanged, for a record that is not of this layer;
  /// K7_ERR_MEMORY with `out` empty. A null record is 0 with `out` unchanged.
  /// Control characters in texts become blanks, bytes that windows-1252 leaves open "?".
  /// @{
  /// Replaces `out` with the record as an XML document: "ShapeType", "ShapeKey", "DbName", "TableIndex",
  /// "Key", and its attributes under their names, of which characters that no element may have become "_".
  /// For K7XML_DISPLAY the feature of an aerodrome has those that its kind is read by, with their units,
  /// and no others; lists, whose members files part by ";" or "|", read "A, B".
  virtual int ToXML(K7ShapeRec* record, K7XmlOutputType_t type, K7String& out);
  /// Replaces `out` with the record in one line: "Runway 16L.34R (Open)".
  virtual int GetDescription(K7ShapeRec* record, K7String& out);
  /// What a value that is unknown reads.
  static constexpr char UNKNOWN[] = "Unknown";
  /// Replaces `out` with one attribute as it reads, a number without its unit. K7_ERR_NOT_FOUND, with `out`
  /// empty, also for an attribute that the record does not have and for an absent value.
  int GetAttribText(const K7ShapeRec* record, const char* name, K7String& out) const;
  /// @}

  /// Answers the name of a kind: "Parking Stand"; "Shape" for plain ones and those outside.
  static const char* TypeName(K7ShapeType type);

 protected:
  K7Shape() = default;
  K7Shape(const K7Shape&) = default;
  K7Shape& operator=(const K7Shape&) = default;
};
