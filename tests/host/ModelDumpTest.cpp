// The model dump of whole servers: what the module discovers from the
// scenario's PCI functions, SMBIOS slots, slot inventory and volume files.
#include <gtest/gtest.h>

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
                "SpareDrives", "Arrays", "Private", "Capability"}));
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
