// The wizard's calls of the host setup protocol's UI slots. Each is skipped
// when the host offers no setup protocol, so the wizard runs on without UI.
#pragma once

#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

#include "setup/RaidcfgTrace.h"

// Message box of Style with the texts of TitleId and TextId (or Text when
// not NULL); TRUE when the operator confirmed.
[[nodiscard]] inline BOOLEAN RaidMessageBox(UINT8 Style, EFI_STRING_ID TitleId,
                                            EFI_STRING_ID TextId,
                                            const CHAR16 *Text) {
  if (TarnSetupProtocol == nullptr || TarnSetupProtocol->MessageBox == nullptr) {
    return FALSE;
  }
  return TarnSetupProtocol->MessageBox(Style, TitleId, TextId, Text);
}

inline VOID RaidSetProgress(UINT8 Percent) {
  if (TarnSetupProtocol != nullptr && TarnSetupProtocol->SetProgress != nullptr) {
    TarnSetupProtocol->SetProgress(Percent);
  }
}

inline VOID RaidRedrawScreen() {
  if (TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->RedrawScreen != nullptr) {
    TarnSetupProtocol->RedrawScreen();
  }
}

// The text of Id in the current language; NULL when there is none.
[[nodiscard]] inline const CHAR16 *RaidGetString(EFI_HII_HANDLE HiiHandle,
                                                 EFI_STRING_ID Id) {
  if (TarnSetupProtocol == nullptr || TarnSetupProtocol->GetString == nullptr) {
    return nullptr;
  }
  return TarnSetupProtocol->GetString(HiiHandle, Id);
}
