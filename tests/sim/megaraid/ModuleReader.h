// A reader of storcli output that follows the RAID module's reading rules
// to the letter (lines cut at "\n" with empty ones skipped so a blank line
// is "\r"; keys matched as prefixes; tables found by fixed line offsets;
// words split at blanks), so tests can check that what the module reads is
// exactly the adapter's state.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim::megaraid::test {

std::vector<std::string> ModuleLines(const std::string &Output);
std::vector<std::string> Words(const std::string &Line);
// The text behind "=" with blanks and line ends stripped.
std::string StrippedValue(const std::string &Line);

struct ReadArray {
  std::string Dg, Type, Size, Unit;
};
struct ReadVolume {
  std::string DgVd, State, Size, Unit, Name;
};
struct ReadDrive {
  std::string Location, Did, State, Dg, Size, Unit, Interface, Medium, Model;
};
struct ReadController {
  std::string Status, ProductName, SerialNumber, FwPackageBuild;
  std::vector<ReadArray> Arrays;
  std::vector<ReadVolume> Volumes;
  std::vector<ReadDrive> Drives;
};
struct ReadSegment {
  std::string Id, Dg, AfterVd, Size, Unit;
};

ReadController ReadControllerShow(const std::string &Output);
std::vector<ReadSegment> ReadFreeSpace(const std::string &Output);
uint32_t ReadControllerCount(const std::string &Output);
std::optional<std::array<uint32_t, 3>> ReadBusDeviceFunction(const std::string &Output);
// The module's verdict code of a volume command (0, 0x201000 | n, 0x20100e).
uint32_t ReadErrorCode(const std::string &Output);
// The module's verdict of a drive command: 1 success, 0 failure.
uint32_t ReadActionStatus(const std::string &Output);

}  // namespace sim::megaraid::test
