// The wizard's view of the RAID model: the calls through which pages read
// and change the configuration, the record collectors tables are built
// from, the queue of planned volumes, and the conversions between the
// model's codes and the words shown on screen.
//
// The per-controller calls work on gCurrentRaidController, which the
// wizard sets before it calls them.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

// The controller the operator selected; NULL until the wizard sets it.
extern RAID_CONTROLLER *gCurrentRaidController;

// Most arrays the layer collects when it lists them itself.
#define RAID_SERVICE_MAX_ARRAYS 128

// ---- Collectors ---------------------------------------------------------------
// Each fills Out with at most Max record pointers (or copies) in list order
// and returns how many it wrote; a NULL source or an empty list gives 0.

[[nodiscard]] UINT32 RaidCollectLevels(const RAID_CAPABILITY *Capability,
                                       RAID_LEVEL_CAP **Out, UINT32 Max);
[[nodiscard]] UINT32 RaidCollectReadPolicies(const RAID_CAPABILITY *Capability,
                                             RAID_POLICY_ENTRY **Out,
                                             UINT32 Max);
[[nodiscard]] UINT32 RaidCollectWritePolicies(const RAID_CAPABILITY *Capability,
                                              RAID_POLICY_ENTRY **Out,
                                              UINT32 Max);
[[nodiscard]] UINT32 RaidCollectIoPolicies(const RAID_CAPABILITY *Capability,
                                           RAID_POLICY_ENTRY **Out, UINT32 Max);
[[nodiscard]] UINT32 RaidCollectDiskCachePolicies(
    const RAID_CAPABILITY *Capability, RAID_POLICY_ENTRY **Out, UINT32 Max);
[[nodiscard]] UINT32 RaidCollectStripeSizes(const RAID_CAPABILITY *Capability,
                                            RAID_POLICY_ENTRY **Out,
                                            UINT32 Max);
[[nodiscard]] UINT32 RaidCollectArrays(const RAID_CONTROLLER *Controller,
                                       RAID_ARRAY **Out, UINT32 Max);
[[nodiscard]] UINT32 RaidCollectArrayDrives(const RAID_ARRAY *Array,
                                            RAID_PHYSICAL_DRIVE **Out,
                                            UINT32 Max);
// Copies each drive record whole; the copies share the drives' strings.
[[nodiscard]] UINT32 RaidCopyArrayDrives(const RAID_ARRAY *Array,
                                         RAID_PHYSICAL_DRIVE *Out, UINT32 Max);
// SegmentList entries with IsVolume 1.
[[nodiscard]] UINT32 RaidCollectVolumes(const RAID_ARRAY *Array,
                                        RAID_VOLUME **Out, UINT32 Max);
// SegmentList entries with IsVolume 0.
[[nodiscard]] UINT32 RaidCollectFreeSegments(const RAID_ARRAY *Array,
                                             RAID_VOLUME **Out, UINT32 Max);

// ---- Operations ---------------------------------------------------------------

// Runs adapter discovery. A model left by an earlier run (a failed one may
// leave controllers behind) is released first, so a retry cannot leak it.
[[nodiscard]] EFI_STATUS InitializeRaidService(UINT32 *ErrorCode);
// *Head = gControllerList; returns the number of controllers in it.
UINT32 GetRaidControllerList(LIST_ENTRY **Head);
// The current controller's level record for Level, or NULL (traced).
[[nodiscard]] RAID_LEVEL_CAP *GetControllerRaidLeveCapPointer(UINT32 Level);
// Reads the information of the controller Id of the list. No such
// controller: EFI_SUCCESS with nothing done.
[[nodiscard]] EFI_STATUS GetRaidControllerInfo(LIST_ENTRY *Head, UINT32 Id,
                                               RAID_CONTROLLER **Controller,
                                               UINT32 *ErrorCode);
// The same, with the tool run again.
[[nodiscard]] EFI_STATUS RefreshRaidControllerInfo(LIST_ENTRY *Head, UINT32 Id,
                                                   RAID_CONTROLLER **Controller,
                                                   UINT32 *ErrorCode);
// Entry DriveIndex of the controller's DriveTable, or NULL beyond its
// DiskDriveCount entries (or without a controller or table).
[[nodiscard]] RAID_PHYSICAL_DRIVE *RaidDriveAtIndex(RAID_CONTROLLER *Controller,
                                                    UINT32 DriveIndex);
// Changes entry DriveIndex of the current controller's DriveTable to State.
[[nodiscard]] EFI_STATUS SetRaidPhysicalDriveState(UINT32 DriveIndex,
                                                   UINT32 Unused, UINT32 State,
                                                   UINT32 *ErrorCode);
// Changes every eligible drive of the controller Id of the list. No such
// controller: EFI_SUCCESS with nothing done.
[[nodiscard]] EFI_STATUS SetAllRaidPhysicalDriveState(LIST_ENTRY *Head,
                                                      UINT32 Id, UINT32 State,
                                                      UINT32 *ErrorCode);
// Deletes the current controller's array ArrayId; EFI_SUCCESS with nothing
// done when there is none.
[[nodiscard]] EFI_STATUS DeleteRaidArray(UINT32 ArrayId, UINT32 Unused,
                                         UINT32 *ErrorCode);
// Deletes volume VolumeId of array ArrayId; a free segment with that Id is
// not a volume. EFI_SUCCESS with nothing done when either is missing.
[[nodiscard]] EFI_STATUS DeleteRaidVolume(UINT32 ArrayId, UINT32 Unused,
                                          UINT32 VolumeId, UINT32 *ErrorCode);
// Creates one planned volume.
[[nodiscard]] EFI_STATUS CreateRaidVolume(RAID_VOLUME_PARAMETER *Parameter,
                                          UINTN PassThrough, UINT32 *ErrorCode);
// The volumes of the controller's first 128 arrays.
[[nodiscard]] UINT32 GetVolumeCount(const RAID_CONTROLLER *Controller);

// ---- Planned volumes ------------------------------------------------------------

// Frees *Parameter with its name and drive lists and sets it to NULL.
VOID FreeVolumeParameter(RAID_VOLUME_PARAMETER **Parameter);
// Appends Parameter at the tail of the queue.
VOID RaidEnqueueVolumeParameter(RAID_VOLUME_PARAMETER *Parameter);
// Unlinks Parameter from the queue and frees it; ignored when not queued.
VOID RaidDequeueVolumeParameter(RAID_VOLUME_PARAMETER *Parameter);
// The first queued record, or NULL.
[[nodiscard]] RAID_VOLUME_PARAMETER *RaidVolumeParameterQueue();
// Frees every queued record.
VOID RaidFreeVolumeParameterQueue();

// ---- Words and codes -------------------------------------------------------------
// Word to code compares the whole word and gives the list's "other" code for
// any other word (or NULL); code to word gives "N/A" for an unknown code.

[[nodiscard]] UINT32 RaidStripeSizeCode(const CHAR16 *Word);
[[nodiscard]] const CHAR16 *RaidStripeSizeWord(UINT32 Code);
[[nodiscard]] UINT32 RaidReadPolicyCode(const CHAR16 *Word);
[[nodiscard]] const CHAR16 *RaidReadPolicyWord(UINT32 Code);
[[nodiscard]] UINT32 RaidWritePolicyCode(const CHAR16 *Word);
[[nodiscard]] const CHAR16 *RaidWritePolicyWord(UINT32 Code);
[[nodiscard]] UINT32 RaidIoPolicyCode(const CHAR16 *Word);
[[nodiscard]] const CHAR16 *RaidIoPolicyWord(UINT32 Code);
[[nodiscard]] UINT32 RaidDiskCachePolicyCode(const CHAR16 *Word);
[[nodiscard]] const CHAR16 *RaidDiskCachePolicyWord(UINT32 Code);

// What RaidLevelNumber gives for a word that names no level.
#define RAID_LEVEL_NONE 0xFFFFFFFFU
// "RAID 5" -> 5.
[[nodiscard]] UINT32 RaidLevelNumber(const CHAR16 *Word);
// The display text of a drive or volume state code.
[[nodiscard]] const CHAR16 *GetStateText(UINT32 State);

// ---- Size texts --------------------------------------------------------------------

// Writes "%ld GB" for a size given as figure, fraction and unit code (MB,
// GB, TB) into Buffer of BufferSize bytes; another unit writes nothing.
// Returns the characters written.
UINTN RaidFormatSizeText(CHAR16 *Buffer, UINTN BufferSize, UINT64 Figure,
                         UINT64 Fraction, UINT32 Unit);
// Appends " (%ld GB free)" the same way; " (0 GB free)" for figure and
// fraction 0.
VOID RaidAppendFreeSizeText(CHAR16 *Buffer, UINTN BufferSize, UINT64 Figure,
                            UINT64 Fraction, UINT32 Unit);
// Text after its leading blanks.
[[nodiscard]] const CHAR16 *RaidSkipLeadingBlanks(const CHAR16 *Text);
