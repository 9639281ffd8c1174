// Reading the boot volume's text files line by line.
#include "HostTextFile.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "HostVolume.h"

EFI_STATUS HostReadFileLines(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path,
                             UINTN MaxSize, HOST_LINE_HANDLER OnLine,
                             VOID *Context) {
  UINT8 *Contents = nullptr;
  UINTN Size = 0;
  EFI_STATUS Status = HostReadFile(Root, Path, MaxSize, &Contents, &Size);
  if (Status == EFI_NOT_FOUND) {
    return EFI_SUCCESS;
  }
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR8 *Text = reinterpret_cast<const CHAR8 *>(Contents);
  UINTN Start = 0;
  while (Start < Size && !EFI_ERROR(Status)) {
    UINTN End = Start;
    while (End < Size && Text[End] != '\n') {
      End++;
    }
    UINTN Length = End - Start;
    if (Length > 0 && Text[Start + Length - 1] == '\r') {
      Length--;
    }
    if (Length > 0) {
      Status = OnLine(Context, Text + Start, Length);
    }
    Start = End + 1;
  }
  FreePool(Contents);
  return Status;
}

CHAR16 *HostUtf8ToString(const CHAR8 *Text, UINTN Length) {
  const UINTN Chars = Utf8StrToUnicodeLength(Text, Length);
  CHAR16 *Wide = static_cast<CHAR16 *>(AllocatePool((Chars + 1) * sizeof(CHAR16)));
  if (Wide != nullptr && EFI_ERROR(Utf8StrToUnicodeStrS(Text, Length, Wide, Chars + 1))) {
    FreePool(Wide);
    return nullptr;
  }
  return Wide;
}
