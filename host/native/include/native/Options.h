// raidcfg-host's command line.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Options {
  std::optional<std::filesystem::path> Scenario;  // none: the demo server
  bool DumpModel = false;
  std::optional<std::filesystem::path> Trace;
  std::optional<std::filesystem::path> Replay;
  std::optional<std::filesystem::path> Record;
  std::optional<std::filesystem::path> Script;
  bool Help = false;
};

// Parses the arguments after the program name. Throws UsageError.
Options ParseOptions(const std::vector<std::string> &Arguments);
// The --help text.
std::string UsageText();

}  // namespace host
