// Page 8: the virtual disks planned on the chosen disk array, created,
// edited and removed (through the pop-up) before they are verified. The
// page keeps to the capacity left on the array and to the level's limit of
// virtual disks per array.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidConfigWizard.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

constexpr UINT32 kPage = RAID_PAGE_ADV_EDIT_VOLUME;
constexpr UINTN kSizeTextLength = 40;
constexpr UINTN kCapacityTextExtra = 25;

[[nodiscard]] HOST_PAGE_NODE *PlannedTable() {
  return RaidFindNode(kPage, RAID_NODE_PLANNED_TABLE);
}

// The planned table: one row per planned virtual disk.
VOID GetCreateRaidVolumeTableData(RAID_TABLE_DATA *Table) {
  if (!RaidAllocTable(Table, RaidPlannedVolumeCount() + 1, 4,
                      HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  RaidSetCellText(Table, 0, 1,
                  AllocString(RaidString(STR_COLUMN_VIRTUAL_DISK_NAME)));
  RaidSetCellText(Table, 0, 2, AllocString(RaidString(STR_RAID_LEVEL_PREFIX)));
  RaidSetCellText(Table, 0, 3, AllocString(RaidString(STR_COLUMN_CAPACITY)));
  UINT32 Row = 1;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Record != nullptr && Row < Table->RowCount;
       Record = Record->Next, Row++) {
    RaidSetCellText(Table, Row, 1, AllocString(Record->Name));
    RaidSetCellText(Table, Row, 2,
                    RaidFormatText(kSizeTextLength, u"%d", Record->RaidLevel));
    RaidSetCellText(Table, Row, 3,
                    RaidSizeText(Record->Size, RAID_VOLUME_SIZE_UNIT));
  }
}

// The number of virtual disks the array will hold.
[[nodiscard]] UINT32 CountVolumes() {
  const UINT32 Planned = RaidPlannedVolumeCount();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Number of volume(s) created = %d\n",
             Planned);
  RAID_ARRAY *Array = gRaidAdvancedMode == 1 ? RaidSelectedArray() : nullptr;
  return Planned + (Array != nullptr ? Array->VolumeCount : 0);
}

[[nodiscard]] UINT32 MaxLogicalDrives() {
  RAID_LEVEL_CAP *Level = RaidSelectedLevel();
  return Level != nullptr ? Level->MaxLogicalDrives : 0;
}

VOID MaxVolumeLimitWarningMsg(UINT32 Maximum) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Max logical drives = %d\n", Maximum);
  CHAR16 *Text = RaidFormatNumberText(STR_WARN_VIRTUAL_DISK_LIMIT, Maximum);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] %S\n", Text);
  RaidSetLabel(kPage, RAID_NODE_VD_LIMIT_WARNING, Text);
}

// Grays Create Virtual Disk with a warning when the array holds the level's
// maximum of virtual disks.
VOID CheckMaxVolumeLimit() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  const UINT32 Maximum = MaxLogicalDrives();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Max supported logical drives = %d\n",
             Maximum);
  if (CountVolumes() < Maximum) {
    RaidHideControl(kPage, RAID_NODE_VD_LIMIT_WARNING);
  } else {
    MaxVolumeLimitWarningMsg(Maximum);
    RaidGrayControl(kPage, RAID_NODE_CREATE_VD);
  }
  RaidShowPage(kPage, 0);
}

// The planned record of table row Row (1: the first), or NULL.
[[nodiscard]] RAID_VOLUME_PARAMETER *RecordAtRow(UINT32 Row) {
  UINT32 Index = 1;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Record != nullptr; Record = Record->Next, Index++) {
    if (Index == Row) {
      return Record;
    }
  }
  return nullptr;
}

[[nodiscard]] UINT32 SelectedRow() {
  return static_cast<UINT32>(RaidControlValue(PlannedTable(), 1));
}

RAID_CONTROL_CALLBACK(RaidCreateVolButtonCallback) {
  (void)Node;
  (void)Event;
  RaidOpenCreateVolumePopup();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidEditVolButtonCallback) {
  (void)Node;
  (void)Event;
  UpdateCreateVolumeLayout(SelectedRow());
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidRemoveVolButtonCallback) {
  (void)Node;
  (void)Event;
  if (!RaidMessageBox(HOST_MSGBOX_YES_NO, STR_CONFIRMATION_TITLE,
                      STR_CONFIRM_REMOVE_PLANNED, nullptr)) {
    RaidShowPage(kPage, 0);
    return EFI_SUCCESS;
  }
  RAID_VOLUME_PARAMETER *Record = RecordAtRow(SelectedRow());
  if (Record != nullptr) {
    RaidDequeueVolumeParameter(Record);
  }
  gRaidSelectionChanged = 1;
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvCreateEditVolNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Show table 5\n");
  if (gRaidVerifyTableRefresh != 0) {
    gRaidVerifyTableRefresh = 0;
    RaidInstantiatePage(__func__, RAID_PAGE_ADV_VERIFY);
    ShowTable5(RAID_PAGE_ADV_VERIFY);
  }
  // Page 9 shows what would be created; without its table the operator is
  // told here, and the next Next builds it again.
  if (!RaidVerifyTableBuilt(RAID_PAGE_ADV_VERIFY)) {
    gRaidVerifyTableRefresh = 1;
    ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
    RaidShowPage(kPage, RAID_NODE_NEXT);
    return EFI_SUCCESS;
  }
  InitRaidAdvSummaryPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvCreateEditVolBackCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (gRaidAdvancedMode == 1) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Back into RAID array select page\n");
    gRaidCurrentPage = RAID_PAGE_ADV_SELECT_ARRAY;
    RaidShowPage(RAID_PAGE_ADV_SELECT_ARRAY, RAID_NODE_FREE_SEGMENT_TABLE);
  } else {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Back into RAID level and disk drive select page\n");
    gRaidCurrentPage = RAID_PAGE_ADV_NEW_ARRAY;
    RaidShowPage(RAID_PAGE_ADV_NEW_ARRAY, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
  }
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kEditCommon[] = {
    {RAID_NODE_NEXT, RaidAdvCreateEditVolNextCallback},
    {RAID_NODE_BACK, RaidAdvCreateEditVolBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kEditOwn[] = {
    {RAID_NODE_CREATE_VD, RaidCreateVolButtonCallback},
    {RAID_NODE_EDIT_VD, RaidEditVolButtonCallback},
    {RAID_NODE_REMOVE_VD, RaidRemoveVolButtonCallback},
};

}  // namespace

VOID RaidUpdateEditVolumeButtons() {
  const UINT64 Left = gRaidTotalCapacity > gRaidAllocatedCapacity
                          ? gRaidTotalCapacity - gRaidAllocatedCapacity
                          : 0;
  const CHAR16 *Format = RaidString(STR_ARRAY_FREE_CAPACITY_GB);
  RaidSetLabel(kPage, RAID_NODE_ARRAY_FREE_CAPACITY,
               RaidFormatText(StrLen(Format) + kCapacityTextExtra, Format, Left));
  if (gRaidAllocatedCapacity < gRaidTotalCapacity) {
    RaidShowControl(kPage, RAID_NODE_CREATE_VD);
  } else {
    RaidGrayControl(kPage, RAID_NODE_CREATE_VD);
  }
  if (RaidPlannedVolumeCount() != 0) {
    RaidShowControl(kPage, RAID_NODE_EDIT_VD);
    RaidShowControl(kPage, RAID_NODE_REMOVE_VD);
  } else {
    RaidGrayControl(kPage, RAID_NODE_EDIT_VD);
    RaidGrayControl(kPage, RAID_NODE_REMOVE_VD);
  }
}

// Whether the next virtual disk is the last the array may hold. A maximum
// of 0 never makes it so.
BOOLEAN IfLastAvailableVirtualDisk() {
  const UINT32 Count = CountVolumes();
  const UINT32 Maximum = MaxLogicalDrives();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Volume count = %d\n", Count);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Max logical drives = %d\n", Maximum);
  // A maximum of 0 never makes it true, deliberately (the subtraction was
  // always unsigned): such a profile sets no limit here.
  return Maximum != 0 && Count >= Maximum - 1;
}

// Whether the array holds fewer virtual disks than the level allows.
BOOLEAN RaidBelowVolumeLimit() { return CountVolumes() < MaxLogicalDrives(); }

VOID InitRaidAdvCreateEditVolPage() {
  gRaidCurrentPage = kPage;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RaidInstantiatePage(__func__, kPage);
  RaidShowPage(kPage, 0);
  if (gRaidSelectionChanged != 0) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Need to update virtual disk table\n");
    gRaidSelectionChanged = 0;
    gRaidVerifyTableRefresh = 1;
    ShowTable4();
    gRaidAllocatedCapacity = AllocatedCapacity();
    RaidUpdateEditVolumeButtons();
    CheckMaxVolumeLimit();
  }
  RaidShowPage(kPage, 0);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n\n");
}

VOID ShowTable4() {
  HOST_PAGE_NODE *Node = PlannedTable();
  if (Node == nullptr) {
    return;
  }
  RaidClearControlTable(Node);
  RAID_TABLE_DATA Table;
  GetCreateRaidVolumeTableData(&Table);
  RaidSetControlTable(Node, &Table);
  RaidSetControlValue(Node, 1);
}

constinit const RAID_PAGE_CONTROLS gRaidEditVolumesControls = {
    kEditCommon, 2, kEditOwn, 3};
