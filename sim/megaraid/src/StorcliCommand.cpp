// Reading storcli command lines.
#include "sim/megaraid/StorcliCommand.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include "sim/megaraid/Capacity.h"

namespace sim::megaraid {
namespace {

constexpr uint32_t kMaxNumber = 0xFFFF;  // no id or slot of the tool is larger

std::string Lower(std::string Text) {
  for (char &C : Text) {
    C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  }
  return Text;
}

// A whole word of decimal digits, at most kMaxNumber.
std::optional<uint32_t> Number(const std::string &Text) {
  if (Text.empty() || Text.size() > 5 ||
      !std::all_of(Text.begin(), Text.end(),
                   [](char C) { return std::isdigit(static_cast<unsigned char>(C)); })) {
    return std::nullopt;
  }
  const uint32_t Value = static_cast<uint32_t>(std::stoul(Text));
  return Value <= kMaxNumber ? std::optional<uint32_t>(Value) : std::nullopt;
}

std::vector<std::string> Split(const std::string &Text, char Separator) {
  std::vector<std::string> Parts;
  std::string Part;
  std::istringstream Stream(Text);
  while (std::getline(Stream, Part, Separator)) {
    Parts.push_back(Part);
  }
  if (!Text.empty() && Text.back() == Separator) {
    Parts.emplace_back();
  }
  return Parts;
}

// "4", "4-7": appends the slots of Enclosure to Drives.
bool AppendSlots(uint32_t Enclosure, const std::string &Text,
                 std::vector<DriveAddress> &Drives) {
  const auto Dash = Text.find('-');
  const auto First = Number(Text.substr(0, Dash));
  const auto Last =
      Dash == std::string::npos ? First : Number(Text.substr(Dash + 1));
  if (!First || !Last || *Last < *First) {
    return false;
  }
  for (uint32_t Slot = *First; Slot <= *Last; ++Slot) {
    Drives.push_back({Enclosure, Slot});
  }
  return true;
}

struct Words {
  std::vector<std::string> Items;  // lower case
  std::vector<std::string> Raw;    // as written
  size_t Next = 0;
  bool Done() const { return Next >= Items.size(); }
  bool Take(const char *Word) {
    if (!Done() && Items[Next] == Word) {
      ++Next;
      return true;
    }
    return false;
  }
  std::string Current() const { return Done() ? std::string() : Raw[Next]; }
};

// Path pieces of "/c0/e252/s4,5": kinds and their values.
struct ObjectPath {
  std::optional<uint32_t> Controller;
  std::optional<uint32_t> Volume;
  std::optional<uint32_t> Enclosure;
  std::string Slots;
  bool AllEnclosures = false;
  bool AllSlots = false;
  bool Foreign = false;
};

bool ParsePath(const std::string &Text, ObjectPath &Path) {
  const auto Pieces = Split(Lower(Text).substr(1), '/');
  if (Pieces.empty() || Pieces[0].size() < 2 || Pieces[0][0] != 'c') {
    return false;
  }
  Path.Controller = Number(Pieces[0].substr(1));
  if (!Path.Controller) {
    return false;
  }
  for (size_t Index = 1; Index < Pieces.size(); ++Index) {
    const std::string &Piece = Pieces[Index];
    if (Piece.empty()) {
      return false;
    }
    const std::string Value = Piece.substr(1);
    if (Piece == "fall" && Pieces.size() == 2) {
      Path.Foreign = true;
    } else if (Piece[0] == 'v' && Pieces.size() == 2) {
      Path.Volume = Number(Value);
      if (!Path.Volume) return false;
    } else if (Piece[0] == 'e' && Index == 1) {
      Path.AllEnclosures = Value == "all";
      Path.Enclosure = Number(Value);
      if (!Path.AllEnclosures && !Path.Enclosure) return false;
    } else if (Piece[0] == 's' && Index == 2 && Value.size() > 0) {
      Path.AllSlots = Value == "all";
      Path.Slots = Value;
    } else {
      return false;
    }
  }
  return true;
}

// Reads "add vd" words after "add vd" into the request.
bool ParseAddVolume(Words &In, CreateVolumeRequest &Request) {
  const std::string Level = In.Current();
  const std::string LevelWord = Lower(Level);
  if (LevelWord.rfind("raid", 0) != 0) {
    return false;
  }
  const auto Number = megaraid::Number(LevelWord.substr(4));
  if (!Number || (*Number != 0 && *Number != 1 && *Number != 5 &&
                  *Number != 6 && *Number != 10 && *Number != 50 &&
                  *Number != 60)) {
    return false;
  }
  Request.RaidLevel = *Number;
  ++In.Next;
  bool HaveDrives = false;
  for (; !In.Done(); ++In.Next) {
    const std::string &Word = In.Items[In.Next];
    const std::string &Raw = In.Raw[In.Next];
    const auto Equal = Word.find('=');
    const std::string Key = Word.substr(0, Equal);
    const std::string Value =
        Equal == std::string::npos ? std::string() : Raw.substr(Equal + 1);
    if (Equal != std::string::npos && Value.empty()) {
      return false;
    }
    if (Key == "size") {
      Request.SizeMb = ParseSize(Value);
      if (!Request.SizeMb) return false;
    } else if (Key == "name") {
      Request.Name = Value;
    } else if (Key == "drives") {
      auto Drives = ParseDriveList(Value);
      if (!Drives) return false;
      Request.Drives = *Drives;
      HaveDrives = true;
    } else if (Key == "pdperarray") {
      Request.DrivesPerSpan = megaraid::Number(Value);
      if (!Request.DrivesPerSpan) return false;
    } else if (Key == "pdcache") {
      const std::string Cache = Lower(Value);
      if (Cache == "on") Request.DiskCache = DiskCachePolicy::On;
      else if (Cache == "off") Request.DiskCache = DiskCachePolicy::Off;
      else if (Cache == "default") Request.DiskCache = DiskCachePolicy::Default;
      else return false;
    } else if (Key == "strip") {
      Request.StripKb = megaraid::Number(Value);
      if (!Request.StripKb) return false;
    } else if (Key == "aftervd") {
      Request.AfterVd = megaraid::Number(Value);
      if (!Request.AfterVd) return false;
    } else if (Word == "ra") {
      Request.Read = ReadPolicy::ReadAhead;
    } else if (Word == "nora") {
      Request.Read = ReadPolicy::NoReadAhead;
    } else if (Word == "wt") {
      Request.Write = WritePolicy::WriteThrough;
    } else if (Word == "wb") {
      Request.Write = WritePolicy::WriteBack;
    } else if (Word == "awb") {
      Request.Write = WritePolicy::AlwaysWriteBack;
    } else if (Word == "cached") {
      Request.Io = IoPolicy::Cached;
    } else if (Word == "direct") {
      Request.Io = IoPolicy::Direct;
    } else {
      return false;
    }
  }
  return HaveDrives;
}

// The action words after a drive path.
std::optional<CommandKind> DriveAction(Words &In, std::vector<uint32_t> &Groups,
                                       bool AllDrives) {
  if (In.Take("set")) {
    if (In.Take("jbod")) return CommandKind::SetJbod;
    if (AllDrives) return std::nullopt;
    if (In.Take("missing")) return CommandKind::SetMissing;
    if (In.Take("online")) return CommandKind::SetOnline;
    if (In.Take("offline")) return CommandKind::SetOffline;
    return std::nullopt;
  }
  if (In.Take("del") || In.Take("delete")) {
    if (In.Take("jbod")) {
      In.Take("force");
      return CommandKind::DeleteJbod;
    }
    if (!AllDrives && In.Take("hotsparedrive")) return CommandKind::DeleteHotSpare;
    return std::nullopt;
  }
  if (!AllDrives && In.Take("add") && In.Take("hotsparedrive")) {
    if (!In.Done() && In.Items[In.Next].rfind("dgs=", 0) == 0) {
      for (const auto &Piece : Split(In.Items[In.Next].substr(4), ',')) {
        const auto Group = Number(Piece);
        if (!Group) return std::nullopt;
        Groups.push_back(*Group);
      }
      ++In.Next;
    }
    return CommandKind::AddHotSpare;
  }
  return std::nullopt;
}

// The action words after a /cN, /cN/vN or /cN/fall path.
bool ControllerAction(Words &In, const ObjectPath &Path, Command &Result) {
  if (Path.Foreign) {
    Result.Kind = CommandKind::DeleteForeign;
    return In.Take("delete") || In.Take("del");
  }
  if (Path.Volume) {
    Result.Volume = *Path.Volume;
    if (In.Take("show")) {
      In.Take("all");
      Result.Kind = CommandKind::ShowVolume;
      return true;
    }
    if (In.Take("del") || In.Take("delete")) {
      In.Take("force");
      Result.Kind = CommandKind::DeleteVolume;
      return true;
    }
    return false;
  }
  if (In.Take("show")) {
    Result.Kind = In.Take("freespace") ? CommandKind::ShowFreeSpace
                                       : CommandKind::ShowController;
    return true;
  }
  if (In.Take("add") && In.Take("vd")) {
    Result.Kind = CommandKind::AddVolume;
    return ParseAddVolume(In, Result.Create);
  }
  return false;
}

}  // namespace

std::optional<std::vector<DriveAddress>> ParseDriveList(const std::string &Text) {
  std::vector<DriveAddress> Drives;
  std::optional<uint32_t> Enclosure;
  std::string Normalized = Text;
  std::replace(Normalized.begin(), Normalized.end(), '|', ',');
  for (const auto &Piece : Split(Normalized, ',')) {
    const auto Colon = Piece.find(':');
    std::string Slots = Piece;
    if (Colon != std::string::npos) {
      Enclosure = Number(Piece.substr(0, Colon));
      Slots = Piece.substr(Colon + 1);
    }
    if (!Enclosure || !AppendSlots(*Enclosure, Slots, Drives)) {
      return std::nullopt;
    }
  }
  if (Drives.empty()) {
    return std::nullopt;
  }
  return Drives;
}

std::optional<Command> ParseCommand(const std::string &CommandLine,
                                    std::string &BadToken) {
  Words In;
  std::istringstream Stream(CommandLine);
  std::string Word;
  bool Tool = true;
  while (Stream >> Word) {
    const std::string LowerWord = Lower(Word);
    if (Tool || LowerWord == "mronly" || LowerWord == "nolog") {
      Tool = false;
      continue;
    }
    In.Items.push_back(LowerWord);
    In.Raw.push_back(Word);
  }
  Command Result;
  auto Fail = [&]() -> std::optional<Command> {
    BadToken = In.Done() ? (In.Raw.empty() ? std::string() : In.Raw.back())
                         : In.Current();
    return std::nullopt;
  };
  if (In.Take("show")) {
    if (!In.Take("ctrlcount") || !In.Done()) return Fail();
    Result.Kind = CommandKind::ControllerCount;
    return Result;
  }
  ObjectPath Path;
  if (In.Done() || In.Items[0][0] != '/' || !ParsePath(In.Items[0], Path)) {
    return Fail();
  }
  ++In.Next;
  Result.Controller = *Path.Controller;
  bool Parsed = false;
  if (Path.Enclosure || Path.AllEnclosures) {
    if (Path.AllEnclosures != Path.AllSlots || Path.Slots.empty()) {
      --In.Next;
      return Fail();
    }
    Result.AllDrives = Path.AllEnclosures;
    if (!Result.AllDrives) {
      auto Drives = ParseDriveList(std::to_string(*Path.Enclosure) + ":" + Path.Slots);
      if (!Drives) {
        --In.Next;
        return Fail();
      }
      Result.Drives = *Drives;
    }
    const auto Kind = DriveAction(In, Result.SpareGroups, Result.AllDrives);
    Parsed = Kind.has_value();
    if (Parsed) Result.Kind = *Kind;
  } else {
    Parsed = ControllerAction(In, Path, Result);
  }
  if (!Parsed || !In.Done()) {
    return Fail();
  }
  return Result;
}

}  // namespace sim::megaraid
