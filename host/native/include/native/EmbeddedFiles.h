// Files built into raidcfg-host: the module's product data (pcidb.xml,
// raid.xml) and the demo server (demo.json).
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace host {

struct EmbeddedFile {
  std::string_view Name;
  std::string_view Contents;
};

// Every embedded file; generated at build time.
const std::vector<EmbeddedFile> &EmbeddedFiles();

// The contents of the embedded file Name, or nullopt.
inline std::optional<std::string_view> FindEmbeddedFile(std::string_view Name) {
  for (const EmbeddedFile &File : EmbeddedFiles()) {
    if (File.Name == Name) {
      return File.Contents;
    }
  }
  return std::nullopt;
}

}  // namespace host
