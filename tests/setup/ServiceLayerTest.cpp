// The service layer over a hand-built model: collectors, the wrapped core
// operations, the planned-volume queue and the volume count.
#include <Library/MemoryAllocationLib.h>

#include <cstring>

#include "ModuleWorld.h"
#include "RaidLib.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"

namespace setup_test {
namespace {

// What the fake backend was asked to do.
struct BackendCalls {
  std::vector<UINT32> DeletedVolumes;
  std::vector<UINT32> DeletedArrays;
  std::vector<UINT32> DriveStates;  // drive Id, then target state
  UINT32 SetAllCalls = 0;
};
BackendCalls gCalls;

EFI_STATUS FakeGetInfo(RAID_CONTROLLER *, RAID_CONTROLLER_PRIVATE *,
                       UINT32 *ErrorCode) {
  *ErrorCode = 0;
  return EFI_SUCCESS;
}
EFI_STATUS FakeDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  gCalls.DeletedArrays.push_back(Array->Id);
  *ErrorCode = 0;
  return EFI_SUCCESS;
}
EFI_STATUS FakeDeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  gCalls.DeletedVolumes.push_back(Volume->Id);
  *ErrorCode = 0;
  return EFI_SUCCESS;
}
EFI_STATUS FakeSetState(RAID_CONTROLLER *, RAID_PHYSICAL_DRIVE *Drive,
                        UINT32 State, UINT32 *ErrorCode) {
  gCalls.DriveStates.push_back(Drive->Id);
  gCalls.DriveStates.push_back(State);
  Drive->State = State;
  *ErrorCode = 0;
  return EFI_SUCCESS;
}
EFI_STATUS FakeSetAll(RAID_CONTROLLER *, UINT32, UINT32 *ErrorCode) {
  gCalls.SetAllCalls++;
  *ErrorCode = 0x00200042;
  return EFI_DEVICE_ERROR;
}

template <typename T>
T *New() {
  T *Record = uefi::AllocateRecord<T>();
  EXPECT_NE(Record, nullptr);
  return Record;
}

class ServiceLayerTest : public ModuleWorld {
 public:
  ServiceLayerTest() {
    gCalls = {};
    EXPECT_EQ(GetTARNSetupProtocol(), EFI_SUCCESS);
    InitializeListHead(&gControllerList);
    Controller_ = AddController(4);
    Other_ = AddController(9);
    gCurrentRaidController = Controller_;
    Setup_->ClearTrace();
  }
  ~ServiceLayerTest() override {
    RaidFreeVolumeParameterQueue();
    while (!IsListEmpty(&gControllerList)) {
      RAID_CONTROLLER *Controller =
          uefi::RecordOf<&RAID_CONTROLLER::Link>(GetFirstNode(&gControllerList));
      RaidLibFreeController(Controller);
    }
    gCurrentRaidController = nullptr;
    RaidcfgSetupResetGlobals();
    EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  }

  RAID_CONTROLLER *AddController(UINT32 Id) {
    RAID_CONTROLLER *Controller = New<RAID_CONTROLLER>();
    Controller->Id = Id;
    InitializeListHead(&Controller->PhysicalDriveList);
    InitializeListHead(&Controller->SpareDriveList);
    InitializeListHead(&Controller->ArrayList);
    Controller->Private = New<RAID_CONTROLLER_PRIVATE>();
    RAID_OPERATIONS &Ops = Controller->Private->Operations;
    std::memcpy(Ops.Signature, "$arc", 4);
    Ops.GetControllerInfo = FakeGetInfo;
    Ops.DeleteArray = FakeDeleteArray;
    Ops.DeleteVolume = FakeDeleteVolume;
    Ops.SetPhysicalDriveState = FakeSetState;
    Ops.SetAllPhysicalDriveState = FakeSetAll;
    Controller->Capability = NewCapability();
    InsertTailList(&gControllerList, &Controller->Link);
    return Controller;
  }

  RAID_CAPABILITY *NewCapability() {
    RAID_CAPABILITY *Capability = New<RAID_CAPABILITY>();
    InitializeListHead(&Capability->LevelList);
    InitializeListHead(&Capability->ReadPolicyList);
    InitializeListHead(&Capability->WritePolicyList);
    InitializeListHead(&Capability->IoPolicyList);
    InitializeListHead(&Capability->DiskCachePolicyList);
    InitializeListHead(&Capability->StripeSizeList);
    for (UINT32 Level : {0u, 1u, 5u}) {
      RAID_LEVEL_CAP *Cap = New<RAID_LEVEL_CAP>();
      Cap->Level = Level;
      InsertTailList(&Capability->LevelList, &Cap->Link);
    }
    for (UINT32 Value : {64u, 128u, 256u, 512u}) {
      RAID_POLICY_ENTRY *Entry = New<RAID_POLICY_ENTRY>();
      Entry->Value = Value;
      InsertTailList(&Capability->StripeSizeList, &Entry->Link);
    }
    RAID_POLICY_ENTRY *Write = New<RAID_POLICY_ENTRY>();
    InsertTailList(&Capability->WritePolicyList, &Write->Link);
    return Capability;
  }

  // An array with Drives member drives and the given segments (volume or
  // free, with their Ids) in list order.
  RAID_ARRAY *AddArray(RAID_CONTROLLER *Controller, UINT32 Id, UINT32 Drives,
                       std::vector<std::pair<UINT32, bool>> Segments) {
    RAID_ARRAY *Array = New<RAID_ARRAY>();
    Array->Id = Id;
    Array->Controller = Controller;
    InitializeListHead(&Array->DriveList);
    InitializeListHead(&Array->SegmentList);
    for (UINT32 Index = 0; Index < Drives; Index++) {
      RAID_PHYSICAL_DRIVE *Drive = New<RAID_PHYSICAL_DRIVE>();
      Drive->Id = Id * 10 + Index;
      Drive->Owner = Array;
      InsertTailList(&Array->DriveList, &Drive->Link);
    }
    for (const auto &[SegmentId, IsVolume] : Segments) {
      RAID_VOLUME *Segment = New<RAID_VOLUME>();
      Segment->Id = SegmentId;
      Segment->IsVolume = IsVolume ? 1 : 0;
      Segment->Array = Array;
      InsertTailList(&Array->SegmentList, &Segment->Link);
      (IsVolume ? Array->VolumeCount : Array->FreeSegmentCount)++;
    }
    InsertTailList(&Controller->ArrayList, &Array->Link);
    return Array;
  }

  // A drive table of Count unconfigured drives with Ids 100, 101, ...
  VOID AddDriveTable(RAID_CONTROLLER *Controller, UINT32 Count) {
    Controller->DriveTable = static_cast<RAID_PHYSICAL_DRIVE **>(
        AllocateZeroPool((Count + 1) * sizeof(RAID_PHYSICAL_DRIVE *)));
    for (UINT32 Index = 0; Index < Count; Index++) {
      RAID_PHYSICAL_DRIVE *Drive = New<RAID_PHYSICAL_DRIVE>();
      Drive->Id = 100 + Index;
      Drive->State = RAID_STATE_UGOOD;
      InsertTailList(&Controller->PhysicalDriveList, &Drive->Link);
      Controller->DriveTable[Index] = Drive;
    }
    Controller->DiskDriveCount = Count;
  }

  RAID_CONTROLLER *Controller_ = nullptr;
  RAID_CONTROLLER *Other_ = nullptr;
};

// What Collect put in a list of 8 within Max, by Field; nothing may be
// written beyond the count it returns.
template <typename Source, typename T>
std::vector<UINT32> Collected(UINT32 (*Collect)(const Source *, T **, UINT32),
                              const Source *From, UINT32 Max,
                              UINT32 T::*Field) {
  T *Out[8] = {};
  const UINT32 Count = Collect(From, Out, Max);
  std::vector<UINT32> Values;
  for (UINT32 Index = 0; Index < 8; Index++) {
    if (Index < Count) {
      Values.push_back(Out[Index]->*Field);
    } else {
      EXPECT_EQ(Out[Index], nullptr) << "written beyond the count";
    }
  }
  return Values;
}

TEST_F(ServiceLayerTest, CollectorsListRecordsInOrderWithinTheLimit) {
  using Ids = std::vector<UINT32>;
  RAID_ARRAY *Array = AddArray(Controller_, 0, 3,
                               {{7, false}, {0, true}, {1, false}, {1, true}});
  AddArray(Controller_, 1, 2, {});
  AddArray(Controller_, 2, 2, {});
  const RAID_CAPABILITY *Capability = Controller_->Capability;
  EXPECT_EQ(Collected(RaidCollectLevels, Capability, 8, &RAID_LEVEL_CAP::Level),
            (Ids{0, 1, 5}));
  EXPECT_EQ(Collected(RaidCollectStripeSizes, Capability, 2,
                      &RAID_POLICY_ENTRY::Value),
            (Ids{64, 128}));
  EXPECT_EQ(Collected(RaidCollectReadPolicies, Capability, 8,
                      &RAID_POLICY_ENTRY::Value),
            Ids{});
  EXPECT_EQ(Collected<RAID_CONTROLLER>(RaidCollectArrays, Controller_, 8,
                                       &RAID_ARRAY::Id),
            (Ids{0, 1, 2}));
  EXPECT_EQ(Collected<RAID_CONTROLLER>(RaidCollectArrays, Controller_, 1,
                                       &RAID_ARRAY::Id),
            Ids{0});
  EXPECT_EQ(Collected<RAID_ARRAY>(RaidCollectArrayDrives, Array, 8,
                                  &RAID_PHYSICAL_DRIVE::Id),
            (Ids{0, 1, 2}));
  EXPECT_EQ(Collected<RAID_ARRAY>(RaidCollectVolumes, Array, 8, &RAID_VOLUME::Id),
            (Ids{0, 1}));
  EXPECT_EQ(Collected<RAID_ARRAY>(RaidCollectFreeSegments, Array, 8,
                                  &RAID_VOLUME::Id),
            (Ids{7, 1}));
  EXPECT_EQ(Collected<RAID_CONTROLLER>(RaidCollectArrays, nullptr, 8,
                                       &RAID_ARRAY::Id),
            Ids{});
  EXPECT_EQ(Collected<RAID_CAPABILITY>(RaidCollectLevels, nullptr, 8,
                                       &RAID_LEVEL_CAP::Level),
            Ids{});
}

TEST_F(ServiceLayerTest, DriveCopiesAreWholeRecords) {
  RAID_ARRAY *Array = AddArray(Controller_, 3, 2, {});
  RAID_PHYSICAL_DRIVE Copies[4] = {};
  ASSERT_EQ(RaidCopyArrayDrives(Array, Copies, 4), 2u);
  RAID_PHYSICAL_DRIVE *First =
      uefi::RecordOf<&RAID_PHYSICAL_DRIVE::Link>(GetFirstNode(&Array->DriveList));
  EXPECT_EQ(std::memcmp(&Copies[0], First, sizeof(*First)), 0);
  EXPECT_EQ(Copies[1].Id, 31u);
  EXPECT_EQ(RaidCopyArrayDrives(Array, Copies, 1), 1u);
}

TEST_F(ServiceLayerTest, LevelLookupOnTheCurrentController) {
  RAID_LEVEL_CAP *Cap = GetControllerRaidLeveCapPointer(5);
  ASSERT_NE(Cap, nullptr);
  EXPECT_EQ(Cap->Level, 5u);
  EXPECT_EQ(GetControllerRaidLeveCapPointer(6), nullptr);
  EXPECT_TRUE(TraceHas("RAID: [GetControllerRaidLeveCapPointer] Cannot find "
                       "the RAID level 6"));
  gCurrentRaidController = nullptr;
  EXPECT_EQ(GetControllerRaidLeveCapPointer(5), nullptr);
}

TEST_F(ServiceLayerTest, ControllerListAndInfoByControllerId) {
  LIST_ENTRY *Head = nullptr;
  EXPECT_EQ(GetRaidControllerList(&Head), 2u);
  EXPECT_EQ(Head, &gControllerList);

  RAID_CONTROLLER *Out = nullptr;
  UINT32 ErrorCode = 0xFFFF;
  EXPECT_EQ(GetRaidControllerInfo(Head, 9, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Out, Other_);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(TraceHas("RAID: [GetRaidControllerInfo] Status = Success"));

  // No controller with that Id: nothing happens, nothing is written.
  Out = nullptr;
  ErrorCode = 0xFFFF;
  Setup_->ClearTrace();
  EXPECT_EQ(RefreshRaidControllerInfo(Head, 5, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Out, nullptr);
  EXPECT_EQ(ErrorCode, 0xFFFFu);
  EXPECT_TRUE(Trace().empty());

  Other_->Private->Flags = RAID_FLAG_OUTPUT_VALID;
  EXPECT_EQ(RefreshRaidControllerInfo(Head, 9, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Other_->Private->Flags & RAID_FLAG_OUTPUT_VALID, 0u);
}

TEST_F(ServiceLayerTest, DeleteVolumeFindsOnlyVolumesOfTheArray) {
  AddArray(Controller_, 2, 2, {{0, true}, {1, false}, {1, true}});
  UINT32 ErrorCode = 0xFFFF;
  // Id 1 is first a free segment, then a volume: the volume is deleted. The
  // status is the driver reconnect's, and this world has no adapter handle.
  (void)DeleteRaidVolume(2, 0, 1, &ErrorCode);
  EXPECT_EQ(gCalls.DeletedVolumes, std::vector<UINT32>{1});
  gCalls.DeletedVolumes.clear();

  // A free segment's Id only, an unknown array: nothing is deleted.
  AddArray(Controller_, 3, 2, {{4, false}});
  ErrorCode = 0xFFFF;
  EXPECT_EQ(DeleteRaidVolume(3, 0, 4, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(DeleteRaidVolume(8, 0, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_TRUE(gCalls.DeletedVolumes.empty());
  EXPECT_EQ(ErrorCode, 0xFFFFu);
  EXPECT_TRUE(TraceHas("RAID: [DeleteRaidVolume] end"));
}

TEST_F(ServiceLayerTest, DeleteArrayById) {
  AddArray(Controller_, 5, 2, {});
  UINT32 ErrorCode = 0xFFFF;
  EXPECT_EQ(DeleteRaidArray(4, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_TRUE(gCalls.DeletedArrays.empty());
  (void)DeleteRaidArray(5, 0, &ErrorCode);  // the reconnect's status
  EXPECT_EQ(gCalls.DeletedArrays, std::vector<UINT32>{5});
}

TEST_F(ServiceLayerTest, DriveStateByTableIndex) {
  AddDriveTable(Controller_, 3);
  UINT32 ErrorCode = 0xFFFF;
  EXPECT_EQ(SetRaidPhysicalDriveState(2, 77, RAID_STATE_JBOD, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(gCalls.DriveStates, (std::vector<UINT32>{102, RAID_STATE_JBOD}));
  EXPECT_TRUE(TraceHas("RAID: [SetRaidPhysicalDriveState] Status = Success"));
  EXPECT_TRUE(TraceHas("RAID: [SetRaidPhysicalDriveState] Errorcode = 0"));
  EXPECT_TRUE(TraceHas("RAID: [SetRaidPhysicalDriveState] Disk drive state = "
                       "11"));

  // Beyond the table: the core refuses the missing drive.
  gCalls.DriveStates.clear();
  EXPECT_EQ(SetRaidPhysicalDriveState(3, 0, RAID_STATE_JBOD, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200021u);
  EXPECT_TRUE(gCalls.DriveStates.empty());
}

TEST_F(ServiceLayerTest, AllDrivesWalkTracesEveryStepToTheController) {
  LIST_ENTRY *Head = nullptr;
  GetRaidControllerList(&Head);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(SetAllRaidPhysicalDriveState(Head, 9, RAID_STATE_UGOOD, &ErrorCode),
            EFI_DEVICE_ERROR);
  EXPECT_EQ(ErrorCode, 0x00200042u);
  EXPECT_EQ(gCalls.SetAllCalls, 1u);
  const std::vector<std::string> Expected = {
      "RAID: [SetAllRaidPhysicalDriveState] Controller index = 9",
      "RAID: [SetAllRaidPhysicalDriveState] Controller index = 9",
      "RAID: [SetAllRaidPhysicalDriveState] Status = Device Error",
      "RAID: [SetAllRaidPhysicalDriveState] Errorcode = 200042"};
  EXPECT_EQ(ModuleTrace(), Expected);

  gCalls.SetAllCalls = 0;
  EXPECT_EQ(SetAllRaidPhysicalDriveState(Head, 6, RAID_STATE_UGOOD, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(gCalls.SetAllCalls, 0u);
}

TEST_F(ServiceLayerTest, VolumeCountSumsTheArrays) {
  AddArray(Controller_, 0, 2, {{0, true}, {1, true}, {0, false}});
  AddArray(Controller_, 1, 2, {{2, true}});
  EXPECT_EQ(GetVolumeCount(Controller_), 3u);
  EXPECT_TRUE(TraceHas("RAID: [GetVolumeCount] Array count is 2"));
  EXPECT_EQ(GetVolumeCount(Other_), 0u);
}

RAID_VOLUME_PARAMETER *NewParameter(UINT32 Id) {
  RAID_VOLUME_PARAMETER *Parameter = New<RAID_VOLUME_PARAMETER>();
  Parameter->ArrayId = Id;
  Parameter->Name = static_cast<CHAR16 *>(AllocateZeroPool(16));
  Parameter->DriveList = static_cast<UINT32 *>(AllocateZeroPool(8));
  Parameter->Next = reinterpret_cast<RAID_VOLUME_PARAMETER *>(0x1);  // stale
  return Parameter;
}

std::vector<UINT32> QueuedIds() {
  std::vector<UINT32> Ids;
  for (RAID_VOLUME_PARAMETER *P = RaidVolumeParameterQueue(); P != nullptr;
       P = P->Next) {
    Ids.push_back(P->ArrayId);
  }
  return Ids;
}

TEST_F(ServiceLayerTest, PlannedVolumeQueue) {
  RAID_VOLUME_PARAMETER *A = NewParameter(1);
  RAID_VOLUME_PARAMETER *B = NewParameter(2);
  RAID_VOLUME_PARAMETER *C = NewParameter(3);
  RaidEnqueueVolumeParameter(A);
  RaidEnqueueVolumeParameter(B);
  RaidEnqueueVolumeParameter(C);
  RaidEnqueueVolumeParameter(B);  // already queued: kept where it is
  EXPECT_EQ(QueuedIds(), (std::vector<UINT32>{1, 2, 3}));

  RaidDequeueVolumeParameter(B);
  EXPECT_EQ(QueuedIds(), (std::vector<UINT32>{1, 3}));
  RaidDequeueVolumeParameter(A);
  EXPECT_EQ(QueuedIds(), (std::vector<UINT32>{3}));

  RAID_VOLUME_PARAMETER *Stray = NewParameter(9);
  Stray->Next = nullptr;
  RaidDequeueVolumeParameter(Stray);  // not queued: ignored, not freed
  EXPECT_EQ(QueuedIds(), (std::vector<UINT32>{3}));
  FreeVolumeParameter(&Stray);
  EXPECT_EQ(Stray, nullptr);
  EXPECT_TRUE(TraceHas("RAID: [FreeVolumeParameter] start"));
  EXPECT_TRUE(TraceHas("RAID: [FreeVolumeParameter] end"));
  // C stays queued; the fixture's teardown frees the queue.
}

}  // namespace
}  // namespace setup_test
