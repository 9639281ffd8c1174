// Drives the page framework without a terminal, for tests and scripts: finds
// controls by node id or visible text, reads their state, text and value,
// operates them as an operator would (through the same operator actions as
// the text UI, so the module's callbacks run the same way), answers message
// boxes from a queue, switches the language and dumps the screen as text.
#pragma once

#include <Uefi.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "framework/Framework.h"

namespace framework {

// A message box the module opened, as the operator saw it.
struct MessageBoxRecord {
  UINT8 Style;
  std::u16string Title;
  std::u16string Text;
  BOOLEAN Answer;
  bool FromQueue;  // false: the default answer was used
};

class HeadlessDriver {
 public:
  explicit HeadlessDriver(UINTN Columns = 80, UINTN Rows = 25);
  HeadlessDriver(const HeadlessDriver &) = delete;
  HeadlessDriver &operator=(const HeadlessDriver &) = delete;

  // Ask answers from the queue, Refresh notes the progress seen.
  [[nodiscard]] HostServices Services();

  // ---- Finding controls on the page shown
  [[nodiscard]] HOST_PAGE_NODE *Page() const { return CurrentPage(); }
  // The control of NodeId on the page shown, or NULL.
  [[nodiscard]] HOST_PAGE_NODE *Find(UINT32 NodeId) const;
  // The first control (visible ones first) whose text, with blanks
  // trimmed, equals Text; NULL when none.
  [[nodiscard]] HOST_PAGE_NODE *FindByText(const std::u16string &Text) const;
  // "#12" (a node id) or a visible text, UTF-8.
  [[nodiscard]] HOST_PAGE_NODE *Resolve(const std::string &Reference) const;

  // ---- Reading
  // The effective display state.
  [[nodiscard]] UINT8 State(const HOST_PAGE_NODE *Node) const;
  [[nodiscard]] std::u16string Text(const HOST_PAGE_NODE *Node) const;
  [[nodiscard]] UINT64 Value(const HOST_PAGE_NODE *Node) const;
  [[nodiscard]] std::vector<std::u16string> Options(
      const HOST_PAGE_NODE *Node) const;
  [[nodiscard]] std::u16string Cell(const HOST_PAGE_NODE *Node, UINT32 Row,
                                    UINT32 Column) const;
  [[nodiscard]] std::u16string Title() const;

  // ---- Operating (statuses of framework/Operator.h)
  [[nodiscard]] EFI_STATUS Press(HOST_PAGE_NODE *Node);
  [[nodiscard]] EFI_STATUS Choose(HOST_PAGE_NODE *Node, UINTN Index);
  // The option whose text (blanks trimmed) is Option.
  [[nodiscard]] EFI_STATUS Choose(HOST_PAGE_NODE *Node,
                                  const std::u16string &Option);
  [[nodiscard]] EFI_STATUS Tick(HOST_PAGE_NODE *Node, bool Checked);
  [[nodiscard]] EFI_STATUS Type(HOST_PAGE_NODE *Node,
                                const std::u16string &Text);
  [[nodiscard]] EFI_STATUS Slide(HOST_PAGE_NODE *Node, UINT64 Value);
  [[nodiscard]] EFI_STATUS SelectRow(HOST_PAGE_NODE *Node, UINT32 Row);
  // The first row holding a cell whose text (blanks trimmed) is Text.
  [[nodiscard]] EFI_STATUS SelectRow(HOST_PAGE_NODE *Node,
                                     const std::u16string &Text);
  [[nodiscard]] EFI_STATUS SetCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                   UINT32 Column, UINT32 Value);
  [[nodiscard]] EFI_STATUS ChooseCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                      UINT32 Column,
                                      const std::u16string &Option);
  void FocusNext();
  void FocusPrevious();

  // ---- Message boxes
  void QueueAnswer(BOOLEAN Answer) { Answers_.push_back(Answer); }
  void SetDefaultAnswer(BOOLEAN Answer) { DefaultAnswer_ = Answer; }
  // Answers the boxes in place of the queue (an interactive UI).
  void SetAskHandler(std::function<BOOLEAN()> Handler) {
    AskHandler_ = std::move(Handler);
  }
  [[nodiscard]] size_t PendingAnswers() const { return Answers_.size(); }
  [[nodiscard]] const std::vector<MessageBoxRecord> &MessageBoxes() const {
    return MessageBoxes_;
  }
  // Percentages the progress boxes moved to, in order (100 closes a box
  // and is not seen).
  [[nodiscard]] const std::vector<UINT8> &ProgressSeen() const {
    return Progress_;
  }

  // ---- Module-wide actions
  void Help();
  void CloseHelp();
  // A language code ("fr-FR"); EFI_NOT_FOUND for an unknown one.
  [[nodiscard]] EFI_STATUS SwitchLanguage(const std::string &Code);
  void ReturnToModule();

  // The screen as the operator would see it now, as UTF-8 text; at the
  // driver's size or at another.
  [[nodiscard]] std::string Dump() const { return Dump(Columns_, Rows_); }
  [[nodiscard]] std::string Dump(UINTN Columns, UINTN Rows) const;

 private:
  [[nodiscard]] static BOOLEAN Ask(VOID *Context);
  static VOID Refresh(VOID *Context);

  UINTN Columns_;
  UINTN Rows_;
  std::deque<BOOLEAN> Answers_;
  BOOLEAN DefaultAnswer_ = TRUE;
  std::function<BOOLEAN()> AskHandler_;
  std::vector<MessageBoxRecord> MessageBoxes_;
  std::vector<UINT8> Progress_;
  const CHAR16 *ProgressBox_ = nullptr;  // the open progress box's text
};

// UTF-8 and UTF-16 conversions used by the driver and scripts.
[[nodiscard]] std::string ToUtf8(const std::u16string &Text);
[[nodiscard]] std::u16string FromUtf8(const std::string &Text);

}  // namespace framework
