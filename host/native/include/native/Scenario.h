// A simulated server: its PCI functions, SMBIOS table, the host's slot
// inventory, the files on the module's boot volume, the host protocols
// present and the virtual adapters. docs/scenario.md describes the JSON.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "emu/PciDevice.h"
#include "emu/SlotInventory.h"
#include "emu/SmbiosTable.h"
#include "sim/common/JsonFields.h"

namespace host {

// A scenario that cannot be used; the message names the offending key. The
// virtual adapter families refuse their keys with the same error.
using ScenarioError = sim::common::ScenarioError;

struct PciFunction {
  std::string Name;  // how adapters refer to it; "" when unnamed
  emu::PciLocation Location;
  emu::PciIdentity Identity;
};

// A file in the root of the module's volume.
struct VolumeFile {
  std::string Name;
  std::string Contents;
};

// Which host protocols the firmware offers.
struct HostProtocols {
  bool Setup = true;
  bool GuiDriver = true;
  bool XmlParser = true;
  bool ShellCommand = true;
  bool SlotInventory = true;
  bool QolCommands = true;
};

// A virtual adapter behind one PCI function; Description is the whole JSON
// object, read by the family's simulation.
struct AdapterDescription {
  std::string Family;
  std::size_t PciIndex = 0;  // into Scenario::Pci
  nlohmann::json Description;
};

struct Scenario {
  std::string Origin;  // the file it was read from, for messages; "" if none
  std::string Name;
  std::vector<PciFunction> Pci;
  emu::SmbiosDescription Smbios;
  std::vector<emu::SlotInventoryEntry> SlotInventory;
  std::vector<VolumeFile> Files;
  HostProtocols Protocols;
  std::vector<AdapterDescription> Adapters;
};

// Builds a scenario from its JSON. Files given by "path" are read relative
// to BaseDirectory. Throws ScenarioError.
Scenario ParseScenario(const nlohmann::json &Json,
                       const std::filesystem::path &BaseDirectory);
// Parses JSON text; Origin names it in error messages.
Scenario ParseScenarioText(std::string_view Text, std::string_view Origin,
                           const std::filesystem::path &BaseDirectory);
// Reads and parses a scenario file.
Scenario LoadScenarioFile(const std::filesystem::path &Path);
// The embedded demo server.
Scenario DemoScenario();

}  // namespace host
