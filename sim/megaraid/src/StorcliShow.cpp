// storcli's show reports, laid out as the real tool prints them: the
// header block, then sections whose tables start eight lines (blank lines
// included) below their "Drive Groups", "Virtual Drives" and "Physical
// Drives" count lines.
#include "sim/megaraid/StorcliShow.h"

#include <cstdio>

#include "sim/megaraid/Capacity.h"

namespace sim::megaraid {
namespace {

using common::TextTable;

std::string Hex(uint32_t Value) {
  char Text[16];
  std::snprintf(Text, sizeof(Text), "0x%X", Value);
  return Text;
}

std::string PciAddress(const ControllerIdentity &Id) {
  char Text[32];
  std::snprintf(Text, sizeof(Text), "00:%02x:%02x:%02x", Id.Bus, Id.Device,
                Id.Function);
  return Text;
}

std::string RaidType(uint32_t Level) { return "RAID" + std::to_string(Level); }

TextTable DriveTable() {
  return TextTable({{"EID:Slt"}, {"DID", true}, {"State"}, {"DG", true},
                    {"Size", true}, {"Intf"}, {"Med"}, {"SED"}, {"PI"},
                    {"SeSz"}, {"Model"}, {"Sp"}, {"Type"}});
}

// One PD LIST row; the DG column shows "F" for a foreign drive.
void AddDriveRow(TextTable &Table, const Adapter &State,
                 const PhysicalDrive &Drive) {
  std::string Group = "-";
  if (Drive.Foreign) {
    Group = "F";
  } else if (auto Index = State.GroupOfDrive(Drive.DeviceId)) {
    Group = std::to_string(*Index);
  }
  Table.AddRow({Drive.Address.Text(), std::to_string(Drive.DeviceId),
                DriveStateWord(Drive.State), Group, FormatSize(Drive.SizeMb),
                InterfaceWord(Drive.Interface), MediumWord(Drive.Medium), "N",
                "N", "512B", Drive.Model, "U", "-"});
}

TextTable VolumeTable() {
  return TextTable({{"DG/VD"}, {"TYPE"}, {"State"}, {"Access"}, {"Consist"},
                    {"Cache"}, {"Cac"}, {"sCC"}, {"Size", true}, {"Name"}});
}

void AddVolumeRow(TextTable &Table, const Adapter &State, uint32_t Group,
                  const VirtualDrive &Volume) {
  Table.AddRow({std::to_string(Group) + "/" + std::to_string(Volume.Number),
                RaidType(State.Groups()[Group].RaidLevel),
                VolumeStateWord(State.GroupState(Group)), "RW", "Yes",
                CacheWord(Volume), "-", "OFF", FormatSize(Volume.SizeMb),
                Volume.Name});
}

// Topology rows of one group: the group, its spans (arrays), their drives,
// then its dedicated spares.
void AddTopologyRows(TextTable &Table, const Adapter &State, uint32_t Index) {
  const auto &Group = State.Groups()[Index];
  const std::string Dg = std::to_string(Index);
  const std::string GroupState = VolumeStateWord(State.GroupState(Index));
  const uint64_t Capacity = State.GroupCapacityMb(Index);
  bool HasFree = false;
  for (const auto &Segment : State.FreeSegments()) {
    HasFree |= Segment.DriveGroup == Index;
  }
  Table.AddRow({Dg, "-", "-", "-", "-", RaidType(Group.RaidLevel), GroupState,
                "N", FormatSize(Capacity), "dflt", "N", "N", "dflt",
                HasFree ? "Y" : "N", "N"});
  const uint32_t Spans = Group.SpanCount();
  const uint32_t SpanLevel =
      Group.RaidLevel >= 10 ? Group.RaidLevel / 10 : Group.RaidLevel;
  for (uint32_t Span = 0; Span < Spans; ++Span) {
    Table.AddRow({Dg, std::to_string(Span), "-", "-", "-", RaidType(SpanLevel),
                  GroupState, "N", FormatSize(Capacity / Spans), "dflt", "N",
                  "N", "dflt", HasFree ? "Y" : "N", "N"});
    for (uint32_t Row = 0; Row < Group.DrivesPerSpan; ++Row) {
      const auto *Drive =
          State.FindDriveById(Group.Members[Span * Group.DrivesPerSpan + Row]);
      Table.AddRow({Dg, std::to_string(Span), std::to_string(Row),
                    Drive->Address.Text(), std::to_string(Drive->DeviceId),
                    "DRIVE", DriveStateWord(Drive->State), "N",
                    FormatSize(Drive->SizeMb), "dflt", "N", "N", "dflt", "-",
                    "N"});
    }
  }
  for (uint32_t Id : Group.DedicatedSpares) {
    const auto *Drive = State.FindDriveById(Id);
    Table.AddRow({Dg, "-", "-", Drive->Address.Text(),
                  std::to_string(Drive->DeviceId), "DRIVE", "DHS", "-",
                  FormatSize(Drive->SizeMb), "dflt", "N", "N", "dflt", "-",
                  "N"});
  }
}

void IdentityLines(Report &Out, const ControllerIdentity &Id) {
  Out.Pair("Product Name", Id.ProductName);
  Out.Pair("Serial Number", Id.SerialNumber);
  Out.Pair("SAS Address", " " + Id.SasAddress);
  Out.Pair("PCI Address", PciAddress(Id));
  Out.Pair("FW Package Build", Id.FwPackageBuild);
  Out.Pair("BIOS Version", Id.BiosVersion);
  Out.Pair("FW Version", Id.FwVersion);
  Out.Pair("Current Personality", "RAID-Mode");
  Out.Pair("Vendor Id", Hex(Id.VendorId));
  Out.Pair("Device Id", Hex(Id.DeviceId));
  Out.Pair("SubVendor Id", Hex(Id.SubVendorId));
  Out.Pair("SubDevice Id", Hex(Id.SubDeviceId));
  Out.Pair("Host Interface", "PCI-E");
  Out.Pair("Device Interface", "SAS-12G");
  Out.Pair("Bus Number", std::to_string(Id.Bus));
  Out.Pair("Device Number", std::to_string(Id.Device));
  Out.Pair("Function Number", std::to_string(Id.Function));
}

}  // namespace

std::string StripSizeText(uint32_t StripKb) {
  if (StripKb == 1024) {
    return "1.0 MB";
  }
  if (StripKb > 1024 && StripKb % 1024 == 0) {
    return std::to_string(StripKb / 1024) + ".000 MB";
  }
  return std::to_string(StripKb) + " KB";
}

std::string CacheWord(const VirtualDrive &Volume) {
  std::string Word = Volume.Read == ReadPolicy::ReadAhead ? "R" : "NR";
  switch (Volume.Write) {
    case WritePolicy::WriteThrough: Word += "WT"; break;
    case WritePolicy::WriteBack: Word += "WB"; break;
    case WritePolicy::AlwaysWriteBack: Word += "AWB"; break;
  }
  Word += Volume.Io == IoPolicy::Cached ? "C" : "D";
  return Word;
}

std::string ShowControllerCount(const ToolInfo &Tool, size_t Count) {
  Report Out(Tool);
  Out.Header(std::nullopt, true, "None");
  Out.Line();
  Out.Pair("Controller Count", std::to_string(Count));
  Out.Line();
  return Out.Text();
}

std::string ShowController(const ToolInfo &Tool, uint32_t Controller,
                           const Adapter &State) {
  Report Out(Tool);
  Out.Line("Generating detailed summary of the adapter, it may take a while to complete.");
  Out.Line();
  Out.Header(Controller, true, "None");
  Out.Line();
  IdentityLines(Out, State.Identity());
  if (!State.Groups().empty()) {
    Out.Pair("Drive Groups", std::to_string(State.Groups().size()));
    Out.Line();
    Out.Section("TOPOLOGY");
    Out.Line();
    TextTable Topology({{"DG", true}, {"Arr"}, {"Row"}, {"EID:Slot"}, {"DID"},
                        {"Type"}, {"State"}, {"BT"}, {"Size", true}, {"PDC"},
                        {"PI"}, {"SED"}, {"DS3"}, {"FSpace"}, {"TR"}});
    for (uint32_t Index = 0; Index < State.Groups().size(); ++Index) {
      AddTopologyRows(Topology, State, Index);
    }
    Out.Table(Topology);
    Out.Line();
    Out.Lines(kTopologyLegend);
    Out.Line();
    Out.Pair("Virtual Drives", std::to_string(State.VolumeCount()));
    Out.Line();
    Out.Section("VD LIST");
    Out.Line();
    TextTable Volumes = VolumeTable();
    for (const auto &[Group, Volume] : State.VolumesByNumber()) {
      AddVolumeRow(Volumes, State, Group, *Volume);
    }
    Out.Table(Volumes);
    Out.Line();
    Out.Lines(kVolumeLegend);
    Out.Line();
  }
  if (!State.Drives().empty()) {
    Out.Pair("Physical Drives", std::to_string(State.Drives().size()));
    Out.Line();
    Out.Section("PD LIST");
    Out.Line();
    TextTable Drives = DriveTable();
    for (const auto &Drive : State.Drives()) {
      AddDriveRow(Drives, State, Drive);
    }
    Out.Table(Drives);
    Out.Line();
    Out.Lines(kDriveLegend);
    Out.Line();
  }
  return Out.Text();
}

std::string ShowFreeSpace(const ToolInfo &Tool, uint32_t Controller,
                          const Adapter &State) {
  Report Out(Tool);
  Out.Header(Controller, true, "None");
  Out.Line();
  Out.Line();
  Out.Section("FREE SPACE DETAILS");
  Out.Line();
  TextTable Table({{"ID", true}, {"DG", true}, {"AftrVD"}, {"Size", true}});
  uint32_t Id = 0;
  for (const auto &Segment : State.FreeSegments()) {
    Table.AddRow({std::to_string(Id++), std::to_string(Segment.DriveGroup),
                  Segment.AfterVd ? std::to_string(*Segment.AfterVd) : "-",
                  FormatSize(Segment.SizeMb)});
  }
  Out.Table(Table);
  Out.Line();
  return Out.Text();
}

std::string ShowVolume(const ToolInfo &Tool, uint32_t Controller,
                       const Adapter &State, uint32_t Number) {
  Report Out(Tool);
  uint32_t Group = 0;
  const auto *Volume = State.FindVolume(Number, &Group);
  if (Volume == nullptr) {
    Out.Header(Controller, false, "VD " + std::to_string(Number) + " doesn't exist");
    return Out.Text();
  }
  const auto &Dg = State.Groups()[Group];
  const std::string Path =
      "/c" + std::to_string(Controller) + "/v" + std::to_string(Number);
  Out.Header(Controller, true, "None");
  Out.Line();
  Out.Line();
  Out.Section(Path);
  Out.Line();
  TextTable Volumes = VolumeTable();
  AddVolumeRow(Volumes, State, Group, *Volume);
  Out.Table(Volumes);
  Out.Line();
  Out.Line("EID=Enclosure Device ID| VD=Virtual Drive| DG=Drive Group|Rec=Recovery");
  Out.Lines(kVolumeLegend);
  Out.Line();
  Out.Line();
  Out.Section("PDs for VD " + std::to_string(Number));
  Out.Line();
  TextTable Drives = DriveTable();
  for (uint32_t Id : Dg.Members) {
    AddDriveRow(Drives, State, *State.FindDriveById(Id));
  }
  Out.Table(Drives);
  Out.Line();
  Out.Lines(kDriveLegend);
  Out.Line();
  Out.Line();
  Out.Section("VD" + std::to_string(Number) + " Properties");
  Out.Pair("Strip Size", StripSizeText(Volume->StripKb));
  Out.Pair("Number of Blocks", std::to_string(Volume->SizeMb * 2048));
  Out.Pair("VD has Emulated PD", "No");
  Out.Pair("Span Depth", std::to_string(Dg.SpanCount()));
  Out.Pair("Number of Drives Per Span", std::to_string(Dg.DrivesPerSpan));
  static const char *const kWriteCache[] = {"WriteThrough", "WriteBack",
                                            "AlwaysWriteBack"};
  Out.Pair("Write Cache(initial setting)", kWriteCache[static_cast<int>(Volume->Write)]);
  static const char *const kDiskCache[] = {"Disabled", "Enabled",
                                           "Disk's Default"};
  Out.Pair("Disk Cache Policy", kDiskCache[static_cast<int>(Volume->DiskCache)]);
  Out.Pair("Encryption", "None");
  Out.Pair("Data Protection", "Disabled");
  Out.Pair("Active Operations", "None");
  Out.Pair("Exposed to OS", "Yes");
  Out.Pair("OS Drive Name", "N/A");
  Out.Pair("Emulation type", "default");
  Out.Pair("Is LD Ready for OS Requests", "Yes");
  char Naa[40];
  std::snprintf(Naa, sizeof(Naa), "600605b0%024x", Number);
  Out.Pair("SCSI NAA Id", Naa);
  Out.Line();
  return Out.Text();
}

}  // namespace sim::megaraid
