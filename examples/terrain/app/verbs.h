// What k7terrain can do.
#pragma once

#include "app_common/verb.h"

std::span<const VerbRow> Verbs();
