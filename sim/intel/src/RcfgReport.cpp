// The tool's three reports. Every field the module reads stands at a fixed
// line offset from its block's header line; docs/intel-report-layout.md
// lists the offsets.
#include <cinttypes>
#include <cstdio>

#include "sim/common/Report.h"
#include "sim/intel/Rcfg.h"

namespace sim::intel {
namespace {

constexpr uint64_t kMiB = 1ULL << 20;
constexpr uint64_t kGiB = 1ULL << 30;

std::string Hex(uint64_t Value) {
  char Text[24];
  std::snprintf(Text, sizeof(Text), "%" PRIX64, Value);
  return Text;
}

const char *ProductLine(Variant Kind) {
  switch (Kind) {
    case Variant::VrocSata:
    case Variant::VrocSsata:
      return "Intel(R) VROC SATA Configuration Utility";
    default:
      return "Intel(R) RSTe SATA Configuration Utility";
  }
}

const char *DriverLine(Variant Kind) {
  switch (Kind) {
    case Variant::VrocSata:
      return "Intel VROC SATA EFI Driver Version";
    case Variant::VrocSsata:
      return "Intel VROC sSATA EFI Driver Version";
    default:
      return "Intel RSTe SATA EFI Driver Version";
  }
}

const char *StateWord(DiskState State) {
  switch (State) {
    case DiskState::NonRaid:
      return "(Non-RAID Disk)";
    case DiskState::Member:
      return "(Member Disk)";
    case DiskState::Spare:
      return "(Spare Disk)";
    case DiskState::Offline:
      return "(Offline Member)";
    case DiskState::Incompatible:
      return "(Incompatible Disk)";
    default:
      return "(Missing Disk)";
  }
}

std::string StripeWord(const Volume &Each) {
  return Each.StripeKb == 0 ? "N/A" : std::to_string(Each.StripeKb) + "KB";
}

void Header(common::Report &Out, const Engines &Server) {
  Variant Kind = Server.Empty() ? Variant::RsteSata : Server.All()[0].Kind;
  Out.Line(ProductLine(Kind));
  Out.Line("Version 5.5.0.1028");
  Out.Line("Copyright (C) 2003-2019 Intel Corporation. All rights reserved.");
  Out.Line();
}

// Array numbers run across the engines in report order.
template <typename Visit>
void ForEachArray(const Engines &Server, Visit Visitor) {
  size_t Number = 0;
  for (const Engine &Each : Server.All()) {
    for (const Array &Group : Each.Arrays) {
      Visitor(Each, Group, Number++);
    }
  }
}

uint64_t RawBlocks(const Engine &Owner, const Array &Group) {
  uint64_t Sum = 0;
  for (uint32_t Number : Group.Disks) {
    const Disk *Member = Engines::FindDisk(Owner, Number);
    Sum += Member ? Member->Blocks : 0;
  }
  return Sum;
}

void ArrayBlock(common::Report &Out, bool Vroc, const Engine &Owner,
                const Array &Group, size_t Number) {
  uint64_t Total = RawBlocks(Owner, Group) * kBlockBytes;
  uint64_t Free =
      Engines::FreePerDisk(Owner, Group) * Group.Disks.size() * kBlockBytes;
  Out.Line("Array " + std::to_string(Number) + ":");
  Out.KeyValue(" Name", ": ", "Array" + std::to_string(Number));
  if (Vroc) {
    Out.Line(" Size: TotalGB: " + std::to_string(Total / kGiB) +
             " FreeGB:" + std::to_string(Free / kGiB));
  } else {
    Out.Line(" Size: TotalMB: " + std::to_string(Total / kMiB) +
             " FreeMB:" + std::to_string(Free / kMiB));
  }
  Out.Line(" Disks: " + std::to_string(Group.Disks.size()) +
           " Volumes: " + std::to_string(Group.Volumes.size()));
  Out.Line();
}

void VolumeBlock(common::Report &Out, const Volume &Each, size_t Number,
                 size_t ArrayNumber, size_t Members) {
  Out.Line("Volume " + std::to_string(Number) + ":");
  Out.KeyValue(" Name", ": ", Each.Name);
  Out.Line(" RaidLevel:" + std::to_string(Each.Level) + " State:" + Each.Status +
           " Bootable:Yes StripeSize:" + StripeWord(Each));
  Out.Line(" NumBlocks: " + Hex(Each.Blocks));
  Out.Line(" Disks: " + std::to_string(Members) +
           " ArrayId:" + std::to_string(ArrayNumber));
  Out.KeyValue(" Block Size", ": ", "512");
  Out.Line();
}

void DiskBlock(common::Report &Out, bool Vroc, const Disk &Each,
               std::optional<size_t> ArrayNumber) {
  bool Missing = Each.State == DiskState::Missing;
  uint32_t Number = Missing ? kMissingNumber : Each.Number;
  Out.Line("Disk " + std::to_string(Each.Number) + ":");
  Out.KeyValue(" Model", ": ", Each.Model);
  Out.KeyValue(" Serial", ": ", Each.Serial);
  if (Vroc) {
    Out.Line(" RawBlks:" + Hex(Each.Blocks) + " UsableBlks:" + Hex(Each.Blocks));
  } else {
    Out.Line(" TotalBlks:" + Hex(Each.Blocks) + " Port:" + std::to_string(Each.Number));
  }
  Out.Line(" Id:" + Hex(Number) + " " + StateWord(Each.State));
  Out.KeyValue(" Type", ": ", "SATA SSD");
  Out.KeyValue(" Firmware", ": ", "SCV10121");
  Out.Line(std::string(" Usage:") + (ArrayNumber ? "Member" : "Free") +
           " ArrayId:" + (ArrayNumber ? Hex(*ArrayNumber) : Hex(kMissingNumber)));
  Out.KeyValue(" Block Size", ": ", "512");
  Out.Line();
}

// The array an engine's disk belongs to, numbered across the engines.
std::optional<size_t> ArrayOfDisk(const Engines &Server, const Engine &Owner,
                                  uint32_t Number) {
  std::optional<size_t> Found;
  ForEachArray(Server, [&](const Engine &Each, const Array &Group, size_t Id) {
    if (&Each != &Owner || Found) {
      return;
    }
    for (uint32_t Member : Group.Disks) {
      if (Member == Number) {
        Found = Id;
      }
    }
  });
  return Found;
}

}  // namespace

std::string HeaderReport(const Engines &Server) {
  common::Report Out;
  Header(Out, Server);
  return Out.Text();
}

bool VrocLayout(const Engines &Server) {
  return !Server.Empty() && Server.All()[0].Kind != Variant::RsteSata;
}

std::string VersionReport(const Engines &Server) {
  common::Report Out;
  Header(Out, Server);
  for (const Engine &Each : Server.All()) {
    Out.KeyValue(DriverLine(Each.Kind), ": ", Each.DriverVersion);
  }
  return Out.Text();
}

std::string InfoReport(const Engines &Server) {
  bool Vroc = VrocLayout(Server);
  common::Report Out;
  Header(Out, Server);
  size_t Disks = 0, Missing = 0, Arrays = 0, Volumes = 0;
  for (const Engine &Each : Server.All()) {
    for (const Disk &One : Each.Disks) {
      (One.State == DiskState::Missing ? Missing : Disks)++;
    }
    Arrays += Each.Arrays.size();
    for (const Array &Group : Each.Arrays) {
      Volumes += Group.Volumes.size();
    }
  }
  Out.Line("--- Controller Information ---");
  Out.KeyValue(" Total Physical Disks", ": ", std::to_string(Disks));
  Out.KeyValue(" Total Missing Disks", ": ", std::to_string(Missing));
  Out.KeyValue(" Total Arrays", ": ", std::to_string(Arrays));
  Out.KeyValue(" Total Volumes", ": ", std::to_string(Volumes));
  Out.Line();
  Out.Line("--- Array Information ---");
  ForEachArray(Server, [&](const Engine &Each, const Array &Group, size_t Id) {
    ArrayBlock(Out, Vroc, Each, Group, Id);
  });
  Out.Line("--- Volume Information ---");
  size_t VolumeNumber = 0;
  ForEachArray(Server, [&](const Engine &, const Array &Group, size_t Id) {
    for (const Volume &Each : Group.Volumes) {
      VolumeBlock(Out, Each, VolumeNumber++, Id, Group.Disks.size());
    }
  });
  Out.Line("--- Disk Information ---");
  for (const Engine &Each : Server.All()) {
    for (const Disk &One : Each.Disks) {
      DiskBlock(Out, Vroc, One, ArrayOfDisk(Server, Each, One.Number));
    }
  }
  return Out.Text();
}

std::string StatusReport(const Engines &Server) {
  bool Vroc = VrocLayout(Server);
  common::Report Out;
  Header(Out, Server);
  Out.Line("--- Volume Status ---");
  ForEachArray(Server, [&](const Engine &, const Array &Group, size_t) {
    for (const Volume &Each : Group.Volumes) {
      Out.KeyValue("Name", ": ", Each.Name);
      Out.KeyValue(" Raid Level", ": ", std::to_string(Each.Level));
      Out.KeyValue(" Size (MB)", ": ",
                   std::to_string(Each.Blocks * kBlockBytes / kMiB));
      Out.KeyValue(" Stripe Size", ": ", StripeWord(Each));
      Out.KeyValue(" Disks", ": ", std::to_string(Group.Disks.size()));
      Out.KeyValue(" Bootable", ": ", "Yes");
      if (Vroc) {
        Out.KeyValue(" Cache", ": ", "Off");
      }
      Out.KeyValue(" Status", ": ", Each.Status);
      Out.Line();
    }
  });
  return Out.Text();
}

}  // namespace sim::intel
