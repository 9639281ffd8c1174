// An emulated server for the module's life-cycle tests: firmware, a boot
// volume holding pcidb.xml and raid.xml, the module's image handle on it,
// PCI functions, and the host protocols a test chooses to offer. Load() and
// Unload() go through the image entry and UnloadImage as a host would.
#pragma once

#include <Library/UefiBootServicesTableLib.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "CoreWorld.h"
#include "emu/Emulator.h"

namespace setup_test {

using core_test::ControllerBlock;
using core_test::PcidbXml;
using core_test::PciFunction;
using core_test::RaidXml;
using core_test::StorageElement;

// Which host protocols the server offers.
struct HostOffer {
  bool Setup = true;
  bool Gui = true;
  bool Qol = true;
};

inline constexpr UINT16 kMicrochip = 0x9005;

// The emulated server with the module's image handle on the boot volume
// and the GUI driver and management-controller protocols as offered.
class ModuleWorld : public ::testing::Test, public core_test::EmulatedServer {
 public:
  explicit ModuleWorld(HostOffer Offer = {});
  ~ModuleWorld() override;

  VOID RemoveFile(const std::string &Name);
  // Two Microchip adapters, both named in pcidb.xml and raid.xml.
  VOID BuildSmallServer();
  // An adapter pcidb.xml does not name: discovery fails with 0x0020000E.
  VOID BuildUnsupportedServer();
  // The texts of the error box's strings, as the English package holds them.
  VOID SetErrorBoxStrings();

  // _ModuleEntryPoint with the module's image handle; its status.
  EFI_STATUS Load();
  // UnloadImage; its status. The pool must be empty afterwards.
  EFI_STATUS Unload();

  // The module's own lines ("RAID: [" and "[...]<err>"), time stamps masked.
  std::vector<std::string> ModuleTrace() const;

  std::unique_ptr<emu::GuiDriver> Gui_;
  std::unique_ptr<emu::QolCommands> Qol_;
  EFI_HANDLE Image_ = nullptr;
  bool Loaded_ = false;
};

// Worlds whose host lacks one protocol.
class NoSetupWorld : public ModuleWorld {
 public:
  NoSetupWorld() : ModuleWorld(HostOffer{false, true, true}) {}
};
class NoGuiWorld : public ModuleWorld {
 public:
  NoGuiWorld() : ModuleWorld(HostOffer{true, false, true}) {}
};
class NoQolWorld : public ModuleWorld {
 public:
  NoQolWorld() : ModuleWorld(HostOffer{true, true, false}) {}
};

std::string Narrow(const std::u16string &Text);

}  // namespace setup_test
