// What an operator can do on the page shown: move the focus, press, choose,
// tick, type, slide, select a table row, change a table cell, ask for help,
// switch the language, leave and return to the module. The key handling of
// the text UI and the headless driver both act through these, so both call
// the module's callbacks the same way.
//
// Each action on a control checks that the control is on the page shown,
// visible and not grayed (EFI_ACCESS_DENIED), that it is of the right kind
// (EFI_INVALID_PARAMETER) and that the value is allowed (EFI_INVALID_
// PARAMETER for an option or row that does not exist, EFI_ACCESS_DENIED for
// a grayed option or cell); then it stores the value, hands it to the data
// source (a refusal puts the old value back), calls the control's callback
// and reads what the refresh marks say.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

namespace framework {

// Focus: the next or previous focusable control of the page, wrapping.
VOID FocusNext();
VOID FocusPrevious();
// Focus on Node; EFI_ACCESS_DENIED when it cannot take the focus.
[[nodiscard]] EFI_STATUS FocusOn(HOST_PAGE_NODE *Node);

[[nodiscard]] EFI_STATUS Press(HOST_PAGE_NODE *Node);
// Radio group or combo box: the option at Index.
[[nodiscard]] EFI_STATUS Choose(HOST_PAGE_NODE *Node, UINTN Index);
[[nodiscard]] EFI_STATUS SetCheck(HOST_PAGE_NODE *Node, BOOLEAN Checked);
[[nodiscard]] EFI_STATUS TypeText(HOST_PAGE_NODE *Node, const CHAR16 *Text);
// Slider: the value is clamped to the slider's range.
[[nodiscard]] EFI_STATUS Slide(HOST_PAGE_NODE *Node, UINT64 Value);
// Table: select data row Row (row 0 is the heading).
[[nodiscard]] EFI_STATUS SelectRow(HOST_PAGE_NODE *Node, UINT32 Row);
// Table: a check box cell's state or a combo box cell's option.
[[nodiscard]] EFI_STATUS SetCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                 UINT32 Column, UINT32 Value);

// F1: the module's help callback (the host's own help when none).
VOID RequestHelp();
// F2 and its kin: make language Index current, re-read every text and tell
// the module. EFI_INVALID_PARAMETER for an index out of range.
[[nodiscard]] EFI_STATUS SwitchLanguage(UINTN Index);
// The operator comes back to the module: the entry callback of the first
// page registered with one, else the module's return callback.
VOID ReturnToModule();

}  // namespace framework
