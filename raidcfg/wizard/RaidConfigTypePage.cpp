// Pages 2 and 3: the configuration type (simple or advanced, and for the
// advanced one a new array or free capacity) and the simple configuration's
// RAID level and hot spare.
//
// The entry of page 2 and its Next and Back follow the wizard's page flow;
// the checks of what each choice allows on the adapter (ValidateSimpleConfig
// and the callbacks marked below) are the configuration pages' own and are
// filled in with them.
#include <Library/MemoryAllocationLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidcfgSetup.h"
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

// Whether simple configuration is possible on the adapter. To be filled in
// with the configuration pages' drive checks; until then every adapter
// allows it.
BOOLEAN ValidateSimpleConfig() {
  RaidShowControl(kTypePage, RAID_NODE_NEXT);
  return TRUE;
}

// An option list of fixed string ids.
VOID SetIdOptions(HOST_PAGE_NODE *Node, const EFI_STRING_ID *Ids,
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

// The configuration type in force: the advanced-mode combo box is usable
// only for the advanced type.
VOID ApplyConfigurationType() {
  if (gRaidConfigType == 0) {
    RaidGrayControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
    RaidHideControl(kTypePage, RAID_NODE_ADVANCED_WARNING);
    return;
  }
  RaidShowControl(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO);
}

// A fresh entry of page 2: the later pages reset, simple configuration
// chosen again.
VOID ResetConfigTypePage() {
  gRaidReInitFlags[RAID_REINIT_FLAG(kTypePage)] = 0;
  for (UINT32 Page : kLaterPages) {
    gRaidReInitFlags[RAID_REINIT_FLAG(Page)] = 1;
  }
  static constexpr EFI_STRING_ID kTypes[] = {STR_SIMPLE_CONFIGURATION,
                                             STR_ADVANCED_CONFIGURATION};
  HOST_PAGE_NODE *Radio = RaidFindNode(kTypePage, RAID_NODE_CONFIG_TYPE_RADIO);
  SetIdOptions(Radio, kTypes, 2);
  gRaidConfigType = 0;
  RaidSetControlValue(Radio, 0);
  if (!ValidateSimpleConfig()) {
    gRaidConfigType = 1;
    RaidSetControlValue(Radio, 1);
  }
  static constexpr EFI_STRING_ID kModes[] = {STR_CREATE_NEW_ARRAY_AND_VD,
                                             STR_USE_FREE_CAPACITY};
  SetIdOptions(RaidFindNode(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO), kModes,
               2);
  RaidSetControlTextId(kTypePage, RAID_NODE_ADVANCED_MODE_COMBO,
                       STR_CREATE_NEW_ARRAY_AND_VD);
  ApplyConfigurationType();
}

}  // namespace

VOID InitRaidConfigTypeSelPage() {
  gRaidCurrentPage = kTypePage;
  RaidInstantiatePage(kTypePage);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kTypePage)] != 0) {
    ResetConfigTypePage();
  }
  RaidShowPage(kTypePage, RAID_NODE_NEXT);
}

VOID InitRaidSimpleLevelPage() {
  gRaidCurrentPage = kLevelPage;
  RaidInstantiatePage(kLevelPage);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kLevelPage)] != 0) {
    gRaidReInitFlags[RAID_REINIT_FLAG(kLevelPage)] = 0;
    UpdateRaidLevelDynamicallyInSimpleConfig();
  }
  RaidShowPage(kLevelPage, RAID_NODE_NEXT);
}

// The RAID levels of page 3, filled in with the configuration pages.
VOID UpdateRaidLevelDynamicallyInSimpleConfig() {}

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

namespace {

// ---- Callbacks of the configuration pages, filled in with them ----------------

RAID_CONTROL_CALLBACK(_RAIDConfigTypeSelRadioGrCallback) {
  (void)Event;
  gRaidConfigType = static_cast<UINT32>(RaidControlValue(Node, 0));
  ApplyConfigurationType();
  RaidShowPage(kTypePage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RAIDConfigTypeSelComboCallback) {
  (void)Event;
  gRaidAdvancedMode =
      Node->Control != nullptr && Node->Control != HOST_NODE_NO_CONTROL &&
              Node->Control->Value != 0
          ? 1
          : 0;
  RaidShowPage(kTypePage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(_RaidLevelSelNextButtonCallback) {
  (void)Node;
  (void)Event;
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

}  // namespace

constinit const RAID_PAGE_CONTROLS gRaidConfigTypeControls = {
    kTypeCommon, 2, kTypeOwn, 2};
constinit const RAID_PAGE_CONTROLS gRaidSimpleLevelControls = {
    kLevelCommon, 2, nullptr, 0};
