// A small module written against the page framework, the way the wizard is:
// static page templates, a data source serving the controls' values, and
// callbacks that show, hide, gray and retitle other controls. Two pages:
// "adapter" (radio group, labels, check box, combo box, buttons, a table
// with check box and combo box cells) and "volume" (edit box, slider, image
// button, a container of labels).
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Protocol/Host/RaidSetupDataSource.h>
#include <Protocol/Host/TarnSetup.h>

#include <string>
#include <vector>

namespace demo {

// Node ids.
enum : UINT32 {
  kAdapterPage = 100,
  kAdapterRadio = 101,
  kDriveLabel = 102,
  kAdvancedCheck = 103,
  kModeCombo = 104,
  kAdvancedLabel = 105,
  kDeleteButton = 106,
  kDriveTable = 107,
  kNextButton = 108,
  kVolumePage = 200,
  kNameEdit = 201,
  kCapacitySlider = 202,
  kCapacityLabel = 203,
  kRefreshButton = 204,
  kResultGroup = 205,
  kResultHeading = 206,
  kResultText = 207,
  kBackButton = 208,
  kCreateButton = 209,
};

// String ids of the demo's texts.
enum : EFI_STRING_ID {
  kStrAdapterTitle = 1,
  kStrVolumeTitle,
  kStrDriveCount,
  kStrAdvanced,
  kStrAdvancedOn,
  kStrDelete,
  kStrNext,
  kStrBack,
  kStrCreate,
  kStrRefresh,
  kStrFast,
  kStrSafe,
  kStrMember,
  kStrSpare,
  kStrName,
  kStrState,
  kStrRole,
  kStrDeleteQuestion,
  kStrWarning,
  kStrCapacity,
  kStrResult,
  kStrResultText,
  kStrHelpHeading,
  kStrHelpBody1,
  kStrHelpBody2,
  kStrCreated,
  kStrBlank,
};

// What the demo module did and holds, for tests to look at.
struct State {
  UINT32 Adapter = 0;
  UINT32 Mode = 0;
  BOOLEAN Advanced = FALSE;
  std::u16string VolumeName;
  UINT64 Capacity = 100;
  UINT32 SelectedRow = 1;
  std::vector<std::u16string> Drives = {u"Disk 0", u"Disk 1", u"Disk 2",
                                        u"Disk 3"};
  std::vector<UINT32> Ticked = {0, 0, 0, 0};
  std::vector<UINT32> Roles = {0, 0, 0, 0};
  int LanguageCallbacks = 0;
  int ReturnCallbacks = 0;
  int Refreshes = 0;
  bool RefuseNames = false;  // SetValue refuses any name
  std::vector<std::string> Events;  // "press 106", "change 101 2", ...
};

State &Current();

// Text of a string id in a language ("en-US" or "fr-FR"); NULL when none.
const CHAR16 *DemoString(const std::string &Language, EFI_STRING_ID Id);

// The module's data source.
RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource();

// The module's start-up: fetches the root, instantiates both pages, builds
// their control tables, registers the callbacks and shows the adapter page.
// Setup is the protocol the module located.
EFI_STATUS Start(TARN_SETUP_PROTOCOL *Setup);
// Frees both pages through the framework and forgets them.
VOID Stop();
HOST_PAGE_NODE *AdapterPage();
HOST_PAGE_NODE *VolumePage();
const HOST_PAGE_TEMPLATE &AdapterTemplate();
const HOST_PAGE_TEMPLATE &VolumeTemplate();

}  // namespace demo
