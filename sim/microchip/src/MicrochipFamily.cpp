// The Microchip family: scenario adapters into arcconf's adapter list, tool
// runs to arcconf, the state as the adapters' JSON.
#include "sim/microchip/MicrochipFamily.h"

#include "sim/common/ToolFamily.h"
#include "sim/microchip/Arcconf.h"
#include "sim/microchip/MicrochipJson.h"

namespace sim::microchip {

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<
      common::ToolFamily<Arcconf, AdapterFromJson, AdapterToJson>>(
      std::vector<std::string>{"arcconf.efi"});
}

}  // namespace sim::microchip
