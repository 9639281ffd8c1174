// Writes a replay directory while a live session runs: each tool run's
// output to a file of its own and a line "<file>\t<command line>" to
// commands.txt, so that Replay plays the session back.
#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace host {

class RecordError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Recorder {
 public:
  // Creates Directory when needed and starts commands.txt afresh. Throws
  // RecordError when it cannot.
  explicit Recorder(const std::filesystem::path &Directory);

  // Records one run; false when a file could not be written. It never
  // throws: it runs beneath the module's call of the shell-command service.
  bool Record(const std::string &CommandLine, const std::string &Output);
  std::size_t Count() const { return Count_; }

 private:
  std::filesystem::path Directory_;
  std::ofstream Index_;
  std::size_t Count_ = 0;
};

}  // namespace host
