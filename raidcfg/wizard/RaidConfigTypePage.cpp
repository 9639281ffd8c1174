// Pages 2 and 3: the configuration type (simple or advanced, and for the
// advanced one a new array or free capacity) with the checks of what each
// choice allows on the adapter, and the simple configuration's RAID level
// and hot spare.
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

constexpr UINT32 kTypePage = RAID_PAGE_CONFIG_TYPE;
constexpr UINT32 kLevelPage = RAID_PAGE_SIMPLE_LEVEL;

// The pages after page 2 that start afresh when page 2 does.
constexpr UINT32 kLaterPages[] = {
    RAID_PAGE_SIMPLE_LEVEL, RAID_PAGE_ADV_SELECT_ARRAY,
    RAID_PAGE_ADV_NEW_ARRAY, RAID_PAGE_ADV_EDIT_VOLUME};

// Room the drive-limit warning needs beyond its format.
constexpr UINTN kLevelWarningExtra = 15;

// Page 3's state.
constinit UINT8 gLevelIndex = 0;
constinit UINT8 gHotSpareAllowed = 0;
constinit UINT8 gHotSpareChosen = 0;
constinit UINT8 gRecompute = 0;

[[nodiscard]] HOST_PAGE_NODE *TypeRadio() {
  return RaidFindNode(kTypePage, RAID_NODE_CONFIG_TYPE_RADIO);
}

[[nodiscard]] HOST_PAGE_NODE *ModeCombo() {
  return RaidFindNode(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
}

// Whether the unconfigured drives (JBOD drives aside) mix media types. The
// reference starts at the "other" code, so such a drive lets the next one
// set the reference again.
[[nodiscard]] BOOLEAN HasMixedDriveTypes() {
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  if (Controller == nullptr) {
    return FALSE;
  }
  // The reference starts at the "any other" media code, so a drive of that
  // code lets the next drive set it again. Deliberate: such a drive mixes
  // with nothing.
  UINT32 Reference = RAID_MEDIA_OTHER;
  UINT32 Seen = 0;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller->PhysicalDriveList)) {
    if (Seen++ >= Controller->UnconfiguredDriveCount) {
      break;
    }
    if (Drive->State == RAID_STATE_JBOD) {
      continue;
    }
    if (Reference == RAID_MEDIA_OTHER) {
      Reference = Drive->MediaType;
    } else if (Drive->MediaType != Reference) {
      return TRUE;
    }
  }
  return FALSE;
}

// A warning text in a page-2 label.
VOID ShowWarning(UINT32 NodeId, EFI_STRING_ID TextId) {
  RaidSetControlTextId(kTypePage, NodeId, TextId);
  RaidShowControl(kTypePage, NodeId);
}

// The radio group's two options, the simple one grayed when SimplePossible
// is FALSE.
VOID SetTypeOptions(BOOLEAN SimplePossible) {
  static constexpr EFI_STRING_ID kTypes[] = {STR_SIMPLE_CONFIGURATION,
                                             STR_ADVANCED_CONFIGURATION};
  RaidSetIdOptions(TypeRadio(), kTypes, 2);
  HOST_OPTION_LIST *List = RaidControlOptions(TypeRadio());
  if (List != nullptr && List->Count != 0) {
    List->Options[0].DisplayState =
        SimplePossible ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
  }
}

// Decides whether simple configuration is possible and says why not in
// the simple warning label.
[[nodiscard]] BOOLEAN ValidateSimpleConfig() {
  const BOOLEAN Mixed = HasMixedDriveTypes();
  RAID_DRIVE_COUNTS Counts;
  GetUGoodJbodReadyCount(&Counts);
  BOOLEAN Possible = TRUE;
  if (Mixed) {
    ShowWarning(RAID_NODE_SIMPLE_WARNING, STR_WARN_MIXED_DRIVE_TYPES);
    Possible = FALSE;
  } else if (gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
             gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF) {
    if (Counts.UGood == 0) {
      ShowWarning(RAID_NODE_SIMPLE_WARNING, STR_WARN_NO_UNCONFIGURED_DRIVES);
      Possible = FALSE;
    } else if (Counts.Jbod != 0) {
      ShowWarning(RAID_NODE_SIMPLE_WARNING,
                  STR_WARN_ONLY_UNCONFIGURED_FOR_NEW_ARRAY);
    } else {
      RaidHideControl(kTypePage, RAID_NODE_SIMPLE_WARNING);
    }
  } else if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE) {
    if (Counts.Ready < 2) {
      ShowWarning(RAID_NODE_SIMPLE_WARNING, STR_WARN_RSTE_TWO_DRIVES);
      Possible = FALSE;
    } else if (Counts.Other != 0) {
      ShowWarning(RAID_NODE_SIMPLE_WARNING, STR_WARN_ONLY_READY_DRIVES);
    } else {
      RaidHideControl(kTypePage, RAID_NODE_SIMPLE_WARNING);
    }
  } else if (gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP) {
    if (Counts.Ready < 2) {
      ShowWarning(RAID_NODE_SIMPLE_WARNING, STR_WARN_M2_TWO_DRIVES);
      Possible = FALSE;
    } else {
      RaidHideControl(kTypePage, RAID_NODE_SIMPLE_WARNING);
    }
  }
  // Deliberately no check for the other kinds (mnv_cli, RCfgVROC, an
  // unknown tool): simple configuration is possible and the warning label
  // is left as it is; do not add one.
  SetTypeOptions(Possible);
  if (!Possible) {
    RaidShowControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
    gRaidConfigType = 1;
    RaidSetControlValue(TypeRadio(), 1);
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Simple Config is not supported\n");
  } else {
    gRaidConfigType = 0;
    RaidSetControlValue(TypeRadio(), 0);
    RaidShowControl(kTypePage, RAID_NODE_NEXT);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Simple Config is supported\n");
  }
  RaidShowPage(kTypePage, 0);
  return Possible;
}

// Whether the new-array choice is possible; Next and the advanced warning
// follow. Other adapter kinds deliberately change nothing: Next and the
// warning stay as they were.
VOID ValidateNewArrayChoice(const RAID_DRIVE_COUNTS &Counts) {
  EFI_STRING_ID Warning = 0;
  switch (gRaidAdapterKind) {
    case RAID_ADAPTER_KIND_STORCLI:
    case RAID_ADAPTER_KIND_ARCCONF:
      Warning = Counts.UGood >= 1 ? 0 : STR_WARN_ALL_DRIVES_USED;
      break;
    case RAID_ADAPTER_KIND_RSTE:
      Warning = Counts.Ready >= 2 ? 0 : STR_WARN_RSTE_TWO_DRIVES;
      break;
    case RAID_ADAPTER_KIND_MVSETUP:
      Warning = Counts.Ready >= 2 ? 0 : STR_WARN_M2_TWO_DRIVES;
      break;
    default:
      return;
  }
  if (Warning == 0) {
    RaidHideControl(kTypePage, RAID_NODE_ADVANCED_WARNING);
    RaidShowControl(kTypePage, RAID_NODE_NEXT);
  } else {
    ShowWarning(RAID_NODE_ADVANCED_WARNING, Warning);
    RaidGrayControl(kTypePage, RAID_NODE_NEXT);
  }
}

// Checks the advanced choice of the combo box.
VOID ValidateAvailableFreeCapacity() {
  RAID_DRIVE_COUNTS Counts;
  GetUGoodJbodReadyCount(&Counts);
  const CHAR16 *Chosen = RaidChosenOptionText(ModeCombo());
  if (Chosen != nullptr &&
      StrCmp(Chosen, RaidString(STR_CREATE_NEW_ARRAY_AND_VD)) == 0) {
    gRaidAdvancedMode = 0;
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Select create vd in new array\n");
    ValidateNewArrayChoice(Counts);
    return;
  }
  gRaidAdvancedMode = 1;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Select create vd in existing array\n");
  if (CheckFreecapacitance()) {
    RaidHideControl(kTypePage, RAID_NODE_ADVANCED_WARNING);
    RaidShowControl(kTypePage, RAID_NODE_NEXT);
  } else {
    ShowWarning(RAID_NODE_ADVANCED_WARNING, STR_WARN_NO_FREE_CAPACITY);
    RaidGrayControl(kTypePage, RAID_NODE_NEXT);
  }
}

// The combo box's options: free capacity only when some array has it. The
// chosen option stays when it still exists.
VOID SetModeOptions() {
  static constexpr EFI_STRING_ID kModes[] = {STR_CREATE_NEW_ARRAY_AND_VD,
                                             STR_USE_FREE_CAPACITY};
  HOST_PAGE_NODE *Combo = ModeCombo();
  const UINT16 Count = CheckFreecapacitance() ? 2 : 1;
  const UINT64 Chosen = RaidControlValue(Combo, 0);
  RaidSetIdOptions(Combo, kModes, Count);
  RaidSetControlValue(Combo, Chosen < Count ? Chosen : 0);
}

RAID_CONTROL_CALLBACK(_RAIDConfigTypeSelComboCallback) {
  (void)Node;
  (void)Event;
  SetModeOptions();
  RaidMarkForReRead(ModeCombo());
  RaidShowPage(kTypePage, 0);
  ValidateAvailableFreeCapacity();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] ShowPage\n");
  RaidShowPage(kTypePage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RAIDConfigTypeSelRadioGrCallback) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidConfigType = static_cast<UINT32>(RaidControlValue(Node, 0));
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Config type is %d\n",
             gRaidConfigType);
  if (gRaidConfigType == 0) {
    RaidHideControl(kTypePage, RAID_NODE_ADVANCED_WARNING);
    RaidGrayControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
    RaidShowControl(kTypePage, RAID_NODE_NEXT);
  } else {
    RaidShowControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
    (VOID) _RAIDConfigTypeSelComboCallback(ModeCombo(), Event);
  }
  RaidShowPage(kTypePage, 0);
  return EFI_SUCCESS;
}

// A fresh entry of page 2: the later pages reset, the choices checked
// again on the adapter.
VOID ResetConfigTypePage() {
  gRaidReInitFlags[RAID_REINIT_FLAG(kTypePage)] = 0;
  for (UINT32 Page : kLaterPages) {
    gRaidReInitFlags[RAID_REINIT_FLAG(Page)] = 1;
  }
  gRaidConfigType = 0;
  RaidSetControlValue(TypeRadio(), 0);
  // Run for its warning and the type options it sets; the choice is judged
  // again when the operator presses Next.
  (VOID) ValidateSimpleConfig();
  RaidSetControlValue(ModeCombo(), 0);
  RaidSetControlTextId(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO,
                       STR_CREATE_NEW_ARRAY_AND_VD);
  if (gRaidConfigType == 0) {
    SetModeOptions();
    RaidGrayControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
    RaidHideControl(kTypePage, RAID_NODE_ADVANCED_WARNING);
  } else {
    (VOID) _RAIDConfigTypeSelComboCallback(ModeCombo(), nullptr);
  }
}

// ---- Page 3 ------------------------------------------------------------------------

[[nodiscard]] HOST_PAGE_NODE *LevelRadio() {
  return RaidFindNode(kLevelPage, RAID_NODE_SIMPLE_LEVEL_RADIO);
}

// The level of the chosen option, or NULL.
[[nodiscard]] RAID_LEVEL_CAP *LevelAt(UINT32 Index) {
  RAID_LEVEL_CAP *Levels[RAID_WIZARD_MAX_LEVELS] = {};
  const UINT32 Count = RaidControllerLevels(Levels, RAID_WIZARD_MAX_LEVELS);
  return Index < Count ? Levels[Index] : nullptr;
}

// Shows the hot-spare check box and its label in State.
VOID SetHotSpareState(UINT8 State) {
  static constexpr UINT32 kNodes[] = {RAID_NODE_HOT_SPARE_CHECK,
                                      RAID_NODE_HOT_SPARE_LABEL};
  for (UINT32 NodeId : kNodes) {
    if (State == HOST_DISPLAY_HIDDEN) {
      RaidHideControl(kLevelPage, NodeId);
    } else if (State == HOST_DISPLAY_GRAYED) {
      RaidGrayControl(kLevelPage, NodeId);
    } else {
      RaidShowControl(kLevelPage, NodeId);
    }
  }
}

// Whether the adapter kind may add a hot spare with Level, and the check
// box's look; traced under Caller's name.
VOID DecideHotSpare(const CHAR8 *Caller, const RAID_LEVEL_CAP *Level,
                    const RAID_DRIVE_COUNTS &Counts) {
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE ||
      gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP ||
      gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Hide hot spare check box\n");
    SetHotSpareState(HOST_DISPLAY_HIDDEN);
    gHotSpareAllowed = 0;
  } else if (Level->MinPhysicalDrives >= Counts.UGood || Level->Level == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Gray out hot spare check box\n");
    SetHotSpareState(HOST_DISPLAY_GRAYED);
    gHotSpareAllowed = 0;
  } else {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Activate hot spare check box\n");
    SetHotSpareState(HOST_DISPLAY_SHOWN);
    gHotSpareAllowed = 1;
  }
}

// The warning that only the level's maximum of drives will be used. The
// minimum stands in for it when exactly two drives are there. Deliberate:
// the warning reads as the operator knows it; keep the rule.
VOID ShowLevelDriveWarning(const RAID_LEVEL_CAP *Level,
                           const RAID_DRIVE_COUNTS &Counts) {
  const UINT32 Used = Counts.Ready == 2 || Counts.UGood == 2
                          ? Level->MinPhysicalDrives
                          : Level->MaxPhysicalDrives;
  const CHAR16 *Format = RaidString(STR_WARN_LEVEL_DRIVE_LIMIT);
  CHAR16 *Text = RaidFormatText(StrLen(Format) + kLevelWarningExtra, Format,
                                Level->Level, Used, Used);
  RaidSetLabel(kLevelPage, RAID_NODE_LEVEL_DRIVES_WARNING, Text);
}

RAID_CONTROL_CALLBACK(_RaidLevelSelRGCallback) {
  (void)Event;
  gLevelIndex = static_cast<UINT8>(RaidControlValue(Node, 0));
  RAID_LEVEL_CAP *Level = LevelAt(gLevelIndex);
  gRaidSelectedLevelNumber = Level != nullptr ? Level->Level : RAID_NO_SELECTION;
  gRecompute = 1;
  if (Level == nullptr) {
    RaidShowPage(kLevelPage, 0);
    return EFI_SUCCESS;
  }
  RAID_DRIVE_COUNTS Counts;
  GetUGoodJbodReadyCount(&Counts);
  DecideHotSpare(__func__, Level, Counts);
  RaidHideControl(kLevelPage, RAID_NODE_LEVEL_DRIVES_WARNING);
  if (Counts.Ready <= Level->MaxPhysicalDrives &&
      Counts.UGood <= Level->MaxPhysicalDrives) {
    RaidShowPage(kLevelPage, 0);
    return EFI_SUCCESS;
  }
  ShowLevelDriveWarning(Level, Counts);
  RaidShowPage(kLevelPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_HotSpareDriveSelCheckBoxCallback) {
  (void)Event;
  gHotSpareChosen = RaidControlValue(Node, 0) != 0 ? 1 : 0;
  gRecompute = 1;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] check box value: %d\n",
             gHotSpareChosen);
  if (TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->RedrawControl != nullptr) {
    TarnSetupProtocol->RedrawControl(Node);
  }
  RaidShowPage(kLevelPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidLevelSelNextButtonCallback) {
  (void)Node;
  (void)Event;
  if (gRecompute != 0) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Update volume parameters\n");
    RaidInstantiatePage(__func__, RAID_PAGE_SIMPLE_VERIFY);
    if (UpdateSimpleConfigNewVolumeParameters()) {
      gRecompute = 0;
      ShowTable5(RAID_PAGE_SIMPLE_VERIFY);
    }
  }
  // Nothing planned, or page 4 without the table that shows what would be
  // created: the operator is told and stays here, and the next Next plans
  // again.
  if (gRecompute != 0 || !RaidVerifyTableBuilt(RAID_PAGE_SIMPLE_VERIFY)) {
    gRecompute = 1;
    ShowRaidErrorBox(RAID_ERROR_OUT_OF_RESOURCES);
    RaidShowPage(kLevelPage, RAID_NODE_NEXT);
    return EFI_SUCCESS;
  }
  InitRaidVerifySummaryPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidLevelBackButtonCallback) {
  (void)Node;
  (void)Event;
  InitRaidConfigTypeSelPage();
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kTypeCommon[] = {
    {RAID_NODE_NEXT, _RaidConfigNextButtonCallback},
    {RAID_NODE_BACK, _RaidConfigBackButtonCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kTypeOwn[] = {
    {RAID_NODE_CONFIG_TYPE_RADIO, _RAIDConfigTypeSelRadioGrCallback},
    {RAID_NODE_ADVANCED_MODE_COMBO, _RAIDConfigTypeSelComboCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kLevelCommon[] = {
    {RAID_NODE_NEXT, _RaidLevelSelNextButtonCallback},
    {RAID_NODE_BACK, RaidLevelBackButtonCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kLevelOwn[] = {
    {RAID_NODE_SIMPLE_LEVEL_RADIO, _RaidLevelSelRGCallback},
    {RAID_NODE_HOT_SPARE_CHECK, _HotSpareDriveSelCheckBoxCallback},
};

}  // namespace

VOID InitRaidConfigTypeSelPage() {
  gRaidCurrentPage = kTypePage;
  RaidInstantiatePage(__func__, kTypePage);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kTypePage)] != 0) {
    ResetConfigTypePage();
  }
  RaidShowPage(kTypePage, RAID_NODE_NEXT);
}

VOID InitRaidSimpleLevelPage() {
  gRaidCurrentPage = kLevelPage;
  RaidInstantiatePage(__func__, kLevelPage);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kLevelPage)] != 0) {
    gRaidReInitFlags[RAID_REINIT_FLAG(kLevelPage)] = 0;
    gRaidSelectedLevelNumber = RAID_NO_SELECTION;
    gRecompute = 1;
    gHotSpareAllowed = 0;
    gHotSpareChosen = 0;
    gLevelIndex = 0;
    UpdateRaidLevelDynamicallyInSimpleConfig();
  }
  RaidShowPage(kLevelPage, RAID_NODE_NEXT);
}

VOID UpdateRaidLevelDynamicallyInSimpleConfig() {
  RAID_DRIVE_COUNTS Counts;
  GetUGoodJbodReadyCount(&Counts);
  if (Counts.UGood != 0 && Counts.Jbod != 0) {
    RaidShowControl(kLevelPage, RAID_NODE_UNCONFIGURED_WARNING);
  } else {
    RaidHideControl(kLevelPage, RAID_NODE_UNCONFIGURED_WARNING);
  }
  RAID_LEVEL_CAP *Levels[RAID_WIZARD_MAX_LEVELS] = {};
  const UINT32 Count = RaidControllerLevels(Levels, RAID_WIZARD_MAX_LEVELS);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Raid level Count is %d, free disk drive count is %d\n",
             Count,
             gCurrentRaidController != nullptr
                 ? gCurrentRaidController->UnconfiguredDriveCount
                 : 0);
  CHAR16 *Texts[RAID_WIZARD_MAX_LEVELS] = {};
  for (UINT32 Index = 0; Index < Count; Index++) {
    Texts[Index] = RaidAppendText(STR_RAID_LEVEL_PREFIX, Levels[Index]->Name);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] %S minimal count is %d\n",
               Texts[Index], Levels[Index]->MinPhysicalDrives);
  }
  HOST_PAGE_NODE *Radio = LevelRadio();
  if (RaidSetTextOptions(Radio, Texts, static_cast<UINT16>(Count))) {
    HOST_OPTION_LIST *List = RaidControlOptions(Radio);
    for (UINT32 Index = 0; List != nullptr && Index < List->Count; Index++) {
      const UINT32 Minimum = Levels[Index]->MinPhysicalDrives;
      List->Options[Index].DisplayState =
          Minimum <= Counts.UGood || Minimum <= Counts.Ready
              ? HOST_DISPLAY_SHOWN
              : HOST_DISPLAY_GRAYED;
    }
  }
  for (CHAR16 *Text : Texts) {
    FreePool(Text);
  }
  RaidSetControlValue(Radio, gLevelIndex);
  RaidSetControlValue(RaidFindNode(kLevelPage, RAID_NODE_HOT_SPARE_CHECK),
                      gHotSpareChosen);
  (VOID) _RaidLevelSelRGCallback(Radio, nullptr);
}

// Whether a hot spare is to be added to the simple configuration's array.
BOOLEAN RaidSimpleHotSpareWanted() {
  return gHotSpareAllowed != 0 && gHotSpareChosen != 0;
}

RAID_CONTROL_CALLBACK(_RaidConfigNextButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Config type %d\n", gRaidConfigType);
  if (gRaidConfigType == 0) {
    InitRaidSimpleLevelPage();
    return EFI_SUCCESS;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Advanced config type %d\n",
             gRaidAdvancedMode);
  if (gRaidAdvancedMode == 1) {
    InitRaidAdvArraySelectionPage();
  } else {
    InitRaidAdvCreateArraySelectionPage();
  }
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidConfigBackButtonCallback) {
  (void)Node;
  (void)Event;
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, RAID_NODE_NEXT);
  return EFI_SUCCESS;
}

// Page 2 of a finished creation: simple configuration selectable again and
// the combo box back on its first choice.
VOID RaidRestoreConfigTypePage() {
  HOST_OPTION_LIST *List = RaidControlOptions(TypeRadio());
  if (List != nullptr && List->Count != 0) {
    List->Options[0].DisplayState = HOST_DISPLAY_SHOWN;
    RaidMarkForReRead(TypeRadio());
  }
  RaidSetControlValue(ModeCombo(), 0);
  RaidSetControlTextId(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO,
                       STR_CREATE_NEW_ARRAY_AND_VD);
}

constinit const RAID_PAGE_CONTROLS gRaidConfigTypeControls = {
    kTypeCommon, 2, kTypeOwn, 2};
constinit const RAID_PAGE_CONTROLS gRaidSimpleLevelControls = {
    kLevelCommon, 2, kLevelOwn, 2};
