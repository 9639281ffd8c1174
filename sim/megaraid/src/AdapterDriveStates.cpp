// Drive state changes on the virtual MegaRAID adapter: JBOD, hot spares,
// foreign configurations, and a member's missing, online and offline states.
#include <algorithm>

#include "sim/megaraid/MegaRaidAdapter.h"

namespace sim::megaraid {
namespace {

constexpr uint32_t kGenericFailure = 255;

Result NotFound() {
  return Result::Refused("Drive not found", fw::kDeviceNotFound);
}

Result WrongState(const char *Message) {
  return Result::Refused(Message, kGenericFailure);
}

bool IsFreeGood(const PhysicalDrive &Drive) {
  return Drive.State == DriveState::UGood && !Drive.Foreign;
}

}  // namespace

Result Adapter::SetJbod(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (!Limits_.JbodEnabled) {
    return WrongState("JBOD is not enabled on the controller");
  }
  if (Drive->State == DriveState::JBOD) {
    return Result::Success();
  }
  if (!IsFreeGood(*Drive)) {
    return WrongState("Drive is not in a state to be made JBOD");
  }
  Drive->State = DriveState::JBOD;
  return Result::Success();
}

Result Adapter::DeleteJbod(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (Drive->State == DriveState::UGood) {
    return Result::Success();
  }
  if (Drive->State != DriveState::JBOD) {
    return WrongState("Drive is not a JBOD");
  }
  Drive->State = DriveState::UGood;
  return Result::Success();
}

Result Adapter::AddGlobalSpare(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (!IsFreeGood(*Drive)) {
    return WrongState("Drive is not unconfigured good");
  }
  Drive->State = DriveState::GHS;
  return Result::Success();
}

Result Adapter::AddDedicatedSpare(const DriveAddress &Address,
                                  const std::vector<uint32_t> &Groups) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (Groups.empty()) {
    return WrongState("No drive group given");
  }
  for (uint32_t Group : Groups) {
    if (Group >= Groups_.size()) {
      return WrongState("Drive group does not exist");
    }
  }
  if (!IsFreeGood(*Drive)) {
    return WrongState("Drive is not unconfigured good");
  }
  for (uint32_t Group : Groups) {
    if (Drive->SizeMb < SmallestMemberMb(Groups_[Group])) {
      return Result::Refused(fw::StatusText(fw::kDriveTooSmall),
                             fw::kDriveTooSmall);
    }
  }
  for (uint32_t Group : Groups) {
    Groups_[Group].DedicatedSpares.push_back(Drive->DeviceId);
  }
  Drive->State = DriveState::DHS;
  return Result::Success();
}

Result Adapter::DeleteSpare(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (Drive->State != DriveState::GHS && Drive->State != DriveState::DHS) {
    return WrongState("Drive is not a hot spare");
  }
  for (auto &Group : Groups_) {
    std::erase(Group.DedicatedSpares, Drive->DeviceId);
  }
  Drive->State = DriveState::UGood;
  return Result::Success();
}

Result Adapter::DeleteForeignConfig() {
  bool Found = false;
  for (auto &Drive : Drives_) {
    Found |= Drive.Foreign;
    Drive.Foreign = false;
  }
  return Found ? Result::Success()
               : Result::Refused("No foreign configuration found");
}

namespace {

bool IsMember(const std::vector<DriveGroup> &Groups, uint32_t DeviceId) {
  for (const auto &Group : Groups) {
    if (std::count(Group.Members.begin(), Group.Members.end(), DeviceId)) {
      return true;
    }
  }
  return false;
}

}  // namespace

Result Adapter::SetMissing(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (!IsMember(Groups_, Drive->DeviceId) || Drive->State == DriveState::Msng) {
    return WrongState("Drive is not an array member");
  }
  Drive->State = DriveState::Msng;
  return Result::Success();
}

Result Adapter::SetOnline(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (!IsMember(Groups_, Drive->DeviceId)) {
    return WrongState("Drive is not an array member");
  }
  Drive->State = DriveState::Onln;
  return Result::Success();
}

Result Adapter::SetOffline(const DriveAddress &Address) {
  auto *Drive = MutableDrive(Address);
  if (Drive == nullptr) {
    return NotFound();
  }
  if (!IsMember(Groups_, Drive->DeviceId) || Drive->State == DriveState::Msng) {
    return WrongState("Drive is not an online array member");
  }
  Drive->State = DriveState::Offln;
  return Result::Success();
}

}  // namespace sim::megaraid
