// The headless driver: controls found by id or text, operated through the
// framework's operator actions; message boxes answered from a queue.
#include "framework/HeadlessDriver.h"

#include <Library/DebugLib.h>

#include "framework/Operator.h"
#include "framework/Screen.h"
#include "framework/TextRenderer.h"

namespace framework {
namespace {

[[nodiscard]] std::u16string Trimmed(const CHAR16 *Text) {
  std::u16string Value = Text != nullptr ? Text : u"";
  size_t First = Value.find_first_not_of(u" \t");
  if (First == std::u16string::npos) {
    return u"";
  }
  size_t Last = Value.find_last_not_of(u" \t");
  return Value.substr(First, Last - First + 1);
}

// Every node below Root in tree order.
void Collect(HOST_PAGE_NODE *Root, std::vector<HOST_PAGE_NODE *> &Nodes,
             int Depth = 0) {
  if (Root == nullptr || Depth > 32) {
    return;
  }
  for (HOST_PAGE_NODE *Child = Root->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    Nodes.push_back(Child);
    Collect(Child, Nodes, Depth + 1);
  }
}

}  // namespace

std::string ToUtf8(const std::u16string &Text) {
  std::string Out;
  for (size_t Index = 0; Index < Text.size(); Index++) {
    char32_t Code = Text[Index];
    if (Code >= 0xD800 && Code <= 0xDBFF && Index + 1 < Text.size() &&
        Text[Index + 1] >= 0xDC00 && Text[Index + 1] <= 0xDFFF) {
      Code = 0x10000 + ((Code - 0xD800) << 10) + (Text[++Index] - 0xDC00);
    }
    if (Code < 0x80) {
      Out += static_cast<char>(Code);
    } else if (Code < 0x800) {
      Out += static_cast<char>(0xC0 | (Code >> 6));
      Out += static_cast<char>(0x80 | (Code & 0x3F));
    } else if (Code < 0x10000) {
      Out += static_cast<char>(0xE0 | (Code >> 12));
      Out += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
      Out += static_cast<char>(0x80 | (Code & 0x3F));
    } else {
      Out += static_cast<char>(0xF0 | (Code >> 18));
      Out += static_cast<char>(0x80 | ((Code >> 12) & 0x3F));
      Out += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
      Out += static_cast<char>(0x80 | (Code & 0x3F));
    }
  }
  return Out;
}

std::u16string FromUtf8(const std::string &Text) {
  std::u16string Out;
  for (size_t Index = 0; Index < Text.size();) {
    unsigned char Lead = static_cast<unsigned char>(Text[Index]);
    size_t Length = Lead < 0x80 ? 1 : (Lead >> 5) == 6 ? 2 : (Lead >> 4) == 14 ? 3
                                 : (Lead >> 3) == 30   ? 4
                                                       : 0;
    if (Length == 0 || Index + Length > Text.size()) {
      Out += u'\xFFFD';
      Index++;
      continue;
    }
    char32_t Code = Length == 1 ? Lead : Lead & (0x7F >> Length);
    for (size_t More = 1; More < Length; More++) {
      Code = (Code << 6) | (static_cast<unsigned char>(Text[Index + More]) & 0x3F);
    }
    if (Code >= 0x10000) {
      Code -= 0x10000;
      Out += static_cast<char16_t>(0xD800 + (Code >> 10));
      Out += static_cast<char16_t>(0xDC00 + (Code & 0x3FF));
    } else {
      Out += static_cast<char16_t>(Code);
    }
    Index += Length;
  }
  return Out;
}

HeadlessDriver::HeadlessDriver(UINTN Columns, UINTN Rows)
    : Columns_(Columns), Rows_(Rows) {}

HostServices HeadlessDriver::Services() {
  HostServices Services;
  Services.Context = this;
  Services.Ask = Ask;
  Services.Refresh = Refresh;
  return Services;
}

BOOLEAN HeadlessDriver::Ask(VOID *Context) {
  auto &Self = *static_cast<HeadlessDriver *>(Context);
  const MessageBoxState &Box = MessageBox();
  MessageBoxRecord Record = {Box.Style,
                             Box.Title != nullptr ? Box.Title : u"",
                             Box.Text != nullptr ? Box.Text : u"",
                             TRUE, false};
  // Plain boxes are only acknowledged; answers are for questions.
  if (Self.AskHandler_) {
    Record.Answer = Self.AskHandler_();
  } else if (Box.Style == HOST_MSGBOX_YES_NO) {
    Record.Answer = Self.DefaultAnswer_;
    if (!Self.Answers_.empty()) {
      Record.Answer = Self.Answers_.front();
      Record.FromQueue = true;
      Self.Answers_.pop_front();
    }
  }
  Self.MessageBoxes_.push_back(Record);
  return Record.Answer;
}

VOID HeadlessDriver::Refresh(VOID *Context) {
  auto &Self = *static_cast<HeadlessDriver *>(Context);
  const MessageBoxState &Box = MessageBox();
  if (!Box.Open || Box.Style != HOST_MSGBOX_PROGRESS) {
    Self.ProgressBox_ = nullptr;
    return;
  }
  if (Box.Text != Self.ProgressBox_) {
    // A progress box just opened.
    Self.ProgressBox_ = Box.Text;
    Self.MessageBoxes_.push_back({Box.Style,
                                  Box.Title != nullptr ? Box.Title : u"",
                                  Box.Text != nullptr ? Box.Text : u"", TRUE,
                                  false});
    return;
  }
  if (Self.Progress_.empty() || Self.Progress_.back() != Box.Percent) {
    Self.Progress_.push_back(Box.Percent);
  }
}

HOST_PAGE_NODE *HeadlessDriver::Find(UINT32 NodeId) const {
  return NodeById(Page(), NodeId);
}

HOST_PAGE_NODE *HeadlessDriver::FindByText(const std::u16string &Text) const {
  std::vector<HOST_PAGE_NODE *> Nodes;
  Collect(Page(), Nodes);
  HOST_PAGE_NODE *Hidden = nullptr;
  for (HOST_PAGE_NODE *Node : Nodes) {
    if (ControlOf(Node) == nullptr || Trimmed(TextOf(Node)) != Trimmed(Text.c_str())) {
      continue;
    }
    if (EffectiveState(Node) != HOST_DISPLAY_HIDDEN) {
      return Node;
    }
    Hidden = Hidden != nullptr ? Hidden : Node;
  }
  return Hidden;
}

HOST_PAGE_NODE *HeadlessDriver::Resolve(const std::string &Reference) const {
  if (Reference.size() > 1 && Reference[0] == '#' &&
      Reference.find_first_not_of("0123456789", 1) == std::string::npos &&
      Reference.size() < 11) {
    return Find(static_cast<UINT32>(std::stoul(Reference.substr(1))));
  }
  return FindByText(FromUtf8(Reference));
}

UINT8 HeadlessDriver::State(const HOST_PAGE_NODE *Node) const {
  return EffectiveState(Node);
}

std::u16string HeadlessDriver::Text(const HOST_PAGE_NODE *Node) const {
  return TextOf(Node);
}

UINT64 HeadlessDriver::Value(const HOST_PAGE_NODE *Node) const {
  HOST_CONTROL *Control = ControlOf(Node);
  return Control != nullptr ? Control->Value : 0;
}

std::vector<std::u16string> HeadlessDriver::Options(
    const HOST_PAGE_NODE *Node) const {
  std::vector<std::u16string> Texts;
  for (UINTN Index = 0; Index < OptionCount(Node); Index++) {
    OptionView Option = {};
    BOOLEAN Listed = OptionAt(Node, Index, &Option);
    ASSERT(Listed);  // Index is below OptionCount
    Texts.push_back(Option.Text);
  }
  return Texts;
}

std::u16string HeadlessDriver::Cell(const HOST_PAGE_NODE *Node, UINT32 Row,
                                    UINT32 Column) const {
  CellView View = {};
  if (!CellAt(Node, Row, Column, &View)) {
    return u"";
  }
  if (View.Kind == HOST_CELL_COMBO_BOX) {
    return CellOptionText(Node, Row, Column, View.Value);
  }
  if (View.Kind == HOST_CELL_CHECK_BOX) {
    return View.Value != 0 ? u"[X]" : u"[ ]";
  }
  return View.Text;
}

std::u16string HeadlessDriver::Title() const {
  return Page() != nullptr ? TextOf(Page()) : u"";
}

EFI_STATUS HeadlessDriver::Press(HOST_PAGE_NODE *Node) {
  return framework::Press(Node);
}

EFI_STATUS HeadlessDriver::Choose(HOST_PAGE_NODE *Node, UINTN Index) {
  return framework::Choose(Node, Index);
}

EFI_STATUS HeadlessDriver::Choose(HOST_PAGE_NODE *Node,
                                  const std::u16string &Option) {
  std::vector<std::u16string> Texts = Options(Node);
  for (size_t Index = 0; Index < Texts.size(); Index++) {
    if (Trimmed(Texts[Index].c_str()) == Trimmed(Option.c_str())) {
      return framework::Choose(Node, Index);
    }
  }
  return EFI_NOT_FOUND;
}

EFI_STATUS HeadlessDriver::Tick(HOST_PAGE_NODE *Node, bool Checked) {
  return SetCheck(Node, Checked ? TRUE : FALSE);
}

EFI_STATUS HeadlessDriver::Type(HOST_PAGE_NODE *Node,
                                const std::u16string &Text) {
  return TypeText(Node, Text.c_str());
}

EFI_STATUS HeadlessDriver::Slide(HOST_PAGE_NODE *Node, UINT64 Value) {
  return framework::Slide(Node, Value);
}

EFI_STATUS HeadlessDriver::SelectRow(HOST_PAGE_NODE *Node, UINT32 Row) {
  return framework::SelectRow(Node, Row);
}

EFI_STATUS HeadlessDriver::SelectRow(HOST_PAGE_NODE *Node,
                                     const std::u16string &Text) {
  for (UINT32 Row = 0; Row < TableRows(Node); Row++) {
    for (UINT32 Column = 0; Column < TableColumns(Node); Column++) {
      if (Trimmed(Cell(Node, Row, Column).c_str()) == Trimmed(Text.c_str())) {
        return framework::SelectRow(Node, Row);
      }
    }
  }
  return EFI_NOT_FOUND;
}

EFI_STATUS HeadlessDriver::SetCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                   UINT32 Column, UINT32 Value) {
  return framework::SetCell(Node, Row, Column, Value);
}

EFI_STATUS HeadlessDriver::ChooseCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                      UINT32 Column,
                                      const std::u16string &Option) {
  CellView View = {};
  if (!CellAt(Node, Row, Column, &View)) {
    return EFI_INVALID_PARAMETER;
  }
  for (UINT32 Index = 0; Index < View.OptionCount; Index++) {
    if (Trimmed(CellOptionText(Node, Row, Column, Index)) ==
        Trimmed(Option.c_str())) {
      return framework::SetCell(Node, Row, Column, Index);
    }
  }
  return EFI_NOT_FOUND;
}

void HeadlessDriver::FocusNext() { framework::FocusNext(); }
void HeadlessDriver::FocusPrevious() { framework::FocusPrevious(); }
void HeadlessDriver::Help() { RequestHelp(); }
void HeadlessDriver::CloseHelp() { framework::CloseHelp(); }
void HeadlessDriver::ReturnToModule() { framework::ReturnToModule(); }

EFI_STATUS HeadlessDriver::SwitchLanguage(const std::string &Code) {
  for (UINTN Index = 0; Index < kLanguageCount; Index++) {
    if (Code == LanguageCode(Index)) {
      return framework::SwitchLanguage(Index);
    }
  }
  return EFI_NOT_FOUND;
}

std::string HeadlessDriver::Dump(UINTN Columns, UINTN Rows) const {
  ScreenBuffer Screen = {};
  if (!AllocateScreen(Screen, Columns, Rows)) {
    return {};
  }
  ComposeScreen(Screen, nullptr);
  UINTN Needed = ScreenText(Screen, nullptr, 0);
  std::u16string Text(Needed + 1, u'\0');
  ScreenText(Screen, Text.data(), Text.size());
  Text.resize(Needed);
  FreeScreen(Screen);
  return ToUtf8(Text);
}

}  // namespace framework
