// The host GUI driver protocol: records each module's connection (a copy of
// its context) and disconnection.
#pragma once

#include <Protocol/Host/EsaGuiDriver.h>
#include <Uefi.h>

#include <vector>

namespace emu {

class Firmware;

class GuiDriver {
 public:
  explicit GuiDriver(Firmware &Firmware);
  ~GuiDriver();
  GuiDriver(const GuiDriver &) = delete;
  GuiDriver &operator=(const GuiDriver &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  ESA_GUI_DRIVER_PROTOCOL *Interface() { return &Protocol_; }
  // Results of the coming calls (EFI_SUCCESS unless set).
  VOID SetInitializeResult(EFI_STATUS Status) { InitializeResult_ = Status; }
  VOID SetUnInitializeResult(EFI_STATUS Status) {
    UnInitializeResult_ = Status;
  }
  // Contexts handed to Initialize, copied at the call.
  const std::vector<ESA_GUI_CONTEXT> &Initializations() const {
    return Initializations_;
  }
  // Instances handed to UnInitialize.
  const std::vector<EFI_HANDLE> &UnInitializations() const {
    return UnInitializations_;
  }

 private:
  static GuiDriver &Active();
  static EFI_STATUS EFIAPI Initialize(const ESA_GUI_CONTEXT *Context);
  static EFI_STATUS EFIAPI UnInitialize(EFI_HANDLE Instance);

  Firmware &Firmware_;
  ESA_GUI_DRIVER_PROTOCOL Protocol_;
  EFI_HANDLE Handle_ = nullptr;
  EFI_STATUS InitializeResult_ = EFI_SUCCESS;
  EFI_STATUS UnInitializeResult_ = EFI_SUCCESS;
  std::vector<ESA_GUI_CONTEXT> Initializations_;
  std::vector<EFI_HANDLE> UnInitializations_;
};

}  // namespace emu
