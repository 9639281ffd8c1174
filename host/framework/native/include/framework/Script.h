// Scripts of operator actions for the headless driver: a plain line-based
// file, one action per line, comments from '#' (docs/script.md).
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "framework/HeadlessDriver.h"

namespace framework {

struct ScriptError {
  std::string Source;  // file name, or the name given to RunText
  size_t Line;         // 1-based
  std::string Message;
};

class ScriptRunner {
 public:
  // Out receives what "dump" and "print" ask for.
  ScriptRunner(HeadlessDriver &Driver, std::ostream &Out)
      : Driver_(Driver), Out_(Out) {}

  // Runs every line; stops at the first failing one. TRUE when all ran.
  [[nodiscard]] bool RunText(const std::string &Text,
                             const std::string &Source);
  [[nodiscard]] bool RunFile(const std::string &Path);
  [[nodiscard]] const std::vector<ScriptError> &Errors() const {
    return Errors_;
  }

  // Splits one line into words: blanks separate, "..." quotes (with \" and
  // \\), a '#' at the start of a word begins a comment unless it is a node
  // reference "#<digits>" after the first word.
  [[nodiscard]] static std::vector<std::string> Words(const std::string &Line,
                                                      std::string *Problem);

 private:
  // Runs one line's words; an empty string when it went well, else why not.
  [[nodiscard]] std::string RunWords(const std::vector<std::string> &Words);
  [[nodiscard]] std::string RunControlAction(
      const std::vector<std::string> &Words);
  [[nodiscard]] std::string RunTableAction(
      const std::vector<std::string> &Words);
  [[nodiscard]] std::string RunExpectation(
      const std::vector<std::string> &Words);

  HeadlessDriver &Driver_;
  std::ostream &Out_;
  std::vector<ScriptError> Errors_;
};

}  // namespace framework
