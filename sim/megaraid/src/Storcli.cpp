// The storcli tool: dispatch of command lines to the adapters and the
// success and failure reports of the changing commands.
#include "sim/megaraid/Storcli.h"

#include <algorithm>

#include "sim/megaraid/StorcliShow.h"

namespace sim::megaraid {
namespace {

// The tool's name of a drive operation, as in "Set Drive JBOD Succeeded.".
const char *DriveOperationName(CommandKind Kind) {
  switch (Kind) {
    case CommandKind::AddHotSpare: return "Add Hot Spare";
    case CommandKind::DeleteHotSpare: return "Delete Hot Spare";
    case CommandKind::SetJbod: return "Set Drive JBOD";
    case CommandKind::DeleteJbod: return "Delete Drive JBOD";
    case CommandKind::SetMissing: return "Set Drive Missing";
    case CommandKind::SetOnline: return "Set Drive Online";
    case CommandKind::SetOffline: return "Set Drive Offline";
    default: return "Drive operation";
  }
}

Result ApplyToDrive(Adapter &Target, const Command &Command,
                    const DriveAddress &Address) {
  switch (Command.Kind) {
    case CommandKind::AddHotSpare:
      return Command.SpareGroups.empty()
                 ? Target.AddGlobalSpare(Address)
                 : Target.AddDedicatedSpare(Address, Command.SpareGroups);
    case CommandKind::DeleteHotSpare: return Target.DeleteSpare(Address);
    case CommandKind::SetJbod: return Target.SetJbod(Address);
    case CommandKind::DeleteJbod: return Target.DeleteJbod(Address);
    case CommandKind::SetMissing: return Target.SetMissing(Address);
    case CommandKind::SetOnline: return Target.SetOnline(Address);
    case CommandKind::SetOffline: return Target.SetOffline(Address);
    default: return Result::Refused("Unsupported operation");
  }
}

}  // namespace

Storcli::Storcli(std::vector<Adapter> Adapters, ToolInfo Tool)
    : Tool_(std::move(Tool)) {
  for (Adapter &State : Adapters) {
    AddAdapter(std::move(State));
  }
}

void Storcli::AddAdapter(Adapter State) {
  const auto Behind = std::upper_bound(
      Adapters_.begin(), Adapters_.end(), State,
      [](const Adapter &A, const Adapter &B) {
        return A.Identity().Location() < B.Identity().Location();
      });
  Adapters_.insert(Behind, std::move(State));
}

std::string Storcli::Run(const std::string &CommandLine) {
  std::string BadToken;
  const auto Parsed = ParseCommand(CommandLine, BadToken);
  if (!Parsed) {
    Report Out(Tool_);
    Out.Header(std::nullopt, false,
               "Invalid input at or near token " + BadToken);
    return Out.Text();
  }
  return Execute(*Parsed);
}

std::string Storcli::Execute(const Command &Command) {
  if (Command.Kind == CommandKind::ControllerCount) {
    return ShowControllerCount(Tool_, Adapters_.size());
  }
  if (Command.Controller >= Adapters_.size()) {
    Report Out(Tool_);
    Out.Header(Command.Controller, false,
               "Controller " + std::to_string(Command.Controller) + " not found");
    return Out.Text();
  }
  Adapter &Target = Adapters_[Command.Controller];
  switch (Command.Kind) {
    case CommandKind::ShowController:
      return ShowController(Tool_, Command.Controller, Target);
    case CommandKind::ShowFreeSpace:
      return ShowFreeSpace(Tool_, Command.Controller, Target);
    case CommandKind::ShowVolume:
      return ShowVolume(Tool_, Command.Controller, Target, Command.Volume);
    case CommandKind::AddVolume:
    case CommandKind::DeleteVolume:
    case CommandKind::DeleteForeign:
      return RunVolumeCommand(Command, Target);
    default:
      return RunDriveCommand(Command, Target);
  }
}

// Commands judged by their Status line and error code: add vd, VD delete,
// foreign configuration delete.
std::string Storcli::RunVolumeCommand(const Command &Command, Adapter &Target) {
  Result Outcome;
  std::string Succeeded;
  std::string Failed;
  switch (Command.Kind) {
    case CommandKind::AddVolume:
      Outcome = Target.CreateVolume(Command.Create);
      Succeeded = "Add VD Succeeded.";
      break;
    case CommandKind::DeleteVolume:
      Outcome = Target.DeleteVolume(Command.Volume);
      Succeeded = "Delete VD succeeded";
      break;
    default:
      Outcome = Target.DeleteForeignConfig();
      Succeeded = "Successfully deleted foreign configuration";
      break;
  }
  Report Out(Tool_);
  if (Outcome.Ok) {
    Out.Header(Command.Controller, true, Succeeded);
  } else {
    Out.Failure(Command.Controller, Outcome, Outcome.Message);
  }
  return Out.Text();
}

// Commands on drives: each named drive on its own; one drive answers with
// the header alone on success, with a detailed status on failure; several
// drives always list their own results.
std::string Storcli::RunDriveCommand(const Command &Command, Adapter &Target) {
  std::vector<DriveAddress> Drives = Command.Drives;
  if (Command.AllDrives) {
    for (const auto &Drive : Target.Drives()) {
      Drives.push_back(Drive.Address);
    }
  }
  std::vector<std::pair<std::string, Result>> Rows;
  bool AllOk = !Drives.empty();
  for (const auto &Address : Drives) {
    Result Outcome = ApplyToDrive(Target, Command, Address);
    AllOk &= Outcome.Ok;
    Rows.emplace_back("/c" + std::to_string(Command.Controller) + "/e" +
                          std::to_string(Address.Enclosure) + "/s" +
                          std::to_string(Address.Slot),
                      std::move(Outcome));
  }
  const std::string Name = DriveOperationName(Command.Kind);
  Report Out(Tool_);
  Out.Header(Command.Controller, AllOk,
             Name + (AllOk ? " Succeeded." : " Failed."));
  if (!AllOk || Rows.size() > 1) {
    Out.DetailedStatus(Rows);
  }
  return Out.Text();
}

}  // namespace sim::megaraid
