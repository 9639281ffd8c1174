// The Marvell family: scenario adapters into the tools' adapter list, runs
// of either tool to the same adapters, the state as the adapters' JSON.
#include "sim/marvell/MarvellFamily.h"

#include "sim/marvell/MarvellJson.h"
#include "sim/marvell/Mvcli.h"

namespace sim::marvell {
namespace {

class Family : public common::VirtualFamily {
 public:
  void AddAdapter(const nlohmann::json &Description) override {
    Tool_.AddAdapter(AdapterFromJson(Description));
  }
  std::vector<std::string> ToolNames() const override {
    return {"mvsetup.efi", "mnv_cli.efi"};
  }
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
  Mvcli Tool_;
};

}  // namespace

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<Family>();
}

}  // namespace sim::marvell
