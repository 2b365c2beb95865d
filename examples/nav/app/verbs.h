// What k7nav can do.
#pragma once

#include "app_common/verb.h"

std::span<const VerbRow> Verbs();
