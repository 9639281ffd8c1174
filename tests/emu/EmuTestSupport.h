// A fresh emulated firmware per test, with the base library's globals
// pointing at it the way a module's image entry sets them.
#pragma once

#include <Library/UefiBootServicesTableLib.h>
#include <gtest/gtest.h>

#include <memory>

#include "emu/Firmware.h"

namespace emu_test {

class EmuTest : public ::testing::Test {
 protected:
  EmuTest() : Firmware_(std::make_unique<emu::Firmware>()) {
    gST = Firmware_->SystemTable();
    gBS = gST->BootServices;
    gRT = gST->RuntimeServices;
    gImageHandle = nullptr;
  }
  ~EmuTest() override {
    gST = nullptr;
    gBS = nullptr;
    gRT = nullptr;
    gImageHandle = nullptr;
  }

  emu::Firmware &Fw() { return *Firmware_; }

  std::unique_ptr<emu::Firmware> Firmware_;
};

}  // namespace emu_test
