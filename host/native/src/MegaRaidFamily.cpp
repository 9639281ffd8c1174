// The "megaraid" family: the scenario's MegaRAID adapters behind one
// storcli tool, as on a server where storcli.efi sees every such adapter.
#include "native/MegaRaidFamily.h"

#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/Storcli.h"

namespace host {
namespace {

class MegaRaidFamily : public VirtualFamily {
 public:
  explicit MegaRaidFamily(std::vector<sim::megaraid::Adapter> Adapters)
      : Tool_(std::move(Adapters)) {}

  std::vector<std::string> ToolNames() const override {
    return {"storcli.efi"};
  }
  std::string Run(const std::string &, const std::string &CommandLine) override {
    return Tool_.Run(CommandLine);
  }
  nlohmann::json State() const override {
    nlohmann::json Adapters = nlohmann::json::array();
    for (const sim::megaraid::Adapter &Adapter : Tool_.Adapters()) {
      Adapters.push_back(sim::megaraid::AdapterToJson(Adapter));
    }
    return Adapters;
  }

 private:
  sim::megaraid::Storcli Tool_;
};

// The adapter's JSON for the simulation: the scenario's description, with
// its PCI identity taken from the function it sits on.
nlohmann::json AdapterJson(const AdapterSite &Site) {
  nlohmann::json Object = Site.Adapter->Description;
  Object.erase("family");
  Object.erase("pciFunction");
  const emu::PciLocation &L = Site.Pci->Location;
  const emu::PciIdentity &Id = Site.Pci->Identity;
  Object["pci"] = {{"bus", L.Bus},
                   {"device", L.Device},
                   {"function", L.Function},
                   {"vendorId", Id.VendorId},
                   {"deviceId", Id.DeviceId},
                   {"subVendorId", Id.SubVendorId},
                   {"subDeviceId", Id.SubDeviceId}};
  return Object;
}

}  // namespace

std::unique_ptr<VirtualFamily> MakeMegaRaidFamily(
    const std::vector<AdapterSite> &Sites) {
  std::vector<sim::megaraid::Adapter> Adapters;
  for (const AdapterSite &Site : Sites) {
    try {
      Adapters.push_back(sim::megaraid::AdapterFromJson(AdapterJson(Site)));
    } catch (const std::exception &Error) {
      throw ScenarioError("adapters (megaraid on " +
                          Site.Adapter->Description.value("pciFunction", "") +
                          "): " + Error.what());
    }
  }
  return std::make_unique<MegaRaidFamily>(std::move(Adapters));
}

}  // namespace host
