// Console output through the system table's ConOut.
#include "HostConsole.h"

#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>

namespace {

// I/O port of QEMU's isa-debug-exit device (iobase=0xf4).
constexpr UINT16 kDebugExitPort = 0xF4;

VOID WritePort8(UINT16 Port, UINT8 Value) {
  __asm__ __volatile__("outb %0, %1" : : "a"(Value), "Nd"(Port));
}

}  // namespace

VOID HostPutAscii(const CHAR8 *Text, UINTN Length) {
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

VOID HostPowerOff(UINT8 Code) {
  WritePort8(kDebugExitPort, Code);
  if (gRT != nullptr) {
    gRT->ResetSystem(EfiResetShutdown, EFI_SUCCESS, 0, nullptr);
  }
  for (;;) {
    __asm__ __volatile__("hlt");
  }
}
