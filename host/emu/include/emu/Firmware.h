// An in-process UEFI firmware: system table, boot services and runtime
// services backed by a tracked pool, a handle database, a virtual clock and
// a log of controller connections.
//
// Boot services are plain function pointers without a context argument, so
// exactly one Firmware is current at a time: the constructor makes it
// current, the destructor tears it down. Devices, volumes and host protocols
// attach to a Firmware and must be destroyed before it.
#pragma once

#include <Protocol/LoadedImage.h>
#include <Uefi.h>

#include <memory>
#include <string>
#include <vector>

#include "emu/Console.h"
#include "emu/ControllerConnections.h"
#include "emu/HandleDatabase.h"
#include "emu/Pool.h"
#include "emu/VirtualClock.h"

namespace emu {

class Firmware {
 public:
  Firmware();
  ~Firmware();
  Firmware(const Firmware &) = delete;
  Firmware &operator=(const Firmware &) = delete;

  // The current firmware; aborts with a message when there is none.
  static Firmware &Current();
  static Firmware *CurrentOrNull();

  EFI_SYSTEM_TABLE *SystemTable() { return &SystemTable_; }
  EFI_BOOT_SERVICES *BootServices() { return &BootServices_; }
  EFI_RUNTIME_SERVICES *RuntimeServices() { return &RuntimeServices_; }

  Pool &Memory() { return Pool_; }
  HandleDatabase &Handles() { return Handles_; }
  VirtualClock &Clock() { return Clock_; }
  ControllerConnections &Controllers() { return Controllers_; }
  Console &ConsoleOut() { return Console_; }

  // InstallConfigurationTable: adds or replaces the table of Guid; a NULL
  // Table removes it (EFI_NOT_FOUND when there is none).
  EFI_STATUS InstallConfigurationTable(const EFI_GUID &Guid, VOID *Table);
  VOID *FindConfigurationTable(const EFI_GUID &Guid) const;

  // A new image handle carrying EFI_LOADED_IMAGE_PROTOCOL whose DeviceHandle
  // is the given volume handle (may be NULL) and whose SystemTable is ours.
  // The module may set Unload.
  EFI_HANDLE CreateImageHandle(EFI_HANDLE DeviceHandle,
                               EFI_HANDLE ParentHandle = nullptr);
  // The loaded image record of an image handle made above, or NULL.
  EFI_LOADED_IMAGE_PROTOCOL *LoadedImage(EFI_HANDLE ImageHandle);
  // UnloadImage: runs the image's Unload; on success the image handle's
  // loaded image is removed. EFI_UNSUPPORTED when Unload is not set.
  EFI_STATUS UnloadImage(EFI_HANDLE ImageHandle);

  // Names of the services called that this firmware does not provide, in
  // call order: a quick way to see what a module expected of it.
  const std::vector<std::string> &UnsupportedCalls() const {
    return UnsupportedCalls_;
  }
  VOID RecordUnsupported(const char *Service) {
    UnsupportedCalls_.push_back(Service);
  }

  EFI_TPL CurrentTpl() const { return Tpl_; }
  VOID SetTpl(EFI_TPL Tpl) { Tpl_ = Tpl; }
  // ResetSystem does not return on real hardware; here it is only noted.
  bool ResetRequested() const { return ResetRequested_; }
  VOID RequestReset() { ResetRequested_ = true; }

 private:
  VOID RefreshConfigurationTable();

  Pool Pool_;
  HandleDatabase Handles_;
  VirtualClock Clock_;
  ControllerConnections Controllers_;
  Console Console_;
  EFI_SYSTEM_TABLE SystemTable_{};
  EFI_BOOT_SERVICES BootServices_{};
  EFI_RUNTIME_SERVICES RuntimeServices_{};
  std::vector<EFI_CONFIGURATION_TABLE> ConfigurationTables_;
  std::vector<std::unique_ptr<EFI_LOADED_IMAGE_PROTOCOL>> Images_;
  std::vector<std::string> UnsupportedCalls_;
  EFI_TPL Tpl_ = TPL_APPLICATION;
  bool ResetRequested_ = false;
};

}  // namespace emu
