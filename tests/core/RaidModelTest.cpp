// The RAID model's codes, texts, word tables, segment order, backend
// binding and release functions.
#include <Library/MemoryAllocationLib.h>
#include <gtest/gtest.h>
#include "RaidLib.h"
#include "RaidLibMessages.h"

#include <string>
#include <vector>

#include "RaidTestSupport.h"
#include "TestPool.h"

namespace {

using test::Narrow;
using test::PoolString;

TEST(RaidLibMessages, StateTextsAtTheBoundariesOfTheTable) {
  struct Case {
    UINT32 State;
    const char *Text;
  } Cases[] = {
      {0, "Rebuild"},   {5, "Optimal"},        {9, "UBad"},
      {15, "Offline"},  {16, "Rebuild"},       {28, "HBA"},
      {30, "Dedicated"}, {42, "Foreign"},      {45, "Non-RAID"},
      {50, "Rebuilding"}, {51, "Invalid State"}, {58, "Invalid State"},
      {0xFFFFFFFF, "Invalid State"},
  };
  for (const Case &Row : Cases) {
    EXPECT_EQ(Narrow(RaidLibStateText(Row.State)), Row.Text) << Row.State;
  }
}

TEST(RaidLibMessages, ErrorMessagesByLowTwelveBits) {
  struct Case {
    UINT32 Code;
    const char *Text;
    EFI_STRING_ID StringId;
  } Cases[] = {
      {0x00200001, "Invalid command", 1015},
      {RAID_ERROR_OUT_OF_RESOURCES, "Given array index is invalid", 1023},
      {RAID_ERROR_NOT_FOUND, "Flash memory allocation failed", 1028},
      {RAID_ERROR_MISSING, "Error writing MFC data to SEEPROM", 1047},
      {0x00200070, "Flashing was ok but FW restart is not required, ex: No "
                   "change in FW from current", 1126},
      {0x00200071, "Unknown Error", 0},
      {0x00200000, "Unknown Error", 0},
  };
  for (const Case &Row : Cases) {
    EXPECT_EQ(Narrow(RaidLibErrorMessage(Row.Code)), Row.Text) << Row.Code;
    EXPECT_EQ(RaidLibErrorMessageStringId(Row.Code), Row.StringId) << Row.Code;
  }
}

TEST(RaidLib, FirmwareErrorCodeKeepsTheStatusLowBits) {
  EXPECT_EQ(RaidLibFirmwareErrorCode(EFI_OUT_OF_RESOURCES),
            RAID_ERROR_OUT_OF_RESOURCES);
  EXPECT_EQ(RaidLibFirmwareErrorCode(EFI_NOT_FOUND), RAID_ERROR_NOT_FOUND);
  EXPECT_EQ(RaidLibFirmwareErrorCode(EFI_ABORTED), 0x00200015u);
}

TEST(RaidLibWords, EveryListWithItsOtherCode) {
  struct Case {
    RAID_POLICY_KIND Kind;
    const CHAR16 *Word;
    UINT32 Value;
  } Cases[] = {
      {RaidPolicyRead, u"Always read ahead", 0},
      {RaidPolicyRead, u"No Read Ahead", 1},
      {RaidPolicyRead, u"Always Read Ahead", 2},
      {RaidPolicyRead, u"Cached", 2},
      {RaidPolicyWrite, u"Write Through", 0},
      {RaidPolicyWrite, u"Write Back", 1},
      {RaidPolicyWrite, u"Always Write Back", 2},
      {RaidPolicyWrite, u"WB", 3},
      {RaidPolicyIo, u"Cached", 0},
      {RaidPolicyIo, u"Direct", 1},
      {RaidPolicyIo, u"Off", 2},
      {RaidPolicyDiskCache, u"Off", 0},
      {RaidPolicyDiskCache, u"On", 1},
      {RaidPolicyDiskCache, u"Default", 2},
      {RaidPolicyDiskCache, u"on", 3},
      {RaidPolicyStripeSize, u"2K", 2},
      {RaidPolicyStripeSize, u"64K", 64},
      {RaidPolicyStripeSize, u"1024K", 1024},
      {RaidPolicyStripeSize, u"2048K", 2048},
      {RaidPolicyStripeSize, u"4M", 2049},
      {RaidPolicyStripeSize, u"1K", 2049},
      {RaidPolicyStripeSize, u"64k", 2049},
      {RaidPolicyStripeSize, u"", 2049},
  };
  for (const Case &Row : Cases) {
    EXPECT_EQ(RaidLibPolicyValue(Row.Kind, Row.Word), Row.Value)
        << Row.Kind << " " << Narrow(Row.Word);
  }
  const UINT32 Other[] = {2, 3, 2, 3, 2049};
  for (UINT32 Kind = 0; Kind < 5; Kind++) {
    auto K = static_cast<RAID_POLICY_KIND>(Kind);
    EXPECT_EQ(RaidLibPolicyValue(K, nullptr), Other[Kind]);
    EXPECT_EQ(RaidLibPolicyOtherValue(K), Other[Kind]);
  }
}

// ---- Segment order -----------------------------------------------------------

// "V<id>" for volumes, "F<id>" for free segments, in list order; frees them.
std::string TakeOrder(RAID_ARRAY &Array) {
  std::string Result;
  while (!IsListEmpty(&Array.SegmentList)) {
    LIST_ENTRY *Node = GetFirstNode(&Array.SegmentList);
    RemoveEntryList(Node);
    RAID_VOLUME *Record = uefi::RecordOf<&RAID_VOLUME::Link>(Node);
    Result += (Record->IsVolume ? "V" : "F") + std::to_string(Record->Id) + " ";
    delete Record;
  }
  return Result;
}

// Each case adds volumes, then free segments (Id, the volume they follow) in
// order. The search for the volume looks at free segments too.
TEST(SegmentOrder, FreeSegmentsGoAheadOfTheFirstRecordWithTheirVolumeId) {
  struct Case {
    std::vector<UINT32> Volumes;
    std::vector<std::pair<UINT32, UINT32>> Free;
    const char *Order;
  } Cases[] = {
      {{0, 1}, {{0, RAID_SEGMENT_AFTER_NO_VOLUME}}, "F0 V0 V1 "},
      {{0, 1, 2}, {{0, 1}, {1, 0}}, "F1 V0 F0 V1 V2 "},
      {{0}, {{0, 7}}, "V0 F0 "},
      {{}, {{0, RAID_SEGMENT_AFTER_NO_VOLUME}, {1, 3}}, "F0 F1 "},
  };
  for (const Case &Row : Cases) {
    RAID_ARRAY Array{};  // without volumes the list is never initialised
    if (!Row.Volumes.empty()) {
      InitializeListHead(&Array.SegmentList);
    }
    for (UINT32 Id : Row.Volumes) {
      auto *Volume = new RAID_VOLUME{};
      Volume->Id = Id;
      Volume->IsVolume = 1;
      InsertTailList(&Array.SegmentList, &Volume->Link);
    }
    for (const auto &[Id, After] : Row.Free) {
      auto *Segment = new RAID_VOLUME{};
      Segment->Id = Id;
      Segment->State = After;
      RaidLibInsertFreeSegment(&Array, Segment);
    }
    EXPECT_EQ(TakeOrder(Array), Row.Order);
  }
}

// ---- Families and binding ------------------------------------------------------

TEST(RaidLibBinding, FamilyOfSignature) {
  struct Case {
    const CHAR8 *Signature;
    UINT32 Family;
  } Cases[] = {
      {"$lsi", RAID_FAMILY_STORCLI}, {"$m.2", RAID_FAMILY_MARVELL},
      {"rste", RAID_FAMILY_INTEL},   {"$arc", RAID_FAMILY_ARCCONF},
      {"$LSI", RAID_FAMILY_UNKNOWN}, {"$ls", RAID_FAMILY_UNKNOWN},
      {"$lsix", RAID_FAMILY_UNKNOWN}, {"", RAID_FAMILY_UNKNOWN},
      {nullptr, RAID_FAMILY_NONE},
  };
  for (const Case &Row : Cases) {
    EXPECT_EQ(RaidLibFamilyOfSignature(Row.Signature), Row.Family)
        << (Row.Signature ? Row.Signature : "(null)");
  }
  // A full 8-byte signature needs no terminator.
  const CHAR8 Full[8] = {'$', 'a', 'r', 'c', 0, 0, 0, 0};
  EXPECT_EQ(RaidLibFamilyOfSignature(Full), RAID_FAMILY_ARCCONF);
  const CHAR8 Dirty[8] = {'$', 'a', 'r', 'c', 0, 0, 0, 'x'};
  EXPECT_EQ(RaidLibFamilyOfSignature(Dirty), RAID_FAMILY_ARCCONF);
}

TEST(RaidLibBinding, ControllerFamilyNeedsControllerAndPrivate) {
  EXPECT_EQ(RaidLibControllerFamily(nullptr), RAID_FAMILY_NONE);
  RAID_CONTROLLER Controller{};
  EXPECT_EQ(RaidLibControllerFamily(&Controller), RAID_FAMILY_NONE);
  RAID_CONTROLLER_PRIVATE Private{};
  Controller.Private = &Private;
  EXPECT_EQ(RaidLibControllerFamily(&Controller), RAID_FAMILY_UNKNOWN);
}

TEST(RaidLibBinding, BindsByVendorOnlyProfiledMatchedControllers) {
  test::ScopedTestPool Pool;
  RAID_CAPABILITY Profile{};
  struct Case {
    UINT16 Vendor;
    bool Matched;
    bool Profiled;
    UINT32 Family;
  } Cases[] = {
      {0x1000, true, true, RAID_FAMILY_STORCLI},
      {0x9005, true, true, RAID_FAMILY_ARCCONF},
      {0x1B4B, true, true, RAID_FAMILY_MARVELL},
      {0x8086, true, true, RAID_FAMILY_INTEL},
      {0x10DE, true, true, RAID_FAMILY_UNKNOWN},
      {0x1000, false, true, RAID_FAMILY_UNKNOWN},
      {0x1000, true, false, RAID_FAMILY_UNKNOWN},
  };
  std::vector<RAID_CONTROLLER *> Controllers;
  UINT32 Id = 0;
  for (const Case &Row : Cases) {
    RAID_CONTROLLER *Controller = test::AddController(Id++, u"X", Row.Vendor);
    Controller->ToolType = Row.Matched ? 1 : 0;
    Controller->Capability = Row.Profiled ? &Profile : nullptr;
    // A stale operation must be cleared by the binding.
    Controller->Private->Operations.GetCardId =
        reinterpret_cast<RAID_GET_CARD_ID>(1);
    Controllers.push_back(Controller);
  }
  RaidLibBindBackends();
  for (UINTN I = 0; I < Controllers.size(); I++) {
    EXPECT_EQ(RaidLibControllerFamily(Controllers[I]), Cases[I].Family) << I;
    if (Cases[I].Family != RAID_FAMILY_UNKNOWN) {
      // The whole table was written by the family's backend.
      EXPECT_NE(Controllers[I]->Private->Operations.GetCardId,
                reinterpret_cast<RAID_GET_CARD_ID>(1));
    }
    Controllers[I]->Capability = nullptr;
  }
  test::FreeAllControllers();
  EXPECT_EQ(Pool.Outstanding(), 0u);
}

// ---- Release ------------------------------------------------------------------

RAID_PHYSICAL_DRIVE *NewDrive(UINT32 Id, VOID *Owner) {
  auto *Drive = uefi::AllocateRecord<RAID_PHYSICAL_DRIVE>();
  Drive->Id = Id;
  Drive->Location = PoolString(u"252:1");
  Drive->Model = PoolString(u"ST4000NM0023");
  Drive->Position = uefi::AllocateRecord<RAID_DRIVE_POSITION>();
  Drive->Owner = Owner;
  return Drive;
}

RAID_VOLUME *NewSegment(RAID_ARRAY *Array, UINT32 Id, UINT8 IsVolume) {
  auto *Segment = uefi::AllocateRecord<RAID_VOLUME>();
  Segment->Array = Array;
  Segment->Id = Id;
  Segment->IsVolume = IsVolume;
  Segment->Name = PoolString(IsVolume ? u"VD0" : u"FreeCapacity0");
  Segment->Extra = AllocateZeroPool(4);
  return Segment;
}

RAID_ARRAY *NewArray(RAID_CONTROLLER *Controller, UINT32 Id) {
  auto *Array = uefi::AllocateRecord<RAID_ARRAY>();
  Array->Controller = Controller;
  Array->Id = Id;
  Array->Name = PoolString(u"Array0");
  InitializeListHead(&Array->DriveList);
  InitializeListHead(&Array->SegmentList);
  InsertTailList(&Array->DriveList, &NewDrive(10 + Id, Array)->Link);
  InsertTailList(&Array->DriveList, &NewDrive(20 + Id, Array)->Link);
  InsertTailList(&Array->SegmentList, &NewSegment(Array, 0, 1)->Link);
  InsertTailList(&Array->SegmentList, &NewSegment(Array, 0, 0)->Link);
  Array->Extra = AllocateZeroPool(8);
  return Array;
}

RAID_CAPABILITY *NewCapability() {
  auto *Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Capability->ControllerName = PoolString(u"LSI");
  Capability->ToolName = PoolString(u"storcli.efi");
  LIST_ENTRY *Lists[] = {&Capability->LevelList,      &Capability->ReadPolicyList,
                         &Capability->WritePolicyList, &Capability->IoPolicyList,
                         &Capability->DiskCachePolicyList,
                         &Capability->StripeSizeList};
  for (LIST_ENTRY *List : Lists) {
    InitializeListHead(List);
  }
  auto *Level = uefi::AllocateRecord<RAID_LEVEL_CAP>();
  Level->Name = PoolString(u"5");
  InsertTailList(&Capability->LevelList, &Level->Link);
  for (LIST_ENTRY *List : Lists) {
    if (List == &Capability->LevelList) {
      continue;
    }
    auto *Entry = uefi::AllocateRecord<RAID_POLICY_ENTRY>();
    Entry->Name = PoolString(u"word");
    InsertTailList(List, &Entry->Link);
  }
  return Capability;
}

// A controller with every list, string and block a backend fills.
RAID_CONTROLLER *NewFullController() {
  RAID_CONTROLLER *Controller = test::NewController(0, u"LSI", 0x1000);
  Controller->Name = PoolString(u"MegaRAID 9460-8i");
  Controller->FirmwareVersion = PoolString(u"51.10.0-3151");
  Controller->SerialNumber = PoolString(u"SK00000000");
  Controller->DriveTable = static_cast<RAID_PHYSICAL_DRIVE **>(
      AllocateZeroPool(4 * sizeof(RAID_PHYSICAL_DRIVE *)));
  Controller->Capability = NewCapability();
  InsertTailList(&Controller->PhysicalDriveList,
                 &NewDrive(1, Controller)->Link);
  InsertTailList(&Controller->SpareDriveList, &NewDrive(2, Controller)->Link);
  InsertTailList(&Controller->ArrayList, &NewArray(Controller, 0)->Link);
  InsertTailList(&Controller->ArrayList, &NewArray(Controller, 1)->Link);
  Controller->Private->ProductName = PoolString(u"MegaRAID 9460-8i");
  Controller->Private->AuxString = PoolString(u"aux");
  return Controller;
}

TEST(RaidLibRelease, AWholeControllerLeavesNothingBehind) {
  test::ScopedTestPool Pool;
  RAID_CONTROLLER *Controller = NewFullController();
  InsertTailList(&gControllerList, &Controller->Link);
  ASSERT_GT(Pool.Outstanding(), 30u);
  RaidLibFreeController(Controller);
  EXPECT_TRUE(IsListEmpty(&gControllerList));
  EXPECT_EQ(Pool.Outstanding(), 0u);
}

TEST(RaidLibRelease, PartlyBuiltRecordsAreSafe) {
  test::ScopedTestPool Pool;
  // Zeroed records: NULL strings, lists never initialised, no private record.
  RaidLibFreeController(uefi::AllocateRecord<RAID_CONTROLLER>());
  RaidLibFreeCapability(uefi::AllocateRecord<RAID_CAPABILITY>());
  RaidLibFreePhysicalDrive(uefi::AllocateRecord<RAID_PHYSICAL_DRIVE>());
  RaidLibFreeSegment(uefi::AllocateRecord<RAID_VOLUME>());
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  auto *Array = uefi::AllocateRecord<RAID_ARRAY>();
  InitializeListHead(&Controller->ArrayList);
  InsertTailList(&Controller->ArrayList, &Array->Link);
  RaidLibFreeController(Controller);
  RaidLibFreeController(nullptr);
  RaidLibFreeCapability(nullptr);
  RaidLibFreePhysicalDrive(nullptr);
  RaidLibFreeSegment(nullptr);
  EXPECT_EQ(Pool.Outstanding(), 0u);
}

TEST(RaidLibRelease, ArrayLinkIsBracketedAndEmptiesTheList) {
  test::ScopedTestPool Pool;
  test::TraceCapture Trace;
  LIST_ENTRY Arrays;
  InitializeListHead(&Arrays);
  InsertTailList(&Arrays, &NewArray(nullptr, 0)->Link);
  RaidLibFreeArrayLink(&Arrays);
  EXPECT_TRUE(IsListEmpty(&Arrays));
  EXPECT_EQ(Pool.Outstanding(), 0u);
  EXPECT_EQ(Trace.Lines(), (std::vector<std::string>{
                               "[RaidLibFreeArrayLink] start\n",
                               "[RaidLibFreeArrayLink] end\n"}));
  // Never initialised: still bracketed, nothing freed, list left empty.
  LIST_ENTRY Unset{nullptr, nullptr};
  RaidLibFreeArrayLink(&Unset);
  EXPECT_TRUE(IsListEmpty(&Unset));
}

}  // namespace
