// Text files of the boot volume (replay index, slot inventory, the host's
// configuration): UTF-8, one record a line, LF or CR LF line ends.
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

// Called for each non-empty line, without its line end; an error stops the
// reading and is returned.
typedef EFI_STATUS (*HOST_LINE_HANDLER)(VOID *Context, const CHAR8 *Line,
                                        UINTN Length);

// Reads the file Path (at most MaxSize bytes) and hands each non-empty line
// to OnLine in order. A file that does not exist has no lines.
EFI_STATUS HostReadFileLines(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path,
                             UINTN MaxSize, HOST_LINE_HANDLER OnLine,
                             VOID *Context);

// A pool CHAR16 copy of Length bytes of UTF-8; NULL when memory is short or
// the bytes are not UTF-8.
CHAR16 *HostUtf8ToString(const CHAR8 *Text, UINTN Length);
