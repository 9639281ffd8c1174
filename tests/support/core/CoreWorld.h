// A small emulated server for the core's start-up tests: PCI functions, an
// optional SMBIOS table and slot inventory, a volume holding pcidb.xml and
// raid.xml, and the host's setup and XML protocols.
#pragma once

#include <Library/UefiBootServicesTableLib.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "EmulatedServer.h"
#include "emu/Emulator.h"
#include <nlohmann/json.hpp>

#include "sim/megaraid/Storcli.h"
#include "EsaDrvMgr.h"

namespace core_test {

// One storage element of pcidb.xml, attributes in their usual order.
std::string StorageElement(const std::string &Id, UINT16 Vendor,
                           UINT16 Device, UINT16 SubVendor, UINT16 SubDevice,
                           const std::string &Name);
std::string PcidbXml(const std::vector<std::string> &Elements);

// A raid.xml CONTROLLER block naming a family's tool and one RAID level.
std::string ControllerBlock(const std::string &Id, const std::string &Tool);
std::string RaidXml(const std::vector<std::string> &Blocks);

// The emulated server with the module's image handle in gImageHandle, as
// the image entry leaves it, an optional SMBIOS table and slot inventory.
class CoreWorld : public ::testing::Test, public EmulatedServer {
 public:
  CoreWorld();
  ~CoreWorld() override;

  // A PCI function; a MegaRAID one also gets an empty virtual adapter.
  VOID AddFunction(const PciFunction &Function);
  VOID SetSlots(const std::vector<emu::SmbiosSlot> &Slots);
  VOID SetSlotInventory(std::vector<emu::SlotInventoryEntry> Entries);

  // InitializeRaid with the module's globals set up as the image entry
  // leaves them.
  EFI_STATUS Initialize(UINT32 *ErrorCode);
  // Answers the module's storcli command lines from the virtual adapters.
  VOID BindStorcli();
  // FinalizeRaid; the pool must be empty afterwards.
  VOID Finalize();

  std::vector<RAID_CONTROLLER *> Controllers();
  // RefreshControllerInfo through the dispatch; expects success.
  RAID_CONTROLLER *Refresh(RAID_CONTROLLER *Controller);

  std::unique_ptr<emu::SlotInventory> Inventory_;
  std::unique_ptr<emu::SmbiosTable> Smbios_;
  // Every MegaRAID function gets an empty virtual adapter behind storcli,
  // so the backend's card search finds it as on a real server.
  std::vector<nlohmann::json> MegaRaidAdapters_;
  std::unique_ptr<sim::megaraid::Storcli> Storcli_;
  bool Finalized_ = false;
};

}  // namespace core_test
