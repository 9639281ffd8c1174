// The firmware object: owns the tables and makes itself current.
#include "emu/Firmware.h"

#include <cstdio>
#include <cstdlib>

#include "ServiceTables.h"

namespace emu {
namespace {

Firmware *gCurrentFirmware = nullptr;
CHAR16 kFirmwareVendor[] = u"raidcfg host emulator";

}  // namespace

Firmware::Firmware() {
  if (gCurrentFirmware != nullptr) {
    std::fprintf(stderr, "emu::Firmware: another firmware is still current\n");
    std::abort();
  }
  FillBootServices(BootServices_);
  FillRuntimeServices(RuntimeServices_);

  SystemTable_.Hdr = {EFI_SYSTEM_TABLE_SIGNATURE, EFI_2_70_SYSTEM_TABLE_REVISION,
                      sizeof(EFI_SYSTEM_TABLE), 0, 0};
  SystemTable_.FirmwareVendor = kFirmwareVendor;
  SystemTable_.FirmwareRevision = 0x00010000;
  SystemTable_.ConIn = Console_.Input();
  SystemTable_.ConOut = Console_.Output();
  SystemTable_.StdErr = Console_.Output();
  SystemTable_.RuntimeServices = &RuntimeServices_;
  SystemTable_.BootServices = &BootServices_;
  RefreshConfigurationTable();
  gCurrentFirmware = this;
}

Firmware::~Firmware() {
  if (gCurrentFirmware == this) {
    gCurrentFirmware = nullptr;
  }
}

Firmware &Firmware::Current() {
  if (gCurrentFirmware == nullptr) {
    std::fprintf(stderr, "emu: a firmware service was called with no "
                         "emu::Firmware alive\n");
    std::abort();
  }
  return *gCurrentFirmware;
}

Firmware *Firmware::CurrentOrNull() { return gCurrentFirmware; }

VOID Firmware::RefreshConfigurationTable() {
  SystemTable_.NumberOfTableEntries = ConfigurationTables_.size();
  SystemTable_.ConfigurationTable =
      ConfigurationTables_.empty() ? nullptr : ConfigurationTables_.data();
  SystemTable_.Hdr.CRC32 = 0;
  SealTableHeader(SystemTable_.Hdr);
}

EFI_STATUS Firmware::InstallConfigurationTable(const EFI_GUID &Guid,
                                               VOID *Table) {
  for (auto It = ConfigurationTables_.begin(); It != ConfigurationTables_.end();
       ++It) {
    if (CompareGuid(It->VendorGuid, Guid)) {
      if (Table == nullptr) {
        ConfigurationTables_.erase(It);
      } else {
        It->VendorTable = Table;
      }
      RefreshConfigurationTable();
      return EFI_SUCCESS;
    }
  }
  if (Table == nullptr) {
    return EFI_NOT_FOUND;
  }
  ConfigurationTables_.push_back({Guid, Table});
  RefreshConfigurationTable();
  return EFI_SUCCESS;
}

VOID *Firmware::FindConfigurationTable(const EFI_GUID &Guid) const {
  for (const auto &Entry : ConfigurationTables_) {
    if (CompareGuid(Entry.VendorGuid, Guid)) {
      return Entry.VendorTable;
    }
  }
  return nullptr;
}

}  // namespace emu
