// Node ids of the wizard's page templates and the templates themselves.
//
// A page node's id is RAID_PAGE_NODE_ID(page); the controls of page p carry
// ids p * 100 + n, and every page's Next and Back buttons share the ids
// RAID_NODE_NEXT and RAID_NODE_BACK (ids need only be unique within a page).
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#define RAID_PAGE_NODE_ID(Page) (10000U + (Page))

// Common controls of every page.
#define RAID_NODE_NEXT 90
#define RAID_NODE_BACK 91

// ---- Page 1: adapter selection (page 12 shows the same tree) ----------------
#define RAID_NODE_ADAPTER_RADIO 101
#define RAID_NODE_ADAPTER_AREA 102       // container of everything below it
#define RAID_NODE_STATUS_HEADING 103     // 711
#define RAID_NODE_REFRESH 104            // image button
#define RAID_NODE_FIRMWARE_LABEL 105     // 713 + version
#define RAID_NODE_SERIAL_LABEL 106       // 714 + serial number
#define RAID_NODE_DRIVES_LABEL 107       // 715
#define RAID_NODE_CONFIG_HEADING 108     // 716
#define RAID_NODE_CONFIG_TABLE 109
#define RAID_NODE_EMPTY_CONFIG 110       // 820
#define RAID_NODE_DELETE 111             // 775
#define RAID_NODE_MANAGE_DRIVES 112      // 776
#define RAID_NODE_START 113              // 868
#define RAID_NODE_ADAPTER_MESSAGE 114    // 846
#define RAID_NODE_NO_ADAPTER_MESSAGE 115 // 725, shown on page 12

// ---- Page 2: configuration type ----------------------------------------------
#define RAID_NODE_CONFIG_TYPE_RADIO 201   // 728 / 730
#define RAID_NODE_SIMPLE_DESCRIPTION 202  // 729
#define RAID_NODE_ADVANCED_DESCRIPTION 203  // 731
#define RAID_NODE_ADVANCED_MODE_COMBO 204   // 732 / 733
#define RAID_NODE_SIMPLE_WARNING 205        // 849 at first
#define RAID_NODE_ADVANCED_WARNING 206      // 802 at first

// ---- Page 3: simple configuration, RAID level and hot spare ------------------
#define RAID_NODE_SIMPLE_LEVEL_RADIO 301
#define RAID_NODE_HOT_SPARE_CHECK 302
#define RAID_NODE_HOT_SPARE_LABEL 303       // 744
#define RAID_NODE_LEVEL_DRIVES_WARNING 304  // 861
#define RAID_NODE_UNCONFIGURED_WARNING 305  // 862

// ---- Pages 4 and 9: verify settings (page 9 adds 500 to each id) -------------
#define RAID_NODE_VERIFY_LEVEL 401          // 810
#define RAID_NODE_VERIFY_DRIVES 402         // 715
#define RAID_NODE_VERIFY_SPARES 403         // 811
#define RAID_NODE_VERIFY_ALLOCATED 404      // 815
#define RAID_NODE_VERIFY_FREE 405           // 751
#define RAID_NODE_VERIFY_TABLE 406
#define RAID_NODE_VERIFY_UNEQUAL_WARNING 407  // 859
#define RAID_NODE_VERIFY_MBR_WARNING 408      // 824
#define RAID_NODE_ADV_VERIFY_OFFSET 500

// ---- Pages 5 and 10: creation ------------------------------------------------
#define RAID_NODE_RUNNING_LABEL 501         // 746 (page 5)
#define RAID_NODE_RUNNING_DOT_FIRST 502     // five dots, 502-506
#define RAID_NODE_RESULT_ROWS 1001          // container of the result groups
#define RAID_NODE_PROGRESS_DOT_FIRST 1002   // five dots, 1002-1006
#define RAID_PROGRESS_DOT_COUNT 5
// One result group (built per planned virtual disk): container and labels.
#define RAID_NODE_RESULT_GROUP 1010
#define RAID_NODE_RESULT_CREATING 1011      // 746
#define RAID_NODE_RESULT_NAME 1012
#define RAID_NODE_RESULT_SUCCESS 1013       // 747
#define RAID_NODE_RESULT_FAILURE 1014       // 748

// ---- Page 6: select disk array (free segments) -------------------------------
#define RAID_NODE_FREE_SEGMENT_TABLE 601

// ---- Page 7: RAID level and drives of a new array ------------------------------
#define RAID_NODE_NEW_ARRAY_LEVEL_COMBO 701
#define RAID_NODE_NEW_ARRAY_HINT 702        // 764 or 855
#define RAID_NODE_NEW_ARRAY_DRIVE_TABLE 703
#define RAID_NODE_NEW_ARRAY_WARNING 704

// ---- Page 8: create and edit virtual disks -------------------------------------
#define RAID_NODE_PLANNED_TABLE 801
#define RAID_NODE_CREATE_VD 802             // 773
#define RAID_NODE_EDIT_VD 803               // 774
#define RAID_NODE_REMOVE_VD 804             // 775
#define RAID_NODE_ARRAY_FREE_CAPACITY 805   // 781
#define RAID_NODE_VD_LIMIT_WARNING 806      // 856

// ---- The virtual disk pop-up of page 8 -------------------------------------------
#define RAID_NODE_POPUP_NAME_LABEL 1301     // 784
#define RAID_NODE_POPUP_NAME_EDIT 1302
#define RAID_NODE_POPUP_CAPACITY_LABEL 1303  // 785
#define RAID_NODE_POPUP_CAPACITY_EDIT 1304
#define RAID_NODE_POPUP_CAPACITY_MAX 1305    // "%d GB MAX"
#define RAID_NODE_POPUP_SLIDER 1306
#define RAID_NODE_POPUP_STRIPE_LABEL 1307    // 786
#define RAID_NODE_POPUP_STRIPE_COMBO 1308
#define RAID_NODE_POPUP_READ_LABEL 1309      // 787
#define RAID_NODE_POPUP_READ_COMBO 1310
#define RAID_NODE_POPUP_WRITE_LABEL 1311     // 788
#define RAID_NODE_POPUP_WRITE_COMBO 1312
#define RAID_NODE_POPUP_IO_LABEL 1313        // 789
#define RAID_NODE_POPUP_IO_COMBO 1314
#define RAID_NODE_POPUP_CACHE_LABEL 1315     // 790
#define RAID_NODE_POPUP_CACHE_COMBO 1316
#define RAID_NODE_POPUP_CREATE 1317          // 792
#define RAID_NODE_POPUP_CANCEL 1318          // 793
#define RAID_NODE_POPUP_EXIT 1319            // the pop-up's close button
// The pop-up is a page of its own, attached while it is open.
#define RAID_POPUP_PAGE 13

// ---- Page 11: manage disk drives ------------------------------------------------
#define RAID_NODE_DRIVES_ATTACHED 1101      // 833
#define RAID_NODE_ALL_DRIVES_COMBO 1102     // 834 / 835 / 836
#define RAID_NODE_DRIVE_TABLE 1103

// ---- Templates ------------------------------------------------------------------

// The static template of Page (1-11, and RAID_POPUP_PAGE); page 12 uses page
// 1's. NULL for any other number.
[[nodiscard]] const HOST_PAGE_TEMPLATE *RaidPageTemplate(UINT32 Page);
// The nodes of one result group of page 10, for the creation page to attach
// once per planned virtual disk.
extern const HOST_NODE_TEMPLATE gRaidResultGroupTemplate;
