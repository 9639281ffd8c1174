// The error box every page shows after a failed operation.
#include <Library/BaseLib.h>
#include <Library/DebugLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Protocol/Host/PageFramework.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidcfgSetup.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidWizard.h"

namespace {

// Room the formatted text needs beyond the two texts: the eight code digits
// and the terminator, less the "%08x" and "%s" they replace.
constexpr UINTN kErrorTextExtra = 6;

// The message id of an error code. The table is read one entry before the
// code's low 12 bits, deliberately: it starts at the first message, so
// code 1 gives "Invalid command" and code k message k. It is no off-by-one;
// leave it. A code with low bits 0 gives the id before the first message,
// as the sum 1014 + k does.
[[nodiscard]] EFI_STRING_ID ErrorMessageId(UINT32 ErrorCode) {
  const UINT32 Index = ErrorCode & 0xFFF;
  if (Index >= RAID_ERR_MSG_COUNT) {
    return STR_ERROR_MESSAGE_041;
  }
  if (Index == 0) {
    return static_cast<EFI_STRING_ID>(STR_ERROR_MESSAGE_001 - 1);
  }
  ASSERT(gRaidErrMsgArray[Index - 1] != 0);  // filled at start-up
  return gRaidErrMsgArray[Index - 1];
}

}  // namespace

// Formats text 817 with the whole code and the message and shows it in a
// plain box titled 818 "Error".
VOID ShowRaidErrorBox(UINT32 ErrorCode) {
  if (TarnSetupProtocol == nullptr) {
    return;
  }
  const CHAR16 *Format = RaidGetString(gHiiHandle, STR_OPERATION_FAILED);
  const CHAR16 *Message = RaidGetString(gHiiHandle, ErrorMessageId(ErrorCode));
  if (Format == nullptr) {
    Format = u"";
  }
  if (Message == nullptr) {
    Message = u"";
  }
  const UINTN Characters = StrLen(Format) + StrLen(Message) + kErrorTextExtra;
  uefi::PoolPtr<CHAR16> Text(
      static_cast<CHAR16 *>(AllocateZeroPool(Characters * sizeof(CHAR16))));
  if (!Text) {
    return;
  }
  UnicodeSPrint(Text.Get(), Characters * sizeof(CHAR16), Format, ErrorCode,
                Message);
  // A plain box has no answer to read.
  (VOID) RaidMessageBox(HOST_MSGBOX_PLAIN, STR_ERROR_TITLE,
                        STR_OPERATION_FAILED, Text.Get());
}
