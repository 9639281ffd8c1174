// A recorded session played back: DIR/commands.txt holds one line per tool
// run, "<output file>\t<exact command line>"; the output files hold the
// tool's bytes as printed. docs/replay.md describes the format.
#pragma once

#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

namespace host {

class ReplayError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Replay {
 public:
  // Reads DIR/commands.txt and every output file it names. Throws
  // ReplayError for a missing or malformed directory.
  explicit Replay(const std::filesystem::path &Directory);

  // The next output recorded for CommandLine: a line listed several times
  // gets its outputs in order, the last one repeating. nullopt when the
  // command line was never recorded.
  std::optional<std::string> Answer(const std::string &CommandLine);

 private:
  std::map<std::string, std::deque<std::string>> Outputs_;
};

}  // namespace host
