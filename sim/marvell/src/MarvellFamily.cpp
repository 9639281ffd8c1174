// The Marvell family: scenario adapters into the M.2 tools' adapter list,
// runs of either tool to the same adapters, the state as the adapters'
// JSON.
#include "sim/marvell/MarvellFamily.h"

#include "sim/common/ToolFamily.h"
#include "sim/marvell/MarvellJson.h"
#include "sim/marvell/Mvcli.h"

namespace sim::marvell {

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<
      common::ToolFamily<Mvcli, AdapterFromJson, AdapterToJson>>(
      std::vector<std::string>{"mvsetup.efi", "mnv_cli.efi"});
}

}  // namespace sim::marvell
