// The RAID model as JSON: the contract of raidcfg-host --dump-model, with
// the model's own field names (docs/model-dump.md).
#pragma once

#include <Uefi.h>
#include "RaidLib.h"

#include <nlohmann/json.hpp>

#include <string>

namespace host {

using ModelJson = nlohmann::ordered_json;

// The firmware's text for a status, as "%r" prints it ("Success").
std::string StatusName(EFI_STATUS Status);

ModelJson DumpDrive(const RAID_PHYSICAL_DRIVE &Drive);
ModelJson DumpArray(const RAID_ARRAY &Array);
ModelJson DumpCapability(const RAID_CAPABILITY *Capability);
ModelJson DumpController(const RAID_CONTROLLER &Controller);
// The whole model: status, errorCode, and every controller of Controllers.
ModelJson DumpModel(EFI_STATUS Status, UINT32 ErrorCode,
                    LIST_ENTRY &Controllers);

}  // namespace host
