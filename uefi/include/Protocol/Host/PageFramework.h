// Records the page framework and the wizard share: page nodes, control
// records and the descriptors a page's control table is built from.
// The wizard owns the page templates (static data in the module); the host
// instantiates them and draws the controls.
#pragma once

#include <Uefi.h>

// A page-tree node whose control record is this value has none of its own.
#define HOST_NODE_NO_CONTROL ((HOST_CONTROL *)~(UINTN)0)

// Display states of a control.
#define HOST_DISPLAY_SHOWN 0
#define HOST_DISPLAY_HIDDEN 2
#define HOST_DISPLAY_GRAYED 3

// Refresh marks: what the framework must read again.
#define HOST_REFRESH_STATE 1
#define HOST_REFRESH_STATUS 2
#define HOST_REFRESH_TEXT 4
#define HOST_REFRESH_MODE 8

// Message box styles.
#define HOST_MSGBOX_PLAIN 0
#define HOST_MSGBOX_PROGRESS 9
#define HOST_MSGBOX_YES_NO 10

// Help entry styles.
#define HOST_HELP_HEADING 1
#define HOST_HELP_PARAGRAPH 3

typedef struct _HOST_CONTROL HOST_CONTROL;
typedef struct _HOST_PAGE_NODE HOST_PAGE_NODE;
typedef struct _HOST_PAGE_TEMPLATE HOST_PAGE_TEMPLATE;
typedef struct _HOST_CONTROL_DESCRIPTOR HOST_CONTROL_DESCRIPTOR;

// The part of a control record the wizard reads and writes; the framework
// may keep more behind it.
struct _HOST_CONTROL {
  UINT8 DisplayState;
  UINT32 Kind;
  EFI_STRING_ID TextId;
  CHAR16 *CachedText;
};

struct _HOST_PAGE_NODE {
  HOST_CONTROL *Control;
  UINT32 NodeId;
  UINT8 RefreshMark;
  HOST_PAGE_NODE *FirstChild;
  HOST_PAGE_NODE *NextSibling;
  HOST_PAGE_NODE *Parent;
};

typedef struct {
  EFI_STRING_ID TextId;
  UINT8 Style;
} HOST_HELP_ENTRY;
