// The XML declaration's pseudo-attributes.
#pragma once

#include <Uefi.h>

namespace xml_detail {

// Text is what stands between "<?xml" and "?>". Well-formed: white space,
// then version="...", optionally encoding="..." (beginning with a letter)
// and standalone="yes|no", in that order, each after white space, values
// in single or double quotes made of [A-Za-z0-9._-], optional trailing
// white space.
[[nodiscard]] BOOLEAN IsWellFormedDeclaration(const CHAR8 *Text, UINTN Length);

}  // namespace xml_detail
