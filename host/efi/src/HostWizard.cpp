// The page framework and the text UI for raidhost.efi.
#include "HostWizard.h"

#include <Library/UefiBootServicesTableLib.h>

#include "HostConsole.h"
#include "HostProtocols.h"
#include "HostStrings.h"
#include "framework/Framework.h"
#include "framework/TextUi.h"
#include "framework/UefiConsole.h"

namespace {

// The identity the framework hands the module (slot 1).
constexpr EFI_GUID kModuleIdentity = {
    0x5A1D0C0F, 0x7E11, 0x4B6A, {0x8B, 0x2E, 0x52, 0x41, 0x49, 0x44, 0x48, 0x54}};

// The progress a dump printed last; none while no progress box is open.
constexpr UINTN kNoProgress = ~static_cast<UINTN>(0);

struct Wizard {
  HostRunMode Mode;
  BOOLEAN FrameworkStarted;
  BOOLEAN ScreenOpen;
  UINTN PrintedProgress;
  framework::UefiConsole Console;
  framework::TextUi Ui;
};

constinit Wizard gWizard = {};

const CHAR16 *GetStringService(VOID *Context, EFI_HII_HANDLE HiiHandle,
                               EFI_STRING_ID Id) {
  return HostString(HiiHandle, Id);
}

EFI_STATUS SetLanguageService(VOID *Context, const CHAR8 *Language) {
  HostSetLanguage(Language);
  return EFI_SUCCESS;
}

// Dump mode: a box is a console line, answered Yes (OK).
BOOLEAN DumpAsk(VOID *Context) {
  const framework::MessageBoxState &Box = framework::MessageBox();
  HostPrint("raidhost: message box style %d: %s: %s\n", Box.Style,
            Box.Title != nullptr ? Box.Title : u"", Box.Text != nullptr ? Box.Text : u"");
  return TRUE;
}

// Dump mode: the progress box's moves as console lines.
VOID DumpRefresh(VOID *Context) {
  const framework::MessageBoxState &Box = framework::MessageBox();
  if (!Box.Open || Box.Style != HOST_MSGBOX_PROGRESS) {
    gWizard.PrintedProgress = kNoProgress;
    return;
  }
  if (gWizard.PrintedProgress != Box.Percent) {
    gWizard.PrintedProgress = Box.Percent;
    HostPrint("raidhost: progress %d%%\n", Box.Percent);
  }
}

// Screen mode: the box is drawn and answered Yes (OK) without a key.
BOOLEAN ScreenAsk(VOID *Context) {
  framework::TextUiRender(*static_cast<framework::TextUi *>(Context));
  return TRUE;
}

framework::HostServices ServicesFor(HostRunMode Mode) {
  framework::HostServices Services;
  if (Mode == HostModeDump) {
    Services.Ask = DumpAsk;
    Services.Refresh = DumpRefresh;
  } else {
    Services = framework::TextUiServices(gWizard.Ui);
    if (Mode == HostModeScreen) {
      Services.Ask = ScreenAsk;
    }
  }
  Services.GetString = GetStringService;
  Services.SetLanguage = SetLanguageService;
  return Services;
}

// Names the page the framework shows on the console.
VOID PrintCurrentPage() {
  HOST_PAGE_NODE *Page = framework::CurrentPage();
  if (Page == nullptr) {
    HostPrint("raidhost: wizard page shown: none\n");
    return;
  }
  HostPrint("raidhost: wizard page shown: node %d \"%s\"\n", Page->NodeId,
            framework::TextOf(Page));
}

}  // namespace

EFI_STATUS HostWizardStart(HostRunMode Mode) {
  gWizard = {};
  gWizard.Mode = Mode;
  gWizard.PrintedProgress = kNoProgress;
  EFI_STATUS Status = framework::Initialize(ServicesFor(Mode), kModuleIdentity, 0);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  gWizard.FrameworkStarted = TRUE;
  framework::FillSetupSlots(*HostSetupProtocol());
  return EFI_SUCCESS;
}

VOID HostWizardOpenScreen(VOID) {
  if (gWizard.Mode == HostModeDump || !gWizard.FrameworkStarted) {
    return;
  }
  // The marker lines frame the UI's output for whoever reads the log.
  HostPrint("RAIDHOST-SCREEN-BEGIN\n");
  framework::UefiConsoleOpen(gWizard.Console, gST);
  UINTN Columns = 0;
  UINTN Rows = 0;
  framework::UefiConsoleSize(gWizard.Console, &Columns, &Rows);
  if (EFI_ERROR(framework::TextUiStart(gWizard.Ui, Columns, Rows,
                                       framework::UefiConsoleSink(gWizard.Console),
                                       framework::UefiConsoleKeys(gWizard.Console)))) {
    framework::UefiConsoleClose(gWizard.Console);
    HostPrint("raidhost: no memory for the screen; the wizard runs unseen\n");
    return;
  }
  gWizard.ScreenOpen = TRUE;
  HostConsoleHold();
}

VOID HostWizardFinish(BOOLEAN ModuleStarted) {
  if (gWizard.ScreenOpen) {
    if (ModuleStarted && gWizard.Mode == HostModeInteractive) {
      framework::TextUiRun(gWizard.Ui);
    } else if (ModuleStarted) {
      framework::TextUiInvalidate(gWizard.Ui);
      framework::TextUiRender(gWizard.Ui);
    }
    framework::UefiConsoleClose(gWizard.Console);
    gWizard.ScreenOpen = FALSE;
    HostConsoleRelease();
    HostPrint("RAIDHOST-SCREEN-END\n");
  }
  if (ModuleStarted) {
    PrintCurrentPage();
  }
}

UINTN HostWizardStop(VOID) {
  UINTN Left = 0;
  if (gWizard.FrameworkStarted) {
    // The module root is the framework's own, made before the module loaded
    // and freed with the framework: it is not one of the module's nodes.
    Left = framework::LiveModuleNodeCount();
    HostPrint("raidhost: page nodes left after unload: %ld (besides the "
              "framework's module root)\n", Left);
    framework::Shutdown();
  }
  framework::TextUiStop(gWizard.Ui);
  gWizard = {};
  return Left;
}
