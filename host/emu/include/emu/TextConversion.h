// Conversions between the host's UTF-8 text and the firmware's CHAR16 text.
#pragma once

#include <Uefi.h>

#include <string>
#include <string_view>

namespace emu {

// UTF-8 to UTF-16; a malformed byte sequence becomes U+FFFD.
std::u16string Utf8ToUtf16(std::string_view Text);

// UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string Utf16ToUtf8(std::u16string_view Text);

// A NUL-terminated CHAR16 string as a view; NULL gives an empty view.
std::u16string_view View(const CHAR16 *Text);

// A NUL-terminated CHAR16 string as UTF-8; NULL gives "".
std::string ToUtf8(const CHAR16 *Text);

}  // namespace emu
