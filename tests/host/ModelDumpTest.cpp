// The model dump of whole servers: what the module discovers from the
// scenario's PCI functions, SMBIOS slots, slot inventory and volume files.
#include <gtest/gtest.h>

#include <algorithm>

#include "HostTestSupport.h"

namespace host_test {
namespace {

struct FamilyExpectation {
  const char *StorageId;
  const char *Name;
  unsigned SlotNumber;
  unsigned Bus, Device;
  unsigned VendorId, DeviceId, SubVendorId, SubDeviceId;
  const char *ToolName;
  const char *Signature;
  unsigned CardId;
};

// What pcidb.xml and raid.xml say of the four functions of
// FourFamilyScenario, in slot inventory order.
const FamilyExpectation kFamilies[] = {
    {"LSI", "MegaRAID 9460-8i", 2, 0x3b, 0, 0x1000, 0x0016, 0x1000, 0x9460,
     "storcli.efi", "$lsi", 0},
    {"MCHP", "SmartRAID 3154-8i", 6, 0xaf, 0, 0x9005, 0x028F, 0x9005, 0x0800,
     "arcconf.efi", "$arc", 1},
    {"RSTe", "Intel RSTe SATA RAID Controller", 0xFFFF, 0x00, 0x17, 0x8086,
     0x2826, 0x8086, 0x2826, "RCfgSata.efi", "rste", 0},
    {"M.2", "Marvell 88SE9230 M.2 RAID Adapter", 1, 0x02, 0, 0x1B4B, 0x9230,
     0x1B4B, 0x9230, "mvsetup.efi", "$m.2", 0},
};

TEST(ModelDump, OneControllerPerFamilyAsTheProductDataSays) {
  DumpRun Run = RunDump(FourFamilyScenario());
  ASSERT_EQ(Run.Model["status"], "Success");
  EXPECT_EQ(Run.Model["errorCode"], 0);
  const auto &Controllers = Run.Model["controllers"];
  ASSERT_EQ(Controllers.size(), std::size(kFamilies));
  for (std::size_t I = 0; I < std::size(kFamilies); I++) {
    const FamilyExpectation &Want = kFamilies[I];
    const auto &Got = Controllers[I];
    SCOPED_TRACE(Want.StorageId);
    EXPECT_EQ(Got["Id"], I);
    EXPECT_EQ(Got["Name"], Want.Name);
    EXPECT_EQ(Got["SlotNumber"], Want.SlotNumber);
    const auto &Private = Got["Private"];
    EXPECT_EQ(Private["StorageId"], Want.StorageId);
    EXPECT_EQ(Private["Bus"], Want.Bus);
    EXPECT_EQ(Private["Device"], Want.Device);
    EXPECT_EQ(Private["Function"], 0);
    EXPECT_EQ(Private["VendorId"], Want.VendorId);
    EXPECT_EQ(Private["DeviceId"], Want.DeviceId);
    EXPECT_EQ(Private["SubVendorId"], Want.SubVendorId);
    EXPECT_EQ(Private["SubDeviceId"], Want.SubDeviceId);
    EXPECT_EQ(Private["Signature"], Want.Signature);
    EXPECT_EQ(Private["CardId"], Want.CardId);
    EXPECT_EQ(Got["OutputCut"], 0);
    ASSERT_TRUE(Got["Capability"].is_object());
    EXPECT_EQ(Got["Capability"]["ControllerName"], Want.StorageId);
    EXPECT_EQ(Got["Capability"]["ToolName"], Want.ToolName);
    EXPECT_FALSE(Got["Capability"]["Levels"].empty());
  }
}

TEST(ModelDump, CapabilityListsFollowRaidXml) {
  DumpRun Run = RunDump(FourFamilyScenario());
  const auto &Lsi = Run.Model["controllers"][0]["Capability"];
  EXPECT_EQ(Lsi["Levels"].size(), 7u);
  EXPECT_EQ(Lsi["Levels"][4],
            host::ModelJson({{"Name", "10"}, {"Level", 10}, {"IsDefault", 0},
                  {"MinPhysicalDrives", 4}, {"MaxPhysicalDrives", 240},
                  {"MaxLogicalDrives", 16}}));
  EXPECT_EQ(Lsi["WritePolicies"][1],
            host::ModelJson({{"Name", "Write Back"}, {"Value", 1}, {"IsDefault", 1}}));
  EXPECT_EQ(Lsi["StripeSizes"][2],
            host::ModelJson({{"Name", "256K"}, {"Value", 256}, {"IsDefault", 1}}));
  for (const char *List : {"ReadPolicies", "IoPolicies", "DiskCachePolicies"}) {
    EXPECT_FALSE(Lsi[List].empty()) << List;
  }
}

std::vector<std::string> KeysOf(const host::ModelJson &Object) {
  std::vector<std::string> Keys;
  for (const auto &Item : Object.items()) {
    Keys.push_back(Item.key());
  }
  return Keys;
}

TEST(ModelDump, ControllerAndPrivateKeysInOrder) {
  DumpRun Run = RunDump(FourFamilyScenario());
  const auto &Controller = Run.Model["controllers"][0];
  EXPECT_EQ(KeysOf(Controller),
            (std::vector<std::string>{
                "Id", "ToolType", "Name", "FirmwareVersion", "SerialNumber",
                "SlotNumber", "DiskDriveCount", "UnconfiguredDriveCount",
                "GlobalSpareCount", "DriveTable", "PhysicalDrives",
                "SpareDrives", "Arrays", "Private", "Capability",
                "OutputCut"}));
  EXPECT_EQ(KeysOf(Controller["Private"]),
            (std::vector<std::string>{
                "CardId", "StorageId", "ProductName", "Bus", "Device",
                "Function", "VendorId", "DeviceId", "SubVendorId",
                "SubDeviceId", "Flags", "Signature"}));
}

// Every position value is printed, the ones MegaRAID leaves unused too.
TEST(ModelDump, DriveKeysInOrderWithAllFivePositionValues) {
  DumpRun Run = RunDump(FourFamilyScenario());
  const auto &Drives = Run.Model["controllers"][0]["PhysicalDrives"];
  ASSERT_EQ(Drives.size(), 2u);
  EXPECT_EQ(KeysOf(Drives[1]),
            (std::vector<std::string>{"Id", "Location", "Model", "MediaType",
                                      "State", "SizeFigure", "SizeUnit",
                                      "Role", "Position"}));
  EXPECT_EQ(Drives[1]["Location"], "252:1");
  EXPECT_EQ(Drives[1]["Position"], host::ModelJson({252, 1, 0, 0, 0}));
}

// Drives "<prefix><n>" for n in [0, Count).
json Addresses(const std::string &Prefix, int First, int Count) {
  json List = json::array();
  for (int N = First; N < First + Count; N++) {
    List.push_back(Prefix + std::to_string(N));
  }
  return List;
}

// A MegaRAID adapter with 240 drives in eight RAID 0 groups: its "/c0 show"
// is larger than the shared output buffer.
json LargeMegaRaid() {
  json Adapter = {{"family", "megaraid"}, {"pciFunction", "megaraid"}};
  for (int Slot = 0; Slot < 240; Slot++) {
    Adapter["drives"].push_back(
        {{"address", "252:" + std::to_string(Slot)}, {"sizeMb", 953344}});
  }
  for (int Group = 0; Group < 8; Group++) {
    Adapter["driveGroups"].push_back(
        {{"members", Addresses("252:", Group * 30, 30)},
         {"virtualDrives",
          {{{"name", "vd" + std::to_string(Group)}, {"sizeMb", 102400}}}}});
  }
  return Adapter;
}

// A SmartRAID adapter whose getconfig report is larger than the head of
// it the backend keeps for its second parse.
json LargeSmartRaid() {
  json Adapter = {{"family", "microchip"}, {"pciFunction", "smartraid"},
                  {"slot", 6}};
  for (int Device = 0; Device < 240; Device++) {
    Adapter["devices"].push_back(
        {{"address", "0:" + std::to_string(Device)}, {"sizeMb", 953344}});
  }
  for (int Array = 0; Array < 8; Array++) {
    Adapter["arrays"].push_back(
        {{"raidLevel", 0},
         {"members", Addresses("0:", Array * 30, 30)},
         {"logicalDrives", {{{"name", "ld" + std::to_string(Array)}}}}});
  }
  return Adapter;
}

// An output cut at its buffer's end is read as far as it arrived, but the
// loss is traced and the controller marked; the other adapters are not.
TEST(ModelDump, ACutToolOutputIsTracedAndMarksItsController) {
  const struct {
    const char *Family;
    json Adapter;
    std::size_t Controller;  // its place in the dump
    const char *Caller;
    const char *Held;  // bytes the cut buffer holds
  } Cases[] = {
      {"megaraid", LargeMegaRaid(), 0, "LsiGetControllerInfo", "80960"},
      {"microchip", LargeSmartRaid(), 1, "MchpGetControllerInfo", "404800"},
  };
  for (const auto &Case : Cases) {
    SCOPED_TRACE(Case.Family);
    json Scenario = FourFamilyScenario();
    json &Adapters = Scenario["adapters"];
    if (Adapters[0]["family"] == Case.Family) {
      Adapters[0] = Case.Adapter;
    } else {
      Adapters.push_back(Case.Adapter);
    }
    DumpRun Run = RunDump(Scenario);
    ASSERT_EQ(Run.Model["status"], "Success");
    const auto &Controllers = Run.Model["controllers"];
    for (std::size_t I = 0; I < Controllers.size(); I++) {
      EXPECT_EQ(Controllers[I]["OutputCut"], I == Case.Controller ? 1 : 0)
          << "controller " << I;
    }
    const std::string Head =
        std::string("[") + Case.Caller + "]Tool output cut: it needs ";
    const std::string Tail = std::string(" bytes, the buffer holds ") +
                             Case.Held + "; read as far as it arrived";
    EXPECT_TRUE(std::any_of(Run.Trace.begin(), Run.Trace.end(),
                            [&](const std::string &Line) {
                              return Line.rfind(Head, 0) == 0 &&
                                     Line.find(Tail) != std::string::npos;
                            }))
        << Head << "..." << Tail;
    // What arrived is read: the cut drops drives, not the controller.
    EXPECT_GT(Controllers[Case.Controller]["DiskDriveCount"], 100);
    EXPECT_EQ(Run.LeakReport, "");
  }
}

TEST(ModelDump, NoPoolAllocationOutlivesTheRun) {
  json MissingRaidXml = FourFamilyScenario();
  MissingRaidXml["volumeFiles"]["raid.xml"] = nullptr;
  json MissingPcidb = FourFamilyScenario();
  MissingPcidb["volumeFiles"]["pcidb.xml"] = nullptr;
  for (const json &Scenario :
       {FourFamilyScenario(), MissingRaidXml, MissingPcidb}) {
    DumpRun Run = RunDump(Scenario);
    EXPECT_EQ(Run.LeakReport, "");
  }
}

TEST(ModelDump, HostWithoutSetupProtocolStillDumps) {
  json Scenario = FourFamilyScenario();
  Scenario["protocols"]["setup"] = false;
  DumpRun Run = RunDump(Scenario);
  EXPECT_EQ(Run.Model["status"], "Success");
  EXPECT_EQ(Run.Model["controllers"].size(), 4u);
  EXPECT_TRUE(Run.Trace.empty());
}

}  // namespace
}  // namespace host_test
