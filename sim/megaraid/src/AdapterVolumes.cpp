// Creating and deleting virtual drives on the virtual MegaRAID adapter: new
// drive groups from unconfigured good drives, more volumes in the free
// space of an existing group, and the group's end with its last volume.
#include <algorithm>
#include <set>

#include "sim/megaraid/MegaRaidAdapter.h"

namespace sim::megaraid {
namespace {

constexpr size_t kMaxVolumeNameLength = 15;

// Smallest drives per span of a spanned level's spans.
uint32_t MinDrivesPerSpan(uint32_t Level) {
  switch (Level) {
    case 10: return 2;
    case 50: return 3;
    case 60: return 3;
    default: return 1;
  }
}

}  // namespace

// Whether DriveCount drives make a group of this level; Span receives the
// drives per span (the whole count for unspanned levels).
Result Adapter::CheckGroupShape(uint32_t RaidLevel, uint32_t DriveCount,
                                std::optional<uint32_t> DrivesPerSpan,
                                uint32_t &Span) const {
  const Result BadCount = Result::Refused(
      "Invalid number of drives for RAID level " + std::to_string(RaidLevel));
  if (RaidLevel < 10) {
    Span = DriveCount;
    const uint32_t Minimum = RaidLevel == 0 ? 1 : RaidLevel == 1 ? 2 : 3;
    if (DriveCount < Minimum || DriveCount > Limits_.MaxDrivesPerSpan ||
        (RaidLevel == 1 && DriveCount % 2 != 0)) {
      return BadCount;
    }
    return Result::Success();
  }
  if (!DrivesPerSpan.has_value() || *DrivesPerSpan == 0) {
    return Result::Refused("Invalid pdperarray value for RAID level " +
                           std::to_string(RaidLevel));
  }
  Span = *DrivesPerSpan;
  if (DriveCount % Span != 0 || Span < MinDrivesPerSpan(RaidLevel) ||
      Span > Limits_.MaxDrivesPerSpan || (RaidLevel == 10 && Span % 2 != 0)) {
    return BadCount;
  }
  const uint32_t Spans = DriveCount / Span;
  if (Spans < 2 || Spans > Limits_.MaxSpans) {
    return BadCount;
  }
  return Result::Success();
}

// The device ids of a new group's drives: every drive must exist, be named
// once, be unconfigured good without a foreign configuration, and share
// one interface with the others.
Result Adapter::ResolveNewGroupDrives(const CreateVolumeRequest &Request,
                                      std::vector<uint32_t> &Members) const {
  std::optional<DriveInterface> Interface;
  for (const auto &Address : Request.Drives) {
    const auto *Drive = FindDrive(Address);
    if (std::count(Members.begin(), Members.end(), Drive->DeviceId)) {
      return Result::Refused("Duplicate drive " + Address.Text());
    }
    if (Drive->State != DriveState::UGood || Drive->Foreign) {
      return Result::Refused("resources already in use");
    }
    if (Interface.has_value() && *Interface != Drive->Interface) {
      return Result::Refused("Add VD Failed.", fw::kMixedInterfaces);
    }
    Interface = Drive->Interface;
    Members.push_back(Drive->DeviceId);
  }
  return Result::Success();
}

Result Adapter::CreateVolume(const CreateVolumeRequest &Request) {
  if (Request.Drives.empty()) {
    return Result::Refused("No drives specified");
  }
  for (const auto &Address : Request.Drives) {
    if (FindDrive(Address) == nullptr) {
      return Result::Refused("Add VD Failed.", fw::kDeviceNotFound);
    }
  }
  if (Request.Name.size() > kMaxVolumeNameLength) {
    return Result::Refused("Invalid VD name");
  }
  if (Request.StripKb.has_value() &&
      std::count(Limits_.StripSizesKb.begin(), Limits_.StripSizesKb.end(),
                 *Request.StripKb) == 0) {
    return Result::Refused("Invalid strip size");
  }
  if (VolumeCount() >= Limits_.MaxVolumes) {
    return Result::Refused("Add VD Failed.", fw::kMaxVolumesConfigured);
  }
  // All drives named are exactly an existing group's members: a volume in
  // that group's free space.
  const auto First = GroupOfDrive(FindDrive(Request.Drives.front())->DeviceId);
  if (First.has_value()) {
    const auto &Group = Groups_[*First];
    std::set<uint32_t> Named;
    for (const auto &Address : Request.Drives) {
      Named.insert(FindDrive(Address)->DeviceId);
    }
    const std::set<uint32_t> Members(Group.Members.begin(), Group.Members.end());
    if (Named != Members || Named.size() != Request.Drives.size()) {
      return Result::Refused("resources already in use");
    }
    if (Request.RaidLevel != Group.RaidLevel) {
      return Result::Refused("Add VD Failed.", fw::kWrongRaidLevel);
    }
    if (Group.Volumes.size() >= Limits_.MaxVolumesPerGroup) {
      return Result::Refused("Add VD Failed.", fw::kMaxVolumesConfigured);
    }
    return PlaceVolume(*First, Request);
  }
  std::vector<uint32_t> Members;
  if (Result Resolved = ResolveNewGroupDrives(Request, Members); !Resolved.Ok) {
    return Resolved;
  }
  uint32_t Span = 0;
  if (Result Shape = CheckGroupShape(Request.RaidLevel,
                                     static_cast<uint32_t>(Members.size()),
                                     Request.DrivesPerSpan, Span);
      !Shape.Ok) {
    return Shape;
  }
  DriveGroup Group;
  Group.RaidLevel = Request.RaidLevel;
  Group.DrivesPerSpan = Span;
  Group.Members = Members;
  Groups_.push_back(Group);
  const uint32_t Index = static_cast<uint32_t>(Groups_.size() - 1);
  Result Placed = PlaceVolume(Index, Request);
  if (!Placed.Ok) {
    Groups_.pop_back();
    return Placed;
  }
  for (uint32_t Id : Members) {
    MutableDriveById(Id)->State = DriveState::Onln;
  }
  return Placed;
}

// Puts the new volume at the start of the chosen free segment of a group:
// the one after volume AfterVd, or the group's first.
Result Adapter::PlaceVolume(uint32_t Group, const CreateVolumeRequest &Request) {
  std::optional<FreeSegment> Chosen;
  for (const auto &Segment : FreeSegments()) {
    if (Segment.DriveGroup != Group) {
      continue;
    }
    if (!Request.AfterVd.has_value() || Segment.AfterVd == Request.AfterVd) {
      Chosen = Segment;
      break;
    }
  }
  if (!Chosen.has_value()) {
    return Result::Refused(Request.AfterVd.has_value()
                               ? "No free space after VD " +
                                     std::to_string(*Request.AfterVd)
                               : "No free space in the drive group");
  }
  const uint64_t Size = Request.SizeMb.value_or(Chosen->SizeMb);
  if (Size == 0) {
    return Result::Refused("Invalid size");
  }
  if (Size > Chosen->SizeMb) {
    return Result::Refused("Add VD Failed.", fw::kDriveTooSmall);
  }
  VirtualDrive Volume;
  Volume.Number = LowestFreeVolumeNumber();
  Volume.Name = Request.Name;
  Volume.OffsetMb = Chosen->OffsetMb;
  Volume.SizeMb = Size;
  Volume.StripKb = Request.StripKb.value_or(Limits_.DefaultStripKb);
  Volume.Read = Request.Read.value_or(ReadPolicy::ReadAhead);
  Volume.Write = Request.Write.value_or(WritePolicy::WriteBack);
  Volume.Io = Request.Io.value_or(IoPolicy::Direct);
  Volume.DiskCache = Request.DiskCache;
  auto &Volumes = Groups_[Group].Volumes;
  auto Where = std::find_if(Volumes.begin(), Volumes.end(),
                            [&](const VirtualDrive &Existing) {
                              return Existing.OffsetMb > Volume.OffsetMb;
                            });
  Volumes.insert(Where, Volume);
  return Result::Success();
}

Result Adapter::DeleteVolume(uint32_t Number) {
  uint32_t Index = 0;
  if (FindVolume(Number, &Index) == nullptr) {
    return Result::Refused("VD " + std::to_string(Number) + " doesn't exist");
  }
  auto &Group = Groups_[Index];
  std::erase_if(Group.Volumes, [Number](const VirtualDrive &Volume) {
    return Volume.Number == Number;
  });
  if (!Group.Volumes.empty()) {
    return Result::Success();
  }
  for (uint32_t Id : Group.Members) {
    MutableDriveById(Id)->State = DriveState::UGood;
  }
  for (uint32_t Id : Group.DedicatedSpares) {
    // A spare shared with another group stays that group's spare.
    bool Shared = false;
    for (uint32_t Other = 0; Other < Groups_.size(); ++Other) {
      const auto &Spares = Groups_[Other].DedicatedSpares;
      Shared |= Other != Index &&
                std::count(Spares.begin(), Spares.end(), Id) != 0;
    }
    if (!Shared) {
      MutableDriveById(Id)->State = DriveState::UGood;
    }
  }
  Groups_.erase(Groups_.begin() + Index);
  return Result::Success();
}

}  // namespace sim::megaraid
