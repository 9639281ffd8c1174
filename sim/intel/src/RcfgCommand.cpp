// The tool's command line: switches ("/V", "/C:Volume_1", "/DS:0 1 2"),
// the change each asks for, and what the tool prints about it.
#include <optional>

#include "sim/common/CommandWords.h"
#include "sim/common/Report.h"
#include "sim/intel/Rcfg.h"

namespace sim::intel {
namespace {

struct Switches {
  bool Version = false, Info = false, Status = false, Yes = false;
  bool NonRaid = false, Spare = false;
  std::optional<std::string> Create, Delete, Size;
  std::optional<std::string> Stripe, Level;
  std::vector<std::string> Disks;
  bool DisksGiven = false;
  std::string Unknown;
};

// Reads the switches; the words after "/DS:" up to the next switch are
// more disks.
Switches ReadSwitches(const std::string &CommandLine) {
  Switches Out;
  common::CommandWords Words(CommandLine);
  bool InDisks = false;
  for (; !Words.Done(); Words.Skip()) {
    std::optional<common::KeyedWord> Switch = common::SplitSwitch(Words.Current());
    if (!Switch) {
      if (InDisks) {
        Out.Disks.push_back(Words.Current());
      } else if (Out.Unknown.empty()) {
        Out.Unknown = Words.Current();
      }
      continue;
    }
    InDisks = false;
    const std::string &Key = Switch->Key;
    const std::optional<std::string> &Value = Switch->Value;
    if (Key == "v" && !Value) {
      Out.Version = true;
    } else if (Key == "i" && !Value) {
      Out.Info = true;
    } else if (Key == "st" && !Value) {
      Out.Status = true;
    } else if (Key == "y" && !Value) {
      Out.Yes = true;
    } else if (Key == "x" && !Value) {
      Out.NonRaid = true;
    } else if (Key == "sp" && !Value) {
      Out.Spare = true;
    } else if (Key == "c" && Value) {
      Out.Create = Value;
    } else if (Key == "d" && Value) {
      Out.Delete = Value;
    } else if (Key == "s" && Value) {
      Out.Size = Value;
    } else if (Key == "ss" && Value) {
      Out.Stripe = Value;
    } else if (Key == "l" && Value) {
      Out.Level = Value;
    } else if (Key == "ds" && Value) {
      Out.DisksGiven = true;
      InDisks = true;
      if (!Value->empty()) {
        Out.Disks.push_back(*Value);
      }
    } else if (Out.Unknown.empty()) {
      Out.Unknown = Words.Current();
    }
  }
  return Out;
}

// The reports' header, then the one line a change ends with.
std::string Printed(const Engines &Server, const std::string &Line) {
  common::Report Out;
  Out.Line(Line);
  return HeaderReport(Server) + Out.Text();
}

std::optional<std::vector<uint32_t>> DiskNumbers(const Switches &Given) {
  std::vector<uint32_t> Numbers;
  for (const std::string &Word : Given.Disks) {
    std::optional<uint32_t> Number = common::Decimal(Word, 0xFFFFFFFEu);
    if (!Number) {
      return std::nullopt;
    }
    Numbers.push_back(*Number);
  }
  return Numbers;
}

std::string CreateVolume(Engines &Server, const Switches &Given,
                         const std::vector<uint32_t> &Disks) {
  CreateRequest Request;
  Request.Name = *Given.Create;
  Request.Disks = Disks;
  std::optional<uint32_t> Level =
      Given.Level ? common::Decimal(*Given.Level, 10) : std::nullopt;
  if (!Level || (*Level != 0 && *Level != 1 && *Level != 5 && *Level != 10)) {
    return "ERROR: Invalid RAID level.";
  }
  Request.Level = *Level;
  if (Given.Stripe) {
    Request.StripeKb = common::Decimal(*Given.Stripe, 1024);
    if (!Request.StripeKb || Request.Level == 1) {
      return "ERROR: Invalid strip size.";
    }
  }
  if (Given.Size) {
    if (*Given.Size == "100%") {
      Request.WholeSpace = true;
    } else if (auto Gb = common::Decimal(*Given.Size, 0xFFFFFFF)) {
      Request.SizeGb = *Gb;
    } else {
      return "ERROR: Invalid volume size.";
    }
  }
  std::string Reason = Server.Create(Request);
  return Reason.empty() ? "Creating Volume....Successfully created volume"
                        : Reason;
}

std::string Change(Engines &Server, const Switches &Given) {
  std::optional<std::vector<uint32_t>> Disks = DiskNumbers(Given);
  if (!Disks) {
    return "ERROR: Invalid disk number.";
  }
  if (Given.Create) {
    return CreateVolume(Server, Given, *Disks);
  }
  if (Given.Delete) {
    std::string Reason = Server.Delete(*Given.Delete);
    return Reason.empty() ? "Deleting  Volume...Successfully deleted volume"
                          : Reason;
  }
  if (Disks->empty()) {
    return "ERROR: No disks selected.";
  }
  for (uint32_t Number : *Disks) {
    std::string Reason =
        Given.NonRaid ? Server.MakeNonRaid(Number) : Server.MakeSpare(Number);
    if (!Reason.empty()) {
      return Reason;
    }
  }
  return Given.NonRaid ? "Removing MetaData from selected disks...Completed"
                       : "Marking selected disks as spares...Completed";
}

}  // namespace

std::string RunRcfg(Engines &Server, const std::string &CommandLine) {
  Switches Given = ReadSwitches(CommandLine);
  if (!Given.Unknown.empty()) {
    return Printed(Server, "ERROR: Invalid command line option " + Given.Unknown + ".");
  }
  int Changes = (Given.Create ? 1 : 0) + (Given.Delete ? 1 : 0) +
                (Given.NonRaid ? 1 : 0) + (Given.Spare ? 1 : 0);
  if (Changes == 0) {
    if (Given.Version) {
      return VersionReport(Server);
    }
    if (Given.Info) {
      return InfoReport(Server);
    }
    if (Given.Status) {
      return StatusReport(Server);
    }
    return Printed(Server, "ERROR: Invalid command line.");
  }
  if (Changes > 1 || Given.Version || Given.Info || Given.Status) {
    return Printed(Server, "ERROR: Invalid command line.");
  }
  if (!Given.Yes) {
    return Printed(Server, "ERROR: This operation requires /Y.");
  }
  return Printed(Server, Change(Server, Given));
}

}  // namespace sim::intel
