// The module's reading rules for storcli output, for the tests.
#include "ModuleReader.h"

#include <cstdlib>

namespace sim::megaraid::test {
namespace {

bool StartsWith(const std::string &Line, const char *Key) {
  return Line.rfind(Key, 0) == 0;
}

uint32_t Decimal(const std::string &Text) {
  size_t Pos = Text.find_first_not_of(" \t0");
  uint32_t Value = 0;
  for (; Pos < Text.size() && Text[Pos] >= '0' && Text[Pos] <= '9'; ++Pos) {
    Value = Value * 10 + static_cast<uint32_t>(Text[Pos] - '0');
  }
  return Value;
}

std::string Word(const std::vector<std::string> &Words, size_t Index) {
  return Index < Words.size() ? Words[Index] : std::string();
}

std::string RawValue(const std::string &Line) {
  const auto Equal = Line.find('=');
  return Equal == std::string::npos ? std::string() : Line.substr(Equal + 1);
}

}  // namespace

std::vector<std::string> ModuleLines(const std::string &Output) {
  std::vector<std::string> Lines;
  size_t Start = 0;
  while (Start <= Output.size()) {
    size_t End = Output.find('\n', Start);
    if (End == std::string::npos) End = Output.size();
    if (End > Start) Lines.push_back(Output.substr(Start, End - Start));
    Start = End + 1;
  }
  return Lines;
}

std::vector<std::string> Words(const std::string &Line) {
  std::vector<std::string> Result;
  size_t Pos = 0;
  while (Pos < Line.size()) {
    const size_t Start = Line.find_first_not_of(' ', Pos);
    if (Start == std::string::npos) break;
    size_t End = Line.find(' ', Start);
    if (End == std::string::npos) End = Line.size();
    Result.push_back(Line.substr(Start, End - Start));
    Pos = End;
  }
  return Result;
}

std::string StrippedValue(const std::string &Line) {
  const std::string Value = RawValue(Line);
  const auto First = Value.find_first_not_of(" \t\r\n\f\v");
  if (First == std::string::npos) return {};
  const auto Last = Value.find_last_not_of(" \t\r\n\f\v");
  return Value.substr(First, Last - First + 1);
}

ReadController ReadControllerShow(const std::string &Output) {
  const auto Lines = ModuleLines(Output);
  ReadController Result;
  bool StatusSeen = false;
  for (size_t Index = 0; Index < Lines.size(); ++Index) {
    const std::string &Line = Lines[Index];
    if (!StatusSeen && StartsWith(Line, "Status")) {
      Result.Status = StrippedValue(Line);
      StatusSeen = true;
    }
    if (StartsWith(Line, "Product Name")) Result.ProductName = StrippedValue(Line);
    if (StartsWith(Line, "Serial Number")) Result.SerialNumber = StrippedValue(Line);
    if (StartsWith(Line, "FW Package Build")) Result.FwPackageBuild = StrippedValue(Line);
    if (StartsWith(Line, "Drive Groups")) {
      for (size_t Row = Index + 8; Row < Lines.size() && !StartsWith(Lines[Row], "----"); ++Row) {
        const auto W = Words(Lines[Row]);
        if (Word(W, 1) == "-" && Word(W, 5) != "DRIVE") {
          Result.Arrays.push_back({Word(W, 0), Word(W, 5), Word(W, 8), Word(W, 9)});
        }
      }
    }
    if (StartsWith(Line, "Virtual Drives")) {
      const uint32_t Count = Decimal(RawValue(Line));
      for (size_t Row = Index + 8; Row < Index + 8 + Count && Row < Lines.size(); ++Row) {
        const auto W = Words(Lines[Row]);
        Result.Volumes.push_back({Word(W, 0), Word(W, 2), Word(W, 8), Word(W, 9), Word(W, 10)});
      }
    }
    if (StartsWith(Line, "Physical Drives")) {
      const uint32_t Count = Decimal(RawValue(Line));
      for (size_t Row = Index + 8; Row < Index + 8 + Count && Row < Lines.size(); ++Row) {
        const auto W = Words(Lines[Row]);
        Result.Drives.push_back({Word(W, 0), Word(W, 1), Word(W, 2), Word(W, 3), Word(W, 4),
                                 Word(W, 5), Word(W, 6), Word(W, 7), Word(W, 11)});
      }
    }
  }
  return Result;
}

std::vector<ReadSegment> ReadFreeSpace(const std::string &Output) {
  const auto Lines = ModuleLines(Output);
  std::vector<ReadSegment> Result;
  for (size_t Index = 0; Index < Lines.size(); ++Index) {
    if (!StartsWith(Lines[Index], "ID DG AftrVD")) continue;
    for (size_t Row = Index + 2; Row < Lines.size() && !StartsWith(Lines[Row], "----"); ++Row) {
      const auto W = Words(Lines[Row]);
      Result.push_back({Word(W, 0), Word(W, 1), Word(W, 2), Word(W, 3), Word(W, 4)});
    }
  }
  return Result;
}

uint32_t ReadControllerCount(const std::string &Output) {
  for (const auto &Line : ModuleLines(Output)) {
    if (StartsWith(Line, "Controller Count")) return Decimal(RawValue(Line));
  }
  return 0;
}

std::optional<std::array<uint32_t, 3>> ReadBusDeviceFunction(const std::string &Output) {
  const auto Lines = ModuleLines(Output);
  for (size_t Index = 0; Index + 2 < Lines.size(); ++Index) {
    if (StartsWith(Lines[Index], "Bus Number")) {
      return std::array<uint32_t, 3>{Decimal(RawValue(Lines[Index])),
                                     Decimal(RawValue(Lines[Index + 1])),
                                     Decimal(RawValue(Lines[Index + 2]))};
    }
  }
  return std::nullopt;
}

uint32_t ReadErrorCode(const std::string &Output) {
  const auto Lines = ModuleLines(Output);
  for (size_t Index = 0; Index < Lines.size(); ++Index) {
    if (!StartsWith(Lines[Index], "Status")) continue;
    const std::string Verdict = Word(Words(Lines[Index]), 2);
    if (Verdict == "Success\r") return 0;
    if (Verdict != "Failure\r") continue;
    uint32_t Code = 0;
    for (size_t Next = Index + 1; Next < Lines.size(); ++Next) {
      if (!StartsWith(Lines[Next], "ErrorCode")) return 0x20100e;
      if (Next + 2 < Lines.size()) {
        const auto W = Words(Lines[Next + 2]);
        const uint32_t Number = Decimal(Word(W, 0)) != 0 ? Decimal(Word(W, 2)) : Decimal(Word(W, 1));
        Code = 0x201000 | (Number & 0xFFF);
      }
    }
    return Code;
  }
  return 0;
}

uint32_t ReadActionStatus(const std::string &Output) {
  for (const auto &Line : ModuleLines(Output)) {
    if (StartsWith(Line, "Status =")) return StrippedValue(Line) == "Failure" ? 0 : 1;
  }
  return 1;
}

}  // namespace sim::megaraid::test
