// Random operator actions: what an operator could do on the page shown,
// every control kind, answers to questions, languages, help, the focus and
// the return into the module.
#include "OperatorActions.h"

#include <Protocol/Host/PageFramework.h>

#include "framework/Framework.h"

namespace robustness {
namespace {

// What an operator types into an edit box: sizes and names, the limits
// around them and text no size or name should be.
const char *const kTypedTexts[] = {
    "",       "0",   "1",    "100",  "512",   "1000000", "99999999999999999999",
    "-1",     "1.5", "abc",  "VD 1", "logs",  "a\"b\\c", "\xc3\xbc\xc3\xa9",
    "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"};

const char *const kLanguages[] = {"en-US", "fr-FR", "de-DE", "ja-JP", "zh-Hans"};

void Collect(HOST_PAGE_NODE *Node, std::vector<HOST_PAGE_NODE *> &Controls,
             std::vector<HOST_PAGE_NODE *> &Buttons) {
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (framework::IsFocusable(Child)) {
      Controls.push_back(Child);
      const UINT32 Kind = framework::ControlOf(Child)->Kind;
      if (Kind == HOST_CONTROL_BUTTON || Kind == HOST_CONTROL_IMAGE_BUTTON) {
        Buttons.push_back(Child);
      }
    }
    Collect(Child, Controls, Buttons);
  }
}

std::string Ref(const HOST_PAGE_NODE *Node) {
  return "#" + std::to_string(Node->NodeId);
}

}  // namespace

std::string Quoted(const std::string &Text) {
  std::string Out = "\"";
  for (char Char : Text) {
    if (Char == '"' || Char == '\\') {
      Out += '\\';
    }
    Out += Char;
  }
  return Out + "\"";
}

std::vector<std::string> OperatorActions::Next(
    const framework::HeadlessDriver &Driver) {
  std::vector<HOST_PAGE_NODE *> Controls;
  std::vector<HOST_PAGE_NODE *> Buttons;
  if (Driver.Page() != nullptr) {
    Collect(Driver.Page(), Controls, Buttons);
  }
  const uint64_t Roll = Below(100);
  if (Roll < 12 && !Buttons.empty()) {
    // A question's answer queued for the press that asks it.
    return {Below(4) == 0 ? "answer no" : "answer yes",
            "press " + Ref(Buttons[Below(Buttons.size())])};
  }
  if (Roll < 15) {
    return {Below(2) == 0 ? "default-answer no" : "default-answer yes"};
  }
  if (Roll < 18) {
    return {Below(2) == 0 ? "language next"
                          : std::string("language ") +
                                kLanguages[Below(std::size(kLanguages))]};
  }
  if (Roll < 21) {
    return {"return"};
  }
  if (Roll < 23) {
    return {Below(2) == 0 ? "help" : "close-help"};
  }
  if (Roll < 26) {
    return {Below(2) == 0 ? "next" : "previous"};
  }
  if (Roll < 45 && !Buttons.empty()) {
    return {"press " + Ref(Buttons[Below(Buttons.size())])};
  }
  if (Controls.empty()) {
    return {"return"};
  }
  return {OnControl(Controls[Below(Controls.size())])};
}

std::string OperatorActions::OnControl(HOST_PAGE_NODE *Node) {
  const HOST_CONTROL *Control = framework::ControlOf(Node);
  switch (Control->Kind) {
    case HOST_CONTROL_RADIO_GROUP:
    case HOST_CONTROL_COMBO_BOX: {
      const UINTN Options = framework::OptionCount(Node);
      return "choose " + Ref(Node) + " #" +
             std::to_string(Options == 0 ? 0 : Below(Options));
    }
    case HOST_CONTROL_CHECK_BOX:
      return (Below(2) == 0 ? "tick " : "untick ") + Ref(Node);
    case HOST_CONTROL_EDIT_BOX:
      return "type " + Ref(Node) + " " +
             Quoted(kTypedTexts[Below(std::size(kTypedTexts))]);
    case HOST_CONTROL_SLIDER: {
      // A little beyond the range now and then: the driver clamps it.
      const uint64_t Span = Control->Maximum - Control->Minimum + 3;
      return "slide " + Ref(Node) + " " +
             std::to_string(Control->Minimum + Below(Span));
    }
    case HOST_CONTROL_TABLE:
      return OnTable(Node);
    default:
      return "press " + Ref(Node);
  }
}

std::string OperatorActions::OnTable(HOST_PAGE_NODE *Node) {
  const UINT32 Rows = framework::TableRows(Node);
  const UINT32 Columns = framework::TableColumns(Node);
  const UINT32 Flags = framework::TableFlags(Node);
  const UINT32 First = (Flags & HOST_TABLE_HEADING) != 0 ? 1 : 0;
  if (Rows <= First || Columns == 0) {
    return "next";
  }
  const UINT32 Row = First + static_cast<UINT32>(Below(Rows - First));
  const UINT32 Column = static_cast<UINT32>(Below(Columns));
  framework::CellView Cell = {};
  if (framework::CellAt(Node, Row, Column, &Cell)) {
    const std::string Where =
        Ref(Node) + " " + std::to_string(Row) + " " + std::to_string(Column);
    if (Cell.Kind == HOST_CELL_CHECK_BOX) {
      return (Below(2) == 0 ? "tick-cell " : "untick-cell ") + Where;
    }
    if (Cell.Kind == HOST_CELL_COMBO_BOX && Cell.OptionCount > 0) {
      // The script names a cell's option by its text.
      const CHAR16 *Option =
          framework::CellOptionText(Node, Row, Column, Below(Cell.OptionCount));
      return "choose-cell " + Where + " " +
             Quoted(framework::ToUtf8(Option == nullptr ? u"" : Option));
    }
  }
  return "select " + Ref(Node) + " " + std::to_string(Row);
}

}  // namespace robustness
