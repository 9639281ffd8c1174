// The script runner: words of a line to the headless driver's actions.
#include "framework/Script.h"

#include <fstream>
#include <map>
#include <sstream>

#include "framework/Operator.h"

namespace framework {
namespace {

[[nodiscard]] std::string StatusWords(EFI_STATUS Status) {
  switch (Status) {
    case EFI_SUCCESS:
      return "";
    case EFI_ACCESS_DENIED:
      return "the control is hidden, grayed or not on the page shown";
    case EFI_INVALID_PARAMETER:
      return "the control does not take this action or value";
    case EFI_NOT_FOUND:
      return "no such option, row or language";
    default: {
      std::ostringstream Text;
      Text << "the action failed (status 0x" << std::hex << Status << ")";
      return Text.str();
    }
  }
}

[[nodiscard]] bool ParseNumber(const std::string &Word, UINT64 *Value) {
  if (Word.empty() || Word.size() > 18 ||
      Word.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  *Value = std::stoull(Word);
  return true;
}

[[nodiscard]] std::string StateName(UINT8 State) {
  switch (State) {
    case HOST_DISPLAY_SHOWN:
      return "shown";
    case HOST_DISPLAY_HIDDEN:
      return "hidden";
    case HOST_DISPLAY_GRAYED:
      return "grayed";
    default:
      return "state " + std::to_string(State);
  }
}

// How many words each action takes after its name.
[[nodiscard]] const std::map<std::string, size_t> &Arity() {
  static const std::map<std::string, size_t> kArity = {
      {"press", 1},        {"choose", 2},       {"tick", 1},
      {"untick", 1},       {"type", 2},         {"slide", 2},
      {"select", 2},       {"tick-cell", 3},    {"untick-cell", 3},
      {"choose-cell", 4},  {"answer", 1},       {"default-answer", 1},
      {"help", 0},         {"close-help", 0},   {"language", 1},
      {"return", 0},       {"dump", 0},         {"next", 0},
      {"previous", 0},     {"expect-text", 2},  {"expect-state", 2},
      {"expect-value", 2}, {"expect-title", 1}, {"expect-message", 1},
      {"expect-cell", 4},  {"expect-focus", 1}};
  return kArity;
}

}  // namespace

std::vector<std::string> ScriptRunner::Words(const std::string &Line,
                                             std::string *Problem) {
  std::vector<std::string> Words;
  size_t Index = 0;
  while (Index < Line.size()) {
    char Char = Line[Index];
    if (Char == ' ' || Char == '\t' || Char == '\r') {
      Index++;
      continue;
    }
    if (Char == '"') {
      std::string Word;
      Index++;
      bool Closed = false;
      while (Index < Line.size()) {
        char Next = Line[Index++];
        if (Next == '\\' && Index < Line.size()) {
          Word += Line[Index++];
        } else if (Next == '"') {
          Closed = true;
          break;
        } else {
          Word += Next;
        }
      }
      if (!Closed) {
        *Problem = "unterminated quoted text";
        return {};
      }
      Words.push_back(Word);
      continue;
    }
    size_t End = Line.find_first_of(" \t\r", Index);
    std::string Word = Line.substr(Index, End == std::string::npos
                                              ? std::string::npos
                                              : End - Index);
    bool NodeReference = Word.size() > 1 && Word[0] == '#' &&
                         Word.find_first_not_of("0123456789", 1) ==
                             std::string::npos;
    if (Word[0] == '#' && (Words.empty() || !NodeReference)) {
      break;  // a comment
    }
    Words.push_back(Word);
    Index = End == std::string::npos ? Line.size() : End;
  }
  return Words;
}

bool ScriptRunner::RunText(const std::string &Text, const std::string &Source) {
  std::istringstream Lines(Text);
  std::string Line;
  size_t Number = 0;
  while (std::getline(Lines, Line)) {
    Number++;
    std::string Problem;
    std::vector<std::string> LineWords = Words(Line, &Problem);
    if (Problem.empty() && !LineWords.empty()) {
      Problem = RunWords(LineWords);
    }
    if (!Problem.empty()) {
      Errors_.push_back({Source, Number, Problem});
      return false;
    }
  }
  return true;
}

bool ScriptRunner::RunFile(const std::string &Path) {
  std::ifstream File(Path, std::ios::binary);
  if (!File) {
    Errors_.push_back({Path, 0, "cannot read the script"});
    return false;
  }
  std::ostringstream Text;
  Text << File.rdbuf();
  return RunText(Text.str(), Path);
}

std::string ScriptRunner::RunWords(const std::vector<std::string> &Words) {
  const std::string &Action = Words[0];
  auto Known = Arity().find(Action);
  if (Known == Arity().end()) {
    return "unknown action \"" + Action + "\"";
  }
  if (Words.size() - 1 != Known->second) {
    return "\"" + Action + "\" takes " + std::to_string(Known->second) +
           " word(s)";
  }
  if (Action == "answer" || Action == "default-answer") {
    if (Words[1] != "yes" && Words[1] != "no") {
      return "answer yes or no";
    }
    BOOLEAN Yes = Words[1] == "yes";
    Action == "answer" ? Driver_.QueueAnswer(Yes) : Driver_.SetDefaultAnswer(Yes);
    return "";
  }
  if (Action == "help") {
    Driver_.Help();
  } else if (Action == "close-help") {
    Driver_.CloseHelp();
  } else if (Action == "return") {
    Driver_.ReturnToModule();
  } else if (Action == "next") {
    Driver_.FocusNext();
  } else if (Action == "previous") {
    Driver_.FocusPrevious();
  } else if (Action == "dump") {
    Out_ << Driver_.Dump();
  } else if (Action == "language") {
    std::string Code = Words[1];
    if (Code == "next") {
      Code = LanguageCode((LanguageIndex() + 1) % kLanguageCount);
    }
    return StatusWords(Driver_.SwitchLanguage(Code));
  } else if (Action.rfind("expect-", 0) == 0) {
    return RunExpectation(Words);
  } else if (Action.find("-cell") != std::string::npos || Action == "select") {
    return RunTableAction(Words);
  } else {
    return RunControlAction(Words);
  }
  return "";
}

std::string ScriptRunner::RunControlAction(
    const std::vector<std::string> &Words) {
  const std::string &Action = Words[0];
  HOST_PAGE_NODE *Node = Driver_.Resolve(Words[1]);
  if (Node == nullptr) {
    return "no control \"" + Words[1] + "\" on the page shown";
  }
  EFI_STATUS Status = EFI_SUCCESS;
  if (Action == "press") {
    Status = Driver_.Press(Node);
  } else if (Action == "tick" || Action == "untick") {
    Status = Driver_.Tick(Node, Action == "tick");
  } else if (Action == "type") {
    Status = Driver_.Type(Node, FromUtf8(Words[2]));
  } else if (Action == "slide") {
    UINT64 Value = 0;
    if (!ParseNumber(Words[2], &Value)) {
      return "slide takes a number";
    }
    Status = Driver_.Slide(Node, Value);
  } else if (Action == "choose") {
    UINT64 Index = 0;
    Status = Words[2].size() > 1 && Words[2][0] == '#' &&
                     ParseNumber(Words[2].substr(1), &Index)
                 ? Driver_.Choose(Node, static_cast<UINTN>(Index))
                 : Driver_.Choose(Node, FromUtf8(Words[2]));
  }
  return StatusWords(Status);
}

std::string ScriptRunner::RunTableAction(const std::vector<std::string> &Words) {
  const std::string &Action = Words[0];
  HOST_PAGE_NODE *Table = Driver_.Resolve(Words[1]);
  if (Table == nullptr) {
    return "no table \"" + Words[1] + "\" on the page shown";
  }
  UINT64 Row = 0;
  if (Action == "select") {
    return StatusWords(ParseNumber(Words[2], &Row)
                           ? Driver_.SelectRow(Table, static_cast<UINT32>(Row))
                           : Driver_.SelectRow(Table, FromUtf8(Words[2])));
  }
  UINT64 Column = 0;
  if (!ParseNumber(Words[2], &Row) || !ParseNumber(Words[3], &Column)) {
    return "a cell is given by row and column numbers";
  }
  UINT32 R = static_cast<UINT32>(Row);
  UINT32 C = static_cast<UINT32>(Column);
  if (Action == "choose-cell") {
    return StatusWords(Driver_.ChooseCell(Table, R, C, FromUtf8(Words[4])));
  }
  return StatusWords(Driver_.SetCell(Table, R, C, Action == "tick-cell" ? 1 : 0));
}

std::string ScriptRunner::RunExpectation(const std::vector<std::string> &Words) {
  const std::string &Action = Words[0];
  if (Action == "expect-title") {
    std::string Title = ToUtf8(Driver_.Title());
    return Title == Words[1] ? "" : "the title is \"" + Title + "\"";
  }
  if (Action == "expect-message") {
    if (Driver_.MessageBoxes().empty()) {
      return "no message box was shown";
    }
    std::string Text = ToUtf8(Driver_.MessageBoxes().back().Text);
    return Text.find(Words[1]) != std::string::npos
               ? ""
               : "the last message box said \"" + Text + "\"";
  }
  if (Action == "expect-focus") {
    HOST_PAGE_NODE *Node = Driver_.Resolve(Words[1]);
    return Node != nullptr && Node == FocusNode() ? ""
                                                  : "the focus is elsewhere";
  }
  HOST_PAGE_NODE *Node = Driver_.Resolve(Words[1]);
  if (Node == nullptr) {
    return "no control \"" + Words[1] + "\" on the page shown";
  }
  if (Action == "expect-state") {
    std::string State = StateName(Driver_.State(Node));
    return State == Words[2] ? "" : "the control is " + State;
  }
  if (Action == "expect-value") {
    std::string Value = std::to_string(Driver_.Value(Node));
    return Value == Words[2] ? "" : "the value is " + Value;
  }
  if (Action == "expect-cell") {
    UINT64 Row = 0;
    UINT64 Column = 0;
    if (!ParseNumber(Words[2], &Row) || !ParseNumber(Words[3], &Column)) {
      return "a cell is given by row and column numbers";
    }
    std::string Text = ToUtf8(Driver_.Cell(Node, static_cast<UINT32>(Row),
                                           static_cast<UINT32>(Column)));
    return Text == Words[4] ? "" : "the cell holds \"" + Text + "\"";
  }
  std::string Text = ToUtf8(Driver_.Text(Node));
  return Text == Words[2] ? "" : "the text is \"" + Text + "\"";
}

}  // namespace framework
