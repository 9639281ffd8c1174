// A simulated server assembled from a scenario: the emulated firmware with
// its PCI functions, SMBIOS table, the module's boot volume and image
// handle, the host protocols, and the shell-command service answered by
// the virtual adapters or by a replay.
#pragma once

#include <Uefi.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "emu/Emulator.h"
#include "emu/Hii.h"
#include "native/AdapterFamily.h"
#include "native/Recorder.h"
#include "native/Replay.h"
#include "native/Scenario.h"
#include "native/TemporaryDirectory.h"
#include "native/VirtualAdapters.h"

namespace host {

struct ServerOptions {
  // Answer tool runs from this replay directory instead of the adapters.
  std::optional<std::filesystem::path> ReplayDirectory;
  // Write every tool run into this replay directory.
  std::optional<std::filesystem::path> RecordDirectory;
};

class Server {
 public:
  // Builds the whole machine; it becomes the current emulated firmware.
  // Throws ScenarioError, ReplayError or RecordError.
  Server(const Scenario &Scenario, const ServerOptions &Options = {},
         const FamilyRegistry &Families = FamilyRegistry::Builtin());
  ~Server();
  Server(const Server &) = delete;
  Server &operator=(const Server &) = delete;

  emu::Firmware &Firmware() { return *Firmware_; }
  // The module's image handle, on the boot volume.
  EFI_HANDLE ImageHandle() const { return ImageHandle_; }
  // A fresh image handle on the boot volume once UnloadImage retired the
  // last one, as firmware loads the module's file again.
  EFI_HANDLE ImageForLoad();
  emu::HostVolume &Volume() { return *Volume_; }
  // The host protocols; NULL for one the scenario leaves out.
  emu::SetupProtocol *Setup() { return Setup_.get(); }
  emu::ShellCommand *Shell() { return Shell_.get(); }
  emu::SlotInventory *Slots() { return Slots_.get(); }
  emu::QolCommands *Qol() { return Qol_.get(); }
  // The HII database the module registers its strings in.
  emu::HiiDatabase &Hii() { return *Hii_; }
  // Makes Language ("fr-FR") the language of every text the module fetches.
  EFI_STATUS SwitchLanguage(const std::string &Language);
  VirtualAdapters &Adapters() { return Adapters_; }

  // What went wrong on the host's side while the module ran (a recording
  // that could not be written, a simulation that failed); empty when all
  // went well.
  const std::vector<std::string> &Problems() const { return Problems_; }

  // Writes a trace line of the host's own, "[Function]Text", among the
  // module's lines; to standard error when there is no setup protocol.
  void HostTrace(const char *Function, const std::string &Text);

 private:
  void AddPciFunctions(const Scenario &Scenario);
  void AddVolume(const Scenario &Scenario);
  void AddProtocols(const Scenario &Scenario);
  // The shell-command service's answer to one command line.
  std::string RunCommand(const std::string &CommandLine);
  std::string RunTool(const std::string &CommandLine);

  // Declared first, so it goes last: everything below lives in it.
  TemporaryDirectory VolumeDirectory_;
  std::unique_ptr<emu::Firmware> Firmware_;
  std::vector<std::unique_ptr<emu::PciDevice>> Devices_;
  std::unique_ptr<emu::SmbiosTable> Smbios_;
  std::unique_ptr<emu::HostVolume> Volume_;
  // Before the setup protocol, whose strings it answers.
  std::unique_ptr<emu::HiiDatabase> Hii_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::GuiDriver> GuiDriver_;
  std::unique_ptr<emu::XmlParser> XmlParser_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  std::unique_ptr<emu::SlotInventory> Slots_;
  std::unique_ptr<emu::QolCommands> Qol_;
  VirtualAdapters Adapters_;
  std::optional<Replay> Replay_;
  std::optional<Recorder> Recorder_;
  EFI_HANDLE ImageHandle_ = nullptr;
  std::vector<std::string> Problems_;
};

}  // namespace host
