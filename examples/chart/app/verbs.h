// What k7chart can do.
#pragma once

#include "app_common/verb.h"

std::span<const VerbRow> Verbs();
