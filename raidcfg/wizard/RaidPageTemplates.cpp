// The static templates of the wizard's pages. The host copies a template
// with fresh control records the first time a page is entered; the page
// code then only changes states and texts. Positions are character cells of
// an 80x25 screen's page body (76 columns, 20 rows).
#include <strings/RaidcfgStrings.h>

#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace {

constexpr UINT8 kShown = HOST_DISPLAY_SHOWN;
constexpr UINT8 kHidden = HOST_DISPLAY_HIDDEN;
constexpr UINT8 kGrayed = HOST_DISPLAY_GRAYED;
constexpr UINT16 kNext = HOST_LAYOUT_NEXT_ROW;

// Row of the Back and Next buttons at the foot of a page body.
constexpr UINT16 kButtonRow = 19;
// Back at the left edge, Next at the right.
constexpr HOST_NODE_TEMPLATE kBack = {RAID_NODE_BACK, HOST_CONTROL_BUTTON,
                                      HOST_STRING_BACK,
                                      kShown, {0, kButtonRow, 0, 0},
                                      nullptr, 0};
constexpr HOST_NODE_TEMPLATE kNextButton = {RAID_NODE_NEXT,
                                            HOST_CONTROL_BUTTON,
                                            HOST_STRING_NEXT, kShown,
                                            {66, kButtonRow, 0, 0}, nullptr, 0};

template <UINTN N>
[[nodiscard]] constexpr UINT32 Count(const HOST_NODE_TEMPLATE (&)[N]) {
  return static_cast<UINT32>(N);
}

// ---- Page 1 (and 12) ------------------------------------------------------------

// Below the adapter list, which grows with the adapters found: the status,
// the configuration table and the buttons, placed from the list's end.
constexpr HOST_NODE_TEMPLATE kAdapterArea[] = {
    {RAID_NODE_STATUS_HEADING, HOST_CONTROL_LABEL,
     STR_SELECTED_CONTROLLER_STATUS, kShown, {0, 1, 0, 0}, nullptr, 0},
    {RAID_NODE_REFRESH, HOST_CONTROL_IMAGE_BUTTON, HOST_STRING_REFRESH, kShown,
     {60, 1, 0, 0}, nullptr, 0},
    {RAID_NODE_FIRMWARE_LABEL, HOST_CONTROL_LABEL, STR_FIRMWARE_PACKAGE_VERSION,
     kShown, {2, 2, 0, 0}, nullptr, 0},
    {RAID_NODE_SERIAL_LABEL, HOST_CONTROL_LABEL, STR_SERIAL_NUMBER, kShown,
     {2, 3, 0, 0}, nullptr, 0},
    {RAID_NODE_DRIVES_LABEL, HOST_CONTROL_LABEL, STR_DISK_DRIVES_COUNT, kShown,
     {2, 4, 0, 0}, nullptr, 0},
    {RAID_NODE_CONFIG_HEADING, HOST_CONTROL_LABEL, STR_CURRENT_CONFIGURATION,
     kShown, {0, 5, 0, 0}, nullptr, 0},
    {RAID_NODE_CONFIG_TABLE, HOST_CONTROL_TABLE, 0, kShown, {0, 6, 76, 6},
     nullptr, 0},
    {RAID_NODE_EMPTY_CONFIG, HOST_CONTROL_LABEL, STR_NO_VIRTUAL_DISK, kHidden,
     {2, 6, 0, 0}, nullptr, 0},
    {RAID_NODE_ADAPTER_MESSAGE, HOST_CONTROL_LABEL, STR_ADAPTER_MESSAGE,
     kHidden, {0, 1, 76, 2}, nullptr, 0},
    {RAID_NODE_DELETE, HOST_CONTROL_BUTTON, STR_REMOVE_BUTTON, kHidden,
     {0, 12, 0, 0}, nullptr, 0},
    {RAID_NODE_MANAGE_DRIVES, HOST_CONTROL_BUTTON, STR_MANAGE_DISK_DRIVES,
     kShown, {14, 12, 0, 0}, nullptr, 0},
    {RAID_NODE_START, HOST_CONTROL_BUTTON, STR_START_BUTTON, kShown,
     {48, 12, 0, 0}, nullptr, 0},
    {RAID_NODE_NEXT, HOST_CONTROL_BUTTON, HOST_STRING_NEXT, kShown,
     {66, 12, 0, 0}, nullptr, 0},
};

constexpr HOST_NODE_TEMPLATE kAdapterSelectionNodes[] = {
    {RAID_NODE_ADAPTER_RADIO, HOST_CONTROL_RADIO_GROUP, 0, kShown,
     {0, 0, 76, 0}, nullptr, 0},
    {RAID_NODE_NO_ADAPTER_MESSAGE, HOST_CONTROL_LABEL, STR_NO_SUPPORTED_ADAPTER,
     kHidden, {0, 0, 76, 4}, nullptr, 0},
    {RAID_NODE_ADAPTER_AREA, HOST_CONTROL_CONTAINER, 0, kShown,
     {0, kNext, 76, 0}, kAdapterArea, Count(kAdapterArea)},
};

// ---- Page 2 ----------------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kConfigTypeNodes[] = {
    // Two options four rows apart, each with its description below it.
    {RAID_NODE_CONFIG_TYPE_RADIO, HOST_CONTROL_RADIO_GROUP, 0, kShown,
     {0, 0, 40, 8}, nullptr, 0},
    {RAID_NODE_SIMPLE_DESCRIPTION, HOST_CONTROL_LABEL,
     STR_SIMPLE_CONFIGURATION_DESCRIPTION, kShown, {4, 1, 72, 3}, nullptr, 0},
    {RAID_NODE_ADVANCED_DESCRIPTION, HOST_CONTROL_LABEL,
     STR_ADVANCED_CONFIGURATION_DESCRIPTION, kShown, {4, 5, 72, 3}, nullptr,
     0},
    {RAID_NODE_ADVANCED_MODE_COMBO, HOST_CONTROL_COMBO_BOX,
     STR_CREATE_NEW_ARRAY_AND_VD, kGrayed, {4, 8, 60, 0}, nullptr, 0},
    {RAID_NODE_SIMPLE_WARNING, HOST_CONTROL_LABEL, STR_WARN_MIXED_DRIVE_TYPES,
     kHidden, {0, 12, 76, 2}, nullptr, 0},
    {RAID_NODE_ADVANCED_WARNING, HOST_CONTROL_LABEL, STR_WARN_ALL_DRIVES_USED,
     kHidden, {0, 15, 76, 2}, nullptr, 0},
    kBack,
    kNextButton,
};

// ---- Page 3 ----------------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kSimpleLevelNodes[] = {
    {RAID_NODE_SIMPLE_LEVEL_RADIO, HOST_CONTROL_RADIO_GROUP, 0, kShown,
     {0, 0, 40, 0}, nullptr, 0},
    {RAID_NODE_HOT_SPARE_CHECK, HOST_CONTROL_CHECK_BOX, 0, kShown,
     {0, 9, 3, 0}, nullptr, 0},
    {RAID_NODE_HOT_SPARE_LABEL, HOST_CONTROL_LABEL, STR_ADD_HOT_SPARE_DRIVE,
     kShown, {4, 9, 0, 0}, nullptr, 0},
    {RAID_NODE_LEVEL_DRIVES_WARNING, HOST_CONTROL_LABEL,
     STR_WARN_LEVEL_DRIVE_LIMIT, kHidden, {0, 11, 76, 3}, nullptr, 0},
    {RAID_NODE_UNCONFIGURED_WARNING, HOST_CONTROL_LABEL,
     STR_WARN_ONLY_UNCONFIGURED_USED, kHidden, {0, 15, 76, 2}, nullptr, 0},
    kBack,
    kNextButton,
};

// ---- Pages 4 and 9 -------------------------------------------------------------------

#define RAID_VERIFY_NODES(Offset)                                              \
  {                                                                            \
    {RAID_NODE_VERIFY_LEVEL + (Offset), HOST_CONTROL_LABEL,                    \
     STR_RAID_LEVEL_VALUE, kShown, {0, 0, 0, 0}, nullptr, 0},                  \
    {RAID_NODE_VERIFY_DRIVES + (Offset), HOST_CONTROL_LABEL,                   \
     STR_DISK_DRIVES_COUNT, kShown, {0, 1, 0, 0}, nullptr, 0},                 \
    {RAID_NODE_VERIFY_SPARES + (Offset), HOST_CONTROL_LABEL,                   \
     STR_DEDICATED_HOT_SPARES_COUNT, kShown, {0, 2, 0, 0}, nullptr, 0},        \
    {RAID_NODE_VERIFY_ALLOCATED + (Offset), HOST_CONTROL_LABEL,                \
     STR_ALLOCATED_CAPACITY_GB, kShown, {38, 0, 0, 0}, nullptr, 0},            \
    {RAID_NODE_VERIFY_FREE + (Offset), HOST_CONTROL_LABEL,                     \
     STR_FREE_CAPACITY_GB, kShown, {38, 1, 0, 0}, nullptr, 0},                 \
    {RAID_NODE_VERIFY_TABLE + (Offset), HOST_CONTROL_TABLE, 0, kShown,         \
     {0, 4, 76, 9}, nullptr, 0},                                               \
    {RAID_NODE_VERIFY_UNEQUAL_WARNING + (Offset), HOST_CONTROL_LABEL,          \
     STR_WARN_UNEQUAL_CAPACITY, kHidden, {0, 14, 76, 2}, nullptr, 0},          \
    {RAID_NODE_VERIFY_MBR_WARNING + (Offset), HOST_CONTROL_LABEL,              \
     STR_WARN_MBR_LIMIT, kHidden, {0, 16, 76, 3}, nullptr, 0},                 \
    kBack, kNextButton,                                                        \
  }

constexpr HOST_NODE_TEMPLATE kSimpleVerifyNodes[] = RAID_VERIFY_NODES(0);
constexpr HOST_NODE_TEMPLATE kAdvancedVerifyNodes[] =
    RAID_VERIFY_NODES(RAID_NODE_ADV_VERIFY_OFFSET);

// ---- Pages 5 and 10 ---------------------------------------------------------------------

#define RAID_DOT(Id, Index)                                                   \
  {(Id) + (Index), HOST_CONTROL_LABEL, 0, kHidden,                            \
   {static_cast<UINT16>(30 + 2 * (Index)), 17, 1, 0}, nullptr, 0}

constexpr HOST_NODE_TEMPLATE kCreationRunningNodes[] = {
    {RAID_NODE_RUNNING_LABEL, HOST_CONTROL_LABEL, STR_CREATING_VIRTUAL_DISK,
     kShown, {0, 0, 0, 0}, nullptr, 0},
    RAID_DOT(RAID_NODE_RUNNING_DOT_FIRST, 0),
    RAID_DOT(RAID_NODE_RUNNING_DOT_FIRST, 1),
    RAID_DOT(RAID_NODE_RUNNING_DOT_FIRST, 2),
    RAID_DOT(RAID_NODE_RUNNING_DOT_FIRST, 3),
    RAID_DOT(RAID_NODE_RUNNING_DOT_FIRST, 4),
};

constexpr HOST_NODE_TEMPLATE kCreateVolumesNodes[] = {
    {RAID_NODE_RESULT_ROWS, HOST_CONTROL_CONTAINER, 0, kShown, {0, 0, 76, 16},
     nullptr, 0},
    RAID_DOT(RAID_NODE_PROGRESS_DOT_FIRST, 0),
    RAID_DOT(RAID_NODE_PROGRESS_DOT_FIRST, 1),
    RAID_DOT(RAID_NODE_PROGRESS_DOT_FIRST, 2),
    RAID_DOT(RAID_NODE_PROGRESS_DOT_FIRST, 3),
    RAID_DOT(RAID_NODE_PROGRESS_DOT_FIRST, 4),
    {RAID_NODE_NEXT, HOST_CONTROL_BUTTON, HOST_STRING_NEXT, kGrayed,
     {66, kButtonRow, 0, 0}, nullptr, 0},
};

constexpr HOST_NODE_TEMPLATE kResultGroupNodes[] = {
    {RAID_NODE_RESULT_CREATING, HOST_CONTROL_LABEL, STR_CREATING_VIRTUAL_DISK,
     kHidden, {0, 0, 24, 0}, nullptr, 0},
    {RAID_NODE_RESULT_NAME, HOST_CONTROL_LABEL, 0, kHidden, {24, 0, 24, 0},
     nullptr, 0},
    {RAID_NODE_RESULT_SUCCESS, HOST_CONTROL_LABEL, STR_CREATE_SUCCESS, kHidden,
     {50, 0, 0, 0}, nullptr, 0},
    {RAID_NODE_RESULT_FAILURE, HOST_CONTROL_LABEL, STR_CREATE_FAILURE, kHidden,
     {50, 0, 0, 0}, nullptr, 0},
};

// ---- Pages 6 and 7 ------------------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kSelectArrayNodes[] = {
    {RAID_NODE_FREE_SEGMENT_TABLE, HOST_CONTROL_TABLE, 0, kShown,
     {0, 0, 76, 16}, nullptr, 0},
    kBack,
    kNextButton,
};

constexpr HOST_NODE_TEMPLATE kNewArrayNodes[] = {
    {RAID_NODE_NEW_ARRAY_LEVEL_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {0, 0, 20, 0}, nullptr, 0},
    {RAID_NODE_NEW_ARRAY_HINT, HOST_CONTROL_LABEL, STR_HINT_DRIVE_RANGE,
     kShown, {22, 0, 54, 2}, nullptr, 0},
    {RAID_NODE_NEW_ARRAY_DRIVE_TABLE, HOST_CONTROL_TABLE, 0, kShown,
     {0, 2, 76, 12}, nullptr, 0},
    {RAID_NODE_NEW_ARRAY_WARNING, HOST_CONTROL_LABEL, 0, kHidden,
     {0, 15, 76, 2}, nullptr, 0},
    kBack,
    {RAID_NODE_NEXT, HOST_CONTROL_BUTTON, HOST_STRING_NEXT, kGrayed,
     {66, kButtonRow, 0, 0}, nullptr, 0},
};

// ---- Page 8 and its pop-up ----------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kEditVolumesNodes[] = {
    {RAID_NODE_PLANNED_TABLE, HOST_CONTROL_TABLE, 0, kShown, {0, 0, 76, 9},
     nullptr, 0},
    {RAID_NODE_CREATE_VD, HOST_CONTROL_BUTTON, STR_CREATE_VIRTUAL_DISK_BUTTON,
     kShown, {0, 10, 0, 0}, nullptr, 0},
    {RAID_NODE_EDIT_VD, HOST_CONTROL_BUTTON, STR_EDIT_BUTTON, kGrayed,
     {26, 10, 0, 0}, nullptr, 0},
    {RAID_NODE_REMOVE_VD, HOST_CONTROL_BUTTON, STR_REMOVE_BUTTON, kGrayed,
     {40, 10, 0, 0}, nullptr, 0},
    {RAID_NODE_ARRAY_FREE_CAPACITY, HOST_CONTROL_LABEL,
     STR_ARRAY_FREE_CAPACITY_GB, kShown, {0, 12, 0, 0}, nullptr, 0},
    {RAID_NODE_VD_LIMIT_WARNING, HOST_CONTROL_LABEL,
     STR_WARN_VIRTUAL_DISK_LIMIT, kHidden, {0, 14, 76, 2}, nullptr, 0},
    kBack,
    kNextButton,
};

constexpr HOST_NODE_TEMPLATE kVolumePopupNodes[] = {
    {RAID_NODE_POPUP_NAME_LABEL, HOST_CONTROL_LABEL,
     STR_LABEL_VIRTUAL_DISK_NAME, kShown, {0, 0, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_NAME_EDIT, HOST_CONTROL_EDIT_BOX, 0, kShown,
     {26, 0, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CAPACITY_LABEL, HOST_CONTROL_LABEL,
     STR_LABEL_VIRTUAL_DISK_CAPACITY, kShown, {0, 2, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CAPACITY_EDIT, HOST_CONTROL_EDIT_BOX, 0, kShown,
     {26, 2, 12, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CAPACITY_MAX, HOST_CONTROL_LABEL, 0, kShown,
     {40, 2, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_SLIDER, HOST_CONTROL_SLIDER, 0, kShown, {26, 3, 50, 0},
     nullptr, 0},
    {RAID_NODE_POPUP_STRIPE_LABEL, HOST_CONTROL_LABEL, STR_LABEL_STRIP_SIZE,
     kShown, {0, 5, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_STRIPE_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {26, 5, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_READ_LABEL, HOST_CONTROL_LABEL, STR_LABEL_READ_POLICY,
     kShown, {0, 7, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_READ_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {26, 7, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_WRITE_LABEL, HOST_CONTROL_LABEL, STR_LABEL_WRITE_POLICY,
     kShown, {0, 9, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_WRITE_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {26, 9, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_IO_LABEL, HOST_CONTROL_LABEL, STR_LABEL_IO_POLICY, kShown,
     {0, 11, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_IO_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {26, 11, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CACHE_LABEL, HOST_CONTROL_LABEL, STR_LABEL_DRIVE_CACHE,
     kShown, {0, 13, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CACHE_COMBO, HOST_CONTROL_COMBO_BOX, 0, kShown,
     {26, 13, 24, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CREATE, HOST_CONTROL_BUTTON, STR_CREATE_BUTTON, kGrayed,
     {26, 16, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_CANCEL, HOST_CONTROL_BUTTON, STR_CANCEL_BUTTON, kShown,
     {40, 16, 0, 0}, nullptr, 0},
    {RAID_NODE_POPUP_EXIT, HOST_CONTROL_IMAGE_BUTTON, HOST_STRING_CLOSE,
     kShown, {66, 0, 0, 0}, nullptr, 0},
};

// ---- Page 11 --------------------------------------------------------------------------------

constexpr HOST_NODE_TEMPLATE kManageDrivesNodes[] = {
    {RAID_NODE_DRIVES_ATTACHED, HOST_CONTROL_LABEL, STR_DRIVES_ATTACHED,
     kShown, {0, 0, 0, 0}, nullptr, 0},
    {RAID_NODE_ALL_DRIVES_COMBO, HOST_CONTROL_COMBO_BOX,
     STR_ACTIONS_ON_ALL_DRIVES, kShown, {0, 2, 56, 0}, nullptr, 0},
    {RAID_NODE_DRIVE_TABLE, HOST_CONTROL_TABLE, 0, kShown, {0, 4, 76, 14},
     nullptr, 0},
    kBack,
    kNextButton,
};

// ---- Pages ----------------------------------------------------------------------------------

#define RAID_TEMPLATE(Page, Title, Nodes) \
  {RAID_PAGE_NODE_ID(Page), (Title), (Nodes), Count(Nodes)}

constexpr HOST_PAGE_TEMPLATE kTemplates[] = {
    RAID_TEMPLATE(RAID_PAGE_CONTROLLER_SELECTION, STR_PAGE_TITLE_SELECT_ADAPTER,
                  kAdapterSelectionNodes),
    RAID_TEMPLATE(RAID_PAGE_CONFIG_TYPE, STR_PAGE_TITLE_CONFIGURATION_TYPE,
                  kConfigTypeNodes),
    RAID_TEMPLATE(RAID_PAGE_SIMPLE_LEVEL, STR_PAGE_TITLE_RAID_LEVEL_HOT_SPARE,
                  kSimpleLevelNodes),
    RAID_TEMPLATE(RAID_PAGE_SIMPLE_VERIFY, STR_PAGE_TITLE_VERIFY_SETTINGS,
                  kSimpleVerifyNodes),
    RAID_TEMPLATE(RAID_PAGE_CREATION_RUNNING,
                  STR_PAGE_TITLE_CREATING_VIRTUAL_DISKS, kCreationRunningNodes),
    RAID_TEMPLATE(RAID_PAGE_ADV_SELECT_ARRAY, STR_PAGE_TITLE_SELECT_DISK_ARRAY,
                  kSelectArrayNodes),
    RAID_TEMPLATE(RAID_PAGE_ADV_NEW_ARRAY, STR_PAGE_TITLE_LEVEL_AND_DRIVES,
                  kNewArrayNodes),
    RAID_TEMPLATE(RAID_PAGE_ADV_EDIT_VOLUME,
                  STR_PAGE_TITLE_CREATE_EDIT_VIRTUAL_DISK, kEditVolumesNodes),
    RAID_TEMPLATE(RAID_PAGE_ADV_VERIFY, STR_PAGE_TITLE_VERIFY_SETTINGS,
                  kAdvancedVerifyNodes),
    RAID_TEMPLATE(RAID_PAGE_CREATE_VOLUMES,
                  STR_PAGE_TITLE_CREATING_VIRTUAL_DISKS, kCreateVolumesNodes),
    RAID_TEMPLATE(RAID_PAGE_MANAGE_DRIVES, STR_PAGE_TITLE_MANAGE_DISK_DRIVES,
                  kManageDrivesNodes),
};

constexpr HOST_PAGE_TEMPLATE kVolumePopupTemplate = RAID_TEMPLATE(
    RAID_POPUP_PAGE, STR_CREATE_VIRTUAL_DISK_BUTTON, kVolumePopupNodes);

}  // namespace

constinit const HOST_NODE_TEMPLATE gRaidResultGroupTemplate = {
    RAID_NODE_RESULT_GROUP, HOST_CONTROL_CONTAINER, 0, HOST_DISPLAY_SHOWN,
    {0, HOST_LAYOUT_NEXT_ROW, 76, 0}, kResultGroupNodes,
    Count(kResultGroupNodes)};

const HOST_PAGE_TEMPLATE *RaidPageTemplate(UINT32 Page) {
  if (Page == RAID_PAGE_NO_ADAPTER) {
    Page = RAID_PAGE_CONTROLLER_SELECTION;
  }
  if (Page == RAID_POPUP_PAGE) {
    return &kVolumePopupTemplate;
  }
  if (Page < RAID_PAGE_CONTROLLER_SELECTION || Page > RAID_PAGE_MANAGE_DRIVES) {
    return nullptr;
  }
  return &kTemplates[Page - RAID_PAGE_CONTROLLER_SELECTION];
}
