// Where raidhost.efi sends the module's trace lines (the setup protocol's
// DebugPrint): the console, the firmware's serial port, or a memory log
// printed on the console once the module's start-up or unload is over.
// Printing through the console costs the start-up 2 to 5 ms a line under
// OVMF (the text is drawn on the graphics console too); the serial port and
// the memory log keep that cost out of the module's time.
#pragma once

#include <Uefi.h>

enum HostTraceRoute : UINT8 {
  HostTraceConsole,
  HostTraceSerial,
  HostTraceMemory,
};

// "console", "serial" or "memory".
const CHAR8 *HostTraceRouteName(HostTraceRoute Route);
// The route named by Length characters of Name; FALSE for none.
BOOLEAN HostTraceRouteNamed(const CHAR8 *Name, UINTN Length, HostTraceRoute *Route);

// Opens Route. Without a serial port, or without memory for the log, the
// trace goes to the console and the status says why.
EFI_STATUS HostTraceOpen(HostTraceRoute Route);
// One formatted trace line (nothing while the console is quiet).
VOID HostTraceWrite(const CHAR8 *Text, UINTN Length);
// Memory log: prints the lines kept so far on the console and empties it.
VOID HostTraceFlush(VOID);
// Flushes and gives back the serial port or the memory log.
VOID HostTraceClose(VOID);
