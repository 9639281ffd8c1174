// Building the virtual adapters of a scenario and routing tool runs.
#include "native/VirtualAdapters.h"

#include <algorithm>

#include "sim/common/CommandWords.h"

namespace host {

std::string ToolNameOf(const std::string &CommandLine) {
  const std::size_t Start = CommandLine.find_first_not_of(" \t");
  if (Start == std::string::npos) {
    return "";
  }
  const std::size_t End = CommandLine.find_first_of(" \t", Start);
  std::string Word = CommandLine.substr(Start, End - Start);
  const std::size_t Separator = Word.find_last_of("\\/:");
  if (Separator != std::string::npos) {
    Word.erase(0, Separator + 1);
  }
  return sim::common::Lower(Word);
}

VirtualAdapters::VirtualAdapters(const Scenario &Scenario,
                                 const FamilyRegistry &Registry) {
  try {
    AddFamilies(Scenario, Registry);
  } catch (const ScenarioError &Error) {
    if (Scenario.Origin.empty()) {
      throw;
    }
    throw ScenarioError(Scenario.Origin + ": " + Error.what());
  }
}

void VirtualAdapters::AddFamilies(const Scenario &Scenario,
                                  const FamilyRegistry &Registry) {
  // The families in the order of their first adapter.
  std::vector<std::pair<std::string, std::vector<AdapterSite>>> Groups;
  for (const AdapterDescription &Adapter : Scenario.Adapters) {
    auto It = std::find_if(Groups.begin(), Groups.end(), [&](const auto &G) {
      return G.first == Adapter.Family;
    });
    if (It == Groups.end()) {
      Groups.push_back({Adapter.Family, {}});
      It = Groups.end() - 1;
    }
    It->second.push_back({&Adapter, &Scenario.Pci[Adapter.PciIndex]});
  }
  for (auto &[Family, Sites] : Groups) {
    const FamilyFactory *Factory = Registry.Find(Family);
    if (Factory == nullptr) {
      throw ScenarioError("adapters: no virtual adapter of family \"" +
                          Family + "\"");
    }
    std::unique_ptr<VirtualFamily> Simulation = (*Factory)(Sites);
    for (const std::string &Tool : Simulation->ToolNames()) {
      if (!Tools_.emplace(sim::common::Lower(Tool), Simulation.get()).second) {
        throw ScenarioError("adapters: two families answer \"" + Tool + "\"");
      }
    }
    Families_.emplace_back(Family, std::move(Simulation));
  }
}

std::optional<std::string> VirtualAdapters::Run(
    const std::string &CommandLine) {
  const std::string Tool = ToolNameOf(CommandLine);
  auto It = Tools_.find(Tool);
  if (It == Tools_.end()) {
    return std::nullopt;
  }
  return It->second->Run(Tool, CommandLine);
}

nlohmann::json VirtualAdapters::State() const {
  nlohmann::json State = nlohmann::json::object();
  for (const auto &[Family, Simulation] : Families_) {
    State[Family] = Simulation->State();
  }
  return State;
}

}  // namespace host
