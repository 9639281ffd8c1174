// The management-controller command service: records every event a module
// sends, with a settable status and completion code.
#pragma once

#include <Protocol/Host/QolCommands.h>
#include <Uefi.h>

#include <string>
#include <vector>

namespace emu {

class Firmware;

struct SentEvent {
  UINT32 EventCode;
  std::string Message;     // "" for NULL
  std::string Identifier;  // "" for NULL
  UINT32 Count;
};

class QolCommands {
 public:
  static constexpr UINT32 kVersion = 0x00010000;

  explicit QolCommands(Firmware &Firmware);
  ~QolCommands();
  QolCommands(const QolCommands &) = delete;
  QolCommands &operator=(const QolCommands &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  // Status SendEvent returns, and the completion code it stores in *Result.
  VOID SetSendResult(EFI_STATUS Status) { SendResult_ = Status; }
  VOID SetCompletionCode(UINT32 Code) { CompletionCode_ = Code; }
  const std::vector<SentEvent> &Events() const { return Events_; }

 private:
  struct Instance {
    QOL_COMMANDS_PROTOCOL Protocol;
    QolCommands *Owner;
  };

  static QolCommands *Owner(QOL_COMMANDS_PROTOCOL *This);
  static EFI_STATUS EFIAPI GetVersion(QOL_COMMANDS_PROTOCOL *This,
                                      UINT32 *Version);
  static EFI_STATUS EFIAPI SendEvent(QOL_COMMANDS_PROTOCOL *This,
                                     UINT32 EventCode, const CHAR8 *Message,
                                     const CHAR8 *Identifier, UINT32 *Result,
                                     UINT32 Count);

  Firmware &Firmware_;
  Instance Instance_;
  EFI_HANDLE Handle_ = nullptr;
  EFI_STATUS SendResult_ = EFI_SUCCESS;
  UINT32 CompletionCode_ = 0;
  std::vector<SentEvent> Events_;
};

}  // namespace emu
