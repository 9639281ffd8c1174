// The world a framework test runs in: the emulated firmware and setup
// protocol bound to the page framework, the headless driver, the demo
// module started on it, and the demo's strings in two languages.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "DemoModule.h"
#include "emu/Emulator.h"
#include "framework/EmuBinding.h"
#include "framework/Framework.h"
#include "framework/HeadlessDriver.h"
#include "framework/Operator.h"

class FrameworkTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // A node of the page shown, failing the test when it is missing.
  HOST_PAGE_NODE *On(UINT32 NodeId);
  HOST_CONTROL *ControlOn(UINT32 NodeId) { return On(NodeId)->Control; }
  std::u16string TextOn(UINT32 NodeId) { return Driver.Text(On(NodeId)); }

  emu::Firmware Firmware;
  emu::SetupProtocol Setup{Firmware};
  framework::HeadlessDriver Driver;
  std::string Language = "en-US";
  std::unique_ptr<framework::EmuBinding> Binding;
  bool Started = false;
};
