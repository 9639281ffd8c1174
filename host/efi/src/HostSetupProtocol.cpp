// The setup protocol under real firmware: trace lines where \raidhost.cfg
// sends them (HostTrace.h) and texts from the firmware's HII string
// protocol. The page-framework slots are the framework's (HostWizard.cpp
// fills them before the module loads).
#include <Library/PrintLib.h>

#include "HostConsole.h"
#include "HostProtocols.h"
#include "HostStrings.h"
#include "HostTrace.h"

namespace {

constinit UINTN gTraceLines = 0;
constinit ESA_GUI_CONTEXT gGuiContext = {};
constinit BOOLEAN gGuiConnected = FALSE;

// One trace line, formatted here and sent as it is where the trace goes.
VOID EFIAPI DebugPrint(UINT32 Level, const CHAR8 *Format, ...) {
  CHAR8 Line[4096];
  VA_LIST Marker;
  VA_START(Marker, Format);
  const UINTN Length = AsciiVSPrint(Line, sizeof(Line), Format, Marker);
  VA_END(Marker);
  HostTraceWrite(Line, Length);
  gTraceLines++;
}

// The text of Id in the host's language, from the firmware's HII database.
CHAR16 *EFIAPI GetString(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id) {
  return const_cast<CHAR16 *>(HostString(HiiHandle, Id));
}

EFI_STATUS EFIAPI GuiInitialize(const ESA_GUI_CONTEXT *Context) {
  gGuiContext = *Context;
  gGuiConnected = TRUE;
  HostPrint("raidhost: GUI driver connected, HII handle %p\n", Context->HiiHandle);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GuiUnInitialize(EFI_HANDLE Instance) {
  if (!gGuiConnected || Instance != gGuiContext.ImageHandle) {
    return EFI_NOT_FOUND;
  }
  gGuiConnected = FALSE;
  HostPrint("raidhost: GUI driver disconnected\n");
  return EFI_SUCCESS;
}

// Slots 0-12 and 15-18 stay empty until the framework fills them.
constinit TARN_SETUP_PROTOCOL gSetupProtocol = {
    .DebugPrint = DebugPrint,
    .GetString = GetString,
};

constinit ESA_GUI_DRIVER_PROTOCOL gGuiDriver = {GuiInitialize, GuiUnInitialize};

}  // namespace

TARN_SETUP_PROTOCOL *HostSetupProtocol(VOID) { return &gSetupProtocol; }

ESA_GUI_DRIVER_PROTOCOL *HostGuiDriver(VOID) { return &gGuiDriver; }

UINTN HostTraceLineCount(VOID) { return gTraceLines; }

BOOLEAN HostGuiConnected(VOID) { return gGuiConnected; }
