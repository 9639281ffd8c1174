// Reading storcli command lines.
#include "sim/megaraid/StorcliCommand.h"

#include <algorithm>

#include "sim/common/CommandWords.h"
#include "sim/common/WordTable.h"
#include "sim/megaraid/Capacity.h"

namespace sim::megaraid {
namespace {

using common::CommandWords;

constexpr uint32_t kMaxNumber = 0xFFFF;  // no id or slot of the tool is larger

std::optional<uint32_t> Number(std::string_view Text) {
  return common::Decimal(Text, kMaxNumber);
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

bool ParsePath(const std::string &Word, ObjectPath &Path) {
  const auto Pieces = common::SplitPath(Word);
  if (!Pieces || Pieces->empty() || (*Pieces)[0].size() < 2 ||
      (*Pieces)[0][0] != 'c') {
    return false;
  }
  Path.Controller = Number((*Pieces)[0].substr(1));
  if (!Path.Controller) {
    return false;
  }
  for (size_t Index = 1; Index < Pieces->size(); ++Index) {
    const std::string &Piece = (*Pieces)[Index];
    if (Piece.empty()) {
      return false;
    }
    const std::string Value = Piece.substr(1);
    if (Piece == "fall" && Pieces->size() == 2) {
      Path.Foreign = true;
    } else if (Piece[0] == 'v' && Pieces->size() == 2) {
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

// One "key=value" word of "add vd" into the request.
bool ReadVolumeParameter(const std::string &Key, const std::string &Value,
                         CreateVolumeRequest &Request, bool &HaveDrives) {
  if (Key == "size") {
    Request.SizeMb = ParseSize(Value);
    return Request.SizeMb.has_value();
  }
  if (Key == "name") {
    Request.Name = Value;
    return true;
  }
  if (Key == "drives") {
    auto Drives = ParseDriveList(Value);
    if (!Drives) return false;
    Request.Drives = *Drives;
    HaveDrives = true;
    return true;
  }
  if (Key == "pdperarray") {
    Request.DrivesPerSpan = Number(Value);
    return Request.DrivesPerSpan.has_value();
  }
  if (Key == "pdcache") {
    const auto Cache = common::CodeOfWord(kDiskCacheWords, common::Lower(Value));
    if (!Cache) return false;
    Request.DiskCache = *Cache;
    return true;
  }
  if (Key == "strip") {
    Request.StripKb = Number(Value);
    return Request.StripKb.has_value();
  }
  if (Key == "aftervd") {
    Request.AfterVd = Number(Value);
    return Request.AfterVd.has_value();
  }
  return false;
}

// One policy word of "add vd" ("ra", "wt", "cached"...) into the request.
bool ReadVolumePolicy(const std::string &Word, CreateVolumeRequest &Request) {
  if (const auto Read = common::CodeOfWord(kReadPolicyWords, Word)) {
    Request.Read = *Read;
  } else if (const auto Write = common::CodeOfWord(kWritePolicyWords, Word)) {
    Request.Write = *Write;
  } else if (const auto Io = common::CodeOfWord(kIoPolicyWords, Word)) {
    Request.Io = *Io;
  } else {
    return false;
  }
  return true;
}

bool IsRaidLevel(uint32_t Level) {
  return Level == 0 || Level == 1 || Level == 5 || Level == 6 ||
         Level == 10 || Level == 50 || Level == 60;
}

// Reads the words after "add vd" into the request.
bool ParseAddVolume(CommandWords &In, CreateVolumeRequest &Request) {
  const std::string &LevelWord = In.CurrentLower();
  if (LevelWord.rfind("raid", 0) != 0) {
    return false;
  }
  const auto Level = Number(std::string_view(LevelWord).substr(4));
  if (!Level || !IsRaidLevel(*Level)) {
    return false;
  }
  Request.RaidLevel = *Level;
  In.Skip();
  bool HaveDrives = false;
  for (; !In.Done(); In.Skip()) {
    const auto [Key, Value] = common::SplitKeyed(In.Current());
    bool Taken = false;
    if (Value.has_value()) {
      Taken = !Value->empty() && ReadVolumeParameter(Key, *Value, Request, HaveDrives);
    } else {
      // A policy, or a parameter written without "=" ("name" names nothing).
      Taken = ReadVolumePolicy(Key, Request) ||
              ReadVolumeParameter(Key, "", Request, HaveDrives);
    }
    if (!Taken) {
      return false;
    }
  }
  return HaveDrives;
}

// The action words after a drive path.
std::optional<CommandKind> DriveAction(CommandWords &In,
                                       std::vector<uint32_t> &Groups,
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
    const auto [Key, Value] = common::SplitKeyed(In.Current());
    if (!In.Done() && Key == "dgs" && Value) {
      for (const auto &Piece : common::Split(*Value, ',')) {
        const auto Group = Number(Piece);
        if (!Group) return std::nullopt;
        Groups.push_back(*Group);
      }
      In.Skip();
    }
    return CommandKind::AddHotSpare;
  }
  return std::nullopt;
}

// The action words after a /cN, /cN/vN or /cN/fall path.
bool ControllerAction(CommandWords &In, const ObjectPath &Path, Command &Result) {
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
  for (const auto &Piece : common::Split(Normalized, ',')) {
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
  CommandWords In(CommandLine, {"mronly", "nolog"});
  Command Result;
  auto Fail = [&]() -> std::optional<Command> {
    BadToken = In.Offending();
    return std::nullopt;
  };
  if (In.Take("show")) {
    if (!In.Take("ctrlcount") || !In.Done()) return Fail();
    Result.Kind = CommandKind::ControllerCount;
    return Result;
  }
  ObjectPath Path;
  if (In.Done() || !ParsePath(In.Current(), Path)) {
    return Fail();
  }
  In.Skip();
  Result.Controller = *Path.Controller;
  bool Parsed = false;
  if (Path.Enclosure || Path.AllEnclosures) {
    if (Path.AllEnclosures != Path.AllSlots || Path.Slots.empty()) {
      In.Back();
      return Fail();
    }
    Result.AllDrives = Path.AllEnclosures;
    if (!Result.AllDrives) {
      auto Drives = ParseDriveList(std::to_string(*Path.Enclosure) + ":" + Path.Slots);
      if (!Drives) {
        In.Back();
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
