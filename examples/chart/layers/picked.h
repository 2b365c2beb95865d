// What a chart answers when it is asked what lies under a pixel.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/io/xml_output.h>
#include <k7/navdata/nav_key.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class K7NavData;
class K7Shape;
class K7ShapeRec;

/// What a route can lead over.
struct PickedPoint {
  std::string ident;  ///< UTF-8
  K7LatLon place;
};

/// A thing that is drawn there.
struct Picked {
  std::string text;  ///< what it is, in one line
  /// The records that it stands for, each an XML document of the library's, in windows-1252; null for what is
  /// no record. Valid as long as the layer and its data are.
  std::function<std::vector<std::string>(K7XmlOutputType_t type)> records{};
  std::string layer{};  ///< of which it is; the chart's to say
  std::optional<PickedPoint> point{};
};

/// What stands for records of a store, which must outlive it.
Picked PickedRecords(std::string text, K7NavData& data, std::vector<K7NavKey> keys);
/// What stands for a record of a shape layer, which must outlive it.
Picked PickedShape(std::string text, K7Shape& shape, K7ShapeRec& record);
