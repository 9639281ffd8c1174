// The arcconf tool: numbering of the adapters, the command lines it takes,
// and what each answers.
#include "sim/microchip/Arcconf.h"

#include <algorithm>

#include "sim/common/CommandWords.h"
#include "sim/microchip/ArcconfReport.h"

namespace sim::microchip {
namespace {

constexpr uint32_t kMaxNumber = 0xFFFFFFFF;

std::optional<uint32_t> Number(const common::CommandWords &Words) {
  return common::Decimal(Words.Current(), kMaxNumber);
}

// Takes a number word; none when the current word is not one.
std::optional<uint32_t> TakeNumber(common::CommandWords &Words) {
  auto Value = Number(Words);
  if (Value) {
    Words.Skip();
  }
  return Value;
}

// "create N logicaldrive [stripesize S] [NAME name] size level drives|ARRAY n"
// after "logicaldrive"; none for a line the tool does not take.
std::optional<CreateRequest> ParseCreate(common::CommandWords &Words) {
  CreateRequest Request;
  if (Words.Take("stripesize") && !TakeNumber(Words)) {
    return std::nullopt;
  }
  if (Words.Take("name")) {
    if (Words.Done()) {
      return std::nullopt;
    }
    Request.Name = Words.Current();
    Words.Skip();
  }
  if (!Words.Take("max")) {
    auto Size = TakeNumber(Words);
    if (!Size) {
      return std::nullopt;
    }
    Request.SizeMb = *Size;
  }
  std::string Level = Words.CurrentLower();
  Words.Skip();
  if (Level.size() > 6 && Level.ends_with("triple")) {
    Request.Triple = true;
    Level.resize(Level.size() - 6);
  }
  const auto LevelNumber = common::Decimal(Level, 60);
  if (!LevelNumber) {
    return std::nullopt;
  }
  Request.RaidLevel = *LevelNumber;
  if (Words.Take("array")) {
    Request.ArrayNumber = TakeNumber(Words);
    return Request.ArrayNumber ? std::optional(Request) : std::nullopt;
  }
  while (!Words.Done() && !Words.Take("noprompt")) {
    const auto Channel = TakeNumber(Words);
    const auto Device = TakeNumber(Words);
    if (!Channel || !Device) {
      return std::nullopt;
    }
    Request.Drives.push_back({*Channel, *Device});
  }
  return Request;
}

}  // namespace

void Arcconf::AddAdapter(Adapter State) {
  const auto Behind = std::upper_bound(
      Adapters_.begin(), Adapters_.end(), State,
      [](const Adapter &A, const Adapter &B) {
        return A.Pci.Location() < B.Pci.Location();
      });
  Adapters_.insert(Behind, std::move(State));
}

uint32_t Arcconf::NumberOf(size_t Index) const {
  return Adapters_[Index].Number.value_or(static_cast<uint32_t>(Index + 1));
}

Adapter *Arcconf::Numbered(uint32_t Number) {
  for (size_t Index = 0; Index < Adapters_.size(); Index++) {
    if (NumberOf(Index) == Number) {
      return &Adapters_[Index];
    }
  }
  return nullptr;
}

void Arcconf::Reconnect() {
  for (size_t Index = 0; Index < Adapters_.size(); Index++) {
    Adapter &State = Adapters_[Index];
    if (State.NumberAfterReconnect) {
      State.Number = State.NumberAfterReconnect;
      State.NumberAfterReconnect.reset();
    }
  }
}

std::string Arcconf::Run(const std::string &CommandLine) {
  common::CommandWords Words(CommandLine);
  const size_t Count = Adapters_.size();
  if (Words.Take("list")) {
    NumberedAdapters Numbered;
    for (size_t Index = 0; Index < Count; Index++) {
      Numbered.emplace_back(NumberOf(Index), &Adapters_[Index]);
    }
    std::sort(Numbered.begin(), Numbered.end());
    return ListReport(Numbered);
  }
  return Change(Words);
}

std::string Arcconf::Change(common::CommandWords &Words) {
  const size_t Count = Adapters_.size();
  const std::string Verb = Words.CurrentLower();
  Words.Skip();
  const auto Card = TakeNumber(Words);
  if (Verb != "getconfig" && Verb != "create" && Verb != "delete" &&
      Verb != "setstate") {
    return Failed(Count, "Invalid command: " + Verb + ".");
  }
  Adapter *Target = Card ? Numbered(*Card) : nullptr;
  if (Target == nullptr) {
    return Failed(Count, "Invalid controller number.");
  }
  if (Verb == "getconfig") {
    return GetconfigReport(Count, *Target);
  }
  Outcome Result = Outcome::Refused("Invalid command syntax.");
  std::string Done;
  if (Verb == "create" && Words.Take("logicaldrive")) {
    if (auto Request = ParseCreate(Words)) {
      Result = Target->Create(*Request);
      Done = "Creating logical device: " +
             Request->Name.value_or("LogicalDrv");
    }
  } else if (Verb == "delete") {
    const bool Whole = Words.Take("array");
    if (Whole || Words.Take("logicaldrive")) {
      if (const auto Object = TakeNumber(Words)) {
        Result = Whole ? Target->DeleteArray(*Object)
                       : Target->DeleteLogicalDrive(*Object);
        Done = Whole ? "Deleting array: " + std::to_string(*Object)
                     : "Deleting: logical device " + std::to_string(*Object);
      }
    }
  } else if (Verb == "setstate" && Words.Take("device")) {
    const auto Channel = TakeNumber(Words);
    const auto Device = TakeNumber(Words);
    if (Channel && Device) {
      const DeviceAddress Address{*Channel, *Device};
      if (Words.Take("rdy")) {
        Result = Target->SetReady(Address);
      } else if (Words.Take("hsp") && Words.Take("array")) {
        if (const auto ArrayNumber = TakeNumber(Words)) {
          Result = Target->SetDedicatedSpare(Address, *ArrayNumber);
        }
      }
    }
  }
  if (!Result.Ok) {
    return Failed(Count, Result.Message);
  }
  if (Verb != "setstate") {
    Reconnect();
  }
  return Completed(Count, Done);
}

}  // namespace sim::microchip
