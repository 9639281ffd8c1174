// The capability profile raid.xml. The parser delivers one element at a
// time; the start callback builds the family's record in gCapability, and
// the CONTROLLER end element hands it to every controller whose pcidb.xml
// entry names the family.
#include "RaidXml.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace {

// The four policy containers, in the priority a POLICY element is filed by.
enum PolicyContainer : UINTN {
  kInReadPolicy,
  kInWritePolicy,
  kInIoPolicy,
  kInDiskCache,
  kContainerCount,
};

struct ParserState {
  BOOLEAN Inside[kContainerCount];
  UINT32 CurrentLevel;
  // An element or a copy could not be allocated: the profile is not the
  // file's, and a level, policy or stripe size may be missing from it.
  BOOLEAN ShortOfMemory;
  // The record under construction named a tool no command line can carry:
  // no adapter gets it.
  BOOLEAN ToolRefused;
};

constinit ParserState gState = {{FALSE, FALSE, FALSE, FALSE},
                                RAID_XML_NO_LEVEL, FALSE, FALSE};

// Notes a failed allocation; returns Allocated.
bool Noted(bool Allocated) {
  if (!Allocated) {
    gState.ShortOfMemory = TRUE;
  }
  return Allocated;
}

struct ContainerElement {
  const CHAR16 *Name;
  PolicyContainer Container;
  RAID_POLICY_KIND Kind;
  LIST_ENTRY RAID_CAPABILITY::*List;
};

constexpr ContainerElement kContainers[] = {
    {u"READPOLICY", kInReadPolicy, RaidPolicyRead,
     &RAID_CAPABILITY::ReadPolicyList},
    {u"WRITEPOLICY", kInWritePolicy, RaidPolicyWrite,
     &RAID_CAPABILITY::WritePolicyList},
    {u"IOPOLICY", kInIoPolicy, RaidPolicyIo, &RAID_CAPABILITY::IoPolicyList},
    {u"PDCACHE", kInDiskCache, RaidPolicyDiskCache,
     &RAID_CAPABILITY::DiskCachePolicyList},
};

struct LimitElement {
  const CHAR16 *Name;
  UINT32 RAID_CAPABILITY::*Field;
};

constexpr LimitElement kLimits[] = {
    {u"MaxVolumeNameStingLength", &RAID_CAPABILITY::MaxVolumeNameStingLength},
    {u"MaxHotSpares", &RAID_CAPABILITY::MaxHotSpares},
    {u"MaxArrays", &RAID_CAPABILITY::MaxArrays},
    {u"MaxLogicalDrivesInArray", &RAID_CAPABILITY::MaxLogicalDrivesInArray},
    {u"MaxTotalLogicalDrives", &RAID_CAPABILITY::MaxTotalLogicalDrives},
    {u"MaxTotalPhysicalDrives", &RAID_CAPABILITY::MaxTotalPhysicalDrives},
};

struct LevelBlock {
  const CHAR16 *Name;
  UINT32 Level;
};

constexpr LevelBlock kLevelBlocks[] = {
    {u"R0", 0}, {u"R1", 1},   {u"R10", 10}, {u"R5", 5},
    {u"R50", 50}, {u"R6", 6}, {u"R60", 60},
};

struct LevelLimitElement {
  const CHAR16 *Name;
  UINT32 RAID_LEVEL_CAP::*Field;
};

constexpr LevelLimitElement kLevelLimits[] = {
    {u"MinPhysicalDrives", &RAID_LEVEL_CAP::MinPhysicalDrives},
    {u"MaxPhysicalDrives", &RAID_LEVEL_CAP::MaxPhysicalDrives},
    {u"MaxLogicalDrives", &RAID_LEVEL_CAP::MaxLogicalDrives},
};

// The two positional attributes; NULL when absent or out of position.
struct ProfileAttributes {
  const CHAR16 *Id;
  const CHAR16 *Default;
};

[[nodiscard]] bool NameIs(const CHAR16 *Name, const CHAR16 *Expected) {
  return StrCmp(Name, Expected) == 0;
}

// Reads "ID" from the first pair and "DEFAULT" from the second. A pair
// missing its value ends the list.
[[nodiscard]] ProfileAttributes ReadAttributes(const CHAR16 **Attributes) {
  ProfileAttributes Result = {nullptr, nullptr};
  if (Attributes == nullptr || Attributes[0] == nullptr ||
      Attributes[1] == nullptr) {
    return Result;
  }
  if (NameIs(Attributes[0], u"ID")) {
    Result.Id = Attributes[1];
  }
  if (Attributes[2] != nullptr && Attributes[3] != nullptr &&
      NameIs(Attributes[2], u"DEFAULT")) {
    Result.Default = Attributes[3];
  }
  return Result;
}

[[nodiscard]] UINT32 ReadNumber(const CHAR16 *Text) {
  return static_cast<UINT32>(RaidLibReadDecimal(Text));
}

[[nodiscard]] UINT8 ReadIsDefault(const CHAR16 *Default) {
  return (Default != nullptr && RaidLibReadDecimal(Default) == 1) ? 1 : 0;
}

// Replaces a string field of the record (a repeated element must not leak).
VOID ReplaceText(CHAR16 **Field, const CHAR16 *Text) {
  FreePool(*Field);
  Noted(RaidLibCopyText(Text, Field));
}

[[nodiscard]] RAID_CAPABILITY *NewCapability() {
  RAID_CAPABILITY *Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  if (Capability == nullptr) {
    return nullptr;
  }
  InitializeListHead(&Capability->LevelList);
  InitializeListHead(&Capability->ReadPolicyList);
  InitializeListHead(&Capability->WritePolicyList);
  InitializeListHead(&Capability->IoPolicyList);
  InitializeListHead(&Capability->DiskCachePolicyList);
  InitializeListHead(&Capability->StripeSizeList);
  return Capability;
}

// A new level at the tail of LevelList.
VOID AddLevel(RAID_CAPABILITY *Capability, const ProfileAttributes &Attr) {
  RAID_LEVEL_CAP *Level = uefi::AllocateRecord<RAID_LEVEL_CAP>();
  if (!Noted(Level != nullptr)) {
    return;
  }
  if (!Noted(RaidLibCopyText(Attr.Id, &Level->Name))) {
    FreePool(Level);
    return;
  }
  Level->Level = Attr.Id != nullptr ? ReadNumber(Attr.Id) : 0;
  Level->IsDefault = ReadIsDefault(Attr.Default);
  InsertTailList(&Capability->LevelList, &Level->Link);
}

// A new entry at the tail of List, its value from the word list of Kind.
VOID AddPolicy(LIST_ENTRY *List, RAID_POLICY_KIND Kind,
               const ProfileAttributes &Attr) {
  RAID_POLICY_ENTRY *Entry = uefi::AllocateRecord<RAID_POLICY_ENTRY>();
  if (!Noted(Entry != nullptr)) {
    return;
  }
  if (!Noted(RaidLibCopyText(Attr.Id, &Entry->Name))) {
    FreePool(Entry);
    return;
  }
  Entry->Value = Attr.Id != nullptr ? RaidLibPolicyValue(Kind, Attr.Id)
                                    : RAID_POLICY_VALUE_NONE;
  Entry->IsDefault = ReadIsDefault(Attr.Default);
  InsertTailList(List, &Entry->Link);
}

// A POLICY goes to the first container it is inside of; outside all four it
// is dropped.
VOID AddPolicyInContainer(RAID_CAPABILITY *Capability,
                          const ProfileAttributes &Attr) {
  for (const ContainerElement &Container : kContainers) {
    if (gState.Inside[Container.Container]) {
      AddPolicy(&(Capability->*Container.List), Container.Kind, Attr);
      return;
    }
  }
}

// Sets a per-level limit in every level record of the current level. Outside
// an R block, or before the LEVEL it describes, it reaches nothing.
VOID SetLevelLimit(RAID_CAPABILITY *Capability,
                   UINT32 RAID_LEVEL_CAP::*Field, const CHAR16 *Id) {
  if (Id == nullptr || gState.CurrentLevel == RAID_XML_NO_LEVEL) {
    return;
  }
  UINT32 Value = ReadNumber(Id);
  for (RAID_LEVEL_CAP *Level :
       uefi::ListOf<&RAID_LEVEL_CAP::Link>(Capability->LevelList)) {
    if (Level->Level == gState.CurrentLevel) {
      Level->*Field = Value;
    }
  }
}

// A tool name that is no file name within RAID_TOOL_NAME_CHARS would make
// some command line of its family too long or split it: refused here, once,
// rather than at each command.
VOID CheckToolName(const CHAR8 *Caller, const RAID_CAPABILITY *Capability,
                   const CHAR16 *Tool) {
  gState.ToolRefused = Tool != nullptr && !RaidLibIsToolFileName(Tool);
  if (!gState.ToolRefused) {
    return;
  }
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                    "[%a]Tool name of %s (%u characters) is no file name of "
                    "up to %u characters ending in .efi: its adapters get no "
                    "profile\n",
                    Capability->ControllerName,
                    static_cast<UINT32>(StrLen(Tool)),
                    static_cast<UINT32>(RAID_TOOL_NAME_CHARS));
}

// Applies the element's row of the vocabulary; unknown elements do nothing.
VOID ApplyStartElement(const CHAR8 *Caller, RAID_CAPABILITY *Capability,
                       const CHAR16 *Name, const ProfileAttributes &Attr) {
  if (NameIs(Name, u"CONTROLLER")) {
    ReplaceText(&Capability->ControllerName, Attr.Id);
  } else if (NameIs(Name, u"TOOL")) {
    CheckToolName(Caller, Capability, Attr.Id);
    ReplaceText(&Capability->ToolName, Attr.Id);
  } else if (NameIs(Name, u"LEVEL")) {
    AddLevel(Capability, Attr);
  } else if (NameIs(Name, u"POLICY")) {
    AddPolicyInContainer(Capability, Attr);
  } else if (NameIs(Name, u"SIZE")) {
    AddPolicy(&Capability->StripeSizeList, RaidPolicyStripeSize, Attr);
  }
  for (const ContainerElement &Container : kContainers) {
    if (NameIs(Name, Container.Name)) {
      gState.Inside[Container.Container] = TRUE;
    }
  }
  for (const LimitElement &Limit : kLimits) {
    if (NameIs(Name, Limit.Name) && Attr.Id != nullptr) {
      Capability->*Limit.Field = ReadNumber(Attr.Id);
    }
  }
  for (const LevelBlock &Block : kLevelBlocks) {
    if (NameIs(Name, Block.Name)) {
      gState.CurrentLevel = Block.Level;
    }
  }
  for (const LevelLimitElement &Limit : kLevelLimits) {
    if (NameIs(Name, Limit.Name)) {
      SetLevelLimit(Capability, Limit.Field, Attr.Id);
    }
  }
}

// A controller of the family that CONTROLLER's ID names: matched in the
// database, with a private record whose StorageId is that ID exactly.
[[nodiscard]] bool IsOfFamily(const RAID_CONTROLLER *Controller,
                              const CHAR16 *Family) {
  return Family != nullptr && Controller->ToolType != RAID_TOOL_TYPE_UNMATCHED &&
         Controller->Private != nullptr &&
         Controller->Private->StorageId != nullptr &&
         StrCmp(Controller->Private->StorageId, Family) == 0;
}

// Gives a controller its capability; one it already had (a family listed
// twice) is replaced, so the last block wins and nothing leaks.
VOID GiveCapability(RAID_CONTROLLER *Controller, RAID_CAPABILITY *Capability) {
  RaidLibFreeCapability(Controller->Capability);
  Controller->Capability = Capability;
}

// Hands gCapability to its family: the first controller gets the record,
// every further one a deep copy. Unclaimed, the record is freed.
VOID HandOutCapability() {
  RAID_CAPABILITY *Record = gCapability;
  gCapability = nullptr;
  bool Claimed = false;
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    if (!IsOfFamily(Controller, Record->ControllerName)) {
      continue;
    }
    RAID_CAPABILITY *Given = Claimed ? RaidXmlCopyCapability(Record) : Record;
    Noted(Given != nullptr);
    GiveCapability(Controller, Given);
    Claimed = true;
  }
  if (!Claimed) {
    RaidLibFreeCapability(Record);
  }
}

// Copies a list of named profile records (levels or policies); FALSE when
// the pool ran out.
template <typename Record>
[[nodiscard]] bool CopyNamedRecords(LIST_ENTRY *Target, LIST_ENTRY *Source) {
  for (Record *From : uefi::ListOf<&Record::Link>(*Source)) {
    Record *Copy = uefi::AllocateRecord<Record>();
    if (Copy == nullptr) {
      return false;
    }
    *Copy = *From;
    if (!RaidLibCopyText(From->Name, &Copy->Name)) {
      FreePool(Copy);
      return false;
    }
    InsertTailList(Target, &Copy->Link);
  }
  return true;
}

[[nodiscard]] bool CopyLevels(LIST_ENTRY *Target, LIST_ENTRY *Source) {
  return CopyNamedRecords<RAID_LEVEL_CAP>(Target, Source);
}

[[nodiscard]] bool CopyPolicies(LIST_ENTRY *Target, LIST_ENTRY *Source) {
  return CopyNamedRecords<RAID_POLICY_ENTRY>(Target, Source);
}

}  // namespace

// Builds the profile record element by element.
VOID EFIAPI RaidXmlTagStart(VOID *UserData, const CHAR16 *Name,
                            const CHAR16 **Attributes) {
  if (Name == nullptr) {
    return;
  }
  if (gCapability == nullptr) {
    gCapability = NewCapability();
    if (!Noted(gCapability != nullptr)) {
      return;
    }
  }
  ApplyStartElement(__func__, gCapability, Name, ReadAttributes(Attributes));
}

// Ends CONTROLLER (hand-out), a policy container, or an R block.
VOID EFIAPI RaidXmlTagEnd(VOID *UserData, const CHAR16 *Name) {
  if (Name == nullptr) {
    return;
  }
  if (NameIs(Name, u"CONTROLLER")) {
    // The scopes stay as they are on this early return.
    if (!IsListLive(&gControllerList) ||
        IsListEmpty(&gControllerList) || gCapability == nullptr) {
      RAID_LIB_TRACE(TARN_DEBUG_INFO,
                     "[%a]IsListEmpty(&gControllerList) || gCapability == NULL\n");
      return;
    }
    if (gState.ToolRefused) {
      RaidLibFreeCapability(gCapability);
      gCapability = nullptr;
      gState.ToolRefused = FALSE;
      return;
    }
    HandOutCapability();
    return;
  }
  for (const ContainerElement &Container : kContainers) {
    if (NameIs(Name, Container.Name)) {
      gState.Inside[Container.Container] = FALSE;
    }
  }
  for (const LevelBlock &Block : kLevelBlocks) {
    if (NameIs(Name, Block.Name)) {
      gState.CurrentLevel = RAID_XML_NO_LEVEL;
    }
  }
}

// Starts a parse from a clean state.
VOID RaidXmlResetParserState() {
  RaidLibFreeCapability(gCapability);
  gCapability = nullptr;
  gState = ParserState{
      {FALSE, FALSE, FALSE, FALSE}, RAID_XML_NO_LEVEL, FALSE, FALSE};
}

BOOLEAN RaidXmlShortOfMemory() { return gState.ShortOfMemory; }

// Ends a parse: nothing may stay half built in gCapability.
VOID RaidXmlFinishParsing() { RaidXmlResetParserState(); }

// Copies the whole record; on any allocation failure frees the partial copy.
RAID_CAPABILITY *RaidXmlCopyCapability(const RAID_CAPABILITY *Source) {
  if (Source == nullptr) {
    return nullptr;
  }
  RAID_CAPABILITY *Copy = NewCapability();
  if (Copy == nullptr) {
    return nullptr;
  }
  Copy->MaxVolumeNameStingLength = Source->MaxVolumeNameStingLength;
  Copy->MaxHotSpares = Source->MaxHotSpares;
  Copy->MaxArrays = Source->MaxArrays;
  Copy->MaxLogicalDrivesInArray = Source->MaxLogicalDrivesInArray;
  Copy->MaxTotalLogicalDrives = Source->MaxTotalLogicalDrives;
  Copy->MaxTotalPhysicalDrives = Source->MaxTotalPhysicalDrives;
  // The walks do not change the source; the list helpers take it mutable.
  RAID_CAPABILITY *From = const_cast<RAID_CAPABILITY *>(Source);
  bool Complete =
      RaidLibCopyText(Source->ControllerName, &Copy->ControllerName) &&
      RaidLibCopyText(Source->ToolName, &Copy->ToolName) &&
      CopyLevels(&Copy->LevelList, &From->LevelList) &&
      CopyPolicies(&Copy->ReadPolicyList, &From->ReadPolicyList) &&
      CopyPolicies(&Copy->WritePolicyList, &From->WritePolicyList) &&
      CopyPolicies(&Copy->IoPolicyList, &From->IoPolicyList) &&
      CopyPolicies(&Copy->DiskCachePolicyList, &From->DiskCachePolicyList) &&
      CopyPolicies(&Copy->StripeSizeList, &From->StripeSizeList);
  if (!Complete) {
    RaidLibFreeCapability(Copy);
    return nullptr;
  }
  return Copy;
}
