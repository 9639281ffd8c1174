// The emulated server with virtual M.2 adapters behind the M.2 tools.
#include "MarvellWorld.h"

#include <set>

#include "ControllerJson.h"
#include "EsaDrvMgr.h"
#include "sim/marvell/MarvellJson.h"

namespace marvell_test {

using nlohmann::json;

namespace {

// The pcidb.xml id of a profile naming Tool: one family id per tool.
std::string StorageIdOf(const std::string &Profile, const std::string &Tool) {
  return Tool == "mvsetup.efi" ? Profile : Profile + " " + Tool;
}

constexpr UINT16 DeviceOf(UINT8 Bus) { return 0x9230 + Bus; }

// A size text in thousandths of a GB, as the module is to read it.
uint64_t Thousandths(const std::string &Size, bool Drive) {
  const uint64_t Figure = std::stoull(Size) * 1000;
  const char Unit = Size.back();
  switch (Unit) {
    case 'T': return Figure * 1024;
    case 'M': return Figure / 1024;
    case 'K': return Drive ? Figure / 1048576 : Figure;
    default: return Figure;
  }
}

uint32_t DriveState(const std::string &Status) {
  if (Status == "ready") return 35;
  if (Status == "online") return 36;
  if (Status == "rebuild") return 40;
  return 58;
}

uint32_t VolumeState(const std::string &Status) {
  const std::pair<const char *, uint32_t> kStates[] = {
      {"online", 36}, {"offline", 37}, {"optimal", 38},
      {"critical", 39}, {"degraded", 41}, {"foreign", 42}};
  for (const auto &[Word, Code] : kStates) {
    if (Status == Word) return Code;
  }
  return 58;
}

}  // namespace

PciFunction M2At(UINT8 Bus) {
  return {Bus, 0, 0, kMarvell, DeviceOf(Bus), kMarvell, DeviceOf(Bus), 0x06,
          0x01};
}

MarvellWorld::~MarvellWorld() {
  if (!Finalized_) {
    Finalize();
  }
}

VOID MarvellWorld::AddAdapter(UINT8 Bus, const json &Content,
                              const std::string &Tool) {
  AddFunction(M2At(Bus));
  json Adapter = Content;
  Adapter["pci"] = {{"bus", Bus},
                    {"vendorId", kMarvell},
                    {"deviceId", DeviceOf(Bus)},
                    {"subVendorId", kMarvell},
                    {"subDeviceId", DeviceOf(Bus)}};
  Tool_.AddAdapter(sim::marvell::AdapterFromJson(Adapter));
  Functions_.push_back({Bus, Tool});
}

VOID MarvellWorld::Start() {
  std::vector<std::string> Storage;
  std::vector<std::string> Blocks;
  std::set<std::string> Tools;
  for (const auto &[Bus, Tool] : Functions_) {
    Storage.push_back(core_test::StorageElement(
        StorageIdOf(ProfileName_, Tool), kMarvell, DeviceOf(Bus), kMarvell, DeviceOf(Bus),
        "Marvell M.2 RAID Adapter"));
    if (Tools.insert(Tool).second) {
      Blocks.push_back(
          core_test::ControllerBlock(StorageIdOf(ProfileName_, Tool), Tool));
    }
  }
  WriteFile("pcidb.xml", core_test::PcidbXml(Storage));
  WriteFile("raid.xml", core_test::RaidXml(Blocks));
  Shell_->SetHandler([this](const std::string &CommandLine) {
    Commands_.push_back(CommandLine);
    return Tool_.Run(CommandLine);
  });
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(InitializeRaid(&ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, 0u);
}

RAID_CONTROLLER *MarvellWorld::ControllerAt(UINT8 Bus) {
  for (RAID_CONTROLLER *Controller : Controllers()) {
    if (Controller->Private != nullptr && Controller->Private->Bus == Bus) {
      return Controller;
    }
  }
  ADD_FAILURE() << "no controller at bus " << int(Bus);
  return nullptr;
}

json MarvellWorld::StateAt(UINT8 Bus) const {
  for (const sim::marvell::Adapter &Adapter : Tool_.Adapters()) {
    if (Adapter.Pci.Bus == Bus) {
      return sim::marvell::AdapterToJson(Adapter);
    }
  }
  ADD_FAILURE() << "no adapter at bus " << int(Bus);
  return json();
}

VOID MarvellWorld::ExpectModelMatches(UINT8 Bus) {
  RAID_CONTROLLER *Controller = ControllerAt(Bus);
  ASSERT_NE(Controller, nullptr);
  Refresh(Controller);
  EXPECT_EQ(core_test::ModelJson(Controller).dump(1),
            ExpectedModel(StateAt(Bus)).dump(1));
}

VOID OneM2World::StartWith(const json &Content, const std::string &Tool) {
  AddAdapter(kBus, Content, Tool);
  Start();
  Controller = Refresh(ControllerAt(kBus));
  Before = StateAt(kBus);
  ClearCommands();
}

json ExpectedModel(const json &State) {
  const bool HasArray = !State["volumes"].empty();
  json Table = json::array();
  json Unconfigured = json::array();
  json Members = json::array();
  for (const json &Drive : State["drives"]) {
    const uint32_t Id = Drive["id"];
    const std::string Status = Drive["status"];
    const uint32_t Code = DriveState(Status);
    json Owner = nullptr;
    if (Code == 35) {
      Owner = "controller";
      Unconfigured.push_back(Id);
    } else if (Code != 58 && HasArray) {
      Owner = "Array0";
      Members.push_back(Id);
    }
    Table.push_back({{"Id", Id},
                     {"Location", "SSD" + std::to_string(Id)},
                     {"Model", Drive["model"]},
                     {"MediaType", Drive["type"] == "SATA" ? 1 : 3},
                     {"State", Code},
                     {"SizeFigure", Thousandths(Drive["size"], true)},
                     {"SizeUnit", 1},
                     {"Role", Code == 58 || Code == 35 ? 0 : 1},
                     {"Position", {0, 0, 0, 0, 0}},
                     {"Owner", Owner}});
  }
  json Arrays = json::array();
  if (HasArray) {
    json Segments = json::array();
    uint64_t Size = 0;
    for (const json &Volume : State["volumes"]) {
      const uint64_t Figure = Thousandths(Volume["size"], false);
      Size += Figure;
      Segments.push_back({{"Id", Volume["id"]},
                          {"Name", Volume["name"]},
                          {"IsVolume", 1},
                          {"SizeFigure", Figure},
                          {"SizeUnit", 1},
                          {"State", VolumeState(Volume["status"])},
                          {"StripeSize", Volume["stripeSize"]},
                          {"ReadPolicy", 0},
                          {"WritePolicy", 0},
                          {"IoPolicy", 0},
                          {"DiskCachePolicy", 0}});
    }
    const json &Last = State["volumes"].back();
    Arrays.push_back({{"Id", 0},
                      {"Name", "Array 0"},
                      {"RaidLevel", Last["level"]},
                      {"SizeFigure", Size},
                      {"SizeUnit", 1},
                      {"FreeCapacity", 0},
                      {"FreeCapacityUnit", 1},
                      {"MemberDriveCount", Last["drives"].size()},
                      {"DedicatedSpareCount", 0},
                      {"VolumeCount", State["volumes"].size()},
                      {"FreeSegmentCount", 0},
                      {"Drives", Members},
                      {"Segments", Segments}});
  }
  return {{"ProductName", nullptr},
          {"SerialNumber", State["serialNumber"]},
          {"FirmwareVersion", State["firmwareVersion"]},
          {"DiskDriveCount", Table.size()},
          {"UnconfiguredDriveCount", Unconfigured.size()},
          {"GlobalSpareCount", 0},
          {"DriveTable", Table},
          {"PhysicalDrives", Unconfigured},
          {"SpareDrives", json::array()},
          {"Arrays", Arrays}};
}

json TwoReadyDrives() {
  return json::parse(R"({
    "serialNumber": "M2SN4C1A07",
    "drives": [
      {"id": 0, "size": "234431064 K", "model": "MTFDDAV240TDU"},
      {"id": 1, "size": "234441064 K", "model": "MTFDDAV240TDU"}
    ]})");
}

json Mirrored() {
  json Adapter = TwoReadyDrives();
  Adapter["drives"][0]["status"] = "online";
  Adapter["drives"][1]["status"] = "rebuild";
  Adapter["volumes"] = json::parse(R"([
    {"id": 0, "name": "VD_R1_1", "level": 1, "status": "degraded",
     "stripeSize": 64, "size": "457798 M", "drives": [0, 1]}])");
  return Adapter;
}

}  // namespace marvell_test
