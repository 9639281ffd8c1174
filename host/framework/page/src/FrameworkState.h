// The framework's private records and its one instance of state.
#pragma once

#include "framework/Framework.h"

namespace framework {

// Copies the framework keeps of what the data source handed out.
struct OptionCopy {
  UINT32 Value;
  CHAR16 *Text;  // never NULL once loaded
  UINT8 DisplayState;
};

struct OptionsCopy {
  UINT16 Count;
  OptionCopy *Items;
};

struct CellCopy {
  UINT8 Kind;
  UINT8 DisplayState;
  CHAR16 *Text;
  UINT32 Value;
  OptionsCopy Options;
};

struct TableCopy {
  UINT32 Rows;
  UINT32 Columns;
  UINT32 Flags;
  UINT16 *Widths;  // NULL: sized by the renderer
  CellCopy *Cells;
  UINT32 ScrollTop;
  UINT32 CursorColumn;
  UINT32 FirstColumn;  // the first column shown when the table scrolls sideways
};

// A control record: the wizard's part first, the framework's behind it.
struct Control {
  HOST_CONTROL Public;
  EFI_GUID Owner;
  HOST_CONTROL_CALLBACK Callback;
  CHAR16 *Text;  // what Public.CachedText points at while it is current
  OptionsCopy Options;
  TableCopy Table;
  UINT32 RadioCursor;
  BOOLEAN Loaded;  // read at least once since it was made
};

// A node the framework made; the registry lets it tell its own nodes from
// the module's and free what is left at shutdown.
struct MadeNode {
  HOST_PAGE_NODE Node;
  MadeNode *Previous;
  MadeNode *Next;
};

struct RegisteredPage {
  UINT32 Page;
  TARN_PAGE_CALLBACK Enter;
  TARN_PAGE_CALLBACK Leave;
  TARN_MODULE_CALLBACK Language;
};

constexpr UINTN kMaxRegisteredPages = 16;

struct State {
  BOOLEAN Running;
  HostServices Services;
  EFI_GUID Identity;
  UINT32 FirstPageId;
  EFI_HII_HANDLE HiiHandle;
  RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource;
  HOST_PAGE_NODE *Root;
  MadeNode *Made;
  UINTN MadeCount;
  HOST_PAGE_NODE *Page;
  HOST_PAGE_NODE *Focus;
  MessageBoxState Box;
  HelpState Help;
  UINTN Language;
  TARN_MODULE_CALLBACK ReturnCallback;
  TARN_MODULE_CALLBACK HelpCallback;
  TARN_MODULE_CALLBACK LanguageCallback;
  RegisteredPage Pages[kMaxRegisteredPages];
  UINTN PageCount;
  // The page's step callback (slot 19) and the page it runs on.
  HOST_PAGE_NODE *StepPage;
  TARN_STEP_CALLBACK Step;
};

extern State gState;

// The framework's record behind a node, or NULL.
[[nodiscard]] Control *RecordOf(const HOST_PAGE_NODE *Node);
// TRUE when the framework made Node.
[[nodiscard]] BOOLEAN IsMadeNode(const HOST_PAGE_NODE *Node);
// A fresh record of Kind for a node made from a template.
[[nodiscard]] Control *NewControl(UINT32 Kind, EFI_STRING_ID TextId,
                                  UINT8 DisplayState, const HOST_LAYOUT &Layout,
                                  const EFI_GUID *Owner);
// Frees a record and everything it owns.
VOID FreeControl(Control *Record);
// Reads the record's text, options, table and value again.
VOID ReloadControl(HOST_PAGE_NODE *Node);
// Drops every text copy so that all are read again (language change).
VOID ForgetAllTexts();
// The text of an id in the current language; never NULL.
[[nodiscard]] const CHAR16 *HostString(EFI_STRING_ID Id);
// The framework's own text of Id (HOST_STRING_*) in the current language;
// NULL for an id of the module's package list.
[[nodiscard]] const CHAR16 *FrameworkText(EFI_STRING_ID Id);
// The plain box shown in place of a question that could not be shown, in
// the current language.
struct NoticeTexts {
  const CHAR16 *Title;
  const CHAR16 *Text;
};
[[nodiscard]] NoticeTexts UnshownQuestionNotice();
// The texts of the screen's own frame in the current language: the key
// line, the message boxes' buttons, the help panel's title and keys, and
// the notice of a screen too small for the pages.
struct FrameTexts {
  const CHAR16 *Keys;
  const CHAR16 *Yes;
  const CHAR16 *No;
  const CHAR16 *Ok;
  const CHAR16 *Help;
  const CHAR16 *HelpKeys;
  const CHAR16 *Enlarge;
};
[[nodiscard]] const FrameTexts &ScreenTexts();
// Focus repair after states changed: the focus leaves a control that can no
// longer take it.
VOID RepairFocus();
// Tells the host to draw now.
VOID RequestRefresh();
// Closes the progress box and the help panel (a page is shown).
VOID CloseTransientBoxes();
// The page node ShowPage shows for Node: Node itself when it is a page,
// else the first page among its children; NULL when there is none.
[[nodiscard]] HOST_PAGE_NODE *PageToShow(HOST_PAGE_NODE *Node);
// Calls the registered step while its page is shown, until it reports that
// no step is due (the operator's next action waits for that).
VOID RunDueSteps();
// Drops the step when its page lies in the subtree of Node (being freed).
VOID ForgetStepsIn(const HOST_PAGE_NODE *Node);
// Forgets pointers into a subtree that is being freed.
VOID ForgetSubtree(const HOST_PAGE_NODE *Node);
// Deepest page tree the framework walks; deeper links are ignored.
constexpr UINTN kMaxTreeDepth = 32;

// Registers and returns a fresh unlinked node, or NULL when memory is short.
[[nodiscard]] HOST_PAGE_NODE *MakeNode(UINT32 NodeId, HOST_CONTROL *Record);
// Frees every node the framework made (shutdown).
VOID FreeAllMadeNodes();
// Closes the message box, freeing its texts.
VOID CloseMessageBox();
// Frees the help panel's texts.
VOID FreeHelpLines();

// TRUE when Node lies in the subtree of Root.
[[nodiscard]] BOOLEAN IsInSubtree(const HOST_PAGE_NODE *Node,
                                  const HOST_PAGE_NODE *Root);

}  // namespace framework
