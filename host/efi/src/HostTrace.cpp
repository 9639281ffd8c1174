// The module's trace lines on the route \raidhost.cfg chose.
#include "HostTrace.h"

#include <Library/BaseLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/SerialIo.h>

#include "HostConsole.h"

namespace {

// A start-up with two adapters writes about 4.4 KiB of trace, an unload
// less.
constexpr UINTN kMaxLogBytes = 256 * 1024;

constexpr const CHAR8 *kRouteNames[] = {"console", "serial", "memory"};

struct TraceSink {
  HostTraceRoute Route;
  EFI_SERIAL_IO_PROTOCOL *Serial;
  HostTextLog Log;
};

constinit TraceSink gTrace = {};

// The whole text through the serial port; a port that takes part of it is
// asked again for the rest, one that takes nothing ends the line early.
VOID WriteSerial(const CHAR8 *Text, UINTN Length) {
  while (Length > 0) {
    UINTN Size = Length;
    const EFI_STATUS Status =
        gTrace.Serial->Write(gTrace.Serial, &Size, const_cast<CHAR8 *>(Text));
    if (Size == 0 || Size > Length || (EFI_ERROR(Status) && Status != EFI_TIMEOUT)) {
      return;
    }
    Text += Size;
    Length -= Size;
  }
}

}  // namespace

const CHAR8 *HostTraceRouteName(HostTraceRoute Route) {
  return Route < ARRAY_SIZE(kRouteNames) ? kRouteNames[Route] : "unknown";
}

BOOLEAN HostTraceRouteNamed(const CHAR8 *Name, UINTN Length, HostTraceRoute *Route) {
  for (UINTN Index = 0; Index < ARRAY_SIZE(kRouteNames); Index++) {
    if (AsciiStrLen(kRouteNames[Index]) == Length &&
        AsciiStrnCmp(Name, kRouteNames[Index], Length) == 0) {
      *Route = static_cast<HostTraceRoute>(Index);
      return TRUE;
    }
  }
  return FALSE;
}

EFI_STATUS HostTraceOpen(HostTraceRoute Route) {
  gTrace = {};
  if (Route == HostTraceSerial) {
    EFI_STATUS Status = gBS->LocateProtocol(&gEfiSerialIoProtocolGuid, nullptr,
                                            reinterpret_cast<VOID **>(&gTrace.Serial));
    if (EFI_ERROR(Status)) {
      gTrace.Serial = nullptr;
      return Status;
    }
  } else if (Route == HostTraceMemory && !HostTextLogOpen(gTrace.Log, kMaxLogBytes)) {
    return EFI_OUT_OF_RESOURCES;
  }
  gTrace.Route = Route;
  return EFI_SUCCESS;
}

VOID HostTraceWrite(const CHAR8 *Text, UINTN Length) {
  if (HostConsoleIsQuiet()) {
    return;
  }
  switch (gTrace.Route) {
    case HostTraceSerial:
      WriteSerial(Text, Length);
      return;
    case HostTraceMemory:
      HostTextLogKeep(gTrace.Log, Text, Length);
      return;
    default:
      HostPutAscii(Text, Length);
      return;
  }
}

VOID HostTraceFlush(VOID) {
  if (gTrace.Route != HostTraceMemory) {
    return;
  }
  HostPutAscii(gTrace.Log.Bytes, gTrace.Log.Used);
  if (gTrace.Log.Dropped != 0) {
    HostPrint("raidhost: %d bytes of trace left out of the memory log\n",
              gTrace.Log.Dropped);
  }
  gTrace.Log.Used = 0;
  gTrace.Log.Dropped = 0;
}

VOID HostTraceClose(VOID) {
  HostTraceFlush();
  HostTextLogClose(gTrace.Log);
  gTrace = {};
}
