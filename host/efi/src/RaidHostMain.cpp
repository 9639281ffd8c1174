// raidhost.efi: the reference host under real UEFI firmware. It installs
// the host protocols with the page framework in the setup protocol, loads
// raidcfg.efi from its own volume with LoadImage and StartImage (so the
// module's device is that volume), runs the wizard on the console in the
// mode chosen, prints the RAID model the module holds, fetches one of the
// module's strings back in two languages through the firmware's HII,
// unloads the module, prints a verdict and powers the machine off. Asked
// for several load cycles, it does all this as many times, the later
// cycles quietly, and prints the firmware's free memory after each.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/LoadedImage.h>

#include "HostConsole.h"
#include "HostMeasure.h"
#include "HostProtocols.h"
#include "HostRunMode.h"
#include "HostStrings.h"
#include "HostTrace.h"
#include "HostVolume.h"
#include "HostWizard.h"
#include "ModelJson.h"
#include "ModuleExports.h"
#include "ModuleStrings.h"
#include "xml/TarnXmlProtocol.h"

namespace {

constexpr const CHAR16 *kModulePath = u"\\raidcfg.efi";
constexpr const CHAR16 *kReplayDirectory = u"\\replay";
constexpr const CHAR16 *kSlotInventoryPath = u"\\slots.txt";
constexpr const CHAR16 *kConfigPath = u"\\raidhost.cfg";
// The string fetched back after start-up: the error box's title.
constexpr EFI_STRING_ID kProbeStringId = 818;
constexpr const CHAR8 *kProbeLanguages[] = {"en-US", "de-DE"};

constexpr UINT8 kExitPass = 0;
constexpr UINT8 kExitFail = 1;

// What the run found, for the verdict.
struct RunResult {
  BOOLEAN Loaded = FALSE;
  BOOLEAN Started = FALSE;
  BOOLEAN ModelRead = FALSE;
  UINTN StringsFetched = 0;
  BOOLEAN Unloaded = FALSE;
  BOOLEAN CleanAfterUnload = FALSE;
};

constinit EFI_HANDLE gHostProtocolHandle = nullptr;

EFI_STATUS InstallHostProtocols() {
  return gBS->InstallMultipleProtocolInterfaces(
      &gHostProtocolHandle, &gTarnSetupProtocolGuid, HostSetupProtocol(),
      &gEsaGuiDriverProtocolGuid, HostGuiDriver(), &gEfiTarnXmlProtocolGuid,
      TarnXmlProtocolInterface(), &gShellCommandProtocolGuid, HostShellCommand(),
      &gSlotInventoryProtocolGuid, HostSlotInventory(), &gQolCommandsProtocolGuid,
      HostQolCommands(), nullptr);
}

VOID UninstallHostProtocols() {
  gBS->UninstallMultipleProtocolInterfaces(
      gHostProtocolHandle, &gTarnSetupProtocolGuid, HostSetupProtocol(),
      &gEsaGuiDriverProtocolGuid, HostGuiDriver(), &gEfiTarnXmlProtocolGuid,
      TarnXmlProtocolInterface(), &gShellCommandProtocolGuid, HostShellCommand(),
      &gSlotInventoryProtocolGuid, HostSlotInventory(), &gQolCommandsProtocolGuid,
      HostQolCommands(), nullptr);
  // The handle went with its last protocol; the next cycle makes a new one.
  gHostProtocolHandle = nullptr;
}

// Prints the model the loaded module holds, between marker lines, from its
// exported globals.
BOOLEAN PrintModel(EFI_HANDLE Module) {
  EFI_LOADED_IMAGE_PROTOCOL *Image = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(Module, &gEfiLoadedImageProtocolGuid,
                                    reinterpret_cast<VOID **>(&Image)))) {
    return FALSE;
  }
  auto *Controllers = static_cast<LIST_ENTRY *>(
      FindImageExport(Image->ImageBase, Image->ImageSize, "gControllerList"));
  auto *Status = static_cast<EFI_STATUS *>(
      FindImageExport(Image->ImageBase, Image->ImageSize, "gRaidInitializeStatus"));
  auto *ErrorCode = static_cast<UINT32 *>(
      FindImageExport(Image->ImageBase, Image->ImageSize, "gRaidInitializeErrorCode"));
  if (Controllers == nullptr || Status == nullptr || ErrorCode == nullptr) {
    HostPrint("raidhost: the module exports no model (gControllerList %p, "
              "gRaidInitializeStatus %p, gRaidInitializeErrorCode %p)\n",
              Controllers, Status, ErrorCode);
    return FALSE;
  }
  CHAR8 *Json = BuildModelJson(*Status, *ErrorCode, Controllers);
  if (Json == nullptr) {
    HostPrint("raidhost: out of memory for the model\n");
    return FALSE;
  }
  HostPrint("RAIDHOST-MODEL-BEGIN\n");
  HostPutAscii(Json, AsciiStrLen(Json));
  HostPrint("\nRAIDHOST-MODEL-END\n");
  FreePool(Json);
  return TRUE;
}

// Fetches the probe string in each language through the firmware's HII.
UINTN PrintModuleStrings(EFI_HII_HANDLE Handle) {
  UINTN Fetched = 0;
  for (const CHAR8 *Language : kProbeLanguages) {
    CHAR16 Text[128];
    const EFI_STATUS Status =
        FetchHiiString(Handle, Language, kProbeStringId, Text, sizeof(Text));
    if (EFI_ERROR(Status)) {
      HostPrint("raidhost: string %d %a: %r\n", kProbeStringId, Language, Status);
      continue;
    }
    HostPrint("raidhost: string %d %a: %s\n", kProbeStringId, Language, Text);
    Fetched++;
  }
  return Fetched;
}

// Loads, starts, reads and unloads the module.
VOID RunModule(EFI_HANDLE ImageHandle, EFI_HANDLE Device, RunResult &Result) {
  EFI_DEVICE_PATH_PROTOCOL *Path = HostFileDevicePath(Device, kModulePath);
  if (Path == nullptr) {
    HostPrint("raidhost: no device path for %s\n", kModulePath);
    return;
  }
  EFI_HANDLE Module = nullptr;
  EFI_STATUS Status = gBS->LoadImage(FALSE, ImageHandle, Path, nullptr, 0, &Module);
  FreePool(Path);
  HostPrint("raidhost: LoadImage %s: %r\n", kModulePath, Status);
  if (EFI_ERROR(Status)) {
    return;
  }
  Result.Loaded = TRUE;

  HostWizardOpenScreen();
  const UINT64 StartedAt = HostTimeStamp();
  Status = gBS->StartImage(Module, nullptr, nullptr);
  // The module has built and shown page 1 when StartImage returns.
  const UINT64 PageShownAt = HostTimeStamp();
  HostTraceFlush();
  HostWizardFinish(!EFI_ERROR(Status));
  HostPrint("raidhost: StartImage: %r (%d trace lines)\n", Status,
            HostTraceLineCount());
  HostPrint("raidhost: time stamps: StartImage 0x%lx to 0x%lx (page 1 shown), "
            "%ld per ms\n", StartedAt, PageShownAt, HostTicksPerMillisecond());
  Result.Started = !EFI_ERROR(Status);
  if (Result.Started) {
    Result.ModelRead = PrintModel(Module);
  }

  const EFI_HII_HANDLE Hii = FindModuleHiiHandle(Module);
  HostPrint("raidhost: module package list in the HII database: %a\n",
            Hii != nullptr ? "found" : "missing");
  Result.StringsFetched = PrintModuleStrings(Hii);

  Status = gBS->UnloadImage(Module);
  HostTraceFlush();
  HostPrint("raidhost: UnloadImage: %r\n", Status);
  Result.Unloaded = !EFI_ERROR(Status);
  if (Result.Unloaded) {
    CHAR16 Text[16];
    const EFI_STATUS After =
        FetchHiiString(Hii, kProbeLanguages[0], kProbeStringId, Text, sizeof(Text));
    HostPrint("raidhost: after unload: string %r, GUI driver %a, XML parsers %d\n",
              After, HostGuiConnected() ? "connected" : "disconnected",
              TarnXmlLiveParsers());
    Result.CleanAfterUnload =
        EFI_ERROR(After) && !HostGuiConnected() && TarnXmlLiveParsers() == 0;
  }
}

// The first step of the run that failed, or NULL when every step passed.
const CHAR8 *FailedStep(const RunResult &R) {
  const struct {
    BOOLEAN Done;
    const CHAR8 *Step;
  } Steps[] = {
      {R.Loaded, "LoadImage"},
      {R.Started, "StartImage"},
      {R.ModelRead, "model"},
      {R.StringsFetched == ARRAY_SIZE(kProbeLanguages), "strings"},
      {R.Unloaded, "UnloadImage"},
      {R.CleanAfterUnload, "clean after unload"},
  };
  for (const auto &Each : Steps) {
    if (!Each.Done) {
      return Each.Step;
    }
  }
  return nullptr;
}

// One load cycle: the page framework and the host protocols around a load,
// start, read and unload of the module; afterwards nothing of the cycle is
// left but the replay's answers, rewound for the next.
const CHAR8 *RunCycle(EFI_HANDLE ImageHandle, EFI_HANDLE Device,
                      const HostSettings &Settings) {
  RunResult Result;
  EFI_STATUS Status = HostWizardStart(Settings.Mode);
  HostPrint("raidhost: mode %a (%a), page framework: %r\n", HostRunModeName(Settings.Mode),
            Settings.ModeSource, Status);
  if (!EFI_ERROR(Status)) {
    Status = InstallHostProtocols();
    HostPrint("raidhost: host protocols installed: %r\n", Status);
  }
  if (!EFI_ERROR(Status)) {
    RunModule(ImageHandle, Device, Result);
    UninstallHostProtocols();
  }
  const UINTN NodesLeft = HostWizardStop();
  HostFreeStrings();
  HostRewindReplay();
  if (EFI_ERROR(Status)) {
    return "host set-up";
  }
  const CHAR8 *Failed = FailedStep(Result);
  return Failed == nullptr && NodesLeft != 0 ? "page nodes left" : Failed;
}

// Every cycle the settings ask for; the second and later print only a line
// each, with the firmware's free memory after the cycle.
BOOLEAN RunCycles(EFI_HANDLE ImageHandle, EFI_HANDLE Device, const HostSettings &Settings) {
  BOOLEAN AllPassed = TRUE;
  for (UINTN Cycle = 1; Cycle <= Settings.Cycles; Cycle++) {
    HostConsoleQuiet(Cycle > 1);
    const CHAR8 *Failed = RunCycle(ImageHandle, Device, Settings);
    HostConsoleQuiet(FALSE);
    AllPassed = AllPassed && Failed == nullptr;
    if (Settings.Cycles > 1) {
      HostPrint("raidhost: cycle %d of %d: %a%a, free memory %ld pages\n", Cycle,
                Settings.Cycles, Failed == nullptr ? "passed" : "failed at ",
                Failed == nullptr ? "" : Failed, HostFreeMemoryPages());
    }
  }
  return AllPassed;
}

}  // namespace

extern "C" EFI_STATUS EFIAPI RaidHostEntryPoint(EFI_HANDLE ImageHandle,
                                                EFI_SYSTEM_TABLE *SystemTable) {
  gImageHandle = ImageHandle;
  gST = SystemTable;
  gBS = SystemTable->BootServices;
  gRT = SystemTable->RuntimeServices;
  gBS->SetWatchdogTimer(0, 0, 0, nullptr);
  HostPrint("\nraidhost: start\n");

  BOOLEAN Ran = FALSE;
  EFI_HANDLE Device = nullptr;
  EFI_FILE_PROTOCOL *Root = nullptr;
  EFI_STATUS Status = HostOpenOwnVolume(ImageHandle, &Device, &Root);
  if (!EFI_ERROR(Status)) {
    Status = HostLoadReplay(Root, kReplayDirectory);
    HostPrint("raidhost: replay %s: %r, %d recorded runs\n", kReplayDirectory, Status,
              HostReplayEntryCount());
  }
  if (!EFI_ERROR(Status)) {
    Status = HostLoadSlotInventory(Root, kSlotInventoryPath);
    HostPrint("raidhost: slot inventory %s: %r, %d slots\n", kSlotInventoryPath,
              Status, HostSlotCount());
  }
  if (!EFI_ERROR(Status)) {
    const HostSettings Settings = HostReadSettings(ImageHandle, Root, kConfigPath);
    const EFI_STATUS TraceStatus = HostTraceOpen(Settings.Trace);
    HostPrint("raidhost: trace %a: %r%a\n", HostTraceRouteName(Settings.Trace), TraceStatus,
              EFI_ERROR(TraceStatus) ? ", the trace goes to the console" : "");
    if (Settings.Cycles > 1) {
      HostPrint("raidhost: %d load cycles, free memory before the first %ld pages\n",
                Settings.Cycles, HostFreeMemoryPages());
    }
    Ran = RunCycles(ImageHandle, Device, Settings);
    HostTraceClose();
  }
  if (Root != nullptr) {
    Root->Close(Root);
  }
  HostPrint("raidhost: unanswered tool commands: %d\n", HostReplayUnansweredCount());
  TarnXmlFreeAllParsers();
  HostFreeReplay();
  HostFreeSlotInventory();

  const BOOLEAN Pass = !EFI_ERROR(Status) && Ran;
  HostPrint("RAIDHOST-VERDICT: %a\n", Pass ? "PASS" : "FAIL");
  HostPowerOff(Pass ? kExitPass : kExitFail);
}
