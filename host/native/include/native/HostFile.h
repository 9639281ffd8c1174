// Reading a whole file of the host's own file system: scenarios, the files
// they name, replay indexes and recorded outputs.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host {

// The bytes of the regular file at Path, or nullopt with Problem set to
// "cannot read PATH: WHY". A directory, a device or a pipe is refused before
// it is opened: opened as a file it reads as empty (a directory) or never
// ends (a pipe, /dev/zero).
std::optional<std::string> ReadRegularFile(const std::filesystem::path &Path,
                                           std::string &Problem);

}  // namespace host
