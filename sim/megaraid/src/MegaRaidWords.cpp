// The tool's words for drive states, interfaces, media and volume states,
// and the firmware's texts for the status numbers the adapter answers with.
#include "sim/common/WordTable.h"
#include "sim/megaraid/MegaRaidTypes.h"

namespace sim::megaraid {
namespace {

constexpr std::pair<DriveState, const char *> kDriveStateWords[] = {
    {DriveState::UGood, "UGood"},
    {DriveState::UBad, "UBad"},
    {DriveState::Onln, "Onln"},
    {DriveState::Offln, "Offln"},
    {DriveState::Rbld, "Rbld"},
    {DriveState::GHS, "GHS"},
    {DriveState::DHS, "DHS"},
    {DriveState::JBOD, "JBOD"},
    {DriveState::Msng, "Msng"},
};

constexpr std::pair<DriveInterface, const char *> kInterfaceWords[] = {
    {DriveInterface::SATA, "SATA"},
    {DriveInterface::SAS, "SAS"},
    {DriveInterface::NVMe, "NVMe"},
};

constexpr std::pair<DriveMedium, const char *> kMediumWords[] = {
    {DriveMedium::HDD, "HDD"},
    {DriveMedium::SSD, "SSD"},
};

constexpr std::pair<VolumeState, const char *> kVolumeStateWords[] = {
    {VolumeState::Optl, "Optl"},
    {VolumeState::Dgrd, "Dgrd"},
    {VolumeState::Pdgd, "Pdgd"},
    {VolumeState::OfLn, "OfLn"},
};

}  // namespace

const char *DriveStateWord(DriveState State) {
  return common::WordOfCode(kDriveStateWords, State, "-");
}

std::optional<DriveState> DriveStateFromWord(const std::string &Word) {
  return common::CodeOfWord(kDriveStateWords, Word);
}

const char *InterfaceWord(DriveInterface Interface) {
  return common::WordOfCode(kInterfaceWords, Interface, "-");
}

std::optional<DriveInterface> InterfaceFromWord(const std::string &Word) {
  return common::CodeOfWord(kInterfaceWords, Word);
}

const char *MediumWord(DriveMedium Medium) {
  return common::WordOfCode(kMediumWords, Medium, "-");
}

std::optional<DriveMedium> MediumFromWord(const std::string &Word) {
  return common::CodeOfWord(kMediumWords, Word);
}

const char *VolumeStateWord(VolumeState State) {
  return common::WordOfCode(kVolumeStateWords, State, "-");
}

std::string DriveAddress::Text() const {
  return std::to_string(Enclosure) + ":" + std::to_string(Slot);
}

uint32_t DriveGroup::SpanCount() const {
  if (DrivesPerSpan == 0 || Members.empty()) {
    return 1;
  }
  return static_cast<uint32_t>(Members.size()) / DrivesPerSpan;
}

namespace fw {

const char *StatusText(uint32_t Status) {
  switch (Status) {
    case kConfigResourceConflict:
      return "Some of the CFG resources conflict with each other or the current config";
    case kDeviceNotFound: return "Invalid device ID / select-timeout";
    case kDriveTooSmall: return "Drive is too small for requested operation";
    case kMaxVolumesConfigured: return "Maximum LDs are already configured";
    case kWrongRaidLevel: return "LD RAID level is wrong for requested operation";
    case kMixedInterfaces: return "Unable to use SATA(SAS) drive to replace SAS(SATA)";
    default: return "Unknown Error";
  }
}

}  // namespace fw
}  // namespace sim::megaraid
