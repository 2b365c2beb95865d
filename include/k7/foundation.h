// Strings, containers, error codes, locks, options, time, range checks, the log.
#pragma once

#include <k7/foundation/array.h>
#include <k7/foundation/cache.h>
#include <k7/foundation/error_string.h>
#include <k7/foundation/heap.h>
#include <k7/foundation/log.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/options.h>
#include <k7/foundation/string.h>
#include <k7/foundation/time.h>
#include <k7/foundation/validate.h>
