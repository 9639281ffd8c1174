// A family whose adapters all sit behind one tool object, as every vendor's
// tool sees all its adapters: scenario adapters go into the tool through
// the family's JSON reader, runs of any of its tool names go to the tool,
// and the state is every adapter's JSON in the tool's order.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "sim/common/VirtualFamily.h"

namespace sim::common {

// Tool gives AddAdapter(Adapter), Run(line) -> printed text and Adapters();
// FromJson and ToJson read and dump one adapter.
template <typename Tool, auto FromJson, auto ToJson>
class ToolFamily : public VirtualFamily {
 public:
  explicit ToolFamily(std::vector<std::string> Names)
      : Names_(std::move(Names)) {}

  void AddAdapter(const nlohmann::json &Description) override {
    Tool_.AddAdapter(FromJson(Description));
  }
  std::vector<std::string> ToolNames() const override { return Names_; }
  CommandResult Run(const std::string &,
                    const std::string &CommandLine) override {
    return {Tool_.Run(CommandLine)};
  }
  nlohmann::json State() const override {
    nlohmann::json Adapters = nlohmann::json::array();
    for (const auto &Adapter : Tool_.Adapters()) {
      Adapters.push_back(ToJson(Adapter));
    }
    return Adapters;
  }

 private:
  Tool Tool_;
  std::vector<std::string> Names_;
};

}  // namespace sim::common
