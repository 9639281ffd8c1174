// The GUI driver protocol's recorder.
#include "emu/GuiDriver.h"

#include <cstdio>
#include <cstdlib>

#include "emu/Firmware.h"

namespace emu {
namespace {

GuiDriver *gActiveGuiDriver = nullptr;

}  // namespace

GuiDriver::GuiDriver(Firmware &Firmware) : Firmware_(Firmware) {
  if (gActiveGuiDriver != nullptr) {
    std::fprintf(stderr, "emu::GuiDriver: one is already active\n");
    std::abort();
  }
  Protocol_ = {Initialize, UnInitialize};
  Firmware_.Handles().Install(&Handle_, gEsaGuiDriverProtocolGuid, &Protocol_);
  gActiveGuiDriver = this;
}

GuiDriver::~GuiDriver() {
  gActiveGuiDriver = nullptr;
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gEsaGuiDriverProtocolGuid,
                                  &Protocol_);
  }
}

GuiDriver &GuiDriver::Active() {
  if (gActiveGuiDriver == nullptr) {
    std::fprintf(stderr, "emu::GuiDriver: called after it was removed\n");
    std::abort();
  }
  return *gActiveGuiDriver;
}

EFI_STATUS EFIAPI GuiDriver::Initialize(const ESA_GUI_CONTEXT *Context) {
  if (Context == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  GuiDriver &Self = Active();
  Self.Initializations_.push_back(*Context);
  return Self.InitializeResult_;
}

EFI_STATUS EFIAPI GuiDriver::UnInitialize(EFI_HANDLE Instance) {
  GuiDriver &Self = Active();
  Self.UnInitializations_.push_back(Instance);
  return Self.UnInitializeResult_;
}

}  // namespace emu
