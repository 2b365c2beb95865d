// A part of the world as it is typed.
#pragma once

#include <string>

/// Reads "WEST,SOUTH,EAST,NORTH" in degrees; across 180 where east is not the larger. Empty, or what is
/// wrong.
std::string ReadBounds(const std::string& text, double& west, double& south, double& east, double& north);
