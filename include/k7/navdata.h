// Navigation data: keys, records and their fields, the abstract store.
#pragma once

#include <k7/navdata/aerodrome.h>
#include <k7/navdata/airport.h>
#include <k7/navdata/airspace.h>
#include <k7/navdata/airway.h>
#include <k7/navdata/alt.h>
#include <k7/navdata/comm.h>
#include <k7/navdata/course.h>
#include <k7/navdata/morse_code.h>
#include <k7/navdata/nav_data.h>
#include <k7/navdata/nav_fields.h>
#include <k7/navdata/nav_key.h>
#include <k7/navdata/nav_rec.h>
#include <k7/navdata/nav_types.h>
#include <k7/navdata/navaid.h>
#include <k7/navdata/note.h>
#include <k7/navdata/obstacle.h>
#include <k7/navdata/route.h>
