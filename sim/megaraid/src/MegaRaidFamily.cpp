// The MegaRAID family: scenario adapters into storcli's adapter list, tool
// runs to storcli, the state as the adapters' JSON.
#include "sim/megaraid/MegaRaidFamily.h"

#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/Storcli.h"

namespace sim::megaraid {
namespace {

class Family : public common::VirtualFamily {
 public:
  void AddAdapter(const nlohmann::json &Description) override {
    Tool_.AddAdapter(AdapterFromJson(Description));
  }
  std::vector<std::string> ToolNames() const override { return {"storcli.efi"}; }
  common::CommandResult Run(const std::string &,
                            const std::string &CommandLine) override {
    return {Tool_.Run(CommandLine)};
  }
  nlohmann::json State() const override {
    nlohmann::json Adapters = nlohmann::json::array();
    for (const Adapter &State : Tool_.Adapters()) {
      Adapters.push_back(AdapterToJson(State));
    }
    return Adapters;
  }

 private:
  Storcli Tool_;
};

}  // namespace

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<Family>();
}

}  // namespace sim::megaraid
