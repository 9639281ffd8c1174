// The storcli tool over the server's virtual MegaRAID adapters: takes the
// exact command line the RAID module sends and answers with the tool's
// printed text, changing the adapters as the real tool would.
#pragma once

#include <string>
#include <vector>

#include "sim/megaraid/MegaRaidAdapter.h"
#include "sim/megaraid/StorcliCommand.h"
#include "sim/megaraid/StorcliReport.h"

namespace sim::megaraid {

class Storcli {
 public:
  // The adapters are numbered /c0, /c1, ... by ascending PCI bus, device
  // and function.
  explicit Storcli(std::vector<Adapter> Adapters = {}, ToolInfo Tool = {});

  // Puts one more adapter in its place by location, behind any at the same.
  void AddAdapter(Adapter State);

  std::string Run(const std::string &CommandLine);

  const std::vector<Adapter> &Adapters() const { return Adapters_; }
  const ToolInfo &Tool() const { return Tool_; }

 private:
  std::string Execute(const Command &Command);
  std::string RunVolumeCommand(const Command &Command, Adapter &Target);
  std::string RunDriveCommand(const Command &Command, Adapter &Target);

  std::vector<Adapter> Adapters_;
  ToolInfo Tool_;
};

}  // namespace sim::megaraid
