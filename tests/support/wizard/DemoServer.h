// The demo server (scenarios/demo.json) as page 1 lists its adapters.
#pragma once

#include <Uefi.h>

namespace wizard_test {

// Its virtual MegaRAID adapters by radio option.
constexpr UINTN kEmptyMegaRaid = 0;       // eight unconfigured drives
constexpr UINTN kConfiguredMegaRaid = 1;  // two arrays, three virtual disks
constexpr UINTN kSasMegaRaid = 2;         // eight unconfigured SAS drives
// Its virtual SmartRAID (one RAID 5 array with two logical drives).
constexpr UINTN kSmartRaid = 3;
// Its on-board RSTe engine (six SATA disks, a mirror on two of them).
constexpr UINTN kDemoRste = 4;
// Its virtual Marvell M.2 adapter (two ready SATA M.2 drives).
constexpr UINTN kM2Adapter = 5;

}  // namespace wizard_test
