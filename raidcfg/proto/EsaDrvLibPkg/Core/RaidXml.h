// The capability profile raid.xml: element callbacks that build one
// RAID_CAPABILITY per CONTROLLER block in gCapability and hand it to every
// controller of that family.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

// The current level while inside no R0 ... R60 block.
#define RAID_XML_NO_LEVEL 100

// Start-element callback: attributes are used only by position, the first
// pair named "ID" and the second "DEFAULT".
VOID EFIAPI RaidXmlTagStart(VOID *UserData, const CHAR16 *Name,
                            const CHAR16 **Attributes);
// End-element callback: at the end of CONTROLLER the record goes to the
// family's controllers; container and level blocks end their scope.
VOID EFIAPI RaidXmlTagEnd(VOID *UserData, const CHAR16 *Name);

// Clears the inside flags, sets the current level to none and drops a record
// left over from an earlier parse; called before raid.xml is read.
VOID RaidXmlResetParserState();
// Whether an allocation failed since the last reset: an element was dropped
// or a controller got no copy of its family's record, so the profile in the
// model is not the one the file describes.
[[nodiscard]] BOOLEAN RaidXmlShortOfMemory();
// Frees a record that no CONTROLLER end handed out (a truncated file, or
// one read with no controllers) and clears the parser state.
VOID RaidXmlFinishParsing();

// A deep copy of a capability (lists, strings, numbers), or NULL when the
// pool runs out (nothing is left allocated then).
[[nodiscard]] RAID_CAPABILITY *RaidXmlCopyCapability(
    const RAID_CAPABILITY *Source);
