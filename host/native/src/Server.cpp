// Assembling the simulated server and answering the module's tool runs.
#include "native/Server.h"

#include <Protocol/Host/TarnSetup.h>
#include <strings/RaidcfgPackageList.h>

#include <cstdio>
#include <fstream>

namespace host {

Server::Server(const Scenario &Scenario, const ServerOptions &Options,
               const FamilyRegistry &Families)
    : VolumeDirectory_("raidcfg-volume"),
      Firmware_(std::make_unique<emu::Firmware>()),
      Adapters_(Scenario, Families) {
  if (Options.ReplayDirectory) {
    Replay_.emplace(*Options.ReplayDirectory);
  }
  if (Options.RecordDirectory) {
    Recorder_.emplace(*Options.RecordDirectory);
  }
  AddPciFunctions(Scenario);
  Smbios_ = std::make_unique<emu::SmbiosTable>(*Firmware_, Scenario.Smbios);
  AddVolume(Scenario);
  AddProtocols(Scenario);
}

Server::~Server() = default;

// The PCI bus driver's handles, in scenario order: LocateHandleBuffer gives
// them back in the order they were installed.
void Server::AddPciFunctions(const Scenario &Scenario) {
  for (const PciFunction &Function : Scenario.Pci) {
    Devices_.push_back(std::make_unique<emu::PciDevice>(
        *Firmware_, Function.Location, Function.Identity));
  }
}

// The boot volume the module is loaded from, with its files, and the
// module's image handle on it.
void Server::AddVolume(const Scenario &Scenario) {
  for (const VolumeFile &File : Scenario.Files) {
    std::ofstream Out(VolumeDirectory_.Path() / File.Name,
                      std::ios::binary | std::ios::trunc);
    Out << File.Contents;
    if (!Out) {
      throw ScenarioError("volumeFiles." + File.Name + ": cannot write it");
    }
  }
  Volume_ = std::make_unique<emu::HostVolume>(*Firmware_,
                                              VolumeDirectory_.Path());
  ImageHandle_ = Firmware_->CreateImageHandle(Volume_->Handle());
  // As the firmware's image loader does for an image with an HII resource.
  emu::InstallImagePackageList(*Firmware_, ImageHandle_,
                               raidcfg_strings::kPackageList);
}

void Server::AddProtocols(const Scenario &Scenario) {
  const HostProtocols &Present = Scenario.Protocols;
  Hii_ = std::make_unique<emu::HiiDatabase>(*Firmware_);
  Hii_->SetCurrentLanguage(
      emu::HiiLanguageFromPlatform(emu::HiiDatabase::kDefaultPlatformLanguage));
  if (Present.Setup) {
    Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
    emu::ConnectSetupStrings(*Setup_, *Hii_);
  }
  if (Present.GuiDriver) {
    GuiDriver_ = std::make_unique<emu::GuiDriver>(*Firmware_);
  }
  if (Present.XmlParser) {
    XmlParser_ = std::make_unique<emu::XmlParser>(*Firmware_);
  }
  if (Present.ShellCommand) {
    Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
    Shell_->SetHandler(
        [this](const std::string &CommandLine) { return RunCommand(CommandLine); });
  }
  if (Present.SlotInventory) {
    Slots_ = std::make_unique<emu::SlotInventory>(*Firmware_,
                                                  Scenario.SlotInventory);
  }
  if (Present.QolCommands) {
    Qol_ = std::make_unique<emu::QolCommands>(*Firmware_);
  }
}

EFI_HANDLE Server::ImageForLoad() {
  if (Firmware_->LoadedImage(ImageHandle_) == nullptr) {
    ImageHandle_ = Firmware_->CreateImageHandle(Volume_->Handle());
  }
  return ImageHandle_;
}

EFI_STATUS Server::SwitchLanguage(const std::string &Language) {
  Hii_->SetCurrentLanguage(Language);
  return EFI_SUCCESS;
}

void Server::HostTrace(const char *Function, const std::string &Text) {
  if (Setup_ != nullptr) {
    Setup_->Interface().DebugPrint(TARN_DEBUG_INFO, "[%a]%a\n", Function,
                                   Text.c_str());
  } else {
    std::fprintf(stderr, "[%s]%s\n", Function, Text.c_str());
  }
}

std::string Server::RunTool(const std::string &CommandLine) {
  try {
    std::optional<std::string> Output = Adapters_.Run(CommandLine);
    if (!Output) {
      HostTrace("ShellCommandDispatch", "No virtual adapter runs: " + CommandLine);
    }
    return Output.value_or("");
  } catch (const std::exception &Error) {
    Problems_.push_back(std::string("virtual adapter failed on \"") +
                        CommandLine + "\": " + Error.what());
    return "";
  }
}

std::string Server::RunCommand(const std::string &CommandLine) {
  std::string Output;
  if (Replay_) {
    std::optional<std::string> Recorded = Replay_->Answer(CommandLine);
    if (!Recorded) {
      HostTrace("ShellCommandReplay", "No recorded output for: " + CommandLine);
    }
    Output = Recorded.value_or("");
  } else {
    Output = RunTool(CommandLine);
  }
  if (Recorder_ && !Recorder_->Record(CommandLine, Output)) {
    Problems_.push_back("record: cannot write the run of \"" + CommandLine +
                        "\"");
  }
  return Output;
}

}  // namespace host
