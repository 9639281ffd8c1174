// Page 1, adapter selection: one radio option per adapter found, the
// selected adapter's status and current configuration, Refresh, delete of
// disk arrays and virtual disks, Manage Disk Drives and Next into the
// configuration pages. Also decides the adapter kind and whether the
// configuration pages may be entered at all.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidEventCode.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

// The word after a count of virtual disks: one, a few (2 to 4, 22 to 24,
// ...: the form Russian needs; the other languages repeat their plural)
// or many.
[[nodiscard]] EFI_STRING_ID VirtualDisksWord(UINTN Count) {
  if (Count == 1) {
    return STR_VIRTUAL_DISK_WORD;
  }
  const UINTN Units = Count % 10;
  const UINTN Tens = Count % 100;
  return Units >= 2 && Units <= 4 && (Tens < 12 || Tens > 14)
             ? STR_VIRTUAL_DISKS_FEW_WORD
             : STR_VIRTUAL_DISKS_WORD;
}

constexpr UINT32 kPage = RAID_PAGE_CONTROLLER_SELECTION;

// Room of an adapter label beyond the controller's name.
constexpr UINTN kLabelExtra = 100;
// Highest slot number a supported adapter's label names.
constexpr UINT16 kHighestLabelledSlot = 63;
// Progress of the loading box once the controller list is read.
constexpr UINT32 kProgressListRead = 30;
constexpr UINT32 kProgressDone = 100;
// Configuration table: the selection mark, name, state and capacity.
constexpr UINT32 kConfigColumns = 4;
// Room of a size text such as "123456 GB (123456 GB free)".
constexpr UINTN kSizeTextLength = 64;

// Tool file names and the adapter kind each gives, in the order compared.
struct ToolKind {
  const CHAR16 *ToolName;
  UINT32 Kind;
};
constexpr ToolKind kToolKinds[] = {
    {u"storcli.efi", RAID_ADAPTER_KIND_STORCLI},
    {u"arcconf.efi", RAID_ADAPTER_KIND_ARCCONF},
    {u"RCfgSata.efi", RAID_ADAPTER_KIND_RSTE},
    {u"mvsetup.efi", RAID_ADAPTER_KIND_MVSETUP},
    {u"mnv_cli.efi", RAID_ADAPTER_KIND_MNV_CLI},
    {u"RCfgVROC.efi", RAID_ADAPTER_KIND_VROC},
};

[[nodiscard]] BOOLEAN IsSupported(const RAID_CONTROLLER *Controller) {
  return Controller->Capability != nullptr;
}

// The adapter kind of the tool's file name. A name of no known tool keeps
// the kind of the adapter shown before, deliberately: the pages go on with
// that adapter's rules rather than none.
VOID UpdateAdapterKind(const RAID_CONTROLLER *Controller) {
  const CHAR16 *ToolName = Controller->Capability->ToolName;
  if (ToolName == nullptr) {
    return;
  }
  for (const ToolKind &Entry : kToolKinds) {
    if (StrCmp(ToolName, Entry.ToolName) == 0) {
      gRaidAdapterKind = Entry.Kind;
      return;
    }
  }
}

// The radio label of an adapter with VolumeCount virtual disks.
[[nodiscard]] CHAR16 *AdapterLabel(const RAID_CONTROLLER *Controller,
                                   UINT32 VolumeCount) {
  const CHAR16 *Name = Controller->Name != nullptr ? Controller->Name : u"";
  const UINTN Length = StrLen(Name) + kLabelExtra;
  const UINT32 Slot = Controller->SlotNumber;
  if (!IsSupported(Controller)) {
    // A slot number read as a signed one below zero names no slot. The
    // bound differs from a supported adapter's (above 63: no slot)
    // deliberately; the labels read as the operator knows them.
    const BOOLEAN NoSlot =
        Slot == RAID_SLOT_NUMBER_NONE || static_cast<INT16>(Slot) < 0;
    return NoSlot ? RaidFormatText(Length, RaidString(STR_UNSUPPORTED_ADAPTER),
                                   Name)
                  : RaidFormatText(Length,
                                   RaidString(STR_UNSUPPORTED_ADAPTER_SLOT),
                                   Name, Slot);
  }
  const BOOLEAN NoSlot =
      Slot == RAID_SLOT_NUMBER_NONE || Slot > kHighestLabelledSlot;
  const CHAR16 *Word = RaidString(VirtualDisksWord(VolumeCount));
  if (NoSlot) {
    return VolumeCount == 0
               ? RaidFormatText(Length, RaidString(STR_ADAPTER_NO_VIRTUAL_DISKS),
                                Name)
               : RaidFormatText(Length, RaidString(STR_ADAPTER_VIRTUAL_DISKS),
                                Name, VolumeCount, Word);
  }
  return VolumeCount == 0
             ? RaidFormatText(Length,
                              RaidString(STR_ADAPTER_SLOT_NO_VIRTUAL_DISKS),
                              Name, Slot)
             : RaidFormatText(Length, RaidString(STR_ADAPTER_SLOT_VIRTUAL_DISKS),
                              Name, Slot, VolumeCount, Word);
}

// Moves the loading box on after adapter Index of Count.
VOID ShowLoadingProgress(UINT32 Index, UINT32 Count) {
  if (!gRaidLoadingProgressOpen) {
    return;
  }
  // The step is divided first, deliberately (integer division): with three
  // adapters 53, 76, 100. Keep the order of the operations.
  const UINT32 Percent = Index + 1 == Count
                             ? kProgressDone
                             : kProgressListRead + (70 / Count) * (Index + 1);
  RaidSetProgress(static_cast<UINT8>(Percent));
  RaidRedrawScreen();
}

// Reads adapter Index again, makes it current and returns its label; traced
// under Caller's name.
[[nodiscard]] CHAR16 *ReadAdapterLabel(const CHAR8 *Caller, LIST_ENTRY *Head,
                                       RAID_CONTROLLER *Controller,
                                       UINT32 Index) {
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID :[%a] Get RAID adapter %d information\n", Index);
  UINT32 ErrorCode = 0;
  RAID_CONTROLLER *Read = nullptr;
  EFI_STATUS Status =
      GetRaidControllerInfo(Head, Controller->Id, &Read, &ErrorCode);
  gCurrentRaidController = Controller;
  RAID_TRACE_AS(
      Caller, TARN_DEBUG_INFO,
      "RAID :[%a] Get Raid controller info Status is %r, Errorcode is "
      "%x\n",
      Status, ErrorCode);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID :[%a] Disk drive count is %d\n",
                Controller->DiskDriveCount);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID :[%a] Free disk drive count is %d\n",
                Controller->UnconfiguredDriveCount);
  CHAR16 *Label = AdapterLabel(Controller, GetVolumeCount(Controller));
  if (!IsSupported(Controller)) {
    SendEventCode(RAID_EVENT_UNSUPPORTED_ADAPTER);
  }
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Controller name: %S\n",
                Controller->Name);
  return Label;
}

// The controller's arrays (at most RAID_SERVICE_MAX_ARRAYS) into Arrays.
[[nodiscard]] UINT32 ListArrays(RAID_ARRAY **Arrays) {
  if (gCurrentRaidController == nullptr) {
    return 0;
  }
  return RaidCollectArrays(gCurrentRaidController, Arrays,
                           RAID_SERVICE_MAX_ARRAYS);
}

// The capacity cell of an array row; kind 5 shows RAID 1 and 10 arrays at
// half their size. Deliberate: the operator knows those arrays by these
// figures; keep the halving to that kind and those levels.
[[nodiscard]] CHAR16 *ArrayCapacityText(const RAID_ARRAY *Array) {
  UINT64 Size = Array->SizeFigure;
  UINT64 Free = Array->FreeCapacity;
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF &&
      (Array->RaidLevel == 1 || Array->RaidLevel == 10)) {
    Size /= 2;
    Free /= 2;
  }
  CHAR16 Text[kSizeTextLength] = {};
  RaidFormatSizeText(Text, sizeof(Text), Size / 1000, Size % 1000,
                     Array->SizeUnit);
  RaidAppendFreeSizeText(Text, sizeof(Text), Free / 1000, Free % 1000,
                         Array->FreeCapacityUnit);
  return AllocString(Text);
}

[[nodiscard]] BOOLEAN FillArrayRow(RAID_TABLE_DATA *Table, UINT32 Row,
                                   const RAID_ARRAY *Array) {
  return RaidSetCellText(Table, Row, 0, AllocString(u"")) &&
         RaidSetCellText(Table, Row, 1, AllocString(Array->Name)) &&
         RaidSetCellText(
             Table, Row, 2,
             RaidFormatText(16, u"%s%d", u"RAID ",
                            static_cast<UINT32>(Array->RaidLevel))) &&
         RaidSetCellText(Table, Row, 3, ArrayCapacityText(Array));
}

[[nodiscard]] BOOLEAN FillVolumeRow(RAID_TABLE_DATA *Table, UINT32 Row,
                                    const RAID_VOLUME *Volume) {
  const CHAR16 *Name = Volume->Name != nullptr ? Volume->Name : u"";
  CHAR16 Size[kSizeTextLength] = {};
  RaidFormatSizeText(Size, sizeof(Size), Volume->SizeFigure / 1000,
                     Volume->SizeFigure % 1000, Volume->SizeUnit);
  return RaidSetCellText(Table, Row, 0, AllocString(u"")) &&
         RaidSetCellText(Table, Row, 1,
                         RaidFormatText(StrLen(Name) + 20, u"     VD%d: %s",
                                        Volume->Id, Name)) &&
         RaidSetCellText(
             Table, Row, 2,
             RaidFormatText(StrLen(GetStateText(Volume->State)) + 5, u"     %s",
                            GetStateText(Volume->State))) &&
         RaidSetCellText(Table, Row, 3,
                         RaidFormatText(kSizeTextLength, u"     %s", Size));
}

// The heading row, written only when the controller has an array.
VOID FillHeadingRow(RAID_TABLE_DATA *Table) {
  static constexpr EFI_STRING_ID kHeadings[kConfigColumns] = {
      0, STR_COLUMN_NAME, STR_COLUMN_VIRTUAL_DISK_STATE, STR_COLUMN_CAPACITY};
  for (UINT32 Column = 0; Column < kConfigColumns; Column++) {
    RaidTableCell(Table, 0, Column)->TextId = kHeadings[Column];
  }
}

// Fills Table with the arrays and their virtual disks.
[[nodiscard]] BOOLEAN GetRaidTableData(RAID_TABLE_DATA *Table) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Get adapter configuration data \n");
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 ArrayCount = ListArrays(Arrays);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RaidArrCount is %x\n", ArrayCount);
  UINT32 Rows = 1 + ArrayCount;
  for (UINT32 Index = 0; Index < ArrayCount; Index++) {
    Rows += Arrays[Index]->VolumeCount;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] row count is %d, column count is %d\n",
             Rows, kConfigColumns);
  if (!RaidAllocTable(Table, Rows, kConfigColumns,
                      HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE)) {
    return FALSE;
  }
  if (ArrayCount != 0) {
    FillHeadingRow(Table);
  }
  UINT32 Row = 1;
  for (UINT32 Index = 0; Index < ArrayCount; Index++) {
    RAID_ARRAY *Array = Arrays[Index];
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RaidIndex: %d, name is %S\n", Index,
               Array->Name);
    if (Row >= Rows || !FillArrayRow(Table, Row++, Array)) {
      return FALSE;
    }
    RAID_VOLUME *Volumes[RAID_SERVICE_MAX_ARRAYS] = {};
    const UINT32 VolumeCount =
        RaidCollectVolumes(Array, Volumes, RAID_SERVICE_MAX_ARRAYS);
    for (UINT32 Volume = 0; Volume < VolumeCount && Row < Rows; Volume++) {
      if (!FillVolumeRow(Table, Row++, Volumes[Volume])) {
        return FALSE;
      }
    }
  }
  return TRUE;
}

// The state every adapter change and refresh starts the later pages from.
VOID ResetConfigurationState() { RaidResetConfigurationState(); }

// The text of column 1 of the selected configuration row, or NULL.
[[nodiscard]] const CHAR16 *SelectedRowName() {
  HOST_PAGE_NODE *Table = RaidFindNode(kPage, RAID_NODE_CONFIG_TABLE);
  RAID_TABLE_DATA *Data = RaidControlTable(Table);
  if (Data == nullptr || Data->RowCount < 2) {
    return nullptr;
  }
  const UINT64 Row = RaidControlValue(Table, 0);
  if (Row == 0 || Row >= Data->RowCount) {
    return nullptr;
  }
  HOST_TABLE_CELL *Cell = RaidTableCell(Data, static_cast<UINT32>(Row), 1);
  return Cell != nullptr ? Cell->Text : nullptr;
}

// Rebuilds the labels and the configuration after a change on the adapter.
VOID RebuildAdapterPage() {
  UpdateControllerNamesInRadioControl();
  UpdateCurrentRaidControllerConfig();
}

VOID MarkConfigTable() {
  RaidMarkForReRead(RaidFindNode(kPage, RAID_NODE_CONFIG_TABLE));
}

// Pages 2 and 11 start afresh after the configuration changed.
VOID ResetLaterPages() {
  gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_CONFIG_TYPE)] = 1;
  gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_MANAGE_DRIVES)] = 1;
}

// Deletes the array named RowName. EFI_NOT_FOUND when no array has that
// name; otherwise the delete's status, with its error code.
[[nodiscard]] EFI_STATUS DeleteSelectedRAIDArray(RAID_ARRAY **Arrays,
                                                 UINT32 ArrayCount,
                                                 const CHAR16 *RowName) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Delete RAID array start\n");
  RAID_ARRAY *Target = nullptr;
  for (UINT32 Index = 0; Index < ArrayCount && Target == nullptr; Index++) {
    if (Arrays[Index]->Name != nullptr &&
        StrCmp(Arrays[Index]->Name, RowName) == 0) {
      Target = Arrays[Index];
    }
  }
  if (Target == nullptr) {
    return EFI_NOT_FOUND;
  }
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = DeleteRaidArray(Target->Id, 0, &ErrorCode);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] DeleteRaidArray Status = %r, Errorcode = %x\n", Status,
             ErrorCode);
  if (!EFI_ERROR(Status) && ErrorCode == 0) {
    SendEventCode(RAID_EVENT_DELETE_DONE);
    ResetLaterPages();
    RebuildAdapterPage();
  } else {
    // The adapter was read again after the refusal, and may have lost some
    // of the array's virtual disks: the later pages read it afresh too.
    SendEventCode(RAID_EVENT_DELETE_FAILED);
    ShowRaidErrorBox(ErrorCode);
    ResetLaterPages();
    if (!EFI_ERROR(Status)) {
      Status = EFI_DEVICE_ERROR;
    }
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Delete array status = %r\n", Status);
  return Status;
}

// Whether the current controller still has an array.
[[nodiscard]] BOOLEAN CheckVolumeIsPresent() {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const BOOLEAN Present = ListArrays(Arrays) != 0;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Return status: %x (0 = No volume)\n",
             static_cast<UINT32>(Present));
  return Present;
}

// Page 1 once no array is left.
VOID ShowEmptyConfiguration() {
  RaidHideControl(kPage, RAID_NODE_DELETE);
  RaidShowStatusControl(kPage, RAID_NODE_EMPTY_CONFIG);
  RaidClearControlTable(RaidFindNode(kPage, RAID_NODE_CONFIG_TABLE));
  MarkConfigTable();
}

// Deletes the first named virtual disk of Array whose "VD<n>: <name>" text
// occurs in RowText. EFI_NOT_FOUND when none does.
[[nodiscard]] EFI_STATUS DeleteRAIDArrayVolume(RAID_ARRAY *Array,
                                               const CHAR16 *RowText) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RAID_VOLUME *Volumes[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 VolumeCount =
      RaidCollectVolumes(Array, Volumes, RAID_SERVICE_MAX_ARRAYS);
  RAID_VOLUME *Target = nullptr;
  for (UINT32 Index = 0; Index < VolumeCount && Target == nullptr; Index++) {
    if (Volumes[Index]->Name == nullptr) {
      continue;
    }
    uefi::PoolPtr<CHAR16> Text(RaidFormatText(
        StrLen(Volumes[Index]->Name) + 16, u"VD%d: %s", Volumes[Index]->Id,
        Volumes[Index]->Name));
    // A virtual disk whose text cannot be made might be the chosen one:
    // nothing is deleted.
    if (!Text) {
      ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
      return EFI_OUT_OF_RESOURCES;
    }
    // Deliberately containment, not equality: the row text is the table's
    // cell, whose layout around "VD%d: %s" is the page's own.
    if (StrStr(RowText, Text.Get()) != nullptr) {
      Target = Volumes[Index];
    }
  }
  if (Target == nullptr) {
    return EFI_NOT_FOUND;
  }
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = DeleteRaidVolume(Array->Id, 0, Target->Id, &ErrorCode);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] DeleteRaidVolume Status = %r, Errorcode = %x\n",
             Status, ErrorCode);
  if (EFI_ERROR(Status) || ErrorCode != 0) {
    SendEventCode(RAID_EVENT_DELETE_FAILED);
    ShowRaidErrorBox(ErrorCode);
    ResetLaterPages();
    return EFI_ERROR(Status) ? Status : EFI_DEVICE_ERROR;
  }
  SendEventCode(RAID_EVENT_DELETE_DONE);
  const BOOLEAN ArraysLeft = CheckVolumeIsPresent();
  UpdateControllerNamesInRadioControl();
  if (!ArraysLeft) {
    ShowEmptyConfiguration();
    RaidShowPage(kPage, 0);
  } else {
    UpdateCurrentRaidControllerConfig();
  }
  ResetLaterPages();
  return EFI_SUCCESS;
}

// After an array was deleted: page 1 with what is left.
VOID ShowAfterArrayDelete(UINT32 ArraysBefore) {
  if (ArraysBefore == 1) {
    RaidHideControl(kPage, RAID_NODE_DELETE);
    RaidShowStatusControl(kPage, RAID_NODE_EMPTY_CONFIG);
    MarkConfigTable();
    RaidShowControl(kPage, RAID_NODE_NEXT);
    RaidShowControl(kPage, RAID_NODE_START);
    RaidShowPage(kPage, 0);
    return;
  }
  RaidShowControl(kPage, RAID_NODE_DELETE);
  RaidShowControl(kPage, RAID_NODE_NEXT);
  RaidShowControl(kPage, RAID_NODE_START);
  RaidShowPage(kPage, RAID_NODE_DELETE);
}

}  // namespace

RAID_CONTROLLER *RaidControllerAt(UINT32 Index) {
  LIST_ENTRY *Head = nullptr;
  const UINT32 Count = GetRaidControllerList(&Head);
  if (Head == nullptr || Index >= Count) {
    return nullptr;
  }
  UINT32 Position = 0;
  for (RAID_CONTROLLER *Controller : uefi::ListOf<&RAID_CONTROLLER::Link>(*Head)) {
    if (Position++ == Index) {
      return Controller;
    }
  }
  return nullptr;
}

VOID UpdateControllerNamesInRadioControl() {
  LIST_ENTRY *Head = nullptr;
  const UINT32 Count = GetRaidControllerList(&Head);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID :[%a] RAID adapter count = %x\n", Count);
  HOST_OPTION_LIST Options = {};
  if (Count != 0 && Count <= 0xFFFF) {
    Options.Options = static_cast<HOST_OPTION *>(
        AllocateZeroPool(sizeof(HOST_OPTION) * Count));
    if (Options.Options == nullptr) {
      RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    }
  }
  for (UINT32 Index = 0; Options.Options != nullptr && Index < Count; Index++) {
    RAID_CONTROLLER *Controller = RaidControllerAt(Index);
    if (Controller == nullptr) {
      break;
    }
    HOST_OPTION &Option = Options.Options[Options.Count++];
    Option.Value = Index;
    Option.DisplayState = HOST_DISPLAY_SHOWN;
    Option.Text = ReadAdapterLabel(__func__, Head, Controller, Index);
    if (Option.Text == nullptr) {
      Option.Text = AllocString(Controller->Name);
    }
    ShowLoadingProgress(Index, Count);
  }
  gRaidLoadingProgressOpen = FALSE;
  if (gRaidSelectedControllerIndex >= Count) {
    gRaidSelectedControllerIndex = 0;
  }
  gCurrentRaidController = RaidControllerAt(gRaidSelectedControllerIndex);
  HOST_PAGE_NODE *Radio = RaidFindNode(kPage, RAID_NODE_ADAPTER_RADIO);
  if (Radio == nullptr) {
    FreeComboOptions(&Options);
    return;
  }
  RaidSetControlOptions(Radio, &Options);
  RaidSetControlValue(Radio, gRaidSelectedControllerIndex);
}

VOID UpdateNextButtonState() {
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  if (Controller == nullptr) {
    return;
  }
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] controller free disk drive count is %d\n",
             Controller->UnconfiguredDriveCount);
  BOOLEAN Usable = Controller->UnconfiguredDriveCount != 0;
  if (!Usable) {
    RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
    const UINT32 ArrayCount = ListArrays(Arrays);
    for (UINT32 Index = 0; Index < ArrayCount && !Usable; Index++) {
      if (Arrays[Index]->FreeSegmentCount != 0) {
        RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] There are free capacity\n");
        Usable = TRUE;
      }
    }
  }
  if (Usable) {
    if (RaidDisplayState(kPage, RAID_NODE_NEXT) == HOST_DISPLAY_GRAYED) {
      RaidShowControl(kPage, RAID_NODE_NEXT);
    }
    if (RaidDisplayState(kPage, RAID_NODE_START) == HOST_DISPLAY_HIDDEN) {
      RaidShowControl(kPage, RAID_NODE_START);
    }
    return;
  }
  if (RaidDisplayState(kPage, RAID_NODE_NEXT) != HOST_DISPLAY_GRAYED) {
    RaidGrayControl(kPage, RAID_NODE_NEXT);
  }
  if (RaidDisplayState(kPage, RAID_NODE_START) == HOST_DISPLAY_SHOWN) {
    RaidHideControl(kPage, RAID_NODE_START);
  }
}

VOID UpdateRaidConfigTable() {
  HOST_PAGE_NODE *Table = RaidFindNode(kPage, RAID_NODE_CONFIG_TABLE);
  RAID_TABLE_DATA Data = {};
  if (!GetRaidTableData(&Data)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    RaidFreeTable(&Data);
    return;
  }
  RaidSetControlTable(Table, &Data);
  RaidSetControlValue(Table, 1);
}

VOID UpdateCurrentRaidControllerConfig() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  HOST_PAGE_NODE *Table = RaidFindNode(kPage, RAID_NODE_CONFIG_TABLE);
  if (Controller == nullptr) {
    return;
  }
  if (!IsSupported(Controller)) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] The adapter is not supported\n");
    gRaidAdapterKind = RAID_ADAPTER_KIND_UNSUPPORTED;
    static constexpr UINT32 kHidden[] = {
        RAID_NODE_CONFIG_TABLE,   RAID_NODE_STATUS_HEADING,
        RAID_NODE_REFRESH,        RAID_NODE_FIRMWARE_LABEL,
        RAID_NODE_SERIAL_LABEL,   RAID_NODE_DRIVES_LABEL,
        RAID_NODE_CONFIG_HEADING, RAID_NODE_MANAGE_DRIVES,
        RAID_NODE_DELETE,         RAID_NODE_EMPTY_CONFIG};
    for (UINT32 NodeId : kHidden) {
      RaidHideControl(kPage, NodeId);
    }
    RaidGrayControl(kPage, RAID_NODE_NEXT);
    RaidHideControl(kPage, RAID_NODE_START);
    RaidShowControl(kPage, RAID_NODE_ADAPTER_MESSAGE);
    RaidClearControlTable(Table);
    return;
  }
  UpdateAdapterKind(Controller);

  CHAR16 *Firmware =
      RaidAppendText(STR_FIRMWARE_PACKAGE_VERSION, Controller->FirmwareVersion);
  CHAR16 *Serial = RaidAppendText(STR_SERIAL_NUMBER, Controller->SerialNumber);
  CHAR16 *Drives =
      RaidFormatNumberText(STR_DISK_DRIVES_COUNT, Controller->DiskDriveCount);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Firmware package version: %S\n",
             Controller->FirmwareVersion);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Serial Number: %S\n",
             Controller->SerialNumber);
  RaidShowControl(kPage, RAID_NODE_START);
  RaidSetControlText(RaidFindNode(kPage, RAID_NODE_FIRMWARE_LABEL), Firmware);
  RaidSetControlText(RaidFindNode(kPage, RAID_NODE_SERIAL_LABEL), Serial);
  RaidSetControlText(RaidFindNode(kPage, RAID_NODE_DRIVES_LABEL), Drives);
  RaidShowControl(kPage, RAID_NODE_FIRMWARE_LABEL);
  RaidShowControl(kPage, RAID_NODE_SERIAL_LABEL);
  RaidShowControl(kPage, RAID_NODE_DRIVES_LABEL);
  RaidShowStatusControl(kPage, RAID_NODE_REFRESH);
  RaidShowStatusControl(kPage, RAID_NODE_STATUS_HEADING);
  RaidShowStatusControl(kPage, RAID_NODE_CONFIG_HEADING);
  RaidShowStatusControl(kPage, RAID_NODE_MANAGE_DRIVES);
  RaidShowStatusControl(kPage, RAID_NODE_START);
  RaidHideControl(kPage, RAID_NODE_ADAPTER_MESSAGE);

  if (Controller->DiskDriveCount != 0) {
    RaidShowControl(kPage, RAID_NODE_CONFIG_TABLE);
    UpdateNextButtonState();
    UpdateRaidConfigTable();
    RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
    if (ListArrays(Arrays) != 0) {
      RaidShowStatusControl(kPage, RAID_NODE_DELETE);
      RaidHideControl(kPage, RAID_NODE_EMPTY_CONFIG);
      MarkConfigTable();
      return;
    }
  } else {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] There is no disk drive attached to the adapter\n");
    RaidHideControl(kPage, RAID_NODE_CONFIG_TABLE);
    RaidGrayControl(kPage, RAID_NODE_NEXT);
    RaidHideControl(kPage, RAID_NODE_START);
  }
  ShowEmptyConfiguration();
}

// ---- Callbacks --------------------------------------------------------------------------

RAID_CONTROL_CALLBACK(RaidCntrllerSelRadioGrCallback) {
  (void)Event;
  gRaidSelectedControllerIndex =
      static_cast<UINT32>(RaidControlValue(Node, gRaidSelectedControllerIndex));
  gCurrentRaidController = RaidControllerAt(gRaidSelectedControllerIndex);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] CntrlIndex = %x, Name = %S\n",
             gRaidSelectedControllerIndex,
             gCurrentRaidController != nullptr ? gCurrentRaidController->Name
                                               : nullptr);
  ResetConfigurationState();
  UpdateCurrentRaidControllerConfig();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n\n");
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidCntrllerSelDelCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  const BOOLEAN Confirmed = RaidMessageBox(
      HOST_MSGBOX_YES_NO, STR_WARNING_TITLE, STR_CONFIRM_DELETE, nullptr);
  const CHAR16 *Selected = SelectedRowName();
  if (!Confirmed || Selected == nullptr) {
    RaidShowPage(kPage, 0);
    return EFI_SUCCESS;
  }
  // The row's text goes when the table is rebuilt; keep a copy.
  uefi::PoolPtr<CHAR16> RowName(AllocString(Selected));
  if (!RowName) {
    ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
  }
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  UINT32 ArrayCount = ListArrays(Arrays);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Array count = %d\n", ArrayCount);
  if (!RowName || RowName.Get()[0] == 0 || ArrayCount == 0) {
    RaidShowPage(kPage, 0);
    return EFI_SUCCESS;
  }
  EFI_STATUS Status = DeleteSelectedRAIDArray(Arrays, ArrayCount, RowName.Get());
  if (!EFI_ERROR(Status)) {
    ShowAfterArrayDelete(ArrayCount);
    return EFI_SUCCESS;
  }
  // Not an array: a virtual disk row, matched against the arrays in order.
  // A refused delete reads the adapter again and so frees every array
  // record: the arrays are listed afresh after each attempt.
  const CHAR16 *RowText = RaidSkipLeadingBlanks(RowName.Get());
  ArrayCount = ListArrays(Arrays);
  for (UINT32 Index = 0; Index < ArrayCount; Index++) {
    Status = DeleteRAIDArrayVolume(Arrays[Index], RowText);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Delete volume status = %r\n",
               Status);
    if (!EFI_ERROR(Status)) {
      return EFI_SUCCESS;
    }
    if (Status == EFI_OUT_OF_RESOURCES) {
      break;
    }
    ArrayCount = ListArrays(Arrays);
  }
  RaidShowPage(kPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidControllerRefreshButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  LIST_ENTRY *Head = nullptr;
  GetRaidControllerList(&Head);
  RAID_CONTROLLER *Controller = RaidControllerAt(gRaidSelectedControllerIndex);
  UINT32 ErrorCode = 0;
  RAID_CONTROLLER *Read = nullptr;
  EFI_STATUS Status = Controller == nullptr
                          ? EFI_NOT_FOUND
                          : RefreshRaidControllerInfo(Head, Controller->Id,
                                                      &Read, &ErrorCode);
  if (!EFI_ERROR(Status) && ErrorCode == 0) {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Refresh the RAID controller info successfully\n");
    ResetConfigurationState();
    RebuildAdapterPage();
  } else {
    // A failed read may still have replaced part of the model.
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Failed to refresh the RAID controller info\n");
    ResetLaterPages();
  }
  RaidShowPage(kPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidManageDiskDrivesButtonCallback) {
  (void)Node;
  (void)Event;
  InitRaidManagePhyDrvPage();
  return EFI_SUCCESS;
}

namespace {

constexpr HOST_CONTROL_DESCRIPTOR kCommonControls[] = {
    {RAID_NODE_NEXT, RaidWizardNextCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kOwnControls[] = {
    {RAID_NODE_ADAPTER_RADIO, RaidCntrllerSelRadioGrCallback},
    {RAID_NODE_REFRESH, RaidControllerRefreshButtonCallback},
    {RAID_NODE_CONFIG_TABLE, nullptr},
    {RAID_NODE_DELETE, RaidCntrllerSelDelCallback},
    {RAID_NODE_MANAGE_DRIVES, RaidManageDiskDrivesButtonCallback},
    {RAID_NODE_START, RaidWizardNextCallback},
};

}  // namespace

constinit const RAID_PAGE_CONTROLS gRaidAdapterSelectionControls = {
    kCommonControls, sizeof(kCommonControls) / sizeof(kCommonControls[0]),
    kOwnControls, sizeof(kOwnControls) / sizeof(kOwnControls[0])};
