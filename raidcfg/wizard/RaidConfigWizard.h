// What the configuration pages (2 to 10) share: the drive counts the checks
// use, the adapter's RAID levels, the capacity rules, and the selection that
// travels from the array pages through the virtual disk editor to the
// creation.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#include "RaidLib.h"

// ---- Drive counts ------------------------------------------------------------

// The adapter's drives in no array and no spare, by state.
typedef struct {
  UINT32 UGood;  // 6 and 22
  UINT32 Jbod;   // 11
  UINT32 Ready;  // 35 (Ready) and 45 (Non-RAID)
  UINT32 Other;  // any other state but the kind's online-member state
} RAID_DRIVE_COUNTS;

// Counts the current controller's unconfigured drives by state.
VOID GetUGoodJbodReadyCount(RAID_DRIVE_COUNTS *Counts);
// TRUE when any disk array of the current controller has free capacity.
[[nodiscard]] BOOLEAN CheckFreecapacitance();

// ---- Levels and capacities ------------------------------------------------------

// Most RAID levels a profile lists that the pages look at.
#define RAID_WIZARD_MAX_LEVELS 16
// The current controller's level records in profile order; their number.
[[nodiscard]] UINT32 RaidControllerLevels(RAID_LEVEL_CAP **Levels, UINT32 Max);
// The level record of Level, or NULL (quietly).
[[nodiscard]] RAID_LEVEL_CAP *RaidFindLevel(UINT32 Level);
// A drive's capacity in thousandths of a GB (0 for an unknown unit).
[[nodiscard]] UINT64 RaidDriveCapacity(const RAID_PHYSICAL_DRIVE *Drive);
// Whole GB of a size in thousandths of Unit (TB, GB, MB; else 0).
[[nodiscard]] UINT64 RaidWholeGb(UINT64 Figure, UINT32 Unit);
// The usable capacity of Members drives whose smallest is Smallest.
[[nodiscard]] UINT64 RaidLevelCapacity(UINT32 Level, UINT64 Smallest,
                                       UINT32 Members);
// The unconfigured drive of the current controller with Id, or NULL.
[[nodiscard]] RAID_PHYSICAL_DRIVE *RaidFindUnconfiguredDrive(UINT32 Id);
// The array Id of the current controller and its free segment SegmentId.
[[nodiscard]] RAID_ARRAY *RaidFindArray(UINT32 Id);
[[nodiscard]] RAID_VOLUME *RaidFindFreeSegment(RAID_ARRAY *Array,
                                               UINT32 SegmentId);
// A pool copy of Ids (Count of them) ended by RAID_DRIVE_LIST_END; NULL
// for none or when memory is short.
[[nodiscard]] UINT32 *RaidCopyDriveIds(const UINT32 *Ids, UINT32 Count);
// Whether a planned record holds all it was planned with: its name, and for
// a new array its member list and, with SpareCount spares, its spare list.
[[nodiscard]] BOOLEAN RaidPlannedRecordIsWhole(
    const RAID_VOLUME_PARAMETER *Record, UINT32 SpareCount);

// ---- Selection shared by pages 3 to 10 ---------------------------------------------

#define RAID_NO_SELECTION 0xFFFFFFFFU

// The RAID level in force (RAID_NO_SELECTION: none), by level number.
extern UINT32 gRaidSelectedLevelNumber;
[[nodiscard]] RAID_LEVEL_CAP *RaidSelectedLevel();
// Page 6: the chosen array and its free segment, by Id.
extern UINT32 gRaidSelectedArrayId;
extern UINT32 gRaidSelectedSegmentId;
[[nodiscard]] RAID_ARRAY *RaidSelectedArray();
[[nodiscard]] RAID_VOLUME *RaidSelectedFreeSegment();
// Page 7: the member and dedicated hot-spare drive ids of a new array.
extern UINT32 *gRaidMemberDriveIds;
extern UINT16 gRaidMemberDriveCount;
extern UINT32 *gRaidHotSpareDriveIds;
extern UINT16 gRaidHotSpareDriveCount;
// Whole GB that page 8 may distribute, and what the plan takes of it.
extern UINT64 gRaidTotalCapacity;
extern UINT64 gRaidAllocatedCapacity;
// A change on page 6 or 7 that page 8 must follow.
extern UINT8 gRaidSelectionChanged;
// The last drive check of page 7 passed.
extern UINT8 gRaidDriveValid;
// The verify table of page 9 must be built again.
extern UINT8 gRaidVerifyTableRefresh;

// Frees page 7's row-to-drive map.
VOID RaidFreeNewArrayRows();
// Frees the member and hot-spare lists.
VOID RaidFreeSelectedDrives();
// Releases what the configuration pages keep and resets their state
// (module unload).
VOID RaidFreeConfigWizardState();

// ---- Shared page operations --------------------------------------------------------

// The sum of the planned virtual disks' whole GB.
[[nodiscard]] UINT64 AllocatedCapacity();
// The number of planned virtual disks.
[[nodiscard]] UINT32 RaidPlannedVolumeCount();
// The whole GB page 8 may distribute for the advanced mode in force.
[[nodiscard]] UINT64 GetArrayMaxAvailableFreeCapacity();
// Fills the verify table of Page (4 or 9) from the planned list; a table
// that cannot be made whole is left empty.
VOID ShowTable5(UINT32 Page);
// Whether the verify table of Page shows every planned virtual disk (TRUE
// when none is planned): only then may its Next create them.
[[nodiscard]] BOOLEAN RaidVerifyTableBuilt(UINT32 Page);
// The first "Volume%d" (from 1) that no virtual disk of the controller has,
// written into Name of NameCharacters characters.
VOID GetDefaultVolumeName(CHAR16 *Name, UINTN NameCharacters);
// Computes the simple configuration's planned virtual disk; FALSE when it
// could not be allocated whole, and nothing is planned.
[[nodiscard]] BOOLEAN UpdateSimpleConfigNewVolumeParameters();
// Whether page 3 asks for a hot spare the adapter may add.
[[nodiscard]] BOOLEAN RaidSimpleHotSpareWanted();
// Page 2 after a finished creation: simple configuration selectable again,
// the combo box on its first choice.
VOID RaidRestoreConfigTypePage();
// Whether a virtual disk of any array of the controller is named Name.
[[nodiscard]] BOOLEAN CheckVolumeNameInAllArray(const CHAR16 *Name);
// An option list of fixed string ids, values 0 to Count - 1.
VOID RaidSetIdOptions(HOST_PAGE_NODE *Node, const EFI_STRING_ID *Ids,
                      UINT16 Count);
// An option list of texts (copied), values 0 to Count - 1; FALSE when
// memory is short (the control keeps its list).
[[nodiscard]] BOOLEAN RaidSetTextOptions(HOST_PAGE_NODE *Node,
                                         const CHAR16 *const *Texts,
                                         UINT16 Count);
// The text of the chosen option of a combo box or radio group, or NULL.
[[nodiscard]] const CHAR16 *RaidChosenOptionText(HOST_PAGE_NODE *Node);
// Replaces the label's text with a pool string (NULL keeps the id's text)
// and shows it.
VOID RaidSetLabel(UINT32 Page, UINT32 NodeId, CHAR16 *Text);

// ---- The virtual disk pop-up of page 8 -------------------------------------------

// Opens the pop-up to create a new planned virtual disk.
VOID RaidOpenCreateVolumePopup();
// Opens the pop-up to edit the planned virtual disk of Row (1: the first).
VOID UpdateCreateVolumeLayout(UINT32 Row);
// Whether the next virtual disk is the last one the array may hold.
[[nodiscard]] BOOLEAN IfLastAvailableVirtualDisk();
// Whether the array holds fewer virtual disks than its level allows.
[[nodiscard]] BOOLEAN RaidBelowVolumeLimit();
// Frees the pop-up's page (module unload).
VOID RaidFreeVolumePopup();
// Updates page 8's buttons, free-capacity label and limit warning.
VOID RaidUpdateEditVolumeButtons();
