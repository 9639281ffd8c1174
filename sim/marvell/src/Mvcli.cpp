// The M.2 tools' command lines: the three reports, create and delete.
#include "sim/marvell/Mvcli.h"

#include <algorithm>

#include "sim/common/CommandWords.h"
#include "sim/marvell/MvcliReport.h"

namespace sim::marvell {
namespace {

using common::CommandWords;
using common::Decimal;

constexpr uint32_t kMaxNumber = 0xFFFFFFFF;

std::string Line(const std::string &Text) { return Text + "\r\n"; }

std::string InvalidCommand() { return Line("Error: Invalid command."); }

// "-o vd" and the like: the object the command acts on.
bool TakeObject(CommandWords &Words, std::string_view Object) {
  return Words.Take("-o") && Words.Take(Object);
}

// The words of "create -o vd -r1 -d 0,1 -n Name -b 64 --waiveconfirmation".
struct CreateRequest {
  std::optional<uint32_t> Level;
  std::vector<uint32_t> Drives;
  std::string Name;
  uint32_t StripeKb = 64;
};

std::optional<CreateRequest> ReadCreate(CommandWords &Words) {
  CreateRequest Request;
  if (!TakeObject(Words, "vd")) {
    return std::nullopt;
  }
  while (!Words.Done()) {
    std::string Word = Words.CurrentLower();
    Words.Skip();
    if (Word.rfind("-r", 0) == 0 && Word.size() > 2) {
      Request.Level = Decimal(Word.substr(2), kMaxNumber);
    } else if (Word == "-d" && !Words.Done()) {
      for (const std::string &Id : common::Split(Words.Current(), ',')) {
        std::optional<uint32_t> Number = Decimal(Id, kMaxNumber);
        if (!Number) {
          return std::nullopt;
        }
        Request.Drives.push_back(*Number);
      }
      Words.Skip();
    } else if (Word == "-n") {
      // An empty name leaves the next option in its place.
      if (!Words.Done() && Words.Current().rfind("-", 0) != 0) {
        Request.Name = Words.Current();
        Words.Skip();
      }
    } else if (Word == "-b" && !Words.Done()) {
      std::optional<uint32_t> Stripe = Decimal(Words.Current(), kMaxNumber);
      if (!Stripe) {
        return std::nullopt;
      }
      Request.StripeKb = *Stripe;
      Words.Skip();
    } else if (Word != "--waiveconfirmation") {
      return std::nullopt;
    }
  }
  if (!Request.Level || Request.Drives.empty()) {
    return std::nullopt;
  }
  return Request;
}

// "delete -o vd -i 0 -f --waiveconfirmation": the volume's id.
std::optional<uint32_t> ReadDelete(CommandWords &Words) {
  if (!TakeObject(Words, "vd") || !Words.Take("-i") || Words.Done()) {
    return std::nullopt;
  }
  std::optional<uint32_t> Id = Decimal(Words.Current(), kMaxNumber);
  Words.Skip();
  while (!Words.Done()) {
    if (!Words.Take("-f") && !Words.Take("--waiveconfirmation")) {
      return std::nullopt;
    }
  }
  return Id;
}

std::string Verdict(const Change &Result, const std::string &Done) {
  return Line(Result.Error ? *Result.Error : Done);
}

std::string RunOnAdapter(Adapter &Target, size_t Number, CommandWords &Words) {
  if (Words.Take("info")) {
    if (!Words.Take("-o")) {
      return InvalidCommand();
    }
    if (Words.Take("vd") && Words.Done()) {
      return VolumeReport(Target);
    }
    if (Words.Take("pd") && Words.Done()) {
      return DriveReport(Target, Number);
    }
    return InvalidCommand();
  }
  if (Words.Take("create")) {
    std::optional<CreateRequest> Request = ReadCreate(Words);
    if (!Request) {
      return InvalidCommand();
    }
    return Verdict(Target.Create(*Request->Level, Request->Drives,
                                 Request->Name, Request->StripeKb),
                   "Create virtual disk successfully.");
  }
  if (Words.Take("delete")) {
    std::optional<uint32_t> Id = ReadDelete(Words);
    if (!Id) {
      return InvalidCommand();
    }
    return Verdict(Target.Delete(*Id), "Delete virtual disk successfully.");
  }
  return InvalidCommand();
}

}  // namespace

void Mvcli::AddAdapter(Adapter State) {
  auto After = std::upper_bound(
      Adapters_.begin(), Adapters_.end(), State,
      [](const Adapter &A, const Adapter &B) {
        return A.Pci.Location() < B.Pci.Location();
      });
  Adapters_.insert(After, std::move(State));
}

std::string Mvcli::Run(const std::string &CommandLine) {
  CommandWords Words(CommandLine);
  if (Words.Take("info")) {
    if (TakeObject(Words, "hba") && Words.Done()) {
      return HbaReport(Adapters_);
    }
    return InvalidCommand();
  }
  std::optional<uint32_t> Number = Decimal(Words.Current(), kMaxNumber);
  if (!Number) {
    return InvalidCommand();
  }
  if (*Number >= Adapters_.size()) {
    return Line("Error: Adapter " + std::to_string(*Number) +
                " does not exist.");
  }
  Words.Skip();
  return RunOnAdapter(Adapters_[*Number], *Number, Words);
}

}  // namespace sim::marvell
