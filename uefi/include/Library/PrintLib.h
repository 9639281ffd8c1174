// EDK2-compatible formatted print into bounded buffers. Sizes are in bytes;
// the output is always NUL-terminated when the size allows one character,
// and nothing is written past BufferSize. Results count the characters
// written, without the terminator.
//
// Conversions: %a (CHAR8 string) %s %S (CHAR16 string) %c %d %i %u %x %X
// %p %r (EFI_STATUS text) %g (EFI_GUID *) %%; flags '-' (left), '0' (zero
// pad), width, '*' width; 'l'/'ll' for 64-bit arguments (%ld %lx %lu %lld
// %016lx ...). Without 'l', %d %u %x take 32-bit arguments.
//
// As in EDK2: %x and %X print upper-case digits (%X also zero-pads to the
// width), %g prints an upper-case GUID, "\n" in the format is written as
// "\r\n", a NULL string prints "<null string>", and %r of a status without
// a name prints its low 32 bits as %08X.
//
// The variadic functions use the Microsoft convention (EFIAPI) in both
// builds, so a VA_LIST from an EFIAPI protocol function can be passed on.
#pragma once

#include <Uefi.h>

UINTN EFIAPI UnicodeSPrint(CHAR16 *Buffer, UINTN BufferSize, const CHAR16 *Format,
                    ...);
UINTN EFIAPI UnicodeVSPrint(CHAR16 *Buffer, UINTN BufferSize, const CHAR16 *Format,
                     VA_LIST Marker);
// CHAR16 output from an ASCII format.
UINTN EFIAPI UnicodeSPrintAsciiFormat(CHAR16 *Buffer, UINTN BufferSize,
                               const CHAR8 *Format, ...);
UINTN EFIAPI UnicodeVSPrintAsciiFormat(CHAR16 *Buffer, UINTN BufferSize,
                                const CHAR8 *Format, VA_LIST Marker);
UINTN EFIAPI AsciiSPrint(CHAR8 *Buffer, UINTN BufferSize, const CHAR8 *Format, ...);
UINTN EFIAPI AsciiVSPrint(CHAR8 *Buffer, UINTN BufferSize, const CHAR8 *Format,
                   VA_LIST Marker);

// The characters Format with the arguments of Marker formats to, without
// the terminator, whatever buffer would receive them: a formatted text was
// cut when this is not below the receiving buffer's characters.
[[nodiscard]] UINTN EFIAPI SPrintLength(const CHAR16 *Format, VA_LIST Marker);

// The text firmware prints for a status ("Success", "Not Found", ...), or
// NULL for a status without a name.
[[nodiscard]] const CHAR8 *StatusText(EFI_STATUS Status);
