// Constants supplied with the product build (see docs/product-data.md).
#pragma once

#include <Uefi.h>

// The system maker's PCI subsystem vendor id: a Marvell SATA function
// carrying it is the maker's own on-board M.2 adapter and is listed first.
#ifndef RAIDCFG_SYSTEM_SUBVENDOR_ID
#define RAIDCFG_SYSTEM_SUBVENDOR_ID 0xFFFE
#endif

// The code name of the one Marvell M.2 board that needs a full driver
// reconnect after a change; it appears inside its profile's controller name.
#ifndef RAIDCFG_MARVELL_FULL_RECONNECT_BOARD
#define RAIDCFG_MARVELL_FULL_RECONNECT_BOARD u"BOSS-N1"
#endif

constexpr UINT16 kSystemSubVendorId = RAIDCFG_SYSTEM_SUBVENDOR_ID;
constexpr const CHAR16 *kMarvellFullReconnectBoard =
    RAIDCFG_MARVELL_FULL_RECONNECT_BOARD;
