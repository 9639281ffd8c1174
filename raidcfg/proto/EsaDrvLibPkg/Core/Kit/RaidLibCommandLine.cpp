// Building a tool's command line: every line a backend runs is formatted
// here, whole or not at all, and every text argument marked "%W" is checked
// to reach the tool as the one word it stands for.
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLib.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace {

// Command formats are short constants; a longer one is a programming error
// and is refused like a line that does not fit.
constexpr UINTN kFormatChars = 160;
// How much of a refused text the trace shows.
constexpr UINTN kShownChars = 48;

// Characters that end or bend a word on the way to the tool whatever the
// tool: the shell splits words at blanks and control characters, groups
// them with the quote, escapes with "^", expands "%name%" and redirects or
// pipes at "<", ">" and "|"; "#" starts a comment.
[[nodiscard]] bool BreaksAnyWord(CHAR16 Char) {
  return Char <= 0x20 || Char == 0x7F || Char == u'"' || Char == u'^' ||
         Char == u'%' || Char == u'<' || Char == u'>' || Char == u'|' ||
         Char == u'#';
}

[[nodiscard]] bool IsOneWord(const CHAR16 *Text, UINT32 Words) {
  if (Text == nullptr || Text[0] == 0) {
    return false;
  }
  if ((Words & RAID_TOOL_WORD_NO_LEADING_DASH) != 0 && Text[0] == u'-') {
    return false;
  }
  for (const CHAR16 *Cursor = Text; *Cursor != 0; Cursor++) {
    if (BreaksAnyWord(*Cursor) ||
        ((Words & RAID_TOOL_WORD_NO_SLASH) != 0 && *Cursor == u'/')) {
      return false;
    }
  }
  return true;
}

// The text as a trace may show it: control characters as "?", cut short.
VOID Shown(const CHAR16 *Text, CHAR16 (&Out)[kShownChars + 1]) {
  UINTN Length = 0;
  for (; Text != nullptr && Text[Length] != 0 && Length < kShownChars;
       Length++) {
    Out[Length] = Text[Length] < 0x20 || Text[Length] == 0x7F ? u'?'
                                                              : Text[Length];
  }
  Out[Length] = 0;
}

// Reads one conversion of Format at Cursor (just past its "%", left on its
// type character), steps Marker over its argument and returns the type;
// "*" widths take their argument too. A text argument is put in *Text.
CHAR16 TakeConversion(const CHAR16 *&Cursor, VA_LIST &Marker,
                      const CHAR16 **Text) {
  bool Wide = false;
  for (;; Cursor++) {
    const CHAR16 Char = *Cursor;
    if (Char == u'*') {
      (VOID)VA_ARG(Marker, UINT32);
    } else if (Char == u'l') {
      Wide = true;
    } else if (!(Char == u'-' || Char == u'0' || Char == u'+' ||
                 Char == u' ' || Char == u'.' ||
                 (Char >= u'1' && Char <= u'9'))) {
      break;
    }
  }
  const CHAR16 Type = *Cursor;
  switch (Type) {
    case u'd': case u'i': case u'u': case u'x': case u'X': case u'c':
      if (Wide) {
        (VOID)VA_ARG(Marker, UINT64);
      } else {
        (VOID)VA_ARG(Marker, UINT32);
      }
      break;
    case u'r':
      (VOID)VA_ARG(Marker, EFI_STATUS);
      break;
    case u's': case u'S': case u'W':
      *Text = VA_ARG(Marker, const CHAR16 *);
      break;
    case u'a': case u'p': case u'g':
      (VOID)VA_ARG(Marker, VOID *);
      break;
    default:  // "%%" and the end of the format take nothing
      break;
  }
  return Type;
}

// Copies Format into Plain with every "%W" as "%s", and checks the text of
// each "%W" against Words. Returns EFI_SUCCESS, or the refusal (traced,
// *ErrorCode set).
[[nodiscard]] EFI_STATUS CheckWords(const CHAR8 *Caller, UINT32 Words,
                                    UINT32 *ErrorCode, const CHAR16 *Format,
                                    VA_LIST Marker,
                                    CHAR16 (&Plain)[kFormatChars]) {
  VA_LIST Walk;
  VA_COPY(Walk, Marker);
  EFI_STATUS Status = EFI_SUCCESS;
  UINTN Length = 0;
  for (const CHAR16 *Cursor = Format; *Cursor != 0; Cursor++) {
    if (Length + 1 >= kFormatChars) {
      *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
      Status = EFI_BUFFER_TOO_SMALL;
      break;
    }
    Plain[Length++] = *Cursor;
    if (*Cursor != u'%') {
      continue;
    }
    const CHAR16 *Start = ++Cursor;
    const CHAR16 *Text = nullptr;
    const CHAR16 Type = TakeConversion(Cursor, Walk, &Text);
    for (const CHAR16 *Part = Start; Part <= Cursor && *Part != 0; Part++) {
      if (Length + 1 < kFormatChars) {
        Plain[Length++] = *Part == u'W' ? u's' : *Part;
      }
    }
    if (Type == u'W' && !RaidLibToolWord(Caller, Text, Words, ErrorCode)) {
      Status = EFI_INVALID_PARAMETER;
      break;
    }
    if (Type == 0) {
      break;
    }
  }
  VA_END(Walk);
  Plain[Length < kFormatChars ? Length : kFormatChars - 1] = 0;
  return Status;
}

}  // namespace

BOOLEAN RaidLibIsToolFileName(const CHAR16 *Name) {
  if (Name == nullptr || Name[0] == u'-' || Name[0] == u'.') {
    return FALSE;
  }
  UINTN Length = 0;
  for (; Name[Length] != 0; Length++) {
    const CHAR16 Char = Name[Length];
    const bool Plain = (Char >= u'a' && Char <= u'z') ||
                       (Char >= u'A' && Char <= u'Z') ||
                       (Char >= u'0' && Char <= u'9') || Char == u'_' ||
                       Char == u'-' || Char == u'.';
    if (!Plain || Length == RAID_TOOL_NAME_CHARS) {
      return FALSE;
    }
  }
  constexpr UINTN kSuffix = 4;  // ".efi"
  if (Length <= kSuffix) {
    return FALSE;
  }
  const CHAR16 *Suffix = Name + Length - kSuffix;
  const CHAR16 Lower[kSuffix] = {u'.', u'e', u'f', u'i'};
  for (UINTN I = 0; I < kSuffix; I++) {
    const CHAR16 Char = (Suffix[I] >= u'A' && Suffix[I] <= u'Z')
                            ? static_cast<CHAR16>(Suffix[I] + (u'a' - u'A'))
                            : Suffix[I];
    if (Char != Lower[I]) {
      return FALSE;
    }
  }
  return TRUE;
}

BOOLEAN RaidLibToolWord(const CHAR8 *Caller, const CHAR16 *Text, UINT32 Words,
                        UINT32 *ErrorCode) {
  if (IsOneWord(Text, Words)) {
    return TRUE;
  }
  CHAR16 Seen[kShownChars + 1];
  Shown(Text, Seen);
  *ErrorCode = RAID_ERROR_NOT_ONE_WORD;
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                    "[%a]\"%s\" would not reach the tool as one word, not "
                    "run\n",
                    Seen);
  return FALSE;
}

EFI_STATUS RaidLibVFormatCommand(const CHAR8 *Caller, CHAR16 *CommandLine,
                                 UINTN CommandChars, UINT32 Words,
                                 UINT32 *ErrorCode, const CHAR16 *Format,
                                 VA_LIST Marker) {
  if (CommandChars > 0) {
    CommandLine[0] = 0;
  }
  CHAR16 Plain[kFormatChars];
  EFI_STATUS Status =
      CheckWords(Caller, Words, ErrorCode, Format, Marker, Plain);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (RaidLibVFormat(CommandLine, CommandChars, Plain, Marker)) {
    return EFI_SUCCESS;
  }
  *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                    "[%a]Command does not fit in %u characters, not run: %S\n",
                    static_cast<UINT32>(CommandChars), CommandLine);
  return EFI_BUFFER_TOO_SMALL;
}

EFI_STATUS EFIAPI RaidLibFormatCommand(const CHAR8 *Caller, CHAR16 *CommandLine,
                                       UINTN CommandChars, UINT32 Words,
                                       UINT32 *ErrorCode, const CHAR16 *Format,
                                       ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  EFI_STATUS Status = RaidLibVFormatCommand(Caller, CommandLine, CommandChars,
                                            Words, ErrorCode, Format, Marker);
  VA_END(Marker);
  return Status;
}
