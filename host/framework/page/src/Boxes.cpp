// Message boxes (plain, progress, Yes/No), the progress of the open progress
// box, and the help panel.
#include <Library/MemoryAllocationLib.h>

#include "FrameworkState.h"
#include "framework/Text.h"

namespace framework {
namespace {

// Most entries one help panel shows.
constexpr UINTN kMaxHelpEntries = 64;

// TRUE when the box has its title and a text to show.
BOOLEAN IsReadable(const MessageBoxState &Box) {
  return Box.Title != nullptr && Box.Text != nullptr && Box.Text[0] != 0;
}

// Opens the box filled in, waits for the operator's answer and closes it.
BOOLEAN AskOpenBox() {
  gState.Box.Open = TRUE;
  BOOLEAN Answer = TRUE;
  if (gState.Services.Ask != nullptr) {
    Answer = gState.Services.Ask(gState.Services.Context);
  }
  CloseMessageBox();
  return Answer;
}

}  // namespace

VOID CloseMessageBox() {
  if (!gState.Box.OwnTexts) {
    FreePool(const_cast<CHAR16 *>(gState.Box.Title));
    FreePool(const_cast<CHAR16 *>(gState.Box.Text));
  }
  gState.Box = {};
}

VOID FreeHelpLines() {
  for (UINTN Index = 0; Index < gState.Help.Count; Index++) {
    FreePool(gState.Help.Lines[Index].Text);
  }
  FreePool(gState.Help.Lines);
  gState.Help = {};
}

VOID CloseHelp() { FreeHelpLines(); }

VOID SetHelpScroll(UINTN Scroll) { gState.Help.Scroll = Scroll; }

VOID CloseTransientBoxes() {
  if (gState.Box.Open && gState.Box.Style == HOST_MSGBOX_PROGRESS) {
    CloseMessageBox();
  }
  FreeHelpLines();
}

BOOLEAN EFIAPI ShowMessageBox(UINT8 Style, EFI_STRING_ID TitleId,
                              EFI_STRING_ID TextId, const CHAR16 *Text) {
  CloseMessageBox();
  gState.Box.Style = Style;
  gState.Box.Title = CopyText(HostString(TitleId));
  gState.Box.Text = CopyText(Text != nullptr ? Text : HostString(TextId));
  // A Yes to a question nobody could read may start a create or a delete:
  // a question without its title or text is not asked and counts as No,
  // and the operator learns why nothing happened.
  if (Style == HOST_MSGBOX_YES_NO && !IsReadable(gState.Box)) {
    CloseMessageBox();
    const NoticeTexts Notice = UnshownQuestionNotice();
    gState.Box = {FALSE, HOST_MSGBOX_PLAIN, Notice.Title, Notice.Text, 0, TRUE};
    AskOpenBox();
    return FALSE;
  }
  if (Style == HOST_MSGBOX_PROGRESS) {
    gState.Box.Open = TRUE;
    RequestRefresh();
    return TRUE;
  }
  const BOOLEAN Answer = AskOpenBox();
  // A plain box only informs: closing it is always an acknowledgement.
  return Style == HOST_MSGBOX_YES_NO ? Answer : TRUE;
}

EFI_STATUS EFIAPI SetProgress(UINT8 Percent) {
  if (!gState.Box.Open || gState.Box.Style != HOST_MSGBOX_PROGRESS) {
    return EFI_NOT_READY;
  }
  if (Percent >= 100) {
    CloseMessageBox();
  } else {
    gState.Box.Percent = Percent;
  }
  RequestRefresh();
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI ShowHelp(HOST_PAGE_NODE *Page,
                           const HOST_HELP_ENTRY *Entries, UINTN Count) {
  if ((Entries == nullptr && Count != 0) || Count > kMaxHelpEntries) {
    return EFI_INVALID_PARAMETER;
  }
  FreeHelpLines();
  HelpLine *Lines = nullptr;
  if (Count != 0) {
    Lines = static_cast<HelpLine *>(AllocateZeroPool(sizeof(HelpLine) * Count));
    if (Lines == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
  }
  gState.Help.Lines = Lines;
  gState.Help.Count = Count;
  for (UINTN Index = 0; Index < Count; Index++) {
    Lines[Index].Style = Entries[Index].Style;
    Lines[Index].Text = CopyText(HostString(Entries[Index].TextId));
    if (Lines[Index].Text == nullptr) {
      FreeHelpLines();
      return EFI_OUT_OF_RESOURCES;
    }
  }
  gState.Help.Open = TRUE;
  RequestRefresh();
  return EFI_SUCCESS;
}

}  // namespace framework
