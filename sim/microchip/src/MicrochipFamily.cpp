// The Microchip family: scenario adapters into arcconf's adapter list, tool
// runs to arcconf, the state as the adapters' JSON.
#include "sim/microchip/MicrochipFamily.h"

#include "sim/microchip/Arcconf.h"
#include "sim/microchip/MicrochipJson.h"

namespace sim::microchip {
namespace {

class Family : public common::VirtualFamily {
 public:
  void AddAdapter(const nlohmann::json &Description) override {
    Tool_.AddAdapter(AdapterFromJson(Description));
  }
  std::vector<std::string> ToolNames() const override { return {"arcconf.efi"}; }
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
  Arcconf Tool_;
};

}  // namespace

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<Family>();
}

}  // namespace sim::microchip
