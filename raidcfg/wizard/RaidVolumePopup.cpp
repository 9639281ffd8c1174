// The pop-up of page 8 that creates or edits one planned virtual disk: its
// name, its capacity (edit box and slider) and its stripe size, read,
// write, I/O and drive cache policies. All virtual disks of one array share
// the first one's stripe size, and the policies offered stay those of the
// first virtual disk.
#include <Library/BaseLib.h>
#include <Library/DebugLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
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

// Combo boxes of the pop-up, in the order the policies are filled.
enum : UINT32 { kStripe, kRead, kWrite, kIo, kCache, kPolicyCount };

constexpr UINT32 kComboIds[kPolicyCount] = {
    RAID_NODE_POPUP_STRIPE_COMBO, RAID_NODE_POPUP_READ_COMBO,
    RAID_NODE_POPUP_WRITE_COMBO, RAID_NODE_POPUP_IO_COMBO,
    RAID_NODE_POPUP_CACHE_COMBO};
constexpr UINT32 kLabelIds[kPolicyCount] = {
    RAID_NODE_POPUP_STRIPE_LABEL, RAID_NODE_POPUP_READ_LABEL,
    RAID_NODE_POPUP_WRITE_LABEL, RAID_NODE_POPUP_IO_LABEL,
    RAID_NODE_POPUP_CACHE_LABEL};

constexpr UINT32 kMaxPolicies = 32;
constexpr UINT32 kDefaultNames = 32;
constexpr UINTN kNameCharacters = 12;
constexpr UINTN kMaxLabelCharacters = 15;
constexpr UINTN kMessageCharacters = 256;
// Names the pop-up holds, terminator included. Profiles allow far shorter
// names; a longer one is refused as too long whatever the profile says.
constexpr UINTN kMaxNameCharacters = 256;
// Result of the name check.
constexpr UINT32 kNameValid = 0;
constexpr UINT32 kNameDuplicate = 1;
constexpr UINT32 kNameBadForm = 2;

constinit HOST_PAGE_NODE *gPopupRoot = nullptr;
constinit UINT8 gCreateMode = 1;
constinit CHAR16 gNameBeforeEdit[kMaxNameCharacters] = {};
constinit UINT8 gPresent[kPolicyCount] = {};
// The capacity in whole GB the edit box and slider hold.
constinit UINT64 gCapacity = 0;
// The record being edited (edit mode), and its size in whole GB.
constinit RAID_VOLUME_PARAMETER *gEdited = nullptr;
constinit UINT64 gEditedSize = 0;

// ---- The pop-up's controls --------------------------------------------------

[[nodiscard]] HOST_PAGE_NODE *PopupNode(UINT32 NodeId) {
  HOST_PAGE_NODE *Node = nullptr;
  if (gPopupRoot == nullptr || TarnSetupProtocol == nullptr ||
      TarnSetupProtocol->FindNode == nullptr ||
      EFI_ERROR(TarnSetupProtocol->FindNode(gPopupRoot, NodeId, &Node))) {
    return nullptr;
  }
  return Node;
}

VOID SetState(UINT32 NodeId, UINT8 State) {
  HOST_PAGE_NODE *Node = PopupNode(NodeId);
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL) {
    return;
  }
  Node->Control->DisplayState = State;
  Node->RefreshMark |= HOST_REFRESH_STATE;
}

VOID ShowPopup(UINT32 FocusNodeId) {
  if (gPopupRoot != nullptr && TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->ShowPage != nullptr) {
    TarnSetupProtocol->ShowPage(gPopupRoot, FocusNodeId);
  }
}

// The text an edit box shows now: the operator's, else the module's.
[[nodiscard]] const CHAR16 *EditText(UINT32 NodeId) {
  HOST_PAGE_NODE *Node = PopupNode(NodeId);
  if (Node == nullptr) {
    return u"";
  }
  if (Node->Control != nullptr && Node->Control != HOST_NODE_NO_CONTROL &&
      Node->Control->CachedText != nullptr) {
    return Node->Control->CachedText;
  }
  const CHAR16 *Text = RaidControlText(Node);
  return Text != nullptr ? Text : u"";
}

VOID SetText(UINT32 NodeId, CHAR16 *Text) {
  RaidSetControlText(PopupNode(NodeId), Text);
}

VOID SetNumberText(UINT32 NodeId, UINT64 Number) {
  SetText(NodeId, RaidFormatText(kMaxLabelCharacters, u"%ld", Number));
}

[[nodiscard]] BOOLEAN IsBlank(CHAR16 Char) {
  return Char == u' ' || Char == u'\t';
}

// Text without its leading and trailing blanks and tabs, in Out (cut to
// fit). Returns the trimmed length before any cut.
[[nodiscard]] UINTN TrimName(const CHAR16 *Text, CHAR16 *Out,
                             UINTN OutCharacters) {
  while (*Text != 0 && IsBlank(*Text)) {
    Text++;
  }
  UINTN Length = StrLen(Text);
  while (Length != 0 && IsBlank(Text[Length - 1])) {
    Length--;
  }
  const UINTN Kept = Length < OutCharacters ? Length : OutCharacters - 1;
  for (UINTN Index = 0; Index < Kept; Index++) {
    Out[Index] = Text[Index];
  }
  Out[Kept] = 0;
  return Length;
}

[[nodiscard]] UINT32 MaxNameLength() {
  return gCurrentRaidController != nullptr &&
                 gCurrentRaidController->Capability != nullptr
             ? gCurrentRaidController->Capability->MaxVolumeNameStingLength
             : 0;
}

[[nodiscard]] BOOLEAN IsIntelRaid1() {
  return gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE &&
         gRaidSelectedLevelNumber == 1;
}

[[nodiscard]] UINT64 LeftCapacity() {
  return gRaidTotalCapacity > gRaidAllocatedCapacity
             ? gRaidTotalCapacity - gRaidAllocatedCapacity
             : 0;
}

// ---- Policies ------------------------------------------------------------------

[[nodiscard]] UINT32 CollectPolicy(UINT32 Kind, RAID_POLICY_ENTRY **Entries) {
  const RAID_CAPABILITY *Capability =
      gCurrentRaidController != nullptr ? gCurrentRaidController->Capability
                                        : nullptr;
  switch (Kind) {
    case kStripe:
      return RaidCollectStripeSizes(Capability, Entries, kMaxPolicies);
    case kRead:
      return RaidCollectReadPolicies(Capability, Entries, kMaxPolicies);
    case kWrite:
      return RaidCollectWritePolicies(Capability, Entries, kMaxPolicies);
    case kIo:
      return RaidCollectIoPolicies(Capability, Entries, kMaxPolicies);
    default:
      return RaidCollectDiskCachePolicies(Capability, Entries, kMaxPolicies);
  }
}

// The code of a combo box's text: the profile entry of that name, else the
// word's code.
[[nodiscard]] UINT32 PolicyCode(UINT32 Kind, const CHAR16 *Text) {
  if (Text == nullptr) {
    Text = u"";
  }
  if (Kind == kStripe) {
    return RaidStripeSizeCode(Text);
  }
  RAID_POLICY_ENTRY *Entries[kMaxPolicies] = {};
  const UINT32 Count = CollectPolicy(Kind, Entries);
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (StrCmp(Entries[Index]->Name, Text) == 0 &&
        Entries[Index]->Value != RAID_POLICY_VALUE_NONE) {
      return Entries[Index]->Value;
    }
  }
  switch (Kind) {
    case kRead:
      return RaidReadPolicyCode(Text);
    case kWrite:
      return RaidWritePolicyCode(Text);
    case kIo:
      return RaidIoPolicyCode(Text);
    default:
      return RaidDiskCachePolicyCode(Text);
  }
}

// The code a record gets for a policy the pop-up does not offer.
[[nodiscard]] UINT32 AbsentCode(UINT32 Kind) {
  switch (Kind) {
    case kStripe:
      return RAID_STRIPE_SIZE_OTHER;
    case kRead:
      return RAID_READ_POLICY_OTHER;
    case kWrite:
      return RAID_WRITE_POLICY_OTHER;
    case kIo:
      return RAID_IO_POLICY_OTHER;
    default:
      return RAID_DISK_CACHE_POLICY_OTHER;
  }
}

// The code of the option chosen for Kind, or the absent code when the
// pop-up does not offer it. FALSE when it is offered but its combo box
// holds no chosen option (its list could not be filled): the code would be
// the list's "other" code, which the operator never chose.
[[nodiscard]] BOOLEAN ChosenCode(UINT32 Kind, UINT32 *Code) {
  if (gPresent[Kind] == 0) {
    *Code = AbsentCode(Kind);
    return TRUE;
  }
  const CHAR16 *Text = RaidChosenOptionText(PopupNode(kComboIds[Kind]));
  if (Text == nullptr) {
    return FALSE;
  }
  *Code = PolicyCode(Kind, Text);
  return TRUE;
}

// The codes of all five policies as the pop-up shows them; FALSE when one
// of them has no chosen option.
[[nodiscard]] BOOLEAN ChosenCodes(UINT32 (&Codes)[kPolicyCount]) {
  for (UINT32 Kind = 0; Kind < kPolicyCount; Kind++) {
    if (!ChosenCode(Kind, &Codes[Kind])) {
      return FALSE;
    }
  }
  return TRUE;
}

// Chooses the option of a combo box whose code is Code (no change when
// none has it).
VOID ChooseByCode(UINT32 Kind, UINT32 Code) {
  HOST_PAGE_NODE *Combo = PopupNode(kComboIds[Kind]);
  HOST_OPTION_LIST *List = RaidControlOptions(Combo);
  for (UINT32 Index = 0; List != nullptr && Index < List->Count; Index++) {
    if (PolicyCode(Kind, List->Options[Index].Text) == Code) {
      RaidSetControlValue(Combo, Index);
      return;
    }
  }
}

// Whether an Intel RSTe stripe size is left out for the level.
[[nodiscard]] BOOLEAN StripeLeftOut(UINT32 Code) {
  if (gRaidAdapterKind != RAID_ADAPTER_KIND_RSTE) {
    return FALSE;
  }
  return (gRaidSelectedLevelNumber == 5 && (Code == 4 || Code == 8)) ||
         (gRaidSelectedLevelNumber == 10 && Code == 128);
}

// Fills one policy's combo box from the profile; FALSE when its options
// could not be allocated. Traced under Caller's name.
[[nodiscard]] BOOLEAN FillPolicyCombo(const CHAR8 *Caller, UINT32 Kind) {
  static constexpr const CHAR8 *kTraces[kPolicyCount] = {
      "RAID: [%a] stripe size count is %d\n",
      "RAID: [%a] read policy count is %d\n",
      "RAID: [%a] write policy count is %d\n",
      "RAID: [%a] IO policy count is %d\n",
      "RAID: [%a] disk cache policy count is %d\n"};
  RAID_POLICY_ENTRY *Entries[kMaxPolicies] = {};
  const UINT32 Count = CollectPolicy(Kind, Entries);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, kTraces[Kind], Count);
  HOST_PAGE_NODE *Combo = PopupNode(kComboIds[Kind]);
  if (Count == 0) {
    SetState(kLabelIds[Kind], HOST_DISPLAY_HIDDEN);
    SetState(kComboIds[Kind], HOST_DISPLAY_HIDDEN);
    gPresent[Kind] = 0;
    return TRUE;
  }
  if (Kind == kStripe && IsIntelRaid1()) {
    // Hidden and not read: the record carries "no stripe size" whatever
    // the box holds.
    const CHAR16 *NotApplicable[] = {u"N/A"};
    (VOID) RaidSetTextOptions(Combo, NotApplicable, 1);
    RaidSetControlValue(Combo, 0);
    SetState(kComboIds[Kind], HOST_DISPLAY_HIDDEN);
    gPresent[Kind] = 0;
    return TRUE;
  }
  const CHAR16 *Texts[kMaxPolicies] = {};
  UINT16 Offered = 0;
  UINT32 Default = 0;
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Entries[Index]->IsDefault != 0) {
      Default = Index;
    }
    if (Kind == kStripe && StripeLeftOut(RaidStripeSizeCode(Entries[Index]->Name))) {
      continue;
    }
    Texts[Offered++] = Entries[Index]->Name;
  }
  if (!RaidSetTextOptions(Combo, Texts, Offered)) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return FALSE;
  }
  // The default's index in the profile's whole list, also where entries
  // were left out: deliberate, the selection follows the profile's own
  // numbering.
  RaidSetControlValue(Combo, Default < Offered ? Default : 0);
  SetState(kComboIds[Kind], HOST_DISPLAY_SHOWN);
  SetState(kLabelIds[Kind], HOST_DISPLAY_SHOWN);
  gPresent[Kind] = 1;
  return TRUE;
}

// FALSE when a policy's options could not be filled.
[[nodiscard]] BOOLEAN RaidPolicyDisplay() {
  for (UINT32 Kind = 0; Kind < kPolicyCount; Kind++) {
    if (!FillPolicyCombo(__func__, Kind)) {
      return FALSE;
    }
  }
  return TRUE;
}

// ---- Checks ---------------------------------------------------------------------

// Create is usable with a name and a capacity.
VOID ValidateCreateVolumePage() {
  const CHAR16 *Name = EditText(RAID_NODE_POPUP_NAME_EDIT);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] name - %S\n", Name);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] size - %d\n",
             static_cast<UINT32>(gCapacity));
  SetState(RAID_NODE_POPUP_CREATE, Name[0] != 0 && gCapacity != 0
                                       ? HOST_DISPLAY_SHOWN
                                       : HOST_DISPLAY_GRAYED);
}

[[nodiscard]] BOOLEAN PlannedNameExists(const CHAR16 *Name) {
  for (RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
       Record != nullptr; Record = Record->Next) {
    if (Record->Name != nullptr && StrCmp(Record->Name, Name) == 0) {
      return TRUE;
    }
  }
  return FALSE;
}

[[nodiscard]] BOOLEAN SelectedArrayHasName(const CHAR16 *Name) {
  RAID_ARRAY *Array = gRaidAdvancedMode == 1 ? RaidSelectedArray() : nullptr;
  if (Array == nullptr) {
    return FALSE;
  }
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume != 0 && Volume->Name != nullptr &&
        StrCmp(Volume->Name, Name) == 0) {
      return TRUE;
    }
  }
  return FALSE;
}

// 0 valid, 1 duplicate, 2 bad form. Trimmed is the name without its
// surrounding blanks.
[[nodiscard]] UINT32 ValidateVolumeName(const CHAR16 *Text, CHAR16 *Trimmed,
                                        UINTN TrimmedCharacters) {
  if (Text[0] == 0) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] volume name is empty\n");
    return kNameBadForm;
  }
  const UINTN Length = TrimName(Text, Trimmed, TrimmedCharacters);
  if (Length == 0 || Length > MaxNameLength() || Length >= TrimmedCharacters) {
    return kNameBadForm;
  }
  for (UINTN Index = 0; Index < Length; Index++) {
    const CHAR16 Char = Trimmed[Index];
    if (!((Char >= u'A' && Char <= u'Z') || (Char >= u'a' && Char <= u'z') ||
          (Char >= u'0' && Char <= u'9') || Char == u'_')) {
      return kNameBadForm;
    }
  }
  const BOOLEAN Renamed = StrCmp(Trimmed, gNameBeforeEdit) != 0;
  if ((gCreateMode != 0 || Renamed) && PlannedNameExists(Trimmed)) {
    return kNameDuplicate;
  }
  // Virtual disks of other arrays are deliberately not checked here: the
  // default name already avoids them.
  if (SelectedArrayHasName(Trimmed)) {
    return kNameDuplicate;
  }
  return kNameValid;
}

// ---- Records ---------------------------------------------------------------------

[[nodiscard]] CHAR16 *AllocName(const CHAR16 *Trimmed) {
  UINTN Characters = MaxNameLength() + 1;
  if (Characters < StrLen(Trimmed) + 1) {
    Characters = StrLen(Trimmed) + 1;
  }
  CHAR16 *Name =
      static_cast<CHAR16 *>(AllocateZeroPool(Characters * sizeof(CHAR16)));
  if (Name != nullptr) {
    EFI_STATUS Copied = StrCpyS(Name, Characters, Trimmed);
    ASSERT(!EFI_ERROR(Copied));  // Characters covers the name and its end
  }
  return Name;
}

// A virtual disk the pop-up could not plan whole: the operator is told.
VOID ReportNotPlanned(const CHAR8 *Caller) {
  RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
  ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
}

VOID CreateVolumeNode(const CHAR16 *Trimmed) {
  UINT32 Codes[kPolicyCount] = {};
  RAID_VOLUME_PARAMETER *Record = uefi::AllocateRecord<RAID_VOLUME_PARAMETER>();
  if (Record == nullptr || !ChosenCodes(Codes)) {
    FreePool(Record);
    ReportNotPlanned(__func__);
    return;
  }
  Record->Name = AllocName(Trimmed);
  Record->Size = gCapacity * 1000;
  Record->Reserved = 1;
  Record->StripeSize = IsIntelRaid1() ? RAID_STRIPE_SIZE_OTHER : Codes[kStripe];
  Record->ReadPolicy = Codes[kRead];
  Record->WritePolicy = Codes[kWrite];
  Record->IoPolicy = Codes[kIo];
  Record->DiskCachePolicy = Codes[kCache];
  Record->ControllerId = gRaidSelectedControllerIndex;
  Record->RaidLevel = static_cast<UINT8>(gRaidSelectedLevelNumber);
  if (gRaidAdvancedMode == 1) {
    RAID_ARRAY *Array = RaidSelectedArray();
    Record->NewArray = 0;
    Record->ArrayId = gRaidSelectedArrayId;
    Record->FreeSegmentId = gRaidSelectedSegmentId;
    Record->DriveCount = Array != nullptr ? Array->MemberDriveCount : 0;
  } else {
    Record->NewArray = 1;
    Record->DriveCount = gRaidMemberDriveCount;
    Record->DriveList = RaidCopyDriveIds(gRaidMemberDriveIds, gRaidMemberDriveCount);
    Record->SpareList =
        RaidCopyDriveIds(gRaidHotSpareDriveIds, gRaidHotSpareDriveCount);
  }
  // A record without its name or drive lists would create something other
  // than what the operator planned: it is not planned at all.
  if (!RaidPlannedRecordIsWhole(Record, gRaidHotSpareDriveCount)) {
    FreeVolumeParameter(&Record);
    ReportNotPlanned(__func__);
    return;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Create volume data\n");
  RaidEnqueueVolumeParameter(Record);
}

// The edit applies whole or not at all: a name that cannot be allocated,
// or a policy without a chosen option, leaves the record as it was.
VOID UpdateVolumeParameters(RAID_VOLUME_PARAMETER *Record,
                            const CHAR16 *Trimmed) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  UINT32 Codes[kPolicyCount] = {};
  CHAR16 *Name = AllocName(Trimmed);
  if (Name == nullptr || !ChosenCodes(Codes)) {
    FreePool(Name);
    ReportNotPlanned(__func__);
    return;
  }
  FreePool(Record->Name);
  Record->Name = Name;
  Record->Size = gCapacity * 1000;
  Record->Reserved = 1;
  if (Record == RaidVolumeParameterQueue()) {
    const BOOLEAN Intel = IsIntelRaid1();
    if (Intel || gPresent[kStripe] != 0) {
      const UINT32 Stripe = Intel ? RAID_STRIPE_SIZE_OTHER : Codes[kStripe];
      for (RAID_VOLUME_PARAMETER *Next = Record; Next != nullptr;
           Next = Next->Next) {
        Next->StripeSize = Stripe;
      }
    }
  }
  UINT32 RAID_VOLUME_PARAMETER::*const kFields[kPolicyCount] = {
      nullptr, &RAID_VOLUME_PARAMETER::ReadPolicy,
      &RAID_VOLUME_PARAMETER::WritePolicy, &RAID_VOLUME_PARAMETER::IoPolicy,
      &RAID_VOLUME_PARAMETER::DiskCachePolicy};
  for (UINT32 Kind = kRead; Kind < kPolicyCount; Kind++) {
    if (gPresent[Kind] != 0) {
      Record->*kFields[Kind] = Codes[Kind];
    }
  }
}

// ---- Opening ----------------------------------------------------------------------

// The limit the capacity may take.
[[nodiscard]] UINT64 CapacityLimit() {
  return LeftCapacity() + (gCreateMode == 0 ? gEditedSize : 0);
}

VOID SetCapacity(UINT64 Capacity, UINT64 Limit) {
  gCapacity = Capacity;
  SetNumberText(RAID_NODE_POPUP_CAPACITY_EDIT, Capacity);
  HOST_PAGE_NODE *Slider = PopupNode(RAID_NODE_POPUP_SLIDER);
  RaidSetControlRange(Slider, Limit);
  RaidSetControlValue(Slider, Capacity);
  SetText(RAID_NODE_POPUP_CAPACITY_MAX,
          RaidFormatText(kMaxLabelCharacters, u"%d GB MAX",
                         static_cast<UINT32>(Limit)));
}

// Attaches the pop-up page to the module once; a failure is traced under
// Caller's name.
[[nodiscard]] BOOLEAN AttachPopup(const CHAR8 *Caller) {
  if (gPopupRoot != nullptr) {
    return TRUE;
  }
  if (TarnSetupProtocol == nullptr ||
      TarnSetupProtocol->InstantiatePage == nullptr ||
      EFI_ERROR(TarnSetupProtocol->InstantiatePage(
          RaidPageTemplate(RAID_POPUP_PAGE), gRaidModuleRoot,
          gRaidModuleIdentity, &gPopupRoot))) {
    gPopupRoot = nullptr;
    RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
    return FALSE;
  }
  if (TarnSetupProtocol->BuildControlTable != nullptr) {
    TarnSetupProtocol->BuildControlTable(
        gPopupRoot, gRaidVolumePopupControls.Common,
        gRaidVolumePopupControls.CommonCount, gRaidVolumePopupControls.Own,
        gRaidVolumePopupControls.OwnCount);
  }
  return TRUE;
}

// The stripe combo box of the first virtual disk on an existing array
// shows the array's stripe size, fixed.
VOID FixStripeToArray() {
  RAID_ARRAY *Array = RaidSelectedArray();
  if (Array == nullptr) {
    return;
  }
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume != 0) {
      ChooseByCode(kStripe, Volume->StripeSize);
      break;
    }
  }
}

// Back to page 8 with nothing planned or changed.
VOID LeavePopupUnchanged() {
  gRaidSelectionChanged = 0;
  gEdited = nullptr;
  InitRaidAdvCreateEditVolPage();
}

// Opens the pop-up with the policies of the first virtual disk.
[[nodiscard]] BOOLEAN InitRaidAdvCreateVolumePage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (!AttachPopup(__func__)) {
    return FALSE;
  }
  if (RaidVolumeParameterQueue() == nullptr) {
    ShowPopup(RAID_NODE_POPUP_NAME_EDIT);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Display policy\n");
    if (!RaidPolicyDisplay()) {
      // Without its lists the pop-up would plan with policies nobody chose.
      ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
      LeavePopupUnchanged();
      return FALSE;
    }
    if (gRaidAdvancedMode == 1) {
      FixStripeToArray();
      SetState(RAID_NODE_POPUP_STRIPE_COMBO, HOST_DISPLAY_GRAYED);
    } else if (gPresent[kStripe] != 0) {
      SetState(RAID_NODE_POPUP_STRIPE_COMBO, HOST_DISPLAY_SHOWN);
    }
  } else if (gPresent[kStripe] != 0) {
    SetState(RAID_NODE_POPUP_STRIPE_COMBO, HOST_DISPLAY_GRAYED);
  }
  if (IsIntelRaid1()) {
    gPresent[kStripe] = 0;
    SetState(RAID_NODE_POPUP_STRIPE_LABEL, HOST_DISPLAY_HIDDEN);
    SetState(RAID_NODE_POPUP_STRIPE_COMBO, HOST_DISPLAY_HIDDEN);
  }
  const UINT8 Capacity =
      IfLastAvailableVirtualDisk() ? HOST_DISPLAY_GRAYED : HOST_DISPLAY_SHOWN;
  SetState(RAID_NODE_POPUP_CAPACITY_EDIT, Capacity);
  SetState(RAID_NODE_POPUP_SLIDER, Capacity);
  return TRUE;
}

// The capacity left goes into the edit box, the slider and the maximum.
VOID ValidateUpdateFreeCapacity() {
  const UINT64 Left = LeftCapacity();
  SetCapacity(Left, Left);
  ShowPopup(RAID_NODE_POPUP_NAME_EDIT);
}

// The first "VolumeN" (from 0) no planned, array or adapter virtual disk
// has; Volume31 when all are taken. The simple configuration starts at 1
// (GetDefaultVolumeName); the difference is deliberate and stays.
VOID FixupCreatePopup() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  CHAR16 Name[kNameCharacters] = {};
  for (UINT32 Number = 0; Number < kDefaultNames; Number++) {
    CHAR16 Formed[kNameCharacters] = {};
    UnicodeSPrint(Formed, sizeof(Formed), u"Volume%d", Number);
    if (TarnSetupProtocol != nullptr &&
        TarnSetupProtocol->DebugPrint != nullptr) {
      TarnSetupProtocol->DebugPrint(TARN_DEBUG_INFO,
                                    "RAID: vdnum:%d, VolNameStr:%S\n", Number,
                                    Formed);
    }
    const UINTN Length = TrimName(Formed, Name, kNameCharacters);
    ASSERT(Length < kNameCharacters);  // "Volume31" fits whole
    if (PlannedNameExists(Name) || SelectedArrayHasName(Name)) {
      continue;
    }
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] VisualSpace volume name is:%S\n",
               Name);
    if (!CheckVolumeNameInAllArray(Name)) {
      break;
    }
  }
  SetText(RAID_NODE_POPUP_NAME_EDIT, AllocString(Name));
  SetState(RAID_NODE_POPUP_CREATE, HOST_DISPLAY_SHOWN);
  ShowPopup(RAID_NODE_POPUP_NAME_EDIT);
}

// ---- Callbacks --------------------------------------------------------------------

// Keeps the operator's text as the module's, so a re-read shows it.
VOID KeepEditText(HOST_PAGE_NODE *Node) {
  if (Node != nullptr && Node->Control != nullptr &&
      Node->Control != HOST_NODE_NO_CONTROL &&
      Node->Control->CachedText != nullptr) {
    RaidSetControlText(Node, AllocString(Node->Control->CachedText));
  }
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeOptionVolNameEditBoxCallback) {
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  KeepEditText(Node);
  ValidateCreateVolumePage();
  ShowPopup(0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeOptionVolCapacityEditBoxCallback) {
  (void)Event;
  const UINT64 Limit = CapacityLimit();
  const CHAR16 *Text = EditText(RAID_NODE_POPUP_CAPACITY_EDIT);
  UINT64 Value = 0;
  BOOLEAN Emptied = FALSE;
  // Deliberately, the first character that is no digit empties the whole
  // text, and the digits read before it still give the value.
  for (const CHAR16 *Char = Text; *Char != 0; Char++) {
    if (*Char < u'0' || *Char > u'9') {
      Emptied = TRUE;
      break;
    }
    Value = Value * 10 + static_cast<UINT64>(*Char - u'0');
    if (Value > Limit) {
      Value = Limit + 1;
    }
  }
  if (Emptied) {
    RaidSetControlText(Node, AllocString(u""));
  } else {
    KeepEditText(Node);
  }
  if (Value > Limit) {
    Value = Limit;
    SetNumberText(RAID_NODE_POPUP_CAPACITY_EDIT, Value);
  }
  gCapacity = Value;
  RaidSetControlValue(PopupNode(RAID_NODE_POPUP_SLIDER), Value);
  ValidateCreateVolumePage();
  ShowPopup(0);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeSliderCallback) {
  (void)Event;
  gCapacity = RaidControlValue(Node, 0);
  SetNumberText(RAID_NODE_POPUP_CAPACITY_EDIT, gCapacity);
  ValidateCreateVolumePage();
  ShowPopup(0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeCreateButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  CHAR16 Trimmed[kMaxNameCharacters] = {};
  const UINT32 Result = ValidateVolumeName(EditText(RAID_NODE_POPUP_NAME_EDIT),
                                           Trimmed, kMaxNameCharacters);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] VD name validation result %d\n",
             Result);
  if (Result != kNameValid) {
    CHAR16 *Message = nullptr;
    if (Result == kNameBadForm) {
      Message = RaidFormatText(kMessageCharacters,
                               RaidString(STR_ERROR_BAD_VIRTUAL_DISK_NAME),
                               MaxNameLength());
    } else {
      Message = RaidFormatText(kMessageCharacters,
                               RaidString(STR_ERROR_NAME_EXISTS));
    }
    // A plain box has no answer to read.
    (VOID) RaidMessageBox(HOST_MSGBOX_PLAIN, STR_ERROR_TITLE, 0, Message);
    FreePool(Message);
    ShowPopup(0);
    return EFI_SUCCESS;
  }
  if (gCreateMode == 0 && gEdited != nullptr) {
    UpdateVolumeParameters(gEdited, Trimmed);
  } else {
    CreateVolumeNode(Trimmed);
  }
  gEdited = nullptr;
  gRaidSelectionChanged = 1;
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeCancelButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] cancle the to edit the new VD\n");
  LeavePopupUnchanged();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidAdvCreateVolumeExitButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Show the creat and edit virtual disk page\n");
  LeavePopupUnchanged();
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kPopupOwn[] = {
    {RAID_NODE_POPUP_NAME_EDIT, _RaidAdvCreateVolumeOptionVolNameEditBoxCallback},
    {RAID_NODE_POPUP_CAPACITY_EDIT,
     _RaidAdvCreateVolumeOptionVolCapacityEditBoxCallback},
    {RAID_NODE_POPUP_SLIDER, _RaidAdvCreateVolumeSliderCallback},
    {RAID_NODE_POPUP_CREATE, _RaidAdvCreateVolumeCreateButtonCallback},
    {RAID_NODE_POPUP_CANCEL, _RaidAdvCreateVolumeCancelButtonCallback},
    {RAID_NODE_POPUP_EXIT, _RaidAdvCreateVolumeExitButtonCallback},
};

// Puts the edited record's policy into its combo box and logs its word
// under Caller's name, or hides the combo box.
VOID ShowEditedPolicy(const CHAR8 *Caller, UINT32 Kind, UINT32 Code) {
  if (gPresent[Kind] == 0) {
    SetState(kComboIds[Kind], HOST_DISPLAY_HIDDEN);
    return;
  }
  ChooseByCode(Kind, Code);
  SetState(kComboIds[Kind], HOST_DISPLAY_SHOWN);
  switch (Kind) {
    case kRead:
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Read policy is: %S\n",
                    RaidReadPolicyWord(Code));
      break;
    case kWrite:
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Write policy is: %S\n",
                    RaidWritePolicyWord(Code));
      break;
    case kIo:
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] IO policy is %S\n",
                    RaidIoPolicyWord(Code));
      break;
    default:
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "RAID: [%a] Disk cache policy is %S\n",
                    RaidDiskCachePolicyWord(Code));
      break;
  }
}

// The edited disk's size as record, edit box and maximum label hold it,
// traced under Caller's name.
VOID TraceEditedLayout(const CHAR8 *Caller, const RAID_VOLUME_PARAMETER *Record,
                       UINT64 Limit) {
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Edit volume is %S, params.VC: %d\n",
                gNameBeforeEdit, static_cast<UINT32>(Record->Size));
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Edit volume is %S, VolCap: %d\n", gNameBeforeEdit,
                static_cast<UINT32>(gEditedSize));
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Edit volume is %S, ControlValue: %S\n",
                gNameBeforeEdit, EditText(RAID_NODE_POPUP_CAPACITY_EDIT));
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Edit volume is %S, %d GB MAX:\n", gNameBeforeEdit,
                static_cast<UINT32>(Limit));
  const CHAR16 *MaxLabel = RaidControlText(PopupNode(RAID_NODE_POPUP_CAPACITY_MAX));
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Edit volume is %S, FreeSizeString: %S:\n",
                gNameBeforeEdit, MaxLabel != nullptr ? MaxLabel : u"");
}

}  // namespace

VOID RaidOpenCreateVolumePopup() {
  gCreateMode = 1;
  gNameBeforeEdit[0] = 0;
  gEdited = nullptr;
  gEditedSize = 0;
  if (!InitRaidAdvCreateVolumePage()) {
    return;
  }
  ValidateUpdateFreeCapacity();
  FixupCreatePopup();
}

VOID UpdateCreateVolumeLayout(UINT32 Row) {
  gCreateMode = 0;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RAID_VOLUME_PARAMETER *Record = RaidVolumeParameterQueue();
  for (UINT32 Index = 1; Record != nullptr && Index < Row; Index++) {
    Record = Record->Next;
  }
  if (Row == 0 || Record == nullptr || !AttachPopup(__func__)) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Pointer to VD is null\n");
    return;
  }
  gEdited = Record;
  gEditedSize = Record->Size / 1000;
  // A planned name passed the name check, which holds it below
  // kMaxNameCharacters.
  EFI_STATUS Copied = StrCpyS(gNameBeforeEdit, kMaxNameCharacters,
                              Record->Name != nullptr ? Record->Name : u"");
  ASSERT(!EFI_ERROR(Copied));
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Edit volume is %S\n",
             gNameBeforeEdit);
  SetText(RAID_NODE_POPUP_NAME_EDIT, AllocString(gNameBeforeEdit));
  const UINT64 Limit = LeftCapacity() + gEditedSize;
  SetCapacity(gEditedSize, Limit);
  TraceEditedLayout(__func__, Record, Limit);
  const UINT8 Capacity =
      RaidBelowVolumeLimit() ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
  SetState(RAID_NODE_POPUP_CAPACITY_EDIT, Capacity);
  SetState(RAID_NODE_POPUP_SLIDER, Capacity);
  if (gPresent[kStripe] == 0) {
    SetState(RAID_NODE_POPUP_STRIPE_LABEL, HOST_DISPLAY_HIDDEN);
    SetState(RAID_NODE_POPUP_STRIPE_COMBO, HOST_DISPLAY_HIDDEN);
  } else {
    ChooseByCode(kStripe, Record->StripeSize);
    const BOOLEAN FirstOnNewArray =
        Record == RaidVolumeParameterQueue() && Record->NewArray != 0;
    SetState(RAID_NODE_POPUP_STRIPE_COMBO,
             FirstOnNewArray && !IsIntelRaid1() ? HOST_DISPLAY_SHOWN
                                                : HOST_DISPLAY_GRAYED);
  }
  ShowEditedPolicy(__func__, kRead, Record->ReadPolicy);
  ShowEditedPolicy(__func__, kWrite, Record->WritePolicy);
  ShowEditedPolicy(__func__, kIo, Record->IoPolicy);
  ShowEditedPolicy(__func__, kCache, Record->DiskCachePolicy);
  ValidateCreateVolumePage();
  ShowPopup(RAID_NODE_POPUP_NAME_EDIT);
}

VOID RaidFreeVolumePopup() {
  if (gPopupRoot != nullptr) {
    RaidForgetControlData(gPopupRoot);
    if (TarnSetupProtocol != nullptr &&
        TarnSetupProtocol->FreePageNode != nullptr) {
      TarnSetupProtocol->FreePageNode(gPopupRoot);
    }
  }
  gPopupRoot = nullptr;
  gCreateMode = 1;
  gNameBeforeEdit[0] = 0;
  gEdited = nullptr;
  gEditedSize = 0;
  gCapacity = 0;
  for (UINT8 &Present : gPresent) {
    Present = 0;
  }
}

constinit const RAID_PAGE_CONTROLS gRaidVolumePopupControls = {
    nullptr, 0, kPopupOwn, sizeof(kPopupOwn) / sizeof(kPopupOwn[0])};
