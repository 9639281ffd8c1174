// Reading scenarios: defaults, volume file overrides, and the errors that
// keep a malformed scenario from running.
#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "native/Scenario.h"

namespace host_test {
namespace {

const host::VolumeFile *FindFile(const host::Scenario &Scenario,
                                 const std::string &Name) {
  for (const host::VolumeFile &File : Scenario.Files) {
    if (File.Name == Name) {
      return &File;
    }
  }
  return nullptr;
}

TEST(Scenario, EmptyScenarioHasTheProductFilesAndEveryProtocol) {
  host::Scenario Scenario = host::ParseScenario(json::object(), ".");
  ASSERT_NE(FindFile(Scenario, "pcidb.xml"), nullptr);
  ASSERT_NE(FindFile(Scenario, "raid.xml"), nullptr);
  EXPECT_EQ(FindFile(Scenario, "pcidb.xml")->Contents, ProductFile("pcidb.xml"));
  const host::HostProtocols &P = Scenario.Protocols;
  EXPECT_TRUE(P.Setup && P.GuiDriver && P.XmlParser && P.ShellCommand &&
              P.SlotInventory && P.QolCommands);
  EXPECT_TRUE(Scenario.Pci.empty());
}

TEST(Scenario, PciFunctionFieldsAndDefaults) {
  host::Scenario Scenario = host::ParseScenario(json::parse(R"({
    "pciFunctions": [
      {"location": "0001:af:1f.7", "vendorId": "0x9005", "deviceId": 655,
       "subClass": "07", "revision": "2"},
      {"location": "3b:00.0", "vendorId": "1000", "deviceId": "0016"}
    ]})"), ".");
  ASSERT_EQ(Scenario.Pci.size(), 2u);
  const host::PciFunction &F = Scenario.Pci[0];
  EXPECT_EQ(F.Location.Segment, 1);
  EXPECT_EQ(F.Location.Bus, 0xaf);
  EXPECT_EQ(F.Location.Device, 0x1f);
  EXPECT_EQ(F.Location.Function, 7);
  EXPECT_EQ(F.Identity.VendorId, 0x9005);
  EXPECT_EQ(F.Identity.DeviceId, 655);
  EXPECT_EQ(F.Identity.SubVendorId, 0);
  EXPECT_EQ(F.Identity.BaseClass, 0x01);
  EXPECT_EQ(F.Identity.SubClass, 0x07);
  EXPECT_EQ(F.Identity.ProgInterface, 0x00);
  EXPECT_EQ(F.Identity.RevisionId, 2);
  EXPECT_EQ(Scenario.Pci[1].Identity.SubClass, 0x04);  // RAID by default
}

TEST(Scenario, VolumeFilesCanBeReplacedAddedAndRemoved) {
  ScratchDirectory Dir;
  Dir.Write("mine.xml", "<pcidb/>");
  host::Scenario Scenario = host::ParseScenario(json::parse(R"({
    "volumeFiles": {
      "pcidb.xml": {"path": "mine.xml"},
      "raid.xml": null,
      "notes.txt": {"text": "hello"},
      "copy.xml": {"product": "raid.xml"}
    }})"), Dir.Path());
  EXPECT_EQ(FindFile(Scenario, "pcidb.xml")->Contents, "<pcidb/>");
  EXPECT_EQ(FindFile(Scenario, "raid.xml"), nullptr);
  EXPECT_EQ(FindFile(Scenario, "notes.txt")->Contents, "hello");
  EXPECT_EQ(FindFile(Scenario, "copy.xml")->Contents, ProductFile("raid.xml"));
}

TEST(Scenario, SlotInventoryKeepsNullSlotTexts) {
  host::Scenario Scenario = host::ParseScenario(json::parse(R"({
    "slotInventory": [{"slot": "PCIe Slot 3", "device": "A"},
                      {"slot": null, "device": "B"}, {"device": "C"}]})"),
                                                ".");
  ASSERT_EQ(Scenario.SlotInventory.size(), 3u);
  EXPECT_EQ(Scenario.SlotInventory[0].SlotText, u"PCIe Slot 3");
  EXPECT_FALSE(Scenario.SlotInventory[1].SlotText.has_value());
  EXPECT_FALSE(Scenario.SlotInventory[2].SlotText.has_value());
  EXPECT_EQ(Scenario.SlotInventory[2].DeviceText, u"C");
}

TEST(Scenario, AdapterRefersToItsFunctionByNameOrLocation) {
  json Json = FourFamilyScenario();
  Json["adapters"] = json::parse(R"([
    {"family": "megaraid", "pciFunction": "megaraid", "drives": []},
    {"family": "megaraid", "pciFunction": "af:00.0"}])");
  host::Scenario Scenario = host::ParseScenario(Json, ".");
  ASSERT_EQ(Scenario.Adapters.size(), 2u);
  EXPECT_EQ(Scenario.Adapters[0].PciIndex, 0u);
  EXPECT_EQ(Scenario.Adapters[1].PciIndex, 1u);
  EXPECT_TRUE(Scenario.Adapters[0].Description.contains("drives"));
}

TEST(Scenario, DemoServerLoads) {
  host::Scenario Demo = host::DemoScenario();
  EXPECT_FALSE(Demo.Name.empty());
  EXPECT_GE(Demo.Pci.size(), 5u);
  EXPECT_FALSE(Demo.Smbios.BiosVersion.empty());
}

TEST(Scenario, EveryShippedScenarioRunsCleanly) {
  std::size_t Count = 0;
  for (const auto &Entry :
       std::filesystem::directory_iterator(RAIDCFG_SCENARIO_DIR)) {
    if (Entry.path().extension() != ".json") {
      continue;
    }
    SCOPED_TRACE(Entry.path().string());
    DumpRun Run = RunDump(host::LoadScenarioFile(Entry.path()));
    EXPECT_TRUE(Run.Model.is_object());
    EXPECT_EQ(Run.LeakReport, "");
    EXPECT_TRUE(Run.Problems.empty());
    Count++;
  }
  EXPECT_GE(Count, 3u);
}

struct BadScenario {
  const char *Name;
  const char *Json;
  const char *Message;
};

class BadScenarioTest : public ::testing::TestWithParam<BadScenario> {};

TEST_P(BadScenarioTest, IsRefusedNamingTheKey) {
  try {
    host::ParseScenarioText(GetParam().Json, "test.json", ".");
    FAIL() << "accepted";
  } catch (const host::ScenarioError &Error) {
    EXPECT_NE(std::string(Error.what()).find(GetParam().Message),
              std::string::npos)
        << Error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Scenarios, BadScenarioTest,
    ::testing::Values(
        BadScenario{"NotJson", "{", "not valid JSON"},
        BadScenario{"NotAnObject", "[]", "expected an object"},
        BadScenario{"UnknownKey", R"({"pciFunction": []})",
                    "unknown key \"pciFunction\""},
        BadScenario{"BadLocation",
                    R"({"pciFunctions": [{"location": "3b:00", "vendorId": 1,
                        "deviceId": 1}]})",
                    "pciFunctions[0].location"},
        BadScenario{"DeviceOutOfRange",
                    R"({"pciFunctions": [{"location": "3b:20.0",
                        "vendorId": 1, "deviceId": 1}]})",
                    "not a PCI location"},
        BadScenario{"VendorTooLarge",
                    R"({"pciFunctions": [{"location": "3b:00.0",
                        "vendorId": "10000", "deviceId": 1}]})",
                    "vendorId: out of range"},
        BadScenario{"VendorNotHex",
                    R"({"pciFunctions": [{"location": "3b:00.0",
                        "vendorId": "10g0", "deviceId": 1}]})",
                    "not a hexadecimal number"},
        BadScenario{"MissingDeviceId",
                    R"({"pciFunctions": [{"location": "3b:00.0",
                        "vendorId": 1}]})",
                    "missing \"deviceId\""},
        BadScenario{"SameLocationTwice",
                    R"({"pciFunctions": [
                        {"location": "3b:00.0", "vendorId": 1, "deviceId": 1},
                        {"location": "0000:3b:00.0", "vendorId": 1,
                         "deviceId": 2}]})",
                    "pciFunctions[1]: a second function"},
        BadScenario{"SlotWithoutBus", R"({"smbios": {"slots": [{"slotId": 1}]}})",
                    "smbios.slots[0]: missing \"bus\""},
        BadScenario{"FileInASubdirectory",
                    R"({"volumeFiles": {"a/b.xml": {"text": ""}}})",
                    "volume's root"},
        BadScenario{"FileWithTwoSources",
                    R"({"volumeFiles": {"b.xml": {"text": "", "product":
                        "raid.xml"}}})",
                    "exactly one"},
        BadScenario{"UnknownProductFile",
                    R"({"volumeFiles": {"b.xml": {"product": "demo.json"}}})",
                    "no product file"},
        BadScenario{"MissingHostFile",
                    R"({"volumeFiles": {"b.xml": {"path": "no-such-file"}}})",
                    "cannot read"},
        BadScenario{"ProtocolNotBoolean", R"({"protocols": {"setup": 0}})",
                    "protocols.setup"},
        BadScenario{"AdapterWithoutFunction",
                    R"({"adapters": [{"family": "megaraid"}]})",
                    "\"pciFunction\" are required"},
        BadScenario{"AdapterOnMissingFunction",
                    R"({"adapters": [{"family": "megaraid",
                        "pciFunction": "3b:00.0"}]})",
                    "no PCI function"},
        BadScenario{"TwoAdaptersOnOneFunction",
                    R"({"pciFunctions": [{"name": "a", "location": "1:0.0",
                        "vendorId": 1, "deviceId": 1}],
                        "adapters": [{"family": "x", "pciFunction": "a"},
                                     {"family": "x", "pciFunction": "1:0.0"}]})",
                    "a second adapter"}),
    [](const auto &Info) { return std::string(Info.param.Name); });

}  // namespace
}  // namespace host_test
