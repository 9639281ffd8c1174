// Management-controller events: there is no management controller under
// QEMU, so each event is printed and acknowledged.
#include "HostConsole.h"
#include "HostProtocols.h"

namespace {

constexpr UINT32 kServiceVersion = 0x00010000;

EFI_STATUS EFIAPI GetVersion(QOL_COMMANDS_PROTOCOL *This, UINT32 *Version) {
  if (Version == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Version = kServiceVersion;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SendEvent(QOL_COMMANDS_PROTOCOL *This, UINT32 EventCode,
                            const CHAR8 *Message, const CHAR8 *Identifier,
                            UINT32 *Result, UINT32 Count) {
  HostPrint("raidhost: event 0x%08x %a (%a) x%d\n", EventCode,
            Message != nullptr ? Message : "", Identifier != nullptr ? Identifier : "",
            Count);
  if (Result != nullptr) {
    *Result = 0;
  }
  return EFI_SUCCESS;
}

constinit QOL_COMMANDS_PROTOCOL gQolCommands = {GetVersion, SendEvent};

}  // namespace

QOL_COMMANDS_PROTOCOL *HostQolCommands(VOID) { return &gQolCommands; }
