// CHAR16 text helpers of the framework and its renderer: pool copies,
// display widths and word wrapping.
#pragma once

#include <Uefi.h>

namespace framework {

// A pool copy of Text (NULL reads as empty); NULL when memory is short.
[[nodiscard]] CHAR16 *CopyText(const CHAR16 *Text);
// A pool copy of at most Length characters of Text.
[[nodiscard]] CHAR16 *CopyTextN(const CHAR16 *Text, UINTN Length);
// TRUE when both texts hold the same characters (NULL reads as empty).
[[nodiscard]] BOOLEAN SameText(const CHAR16 *First, const CHAR16 *Second);

// Columns a character takes on a text screen: 2 for the wide East Asian
// characters, 0 for a combining mark or a control character, 1 otherwise.
[[nodiscard]] UINTN CharWidth(CHAR16 Char);
// Columns the whole text takes (stops at a line break).
[[nodiscard]] UINTN TextWidth(const CHAR16 *Text);

// Word wrap: the next line of at most Width columns starting at *Text.
// Returns the number of characters of the line (without the break) and
// advances *Text past the line and the break or blank it ended at; returns
// FALSE at the end of the text. "\r\n", "\n" and "\r" break lines.
[[nodiscard]] BOOLEAN NextWrappedLine(const CHAR16 **Text, UINTN Width,
                                      UINTN *Length);
// Number of lines NextWrappedLine gives for Text (at least 1).
[[nodiscard]] UINTN WrappedLineCount(const CHAR16 *Text, UINTN Width);

}  // namespace framework
