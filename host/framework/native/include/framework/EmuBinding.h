// Routes an emulated setup protocol's page-framework slots (0-12, 15-18) to
// the page framework, so that a module running on the emulator draws its
// pages with it. Slot 13 (trace) and 14 (strings) stay the emulator's, and
// the framework fetches its texts through slot 14.
#pragma once

#include <Uefi.h>

#include <functional>
#include <string>

#include "emu/SetupProtocol.h"
#include "framework/Framework.h"

namespace framework {

class EmuBinding {
 public:
  // Starts the framework with Services' Ask and Refresh (GetString and
  // SetLanguage are the binding's) and puts its slots into Setup.
  EmuBinding(emu::SetupProtocol &Setup, const HostServices &Services,
             UINT32 FirstPageId = 0);
  // Puts the emulator's slots back and shuts the framework down, freeing
  // every node it still holds.
  ~EmuBinding();
  EmuBinding(const EmuBinding &) = delete;
  EmuBinding &operator=(const EmuBinding &) = delete;

  [[nodiscard]] EFI_STATUS StartStatus() const { return StartStatus_; }
  // Called with the language code when the operator switches language;
  // without a handler every language is accepted and nothing changes.
  using LanguageHandler = std::function<EFI_STATUS(const std::string &)>;
  void SetLanguageHandler(LanguageHandler Handler) {
    Language_ = std::move(Handler);
  }
  // The HII handle handed to slot 14 while the module registered none.
  void SetFallbackHiiHandle(EFI_HII_HANDLE Handle) { Fallback_ = Handle; }

 private:
  [[nodiscard]] static const CHAR16 *GetString(VOID *Context,
                                               EFI_HII_HANDLE HiiHandle,
                                               EFI_STRING_ID Id);
  [[nodiscard]] static EFI_STATUS SetLanguage(VOID *Context,
                                              const CHAR8 *Language);
  [[nodiscard]] static BOOLEAN Ask(VOID *Context);
  static VOID Refresh(VOID *Context);

  emu::SetupProtocol &Setup_;
  HostServices Caller_;
  TARN_SETUP_PROTOCOL Saved_;
  LanguageHandler Language_;
  EFI_HII_HANDLE Fallback_ = nullptr;
  EFI_STATUS StartStatus_ = EFI_NOT_STARTED;
};

}  // namespace framework
