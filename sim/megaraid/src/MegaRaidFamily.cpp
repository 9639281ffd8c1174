// The MegaRAID family: scenario adapters into storcli's adapter list, tool
// runs to storcli, the state as the adapters' JSON.
#include "sim/megaraid/MegaRaidFamily.h"

#include "sim/common/ToolFamily.h"
#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/Storcli.h"

namespace sim::megaraid {

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<
      common::ToolFamily<Storcli, AdapterFromJson, AdapterToJson>>(
      std::vector<std::string>{"storcli.efi"});
}

}  // namespace sim::megaraid
