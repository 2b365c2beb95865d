// Why a file cannot be read: the readers of the library know only that.
#pragma once

#include <string>

/// The system's reason; empty for a file that opens.
std::string WhyUnreadable(const std::string& path);
