// Shared by the string tests: raidcfg's package list parsed once, the
// languages it must carry, and the PrintLib conversions of a text.
#pragma once

#include <string>
#include <vector>

#include "emu/Hii.h"

namespace strings_test {

// The languages of the package list, in package order.
extern const std::vector<std::string> kLanguages;

// The package list the build generated, parsed (aborts the test run when it
// does not parse).
const emu::HiiStrings &RaidcfgStrings();

// The conversions of a text in order ("%08x", "%s"), "%%" left out; a '%'
// that starts no conversion yields "<stray>".
std::vector<std::string> Conversions(const std::u16string &Text);

// UTF-16 to UTF-8 for readable failure messages.
std::string Utf8(const std::u16string &Text);

}  // namespace strings_test
