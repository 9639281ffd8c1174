// The M.2 tools' reports. The adapter report's keys are padded to 37
// columns, the volume and drive reports' to 21, as the tools print them.
#include "sim/marvell/MvcliReport.h"

#include <cstdio>

#include "sim/common/Report.h"

namespace sim::marvell {
namespace {

constexpr size_t kHbaKeyWidth = 37;
constexpr size_t kKeyWidth = 21;

class Report : public common::Report {
 public:
  explicit Report(size_t Width) : Width_(Width) {}
  void Key(const std::string &Name, const std::string &Value) {
    KeyValue(Name + ":", "", Value, Width_);
  }

 private:
  size_t Width_;
};

std::string Hex(uint16_t Value) {
  char Text[8];
  std::snprintf(Text, sizeof(Text), "%x", Value);
  return Text;
}

std::string Ids(const std::vector<uint32_t> &Drives) {
  std::string Text;
  for (uint32_t Id : Drives) {
    Text += (Text.empty() ? "" : " ") + std::to_string(Id);
  }
  return Text;
}

void AdapterBlock(Report &Out, size_t Number, const Adapter &State) {
  Out.Key("Adapter ID", std::to_string(Number));
  Out.Key("Product", Hex(State.Pci.VendorId) + "-" + Hex(State.Pci.DeviceId));
  Out.Key("Sub Product",
          Hex(State.Pci.SubVendorId) + "-" + Hex(State.Pci.SubDeviceId));
  Out.Key("Chip revision", "A1");
  Out.Key("slot number", std::to_string(State.SlotNumber));
  Out.Key("Firmware version", State.FirmwareVersion);
  Out.Key("Boot loader version", "2.1.0.1009");
  Out.Key("# of ports", std::to_string(State.Drives.size() + 1));
  Out.Key("Supported port type", "SATA");
  Out.Key("Supported RAID mode", "RAID0 RAID1");
  Out.Key("Maximum disk in one VD", "2");
  Out.Key("Rebuild", "Supported");
  Out.Key("Maximum supported disk",
          State.MaxDisks ? std::to_string(*State.MaxDisks) : "");
  Out.Key("Maximum supported VD", "2");
  Out.Key("Stripe size supported", "32K 64K");
  Out.Key("Firmware image health", "Healthy");
  Out.Line();
  Out.Key("SerialNo", State.SerialNumber);
  Out.Key("ModelNumber", "M.2 Mirroring Kit");
  Out.Line();
}

}  // namespace

std::string HbaReport(const std::vector<Adapter> &Adapters) {
  Report Out(kHbaKeyWidth);
  for (size_t Number = 0; Number < Adapters.size(); Number++) {
    AdapterBlock(Out, Number, Adapters[Number]);
  }
  return Out.Text();
}

std::string VolumeReport(const Adapter &State) {
  Report Out(kKeyWidth);
  Out.Line("Virtual Disk Information");
  Out.Ruler('-', 25);
  for (const Volume &V : State.Volumes) {
    Out.Key("id", std::to_string(V.Id));
    Out.Key("name", V.Name);
    Out.Key("status", "functional");
    Out.Key("Stripe size", std::to_string(V.StripeKb));
    Out.Key("RAID mode", "RAID" + std::to_string(V.Level));
    Out.Key("Cache mode", "Not Support");
    Out.Key("size", V.Size);
    Out.Key("BGA status", "not running");
    Out.Key("Block ids", Ids(V.Drives));
    Out.Key("# of PDs", std::to_string(V.Drives.size()));
    Out.Key("PD RAID setup", Ids(V.Drives));
    Out.Key("Running OS", "no");
    Out.Key("VD status", V.Status);
    Out.Line();
  }
  Out.Key("Total # of VD", std::to_string(State.Volumes.size()));
  Out.Line();
  return Out.Text();
}

std::string DriveReport(const Adapter &State, size_t Number) {
  Report Out(kKeyWidth);
  for (const Drive &D : State.Drives) {
    Out.Key("Adapter", std::to_string(Number));
    Out.Key("PD ID", std::to_string(D.Id));
    Out.Key("Type", D.Type == DriveType::Sata ? "SATA PD" : "NVMe PD");
    Out.Key("Size", D.Size);
    Out.Key("model", D.Model);
    Out.Key("PD status", D.Status);
    Out.Line();
  }
  Out.Key("Total # of PD", std::to_string(State.Drives.size()));
  Out.Line();
  return Out.Text();
}

}  // namespace sim::marvell
