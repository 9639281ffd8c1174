// The demo server (scenarios/demo.json) as page 1 lists its adapters.
#pragma once

#include <Uefi.h>

namespace wizard_test {

// Its virtual MegaRAID adapters by radio option.
constexpr UINTN kEmptyMegaRaid = 0;       // eight unconfigured drives
constexpr UINTN kConfiguredMegaRaid = 1;  // two arrays, three virtual disks
constexpr UINTN kSasMegaRaid = 2;         // eight unconfigured SAS drives
// Its virtual Marvell M.2 adapter (two ready SATA M.2 drives).
constexpr UINTN kM2Adapter = 5;

}  // namespace wizard_test
