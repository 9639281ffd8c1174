// A family whose adapters all sit behind one tool object, as on a real
// server: the scenario's adapters go to the tool in scenario order, every
// command line goes to the tool, and the state is the adapters' JSON.
// Tool has AddAdapter(Adapter), Run(command line) giving the printed text,
// and Adapters(); FromJson and ToJson convert one adapter.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "sim/common/VirtualFamily.h"

namespace sim::common {

template <typename Tool, auto FromJson, auto ToJson>
class ToolFamily : public VirtualFamily {
 public:
  explicit ToolFamily(std::vector<std::string> ToolNames)
      : ToolNames_(std::move(ToolNames)) {}

  void AddAdapter(const nlohmann::json &Description) override {
    Tool_.AddAdapter(FromJson(Description));
  }
  std::vector<std::string> ToolNames() const override { return ToolNames_; }
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
  std::vector<std::string> ToolNames_;
};

}  // namespace sim::common
