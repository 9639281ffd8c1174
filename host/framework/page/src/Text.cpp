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

namespace {

// Punctuation a line may not start with (CJK line-breaking rules).
[[nodiscard]] BOOLEAN ClosesPhrase(CHAR16 Char) {
  switch (Char) {
    case 0x3001:  // 、
    case 0x3002:  // 。
    case 0xFF0C:  // ，
    case 0xFF0E:  // ．
    case 0xFF1A:  // ：
    case 0xFF1B:  // ；
    case 0xFF01:  // ！
    case 0xFF1F:  // ？
    case 0xFF09:  // ）
    case 0x300D:  // 」
    case 0x300F:  // 』
    case 0x30FC:  // ー
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

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
  // The last place the line may end: at a blank (dropped), or between two
  // characters of which one is wide (CJK text breaks between characters).
  UINTN Break = 0;
  BOOLEAN BreakAtBlank = FALSE;
  while (Start[Index] != 0 && !IsLineBreak(Start[Index])) {
    UINTN Columns = CharWidth(Start[Index]);
    if (Used + Columns > Width && Index != 0) {
      break;
    }
    if (Start[Index] == u' ') {
      Break = Index;
      BreakAtBlank = TRUE;
    } else if (Index != 0 && Start[Index - 1] != u' ' &&
               (Columns == 2 || CharWidth(Start[Index - 1]) == 2) &&
               !ClosesPhrase(Start[Index])) {
      Break = Index;
      BreakAtBlank = FALSE;
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
  // The line is full: end it at the break found last, or inside the word
  // when the word alone is wider than the line.
  if (Start[Index] == u' ') {
    *Length = Index;
    *Text = Start + Index + 1;
  } else if (Break != 0 && !ClosesPhrase(Start[Index])) {
    // A break just before the character that did not fit is as good.
    UINTN End = (CharWidth(Start[Index]) == 2 || CharWidth(Start[Index - 1]) == 2) &&
                        Start[Index - 1] != u' '
                    ? Index
                    : Break;
    BOOLEAN Blank = End == Break && BreakAtBlank;
    *Length = End;
    *Text = Start + End + (Blank ? 1 : 0);
  } else if (Break != 0) {
    *Length = Break;
    *Text = Start + Break + (BreakAtBlank ? 1 : 0);
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
