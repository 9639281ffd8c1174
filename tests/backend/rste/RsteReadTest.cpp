// Reading an engine: which tool build answers, the version line with the
// BIOS part, and the whole read through RsteGetControllerInfo.
#include <Library/UefiBootServicesTableLib.h>

#include "RsteWorld.h"

namespace rste_test {
namespace {

const char *kCandidates[] = {"RCfgSata.efi", "RCfgSata_V55.efi",
                             "RCfgSata_V53.efi", "RCfgSata_V52.efi",
                             "RCfgSata_V50.efi"};

class RsteToolSearchTest : public RsteWorld {};

TEST_F(RsteToolSearchTest, NoCandidateAnsweringKeepsTheFirstName) {
  AnswerOthers("'RCfgSata.efi' is not recognized as a command\n");
  RsteToolInit();
  std::vector<std::string> Expected;
  for (const char *Name : kCandidates) {
    Expected.push_back(std::string(Name) + " /V");
  }
  EXPECT_EQ(Commands(), Expected);
  EXPECT_EQ(Narrow(gRsteTool), "RCfgSata.efi");
  EXPECT_EQ(gRsteToolSelected, 1);
  EXPECT_EQ(gRaidToolOutput[0], 0);
}

TEST_F(RsteToolSearchTest, TheFirstBuildIntroducingItselfAsIntelIsKept) {
  Answer("RCfgSata_V53.efi /V", VersionReport("Intel RSTe SATA EFI Driver Version"));
  Answer("RCfgSata_V52.efi /V", VersionReport("Intel RSTe SATA EFI Driver Version"));
  RsteToolInit();
  EXPECT_EQ(Commands(),
            (std::vector<std::string>{"RCfgSata.efi /V", "RCfgSata_V55.efi /V",
                                      "RCfgSata_V53.efi /V"}));
  EXPECT_EQ(Narrow(gRsteTool), "RCfgSata_V53.efi");
  TraceHas("[RsteToolInit]Setup the tool to RCfgSata_V53.efi\n");
  EXPECT_EQ(gRaidToolOutput[0], 0);
}

TEST_F(RsteToolSearchTest, TheSearchRunsOnceForTheModulesLife) {
  Answer("RCfgSata_V50.efi /V", VersionReport("Intel RSTe SATA EFI Driver Version"));
  AnswerOthers("");
  ReadModel();
  ReadModel();
  size_t Searches = 0;
  for (const std::string &Line : Commands()) {
    Searches += Line == "RCfgSata.efi /V" ? 1 : 0;
  }
  EXPECT_EQ(Searches, 1u);
  EXPECT_EQ(Commands().back(), "RCfgSata_V50.efi /ST");
}

class RsteVersionTest : public RsteWorld {};

TEST_F(RsteVersionTest, BiosPartAndDriverVersionMakeTheFirmwareVersion) {
  struct Case {
    std::string Bios;
    std::string Driver;
    std::string Expected;
    UINT8 VrocLayout;
  } Cases[] = {
      {"-[TEE180J-2.81]-", "Intel RSTe SATA EFI Driver Version",
       "TEE180J (5.5.0.1028)", 0},
      {"SE5C620-[86B.02-0017", "Intel VROC SATA EFI Driver Version",
       "86B.02 (5.5.0.1028)", 1},
      {"X-[NOEND", "Intel VROC sSATA EFI Driver Version", " (5.5.0.1028)", 1},
      {"-[A", "Intel VROC SATA EFI Driver Version", " (5.5.0.1028)", 1},
      {"1.0.0", "Some Other Driver Version", " ()", 1},
      {"-[ABCDEFGHIJKLMNOPQRSTUVWXYZ-", "Intel RSTe SATA EFI Driver Version",
       "ABCDEFGHIJKLMNOPQRST (5.5.0.1028)", 0},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Bios);
    RsteResetState();
    InstallSmbios(C.Bios);
    UINT32 ErrorCode = 0;
    EXPECT_EQ(ParseControllerVersion(LoadToolOutput(VersionReport(C.Driver)),
                                     Controller_, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(Narrow(Controller_->FirmwareVersion), C.Expected);
    EXPECT_EQ(gRsteVrocLayout, C.VrocLayout);
    Smbios_.reset();
  }
}

TEST_F(RsteVersionTest, WithoutSmbiosTheBiosPartIsEmpty) {
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseControllerVersion(
                LoadToolOutput(VersionReport("Intel RSTe SATA EFI Driver Version")),
                Controller_, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Narrow(Controller_->FirmwareVersion), " (5.5.0.1028)");
}

TEST_F(RsteVersionTest, TheVersionIsCutAtFiftyCharacters) {
  UINT32 ErrorCode = 0;
  std::string Long = std::string(kCandidates[0]) + "\nIntel RSTe SATA EFI "
                     "Driver Version: " + std::string(80, '7') + "\n";
  EXPECT_EQ(ParseControllerVersion(LoadToolOutput(Long), Controller_, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Narrow(Controller_->FirmwareVersion).size(), 50u);
}

class RsteReadTest : public RsteWorld {};

TEST_F(RsteReadTest, ACurrentModelIsNotReadAgain) {
  AnswerOthers("");
  ReadModel();
  MarkCommands();
  Controller_->Private->Flags |= RAID_FLAG_OUTPUT_VALID;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteGetControllerInfo(Controller_, nullptr, &ErrorCode), EFI_SUCCESS);
  EXPECT_TRUE(NewCommands().empty());
  TraceHas("[RsteGetControllerInfo] Info is up to date.\n");
}

TEST_F(RsteReadTest, EachReportIsRunParsedAndTraced) {
  InfoText Info;
  Info.Disks = 2;
  Info.ArraySizeLines = {" Size: TotalMB: 1907458 FreeMB:0"};
  Info.Volumes = {VolumeText{}};
  Info.DiskBlocks = {DiskText{.Number = "0", .State = "(Member Disk)", .ArrayId = "0"},
                     DiskText{.Number = "1", .State = "(Member Disk)", .ArrayId = "0"}};
  AnswerReads(VersionReport("Intel RSTe SATA EFI Driver Version"),
              InfoReport(Info), StatusReport({{"Volume_1", "Degraded"}}, 6));
  ReadModel();
  EXPECT_EQ(Commands(), (std::vector<std::string>{
                            "RCfgSata.efi /V", "RCfgSata.efi /V",
                            "RCfgSata.efi /I", "RCfgSata.efi /ST"}));
  TraceHas("[RsteGetControllerInfo]Status : Success\n");
  EXPECT_NE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID, 0u);
  RAID_ARRAY *Group = Array(0);
  ASSERT_NE(Group, nullptr);
  EXPECT_EQ(Group->RaidLevel, 1);
  EXPECT_EQ(Group->MemberDriveCount, 2u);
  EXPECT_EQ(SegmentNames(Group), std::vector<std::string>{"Volume_1"});
  RAID_VOLUME *Volume = BASE_CR(Group->SegmentList.ForwardLink, RAID_VOLUME, Link);
  EXPECT_EQ(Volume->State, static_cast<UINT32>(RAID_STATE4_DEGRADED));
  EXPECT_EQ(Volume->StripeSize, static_cast<UINT32>(RAID_STRIPE_SIZE_OTHER));
  // 0x37E436B0 blocks of 512 bytes: 447.131 GB.
  EXPECT_EQ(Volume->SizeFigure, 447131u);
  EXPECT_EQ(Controller_->DiskDriveCount, 2u);
}

// A model the pool could not hold whole is not shown at all: a missing
// disk would shift the rows the operator picks from.
TEST_F(RsteReadTest, AShortPoolShowsNoPartialModel) {
  InfoText Info;
  Info.Disks = 3;
  Info.ArraySizeLines = {" Size: TotalMB: 1907458 FreeMB:5000"};
  Info.Volumes = {VolumeText{}};
  Info.DiskBlocks = {DiskText{.Number = "0", .State = "(Member Disk)", .ArrayId = "0"},
                     DiskText{.Number = "1", .State = "(Member Disk)", .ArrayId = "0"},
                     DiskText{.Number = "2"}};
  AnswerReads(VersionReport("Intel RSTe SATA EFI Driver Version"), InfoReport(Info),
              StatusReport({{"Volume_1", "Normal"}}, 6));
  ReadModel();
  for (UINT64 N = 1;; N++) {
    Controller_->Private->Flags = 0;
    Firmware_->Memory().FailNthAllocation(N);
    UINT32 ErrorCode = 0;
    EFI_STATUS Status = RsteGetControllerInfo(Controller_, nullptr, &ErrorCode);
    Firmware_->Memory().ClearFaults();
    if (Status == EFI_SUCCESS) {
      EXPECT_EQ(Controller_->DiskDriveCount, 3u);
      break;
    }
    EXPECT_EQ(Status, EFI_OUT_OF_RESOURCES) << N;
    EXPECT_EQ(ErrorCode, RAID_ERROR_OUT_OF_RESOURCES) << N;
    EXPECT_EQ(Controller_->DiskDriveCount, 0u) << N;
    EXPECT_TRUE(IsListEmpty(&Controller_->ArrayList)) << N;
    EXPECT_TRUE(IsListEmpty(&Controller_->PhysicalDriveList)) << N;
    EXPECT_EQ(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID, 0u) << N;
    ASSERT_LT(N, 200u);
  }
}

TEST_F(RsteReadTest, AMissingShellServiceIsTheFirmwareErrorCode) {
  Shell_.reset();
  RaidLibResetToolRunner();
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = RsteGetControllerInfo(Controller_, nullptr, &ErrorCode);
  EXPECT_TRUE(EFI_ERROR(Status));
  EXPECT_EQ(ErrorCode, RaidLibFirmwareErrorCode(Status));
  EXPECT_EQ(gRsteToolSelected, 0);
}

TEST_F(RsteReadTest, CardIdIsAlwaysZeroAndSetAllIsRefusedPolitely) {
  Controller_->Private->CardId = 7;
  UINT32 ErrorCode = 1;
  EXPECT_EQ(RsteGetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, 0u);
  EXPECT_EQ(ErrorCode, 0u);
  ErrorCode = 1;
  EXPECT_EQ(RsteSetAllPhysicalDriveState(Controller_, RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  TraceHas("[RsteSetAllPhysicalDriveState]RSTe card does not support this "
           "functionality.\n");
  EXPECT_TRUE(Commands().empty());
}

}  // namespace
}  // namespace rste_test
