// The wizard world on servers whose adapters are virtual MegaRAIDs: the
// family's part of the adapters' state and the family's scenarios.
#pragma once

#include "DemoServer.h"
#include "WizardWorld.h"

namespace wizard_test {

class MegaRaidWizardWorld : public WizardWorld {
 protected:
  // The virtual MegaRAID adapters' state, in scenario order.
  nlohmann::json MegaRaidState() const { return AdapterStates()["megaraid"]; }
};

// One MegaRAID 9460-8i with six unconfigured SAS drives.
inline nlohmann::json SixSasServer() {
  return ScenarioJson("megaraid-six-sas.json");
}

}  // namespace wizard_test
