// Whole host files, refused when they are not regular files.
#include "native/HostFile.h"

#include <fstream>
#include <sstream>
#include <system_error>

namespace host {

std::optional<std::string> ReadRegularFile(const std::filesystem::path &Path,
                                           std::string &Problem) {
  namespace fs = std::filesystem;
  std::error_code Error;
  const fs::file_status Status = fs::status(Path, Error);
  const char *Why = nullptr;
  if (!fs::exists(Status)) {
    Why = "no such file";
  } else if (fs::is_directory(Status)) {
    Why = "a directory, not a file";
  } else if (!fs::is_regular_file(Status)) {
    Why = "not a regular file";
  }
  std::ifstream In;
  if (Why == nullptr) {
    In.open(Path, std::ios::binary);
    Why = In ? nullptr : "cannot be opened";
  }
  std::ostringstream Contents;
  if (Why == nullptr) {
    Contents << In.rdbuf();  // an empty file sets Contents' failbit only
  }
  if (Why == nullptr && In.bad()) {
    Why = "read error";
  }
  if (Why != nullptr) {
    Problem = "cannot read " + Path.string() + ": " + Why;
    return std::nullopt;
  }
  return Contents.str();
}

}  // namespace host
