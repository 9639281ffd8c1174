// Pages 5 and 10: the creation of the planned virtual disks one after
// another, a result row per disk with a short progress animation, and the
// return to the adapter page with the new configuration.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidEventCode.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidConfigWizard.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

constexpr UINT32 kPage = RAID_PAGE_CREATE_VOLUMES;
// One progress dot per stall; five make a step last three seconds.
constexpr UINTN kDotStallMicroseconds = 600000;
constexpr UINTN kFailureExtra = 25;
// Result rows the page builds at most.
constexpr UINT32 kMaxResultRows = 64;
constexpr UINT8 kEventCreateFailed = 0x21;
constexpr UINT8 kEventCreated = 0x22;

// Creation progress.
constinit BOOLEAN gFirstCall = FALSE;
constinit BOOLEAN gRunning = FALSE;
constinit RAID_VOLUME_PARAMETER *gRecord = nullptr;
constinit UINT32 gPosition = 0;
constinit HOST_PAGE_NODE *gRow = nullptr;
constinit EFI_STATUS gLastStatus = EFI_SUCCESS;
constinit UINT32 gLastErrorCode = 0;
// Set when a step left the model unread; the records after it are not
// created and keep that step's outcome.
constinit BOOLEAN gStopped = FALSE;

[[nodiscard]] HOST_PAGE_NODE *ChildOf(HOST_PAGE_NODE *Group, UINT32 NodeId) {
  for (HOST_PAGE_NODE *Child = Group != nullptr ? Group->FirstChild : nullptr;
       Child != nullptr; Child = Child->NextSibling) {
    if (Child->NodeId == NodeId) {
      return Child;
    }
  }
  return nullptr;
}

VOID SetNodeState(HOST_PAGE_NODE *Node, UINT8 State) {
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL) {
    return;
  }
  Node->Control->DisplayState = State;
  Node->RefreshMark |= HOST_REFRESH_STATE;
}

[[nodiscard]] HOST_PAGE_NODE *FirstRow() {
  HOST_PAGE_NODE *Rows = RaidFindNode(kPage, RAID_NODE_RESULT_ROWS);
  return Rows != nullptr ? Rows->FirstChild : nullptr;
}

// Shows a row's "Creating virtual disk" and name labels.
VOID ShowRowName(HOST_PAGE_NODE *Row, const RAID_VOLUME_PARAMETER *Record) {
  if (Row == nullptr || Record == nullptr) {
    return;
  }
  HOST_PAGE_NODE *Name = ChildOf(Row, RAID_NODE_RESULT_NAME);
  RaidSetControlText(Name, AllocString(Record->Name));
  SetNodeState(ChildOf(Row, RAID_NODE_RESULT_CREATING), HOST_DISPLAY_SHOWN);
  SetNodeState(Name, HOST_DISPLAY_SHOWN);
}

// Shows the last creation's result in Row; a failure is traced under
// Caller's name, the creation step's.
VOID ShowRowResult(const CHAR8 *Caller, HOST_PAGE_NODE *Row,
                   const CHAR8 *FailureTrace) {
  if (gLastStatus == EFI_SUCCESS && gLastErrorCode == 0) {
    SetNodeState(ChildOf(Row, RAID_NODE_RESULT_SUCCESS), HOST_DISPLAY_SHOWN);
    return;
  }
  RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, FailureTrace);
  HOST_PAGE_NODE *Failure = ChildOf(Row, RAID_NODE_RESULT_FAILURE);
  const CHAR16 *Format = RaidString(STR_CREATE_FAILURE);
  RaidSetControlText(Failure, RaidFormatText(StrLen(Format) + kFailureExtra,
                                             Format, gLastErrorCode));
  SetNodeState(Failure, HOST_DISPLAY_SHOWN);
}

VOID HideDots() {
  for (UINT32 Dot = 0; Dot < RAID_PROGRESS_DOT_COUNT; Dot++) {
    RaidHideControl(kPage, RAID_NODE_PROGRESS_DOT_FIRST + Dot);
  }
}

// Five stalls, one dot more after each. They block the whole firmware UI,
// deliberately, so that the operator sees the dots move.
VOID AnimateDots() {
  for (UINT32 Dot = 0; Dot < RAID_PROGRESS_DOT_COUNT; Dot++) {
    if (gBS != nullptr && gBS->Stall != nullptr) {
      gBS->Stall(kDotStallMicroseconds);
    }
    RaidShowControl(kPage, RAID_NODE_PROGRESS_DOT_FIRST + Dot);
    RaidShowPage(kPage, 0);
    RaidRedrawScreen();
  }
}

// A later record of a new array goes into the free space of the array the
// first one made: the adapter's last array.
VOID PointAtNewArray(RAID_VOLUME_PARAMETER *Record) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  if (Count == 0) {
    return;
  }
  RAID_ARRAY *Array = Arrays[Count - 1];
  RAID_VOLUME *Segments[1] = {};
  Record->NewArray = 0;
  Record->ArrayId = Array->Id;
  Record->DriveCount = Array->MemberDriveCount;
  if (RaidCollectFreeSegments(Array, Segments, 1) != 0) {
    Record->FreeSegmentId = Segments[0]->Id;
  }
}

VOID SendCreationEvent() {
  SendEventCode(gLastStatus == EFI_SUCCESS && gLastErrorCode == 0
                    ? kEventCreated
                    : kEventCreateFailed);
}

// Whether the adapter's configuration may not have been read again after
// the last step: a failed status (the tool could not run, or the refresh
// failed) or a shortage of memory. A refusal by the adapter comes as an
// error code with a successful status, and the model is then current.
[[nodiscard]] BOOLEAN ModelNotRead() {
  return EFI_ERROR(gLastStatus) ||
         gLastErrorCode == RAID_ERROR_OUT_OF_RESOURCES;
}

// Creates one record and reports the outcome to the management controller;
// traced under Caller's name.
VOID CreateRecord(const CHAR8 *Caller, RAID_VOLUME_PARAMETER *Record) {
  gLastErrorCode = 0;
  gLastStatus = CreateRaidVolume(Record, 0, &gLastErrorCode);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] CreateRaidVolume Status is %r\n", gLastStatus);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] CreateRaidVolume Errorcode is %x\n",
                gLastErrorCode);
  SendCreationEvent();
  if (Record->Next != nullptr && ModelNotRead()) {
    gStopped = TRUE;
    RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                  "RAID: [%a] The configuration was not read again, the "
                  "remaining virtual disks are not created\n");
  }
}

// One record: created, or after a stop failed with the stopping outcome
// without reaching the adapter, since the model it would be built from
// (the array to place it in, its drives and free space) was not read.
VOID CreateOrSkipRecord(const CHAR8 *Caller, RAID_VOLUME_PARAMETER *Record) {
  if (gStopped) {
    SendCreationEvent();
    return;
  }
  if (gPosition > 0 && Record->NewArray != 0) {
    PointAtNewArray(Record);
  }
  AnimateDots();
  CreateRecord(Caller, Record);
}

// The last step: the run is over, the configuration state starts afresh.
// Traced under Caller's name.
VOID FinishCreation(const CHAR8 *Caller) {
  gRunning = FALSE;
  RaidResetConfigurationState();
  RaidShowControl(kPage, RAID_NODE_NEXT);
  RAID_TRACE_AS(
      Caller, TARN_DEBUG_INFO,
      "RAID: [%a] Clear the volume information and the tables created\n");
  HideDots();
  if (gRow != nullptr) {
    ShowRowResult(Caller, gRow, "RAID: [%a] Volume creation failed\n");
  }
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Restore the default value of pages\n");
  RaidRestoreConfigTypePage();
}

// One creation step, called by the framework while page 10 is shown; TRUE
// while another one is due.
[[nodiscard]] BOOLEAN EFIAPI RaidShowCreateVolumeProcess() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_CREATION_RUNNING;
  if (gFirstCall) {
    gFirstCall = FALSE;
    gStopped = FALSE;
    gPosition = 0;
    gRecord = RaidVolumeParameterQueue();
    gRow = FirstRow();
  }
  RAID_VOLUME_PARAMETER *Record = gRecord;
  if (Record != nullptr) {
    ShowRowName(gRow, Record);
    // Deliberately, the last virtual disk of a fully allocated plan is
    // sized 0: it takes whatever the adapter has left.
    if (Record->Next == nullptr &&
        gRaidAllocatedCapacity >= gRaidTotalCapacity) {
      Record->Size = 0;
    }
    CreateOrSkipRecord(__func__, Record);
    if (Record->Next != nullptr) {
      HideDots();
      ShowRowResult(__func__, gRow,
                    "EditRaidCreateVol: Volume creation failed\n");
      gRow = gRow != nullptr ? gRow->NextSibling : nullptr;
    }
    gPosition++;
    gRecord = Record->Next;
    ShowRowName(gRow, gRecord);
  } else {
    FinishCreation(__func__);
  }
  RaidShowPage(kPage, RAID_NODE_NEXT);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] END\n");
  return Record != nullptr;
}

// Page 10 from its template with one result group per planned record.
[[nodiscard]] HOST_PAGE_NODE *BuildCreationPage(UINT32 Rows) {
  const HOST_PAGE_TEMPLATE *Static = RaidPageTemplate(kPage);
  if (Static == nullptr || TarnSetupProtocol == nullptr ||
      TarnSetupProtocol->InstantiatePage == nullptr) {
    return nullptr;
  }
  HOST_NODE_TEMPLATE *Nodes = static_cast<HOST_NODE_TEMPLATE *>(
      AllocateCopyPool(sizeof(HOST_NODE_TEMPLATE) * Static->NodeCount,
                       Static->Nodes));
  HOST_NODE_TEMPLATE *Groups =
      Rows == 0 ? nullptr
                : static_cast<HOST_NODE_TEMPLATE *>(
                      AllocateZeroPool(sizeof(HOST_NODE_TEMPLATE) * Rows));
  HOST_PAGE_NODE *Root = nullptr;
  if (Nodes != nullptr && (Rows == 0 || Groups != nullptr)) {
    for (UINT32 Index = 0; Index < Rows; Index++) {
      Groups[Index] = gRaidResultGroupTemplate;
    }
    for (UINT32 Index = 0; Index < Static->NodeCount; Index++) {
      if (Nodes[Index].NodeId == RAID_NODE_RESULT_ROWS) {
        Nodes[Index].Children = Groups;
        Nodes[Index].ChildCount = Rows;
      }
    }
    HOST_PAGE_TEMPLATE Template = *Static;
    Template.Nodes = Nodes;
    if (EFI_ERROR(TarnSetupProtocol->InstantiatePage(
            &Template, gRaidModuleRoot, gRaidModuleIdentity, &Root))) {
      Root = nullptr;
    }
  }
  FreePool(Groups);
  FreePool(Nodes);
  return Root;
}

// The adapter page with the configuration just created.
VOID ShowNewRAIDVolumes() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Page = RAID_PAGE_CONTROLLER_SELECTION;
  if (RaidCollectArrays(gCurrentRaidController, Arrays,
                        RAID_SERVICE_MAX_ARRAYS) == 0) {
    RaidHideControl(Page, RAID_NODE_CONFIG_TABLE);
    RaidShowControl(Page, RAID_NODE_EMPTY_CONFIG);
    return;
  }
  RaidShowControl(Page, RAID_NODE_CONFIG_TABLE);
  RaidHideControl(Page, RAID_NODE_EMPTY_CONFIG);
  UpdateControllerNamesInRadioControl();
  UpdateCurrentRaidControllerConfig();
}

RAID_CONTROL_CALLBACK(_RaidCreateVolProcessNextButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  RaidFreeCreateVolProcessPage();
  ShowNewRAIDVolumes();
  gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED] = 0;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Show controller selection page\n");
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, 0);
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kCreateCommon[] = {
    {RAID_NODE_NEXT, _RaidCreateVolProcessNextButtonCallback},
};

}  // namespace

VOID InitRaidCreateVolProcessPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  const UINT32 VerifyPage = gRaidCurrentPage;
  gRaidCurrentPage = kPage;
  if (gRaidPageRoots[kPage] != nullptr) {
    RaidFreeCreateVolProcessPage();
  }
  UINT32 Rows = 0;
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       gCurrentRaidController != nullptr && Record != nullptr &&
       Rows < kMaxResultRows;
       Record = Record->Next) {
    Rows++;
  }
  gRaidPageRoots[kPage] = BuildCreationPage(Rows);
  if (gRaidPageRoots[kPage] == nullptr) {
    // Nothing is created; the operator stays on the verify page and is told.
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    gRaidCurrentPage = VerifyPage;
    ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
    return;
  }
  RaidRegisterPageControls(kPage);
  gFirstCall = TRUE;
  gRunning = TRUE;
  ShowRowName(FirstRow(), RaidVolumeParameterQueue());
  RaidShowPage(kPage, 0);
  // A host that cannot schedule the steps gets them run here, one after
  // another, each exactly as a scheduled call would run it.
  if (TarnSetupProtocol->RegisterStepCallback == nullptr ||
      EFI_ERROR(TarnSetupProtocol->RegisterStepCallback(
          gRaidPageRoots[kPage], RaidShowCreateVolumeProcess))) {
    while (gRunning && RaidShowCreateVolumeProcess()) {
    }
  }
}

// Frees page 10; without one, the free logs "Out of resource" (as on the
// first return to the module after start-up, whose flags are all set).
VOID RaidFreeCreateVolProcessPage() {
  gRow = nullptr;
  gRecord = nullptr;
  gStopped = FALSE;
  FreeRaidStaticPageNodes(&gRaidPageRoots[kPage], RaidPageTemplate(kPage));
}

constinit const RAID_PAGE_CONTROLS gRaidCreationRunningControls = {
    nullptr, 0, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidCreateVolumesControls = {
    kCreateCommon, 1, nullptr, 0};
