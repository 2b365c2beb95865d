#include <k7/foundation/error_string.h>

namespace {

struct Message {
  int code;
  const char* text;
};

// K7_ERR_XML_MISMATCHED_TAG is left out on purpose: it has no message.
constexpr Message MESSAGES[] = {
    {K7_OK, "No error"},
    {K7_ERR_BAD_ARGUMENT, "Bad argument to a function"},
    {K7_ERR_OUT_OF_RANGE, "Argument out of range"},
    {K7_ERR_INVALID_DATA, "Invalid Data"},
    {K7_ERR_BUFFER_EXCEEDED, "Buffer size exceeded"},
    {K7_ERR_CRC_UNREADABLE, "CRC file unreadable"},
    {K7_ERR_CRC_MISSING, "CRC file missing"},
    {K7_ERR_CRC_MISMATCH, "CRC integrity check failed"},
    {K7_ERR_NO_ENROUTE_STORE, "No valid enroute data store"},
    {K7_ERR_NO_OBSTACLE_STORE, "No valid obstacle data store"},
    {K7_ERR_NO_EDOC_STORE, "No valid E-doc data store"},
    {K7_ERR_MULTIPLE_INVALID_STORES, "Multiple invalid data stores"},
    {K7_ERR_NOT_IMPLEMENTED, "Function not yet implemented"},
    {K7_ERR_PROJECTION_RANGE, "Arguments out of range for current map projection"},
    {K7_ERR_NOT_INITIALIZED, "RVX_Init must be called prior to using this function"},
    {K7_ERR_BITMAP, "Bitmap error"},
    {K7_ERR_ROUTE, "Route error"},
    {K7_ERR_RENDER_CANCELLED, "Chart render was cancelled"},
    {K7_ERR_FILE_IO, "File I/O error"},
    {K7_ERR_LOG, "Unable to log message"},
    {K7_ERR_MEMORY, "Memory allocation error"},
    {K7_ERR_NATIVE_API, "Native API error"},
    {K7_ERR_NOT_FOUND, "A search for a specific item yielded no results"},
    {K7_ERR_INIT_DATABASES, "Error initializing databases, check log for more info"},
    {K7_ERR_INIT_THEMES, "Error initializing themes"},
    {K7_ERR_LAYER, "Layer error"},
    {K7_ERR_INIT_TERRAIN, "Error initializing terrain"},
    {K7_ERR_LAYER_NODE, "Layer node error"},
    {K7_ERR_LAYER_NAME, "User layer name is invalid"},
    {K7_ERR_INIT_SHAPES, "Error initializing shape data"},
    {K7_ERR_INIT_NAVDATA, "Error initializing navigation data"},
    {K7_ERR_INIT_BITMAPS, "Error initializing bitmap data"},
    {K7_ERR_INIT_ROUTES, "Error initializing route data"},
    {K7_ERR_NO_THEME, "Could not find theme requested"},
    {K7_ERR_BAD_ROUTING, "Requested routing is invalid"},
    {K7_ERR_ROUTE_POSITION, "Invalid latitude or longitude in route"},
    {K7_ERR_THREADING, "Threading error"},
};

}  // namespace

const char* K7ErrorString::ErrorString(int code) {
  for (const Message& message : MESSAGES)
    if (message.code == code) return message.text;
  return nullptr;
}
