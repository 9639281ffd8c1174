// "/V": the driver version line, which also tells the RSTe layout from the
// VROC one, and the BIOS version part taken from SMBIOS.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Protocol/Smbios.h>

#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibSmbios.h"
#include "RaidLibText.h"
#include "RsteBackend.h"

namespace rste {

namespace {

constexpr const CHAR16 *kVrocSataLine = u"Intel VROC SATA EFI Driver Version";
constexpr const CHAR16 *kVrocSsataLine = u"Intel VROC sSATA EFI Driver Version";
constexpr const CHAR16 *kRsteSataLine = u"Intel RSTe SATA EFI Driver Version";

// The BIOS version string of the first type 0 structure; NULL without one.
[[nodiscard]] const CHAR8 *SmbiosBiosVersion() {
  RAID_SMBIOS_WALK Walk;
  if (!RaidLibSmbiosStart(&Walk)) {
    return nullptr;
  }
  for (const UINT8 *Record = RaidLibSmbiosNext(&Walk); Record != nullptr;
       Record = RaidLibSmbiosNext(&Walk)) {
    if (Record[0] == SMBIOS_TYPE_BIOS_INFORMATION) {
      if (Record[1] <= SMBIOS_TYPE0_BIOS_VERSION_OFFSET) {
        return nullptr;
      }
      return RaidLibSmbiosString(&Walk, Record,
                                 Record[SMBIOS_TYPE0_BIOS_VERSION_OFFSET]);
    }
  }
  return nullptr;
}

// The part of a BIOS version such as "SE5C620-[86B.02.01]-0012" that names
// the board's BIOS build: after the first "[" right behind a "-", up to the
// next "-"; empty when either mark is missing or the version is shorter
// than 4 characters. At most RSTE_BIOS_PART_CHARS characters.
VOID BiosPart(const CHAR8 *Version, CHAR16 *Part) {
  Part[0] = 0;
  if (Version == nullptr || AsciiStrLen(Version) < 4) {
    return;
  }
  const CHAR8 *Start = nullptr;
  for (const CHAR8 *Cursor = Version; Cursor[0] != 0; Cursor++) {
    if (Cursor[0] == '-' && Cursor[1] == '[') {
      Start = Cursor + 2;
      break;
    }
  }
  if (Start == nullptr) {
    return;
  }
  const CHAR8 *Stop = Start;
  while (*Stop != 0 && *Stop != '-') {
    Stop++;
  }
  if (*Stop != '-') {
    return;
  }
  UINTN Length = 0;
  for (const CHAR8 *Cursor = Start;
       Cursor < Stop && Length < RSTE_BIOS_PART_CHARS; Cursor++) {
    Part[Length++] = static_cast<UINT8>(*Cursor);
  }
  Part[Length] = 0;
}

// The stripped driver version of the first driver line; the RSTe line also
// selects the RSTe layout. An empty text when there is none.
VOID DriverVersion(CHAR16 *Output, CHAR16 *Version, UINTN VersionChars) {
  Version[0] = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    bool Rste = RaidLibStartsWith(Line, kRsteSataLine);
    if (!Rste && !RaidLibStartsWith(Line, kVrocSataLine) &&
        !RaidLibStartsWith(Line, kVrocSsataLine)) {
      continue;
    }
    if (Rste) {
      gRsteVrocLayout = 0;
    }
    RAID_ROW Scratch;
    const CHAR16 *Value = RaidLibTrimmedValue(Line, u":", &Scratch);
    UINTN Length = 0;
    for (; Value != nullptr && Value[Length] != 0 && Length + 1 < VersionChars;
         Length++) {
      Version[Length] = Value[Length];
    }
    Version[Length] = 0;
    return;
  }
}

}  // namespace

EFI_STATUS ParseControllerVersion(CHAR16 *Output, RAID_CONTROLLER *Controller,
                                  UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  CHAR16 Bios[RSTE_BIOS_PART_CHARS + 1];
  BiosPart(SmbiosBiosVersion(), Bios);
  CHAR16 Driver[RSTE_FIRMWARE_VERSION_CHARS + 1];
  DriverVersion(Output, Driver, RSTE_FIRMWARE_VERSION_CHARS + 1);
  CHAR16 Text[RSTE_FIRMWARE_VERSION_CHARS + 1];
  // A version longer than the field is shown cut; it names nothing.
  (VOID)RaidLibFormat(Text, RSTE_FIRMWARE_VERSION_CHARS + 1, u"%s (%s)", Bios,
                      Driver);
  if (Controller != nullptr) {
    CHAR16 *Copy = AllocDestStr(Text);
    if (Copy != nullptr) {
      FreePool(Controller->FirmwareVersion);
      Controller->FirmwareVersion = Copy;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace rste
