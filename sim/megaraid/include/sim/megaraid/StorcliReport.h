// storcli's own blocks on top of the shared report writer: the header
// block ("CLI Version", "Operating system", "Controller", "Status",
// "Description"), "key = value" lines, section titles with their "="
// underline, legends and the failure blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/common/Report.h"
#include "sim/megaraid/MegaRaidTypes.h"

namespace sim::megaraid {

// What the tool says about itself in every header.
struct ToolInfo {
  std::string CliVersion = "007.1705.0000.0000 Mar 31, 2021";
  std::string OperatingSystem = "UEFI";
};

class Report : public common::Report {
 public:
  explicit Report(const ToolInfo &Tool) : Tool_(Tool) {}

  // "Key = Value", storcli's way of printing a property.
  void Pair(const std::string &Key, const std::string &Value) {
    KeyValue(Key, " = ", Value);
  }
  // "Title :" and an underline of "=" as long as the title.
  void Section(const std::string &Title);
  // The header block; Controller is left out for commands without one.
  void Header(std::optional<uint32_t> Controller, bool Success,
              const std::string &Description);
  // A failed volume command. With a firmware status the "Status = Failure"
  // line is followed to the end of the output by "ErrorCode <n> ..." lines
  // (the third one's second word is the number); without one the usual
  // "Description" line follows.
  void Failure(std::optional<uint32_t> Controller, const Result &Outcome,
               const std::string &Description);
  // Per-drive results: "Detailed Status" with Drive, Status, ErrCd, ErrMsg.
  void DetailedStatus(const std::vector<std::pair<std::string, Result>> &Rows);

 private:
  // The header's lines down to the "Status" line.
  void Preamble(std::optional<uint32_t> Controller, bool Success);

  const ToolInfo &Tool_;
};

// The legends storcli prints under its tables.
extern const std::vector<std::string> kTopologyLegend;
extern const std::vector<std::string> kVolumeLegend;
extern const std::vector<std::string> kDriveLegend;

}  // namespace sim::megaraid
