// Output of raidhost.efi on the firmware console (OVMF sends it to the
// serial line), and the way it ends the machine.
#pragma once

#include <Uefi.h>

// Prints formatted ASCII text (PrintLib conversions; "\n" becomes "\r\n").
VOID EFIAPI HostPrint(const CHAR8 *Format, ...);

// Prints ASCII text as it is, line ends included, in pieces of any length.
VOID HostPutAscii(const CHAR8 *Text, UINTN Length);

// While the text UI owns the screen, console text is kept (up to 256 KiB)
// instead of printed; HostConsoleRelease prints what was kept, and how much
// did not fit.
VOID HostConsoleHold(VOID);
VOID HostConsoleRelease(VOID);

// While quiet, console text is dropped: the later rounds of a load cycle
// print one summary line each instead of a whole run's output.
VOID HostConsoleQuiet(BOOLEAN Quiet);
BOOLEAN HostConsoleIsQuiet(VOID);

// Text kept in a pool buffer of a fixed capacity; what does not fit is
// counted, not kept.
struct HostTextLog {
  CHAR8 *Bytes;
  UINTN Capacity;
  UINTN Used;
  UINTN Dropped;
};

// Allocates the buffer; FALSE when memory is short (the log then keeps
// nothing and counts everything as dropped).
BOOLEAN HostTextLogOpen(HostTextLog &Log, UINTN Capacity);
VOID HostTextLogKeep(HostTextLog &Log, const CHAR8 *Text, UINTN Length);
VOID HostTextLogClose(HostTextLog &Log);

// Ends QEMU through its isa-debug-exit port (status (Code << 1) | 1), then
// falls back to a firmware shutdown.
[[noreturn]] VOID HostPowerOff(UINT8 Code);
