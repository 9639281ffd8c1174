// An emulated server whose Marvell M.2 functions are backed by virtual M.2
// adapters behind mvsetup.efi and mnv_cli.efi; the module's core is started
// on it and every command line it runs is recorded.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CoreWorld.h"
#include "sim/marvell/Mvcli.h"

namespace marvell_test {

using core_test::PciFunction;

constexpr UINT16 kMarvell = 0x1B4B;

// A Marvell SATA AHCI function (the 88SE9230) at Bus.
PciFunction M2At(UINT8 Bus);

class MarvellWorld : public core_test::CoreWorld {
 public:
  ~MarvellWorld() override;

  // An M.2 function at Bus whose virtual adapter holds Content (the
  // docs/scenario.md adapter object) and whose profile names Tool.
  VOID AddAdapter(UINT8 Bus, const nlohmann::json &Content,
                  const std::string &Tool = "mvsetup.efi");
  // The profile's CONTROLLER ID for mvsetup.efi ("M.2" unless a test names
  // a board in it); other tools' profiles add the tool's name.
  std::string ProfileName_ = "M.2";
  // Writes pcidb.xml and raid.xml, runs InitializeRaid and installs the
  // recording shell handler; fails the test when the core does not start.
  VOID Start();

  RAID_CONTROLLER *ControllerAt(UINT8 Bus);
  nlohmann::json StateAt(UINT8 Bus) const;
  // Refreshes and compares the module's model with the adapter's state.
  VOID ExpectModelMatches(UINT8 Bus);

  std::vector<std::string> Commands_;
  VOID ClearCommands() { Commands_.clear(); }
  sim::marvell::Mvcli Tool_;

 private:
  // Per function: its bus and the tool its profile names.
  std::vector<std::pair<UINT8, std::string>> Functions_;
};

// One adapter whose changes a test follows: the core started on it, its
// refreshed controller and the adapter's state before the change.
class OneM2World : public MarvellWorld {
 public:
  VOID StartWith(const nlohmann::json &Content,
                 const std::string &Tool = "mvsetup.efi");

  static constexpr UINT8 kBus = 0x02;
  RAID_CONTROLLER *Controller = nullptr;
  nlohmann::json Before;
};

// The model the module should read from an adapter's state, in the form of
// core_test::ModelJson.
nlohmann::json ExpectedModel(const nlohmann::json &State);

// Two ready SATA drives; the same with a RAID 1 volume, drive 1 rebuilding.
nlohmann::json TwoReadyDrives();
nlohmann::json Mirrored();

}  // namespace marvell_test
