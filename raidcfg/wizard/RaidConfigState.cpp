// The configuration pages' shared state and helpers: drive counts, level
// lookups, capacity rules, the selection carried from the array pages to
// the creation, and option lists.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidConfigWizard.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"

constinit UINT32 gRaidSelectedLevelNumber = RAID_NO_SELECTION;
constinit UINT32 gRaidSelectedArrayId = RAID_NO_SELECTION;
constinit UINT32 gRaidSelectedSegmentId = RAID_NO_SELECTION;
constinit UINT32 *gRaidMemberDriveIds = nullptr;
constinit UINT16 gRaidMemberDriveCount = 0;
constinit UINT32 *gRaidHotSpareDriveIds = nullptr;
constinit UINT16 gRaidHotSpareDriveCount = 0;
constinit UINT64 gRaidTotalCapacity = 0;
constinit UINT64 gRaidAllocatedCapacity = 0;
constinit UINT8 gRaidSelectionChanged = 0;
constinit UINT8 gRaidDriveValid = 0;
constinit UINT8 gRaidVerifyTableRefresh = 0;

namespace {

// The state code of a member of an online array, by adapter kind; drives in
// it are not counted as "other".
[[nodiscard]] BOOLEAN IsOnlineMemberState(UINT32 State) {
  switch (gRaidAdapterKind) {
    case RAID_ADAPTER_KIND_STORCLI:
      return State == RAID_STATE_ONLINE;
    case RAID_ADAPTER_KIND_ARCCONF:
      return State == RAID_STATE2_ONLINE;
    case RAID_ADAPTER_KIND_RSTE:
      return State == RAID_STATE4_ONLINE;
    case RAID_ADAPTER_KIND_MVSETUP:
      return State == RAID_STATE3_ONLINE;
    default:
      return FALSE;
  }
}

}  // namespace

VOID GetUGoodJbodReadyCount(RAID_DRIVE_COUNTS *Counts) {
  *Counts = {};
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  if (Controller == nullptr) {
    return;
  }
  UINT32 Seen = 0;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller->PhysicalDriveList)) {
    if (Seen++ >= Controller->UnconfiguredDriveCount) {
      break;
    }
    switch (Drive->State) {
      case RAID_STATE_UGOOD:
      case RAID_STATE2_UGOOD:
        Counts->UGood++;
        break;
      case RAID_STATE_JBOD:
        Counts->Jbod++;
        break;
      case RAID_STATE3_READY:
      case RAID_STATE4_NON_RAID:
        Counts->Ready++;
        break;
      default:
        if (!IsOnlineMemberState(Drive->State)) {
          Counts->Other++;
        }
        break;
    }
  }
}

BOOLEAN CheckFreecapacitance() {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Array count is %d\n", Count);
  for (UINT32 Index = 0; Index < Count; Index++) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Free capacity count is %d\n",
               Arrays[Index]->FreeSegmentCount);
    if (Arrays[Index]->FreeSegmentCount != 0) {
      return TRUE;
    }
  }
  return FALSE;
}

UINT32 RaidControllerLevels(RAID_LEVEL_CAP **Levels, UINT32 Max) {
  if (gCurrentRaidController == nullptr) {
    return 0;
  }
  return RaidCollectLevels(gCurrentRaidController->Capability, Levels, Max);
}

RAID_LEVEL_CAP *RaidFindLevel(UINT32 Level) {
  RAID_LEVEL_CAP *Levels[RAID_WIZARD_MAX_LEVELS] = {};
  const UINT32 Count = RaidControllerLevels(Levels, RAID_WIZARD_MAX_LEVELS);
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Levels[Index]->Level == Level) {
      return Levels[Index];
    }
  }
  return nullptr;
}

UINT64 RaidDriveCapacity(const RAID_PHYSICAL_DRIVE *Drive) {
  switch (Drive->SizeUnit) {
    case RAID_UNIT_GB:
      return Drive->SizeFigure;
    case RAID_UNIT_TB:
      return Drive->SizeFigure * 1024;
    case RAID_UNIT_MB:
      return Drive->SizeFigure / 1024;
    default:
      return 0;
  }
}

UINT64 RaidWholeGb(UINT64 Figure, UINT32 Unit) {
  switch (Unit) {
    case RAID_UNIT_TB:
      return Figure * 1024 / 1000;
    case RAID_UNIT_GB:
      return Figure / 1000;
    case RAID_UNIT_MB:
      return Figure / 1024 / 1000;
    default:
      return 0;
  }
}

UINT64 RaidLevelCapacity(UINT32 Level, UINT64 Smallest, UINT32 Members) {
  switch (Level) {
    case 0:
      return Smallest * Members;
    case 1:
    case 10:
      return Smallest * Members / 2;
    case 5:
      return Members >= 1 ? Smallest * (Members - 1) : 0;
    case 6:
    case 50:
      return Members >= 2 ? Smallest * (Members - 2) : 0;
    case 60:
      return Members >= 4 ? Smallest * (Members - 4) : 0;
    default:
      return 0;
  }
}

RAID_PHYSICAL_DRIVE *RaidFindUnconfiguredDrive(UINT32 Id) {
  if (gCurrentRaidController == nullptr) {
    return nullptr;
  }
  for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
           gCurrentRaidController->PhysicalDriveList)) {
    if (Drive->Id == Id) {
      return Drive;
    }
  }
  return nullptr;
}

RAID_ARRAY *RaidFindArray(UINT32 Id) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Arrays[Index]->Id == Id) {
      return Arrays[Index];
    }
  }
  return nullptr;
}

RAID_VOLUME *RaidFindFreeSegment(RAID_ARRAY *Array, UINT32 SegmentId) {
  if (Array == nullptr) {
    return nullptr;
  }
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Segment->IsVolume == 0 && Segment->Id == SegmentId) {
      return Segment;
    }
  }
  return nullptr;
}

UINT32 *RaidCopyDriveIds(const UINT32 *Ids, UINT32 Count) {
  if (Ids == nullptr || Count == 0) {
    return nullptr;
  }
  UINT32 *Copy = static_cast<UINT32 *>(
      AllocateZeroPool(sizeof(UINT32) * (static_cast<UINTN>(Count) + 1)));
  if (Copy == nullptr) {
    return nullptr;
  }
  for (UINT32 Index = 0; Index < Count; Index++) {
    Copy[Index] = Ids[Index];
  }
  Copy[Count] = RAID_DRIVE_LIST_END;
  return Copy;
}

BOOLEAN RaidPlannedRecordIsWhole(const RAID_VOLUME_PARAMETER *Record,
                                 UINT32 SpareCount) {
  if (Record->Name == nullptr) {
    return FALSE;
  }
  return Record->NewArray == 0 ||
         ((Record->DriveCount == 0 || Record->DriveList != nullptr) &&
          (SpareCount == 0 || Record->SpareList != nullptr));
}

RAID_LEVEL_CAP *RaidSelectedLevel() {
  return gRaidSelectedLevelNumber == RAID_NO_SELECTION
             ? nullptr
             : RaidFindLevel(gRaidSelectedLevelNumber);
}

RAID_ARRAY *RaidSelectedArray() {
  return gRaidSelectedArrayId == RAID_NO_SELECTION
             ? nullptr
             : RaidFindArray(gRaidSelectedArrayId);
}

RAID_VOLUME *RaidSelectedFreeSegment() {
  return RaidFindFreeSegment(RaidSelectedArray(), gRaidSelectedSegmentId);
}

VOID RaidFreeSelectedDrives() {
  FreePool(gRaidMemberDriveIds);
  FreePool(gRaidHotSpareDriveIds);
  gRaidMemberDriveIds = nullptr;
  gRaidHotSpareDriveIds = nullptr;
  gRaidMemberDriveCount = 0;
  gRaidHotSpareDriveCount = 0;
}

UINT64 AllocatedCapacity() {
  UINT64 Sum = 0;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Record != nullptr; Record = Record->Next) {
    Sum += Record->Size / 1000;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Allocated capacity is %d GB\n",
             static_cast<UINT32>(Sum));
  return Sum;
}

UINT32 RaidPlannedVolumeCount() {
  UINT32 Count = 0;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Record != nullptr; Record = Record->Next) {
    Count++;
  }
  return Count;
}

BOOLEAN CheckVolumeNameInAllArray(const CHAR16 *Name) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  for (UINT32 Index = 0; Index < Count; Index++) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Arrays[Index]->SegmentList)) {
      if (Volume->IsVolume != 0 && Volume->Name != nullptr &&
          StrCmp(Volume->Name, Name) == 0) {
        return TRUE;
      }
    }
  }
  return FALSE;
}

// ---- Option lists and labels ----------------------------------------------------

VOID RaidSetIdOptions(HOST_PAGE_NODE *Node, const EFI_STRING_ID *Ids,
                      UINT16 Count) {
  HOST_OPTION_LIST List = {};
  List.Options = static_cast<HOST_OPTION *>(
      AllocateZeroPool(sizeof(HOST_OPTION) * Count));
  if (List.Options == nullptr) {
    return;
  }
  List.Count = Count;
  for (UINT16 Index = 0; Index < Count; Index++) {
    List.Options[Index].Value = Index;
    List.Options[Index].TextId = Ids[Index];
  }
  RaidSetControlOptions(Node, &List);
}

BOOLEAN RaidSetTextOptions(HOST_PAGE_NODE *Node, const CHAR16 *const *Texts,
                           UINT16 Count) {
  HOST_OPTION_LIST List = {};
  if (Count != 0) {
    List.Options = static_cast<HOST_OPTION *>(
        AllocateZeroPool(sizeof(HOST_OPTION) * Count));
    if (List.Options == nullptr) {
      return FALSE;
    }
    List.Count = Count;
  }
  for (UINT16 Index = 0; Index < Count; Index++) {
    List.Options[Index].Value = Index;
    List.Options[Index].Text = AllocString(Texts[Index]);
    if (List.Options[Index].Text == nullptr) {
      FreeComboOptions(&List);
      return FALSE;
    }
  }
  RaidSetControlOptions(Node, &List);
  return TRUE;
}

const CHAR16 *RaidChosenOptionText(HOST_PAGE_NODE *Node) {
  HOST_OPTION_LIST *List = RaidControlOptions(Node);
  if (List == nullptr || List->Count == 0) {
    return nullptr;
  }
  const UINT64 Index = RaidControlValue(Node, 0);
  if (Index >= List->Count) {
    return nullptr;
  }
  const HOST_OPTION &Option = List->Options[Index];
  return Option.Text != nullptr ? Option.Text : RaidString(Option.TextId);
}

VOID RaidSetLabel(UINT32 Page, UINT32 NodeId, CHAR16 *Text) {
  HOST_PAGE_NODE *Node = RaidFindNode(Page, NodeId);
  if (Node == nullptr) {
    FreePool(Text);
    return;
  }
  RaidSetControlText(Node, Text);
  RaidShowControl(Page, NodeId);
}

VOID RaidFreeConfigWizardState() {
  RaidFreeSelectedDrives();
  gRaidSelectedLevelNumber = RAID_NO_SELECTION;
  gRaidSelectedArrayId = RAID_NO_SELECTION;
  gRaidSelectedSegmentId = RAID_NO_SELECTION;
  gRaidTotalCapacity = 0;
  gRaidAllocatedCapacity = 0;
  gRaidSelectionChanged = 0;
  gRaidDriveValid = 0;
  gRaidVerifyTableRefresh = 0;
  RaidFreeNewArrayRows();
  RaidFreeVolumePopup();
}
