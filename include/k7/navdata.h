// Navigation data: keys of records.
#pragma once

#include <k7/navdata/nav_key.h>
