#include "RsteWorld.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace rste_test {

namespace {
const char *kHeader =
    "Intel(R) RSTe SATA Configuration Utility\n"
    "Version 5.5.0.1028\n"
    "Copyright (C) 2003-2019 Intel Corporation. All rights reserved.\n\n";
}  // namespace

std::string InfoReport(const InfoText &Info) {
  std::string Text = kHeader;
  Text += "--- Controller Information ---\n Total Physical Disks: " +
          std::to_string(Info.Disks) +
          "\n Total Missing Disks: " + std::to_string(Info.Missing) + "\n\n";
  Text += "--- Array Information ---\n";
  for (size_t I = 0; I < Info.ArraySizeLines.size(); I++) {
    Text += "Array " + std::to_string(I) + ":\n Name: Array" +
            std::to_string(I) + "\n" + Info.ArraySizeLines[I] +
            "\n Disks: 2 Volumes: 1\n\n";
  }
  Text += "--- Volume Information ---\n";
  for (size_t I = 0; I < Info.Volumes.size(); I++) {
    const VolumeText &V = Info.Volumes[I];
    Text += "Volume " + std::to_string(I) + ":\n Name: " + V.Name +
            "\n RaidLevel:" + std::to_string(V.Level) +
            " State:Normal Bootable:Yes StripeSize:" + V.Stripe +
            "\n NumBlocks: " + V.Blocks + "\n Disks: 2 ArrayId:" +
            std::to_string(V.ArrayId) + "\n Block Size: 512\n\n";
  }
  Text += "--- Disk Information ---\n";
  for (const DiskText &D : Info.DiskBlocks) {
    Text += "Disk " + D.Number + ":\n Model: " + D.Model +
            "\n Serial: ZBS0R1AA\n" +
            (D.BlocksLine.empty() ? " TotalBlks:" + D.Blocks + " Port:0"
                                  : D.BlocksLine) +
            "\n Id:" + D.Number + " " + D.State +
            "\n Type: SATA SSD\n Firmware: SCV10121\n Usage:Member ArrayId:" +
            D.ArrayId + "\n" + D.CapacityLine + "\n\n";
  }
  return Text;
}

std::string VersionReport(const std::string &DriverLine) {
  return std::string(kHeader) + DriverLine + ": 5.5.0.1028\n";
}

std::string StatusReport(
    const std::vector<std::pair<std::string, std::string>> &NameAndState,
    unsigned Offset) {
  std::string Text = std::string(kHeader) + "--- Volume Status ---\n";
  for (const auto &[Name, State] : NameAndState) {
    Text += "Name: " + Name + "\n";
    for (unsigned I = 1; I < Offset; I++) {
      Text += " Field" + std::to_string(I) + ": x\n";
    }
    Text += " Status: " + State + "\n\n";
  }
  return Text;
}

RsteWorld::RsteWorld()
    : ScriptedToolWorld({u"RCfgSata.efi", u"Intel RSTe SATA RAID Controller", 4,
                         rste::RsteBindBackend}) {
  RsteResetState();
}

RsteWorld::~RsteWorld() {
  RsteResetState();
  Smbios_.reset();
}

std::vector<std::string> RsteWorld::NewCommands() const {
  std::vector<std::string> All = Commands();
  return std::vector<std::string>(All.begin() + Baseline_, All.end());
}

VOID RsteWorld::AnswerReads(const std::string &Version, const std::string &Info,
                            const std::string &Status) {
  Answer("RCfgSata.efi /V", Version);
  Answer("RCfgSata.efi /I", Info);
  Answer("RCfgSata.efi /ST", Status);
}

VOID RsteWorld::ReadModel(UINT32 ExpectedErrorCode) {
  Controller_->Private->Flags = 0;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(RsteGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, ExpectedErrorCode);
}

VOID RsteWorld::InstallSmbios(const std::string &BiosVersion) {
  emu::SmbiosDescription Description;
  Description.BiosVersion = BiosVersion;
  Smbios_ = std::make_unique<emu::SmbiosTable>(*Firmware_, Description);
}

RAID_PHYSICAL_DRIVE *RsteWorld::Disk(UINT32 Id) {
  for (UINT32 I = 0; I < Controller_->DiskDriveCount; I++) {
    RAID_PHYSICAL_DRIVE *Drive = Controller_->DriveTable[I];
    if (Drive != nullptr && Drive->Id == Id) {
      return Drive;
    }
  }
  return nullptr;
}

}  // namespace rste_test
