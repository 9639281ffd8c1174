// The module's model and the expected model as comparable JSON.
#include "ModelView.h"

#include <Uefi.h>

#include <algorithm>
#include <list>
#include <string>

#include "sim/megaraid/Capacity.h"

namespace megaraid_test {
namespace {

using nlohmann::json;
using namespace sim::megaraid;

// A printed size ("558.406 GB") as the backend keeps it: thousandths, unit.
std::pair<uint64_t, uint32_t> PrintedSize(uint64_t SizeMb) {
  const std::string Printed = FormatSize(SizeMb);
  const auto Point = Printed.find('.');
  const auto Blank = Printed.find(' ');
  const uint64_t Figure = std::stoull(Printed.substr(0, Point)) * 1000 +
                          std::stoull(Printed.substr(Point + 1, Blank - Point - 1));
  const std::string Unit = Printed.substr(Blank + 1);
  return {Figure, Unit == "MB" ? 0u : Unit == "GB" ? 1u : Unit == "TB" ? 2u : 3u};
}

uint32_t MediaType(const PhysicalDrive &Drive) {
  const bool Ssd = Drive.Medium == DriveMedium::SSD;
  switch (Drive.Interface) {
    case DriveInterface::SATA: return Ssd ? 1 : 0;
    case DriveInterface::SAS: return Ssd ? 3 : 2;
    case DriveInterface::NVMe: return Ssd ? 4 : 5;
  }
  return 5;
}

std::string FirstWord(const std::string &Text) {
  return Text.substr(0, Text.find(' '));
}

struct Classified {
  uint32_t State;
  uint32_t Role;
  bool Spare;  // on SpareDriveList
};

// The backend's table of DG column and State column.
Classified Classify(const Adapter &State, const PhysicalDrive &Drive) {
  if (Drive.Foreign) {
    return {Drive.State == DriveState::UBad ? 9u : 7u, 0, false};
  }
  const auto Group = State.GroupOfDrive(Drive.DeviceId);
  if (!Group.has_value()) {
    switch (Drive.State) {
      case DriveState::UGood: return {6, 0, false};
      case DriveState::UBad: return {8, 0, false};
      case DriveState::Onln:
      case DriveState::JBOD: return {11, 0, false};
      case DriveState::GHS: return {13, 2, true};
      default: return {58, 0, false};
    }
  }
  switch (Drive.State) {
    case DriveState::Onln: return {14, 1, false};
    case DriveState::Rbld: return {0, 1, false};
    case DriveState::Offln: return {15, 1, false};
    case DriveState::DHS: return {12, 2, false};
    default: return {58, 4, false};
  }
}

uint32_t VolumeStateCode(VolumeState State) {
  switch (State) {
    case VolumeState::Optl: return 5;
    case VolumeState::Dgrd: return 4;
    case VolumeState::Pdgd: return 3;
    case VolumeState::OfLn: return 15;
  }
  return 58;
}

uint32_t StripCode(uint32_t StripKb) {
  static const uint32_t kKnown[] = {8, 16, 32, 64, 128, 256, 512, 1024, 2048};
  return std::count(std::begin(kKnown), std::end(kKnown), StripKb) ? StripKb : 64;
}

json ExpectedVolume(const Adapter &State, uint32_t Group,
                    const VirtualDrive &Volume) {
  const auto [Figure, Unit] = PrintedSize(Volume.SizeMb);
  return {{"Id", Volume.Number},
          {"Name", FirstWord(Volume.Name)},
          {"IsVolume", 1},
          {"SizeFigure", Figure},
          {"SizeUnit", Unit},
          {"State", VolumeStateCode(State.GroupState(Group))},
          {"StripeSize", StripCode(Volume.StripKb)},
          {"ReadPolicy", Volume.Read == ReadPolicy::ReadAhead ? 0 : 1},
          {"WritePolicy", static_cast<int>(Volume.Write)},
          {"IoPolicy", Volume.Io == IoPolicy::Cached ? 0 : 1},
          {"DiskCachePolicy", static_cast<int>(Volume.DiskCache)}};
}

// Segments of one group in the order the backend links them: volumes
// appended in VD LIST (number) order, then each free segment at the head
// ("-") or before the first record whose Id is its AftrVD number.
json ExpectedSegments(const Adapter &State, uint32_t Group,
                      uint64_t &FreeThousandthsMb, uint32_t &FreeCount) {
  std::list<json> Order;
  for (const auto &[Index, Volume] : State.VolumesByNumber()) {
    if (Index == Group) {
      Order.push_back(ExpectedVolume(State, Group, *Volume));
    }
  }
  uint32_t Id = 0;
  for (const auto &Segment : State.FreeSegments()) {
    const uint32_t SegmentId = Id++;
    if (Segment.DriveGroup != Group) {
      continue;
    }
    const auto [Figure, Unit] = PrintedSize(Segment.SizeMb);
    json Record = {{"Id", SegmentId},
                   {"Name", "FreeCapacity" + std::to_string(SegmentId)},
                   {"IsVolume", 0},
                   {"SizeFigure", Figure},
                   {"SizeUnit", Unit},
                   {"State", Segment.AfterVd.value_or(0xFFFFFFFFu)}};
    FreeThousandthsMb += Unit == 2 ? Figure * 1048576 : Unit == 1 ? Figure * 1024 : Figure;
    ++FreeCount;
    if (!Segment.AfterVd.has_value()) {
      Order.push_front(Record);
      continue;
    }
    auto Where = std::find_if(Order.begin(), Order.end(), [&](const json &R) {
      return R["Id"] == *Segment.AfterVd;
    });
    Order.insert(Where, Record);
  }
  return json(std::vector<json>(Order.begin(), Order.end()));
}

}  // namespace

json ExpectedModel(const Adapter &State) {
  json Table = json::array();
  json Physical = json::array();
  json Spares = json::array();
  uint32_t Unconfigured = 0;
  for (const auto &Drive : State.Drives()) {
    const Classified Kind = Classify(State, Drive);
    const auto Group = Drive.Foreign ? std::nullopt : State.GroupOfDrive(Drive.DeviceId);
    const auto [Figure, Unit] = PrintedSize(Drive.SizeMb);
    // MegaRAID's position is enclosure and slot; the other values stay 0.
    Table.push_back(
        {{"Id", Drive.DeviceId},
         {"Location", Drive.Address.Text()},
         {"Model", FirstWord(Drive.Model)},
         {"MediaType", MediaType(Drive)},
         {"State", Kind.State},
         {"SizeFigure", Figure},
         {"SizeUnit", Unit},
         {"Role", Kind.Role},
         {"Owner", Group ? "Array" + std::to_string(*Group) : "controller"},
         {"Position", {Drive.Address.Enclosure, Drive.Address.Slot, 0, 0, 0}}});
    if (Group) {
      continue;
    }
    if (Kind.Spare) {
      Spares.push_back(Drive.DeviceId);
    } else {
      Physical.push_back(Drive.DeviceId);
      ++Unconfigured;
    }
  }
  json Arrays = json::array();
  for (uint32_t Group = 0; Group < State.Groups().size(); ++Group) {
    const auto &Dg = State.Groups()[Group];
    json Drives = json::array();
    for (const auto &Drive : State.Drives()) {
      if (!Drive.Foreign && State.GroupOfDrive(Drive.DeviceId) == Group) {
        Drives.push_back(Drive.DeviceId);
      }
    }
    uint64_t Free = 0;
    uint32_t FreeCount = 0;
    json Segments = ExpectedSegments(State, Group, Free, FreeCount);
    uint32_t FreeUnit = 0;
    if (Free >= 102400) {
      Free /= 1024;
      FreeUnit = 1;
      if (Free >= 102400) {
        Free /= 1024;
        FreeUnit = 2;
      }
    }
    const auto [Figure, Unit] = PrintedSize(State.GroupCapacityMb(Group));
    Arrays.push_back(
        {{"Id", Group},
         {"Name", "Array" + std::to_string(Group)},
         {"RaidLevel", Dg.RaidLevel},
         {"SizeFigure", Figure},
         {"SizeUnit", Unit},
         {"FreeCapacity", Free},
         {"FreeCapacityUnit", FreeUnit},
         {"MemberDriveCount", Dg.Members.size()},
         {"DedicatedSpareCount", Drives.size() - Dg.Members.size()},
         {"VolumeCount", Dg.Volumes.size()},
         {"FreeSegmentCount", FreeCount},
         {"Drives", Drives},
         {"Segments", Segments}});
  }
  const auto &Id = State.Identity();
  return {{"ProductName", Id.ProductName},
          {"SerialNumber", Id.SerialNumber},
          {"FirmwareVersion", Id.FwPackageBuild},
          {"DiskDriveCount", State.Drives().size()},
          {"UnconfiguredDriveCount", Unconfigured},
          {"GlobalSpareCount", Spares.size()},
          {"DriveTable", Table},
          {"PhysicalDrives", Physical},
          {"SpareDrives", Spares},
          {"Arrays", Arrays}};
}

}  // namespace megaraid_test
