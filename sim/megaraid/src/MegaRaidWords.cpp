// The tool's words for drive states, interfaces, media and volume states,
// and the firmware's texts for the status numbers the adapter answers with.
#include <array>
#include <utility>

#include "sim/megaraid/MegaRaidTypes.h"

namespace sim::megaraid {
namespace {

constexpr std::array<std::pair<DriveState, const char *>, 9> kDriveStateWords = {{
    {DriveState::UGood, "UGood"},
    {DriveState::UBad, "UBad"},
    {DriveState::Onln, "Onln"},
    {DriveState::Offln, "Offln"},
    {DriveState::Rbld, "Rbld"},
    {DriveState::GHS, "GHS"},
    {DriveState::DHS, "DHS"},
    {DriveState::JBOD, "JBOD"},
    {DriveState::Msng, "Msng"},
}};

}  // namespace

const char *DriveStateWord(DriveState State) {
  for (const auto &[Code, Word] : kDriveStateWords) {
    if (Code == State) {
      return Word;
    }
  }
  return "-";
}

std::optional<DriveState> DriveStateFromWord(const std::string &Word) {
  for (const auto &[Code, Text] : kDriveStateWords) {
    if (Word == Text) {
      return Code;
    }
  }
  return std::nullopt;
}

const char *InterfaceWord(DriveInterface Interface) {
  switch (Interface) {
    case DriveInterface::SATA: return "SATA";
    case DriveInterface::SAS: return "SAS";
    case DriveInterface::NVMe: return "NVMe";
  }
  return "-";
}

std::optional<DriveInterface> InterfaceFromWord(const std::string &Word) {
  if (Word == "SATA") return DriveInterface::SATA;
  if (Word == "SAS") return DriveInterface::SAS;
  if (Word == "NVMe") return DriveInterface::NVMe;
  return std::nullopt;
}

const char *MediumWord(DriveMedium Medium) {
  return Medium == DriveMedium::SSD ? "SSD" : "HDD";
}

std::optional<DriveMedium> MediumFromWord(const std::string &Word) {
  if (Word == "HDD") return DriveMedium::HDD;
  if (Word == "SSD") return DriveMedium::SSD;
  return std::nullopt;
}

const char *VolumeStateWord(VolumeState State) {
  switch (State) {
    case VolumeState::Optl: return "Optl";
    case VolumeState::Dgrd: return "Dgrd";
    case VolumeState::Pdgd: return "Pdgd";
    case VolumeState::OfLn: return "OfLn";
  }
  return "-";
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
