// What raidcfg-host does with its options.
#include "native/HostRun.h"

#include <fstream>

#include "native/ModuleSession.h"
#include "native/TerminalUi.h"
#include "native/WizardRun.h"

namespace host {
namespace {

Scenario ChosenScenario(const Options &Options) {
  return Options.Scenario ? LoadScenarioFile(*Options.Scenario)
                          : DemoScenario();
}

// Sends the module's trace lines to Path as they are printed. Without a
// setup protocol there are none, and the file stays empty.
bool StartTrace(Server &Server, const std::filesystem::path &Path) {
  if (Server.Setup() != nullptr) {
    return Server.Setup()->WriteTraceTo(Path.string());
  }
  return static_cast<bool>(std::ofstream(Path, std::ios::trunc));
}

}  // namespace

ModelJson RunModuleForModel(Server &Server) {
  ModuleSession Module(Server);
  EFI_STATUS Status = Module.Load();
  if (EFI_ERROR(Status)) {
    return nullptr;
  }
  DiscoveryResult Discovery = Module.LastDiscovery();
  ModelJson Model =
      DumpModel(Discovery.Status, Discovery.ErrorCode, gControllerList);
  Module.Unload();
  return Model;
}

int RunHost(const Options &Options, std::ostream &Out, std::ostream &Err) {
  if (Options.Script && !std::ifstream(*Options.Script)) {
    Err << "raidcfg-host: cannot read the --script file "
        << Options.Script->string() << "\n";
    return 1;
  }
  try {
    Scenario Chosen = ChosenScenario(Options);
    Server Machine(Chosen, {Options.Replay, Options.Record});
    if (Options.Trace && !StartTrace(Machine, *Options.Trace)) {
      Err << "raidcfg-host: cannot write " << Options.Trace->string() << "\n";
      return 1;
    }
    if (Options.Script) {
      return RunScriptedWizard(Machine, *Options.Script, Out, Err);
    }
    // At a terminal the wizard is interactive; otherwise (and with
    // --dump-model) the run prints the model.
    if (!Options.DumpModel && Terminal::Available()) {
      return RunInteractiveWizard(Machine, Out, Err);
    }
    ModelJson Model = RunModuleForModel(Machine);
    if (Model.is_null()) {
      Err << "raidcfg-host: the module's image entry failed\n";
      return 1;
    }
    Out << Model.dump(2, ' ', false, ModelJson::error_handler_t::replace)
        << "\n";
    ReportPoolLeftovers(Machine, Err);
    for (const std::string &Problem : Machine.Problems()) {
      Err << "raidcfg-host: " << Problem << "\n";
    }
    return Machine.Problems().empty() ? 0 : 1;
  } catch (const std::exception &Error) {
    Err << "raidcfg-host: " << Error.what() << "\n";
    return 1;
  }
}

}  // namespace host
