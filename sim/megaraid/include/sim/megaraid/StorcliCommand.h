// storcli command lines as the RAID module writes them, read into a
// command: the object path (/cN, /cN/vN, /cN/eE/sS, /cN/eall/sall,
// /cN/fall), the action words and the "add vd" parameters.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/megaraid/MegaRaidAdapter.h"

namespace sim::megaraid {

enum class CommandKind {
  ControllerCount,  // show ctrlcount
  ShowController,   // /cN show
  ShowFreeSpace,    // /cN show freespace
  ShowVolume,       // /cN/vN show [all]
  AddVolume,        // /cN add vd ...
  DeleteVolume,     // /cN/vN del [force]
  DeleteForeign,    // /cN/fall delete
  AddHotSpare,      // /cN/eE/sS add hotsparedrive [dgs=N]
  DeleteHotSpare,   // /cN/eE/sS delete hotsparedrive
  SetJbod,          // /cN/eE/sS set jbod, /cN/eall/sall set jbod
  DeleteJbod,       // /cN/eE/sS del jbod [force], also eall/sall
  SetMissing,       // /cN/eE/sS set missing
  SetOnline,        // /cN/eE/sS set online
  SetOffline,       // /cN/eE/sS set offline
};

struct Command {
  CommandKind Kind = CommandKind::ControllerCount;
  uint32_t Controller = 0;
  uint32_t Volume = 0;
  bool AllDrives = false;             // /eall/sall
  std::vector<DriveAddress> Drives;   // /eE/sS with a slot list
  std::vector<uint32_t> SpareGroups;  // dgs= of add hotsparedrive
  CreateVolumeRequest Create;
};

// Reads a command line (tool path first; "mronly" and "nolog" anywhere are
// ignored). Keywords are case-insensitive. On a syntax error returns none
// and BadToken receives the word the tool would complain about.
std::optional<Command> ParseCommand(const std::string &CommandLine,
                                    std::string &BadToken);

// Reads a drive list such as "252:0,1,253:5", "252:0-3" or "252:1|252:2".
std::optional<std::vector<DriveAddress>> ParseDriveList(const std::string &Text);

}  // namespace sim::megaraid
