// A simulated server with the module loaded under the page framework and a
// headless operator: the world every wizard test runs in, whatever the
// family of the server's adapters.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "framework/EmuBinding.h"
#include "framework/HeadlessDriver.h"
#include "native/ModuleSession.h"
#include "native/Scenario.h"
#include "native/Server.h"

namespace wizard_test {

class WizardWorld : public ::testing::Test {
 protected:
  ~WizardWorld() override;

  // Builds the server of Scenario and loads the module on it.
  void Start(const host::Scenario &Scenario);
  // The same for a scenario written inline, or a file of scenarios/ by
  // its name there ("megaraid-six-sas.json").
  void Start(const nlohmann::json &Scenario);
  void StartScenario(const std::string &Name);
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
  // Every virtual adapter's state by family name, as the native host
  // prints it at the end of a script.
  nlohmann::json AdapterStates() const { return Server_->Adapters().State(); }
  // Fails the test when the adapters' state differs from the one Start
  // left anywhere but in the parts Changeable names (AdapterStates.h);
  // returns the state now.
  nlohmann::json ExpectChangedOnly(
      const std::vector<std::string> &Changeable) const;
  // The events sent to the management controller, as their codes.
  std::vector<UINT32> Events() const;
  // Trace lines printed so far that contain Text.
  bool TraceHas(const std::string &Text) const;

  // The operator's steps through the configuration wizard
  // (ConfigurationSteps.cpp), each failing the test when the wizard does
  // not follow. Next, expecting page Page:
  void NextTo(UINT32 Page);
  // From page 1 to the first page of the advanced configuration: a new
  // array (Mode 0) or free capacity of an array (1).
  void Advanced(UINTN Mode);
  // Page 8 for a new array of Level over the drives of table rows Rows.
  void NewArrayEditor(const std::u16string &Level,
                      std::initializer_list<UINT32> Rows);
  void TickDrives(std::initializer_list<UINT32> Rows);
  // Plans one virtual disk through the pop-up; an empty capacity keeps
  // what is left, an empty name the default one.
  void PlanVolume(const std::u16string &Capacity,
                  const std::u16string &Name = u"");
  // Verify, confirm, create and go back to page 1.
  void CreateFrom(UINT32 VerifyPage);

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
  nlohmann::json Started_;  // the adapters' state once the module started
};

// The demo scenario as JSON, for tests that change it.
nlohmann::json DemoScenarioJson();
// The first adapter of Family in a scenario's JSON, for a test to change.
nlohmann::json &AdapterOfFamily(nlohmann::json &Scenario, const std::string &Family);
// A scenario file of scenarios/ as JSON, by its name there.
nlohmann::json ScenarioJson(const std::string &Name);
// A scenario from JSON.
host::Scenario ScenarioFrom(const nlohmann::json &Json);

}  // namespace wizard_test
