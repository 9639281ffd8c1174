// Changing virtual M.2 adapters through the core's dispatch: each change
// does exactly what it says on the adapter (its state before, with the
// change applied, equals its state after) and the model follows.
#include "EsaDrvMgr.h"
#include "ProductConstants.h"
#include "MarvellWorld.h"

namespace marvell_test {
namespace {

using nlohmann::json;

class ChangeTest : public OneM2World {
 protected:
  RAID_VOLUME_PARAMETER *Parameter(UINT8 Level, std::vector<UINT32> Drives,
                                   UINT32 StripeKb) {
    Drives.push_back(RAID_DRIVE_LIST_END);
    Drives_ = Drives;
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller->Id;
    Parameter_.DriveList = Drives_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Drives_.size() - 1);
    Parameter_.RaidLevel = Level;
    Parameter_.Name = Name_;
    Parameter_.Reserved = 1;
    Parameter_.StripeSize = StripeKb;
    return &Parameter_;
  }
  // The adapter's state after the change must be Before with Edit applied,
  // and the refreshed model must match it.
  VOID ExpectState(const std::function<void(json &)> &Edit) {
    json Expected = Before;
    Edit(Expected);
    EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
    ExpectModelMatches(kBus);
  }

  RAID_VOLUME_PARAMETER Parameter_ = {};
  std::vector<UINT32> Drives_;
  CHAR16 Name_[17] = u"Boot";
};

RAID_ARRAY *OnlyArray(RAID_CONTROLLER *Controller) {
  return uefi::RecordOf<&RAID_ARRAY::Link>(
      GetFirstNode(&Controller->ArrayList));
}

struct CreateCase {
  UINT8 Level;
  UINT32 Stripe;
  const char *Size;  // the smaller drive's capacity, twice for RAID 0
};

class CreateTest : public ChangeTest,
                   public ::testing::WithParamInterface<CreateCase> {};

TEST_P(CreateTest, OverBothDrives) {
  const CreateCase &C = GetParam();
  StartWith(TwoReadyDrives());
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(CreateVolume(Parameter(C.Level, {0, 1}, C.Stripe), 1, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_.front(),
            "mvsetup.efi 0 create -o vd -r" + std::to_string(C.Level) +
                " -d 0,1 -n Boot -b " + std::to_string(C.Stripe) +
                " --waiveconfirmation");
  ExpectState([&C](json &State) {
    State["drives"][0]["status"] = "online";
    State["drives"][1]["status"] = "online";
    State["volumes"] = json::array({{{"id", 0},
                                     {"name", "Boot"},
                                     {"level", C.Level},
                                     {"status", "optimal"},
                                     {"stripeSize", C.Stripe},
                                     {"size", C.Size},
                                     {"drives", {0, 1}}}});
  });
}

INSTANTIATE_TEST_SUITE_P(Levels, CreateTest,
                         ::testing::Values(CreateCase{1, 64, "228936 M"},
                                           CreateCase{0, 32, "457873 M"}));

// A drive already in use: the adapter refuses, the output is not judged,
// and only the unchanged model after the re-read shows it.
TEST_F(ChangeTest, RefusedCreateLeavesAdapterAndModelAsTheyWere) {
  StartWith(Mirrored(), "mnv_cli.efi");
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(CreateVolume(Parameter(1, {0, 1}, 64), 1, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_.front(),
            "mnv_cli.efi 0 create -o vd -r1 -d 0,1 -n Boot -b 64 "
            "--waiveconfirmation");
  ExpectState([](json &) {});
}

TEST_F(ChangeTest, DeleteArrayDeletesOnlyItsFirstVolume) {
  json Two = Mirrored();
  Two["volumes"].push_back(json::parse(
      R"({"id": 3, "name": "Data", "level": 1, "stripeSize": 64,
          "size": "1000 M", "drives": [0, 1]})"));
  StartWith(Two);
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteArray(OnlyArray(Controller), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_.front(),
            "mvsetup.efi 0 delete -o vd -i 0 -f --waiveconfirmation");
  ExpectState([](json &State) { State["volumes"].erase(0); });
  EXPECT_EQ(CountListEntries(&OnlyArray(Controller)->SegmentList), 1u);
}

TEST_F(ChangeTest, DeleteVolumeFreesItsDrives) {
  StartWith(Mirrored(), "mnv_cli.efi");
  RAID_VOLUME *Volume = uefi::RecordOf<&RAID_VOLUME::Link>(
      GetFirstNode(&OnlyArray(Controller)->SegmentList));
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteVolume(Volume, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  ExpectState([](json &State) {
    State["volumes"] = json::array();
    State["drives"][0]["status"] = "ready";
    State["drives"][1]["status"] = "ready";
  });
  EXPECT_EQ(CountListEntries(&Controller->ArrayList), 0u);
  EXPECT_EQ(Controller->UnconfiguredDriveCount, 2u);
}

TEST_F(ChangeTest, DriveStateChangesRunNothing) {
  StartWith(TwoReadyDrives());
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(SetPhysicalDriveState(Controller, Controller->DriveTable[0],
                                  RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(SetAllPhysicalDriveState(Controller, RAID_STATE_JBOD, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(Commands_.empty());
  ExpectState([](json &) {});
}

// After a change an mvsetup.efi adapter's driver is only connected again,
// since the boot drives sit behind it; the one board named by the product
// constant and every mnv_cli.efi adapter take the full reconnect.
struct ReconnectCase {
  bool NamesTheBoard;  // the profile's name holds the board's code name
  const char *Tool;
  bool Disconnects;
};

// "M.2 <code name>" of the board that takes the full reconnect.
std::string BoardProfile() {
  std::string Name = "M.2 ";
  for (const CHAR16 *C = kMarvellFullReconnectBoard; *C != 0; C++) {
    Name += static_cast<char>(*C);
  }
  return Name;
}

class ReconnectTest : public ChangeTest,
                      public ::testing::WithParamInterface<ReconnectCase> {};

TEST_P(ReconnectTest, FollowsTheToolAndTheBoard) {
  if (GetParam().NamesTheBoard) {
    ProfileName_ = BoardProfile();
  }
  StartWith(Mirrored(), GetParam().Tool);
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteArray(OnlyArray(Controller), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  std::vector<emu::ControllerCallKind> Kinds;
  for (const auto &Call : Firmware_->Controllers().Calls()) {
    EXPECT_EQ(Call.Controller, Controller->Private->PciIoHandle);
    Kinds.push_back(Call.Kind);
  }
  if (GetParam().Disconnects) {
    EXPECT_EQ(Kinds, (std::vector<emu::ControllerCallKind>{
                         emu::ControllerCallKind::kDisconnect,
                         emu::ControllerCallKind::kConnect}));
    EXPECT_TRUE(TraceHas("[UpdateRaidControllerDeviceDriver] Disconnect the "
                         "controller driver"));
  } else {
    EXPECT_EQ(Kinds, std::vector<emu::ControllerCallKind>{
                         emu::ControllerCallKind::kConnect});
    EXPECT_TRUE(TraceHas(
        "[UpdateRaidControllerDeviceDriver] M.2 card skip the operation"));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Boards, ReconnectTest,
    ::testing::Values(ReconnectCase{false, "mvsetup.efi", false},
                      ReconnectCase{true, "mvsetup.efi", true},
                      ReconnectCase{false, "mnv_cli.efi", true}));

}  // namespace
}  // namespace marvell_test
