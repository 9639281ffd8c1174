// Parsing raidcfg-host's options.
#include "native/Options.h"

namespace host {
namespace {

// The option's value: the next argument, which must be there.
std::filesystem::path ValueOf(const std::vector<std::string> &Arguments,
                              std::size_t &Index) {
  const std::string &Name = Arguments[Index];
  if (Index + 1 >= Arguments.size() || Arguments[Index + 1].empty()) {
    throw UsageError(Name + " needs a value");
  }
  return Arguments[++Index];
}

void SetOnce(std::optional<std::filesystem::path> &Slot,
             const std::vector<std::string> &Arguments, std::size_t &Index) {
  const std::string &Name = Arguments[Index];
  if (Slot) {
    throw UsageError(Name + " given twice");
  }
  Slot = ValueOf(Arguments, Index);
}

}  // namespace

Options ParseOptions(const std::vector<std::string> &Arguments) {
  Options Result;
  for (std::size_t I = 0; I < Arguments.size(); I++) {
    const std::string &Argument = Arguments[I];
    if (Argument == "--scenario") {
      SetOnce(Result.Scenario, Arguments, I);
    } else if (Argument == "--dump-model") {
      Result.DumpModel = true;
    } else if (Argument == "--trace") {
      SetOnce(Result.Trace, Arguments, I);
    } else if (Argument == "--replay") {
      SetOnce(Result.Replay, Arguments, I);
    } else if (Argument == "--record") {
      SetOnce(Result.Record, Arguments, I);
    } else if (Argument == "--script") {
      SetOnce(Result.Script, Arguments, I);
    } else if (Argument == "--help" || Argument == "-h") {
      Result.Help = true;
    } else {
      throw UsageError("unknown argument \"" + Argument + "\"");
    }
  }
  if (Result.Script && Result.DumpModel) {
    throw UsageError("--script and --dump-model exclude each other");
  }
  return Result;
}

std::string UsageText() {
  return "Usage: raidcfg-host [options]\n"
         "Runs the RAID setup module on a simulated server.\n"
         "\n"
         "  --scenario FILE  the server to simulate (default: the embedded\n"
         "                   demo server; format in docs/scenario.md)\n"
         "  --dump-model     load the module, print its RAID model as JSON\n"
         "                   (docs/model-dump.md), unload it\n"
         "  --trace FILE     write every trace line the module printed\n"
         "  --replay DIR     answer tool runs from a recorded directory\n"
         "                   (docs/replay.md) instead of the virtual adapters\n"
         "  --record DIR     record every tool run into DIR for --replay\n"
         "  --script FILE    drive the wizard from a script of operator\n"
         "                   actions (docs/script.md), then print the\n"
         "                   virtual adapters' final state\n"
         "  --help           show this text\n"
         "\n"
         "Without --dump-model or --script the wizard runs in the terminal;\n"
         "without a terminal the model is printed as with --dump-model.\n"
         "Exit status: 0 when the host ran, 1 when the host failed (a bad\n"
         "scenario, replay or output file), 2 for a usage error.\n";
}

}  // namespace host
