// Shared pieces of the native host's tests.
#include "HostTestSupport.h"

#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/ShellCommand.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "emu/TextConversion.h"
#include "native/EmbeddedFiles.h"
#include "native/HostRun.h"

namespace host_test {

json FourFamilyScenario() {
  return json::parse(R"({
    "name": "one adapter of each family",
    "pciFunctions": [
      {"name": "megaraid", "location": "3b:00.0", "vendorId": "1000",
       "deviceId": "0016", "subVendorId": "1000", "subDeviceId": "9460"},
      {"name": "smartraid", "location": "af:00.0", "vendorId": "9005",
       "deviceId": "028F", "subVendorId": "9005", "subDeviceId": "0800",
       "subClass": "07"},
      {"name": "rste", "location": "00:17.0", "vendorId": "8086",
       "deviceId": "2826", "subVendorId": "8086", "subDeviceId": "2826"},
      {"name": "m2", "location": "02:00.0", "vendorId": "1B4B",
       "deviceId": "9230", "subVendorId": "1B4B", "subDeviceId": "9230",
       "subClass": "06", "progIf": "01"}
    ],
    "smbios": {"biosVersion": "T1.0", "slots": [
      {"slotId": 1, "bus": "02", "designation": "M.2 Slot 1"},
      {"slotId": 2, "bus": "3b", "designation": "PCIe Slot 2"},
      {"slotId": 6, "bus": "af", "designation": "PCIe Slot 6"}
    ]},
    "slotInventory": [
      {"slot": "PCIe Slot 2", "device": "MegaRAID"},
      {"slot": "PCIe Slot 6", "device": "SmartRAID"},
      {"slot": null, "device": "Intel RSTe"},
      {"slot": "M.2 Slot 1", "device": "Marvell M.2"}
    ],
    "adapters": [
      {"family": "megaraid", "pciFunction": "megaraid", "drives": [
        {"address": "252:0", "sizeMb": 1143455},
        {"address": "252:1", "sizeMb": 1143455, "interface": "SATA",
         "medium": "SSD", "model": "MZ7KH480HAHQ0D3"}]}
    ]
  })");
}

std::string ProductFile(const char *Name) {
  return std::string(*host::FindEmbeddedFile(Name));
}

DumpRun RunDump(const json &Scenario, const host::ServerOptions &Options,
                const host::FamilyRegistry &Families) {
  return RunDump(host::ParseScenario(Scenario, "."), Options, Families);
}

DumpRun RunDump(const host::Scenario &Scenario,
                const host::ServerOptions &Options,
                const host::FamilyRegistry &Families) {
  host::Server Server(Scenario, Options, Families);
  DumpRun Run;
  Run.Model = host::RunModuleForModel(Server);
  if (Server.Setup() != nullptr) {
    Run.Trace = Server.Setup()->TraceTexts();
  }
  Run.LeakReport = Server.Firmware().Memory().LeakReport();
  Run.Problems = Server.Problems();
  return Run;
}

std::string RunShellCommand(const std::string &CommandLine) {
  EFI_BOOT_SERVICES *BootServices =
      emu::Firmware::Current().BootServices();
  SHELL_COMMAND_PROTOCOL *Shell = nullptr;
  EXPECT_EQ(BootServices->LocateProtocol(&gShellCommandProtocolGuid, nullptr,
                                         reinterpret_cast<VOID **>(&Shell)),
            EFI_SUCCESS);
  if (Shell == nullptr) {
    return "";
  }
  std::vector<CHAR16> Output(4096);
  UINTN Size = Output.size() * sizeof(CHAR16);
  std::u16string Line = emu::Utf8ToUtf16(CommandLine);
  EXPECT_EQ(Shell->ExecuteCapture(Line.c_str(), Output.data(), &Size),
            EFI_SUCCESS);
  return emu::ToUtf8(Output.data());
}

namespace {

class FakeFamily : public host::VirtualFamily {
 public:
  std::vector<std::string> ToolNames() const override { return {"fake.efi"}; }
  std::string Run(const std::string &, const std::string &Line) override {
    return std::to_string(++Runs_) + ":" + Line + "\r\n";
  }
  json State() const override { return {{"runs", Runs_}}; }

 private:
  int Runs_ = 0;
};

}  // namespace

host::FamilyRegistry FakeFamilyRegistry() {
  host::FamilyRegistry Registry;
  Registry.Register("fake", [](const std::vector<host::AdapterSite> &) {
    return std::make_unique<FakeFamily>();
  });
  return Registry;
}

void ScratchDirectory::Write(const std::string &Name,
                             const std::string &Contents) const {
  std::ofstream(Path() / Name, std::ios::binary) << Contents;
}

std::string ScratchDirectory::Read(const std::string &Name) const {
  std::ifstream In(Path() / Name, std::ios::binary);
  std::ostringstream Contents;
  Contents << In.rdbuf();
  return Contents.str();
}

}  // namespace host_test
