// Console output through the system table's ConOut.
#include "HostConsole.h"

#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>

namespace {

// I/O port of QEMU's isa-debug-exit device (iobase=0xf4).
constexpr UINT16 kDebugExitPort = 0xF4;

constexpr UINTN kMaxHeldBytes = 256 * 1024;

// Console text kept while the console is held.
struct HeldText {
  BOOLEAN Holding;
  HostTextLog Log;
};

constinit HeldText gHeld = {};
constinit BOOLEAN gQuiet = FALSE;

VOID WritePort8(UINT16 Port, UINT8 Value) {
  __asm__ __volatile__("outb %0, %1" : : "a"(Value), "Nd"(Port));
}

}  // namespace

VOID HostPutAscii(const CHAR8 *Text, UINTN Length) {
  if (gQuiet) {
    return;
  }
  if (gHeld.Holding) {
    HostTextLogKeep(gHeld.Log, Text, Length);
    return;
  }
  if (gST == nullptr || gST->ConOut == nullptr) {
    return;
  }
  CHAR16 Piece[257];
  UINTN Used = 0;
  for (UINTN I = 0; I < Length; I++) {
    const UINT8 Byte = static_cast<UINT8>(Text[I]);
    Piece[Used++] = Byte < 0x80 ? Byte : u'?';
    if (Used == 256 || I + 1 == Length) {
      Piece[Used] = 0;
      gST->ConOut->OutputString(gST->ConOut, Piece);
      Used = 0;
    }
  }
}

VOID EFIAPI HostPrint(const CHAR8 *Format, ...) {
  CHAR8 Line[1024];
  VA_LIST Marker;
  VA_START(Marker, Format);
  const UINTN Length = AsciiVSPrint(Line, sizeof(Line), Format, Marker);
  VA_END(Marker);
  HostPutAscii(Line, Length);
}

VOID HostConsoleHold(VOID) {
  if (gHeld.Holding) {
    return;
  }
  gHeld = {};
  HostTextLogOpen(gHeld.Log, kMaxHeldBytes);
  gHeld.Holding = TRUE;
}

VOID HostConsoleRelease(VOID) {
  if (!gHeld.Holding) {
    return;
  }
  HeldText Held = gHeld;
  gHeld = {};
  HostPutAscii(Held.Log.Bytes, Held.Log.Used);
  const UINTN Dropped = Held.Log.Dropped;
  HostTextLogClose(Held.Log);
  if (Dropped != 0) {
    HostPrint("raidhost: %d bytes of console output left out while the wizard "
              "was on screen\n", Dropped);
  }
}

VOID HostConsoleQuiet(BOOLEAN Quiet) { gQuiet = Quiet; }

BOOLEAN HostConsoleIsQuiet(VOID) { return gQuiet; }

BOOLEAN HostTextLogOpen(HostTextLog &Log, UINTN Capacity) {
  Log = {};
  Log.Bytes = static_cast<CHAR8 *>(AllocatePool(Capacity));
  Log.Capacity = Log.Bytes != nullptr ? Capacity : 0;
  return Log.Bytes != nullptr;
}

VOID HostTextLogKeep(HostTextLog &Log, const CHAR8 *Text, UINTN Length) {
  const UINTN Room = Log.Capacity - Log.Used;
  const UINTN Kept = Length < Room ? Length : Room;
  CopyMem(Log.Bytes + Log.Used, Text, Kept);
  Log.Used += Kept;
  Log.Dropped += Length - Kept;
}

VOID HostTextLogClose(HostTextLog &Log) {
  if (Log.Bytes != nullptr) {
    FreePool(Log.Bytes);
  }
  Log = {};
}

VOID HostPowerOff(UINT8 Code) {
  WritePort8(kDebugExitPort, Code);
  if (gRT != nullptr) {
    gRT->ResetSystem(EfiResetShutdown, EFI_SUCCESS, 0, nullptr);
  }
  for (;;) {
    __asm__ __volatile__("hlt");
  }
}
