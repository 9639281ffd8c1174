// Building the controller's records from the rows of storcli's tables.
// Each function leaves the model consistent: a record is either fully
// linked in or freed again.
#pragma once

#include <Uefi.h>

#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLib.h"

namespace lsi {

// The array with drive-group number Id, or NULL.
[[nodiscard]] RAID_ARRAY *LsiFindArray(RAID_CONTROLLER *Controller, UINT32 Id);

// Every id a row carries (DG, DG/VD, EID:Slt, DID) is read exactly, as
// RaidLibReadId reads it; a row with an id that is not is left out of the
// model with a trace line, so no command can ever name it.

// An array from a TOPOLOGY row (DG, -, -, -, -, RAIDn, ..., size, unit),
// appended to ArrayList.
[[nodiscard]] EFI_STATUS LsiAddArray(RAID_CONTROLLER *Controller,
                                     const RAID_ROW *Row);

// A volume from a VD LIST row (DG/VD, TYPE, State, Access, Consist, Cache,
// Cac, sCC, size, unit, name), appended to its array's SegmentList. A row
// naming no known array is skipped.
[[nodiscard]] EFI_STATUS LsiAddVolume(RAID_CONTROLLER *Controller,
                                      const RAID_ROW *Row);

// A drive from a PD LIST row (EID:Slt, DID, State, DG, size, unit, Intf,
// Med, SED, PI, SeSz, Model), linked where its DG and State put it. *Drive
// is the new record, or NULL when the row was skipped (a DG of no known
// array). *Named is the array the table's previous row named (NULL at
// first) and becomes this row's: rows of one DG follow each other, so the
// array list is walked only when the DG changes.
[[nodiscard]] EFI_STATUS LsiAddDrive(RAID_CONTROLLER *Controller,
                                     const RAID_ROW *Row,
                                     RAID_PHYSICAL_DRIVE **Drive,
                                     RAID_ARRAY **Named);

// The volume state code of a VD LIST State word.
[[nodiscard]] UINT32 LsiVolumeStateCode(const CHAR16 *Word);

}  // namespace lsi
