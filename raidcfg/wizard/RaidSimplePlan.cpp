// The simple configuration's planned virtual disk: one new array over as
// many unconfigured drives as the chosen level allows, the profile's
// default stripe size and policies, an optional hot spare and the first
// free default name; and the verify page's labels for it.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidConfigWizard.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"

namespace {

// Characters of a default name buffer.
constexpr UINTN kDefaultNameCharacters = 20;
// Most profile entries of one policy list looked at.
constexpr UINT32 kMaxPolicies = 32;
// Most drives a simple configuration takes.
constexpr UINT32 kMaxMembers = 256;

constexpr UINT32 kVerifyPage = RAID_PAGE_SIMPLE_VERIFY;

// The planner's helpers below trace under Caller's name, the planner's.

// The first entry marked default, or NULL.
[[nodiscard]] RAID_POLICY_ENTRY *DefaultEntry(RAID_POLICY_ENTRY **Entries,
                                              UINT32 Count) {
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Entries[Index]->IsDefault != 0) {
      return Entries[Index];
    }
  }
  return nullptr;
}

// The stripe size: fixed by level on Intel RSTe, else the profile's default.
[[nodiscard]] UINT32 DefaultStripeSize(const CHAR8 *Caller,
                                       const RAID_CAPABILITY *Capability,
                                       UINT32 Level) {
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE) {
    switch (Level) {
      case 1:
        return RAID_STRIPE_SIZE_OTHER;
      case 0:
      case 5:
        return 128;
      case 10:
        return 64;
      default:
        return 0;
    }
  }
  RAID_POLICY_ENTRY *Entries[kMaxPolicies] = {};
  const UINT32 Count = RaidCollectStripeSizes(Capability, Entries, kMaxPolicies);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Stripe size count is %d\n",
                Count);
  if (Count == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] No strip size found\n");
    return RAID_STRIPE_SIZE_OTHER;
  }
  RAID_POLICY_ENTRY *Default = DefaultEntry(Entries, Count);
  if (Default == nullptr) {
    return 0;
  }
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] The default stripe size is %S\n", Default->Name);
  return RaidStripeSizeCode(Default->Name);
}

// One policy of the planned virtual disk: the profile list it comes from,
// the field it sets, the value when the list is empty, and its trace lines
// (count, empty list, default found).
struct DEFAULT_POLICY {
  UINT32 (*Collect)(const RAID_CAPABILITY *, RAID_POLICY_ENTRY **, UINT32);
  UINT32 RAID_VOLUME_PARAMETER::*Field;
  UINT32 Other;
  const CHAR8 *CountTrace;
  const CHAR8 *MissingTrace;
  const CHAR8 *DefaultTrace;
};

constexpr DEFAULT_POLICY kDefaultPolicies[] = {
    {RaidCollectReadPolicies, &RAID_VOLUME_PARAMETER::ReadPolicy,
     RAID_READ_POLICY_OTHER, "RAID: [%a] Read policy count is %d\n",
     "RAID: [%a] The read policy is not available\n",
     "RAID: [%a] Use the default read policy: %S\n"},
    {RaidCollectWritePolicies, &RAID_VOLUME_PARAMETER::WritePolicy,
     RAID_WRITE_POLICY_OTHER, "RAID: [%a] Write policy count is %d\n",
     "RAID: [%a] The write policy is not available\n",
     "RAID: [%a] Use the default write policy: %S\n"},
    {RaidCollectIoPolicies, &RAID_VOLUME_PARAMETER::IoPolicy,
     RAID_IO_POLICY_OTHER, "RAID: [%a] IO policy count is %d\n",
     "RAID: [%a] IO policy is not available\n",
     "RAID: [%a] Use default IO policy: %S\n"},
    // The default is traced with the I/O policy's words, as the adapter
    // logs have it.
    {RaidCollectDiskCachePolicies, &RAID_VOLUME_PARAMETER::DiskCachePolicy,
     RAID_DISK_CACHE_POLICY_OTHER, "RAID: [%a] Disk cache policy count is %d\n",
     "RAID: [%a] Disk cache policy is not available\n",
     "RAID: [%a] Use default IO policy: %S\n"},
};

// Sets Policy's field of Parameter to the profile's default; the trace
// lines carry Caller's name.
VOID ApplyDefaultPolicy(const CHAR8 *Caller, const DEFAULT_POLICY &Policy,
                        const RAID_CAPABILITY *Capability,
                        RAID_VOLUME_PARAMETER *Parameter) {
  RAID_POLICY_ENTRY *Entries[kMaxPolicies] = {};
  const UINT32 Count = Policy.Collect(Capability, Entries, kMaxPolicies);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, Policy.CountTrace, Count);
  RAID_POLICY_ENTRY *Default = DefaultEntry(Entries, Count);
  Parameter->*Policy.Field = Policy.Other;
  if (Count == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, Policy.MissingTrace);
  } else if (Default != nullptr) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, Policy.DefaultTrace, Default->Name);
    Parameter->*Policy.Field = Default->Value;
  }
}

// The profile's default policies into Parameter.
VOID DefaultPolicies(const CHAR8 *Caller, const RAID_CAPABILITY *Capability,
                     RAID_VOLUME_PARAMETER *Parameter) {
  for (const DEFAULT_POLICY &Policy : kDefaultPolicies) {
    ApplyDefaultPolicy(Caller, Policy, Capability, Parameter);
  }
}

// How many drives the level takes: bounded by the level's maximum, one
// less for a hot spare, even for the mirrored and spanned levels.
[[nodiscard]] UINT32 MemberCount(const RAID_LEVEL_CAP *Level,
                                 BOOLEAN HotSpare) {
  RAID_DRIVE_COUNTS Counts;
  GetUGoodJbodReadyCount(&Counts);
  UINT32 Count = 0;
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
      gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF) {
    Count = Counts.UGood < Level->MaxPhysicalDrives ? Counts.UGood
                                                    : Level->MaxPhysicalDrives;
  } else if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE ||
             gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP) {
    Count = Counts.Ready < Level->MaxPhysicalDrives ? Counts.Ready
                                                    : Level->MaxPhysicalDrives;
  }
  if (HotSpare && Count != 0) {
    Count--;
  }
  // Rounded down to even by the mask 0xFFE, deliberately as it always was
  // (it also bounds the count); keep the mask.
  if (Level->Level == 1 || Level->Level == 10 || Level->Level == 50 ||
      Level->Level == 60) {
    Count &= 0xFFE;
  }
  return Count > kMaxMembers ? kMaxMembers : Count;
}

[[nodiscard]] BOOLEAN IsMemberState(UINT32 State) {
  return State == RAID_STATE_UGOOD || State == RAID_STATE2_UGOOD ||
         State == RAID_STATE3_READY || State == RAID_STATE4_NON_RAID;
}

// Takes the first Count eligible drives; returns how many were found, the
// smallest capacity and whether they differ. *LastIndex is the position of
// the last member in the drive list.
[[nodiscard]] UINT32 PickMembers(const CHAR8 *Caller, UINT32 *Ids, UINT32 Count,
                                 UINT64 *Smallest, BOOLEAN *Unequal,
                                 UINT32 *LastIndex) {
  UINT32 Found = 0;
  UINT32 Position = 0;
  *Smallest = 0;
  *Unequal = FALSE;
  *LastIndex = 0;
  for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
           gCurrentRaidController->PhysicalDriveList)) {
    Position++;
    if (Found >= Count) {
      break;
    }
    if (!IsMemberState(Drive->State)) {
      continue;
    }
    const UINT64 Capacity = RaidDriveCapacity(Drive);
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Disk drive %d capacity is %dGB\n", Drive->Id,
                  static_cast<UINT32>(Capacity / 1000));
    if (Found != 0 && Capacity != *Smallest) {
      *Unequal = TRUE;
    }
    if (Found == 0 || Capacity < *Smallest) {
      *Smallest = Capacity;
    }
    Ids[Found++] = Drive->Id;
    *LastIndex = Position;
  }
  return Found;
}

// The first unconfigured-good drive after position After of the list.
[[nodiscard]] BOOLEAN PickHotSpare(UINT32 After, UINT32 *Id) {
  UINT32 Position = 0;
  for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
           gCurrentRaidController->PhysicalDriveList)) {
    if (++Position <= After) {
      continue;
    }
    if (Drive->State == RAID_STATE_UGOOD || Drive->State == RAID_STATE2_UGOOD) {
      *Id = Drive->Id;
      return TRUE;
    }
  }
  return FALSE;
}

// Page 4's labels for the planned virtual disk.
VOID FillVerifyLabels(const RAID_VOLUME_PARAMETER *Parameter,
                      BOOLEAN Unequal) {
  // The MBR warning is never shown, deliberately, as on the advanced page.
  RaidHideControl(kVerifyPage, RAID_NODE_VERIFY_MBR_WARNING);
  RaidSetLabel(kVerifyPage, RAID_NODE_VERIFY_LEVEL,
               RaidFormatNumberText(STR_RAID_LEVEL_VALUE, Parameter->RaidLevel));
  RaidSetLabel(kVerifyPage, RAID_NODE_VERIFY_DRIVES,
               RaidFormatNumberText(STR_DISK_DRIVES_COUNT,
                                    Parameter->DriveCount));
  RaidSetLabel(kVerifyPage, RAID_NODE_VERIFY_SPARES,
               RaidFormatNumberText(STR_DEDICATED_HOT_SPARES_COUNT,
                                    Parameter->SpareList != nullptr ? 1 : 0));
  RaidSetLabel(kVerifyPage, RAID_NODE_VERIFY_ALLOCATED,
               RaidFormatNumberText(STR_ALLOCATED_CAPACITY_GB,
                                    static_cast<UINT32>(gRaidAllocatedCapacity)));
  const CHAR16 *FreeFormat = RaidString(STR_FREE_CAPACITY_GB);
  RaidSetLabel(kVerifyPage, RAID_NODE_VERIFY_FREE,
               RaidFormatText(StrLen(FreeFormat) + 25, FreeFormat,
                              gRaidTotalCapacity - gRaidAllocatedCapacity));
  if (Unequal) {
    RaidShowControl(kVerifyPage, RAID_NODE_VERIFY_UNEQUAL_WARNING);
  } else {
    RaidHideControl(kVerifyPage, RAID_NODE_VERIFY_UNEQUAL_WARNING);
  }
}

}  // namespace

VOID GetDefaultVolumeName(CHAR16 *Name, UINTN NameCharacters) {
  // From 1, deliberately, where the advanced pop-up starts at 0.
  for (UINT32 Number = 1;; Number++) {
    UnicodeSPrint(Name, NameCharacters * sizeof(CHAR16), u"Volume%d", Number);
    if (!CheckVolumeNameInAllArray(Name)) {
      break;
    }
  }
  RAID_TRACE(TARN_DEBUG_INFO, "[%a] Set the VD name to %S\n", Name);
}

BOOLEAN UpdateSimpleConfigNewVolumeParameters() {
  RAID_LEVEL_CAP *Level = RaidSelectedLevel();
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  RaidFreeVolumeParameterQueue();
  if (Level == nullptr || Controller == nullptr) {
    return TRUE;
  }
  RAID_VOLUME_PARAMETER *Parameter = uefi::AllocateRecord<RAID_VOLUME_PARAMETER>();
  const UINTN NameCharacters =
      Controller->Capability != nullptr &&
              Controller->Capability->MaxVolumeNameStingLength + 1 >
                  kDefaultNameCharacters
          ? Controller->Capability->MaxVolumeNameStingLength + 1
          : kDefaultNameCharacters;
  UINT32 *Ids = static_cast<UINT32 *>(
      AllocateZeroPool(sizeof(UINT32) * (kMaxMembers + 1)));
  if (Parameter != nullptr) {
    Parameter->Name = static_cast<CHAR16 *>(
        AllocateZeroPool(NameCharacters * sizeof(CHAR16)));
  }
  if (Parameter == nullptr || Parameter->Name == nullptr || Ids == nullptr) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resources\n");
    FreePool(Ids);
    FreeVolumeParameter(&Parameter);
    return FALSE;
  }
  GetDefaultVolumeName(Parameter->Name, NameCharacters);
  Parameter->StripeSize =
      DefaultStripeSize(__func__, Controller->Capability, Level->Level);
  DefaultPolicies(__func__, Controller->Capability, Parameter);
  Parameter->ControllerId = gRaidSelectedControllerIndex;
  Parameter->NewArray = 1;
  Parameter->Reserved = 1;
  Parameter->RaidLevel = static_cast<UINT8>(Level->Level);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RAID level is %d\n", Level->Level);

  const BOOLEAN HotSpare = RaidSimpleHotSpareWanted();
  const UINT32 Wanted = MemberCount(Level, HotSpare);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Selected disk drive count is %d\n",
             Wanted);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Current RAID adapter's disk drive count is %d\n",
             Controller->DiskDriveCount);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Current RAID adapter's free disk drive count is %d\n",
             Controller->UnconfiguredDriveCount);
  UINT64 Smallest = 0;
  BOOLEAN Unequal = FALSE;
  UINT32 LastIndex = 0;
  Parameter->DriveCount =
      PickMembers(__func__, Ids, Wanted, &Smallest, &Unequal, &LastIndex);
  Parameter->DriveList = RaidCopyDriveIds(Ids, Parameter->DriveCount);
  FreePool(Ids);

  Parameter->Size =
      RaidLevelCapacity(Level->Level, Smallest, Parameter->DriveCount);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] New volume's size is %dGB\n",
             static_cast<UINT32>(Parameter->Size / 1000));
  gRaidTotalCapacity = Parameter->Size / 1000;
  gRaidAllocatedCapacity = Parameter->Size / 1000;

  UINT32 SpareId = 0;
  const BOOLEAN Spare = HotSpare && PickHotSpare(LastIndex, &SpareId);
  if (Spare) {
    Parameter->SpareList = RaidCopyDriveIds(&SpareId, 1);
  }
  // A plan missing its members or its spare would create something other
  // than what the verify page shows: none is made.
  if (!RaidPlannedRecordIsWhole(Parameter, Spare ? 1 : 0)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resources\n");
    FreeVolumeParameter(&Parameter);
    return FALSE;
  }
  FillVerifyLabels(Parameter, Unequal);
  RaidEnqueueVolumeParameter(Parameter);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n\n");
  return TRUE;
}
