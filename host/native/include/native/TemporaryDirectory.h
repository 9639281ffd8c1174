// A directory under the system's temporary directory, removed with all it
// holds when the object goes.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {

class TemporaryDirectory {
 public:
  explicit TemporaryDirectory(const std::string &Prefix) {
    std::string Template =
        (std::filesystem::temp_directory_path() / (Prefix + "-XXXXXX"))
            .string();
    if (mkdtemp(Template.data()) == nullptr) {
      throw std::runtime_error("cannot create a temporary directory");
    }
    Path_ = Template;
  }
  ~TemporaryDirectory() {
    std::error_code Ignored;
    std::filesystem::remove_all(Path_, Ignored);
  }
  TemporaryDirectory(const TemporaryDirectory &) = delete;
  TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

  const std::filesystem::path &Path() const { return Path_; }

 private:
  std::filesystem::path Path_;
};

}  // namespace host
