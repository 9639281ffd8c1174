// The firmware's handle database: handles in creation order, each carrying
// protocol interfaces by GUID, with the open records OpenProtocol keeps.
#pragma once

#include <Uefi.h>

#include <memory>
#include <utility>
#include <vector>

namespace emu {

using ProtocolList = std::vector<std::pair<const EFI_GUID *, VOID *>>;

class HandleDatabase {
 public:
  HandleDatabase();
  HandleDatabase(const HandleDatabase &) = delete;
  HandleDatabase &operator=(const HandleDatabase &) = delete;
  ~HandleDatabase();

  // InstallProtocolInterface: *Handle NULL makes a new handle. A GUID that
  // is already on the handle gives EFI_INVALID_PARAMETER.
  EFI_STATUS Install(EFI_HANDLE *Handle, const EFI_GUID &Guid, VOID *Interface);
  // UninstallProtocolInterface: the GUID with exactly this interface; a
  // handle left without protocols disappears.
  EFI_STATUS Uninstall(EFI_HANDLE Handle, const EFI_GUID &Guid,
                       VOID *Interface);
  EFI_STATUS Reinstall(EFI_HANDLE Handle, const EFI_GUID &Guid,
                       VOID *OldInterface, VOID *NewInterface);
  // All of the list or none of it.
  EFI_STATUS InstallMultiple(EFI_HANDLE *Handle, const ProtocolList &List);
  EFI_STATUS UninstallMultiple(EFI_HANDLE Handle, const ProtocolList &List);

  // HandleProtocol.
  EFI_STATUS Find(EFI_HANDLE Handle, const EFI_GUID &Guid,
                  VOID **Interface) const;
  // OpenProtocol / CloseProtocol with their open records.
  EFI_STATUS Open(EFI_HANDLE Handle, const EFI_GUID &Guid, VOID **Interface,
                  EFI_HANDLE Agent, EFI_HANDLE Controller, UINT32 Attributes);
  EFI_STATUS Close(EFI_HANDLE Handle, const EFI_GUID &Guid, EFI_HANDLE Agent,
                   EFI_HANDLE Controller);
  std::vector<EFI_OPEN_PROTOCOL_INFORMATION_ENTRY> OpenInformation(
      EFI_HANDLE Handle, const EFI_GUID &Guid) const;
  // LocateProtocol: the first handle in creation order that has it.
  EFI_STATUS Locate(const EFI_GUID &Guid, VOID **Interface) const;

  // Live handles in creation order: all of them, or those with Guid.
  std::vector<EFI_HANDLE> AllHandles() const;
  std::vector<EFI_HANDLE> HandlesWith(const EFI_GUID &Guid) const;
  // The handle's GUIDs in installation order; the pointers stay valid while
  // the protocol stays installed.
  std::vector<EFI_GUID *> ProtocolsOn(EFI_HANDLE Handle) const;
  bool IsValid(EFI_HANDLE Handle) const;

 private:
  struct OpenRecord;
  struct ProtocolEntry;
  struct HandleRecord;

  HandleRecord *Lookup(EFI_HANDLE Handle) const;
  EFI_STATUS InstallOn(EFI_HANDLE *Handle, const EFI_GUID &Guid,
                       VOID *Interface);
  EFI_STATUS UninstallFrom(HandleRecord *Record, const EFI_GUID &Guid,
                           VOID *Interface);
  VOID RetireIfEmpty(HandleRecord *Record);

  // Retired records stay allocated, so a stale handle never aliases a new one.
  std::vector<std::unique_ptr<HandleRecord>> Records_;
  UINT64 NextId_ = 1;
};

}  // namespace emu
