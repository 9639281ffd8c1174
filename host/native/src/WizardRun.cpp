// The wizard driven by a script or at the terminal.
#include "native/WizardRun.h"

#include <Library/UefiBootServicesTableLib.h>

#include "framework/EmuBinding.h"
#include "framework/HeadlessDriver.h"
#include "framework/Script.h"
#include "framework/TextUi.h"
#include "native/ModuleSession.h"
#include "native/TerminalUi.h"

namespace host {
namespace {

// Loads the module, runs Drive, unloads and prints the adapters' state. A
// page node the module left behind fails the run.
template <typename Drive>
int RunWizard(Server &Server, const framework::HostServices &Services,
              std::ostream &Out, std::ostream &Err, Drive &&Run) {
  if (Server.Setup() == nullptr) {
    Err << "raidcfg-host: the scenario leaves out the setup protocol; there "
           "is no wizard to drive\n";
    return 1;
  }
  int Status = 0;
  {
    framework::EmuBinding Binding(*Server.Setup(), Services);
    if (EFI_ERROR(Binding.StartStatus())) {
      Err << "raidcfg-host: the page framework could not start\n";
      return 1;
    }
    Binding.SetLanguageHandler([&Server](const std::string &Language) {
      return Server.SwitchLanguage(Language);
    });
    ModuleSession Module(Server);
    if (EFI_ERROR(Module.Load())) {
      Err << "raidcfg-host: the module's image entry failed\n";
      return 1;
    }
    Status = Run();
    Module.Unload();
    // The binding still holds the module root, its own; any other node is
    // a page the module did not free at unload.
    if (const UINTN Left = framework::LiveModuleNodeCount(); Left != 0) {
      Err << "raidcfg-host: page nodes left after unload: " << Left << "\n";
      Status = 1;
    }
  }
  Out << Server.Adapters().State().dump(2, ' ', false,
                                        nlohmann::json::error_handler_t::replace)
      << "\n";
  for (const std::string &Problem : Server.Problems()) {
    Err << "raidcfg-host: " << Problem << "\n";
    Status = 1;
  }
  return Status;
}

}  // namespace

int RunScriptedWizard(Server &Server, const std::filesystem::path &Script,
                      std::ostream &Out, std::ostream &Err) {
  framework::HeadlessDriver Driver;
  const int Status = RunWizard(Server, Driver.Services(), Out, Err, [&] {
    framework::ScriptRunner Runner(Driver, Out);
    if (Runner.RunFile(Script.string())) {
      return 0;
    }
    for (const framework::ScriptError &Error : Runner.Errors()) {
      Err << Error.Source << ":" << Error.Line << ": " << Error.Message << "\n";
    }
    return 1;
  });
  // As after a model dump: the status stays the script's.
  ReportPoolLeftovers(Server, Err);
  return Status;
}

int RunInteractiveWizard(Server &Server, std::ostream &Out, std::ostream &Err) {
  Terminal Console;
  UINTN Columns = 0;
  UINTN Rows = 0;
  Console.Size(&Columns, &Rows);
  framework::TextUi Ui;
  // The screen's buffers come from the pool before the module has saved
  // the boot services.
  gBS = Server.Firmware().BootServices();
  if (EFI_ERROR(framework::TextUiStart(Ui, Columns, Rows, Console.Sink(),
                                       Console.Keys()))) {
    Err << "raidcfg-host: no memory for the screen\n";
    return 1;
  }
  int Status = RunWizard(Server, framework::TextUiServices(Ui), Out, Err, [&] {
    framework::TextUiRun(Ui);
    return 0;
  });
  framework::TextUiStop(Ui);
  return Status;
}

}  // namespace host
