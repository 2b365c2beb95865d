// Strings, containers, error codes, locks, options, the log.
#pragma once

#include <k7/foundation/array.h>
#include <k7/foundation/error_string.h>
#include <k7/foundation/log.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/options.h>
#include <k7/foundation/string.h>
