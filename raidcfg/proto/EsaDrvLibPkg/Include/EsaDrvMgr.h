// The RAID service core's public interface: building and releasing the
// controller list, finding controllers, and the one dispatch through which
// every read and change of an adapter passes.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"
#include "RaidLibController.h"

// Discovers the adapters, reads pcidb.xml and raid.xml, binds a backend to
// each adapter and numbers the cards.
[[nodiscard]] EFI_STATUS InitializeRaid(UINT32 *ErrorCode);
// Frees the whole model; always EFI_SUCCESS.
EFI_STATUS FinalizeRaid(UINT32 *ErrorCode);

[[nodiscard]] EFI_STATUS GetControllerInfo(RAID_CONTROLLER *Controller,
                                           RAID_CONTROLLER **ControllerOut,
                                           UINT32 *ErrorCode);
// Forces the tool to run again before reading.
[[nodiscard]] EFI_STATUS RefreshControllerInfo(RAID_CONTROLLER *Controller,
                                               RAID_CONTROLLER **ControllerOut,
                                               UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS DeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS DeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS CreateVolume(RAID_VOLUME_PARAMETER *Parameter,
                                      UINTN PassThrough, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS SetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                               RAID_PHYSICAL_DRIVE *Drive,
                                               UINT32 TargetState,
                                               UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS SetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                                  UINT32 TargetState,
                                                  UINT32 *ErrorCode);

// Usable size of an array of Count drives at Level: the smallest drive
// times the number of data drives.
[[nodiscard]] UINT64 RaidLibGetCapacityByLevel(UINT8 Level,
                                               const UINT64 *DriveSizes,
                                               UINT32 Count);
