// Records of the surfaces and signs of an aerodrome.
#pragma once

#include <k7/navdata/nav_rec.h>

/// Area of an aerodrome with its bounds (type 58).
struct K7AerodromeArea : K7NavRec {
  int32_t featureType = 0;
  int32_t surfaceType = 0;
  K7NavKey airport;
  int32_t north = 0;  ///< bounds, 2^-23 degree
  int32_t south = 0;
  int32_t east = 0;
  int32_t west = 0;
  uint8_t reserved[20] = {};
  char idApron[28] = {};
};

/// Surface of an aerodrome (type 59).
struct K7AerodromeSurface : K7NavRec {
  int32_t featureType = 0;
  int32_t surfaceType = 0;
  K7NavKey airport;
  uint8_t reserved[8] = {};
};

/// Apron (type 60; 68 bytes, of which the structure pads).
struct K7Apron : K7NavRec {
  int32_t featureType = 0;
  int32_t surfaceType = 0;
  K7NavKey airport;
  uint8_t reserved[8] = {};
  char idApron[28] = {};
};

/// Surface of a runway (type 61).
struct K7RunwaySurface : K7NavRec {
  int32_t featureType = 0;
  int32_t surfaceType = 0;
  K7NavKey airport;
  uint8_t reserved[8] = {};
  int32_t lengthM = 0;
  int32_t lengthFt = 0;
};

/// Length of a runway (type 62).
struct K7RunwayLength : K7NavRec {
  int32_t lengthM = 0;
  int32_t lengthFt = 0;
};

/// Threshold of a runway (type 63).
struct K7RunwayThreshold : K7NavRec {
  char runwayId[4] = {};
  int32_t trueBrg = 0;  ///< 2^-23 degree
  uint8_t flags = 0;
  uint8_t reserved[3] = {};
};

/// Point of an aerodrome: a stand, a light (type 64).
struct K7AerodromePoint : K7NavRec {
  int32_t type = 0;
  char id[20] = {};
};

/// Line of an aerodrome: a taxiway's centre, a holding position (type 65).
struct K7AerodromeLine : K7NavRec {
  int32_t type = 0;
  int32_t category = 0;
  char id[20] = {};
};

/// Name of a part of an aerodrome (type 66).
struct K7AerodromeName : K7NavRec {
  char name[8] = {};
};

/// Sign of an aerodrome (type 67).
struct K7AerodromeSign : K7NavRec {
  K7NavKey airport;
  int32_t type = 0;
  char id[12] = {};
};

/// Type 40, whose contents are the store's.
struct K7Reserved40 : K7NavRec {
  uint8_t reserved[16] = {};
};
