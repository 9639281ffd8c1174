// arcconf reports for the backend tests, written with "\n" line ends (the
// world adds the CR): the pieces of a getconfig report, so that each test
// builds the layout it examines, and "list" reports.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mchp_test {

// "   <Key><blanks>: <Value>" with the key padded so the colon stands in
// column 46, indented by Indent blanks.
std::string KeyLine(int Indent, const std::string &Key,
                    const std::string &Value);

// The controller section with its three keys.
std::string ControllerSection(const std::string &Model,
                              const std::string &Serial,
                              const std::string &Firmware);
// "Array Information" heading and one array block each.
std::string ArrayHeading();
std::string ArrayBlock(uint32_t Number, const std::string &Total,
                       const std::string &Unused, uint32_t RaidLevel);
// "Logical device information" heading and one logical device block each.
std::string VolumeHeading();
std::string VolumeBlock(uint32_t Number, int Array, const std::string &Status,
                        const std::string &Size, const std::string &Name);

// One hard drive's block, with the lines in the reader's order.
struct DriveLines {
  uint32_t Device = 0;
  std::string State = "Ready";
  int Array = -1;  // the "Array" line, none below 0
  std::string Location = "Enclosure 0, Slot 0(Connector 0:CN0)";
  std::string Model = "ST1200MM0009";
  std::string Size = "1143455 MB";
  std::string Interface = "SAS 12.0 Gb/s";
  bool Ssd = false;
  std::vector<std::string> Configuration = {"Unassigned"};
};
std::string DriveBlock(const DriveLines &Drive);
std::string PhysicalHeading();
std::string Channel(uint32_t Number);
std::string Ending();

// A whole report: controller, the arrays, volumes and drive blocks given.
std::string Getconfig(const std::string &Arrays, const std::string &Volumes,
                      const std::string &Drives);

// A "list" report in the UEFI tool's layout: one row per (number, slot).
std::string ListReport(const std::vector<std::pair<uint32_t, uint32_t>> &Rows);

}  // namespace mchp_test
