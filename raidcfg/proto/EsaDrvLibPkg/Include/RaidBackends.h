// The one place where the core meets the vendor backends: each backend's
// binding operation, which writes its signature and its operations into a
// controller's RAID_OPERATIONS. Everything else of a backend stays inside
// its own namespace and target.
#pragma once

#include "RaidLib.h"

namespace lsi {
// Broadcom/LSI MegaRAID through storcli ("$lsi").
VOID LsiBindBackend(RAID_OPERATIONS *Operations);
}  // namespace lsi

namespace m2 {
// Marvell M.2 RAID through mvsetup or mnv_cli ("$m.2").
VOID M2BindBackend(RAID_OPERATIONS *Operations);
}  // namespace m2
namespace mchp {
// Microchip adapters through arcconf ("$arc").
VOID MchpBindBackend(RAID_OPERATIONS *Operations);
}  // namespace mchp
namespace rste {
// Intel RSTe/VROC SATA RAID through RCfgSata.efi ("rste").
VOID RsteBindBackend(RAID_OPERATIONS *Operations);
// Forgets the tool build and report layout chosen for the module's life;
// the module is being unloaded.
VOID RsteResetState();
}  // namespace rste
