// The host's page framework: page trees instantiated from the module's
// templates, control records, control tables, pages shown with a focus,
// message and progress boxes, the help panel, the module's callbacks and the
// language. Freestanding; one framework per image (the setup protocol's
// slots carry no This pointer). docs/page-framework.md describes it.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Protocol/Host/RaidSetupDataSource.h>
#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

namespace framework {

// What the framework needs of the host it runs in.
struct HostServices {
  VOID *Context = nullptr;
  // The text of Id in the current language, host-owned; NULL when unknown.
  const CHAR16 *(*GetString)(VOID *Context, EFI_HII_HANDLE HiiHandle,
                             EFI_STRING_ID Id) = nullptr;
  // Makes Language ("fr-FR") the language of GetString.
  EFI_STATUS (*SetLanguage)(VOID *Context, const CHAR8 *Language) = nullptr;
  // A plain (style 0) or Yes/No (style 10) box is open: returns the
  // operator's answer (TRUE for Yes or OK). NULL answers TRUE.
  BOOLEAN (*Ask)(VOID *Context) = nullptr;
  // The screen changed outside an operator's action (progress moved, the
  // module asked for a redraw): a renderer draws it now. May be NULL.
  VOID (*Refresh)(VOID *Context) = nullptr;
};

// The message box shown now, if any.
struct MessageBoxState {
  BOOLEAN Open;
  UINT8 Style;          // HOST_MSGBOX_*
  const CHAR16 *Title;  // framework-owned copies, unless OwnTexts
  const CHAR16 *Text;
  UINT8 Percent;        // progress box
  // Title and Text are the framework's constant texts (the notice shown
  // for a question that could not be shown), not pool copies.
  BOOLEAN OwnTexts;
};

struct HelpLine {
  UINT8 Style;     // HOST_HELP_*
  CHAR16 *Text;
};

// The help panel shown now, if any.
struct HelpState {
  BOOLEAN Open;
  UINTN Count;
  HelpLine *Lines;
  UINTN Scroll;    // first wrapped line shown
};

// The languages F2 cycles through, in order.
constexpr UINTN kLanguageCount = 11;
[[nodiscard]] const CHAR8 *LanguageCode(UINTN Index);

// ---- Life ---------------------------------------------------------------

// Starts the framework: a fresh module root, no page, English. Identity is
// the GUID handed to the module; FirstPageId the id slot 2 gives.
[[nodiscard]] EFI_STATUS Initialize(const HostServices &Services,
                                    const EFI_GUID &Identity,
                                    UINT32 FirstPageId);
// Frees every node the framework made, every copy and the boxes.
VOID Shutdown();
// Fills the setup protocol's framework slots (0-12, 15-19) with the
// framework's; slots 13 (trace) and 14 (strings) stay the host's.
VOID FillSetupSlots(TARN_SETUP_PROTOCOL &Protocol);
// The module's data source; when none is attached, RegisterPage looks it
// up on the image handle it is given.
VOID AttachDataSource(RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource);
// The HII handle texts are fetched with; RegisterPage also sets it.
VOID SetHiiHandle(EFI_HII_HANDLE HiiHandle);

// ---- State --------------------------------------------------------------

[[nodiscard]] HOST_PAGE_NODE *ModuleRoot();
// The page shown now (a node of kind HOST_CONTROL_PAGE), or NULL.
[[nodiscard]] HOST_PAGE_NODE *CurrentPage();
// The control with the focus, or NULL.
[[nodiscard]] HOST_PAGE_NODE *FocusNode();
[[nodiscard]] const MessageBoxState &MessageBox();
[[nodiscard]] const HelpState &Help();
[[nodiscard]] UINTN LanguageIndex();
// Number of nodes the framework made that are alive.
[[nodiscard]] UINTN LiveNodeCount();
// Number of those made for the module's pages: every live node but the
// module root, which the framework makes at Initialize and keeps until
// Shutdown (a module cannot free it). After the module unloaded, anything
// but 0 is a page it left behind.
[[nodiscard]] UINTN LiveModuleNodeCount();

// ---- The setup protocol's framework slots, callable directly ------------

[[nodiscard]] EFI_STATUS EFIAPI GetModuleRoot(HOST_PAGE_NODE **Root);
[[nodiscard]] EFI_STATUS EFIAPI GetModuleIdentity(EFI_GUID **Identity);
[[nodiscard]] EFI_STATUS EFIAPI GetFirstPageId(UINT32 *PageId);
[[nodiscard]] EFI_STATUS EFIAPI
RegisterPage(EFI_HANDLE ImageHandle, EFI_HII_HANDLE HiiHandle, UINT32 Page,
             TARN_PAGE_CALLBACK EnterCallback, TARN_PAGE_CALLBACK LeaveCallback,
             TARN_MODULE_CALLBACK LanguageCallback);
[[nodiscard]] EFI_STATUS EFIAPI
InstantiatePage(const HOST_PAGE_TEMPLATE *Template, HOST_PAGE_NODE *Parent,
                const EFI_GUID *Identity, HOST_PAGE_NODE **Page);
[[nodiscard]] BOOLEAN EFIAPI ShowMessageBox(UINT8 Style, EFI_STRING_ID TitleId,
                                            EFI_STRING_ID TextId,
                                            const CHAR16 *Text);
[[nodiscard]] EFI_STATUS EFIAPI SetProgress(UINT8 Percent);
[[nodiscard]] EFI_STATUS EFIAPI BuildControlTable(
    HOST_PAGE_NODE *Page, const HOST_CONTROL_DESCRIPTOR *Common,
    UINTN CommonCount, const HOST_CONTROL_DESCRIPTOR *Own, UINTN OwnCount);
[[nodiscard]] EFI_STATUS EFIAPI ShowPage(HOST_PAGE_NODE *Page,
                                         UINT32 FocusNodeId);
[[nodiscard]] EFI_STATUS EFIAPI RedrawControl(HOST_PAGE_NODE *Node);
[[nodiscard]] EFI_STATUS EFIAPI RedrawScreen();
[[nodiscard]] EFI_STATUS EFIAPI RegisterModuleCallbacks(
    TARN_MODULE_CALLBACK ReturnCallback, TARN_MODULE_CALLBACK HelpCallback,
    TARN_MODULE_CALLBACK LanguageCallback);
[[nodiscard]] EFI_STATUS EFIAPI ShowHelp(HOST_PAGE_NODE *Page,
                                         const HOST_HELP_ENTRY *Entries,
                                         UINTN Count);
[[nodiscard]] EFI_STATUS EFIAPI RegisterDefaultCallbacks();
[[nodiscard]] EFI_STATUS EFIAPI FreePageNode(HOST_PAGE_NODE *Node);
[[nodiscard]] EFI_STATUS EFIAPI FindNode(HOST_PAGE_NODE *Root, UINT32 NodeId,
                                         HOST_PAGE_NODE **Node);
// The node NodeId below Root, or NULL (none there, or no Root): FindNode for
// the framework's own callers, whose answer is the node alone.
[[nodiscard]] HOST_PAGE_NODE *NodeById(HOST_PAGE_NODE *Root, UINT32 NodeId);
[[nodiscard]] EFI_STATUS EFIAPI GetLanguage(CHAR8 *Buffer, UINTN BufferSize);
[[nodiscard]] EFI_STATUS EFIAPI RegisterStepCallback(HOST_PAGE_NODE *Page,
                                                     TARN_STEP_CALLBACK Step);

// ---- Reading controls (renderer, driver) ---------------------------------

// One option of a radio group or combo box as the framework holds it.
struct OptionView {
  UINT32 Value;
  const CHAR16 *Text;
  UINT8 DisplayState;
};

// One table cell as the framework holds it.
struct CellView {
  UINT8 Kind;
  UINT8 DisplayState;
  const CHAR16 *Text;   // never NULL
  UINT32 Value;
  UINT16 OptionCount;
};

// The framework's record of a node, or NULL for a node without one.
[[nodiscard]] HOST_CONTROL *ControlOf(const HOST_PAGE_NODE *Node);
// The text the control shows (never NULL).
[[nodiscard]] const CHAR16 *TextOf(const HOST_PAGE_NODE *Node);
[[nodiscard]] UINTN OptionCount(const HOST_PAGE_NODE *Node);
[[nodiscard]] BOOLEAN OptionAt(const HOST_PAGE_NODE *Node, UINTN Index,
                               OptionView *View);
// Table shape; 0 for a node that is not a table.
[[nodiscard]] UINT32 TableRows(const HOST_PAGE_NODE *Node);
[[nodiscard]] UINT32 TableColumns(const HOST_PAGE_NODE *Node);
[[nodiscard]] UINT32 TableFlags(const HOST_PAGE_NODE *Node);
[[nodiscard]] UINT16 TableColumnWidth(const HOST_PAGE_NODE *Node,
                                      UINT32 Column);
[[nodiscard]] BOOLEAN CellAt(const HOST_PAGE_NODE *Node, UINT32 Row,
                             UINT32 Column, CellView *View);
[[nodiscard]] const CHAR16 *CellOptionText(const HOST_PAGE_NODE *Node,
                                           UINT32 Row, UINT32 Column,
                                           UINTN Option);
[[nodiscard]] UINT8 CellOptionState(const HOST_PAGE_NODE *Node, UINT32 Row,
                                    UINT32 Column, UINTN Option);
// Scroll position and cell cursor of a table, kept by the framework.
[[nodiscard]] UINT32 TableScrollTop(const HOST_PAGE_NODE *Node);
VOID SetTableScrollTop(HOST_PAGE_NODE *Node, UINT32 Top);
[[nodiscard]] UINT32 TableCursorColumn(const HOST_PAGE_NODE *Node);
VOID SetTableCursorColumn(HOST_PAGE_NODE *Node, UINT32 Column);
// The first column a table too wide for its place shows.
[[nodiscard]] UINT32 TableFirstColumn(const HOST_PAGE_NODE *Node);
VOID SetTableFirstColumn(HOST_PAGE_NODE *Node, UINT32 Column);
// The option under a radio group's cursor.
[[nodiscard]] UINT32 RadioCursor(const HOST_PAGE_NODE *Node);
VOID SetRadioCursor(HOST_PAGE_NODE *Node, UINT32 Option);

// Effective display state: hidden when the node or an ancestor is hidden,
// grayed when the node or an ancestor is grayed, shown otherwise.
[[nodiscard]] UINT8 EffectiveState(const HOST_PAGE_NODE *Node);
// TRUE for a control the operator can move the focus to: a visible,
// enabled button, radio group, combo box, check box, edit box, slider or
// table.
[[nodiscard]] BOOLEAN IsFocusable(const HOST_PAGE_NODE *Node);

// Reads again what the refresh marks below Node say (and any control whose
// cached text was dropped), then clears the marks.
VOID ProcessRefreshMarks(HOST_PAGE_NODE *Node);

// Scroll position of the help panel.
VOID SetHelpScroll(UINTN Scroll);
// Closes the help panel.
VOID CloseHelp();

}  // namespace framework
