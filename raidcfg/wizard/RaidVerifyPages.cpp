// Pages 4 and 9: the settings to be created (page 4 after simple
// configuration, page 9 after advanced), the verify table of the planned
// virtual disks, and the confirmation before the creation page starts.
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

constexpr UINT32 kSimplePage = RAID_PAGE_SIMPLE_VERIFY;
constexpr UINT32 kAdvancedPage = RAID_PAGE_ADV_VERIFY;
constexpr UINT32 kOffset = RAID_NODE_ADV_VERIFY_OFFSET;
// Sizes above this many GB are beyond what an MBR partition table reaches.
constexpr UINT32 kMbrLimitGb = 2252;

// The verify table's fixed row titles.
constexpr const CHAR16 *kRowTitles[] = {
    u"Virtual Disk Name", u"Capacity",  u"Stripe Size",      u"Read Policy",
    u"Write Policy",      u"IO Policy", u"Disk Cache Policy"};
constexpr UINT32 kRows = sizeof(kRowTitles) / sizeof(kRowTitles[0]);

// The seven rows of one planned record in column Column; FALSE when a
// text could not be allocated.
[[nodiscard]] BOOLEAN FillRecordColumn(RAID_TABLE_DATA *Table, UINT32 Column,
                                       const RAID_VOLUME_PARAMETER *Record) {
  return RaidSetCellText(Table, 0, Column, AllocString(Record->Name)) &&
         RaidSetCellText(Table, 1, Column,
                         RaidSizeText(Record->Size, RAID_VOLUME_SIZE_UNIT)) &&
         RaidSetCellText(Table, 2, Column,
                         AllocString(RaidStripeSizeWord(Record->StripeSize))) &&
         RaidSetCellText(Table, 3, Column,
                         AllocString(RaidReadPolicyWord(Record->ReadPolicy))) &&
         RaidSetCellText(
             Table, 4, Column,
             AllocString(RaidWritePolicyWord(Record->WritePolicy))) &&
         RaidSetCellText(Table, 5, Column,
                         AllocString(RaidIoPolicyWord(Record->IoPolicy))) &&
         RaidSetCellText(
             Table, 6, Column,
             AllocString(RaidDiskCachePolicyWord(Record->DiskCachePolicy)));
}

// The table: the row titles, then one column per planned record. Whole or
// none: FALSE, with nothing allocated, when any part of it could not be.
[[nodiscard]] BOOLEAN GetRaidSummaryPageTableData(RAID_TABLE_DATA *Table) {
  const UINT32 Records = RaidPlannedVolumeCount();
  if (Records == 0 || !RaidAllocTable(Table, kRows, Records + 1, 0)) {
    return FALSE;
  }
  BOOLEAN Whole = TRUE;
  for (UINT32 Row = 0; Whole && Row < kRows; Row++) {
    Whole = RaidSetCellText(Table, Row, 0, AllocString(kRowTitles[Row]));
  }
  UINT32 Column = 1;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Whole && Record != nullptr && Column <= Records; Record = Record->Next) {
    Whole = FillRecordColumn(Table, Column++, Record);
  }
  if (!Whole) {
    RaidFreeTable(Table);
  }
  return Whole;
}

HOST_PAGE_NODE *VerifyTableNode(UINT32 Page) {
  return RaidFindNode(Page, RAID_NODE_VERIFY_TABLE +
                                (Page == kAdvancedPage ? kOffset : 0));
}

[[nodiscard]] UINT32 SpareCount(const RAID_VOLUME_PARAMETER *Record) {
  UINT32 Count = 0;
  while (Record->SpareList != nullptr &&
         Record->SpareList[Count] != RAID_DRIVE_LIST_END) {
    Count++;
  }
  return Count;
}

// Page 9's labels: level, drives and spares of the array, the capacities.
VOID RAIDGetVolumeDataDynamicaly() {
  UINT32 Level = 0;
  UINT32 Drives = 0;
  UINT32 Spares = 0;
  RAID_ARRAY *Array = RaidSelectedArray();
  RAID_VOLUME_PARAMETER *First = RaidVolumeParameterQueue();
  if (gRaidAdvancedMode == 1 && Array != nullptr) {
    Level = Array->RaidLevel;
    Drives = Array->MemberDriveCount;
    Spares = Array->DedicatedSpareCount;
  } else if (First != nullptr) {
    Level = First->RaidLevel;
    Drives = First->DriveCount;
    Spares = SpareCount(First);
  }
  gRaidAllocatedCapacity = AllocatedCapacity();
  RaidSetLabel(kAdvancedPage, RAID_NODE_VERIFY_LEVEL + kOffset,
               RaidFormatNumberText(STR_RAID_LEVEL_VALUE, Level));
  RaidSetLabel(kAdvancedPage, RAID_NODE_VERIFY_DRIVES + kOffset,
               RaidFormatNumberText(STR_DISK_DRIVES_COUNT, Drives));
  RaidSetLabel(kAdvancedPage, RAID_NODE_VERIFY_SPARES + kOffset,
               RaidFormatNumberText(STR_DEDICATED_HOT_SPARES_COUNT, Spares));
  RaidSetLabel(kAdvancedPage, RAID_NODE_VERIFY_ALLOCATED + kOffset,
               RaidFormatNumberText(STR_ALLOCATED_CAPACITY_GB,
                                    static_cast<UINT32>(gRaidAllocatedCapacity)));
  const CHAR16 *Format = RaidString(STR_FREE_CAPACITY_GB);
  const UINT64 Left = gRaidTotalCapacity > gRaidAllocatedCapacity
                          ? gRaidTotalCapacity - gRaidAllocatedCapacity
                          : 0;
  RaidSetLabel(kAdvancedPage, RAID_NODE_VERIFY_FREE + kOffset,
               RaidFormatText(StrLen(Format) + 25, Format, Left));
  // A disk beyond the MBR limit is looked for, but the warning stays
  // hidden either way, deliberately, as on the simple page.
  for (RAID_VOLUME_PARAMETER *Record = First; Record != nullptr;
       Record = Record->Next) {
    if (static_cast<UINT32>(Record->Size) / 1000 > kMbrLimitGb) {
      break;
    }
  }
  RaidHideControl(kAdvancedPage, RAID_NODE_VERIFY_MBR_WARNING + kOffset);
  RaidHideControl(kAdvancedPage, RAID_NODE_VERIFY_UNEQUAL_WARNING + kOffset);
}

// Asks whether to create the planned virtual disks; the trace carries
// Caller's name, the Next button that asks.
[[nodiscard]] BOOLEAN ConfirmCreation(const CHAR8 *Caller) {
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] start\n");
  return RaidMessageBox(HOST_MSGBOX_YES_NO, STR_CONFIRMATION_TITLE,
                        STR_CONFIRM_CREATE, nullptr);
}

// A page whose table the operator could not be shown creates nothing: the
// error box, and the page stays.
[[nodiscard]] BOOLEAN RefuseUnverified(UINT32 Page) {
  if (RaidVerifyTableBuilt(Page)) {
    return FALSE;
  }
  ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
  RaidShowPage(Page, 0);
  return TRUE;
}

RAID_CONTROL_CALLBACK(_RaidVerifySummaryNextButtonCallback) {
  (void)Node;
  (void)Event;
  if (RefuseUnverified(kSimplePage)) {
    return EFI_SUCCESS;
  }
  if (!ConfirmCreation(__func__)) {
    RaidShowPage(kSimplePage, 0);
    return EFI_SUCCESS;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Set the volume capacity to 0\n");
  // Size 0 asks the adapter for all of the free capacity.
  RAID_VOLUME_PARAMETER *Planned = RaidVolumeParameterQueue();
  if (Planned != nullptr) {
    Planned->Size = 0;
  }
  InitRaidCreateVolProcessPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSummaryNextCallback) {
  (void)Node;
  (void)Event;
  if (RefuseUnverified(kAdvancedPage)) {
    return EFI_SUCCESS;
  }
  if (!ConfirmCreation(__func__)) {
    RaidShowPage(kAdvancedPage, 0);
    return EFI_SUCCESS;
  }
  InitRaidCreateVolProcessPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidVerifySummaryBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidSimpleLevelPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSummaryBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kSimpleCommon[] = {
    {RAID_NODE_NEXT, _RaidVerifySummaryNextButtonCallback},
    {RAID_NODE_BACK, RaidVerifySummaryBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kAdvancedCommon[] = {
    {RAID_NODE_NEXT, RaidAdvSummaryNextCallback},
    {RAID_NODE_BACK, RaidAdvSummaryBackCallback},
};

}  // namespace

VOID ShowTable5(UINT32 Page) {
  HOST_PAGE_NODE *Node = VerifyTableNode(Page);
  if (Node == nullptr) {
    return;
  }
  RaidClearControlTable(Node);
  RAID_TABLE_DATA Table;
  if (GetRaidSummaryPageTableData(&Table)) {
    RaidSetControlTable(Node, &Table);
  }
}

BOOLEAN RaidVerifyTableBuilt(UINT32 Page) {
  const UINT32 Planned = RaidPlannedVolumeCount();
  if (Planned == 0) {
    return TRUE;  // nothing to show, and nothing to create
  }
  const RAID_TABLE_DATA *Table = RaidControlTable(VerifyTableNode(Page));
  return Table != nullptr && Table->Cells != nullptr &&
         Table->ColumnCount == Planned + 1;
}

VOID InitRaidVerifySummaryPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = kSimplePage;
  if (RaidPageRoot(kSimplePage) == nullptr) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] verify page will be created\n");
    RaidInstantiatePage(__func__, kSimplePage);
  }
  RaidShowPage(kSimplePage, RAID_NODE_NEXT);
}

VOID InitRaidAdvSummaryPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = kAdvancedPage;
  if (RaidPageRoot(kAdvancedPage) == nullptr) {
    RaidInstantiatePage(__func__, kAdvancedPage);
    ShowTable5(kAdvancedPage);
  }
  RAIDGetVolumeDataDynamicaly();
  RaidShowPage(kAdvancedPage, RAID_NODE_NEXT);
}

constinit const RAID_PAGE_CONTROLS gRaidSimpleVerifyControls = {
    kSimpleCommon, 2, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidAdvancedVerifyControls = {
    kAdvancedCommon, 2, nullptr, 0};
