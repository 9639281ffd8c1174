// arcconf's printed reports. The getconfig report keeps the line order the
// RAID module's reader depends on: a drive's state and array before its
// interface and SSD lines, "Device is a HardDrive" right after "Device #",
// the array's RAID level four lines below "Array Logical Device
// Information", and more than sixteen lines after a drive's SSD line.
#include "sim/microchip/ArcconfReport.h"

#include <cstdio>
#include <map>

#include "sim/common/Report.h"

namespace sim::microchip {
namespace {

constexpr size_t kKeyColumn = 46;
constexpr size_t kRulerWidth = 70;
constexpr size_t kSubRulerWidth = 56;

using common::Report;

void Key(Report &Out, size_t Indent, const std::string &Name,
         const std::string &Value) {
  Out.KeyValue(std::string(Indent, ' ') + Name, ": ", Value, kKeyColumn);
}

void Heading(Report &Out, const std::string &Title) {
  Out.Ruler('-', kRulerWidth);
  Out.Line(Title);
  Out.Ruler('-', kRulerWidth);
}

void SubHeading(Report &Out, const std::string &Title) {
  Out.Line("   " + std::string(kSubRulerWidth, '-'));
  Out.Line("   " + Title);
  Out.Line("   " + std::string(kSubRulerWidth, '-'));
}

std::string Mb(uint64_t Size) { return std::to_string(Size) + " MB"; }

std::string Hex4(uint16_t Value) {
  char Text[8];
  std::snprintf(Text, sizeof Text, "0x%04X", Value);
  return Text;
}

std::string LevelText(const Array &Target) {
  return std::to_string(Target.RaidLevel) + (Target.Triple ? "Triple" : "");
}

std::string DeviceRow(const Device &Drive) {
  return "Present (" + std::to_string(Drive.SizeMb) + "MB, " +
         Drive.Interface + ", " + Drive.Medium + ", Connector:" +
         std::to_string(Drive.Address.Channel) + ", Device:" +
         std::to_string(Drive.Address.Device) + ") " + Drive.Serial;
}

void ControllerSection(Report &Out, const Adapter &State) {
  Heading(Out, "Controller information");
  Key(Out, 3, "Controller Status", "Optimal");
  Key(Out, 3, "Controller Mode", "RAID (Hide RAW)");
  Key(Out, 3, "Channel description", "SCSI");
  Key(Out, 3, "Controller Model", State.Model);
  Key(Out, 3, "Vendor ID", Hex4(State.Pci.VendorId));
  Key(Out, 3, "Device ID", Hex4(State.Pci.DeviceId));
  Key(Out, 3, "Subsystem Vendor ID", Hex4(State.Pci.SubVendorId));
  Key(Out, 3, "Subsystem Device ID", Hex4(State.Pci.SubDeviceId));
  Key(Out, 3, "Controller Serial Number", State.Serial);
  Key(Out, 3, "Physical Slot", std::to_string(State.Slot));
  Key(Out, 3, "Temperature", "56 C/ 132 F (Normal)");
  Key(Out, 3, "Host bus type", "PCIe 3.0");
  char Address[32];
  std::snprintf(Address, sizeof Address, "0:%x:%x:%x", State.Pci.Bus,
                State.Pci.Device, State.Pci.Function);
  Key(Out, 3, "PCI Address (Domain:Bus:Device:Function)", Address);
  Key(Out, 3, "Number of Ports", "4");
  SubHeading(Out, "Controller Version Information");
  Key(Out, 3, "Firmware", State.Firmware);
  Key(Out, 3, "Driver", "UEFI 1.3.0.14");
  Key(Out, 3, "Hardware Revision", "A");
  Out.Line();
}

void ArraySection(Report &Out, const Adapter &State) {
  Heading(Out, "Array Information");
  for (size_t Index = 0; Index < State.Arrays.size(); Index++) {
    const Array &Target = State.Arrays[Index];
    Out.Line("Array Number " + std::to_string(Index));
    Key(Out, 3, "Name", std::string(1, static_cast<char>('A' + Index % 26)));
    Key(Out, 3, "Status", "Ok");
    const Device *First =
        Target.Members.empty() ? nullptr : State.FindDevice(Target.Members[0]);
    Key(Out, 3, "Interface", First != nullptr ? First->Interface : "SAS");
    Key(Out, 3, "Total Size", Mb(State.TotalMb(Target)));
    Key(Out, 3, "Unused Size", Mb(State.UnusedMb(Target)));
    Key(Out, 3, "Block Size", "512 Bytes");
    Key(Out, 3, "Type", "Data");
    Key(Out, 3, "Transformation Status", "Not Applicable");
    Key(Out, 3, "Spare Rebuild Mode", "Dedicated");
    SubHeading(Out, "Array Logical Device Information");
    Key(Out, 3, "RAID level", LevelText(Target));
    Out.Line("   " + std::string(kSubRulerWidth, '-'));
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      Key(Out, 3, "Logical " + std::to_string(Drive.Number),
          // The row's own parenthesis carries the level: a status note in
          // parentheses ("Optimal (Background Parity Initialization)")
          // is left to the logical device's block.
          Drive.Status.substr(0, Drive.Status.find(" (")) + " (" +
              std::to_string(Target.RaidLevel) + ", Data, " +
              Mb(Drive.SizeMb) + ") " + Drive.Name);
    }
    SubHeading(Out, "Array Physical Device Information");
    for (const DeviceAddress &Member : Target.Members) {
      if (const Device *Drive = State.FindDevice(Member)) {
        Key(Out, 3, "Device " + std::to_string(Member.Device),
            DeviceRow(*Drive));
      }
    }
    Out.Line();
    Out.Line();
  }
  Out.Line();
}

void LogicalDeviceSection(Report &Out, const Adapter &State) {
  Heading(Out, "Logical device information");
  bool Any = false;
  for (size_t Index = 0; Index < State.Arrays.size(); Index++) {
    const Array &Target = State.Arrays[Index];
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      Any = true;
      Out.Line("Logical Device number " + std::to_string(Drive.Number));
      Key(Out, 3, "Logical Device name", Drive.Name);
      Key(Out, 3, "Block Size of member drives", "512 Bytes");
      Key(Out, 3, "Array", std::to_string(Index));
      Key(Out, 3, "RAID level", LevelText(Target));
      Key(Out, 3, "Status of Logical Device", Drive.Status);
      Key(Out, 3, "Size", Mb(Drive.SizeMb));
      Key(Out, 3, "Stripe-unit size", "256 KB");
      Key(Out, 3, "Interface Type", "Serial Attached SCSI");
      Key(Out, 3, "Device Type", "Data");
      Key(Out, 3, "Boot Type", "None");
      Key(Out, 3, "Caching", "Enabled");
      Key(Out, 3, "LD Acceleration Method", "Controller Cache");
      SubHeading(Out, "Logical Device segment information");
      for (size_t Member = 0; Member < Target.Members.size(); Member++) {
        if (const Device *Drive = State.FindDevice(Target.Members[Member])) {
          Key(Out, 3,
              "Group 0, Segment " + std::to_string(Member),
              DeviceRow(*Drive));
        }
      }
      Out.Line();
      Out.Line();
    }
  }
  if (!Any) {
    Out.Line("   No logical devices configured");
  }
  Out.Line();
}

std::string StateText(const Device &Drive) {
  switch (Drive.State) {
    case DeviceState::Online: return "Online";
    case DeviceState::DedicatedSpare: return "Dedicated Hot-Spare";
    case DeviceState::AutoReplaceSpare: return "Auto Replace Hot-Spare";
    case DeviceState::Raw: return "Exposed to OS";
    default: return "Ready";
  }
}

// The array a drive belongs to, by number; none for a drive in none.
std::optional<size_t> ArrayOf(const Adapter &State, const Device &Drive) {
  for (size_t Index = 0; Index < State.Arrays.size(); Index++) {
    for (const DeviceAddress &Member : State.Arrays[Index].Members) {
      if (Member == Drive.Address) {
        return Index;
      }
    }
  }
  return std::nullopt;
}

void DriveBlock(Report &Out, const Adapter &State, const Device &Drive) {
  Out.Line("      Device #" + std::to_string(Drive.Address.Device));
  Out.Line("         Device is a HardDrive");
  Key(Out, 9, "State", StateText(Drive));
  Key(Out, 9, "Drive has stale RIS data", "False");
  Key(Out, 9, "Block Size", "512 Bytes");
  if (const auto Member = ArrayOf(State, Drive)) {
    Key(Out, 9, "Array", std::to_string(*Member));
  }
  for (uint32_t Of : Drive.SpareOf) {
    Key(Out, 9, "Dedicated Spare for", "Array " + std::to_string(Of));
  }
  Key(Out, 9, "Transfer Speed",
      Drive.Interface == "SATA" ? "SATA 6.0 Gb/s" : "SAS 12.0 Gb/s");
  Key(Out, 9, "Reported Channel,Device(T:L)",
      std::to_string(Drive.Address.Channel) + "," +
          std::to_string(Drive.Address.Device) + "(" +
          std::to_string(Drive.Address.Device) + ":0)");
  Key(Out, 9, "Reported Location",
      "Enclosure " + std::to_string(Drive.Enclosure) + ", Slot " +
          std::to_string(Drive.Slot) + "(Connector " +
          std::to_string(Drive.Address.Channel) + ":CN" +
          std::to_string(Drive.Address.Channel) + ")");
  Key(Out, 9, "Vendor", Drive.Interface == "SATA" ? "ATA" : "SEAGATE");
  Key(Out, 9, "Model", Drive.Model);
  Key(Out, 9, "Serial number", Drive.Serial);
  Key(Out, 9, "Total Size", Mb(Drive.SizeMb));
  Key(Out, 9, "S.M.A.R.T.", "No");
  Key(Out, 9, "SSD", Drive.Medium == "SSD" ? "Yes" : "No");
  Key(Out, 9, "NCQ supported", "Supported");
  Key(Out, 9, "Boot Type", "None");
  Key(Out, 9, "Current Temperature", "34 deg C");
  Key(Out, 9, "PHY Count", "1");
  Key(Out, 9, "Drive Configuration Type",
      Drive.State == DeviceState::Online ? "Data"
      : Drive.State == DeviceState::Raw  ? "HBA"
                                         : "Unassigned");
  Key(Out, 9, "Drive Exposed to OS",
      Drive.State == DeviceState::Raw ? "True" : "False");
  Key(Out, 9, "Sanitize Erase Support", "True");
  Key(Out, 9, "Usage Remaining", "100 percent");
  Key(Out, 9, "Last Failure Reason", "No Failure");
  Out.Line("      " + std::string(64, '-'));
  Out.Line("      Device Phy Information");
  Out.Line("      " + std::string(64, '-'));
  Out.Line("         Phy #0");
  Key(Out, 12, "Negotiated Physical Link Rate", "12 Gbps");
  Key(Out, 12, "Negotiated Logical Link Rate", "12 Gbps");
  Key(Out, 12, "Maximum Link Rate", "12 Gbps");
  Out.Line();
  Out.Line("      " + std::string(64, '-'));
  Out.Line("      Device Error Counters");
  Out.Line("      " + std::string(64, '-'));
  for (const char *Counter : {"Aborted Commands", "Bad Target Errors",
                              "Hardware Errors", "Media Failures",
                              "Predictive Failures", "Service Hours"}) {
    Key(Out, 9, Counter, "0");
  }
  Out.Line();
}

void PhysicalDeviceSection(Report &Out, const Adapter &State) {
  Heading(Out, "Physical Device information");
  std::map<uint32_t, std::vector<const Device *>> Channels;
  for (const Device &Drive : State.Devices) {
    Channels[Drive.Address.Channel].push_back(&Drive);
  }
  const uint32_t Last = Channels.empty() ? 0 : Channels.rbegin()->first;
  // Every channel up to the last is listed, so that the count of channel
  // headings gives each drive's channel.
  for (uint32_t Channel = 0; Channel <= Last; Channel++) {
    Out.Line("   Channel #" + std::to_string(Channel) + ":");
    for (const Device *Drive : Channels[Channel]) {
      DriveBlock(Out, State, *Drive);
    }
  }
  if (State.Devices.empty()) {
    Out.Line("      No physical drives attached");
  }
  Out.Line();
}

std::string Found(size_t AdapterCount) {
  return "Controllers found: " + std::to_string(AdapterCount);
}

}  // namespace

std::string ListReport(const NumberedAdapters &Adapters) {
  Report Out;
  Out.Line();
  Out.Line(Found(Adapters.size()));
  Heading(Out, "Controller information");
  Out.KeyValue("   Controller ID", ": ",
               "Status, Slot Ctrl, Mode, Name, SerialNumber, WWN", 29);
  Out.Ruler('-', kRulerWidth);
  for (const auto &[Number, State] : Adapters) {
    Out.KeyValue("   Controller " + std::to_string(Number) + ":", ": ",
                 "Optimal, " + std::to_string(State->Slot) + " " +
                     std::to_string(Number) + ", RAID (Hide RAW), " +
                     State->Model + ", " + State->Serial + ", 50000D1F00000000",
                 29);
  }
  Out.Line();
  Out.Line("Command completed successfully.");
  return Out.Text();
}

std::string GetconfigReport(size_t AdapterCount, const Adapter &State) {
  Report Out;
  Out.Line(Found(AdapterCount));
  ControllerSection(Out, State);
  ArraySection(Out, State);
  LogicalDeviceSection(Out, State);
  PhysicalDeviceSection(Out, State);
  Heading(Out, "maxCache information");
  Out.Line("   No maxCache Array found");
  Out.Line();
  Out.Line();
  Out.Line("Command completed successfully.");
  return Out.Text();
}

std::string Completed(size_t AdapterCount, const std::string &Body) {
  Report Out;
  Out.Line(Found(AdapterCount));
  Out.Line();
  if (!Body.empty()) {
    Out.Line(Body);
    Out.Line();
  }
  Out.Line("Command completed successfully.");
  return Out.Text();
}

std::string Failed(size_t AdapterCount, const std::string &Message) {
  Report Out;
  Out.Line(Found(AdapterCount));
  Out.Line();
  Out.Line(Message);
  Out.Line();
  Out.Line("Command failed.");
  return Out.Text();
}

}  // namespace sim::microchip
