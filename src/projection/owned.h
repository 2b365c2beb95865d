// What every factory of this family does when memory runs out.
#pragma once

#include <k7/foundation/error_string.h>
#include <k7/projection/projection.h>

/// Hands on `object`; for null, *error (optional) becomes K7_ERR_MEMORY.
inline K7Projection* OwnedOrError(K7Projection* object, int* error) {
  if (!object && error) *error = K7_ERR_MEMORY;
  return object;
}
