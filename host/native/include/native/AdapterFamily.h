// The seam to the virtual adapters: each scenario adapter "family" names a
// factory that simulates all of that family's adapters and answers the
// command lines of its tools. Builtin() registers the families of sim/,
// one line each (FamilyRegistry.cpp); tests register fakes.
#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "native/Scenario.h"

namespace host {

// The simulated adapters of one family, behind the tools that drive them.
class VirtualFamily {
 public:
  virtual ~VirtualFamily() = default;
  // The tool file names it answers, lower case, e.g. "storcli.efi".
  virtual std::vector<std::string> ToolNames() const = 0;
  // Runs one command line of the tool ToolName and returns what the tool
  // prints (CRLF line ends). It must not throw: it runs beneath the
  // module's call of the shell-command service.
  virtual std::string Run(const std::string &ToolName,
                          const std::string &CommandLine) = 0;
  // The adapters' current state, in the family's scenario JSON.
  virtual nlohmann::json State() const = 0;
};

// One adapter of the scenario with the PCI function it sits on.
struct AdapterSite {
  const AdapterDescription *Adapter;
  const PciFunction *Pci;
};

// Builds a family's simulation over its adapters, in scenario order.
// Throws ScenarioError for an adapter it cannot simulate.
using FamilyFactory = std::function<std::unique_ptr<VirtualFamily>(
    const std::vector<AdapterSite> &Sites)>;

class FamilyRegistry {
 public:
  void Register(const std::string &Family, FamilyFactory Factory) {
    Factories_[Family] = std::move(Factory);
  }
  // The factory of Family, or NULL.
  const FamilyFactory *Find(const std::string &Family) const {
    auto It = Factories_.find(Family);
    return It == Factories_.end() ? nullptr : &It->second;
  }

  // The families this build simulates.
  static const FamilyRegistry &Builtin();

 private:
  std::map<std::string, FamilyFactory> Factories_;
};

}  // namespace host
