// A virtual MegaRAID adapter: construction, consistency and the views the
// tool prints (group capacity and state, free segments, volume order).
#include "sim/megaraid/MegaRaidAdapter.h"

#include <algorithm>
#include <set>

#include "sim/megaraid/Capacity.h"

namespace sim::megaraid {

Adapter::Adapter(ControllerIdentity Identity, AdapterLimits Limits,
                 std::vector<PhysicalDrive> Drives,
                 std::vector<DriveGroup> Groups)
    : Identity_(std::move(Identity)),
      Limits_(std::move(Limits)),
      Drives_(std::move(Drives)),
      Groups_(std::move(Groups)) {
  SortDrives();
  for (auto &Group : Groups_) {
    std::sort(Group.Volumes.begin(), Group.Volumes.end(),
              [](const VirtualDrive &A, const VirtualDrive &B) {
                return A.OffsetMb < B.OffsetMb;
              });
  }
}

void Adapter::SortDrives() {
  std::sort(Drives_.begin(), Drives_.end(),
            [](const PhysicalDrive &A, const PhysicalDrive &B) {
              return A.Address < B.Address;
            });
}

namespace {

bool IsMemberState(DriveState State) {
  return State == DriveState::Onln || State == DriveState::Offln ||
         State == DriveState::Rbld || State == DriveState::Msng;
}

bool IsKnownLevel(uint32_t Level) {
  return Level == 0 || Level == 1 || Level == 5 || Level == 6 ||
         Level == 10 || Level == 50 || Level == 60;
}

}  // namespace

// Checks every rule the firmware keeps; returns the first one broken.
std::string Adapter::Validate() const {
  std::set<uint32_t> Ids;
  std::set<DriveAddress> Addresses;
  for (const auto &Drive : Drives_) {
    if (!Ids.insert(Drive.DeviceId).second) {
      return "drive id " + std::to_string(Drive.DeviceId) + " is used twice";
    }
    if (!Addresses.insert(Drive.Address).second) {
      return "drive " + Drive.Address.Text() + " is listed twice";
    }
    if (Drive.Foreign && Drive.State != DriveState::UGood &&
        Drive.State != DriveState::UBad) {
      return "foreign drive " + Drive.Address.Text() +
             " must be UGood or UBad";
    }
    const auto Group = GroupOfDrive(Drive.DeviceId);
    const bool Configured = IsMemberState(Drive.State) ||
                            Drive.State == DriveState::DHS;
    if (Configured != Group.has_value()) {
      return "drive " + Drive.Address.Text() + " state " +
             DriveStateWord(Drive.State) + " does not match its group";
    }
  }
  std::set<uint32_t> Used;
  std::set<uint32_t> VolumeNumbers;
  for (uint32_t Index = 0; Index < Groups_.size(); ++Index) {
    const auto &Group = Groups_[Index];
    const std::string Name = "drive group " + std::to_string(Index);
    if (!IsKnownLevel(Group.RaidLevel)) {
      return Name + " has an unknown RAID level";
    }
    uint32_t Span = 0;
    if (!CheckGroupShape(Group.RaidLevel,
                         static_cast<uint32_t>(Group.Members.size()),
                         Group.DrivesPerSpan, Span)
             .Ok ||
        Span != Group.DrivesPerSpan) {
      return Name + " has a drive count its RAID level does not allow";
    }
    for (uint32_t Id : Group.Members) {
      const auto *Drive = FindDriveById(Id);
      if (Drive == nullptr || !IsMemberState(Drive->State) ||
          !Used.insert(Id).second) {
        return Name + " member " + std::to_string(Id) + " is not a free drive";
      }
    }
    for (uint32_t Id : Group.DedicatedSpares) {
      const auto *Drive = FindDriveById(Id);
      if (Drive == nullptr || Drive->State != DriveState::DHS ||
          Used.count(Id) != 0) {
        return Name + " spare " + std::to_string(Id) + " is not a DHS drive";
      }
    }
    if (Group.Volumes.empty()) {
      return Name + " has no virtual drive";
    }
    uint64_t End = 0;
    for (const auto &Volume : Group.Volumes) {
      if (!VolumeNumbers.insert(Volume.Number).second) {
        return "virtual drive " + std::to_string(Volume.Number) +
               " is used twice";
      }
      if (Volume.SizeMb == 0 || Volume.OffsetMb < End) {
        return "virtual drive " + std::to_string(Volume.Number) +
               " overlaps another or is empty";
      }
      End = Volume.OffsetMb + Volume.SizeMb;
    }
    if (End > GroupCapacityMb(Index)) {
      return Name + " volumes exceed its capacity";
    }
  }
  return {};
}

const PhysicalDrive *Adapter::FindDrive(const DriveAddress &Address) const {
  for (const auto &Drive : Drives_) {
    if (Drive.Address == Address) {
      return &Drive;
    }
  }
  return nullptr;
}

const PhysicalDrive *Adapter::FindDriveById(uint32_t DeviceId) const {
  for (const auto &Drive : Drives_) {
    if (Drive.DeviceId == DeviceId) {
      return &Drive;
    }
  }
  return nullptr;
}

PhysicalDrive *Adapter::MutableDrive(const DriveAddress &Address) {
  return const_cast<PhysicalDrive *>(FindDrive(Address));
}

PhysicalDrive *Adapter::MutableDriveById(uint32_t DeviceId) {
  return const_cast<PhysicalDrive *>(FindDriveById(DeviceId));
}

std::optional<uint32_t> Adapter::GroupOfDrive(uint32_t DeviceId) const {
  for (uint32_t Index = 0; Index < Groups_.size(); ++Index) {
    const auto &Group = Groups_[Index];
    if (std::count(Group.Members.begin(), Group.Members.end(), DeviceId) ||
        std::count(Group.DedicatedSpares.begin(), Group.DedicatedSpares.end(),
                   DeviceId)) {
      return Index;
    }
  }
  return std::nullopt;
}

uint64_t Adapter::SmallestMemberMb(const DriveGroup &Group) const {
  uint64_t Smallest = 0;
  for (uint32_t Id : Group.Members) {
    const auto *Drive = FindDriveById(Id);
    const uint64_t Size = Drive != nullptr ? Drive->SizeMb : 0;
    if (Smallest == 0 || Size < Smallest) {
      Smallest = Size;
    }
  }
  return Smallest;
}

uint64_t Adapter::GroupCapacityMb(uint32_t Group) const {
  const auto &G = Groups_.at(Group);
  return megaraid::GroupCapacityMb(G.RaidLevel,
                                   static_cast<uint32_t>(G.Members.size()),
                                   G.SpanCount(), SmallestMemberMb(G));
}

// Derives the group's state from its members: how many of each span are
// not online, against what the RAID level tolerates.
VolumeState Adapter::GroupState(uint32_t Group) const {
  const auto &G = Groups_.at(Group);
  const uint32_t Spans = G.SpanCount();
  const uint32_t PerSpan = static_cast<uint32_t>(G.Members.size()) / Spans;
  const uint32_t Base = G.RaidLevel >= 10 ? G.RaidLevel / 10 : G.RaidLevel;
  VolumeState Worst = VolumeState::Optl;
  auto Rank = [](VolumeState State) {
    switch (State) {
      case VolumeState::Optl: return 0;
      case VolumeState::Pdgd: return 1;
      case VolumeState::Dgrd: return 2;
      case VolumeState::OfLn: return 3;
    }
    return 3;
  };
  for (uint32_t Span = 0; Span < Spans; ++Span) {
    uint32_t Failed = 0;
    for (uint32_t Row = 0; Row < PerSpan; ++Row) {
      const auto *Drive = FindDriveById(G.Members[Span * PerSpan + Row]);
      if (Drive == nullptr || Drive->State != DriveState::Onln) {
        ++Failed;
      }
    }
    VolumeState State = VolumeState::Optl;
    if (Failed > 0) {
      switch (Base) {
        case 0: State = VolumeState::OfLn; break;
        case 1:
          State = Failed >= PerSpan ? VolumeState::OfLn : VolumeState::Dgrd;
          break;
        case 5:
          State = Failed > 1 ? VolumeState::OfLn : VolumeState::Dgrd;
          break;
        default:  // RAID 6 spans
          State = Failed > 2   ? VolumeState::OfLn
                  : Failed > 1 ? VolumeState::Dgrd
                               : VolumeState::Pdgd;
          break;
      }
    }
    if (Rank(State) > Rank(Worst)) {
      Worst = State;
    }
  }
  return Worst;
}

std::vector<FreeSegment> Adapter::FreeSegments() const {
  std::vector<FreeSegment> Segments;
  for (uint32_t Index = 0; Index < Groups_.size(); ++Index) {
    const uint64_t Capacity = GroupCapacityMb(Index);
    uint64_t Cursor = 0;
    std::optional<uint32_t> Previous;
    for (const auto &Volume : Groups_[Index].Volumes) {
      if (Volume.OffsetMb > Cursor) {
        Segments.push_back({Index, Previous, Cursor, Volume.OffsetMb - Cursor});
      }
      Cursor = Volume.OffsetMb + Volume.SizeMb;
      Previous = Volume.Number;
    }
    if (Capacity > Cursor) {
      Segments.push_back({Index, Previous, Cursor, Capacity - Cursor});
    }
  }
  return Segments;
}

std::vector<std::pair<uint32_t, const VirtualDrive *>>
Adapter::VolumesByNumber() const {
  std::vector<std::pair<uint32_t, const VirtualDrive *>> Volumes;
  for (uint32_t Index = 0; Index < Groups_.size(); ++Index) {
    for (const auto &Volume : Groups_[Index].Volumes) {
      Volumes.emplace_back(Index, &Volume);
    }
  }
  std::sort(Volumes.begin(), Volumes.end(), [](const auto &A, const auto &B) {
    return A.second->Number < B.second->Number;
  });
  return Volumes;
}

const VirtualDrive *Adapter::FindVolume(uint32_t Number,
                                        uint32_t *Group) const {
  for (uint32_t Index = 0; Index < Groups_.size(); ++Index) {
    for (const auto &Volume : Groups_[Index].Volumes) {
      if (Volume.Number == Number) {
        if (Group != nullptr) {
          *Group = Index;
        }
        return &Volume;
      }
    }
  }
  return nullptr;
}

uint32_t Adapter::VolumeCount() const {
  uint32_t Count = 0;
  for (const auto &Group : Groups_) {
    Count += static_cast<uint32_t>(Group.Volumes.size());
  }
  return Count;
}

uint32_t Adapter::LowestFreeVolumeNumber() const {
  uint32_t Number = 0;
  while (FindVolume(Number) != nullptr) {
    ++Number;
  }
  return Number;
}

}  // namespace sim::megaraid
