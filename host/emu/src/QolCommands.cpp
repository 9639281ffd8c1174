// The management-controller event recorder.
#include "emu/QolCommands.h"

#include "emu/Firmware.h"

namespace emu {

QolCommands::QolCommands(Firmware &Firmware) : Firmware_(Firmware) {
  Instance_ = {{GetVersion, SendEvent}, this};
  Firmware_.Handles().Install(&Handle_, gQolCommandsProtocolGuid,
                              &Instance_.Protocol);
}

QolCommands::~QolCommands() {
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gQolCommandsProtocolGuid,
                                  &Instance_.Protocol);
  }
}

QolCommands *QolCommands::Owner(QOL_COMMANDS_PROTOCOL *This) {
  return reinterpret_cast<Instance *>(This)->Owner;
}

EFI_STATUS EFIAPI QolCommands::GetVersion(QOL_COMMANDS_PROTOCOL *This,
                                          UINT32 *Version) {
  if (This == nullptr || Version == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Version = kVersion;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI QolCommands::SendEvent(QOL_COMMANDS_PROTOCOL *This,
                                         UINT32 EventCode,
                                         const CHAR8 *Message,
                                         const CHAR8 *Identifier,
                                         UINT32 *Result, UINT32 Count) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  QolCommands *Self = Owner(This);
  Self->Events_.push_back({EventCode, Message == nullptr ? "" : Message,
                           Identifier == nullptr ? "" : Identifier, Count});
  if (Result != nullptr) {
    *Result = Self->CompletionCode_;
  }
  return Self->SendResult_;
}

}  // namespace emu
