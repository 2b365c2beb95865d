// Positions, spherical navigation, vectors and matrices.
#pragma once

#include <k7/geodesy/constants.h>
#include <k7/geodesy/cromley.h>
#include <k7/geodesy/ecef.h>
#include <k7/geodesy/grtcirc.h>
#include <k7/geodesy/latlon.h>
#include <k7/geodesy/magvar.h>
#include <k7/geodesy/matrix.h>
#include <k7/geodesy/matrix_stack.h>
#include <k7/geodesy/vector.h>
