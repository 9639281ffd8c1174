// What one run of a virtual tool gives the shell-command service: the text
// the tool printed and the status the service returns for the run.
#pragma once

#include <cstdint>
#include <string>

namespace sim::common {

struct CommandResult {
  // EFI_SUCCESS: the tool ran, whatever it printed about the command.
  static constexpr uint64_t kSuccess = 0;

  std::string Output;  // CRLF line ends
  uint64_t Status = kSuccess;  // an EFI_STATUS
};

}  // namespace sim::common
