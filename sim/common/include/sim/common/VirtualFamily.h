// A family of virtual adapters behind the tools that drive them, as on a
// real server where one storcli.efi sees every MegaRAID adapter. Each
// family folder of sim/ implements it; the native host registers it under
// the family's scenario name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "sim/common/CommandResult.h"

namespace sim::common {

class VirtualFamily {
 public:
  virtual ~VirtualFamily() = default;

  // Takes the scenario's next adapter of this family, in scenario order:
  // the family's keys, with kPciKey filled in from the PCI function it
  // sits on. Throws ScenarioError naming the place of what it refuses.
  virtual void AddAdapter(const nlohmann::json &Description) = 0;
  // The tool file names it answers, lower case, e.g. "storcli.efi".
  virtual std::vector<std::string> ToolNames() const = 0;
  // Runs one command line of the tool ToolName. It must not throw: it runs
  // beneath the module's call of the shell-command service.
  virtual CommandResult Run(const std::string &ToolName,
                            const std::string &CommandLine) = 0;
  // The adapters' current state, in the family's scenario JSON, so that a
  // dump loads back to the same state.
  virtual nlohmann::json State() const = 0;
};

// How the host makes a family's simulation before handing it the adapters.
using FamilyMaker = std::unique_ptr<VirtualFamily> (*)();

}  // namespace sim::common
