// The emulated setup protocol's framework slots, bound to the framework.
#include "framework/EmuBinding.h"

#include <Library/UefiBootServicesTableLib.h>

#include "emu/Firmware.h"

namespace framework {
namespace {

// The identity the framework hands the module (slot 1).
constexpr EFI_GUID kModuleIdentity = {
    0x5C3A1E27, 0x8B4D, 0x4F6A, {0x9E, 0x21, 0x7D, 0x40, 0xC3, 0x18, 0xA5, 0x66}};

}  // namespace

EmuBinding::EmuBinding(emu::SetupProtocol &Setup, const HostServices &Services,
                       UINT32 FirstPageId)
    : Setup_(Setup), Caller_(Services), Saved_(Setup.Interface()) {
  // Host and module share one process here, and so the base library's
  // boot-services pointer. The framework allocates through the current
  // firmware's, whatever an earlier module image left behind.
  gBS = emu::Firmware::Current().BootServices();
  HostServices Bound;
  Bound.Context = this;
  Bound.GetString = GetString;
  Bound.SetLanguage = SetLanguage;
  Bound.Ask = Ask;
  Bound.Refresh = Refresh;
  StartStatus_ = Initialize(Bound, kModuleIdentity, FirstPageId);
  FillSetupSlots(Setup_.Interface());
}

EmuBinding::~EmuBinding() {
  Setup_.Interface() = Saved_;
  Shutdown();
}

const CHAR16 *EmuBinding::GetString(VOID *Context, EFI_HII_HANDLE HiiHandle,
                                    EFI_STRING_ID Id) {
  auto &Self = *static_cast<EmuBinding *>(Context);
  if (HiiHandle == nullptr) {
    HiiHandle = Self.Fallback_;
  }
  return Self.Saved_.GetString(HiiHandle, Id);
}

EFI_STATUS EmuBinding::SetLanguage(VOID *Context, const CHAR8 *Language) {
  auto &Self = *static_cast<EmuBinding *>(Context);
  return Self.Language_ ? Self.Language_(Language) : EFI_SUCCESS;
}

BOOLEAN EmuBinding::Ask(VOID *Context) {
  auto &Self = *static_cast<EmuBinding *>(Context);
  return Self.Caller_.Ask != nullptr ? Self.Caller_.Ask(Self.Caller_.Context)
                                     : TRUE;
}

VOID EmuBinding::Refresh(VOID *Context) {
  auto &Self = *static_cast<EmuBinding *>(Context);
  if (Self.Caller_.Refresh != nullptr) {
    Self.Caller_.Refresh(Self.Caller_.Context);
  }
}

}  // namespace framework
