// A simulated server with the module loaded under the page framework and a
// headless operator: the world every wizard test runs in.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "framework/EmuBinding.h"
#include "framework/HeadlessDriver.h"
#include "native/ModuleSession.h"
#include "native/Scenario.h"
#include "native/Server.h"

namespace wizard_test {

// The demo server's adapters by radio option.
constexpr UINTN kEmptyMegaRaid = 0;       // eight unconfigured drives
constexpr UINTN kConfiguredMegaRaid = 1;  // two arrays, three virtual disks
constexpr UINTN kSasMegaRaid = 2;         // eight unconfigured SAS drives

class WizardWorld : public ::testing::Test {
 protected:
  ~WizardWorld() override;

  // Builds the server of Scenario and loads the module on it.
  void Start(const host::Scenario &Scenario);
  void StartDemo() { Start(host::DemoScenario()); }
  // Unloads the module; no page node may be left but the framework's
  // module root, and once the framework has gone the pool must be empty.
  // The server goes.
  void Stop();

  HOST_PAGE_NODE *Node(UINT32 NodeId) { return Driver_.Find(NodeId); }
  std::u16string Text(UINT32 NodeId) { return Driver_.Text(Node(NodeId)); }
  UINT8 State(UINT32 NodeId) { return Driver_.State(Node(NodeId)); }
  std::u16string Cell(UINT32 NodeId, UINT32 Row, UINT32 Column) {
    return Driver_.Cell(Node(NodeId), Row, Column);
  }
  EFI_STATUS Press(UINT32 NodeId) { return Driver_.Press(Node(NodeId)); }
  // Chooses adapter Index on page 1.
  EFI_STATUS ChooseAdapter(UINTN Index);
  // The virtual MegaRAID adapters' state.
  nlohmann::json MegaRaidState() {
    return Server_->Adapters().State()["megaraid"];
  }
  // The events sent to the management controller, as their codes.
  std::vector<UINT32> Events() const;
  // Trace lines printed so far that contain Text.
  bool TraceHas(const std::string &Text) const;

  // Passes every tool output through this before the module reads it,
  // from the next Start on: the virtual adapters' text edited into what
  // they cannot print.
  std::function<std::string(const std::string &CommandLine,
                            const std::string &Output)>
      Rewrite_;

  framework::HeadlessDriver Driver_;
  std::unique_ptr<host::Server> Server_;
  std::unique_ptr<framework::EmuBinding> Binding_;
  std::unique_ptr<host::ModuleSession> Module_;
};

// The demo scenario as JSON, for tests that change it.
nlohmann::json DemoScenarioJson();
// A scenario from JSON.
host::Scenario ScenarioFrom(const nlohmann::json &Json);

}  // namespace wizard_test
