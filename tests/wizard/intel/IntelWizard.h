// The wizard world on servers with virtual Intel RAID engines: the engines'
// part of the adapters' state and the demo's on-board RSTe.
#pragma once

#include "DemoServer.h"
#include "WizardWorld.h"

namespace wizard_test {

class IntelWizardWorld : public WizardWorld {
 protected:
  nlohmann::json IntelState() const { return AdapterStates()["intel"]; }
};

}  // namespace wizard_test
