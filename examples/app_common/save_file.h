// A file that is whole or is not there.
#pragma once

#include <string>
#include <vector>

/// Puts `bytes` into the place of `path`: into a new file beside it that takes its name in one step, so that
/// the old contents are whole until the new ones are. A symbolic link stays, and what it leads to is
/// replaced, or made. Devices, files with several names or another owner, and files in a folder where no new
/// one can be made are written directly. Empty, or the system's reason why not.
std::string SaveFile(const std::string& path, const std::vector<unsigned char>& bytes);

/// The path leads to something that is no file, as /dev/stdout.
bool IsDevice(const std::string& path);
