// A virtual MegaRAID adapter: the state its firmware keeps (drives, drive
// groups, volumes, spares, foreign configurations, JBOD) and the changes it
// accepts or refuses, as the real firmware does.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sim/megaraid/MegaRaidTypes.h"

namespace sim::megaraid {

// What "add vd" asks for. Unset policies keep the adapter's defaults.
struct CreateVolumeRequest {
  uint32_t RaidLevel = 0;
  std::optional<uint64_t> SizeMb;  // none: all of the chosen free segment
  std::string Name;
  std::vector<DriveAddress> Drives;
  std::optional<uint32_t> DrivesPerSpan;
  DiskCachePolicy DiskCache = DiskCachePolicy::Default;
  std::optional<IoPolicy> Io;
  std::optional<WritePolicy> Write;
  std::optional<ReadPolicy> Read;
  std::optional<uint32_t> StripKb;
  std::optional<uint32_t> AfterVd;
};

class Adapter {
 public:
  Adapter() = default;
  Adapter(ControllerIdentity Identity, AdapterLimits Limits,
          std::vector<PhysicalDrive> Drives, std::vector<DriveGroup> Groups);

  const ControllerIdentity &Identity() const { return Identity_; }
  const AdapterLimits &Limits() const { return Limits_; }

  // Empty when the state is consistent, else what is wrong with it (drive
  // ids or addresses used twice, members that are not drives, states that
  // do not match the group a drive is in, volumes that do not fit).
  std::string Validate() const;

  // Drives in enclosure:slot order, the tool's listing order.
  const std::vector<PhysicalDrive> &Drives() const { return Drives_; }
  const std::vector<DriveGroup> &Groups() const { return Groups_; }
  const PhysicalDrive *FindDrive(const DriveAddress &Address) const;
  const PhysicalDrive *FindDriveById(uint32_t DeviceId) const;
  // The group a drive is a member or dedicated spare of.
  std::optional<uint32_t> GroupOfDrive(uint32_t DeviceId) const;

  uint64_t GroupCapacityMb(uint32_t Group) const;
  VolumeState GroupState(uint32_t Group) const;
  // Free extents of every group, group by group, in address order.
  std::vector<FreeSegment> FreeSegments() const;
  // Volumes in target id order, each with its group number.
  std::vector<std::pair<uint32_t, const VirtualDrive *>> VolumesByNumber() const;
  const VirtualDrive *FindVolume(uint32_t Number, uint32_t *Group = nullptr) const;
  uint32_t VolumeCount() const;

  Result CreateVolume(const CreateVolumeRequest &Request);
  // Deleting a group's last volume deletes the group: its members and
  // dedicated spares return to unconfigured good.
  Result DeleteVolume(uint32_t Number);
  Result DeleteForeignConfig();
  Result SetJbod(const DriveAddress &Address);
  Result DeleteJbod(const DriveAddress &Address);
  Result AddGlobalSpare(const DriveAddress &Address);
  Result AddDedicatedSpare(const DriveAddress &Address,
                           const std::vector<uint32_t> &Groups);
  Result DeleteSpare(const DriveAddress &Address);
  Result SetMissing(const DriveAddress &Address);
  Result SetOnline(const DriveAddress &Address);
  Result SetOffline(const DriveAddress &Address);

 private:
  PhysicalDrive *MutableDrive(const DriveAddress &Address);
  PhysicalDrive *MutableDriveById(uint32_t DeviceId);
  Result ResolveNewGroupDrives(const CreateVolumeRequest &Request,
                               std::vector<uint32_t> &Members) const;
  Result CheckGroupShape(uint32_t RaidLevel, uint32_t DriveCount,
                         std::optional<uint32_t> DrivesPerSpan,
                         uint32_t &Span) const;
  Result PlaceVolume(uint32_t Group, const CreateVolumeRequest &Request);
  uint32_t LowestFreeVolumeNumber() const;
  uint64_t SmallestMemberMb(const DriveGroup &Group) const;
  void SortDrives();

  ControllerIdentity Identity_;
  AdapterLimits Limits_;
  std::vector<PhysicalDrive> Drives_;
  std::vector<DriveGroup> Groups_;
};

}  // namespace sim::megaraid
