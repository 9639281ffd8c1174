// CHAR16 text helpers: pool copies, display widths, word wrapping.
#include "framework/Text.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

namespace framework {
namespace {

[[nodiscard]] BOOLEAN IsLineBreak(CHAR16 Char) {
  return Char == u'\r' || Char == u'\n';
}

// Skips one line break ("\r\n", "\n" or "\r") at *Text, if there is one.
VOID SkipLineBreak(const CHAR16 **Text) {
  if (**Text == u'\r') {
    (*Text)++;
    if (**Text == u'\n') {
      (*Text)++;
    }
  } else if (**Text == u'\n') {
    (*Text)++;
  }
}

}  // namespace

CHAR16 *CopyTextN(const CHAR16 *Text, UINTN Length) {
  CHAR16 *Copy =
      static_cast<CHAR16 *>(AllocatePool((Length + 1) * sizeof(CHAR16)));
  if (Copy == nullptr) {
    return nullptr;
  }
  if (Length != 0) {
    CopyMem(Copy, Text, Length * sizeof(CHAR16));
  }
  Copy[Length] = 0;
  return Copy;
}

CHAR16 *CopyText(const CHAR16 *Text) {
  return CopyTextN(Text, Text == nullptr ? 0 : StrLen(Text));
}

BOOLEAN SameText(const CHAR16 *First, const CHAR16 *Second) {
  return StrCmp(First == nullptr ? u"" : First,
                Second == nullptr ? u"" : Second) == 0;
}

UINTN CharWidth(CHAR16 Char) {
  if (Char < 0x20 || (Char >= 0x7F && Char < 0xA0)) {
    return 0;
  }
  if ((Char >= 0x0300 && Char <= 0x036F) || Char == 0x200B) {
    return 0;
  }
  if ((Char >= 0x1100 && Char <= 0x115F) || (Char >= 0x2E80 && Char <= 0x303E) ||
      (Char >= 0x3041 && Char <= 0x33FF) || (Char >= 0x3400 && Char <= 0x4DBF) ||
      (Char >= 0x4E00 && Char <= 0x9FFF) || (Char >= 0xA000 && Char <= 0xA4CF) ||
      (Char >= 0xAC00 && Char <= 0xD7A3) || (Char >= 0xF900 && Char <= 0xFAFF) ||
      (Char >= 0xFE30 && Char <= 0xFE4F) || (Char >= 0xFF00 && Char <= 0xFF60) ||
      (Char >= 0xFFE0 && Char <= 0xFFE6)) {
    return 2;
  }
  return 1;
}

UINTN TextWidth(const CHAR16 *Text) {
  UINTN Width = 0;
  for (; Text != nullptr && *Text != 0 && !IsLineBreak(*Text); Text++) {
    Width += CharWidth(*Text);
  }
  return Width;
}

BOOLEAN NextWrappedLine(const CHAR16 **Text, UINTN Width, UINTN *Length) {
  const CHAR16 *Start = *Text;
  if (Start == nullptr || *Start == 0) {
    return FALSE;
  }
  if (Width == 0) {
    Width = 1;
  }
  UINTN Used = 0;
  UINTN Index = 0;
  UINTN LastBlank = 0;
  BOOLEAN HaveBlank = FALSE;
  while (Start[Index] != 0 && !IsLineBreak(Start[Index])) {
    UINTN Columns = CharWidth(Start[Index]);
    if (Used + Columns > Width && Index != 0) {
      break;
    }
    if (Start[Index] == u' ') {
      LastBlank = Index;
      HaveBlank = TRUE;
    }
    Used += Columns;
    Index++;
  }
  if (Start[Index] == 0 || IsLineBreak(Start[Index])) {
    *Length = Index;
    *Text = Start + Index;
    SkipLineBreak(Text);
    return TRUE;
  }
  // The line is full: break at its last blank, or inside the word when the
  // word alone is wider than the line.
  if (Start[Index] == u' ') {
    *Length = Index;
    *Text = Start + Index + 1;
  } else if (HaveBlank && LastBlank != 0) {
    *Length = LastBlank;
    *Text = Start + LastBlank + 1;
  } else {
    *Length = Index;
    *Text = Start + Index;
  }
  return TRUE;
}

UINTN WrappedLineCount(const CHAR16 *Text, UINTN Width) {
  UINTN Count = 0;
  UINTN Length = 0;
  while (NextWrappedLine(&Text, Width, &Length)) {
    Count++;
  }
  return Count == 0 ? 1 : Count;
}

}  // namespace framework
