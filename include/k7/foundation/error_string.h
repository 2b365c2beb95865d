// Error codes and their messages.
#pragma once

#include <k7/export.h>

/// Numbers every failure that travels as an `int`: 0 is success, negative values are the failures below,
/// positive values are counts and never errors.
enum K7Error : int {
  K7_OK = 0,

  K7_ERR_BAD_ARGUMENT = -11001,
  K7_ERR_OUT_OF_RANGE = -11002,
  K7_ERR_INVALID_DATA = -11003,
  K7_ERR_BUFFER_EXCEEDED = -11004,
  K7_ERR_CRC_UNREADABLE = -11005,
  K7_ERR_CRC_MISSING = -11006,
  K7_ERR_CRC_MISMATCH = -11007,
  K7_ERR_NO_ENROUTE_STORE = -11008,
  K7_ERR_NO_OBSTACLE_STORE = -11009,
  K7_ERR_NO_EDOC_STORE = -11010,
  K7_ERR_MULTIPLE_INVALID_STORES = -11011,
  K7_ERR_NOT_IMPLEMENTED = -11099,

  K7_ERR_PROJECTION_RANGE = -11103,
  K7_ERR_NOT_INITIALIZED = -11107,
  K7_ERR_BITMAP = -11114,
  K7_ERR_ROUTE = -11115,
  K7_ERR_RENDER_CANCELLED = -11116,

  K7_ERR_FILE_IO = -11201,
  K7_ERR_LOG = -11202,

  K7_ERR_MEMORY = -11301,

  K7_ERR_NATIVE_API = -11401,

  K7_ERR_NOT_FOUND = -11504,
  K7_ERR_INIT_DATABASES = -11506,
  K7_ERR_INIT_THEMES = -11509,
  K7_ERR_LAYER = -11510,
  K7_ERR_INIT_TERRAIN = -11511,
  K7_ERR_LAYER_NODE = -11512,
  K7_ERR_LAYER_NAME = -11513,
  K7_ERR_INIT_SHAPES = -11514,
  K7_ERR_INIT_NAVDATA = -11515,
  K7_ERR_INIT_BITMAPS = -11516,
  K7_ERR_INIT_ROUTES = -11517,
  K7_ERR_NO_THEME = -11518,

  K7_ERR_BAD_ROUTING = -11601,
  K7_ERR_XML_MISMATCHED_TAG = -11603,  ///< has no message
  K7_ERR_ROUTE_POSITION = -11619,

  K7_ERR_THREADING = -11801,
};

/// Has the messages of the error codes.
class K7_API K7ErrorString {
 public:
  /// Answers the English message of `code`, a static text; null for a code without one and for every
  /// positive value.
  static const char* ErrorString(int code);
};
