// Loading a replay directory and answering command lines from it.
#include "native/Replay.h"

#include <sstream>

#include "native/HostFile.h"

namespace host {
namespace {

// Where names the index line that lists Path, for an output file.
std::string ReadWhole(const std::filesystem::path &Path,
                      const std::string &Where = "replay") {
  std::string Problem;
  std::optional<std::string> Contents = ReadRegularFile(Path, Problem);
  if (!Contents) {
    throw ReplayError(Where + ": " + Problem);
  }
  return std::move(*Contents);
}

// An output file name must stay inside the replay directory.
bool IsInsideDirectory(const std::filesystem::path &Name) {
  if (Name.empty() || Name.is_absolute() || Name.has_root_name()) {
    return false;
  }
  for (const auto &Part : Name) {
    if (Part == "..") {
      return false;
    }
  }
  return true;
}

}  // namespace

Replay::Replay(const std::filesystem::path &Directory) {
  const std::filesystem::path Index = Directory / "commands.txt";
  std::istringstream Lines(ReadWhole(Index));
  std::string Line;
  for (std::size_t Number = 1; std::getline(Lines, Line); Number++) {
    if (!Line.empty() && Line.back() == '\r') {
      Line.pop_back();
    }
    if (Line.empty()) {
      continue;
    }
    const std::size_t Tab = Line.find('\t');
    const std::string Where = Index.string() + ":" + std::to_string(Number);
    if (Tab == std::string::npos) {
      throw ReplayError(Where + ": expected \"<output file>\\t<command line>\"");
    }
    const std::filesystem::path Output = Line.substr(0, Tab);
    if (!IsInsideDirectory(Output)) {
      throw ReplayError(Where + ": output file outside the directory");
    }
    Outputs_[Line.substr(Tab + 1)].push_back(ReadWhole(Directory / Output, Where));
  }
}

std::optional<std::string> Replay::Answer(const std::string &CommandLine) {
  auto It = Outputs_.find(CommandLine);
  if (It == Outputs_.end()) {
    return std::nullopt;
  }
  std::deque<std::string> &Queue = It->second;
  std::string Output = Queue.front();
  if (Queue.size() > 1) {
    Queue.pop_front();
  }
  return Output;
}

}  // namespace host
