// Recording tool runs into a replay directory.
#include "native/Recorder.h"

#include <cstdio>

namespace host {

Recorder::Recorder(const std::filesystem::path &Directory)
    : Directory_(Directory) {
  std::error_code Error;
  std::filesystem::create_directories(Directory_, Error);
  Index_.open(Directory_ / "commands.txt", std::ios::binary | std::ios::trunc);
  if (!Index_) {
    throw RecordError("record: cannot write " +
                      (Directory_ / "commands.txt").string());
  }
}

bool Recorder::Record(const std::string &CommandLine,
                      const std::string &Output) {
  char Name[32];
  std::snprintf(Name, sizeof(Name), "output-%04zu.txt", ++Count_);
  std::ofstream File(Directory_ / Name, std::ios::binary | std::ios::trunc);
  File << Output;
  // One line per run; a command line is one line by nature, so a line
  // break in one would only come from a broken module.
  std::string Line = CommandLine;
  std::erase(Line, '\n');
  Index_ << Name << '\t' << Line << '\n';
  Index_.flush();
  return static_cast<bool>(File) && static_cast<bool>(Index_);
}

}  // namespace host

