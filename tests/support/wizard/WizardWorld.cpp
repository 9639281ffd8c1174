// The wizard tests' world: a simulated server, the page framework bound to
// its setup protocol, the module loaded and a headless operator.
#include "WizardWorld.h"

#include <Library/UefiBootServicesTableLib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "AdapterStates.h"
#include "native/EmbeddedFiles.h"
#include "wizard/RaidPageNodes.h"

namespace wizard_test {

WizardWorld::~WizardWorld() {
  if (Module_ != nullptr) {
    Stop();
  }
}

void WizardWorld::Start(const host::Scenario &Scenario) {
  Server_ = std::make_unique<host::Server>(Scenario);
  if (Rewrite_) {
    host::Server *Machine = Server_.get();
    Server_->Shell()->SetHandler([this, Machine](const std::string &Line) {
      return Rewrite_(Line, Machine->Adapters().Run(Line).value_or(""));
    });
  }
  // A module unloaded by an earlier test leaves its boot-services pointer
  // behind; the framework must start on this server's firmware.
  gBS = nullptr;
  Binding_ = std::make_unique<framework::EmuBinding>(*Server_->Setup(),
                                                     Driver_.Services());
  ASSERT_EQ(Binding_->StartStatus(), EFI_SUCCESS);
  host::Server *Machine = Server_.get();
  Binding_->SetLanguageHandler([Machine](const std::string &Language) {
    return Machine->SwitchLanguage(Language);
  });
  Module_ = std::make_unique<host::ModuleSession>(*Server_);
  ASSERT_EQ(Module_->Load(), EFI_SUCCESS);
  Started_ = AdapterStates();
}

void WizardWorld::Start(const nlohmann::json &Scenario) {
  Start(ScenarioFrom(Scenario));
}

void WizardWorld::StartScenario(const std::string &Name) {
  Start(host::LoadScenarioFile(std::filesystem::path(RAIDCFG_SCENARIO_DIR) /
                               Name));
}

void WizardWorld::Stop() {
  EXPECT_EQ(Module_->Unload(), EFI_SUCCESS);
  Module_.reset();
  // The framework keeps the module root until the binding goes; every page
  // the module built hangs below it and must be gone with the module.
  EXPECT_EQ(framework::LiveModuleNodeCount(), 0u)
      << "page nodes left after unload";
  ASSERT_NE(framework::ModuleRoot(), nullptr);
  EXPECT_EQ(framework::ModuleRoot()->FirstChild, nullptr);
  Binding_.reset();
  EXPECT_EQ(Server_->Firmware().Memory().LeakReport(), "");
  EXPECT_TRUE(Server_->Problems().empty());
  Server_.reset();
}

EFI_STATUS WizardWorld::ChooseAdapter(UINTN Index) {
  return Driver_.Choose(Node(RAID_NODE_ADAPTER_RADIO), Index);
}

nlohmann::json WizardWorld::ExpectChangedOnly(
    const std::vector<std::string> &Changeable) const {
  nlohmann::json Now = AdapterStates();
  ExpectSameBut(Started_, Now, Changeable);
  return Now;
}

std::vector<UINT32> WizardWorld::Events() const {
  std::vector<UINT32> Codes;
  for (const emu::SentEvent &Event : Server_->Qol()->Events()) {
    Codes.push_back(Event.EventCode);
  }
  return Codes;
}

bool WizardWorld::TraceHas(const std::string &Text) const {
  for (const std::string &Line : Server_->Setup()->TraceTexts()) {
    if (Line.find(Text) != std::string::npos) {
      return true;
    }
  }
  return false;
}

nlohmann::json DemoScenarioJson() {
  return nlohmann::json::parse(*host::FindEmbeddedFile("demo.json"));
}

nlohmann::json &AdapterOfFamily(nlohmann::json &Scenario, const std::string &Family) {
  for (nlohmann::json &Adapter : Scenario.at("adapters")) {
    if (Adapter.value("family", "") == Family) {
      return Adapter;
    }
  }
  throw std::runtime_error("the scenario has no " + Family + " adapter");
}

nlohmann::json ScenarioJson(const std::string &Name) {
  std::ifstream File(std::filesystem::path(RAIDCFG_SCENARIO_DIR) / Name);
  return nlohmann::json::parse(File);
}

host::Scenario ScenarioFrom(const nlohmann::json &Json) {
  return host::ParseScenario(Json, "test");
}

}  // namespace wizard_test
