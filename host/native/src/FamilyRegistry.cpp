// The virtual adapter families this build simulates, and how the host hands
// a scenario's adapters to a family of the sim library. A new family is a
// folder of sim/ and one line in Builtin().
#include "native/AdapterFamily.h"

#include <cstdio>
#include <stdexcept>

#include "sim/common/PciIdentity.h"
#include "sim/common/VirtualFamily.h"
#include "sim/marvell/MarvellFamily.h"
#include "sim/megaraid/MegaRaidFamily.h"
#include "sim/microchip/MicrochipFamily.h"
#include "sim/intel/IntelFamily.h"

namespace host {
namespace {

// A sim family behind the shell-command service, which passes on the
// output only.
class SimulatedFamily : public VirtualFamily {
 public:
  explicit SimulatedFamily(std::unique_ptr<sim::common::VirtualFamily> Simulation)
      : Simulation_(std::move(Simulation)) {}

  std::vector<std::string> ToolNames() const override {
    return Simulation_->ToolNames();
  }
  std::string Run(const std::string &ToolName,
                  const std::string &CommandLine) override {
    sim::common::CommandResult Result = Simulation_->Run(ToolName, CommandLine);
    if (Result.Status != sim::common::CommandResult::kSuccess) {
      // The emulated shell service answers EFI_SUCCESS for every run; a
      // tool that asks for another status is a host problem, not silence.
      char Status[32];
      std::snprintf(Status, sizeof(Status), "0x%llx",
                    static_cast<unsigned long long>(Result.Status));
      throw std::runtime_error(std::string("the tool asked for status ") +
                               Status + ", which the shell service cannot return");
    }
    return std::move(Result.Output);
  }
  nlohmann::json State() const override { return Simulation_->State(); }

 private:
  std::unique_ptr<sim::common::VirtualFamily> Simulation_;
};

// The adapter's JSON for its family: the scenario's description without
// the host's keys, with the PCI identity of the function it sits on.
nlohmann::json AdapterJson(const AdapterSite &Site) {
  nlohmann::json Object = Site.Adapter->Description;
  Object.erase("family");
  Object.erase("pciFunction");
  const emu::PciLocation &L = Site.Pci->Location;
  const emu::PciIdentity &Id = Site.Pci->Identity;
  Object[sim::common::kPciKey] = sim::common::PciToJson({.Bus = L.Bus,
                                                         .Device = L.Device,
                                                         .Function = L.Function,
                                                         .VendorId = Id.VendorId,
                                                         .DeviceId = Id.DeviceId,
                                                         .SubVendorId = Id.SubVendorId,
                                                         .SubDeviceId = Id.SubDeviceId});
  return Object;
}

// The factory of a sim family: every adapter of the family in scenario
// order, a refusal named after the family and the function it sits on.
FamilyFactory Simulated(const std::string &Family, sim::common::FamilyMaker Make) {
  return [Family, Make](const std::vector<AdapterSite> &Sites)
             -> std::unique_ptr<VirtualFamily> {
    std::unique_ptr<sim::common::VirtualFamily> Simulation = Make();
    for (const AdapterSite &Site : Sites) {
      try {
        Simulation->AddAdapter(AdapterJson(Site));
      } catch (const std::exception &Error) {
        throw ScenarioError("adapters (" + Family + " on " +
                            Site.Adapter->Description.value("pciFunction", "") +
                            "): " + Error.what());
      }
    }
    return std::make_unique<SimulatedFamily>(std::move(Simulation));
  };
}

}  // namespace

const FamilyRegistry &FamilyRegistry::Builtin() {
  static const FamilyRegistry kRegistry = [] {
    FamilyRegistry Registry;
    auto Add = [&Registry](const std::string &Family, sim::common::FamilyMaker Make) {
      Registry.Register(Family, Simulated(Family, Make));
    };
    // The scenario's "family" name and the sim folder that simulates it.
    Add("megaraid", sim::megaraid::MakeFamily);
    Add("marvell", sim::marvell::MakeFamily);
    Add("microchip", sim::microchip::MakeFamily);
    Add("intel", sim::intel::MakeFamily);
    return Registry;
  }();
  return kRegistry;
}

}  // namespace host
