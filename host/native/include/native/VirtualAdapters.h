// The scenario's virtual adapters and the dispatch of command lines to the
// tool named by their first word.
#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "native/AdapterFamily.h"
#include "native/Scenario.h"

namespace host {

// The tool file a command line runs: its first word without any path
// ("fs0:\tools\StorCli.efi /c0 show" gives "storcli.efi"), lower case.
std::string ToolNameOf(const std::string &CommandLine);

class VirtualAdapters {
 public:
  // Simulates every adapter of Scenario with the family's factory from
  // Registry. Throws ScenarioError, after the scenario's file name, for an
  // unknown family, an adapter its family refuses or a tool that two
  // families claim.
  VirtualAdapters(const Scenario &Scenario, const FamilyRegistry &Registry);

  // What the tool named by the command line prints; nullopt when no
  // simulated tool has that name.
  std::optional<std::string> Run(const std::string &CommandLine);
  // Each family's state by family name.
  nlohmann::json State() const;

 private:
  void AddFamilies(const Scenario &Scenario, const FamilyRegistry &Registry);

  std::vector<std::pair<std::string, std::unique_ptr<VirtualFamily>>>
      Families_;
  std::map<std::string, VirtualFamily *> Tools_;
};

}  // namespace host
