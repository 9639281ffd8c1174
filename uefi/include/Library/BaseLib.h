// CHAR16 and ASCII text functions with EDK2's names and meanings. Every
// function is bounded: a NULL string reads as an empty one, and the "S"
// functions check the destination's size (in characters) before writing.
// On an error the "S" functions leave the destination unmodified.
#pragma once

#include <Uefi.h>

// ---- CHAR16 strings -----------------------------------------------------

// Characters before the terminator; 0 for NULL.
[[nodiscard]] UINTN StrLen(const CHAR16 *String);
// Characters before the terminator, looking at most at MaxSize of them.
[[nodiscard]] UINTN StrnLenS(const CHAR16 *String, UINTN MaxSize);
// Bytes the string occupies, terminator included; 0 for NULL.
[[nodiscard]] UINTN StrSize(const CHAR16 *String);
// Difference of the first characters that differ (0 when equal).
[[nodiscard]] INTN StrCmp(const CHAR16 *First, const CHAR16 *Second);
// As StrCmp over at most Length characters.
[[nodiscard]] INTN StrnCmp(const CHAR16 *First, const CHAR16 *Second,
                           UINTN Length);
// First occurrence of SearchString in String, or NULL. An empty
// SearchString is found at the start.
[[nodiscard]] CHAR16 *StrStr(const CHAR16 *String, const CHAR16 *SearchString);
// Copies Source into Destination of DestMax characters. EFI_INVALID_PARAMETER
// for NULL pointers or DestMax 0, EFI_BUFFER_TOO_SMALL when the copy and its
// terminator do not fit, EFI_ACCESS_DENIED when the strings overlap.
[[nodiscard]] EFI_STATUS StrCpyS(CHAR16 *Destination, UINTN DestMax,
                                 const CHAR16 *Source);
// Appends Source to Destination of DestMax characters; as StrCpyS, and
// EFI_BAD_BUFFER_SIZE when Destination holds no terminator within DestMax.
[[nodiscard]] EFI_STATUS StrCatS(CHAR16 *Destination, UINTN DestMax,
                                 const CHAR16 *Source);
// Upper case of 'a'..'z'; every other character is returned as it is.
[[nodiscard]] CHAR16 CharToUpper(CHAR16 Char);

// ---- ASCII strings ------------------------------------------------------

[[nodiscard]] UINTN AsciiStrLen(const CHAR8 *String);
// Byte differences are taken as unsigned values.
[[nodiscard]] INTN AsciiStrCmp(const CHAR8 *First, const CHAR8 *Second);
[[nodiscard]] INTN AsciiStrnCmp(const CHAR8 *First, const CHAR8 *Second,
                                UINTN Length);
[[nodiscard]] CHAR8 *AsciiStrStr(const CHAR8 *String,
                                 const CHAR8 *SearchString);
[[nodiscard]] CHAR8 AsciiCharToUpper(CHAR8 Char);

// ---- Conversions to CHAR16 ----------------------------------------------

// Widens each byte of Source (bytes 80h-FFh become U+0080-U+00FF) into
// Destination of DestMax characters. Errors as StrCpyS.
[[nodiscard]] EFI_STATUS AsciiStrToUnicodeStrS(const CHAR8 *Source,
                                               CHAR16 *Destination,
                                               UINTN DestMax);

// CHAR16 characters (terminator excluded) that the UTF-8 text of at most
// SourceLength bytes, ending early at a NUL byte, converts to.
[[nodiscard]] UINTN Utf8StrToUnicodeLength(const CHAR8 *Source,
                                           UINTN SourceLength);
// Converts UTF-8 text (at most SourceLength bytes, ending early at a NUL
// byte) into UTF-16 in Destination of DestMax characters. Characters beyond
// U+FFFF become surrogate pairs; malformed, overlong or truncated sequences
// become U+FFFD, one per bad byte. Errors as StrCpyS.
[[nodiscard]] EFI_STATUS Utf8StrToUnicodeStrS(const CHAR8 *Source,
                                              UINTN SourceLength,
                                              CHAR16 *Destination,
                                              UINTN DestMax);
