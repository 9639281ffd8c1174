// Building a controller's model from a tool's output, the same way for every
// backend: each record comes fully formed (its strings and blocks allocated)
// and linked with its counts, or not at all; the drive table never takes
// more entries than it was made for; a drive moves between lists with its
// counts.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

// ---- Starting afresh --------------------------------------------------------

// Frees the controller's arrays and drives (those held by the drive table
// alone too) and zeroes its counts, then gives it an empty drive table. EFI_OUT_OF_RESOURCES when not even that could be
// allocated.
[[nodiscard]] EFI_STATUS RaidLibResetControllerModel(
    RAID_CONTROLLER *Controller);

// ---- New records --------------------------------------------------------------

// An array numbered Id, named "Array%u", with empty lists and a zeroed Extra
// block of ExtraSize bytes, appended to the controller's ArrayList. NULL
// when the pool is exhausted (nothing is left allocated).
[[nodiscard]] RAID_ARRAY *RaidLibAddArray(RAID_CONTROLLER *Controller,
                                          UINT32 Id, UINTN ExtraSize);
// The same with a copy of Name in place of "Array%u", for a tool whose
// arrays the module names itself in another way.
[[nodiscard]] RAID_ARRAY *RaidLibAddNamedArray(RAID_CONTROLLER *Controller,
                                               UINT32 Id, const CHAR16 *Name,
                                               UINTN ExtraSize);

// A volume numbered Id with a copy of Name (an empty name for NULL) and a
// zeroed Extra block, appended to the array's SegmentList; VolumeCount is
// raised. NULL when the pool is exhausted.
[[nodiscard]] RAID_VOLUME *RaidLibAddVolume(RAID_ARRAY *Array, UINT32 Id,
                                            const CHAR16 *Name,
                                            UINTN ExtraSize);

// A free segment numbered Id, named "FreeCapacity%u", lying after volume
// AfterVolume (RAID_SEGMENT_AFTER_NO_VOLUME for none), of the given size,
// placed by RaidLibInsertFreeSegment; FreeSegmentCount is raised. NULL when
// the pool is exhausted.
[[nodiscard]] RAID_VOLUME *RaidLibAddFreeSegment(RAID_ARRAY *Array, UINT32 Id,
                                                 UINT32 AfterVolume,
                                                 UINT64 SizeFigure,
                                                 UINT32 SizeUnit,
                                                 UINTN ExtraSize);

// A drive record numbered Id with a copy of Location, a copy of Model cut
// to ModelChars characters (blanks stripped at both ends of both) and a
// zeroed Position; linked nowhere yet. NULL when the pool is exhausted.
// The record, its Position and both texts are one pool block (the texts
// and Position are released with the record by RaidLibFreePhysicalDrive).
[[nodiscard]] RAID_PHYSICAL_DRIVE *RaidLibNewDrive(UINT32 Id,
                                                   const CHAR16 *Location,
                                                   const CHAR16 *Model,
                                                   UINTN ModelChars);
// Replaces the drive's Model by Model, a pool string the drive then owns.
VOID RaidLibReplaceDriveModel(RAID_PHYSICAL_DRIVE *Drive, CHAR16 *Model);
// TRUE when Part (the drive's Location, Model or Position) lies in the
// drive's own block, made with it by RaidLibNewDrive, rather than in a pool
// block of its own.
[[nodiscard]] BOOLEAN RaidLibInDriveBlock(const RAID_PHYSICAL_DRIVE *Drive,
                                          const VOID *Part);

// A record the kit makes is one pool block with its parts: the record, an
// array's or free segment's Name (never replaced once made), then Extra. A
// volume's Name is a block of its own, since a backend may rename it. TRUE
// when the part is the record's own (a record made part by part, as tests
// do, has a block for each).
[[nodiscard]] BOOLEAN RaidLibNameInRecord(const RAID_ARRAY *Array);
[[nodiscard]] BOOLEAN RaidLibNameInRecord(const RAID_VOLUME *Segment);
[[nodiscard]] BOOLEAN RaidLibExtraInRecord(const RAID_ARRAY *Array);
[[nodiscard]] BOOLEAN RaidLibExtraInRecord(const RAID_VOLUME *Segment);

// Prefix and the decimal Number written to Text, cut to TextChars with its
// terminator as the formatter cuts ("Array3", "Disk12").
VOID RaidLibNumberedText(CHAR16 *Text, UINTN TextChars, const CHAR16 *Prefix,
                         UINT32 Number);

// The controller's array numbered Id, or NULL.
[[nodiscard]] RAID_ARRAY *RaidLibFindArray(RAID_CONTROLLER *Controller,
                                           UINT32 Id);

// ---- Where a drive sits ---------------------------------------------------------

// Links a drive that is in no list yet. With an array: into its DriveList,
// raising DedicatedSpareCount for a hot spare, else MemberDriveCount. Without
// one: a hot spare into SpareDriveList (GlobalSpareCount), any other drive
// into PhysicalDriveList (UnconfiguredDriveCount). State and Role are set,
// Owner is the array or the controller.
VOID RaidLibPlaceDrive(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                       RAID_ARRAY *Array, UINT32 State, UINT32 Role);

// Takes a placed drive out of its list and places it again as
// RaidLibPlaceDrive does; the counts of the list it leaves go down (never
// below 0).
VOID RaidLibMoveDrive(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                      RAID_ARRAY *Array, UINT32 State, UINT32 Role);

// ---- The drive table ----------------------------------------------------------

// Filling a controller's DriveTable in the tool's order: at most Capacity
// drives, whatever the output lists, and the table always ends in NULL.
typedef struct {
  RAID_CONTROLLER *Controller;
  UINT32 Capacity;
  UINT32 Filled;
} RAID_DRIVE_TABLE_FILL;

// Replaces the controller's DriveTable by a zeroed one of Capacity + 1
// entries and sets DiskDriveCount to Capacity.
[[nodiscard]] EFI_STATUS RaidLibStartDriveTable(RAID_DRIVE_TABLE_FILL *Fill,
                                                RAID_CONTROLLER *Controller,
                                                UINT32 Capacity);
// Puts Drive into the next entry; FALSE (and nothing written) once the
// table is full.
[[nodiscard]] BOOLEAN RaidLibAppendToDriveTable(RAID_DRIVE_TABLE_FILL *Fill,
                                                RAID_PHYSICAL_DRIVE *Drive);
// DiskDriveCount becomes the number of entries filled, so a cut or faulty
// output leaves no empty entry before the table's end.
VOID RaidLibFinishDriveTable(const RAID_DRIVE_TABLE_FILL *Fill);

// A drive that the tool lists in a state of no list is never placed: it
// sits in DriveTable alone, its links NULL and its Owner NULL, and the table
// owns it. RaidLibNewDrive makes drives so; RaidLibHoldInTableOnly turns a
// drive just taken out of its list into one.
[[nodiscard]] inline BOOLEAN RaidLibInNoList(const RAID_PHYSICAL_DRIVE *Drive) {
  return Drive->Link.ForwardLink == nullptr ? TRUE : FALSE;
}
inline VOID RaidLibHoldInTableOnly(RAID_PHYSICAL_DRIVE *Drive) {
  Drive->Link.ForwardLink = nullptr;
  Drive->Link.BackLink = nullptr;
  Drive->Owner = nullptr;
}
// Frees every drive of the table that sits in no list and empties the table
// (DiskDriveCount 0); the release of a controller and
// RaidLibResetControllerModel call it before the lists are freed, while
// every entry still points at a live drive.
VOID RaidLibFreeTableOnlyDrives(RAID_CONTROLLER *Controller);
