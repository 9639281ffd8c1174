// Handles, protocol interfaces and open records.
#include "emu/HandleDatabase.h"

#include <algorithm>

namespace emu {

struct HandleDatabase::OpenRecord {
  EFI_HANDLE Agent;
  EFI_HANDLE Controller;
  UINT32 Attributes;
  UINT32 Count;
};

struct HandleDatabase::ProtocolEntry {
  EFI_GUID Guid;
  VOID *Interface;
  std::vector<OpenRecord> Opens;
};

struct HandleDatabase::HandleRecord {
  UINT64 Id;
  bool Live = true;
  // unique_ptr keeps each GUID's address stable for ProtocolsPerHandle.
  std::vector<std::unique_ptr<ProtocolEntry>> Protocols;

  ProtocolEntry *Find(const EFI_GUID &Guid) const {
    for (const auto &Entry : Protocols) {
      if (CompareGuid(Entry->Guid, Guid)) {
        return Entry.get();
      }
    }
    return nullptr;
  }
};

HandleDatabase::HandleDatabase() = default;
HandleDatabase::~HandleDatabase() = default;

HandleDatabase::HandleRecord *HandleDatabase::Lookup(EFI_HANDLE Handle) const {
  if (Handle == nullptr) {
    return nullptr;
  }
  for (const auto &Record : Records_) {
    if (Record.get() == Handle) {
      return Record->Live ? Record.get() : nullptr;
    }
  }
  return nullptr;
}

bool HandleDatabase::IsValid(EFI_HANDLE Handle) const {
  return Lookup(Handle) != nullptr;
}

VOID HandleDatabase::RetireIfEmpty(HandleRecord *Record) {
  if (Record != nullptr && Record->Protocols.empty()) {
    Record->Live = false;
  }
}

EFI_STATUS HandleDatabase::InstallOn(EFI_HANDLE *Handle, const EFI_GUID &Guid,
                                     VOID *Interface) {
  HandleRecord *Record = nullptr;
  if (*Handle != nullptr) {
    Record = Lookup(*Handle);
    if (Record == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    if (Record->Find(Guid) != nullptr) {
      return EFI_INVALID_PARAMETER;
    }
  } else {
    Records_.push_back(std::make_unique<HandleRecord>());
    Record = Records_.back().get();
    Record->Id = NextId_++;
    *Handle = Record;
  }
  Record->Protocols.push_back(
      std::make_unique<ProtocolEntry>(ProtocolEntry{Guid, Interface, {}}));
  return EFI_SUCCESS;
}

EFI_STATUS HandleDatabase::UninstallFrom(HandleRecord *Record,
                                         const EFI_GUID &Guid,
                                         VOID *Interface) {
  auto It = std::find_if(Record->Protocols.begin(), Record->Protocols.end(),
                         [&](const auto &Entry) {
                           return CompareGuid(Entry->Guid, Guid) &&
                                  Entry->Interface == Interface;
                         });
  if (It == Record->Protocols.end()) {
    return EFI_NOT_FOUND;
  }
  Record->Protocols.erase(It);
  return EFI_SUCCESS;
}

EFI_STATUS HandleDatabase::Install(EFI_HANDLE *Handle, const EFI_GUID &Guid,
                                   VOID *Interface) {
  if (Handle == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return InstallOn(Handle, Guid, Interface);
}

EFI_STATUS HandleDatabase::Uninstall(EFI_HANDLE Handle, const EFI_GUID &Guid,
                                     VOID *Interface) {
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const EFI_STATUS Status = UninstallFrom(Record, Guid, Interface);
  RetireIfEmpty(Record);
  return Status;
}

EFI_STATUS HandleDatabase::Reinstall(EFI_HANDLE Handle, const EFI_GUID &Guid,
                                     VOID *OldInterface, VOID *NewInterface) {
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  ProtocolEntry *Entry = Record->Find(Guid);
  if (Entry == nullptr || Entry->Interface != OldInterface) {
    return EFI_NOT_FOUND;
  }
  Entry->Interface = NewInterface;
  Entry->Opens.clear();
  return EFI_SUCCESS;
}

EFI_STATUS HandleDatabase::InstallMultiple(EFI_HANDLE *Handle,
                                           const ProtocolList &List) {
  if (Handle == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  EFI_HANDLE Working = *Handle;
  size_t Done = 0;
  EFI_STATUS Status = EFI_SUCCESS;
  for (; Done < List.size(); Done++) {
    Status = InstallOn(&Working, *List[Done].first, List[Done].second);
    if (EFI_ERROR(Status)) {
      break;
    }
  }
  if (!EFI_ERROR(Status)) {
    *Handle = Working;
    return EFI_SUCCESS;
  }
  // Roll back what this call installed; a handle it made goes away again.
  HandleRecord *Record = Lookup(Working);
  for (size_t I = Done; I-- > 0;) {
    UninstallFrom(Record, *List[I].first, List[I].second);
  }
  RetireIfEmpty(Record);
  return Status;
}

EFI_STATUS HandleDatabase::UninstallMultiple(EFI_HANDLE Handle,
                                             const ProtocolList &List) {
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  size_t Done = 0;
  for (; Done < List.size(); Done++) {
    if (EFI_ERROR(UninstallFrom(Record, *List[Done].first, List[Done].second))) {
      break;
    }
  }
  if (Done == List.size()) {
    RetireIfEmpty(Record);
    return EFI_SUCCESS;
  }
  // Put back what was removed, in the original order.
  for (size_t I = 0; I < Done; I++) {
    Record->Protocols.push_back(std::make_unique<ProtocolEntry>(
        ProtocolEntry{*List[I].first, List[I].second, {}}));
  }
  return EFI_INVALID_PARAMETER;
}

EFI_STATUS HandleDatabase::Find(EFI_HANDLE Handle, const EFI_GUID &Guid,
                                VOID **Interface) const {
  if (Interface == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Interface = nullptr;
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  ProtocolEntry *Entry = Record->Find(Guid);
  if (Entry == nullptr) {
    return EFI_UNSUPPORTED;
  }
  *Interface = Entry->Interface;
  return EFI_SUCCESS;
}

EFI_STATUS HandleDatabase::Open(EFI_HANDLE Handle, const EFI_GUID &Guid,
                                VOID **Interface, EFI_HANDLE Agent,
                                EFI_HANDLE Controller, UINT32 Attributes) {
  const bool Testing = Attributes == EFI_OPEN_PROTOCOL_TEST_PROTOCOL;
  if (!Testing && Interface == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Interface != nullptr) {
    *Interface = nullptr;
  }
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  switch (Attributes) {
    case EFI_OPEN_PROTOCOL_BY_HANDLE_PROTOCOL:
    case EFI_OPEN_PROTOCOL_GET_PROTOCOL:
    case EFI_OPEN_PROTOCOL_TEST_PROTOCOL:
      break;
    default:
      // Driver-model opens need an agent; this firmware runs no drivers.
      if (Agent == nullptr || !IsValid(Agent)) {
        return EFI_INVALID_PARAMETER;
      }
      break;
  }
  ProtocolEntry *Entry = Record->Find(Guid);
  if (Entry == nullptr) {
    return EFI_UNSUPPORTED;
  }
  if (Testing) {
    return EFI_SUCCESS;
  }
  for (OpenRecord &Open : Entry->Opens) {
    if (Open.Agent == Agent && Open.Controller == Controller &&
        Open.Attributes == Attributes) {
      Open.Count++;
      *Interface = Entry->Interface;
      return EFI_SUCCESS;
    }
  }
  Entry->Opens.push_back({Agent, Controller, Attributes, 1});
  *Interface = Entry->Interface;
  return EFI_SUCCESS;
}

EFI_STATUS HandleDatabase::Close(EFI_HANDLE Handle, const EFI_GUID &Guid,
                                 EFI_HANDLE Agent, EFI_HANDLE Controller) {
  HandleRecord *Record = Lookup(Handle);
  if (Record == nullptr || !IsValid(Agent) ||
      (Controller != nullptr && !IsValid(Controller))) {
    return EFI_INVALID_PARAMETER;
  }
  ProtocolEntry *Entry = Record->Find(Guid);
  if (Entry == nullptr) {
    return EFI_NOT_FOUND;
  }
  const auto Before = Entry->Opens.size();
  std::erase_if(Entry->Opens, [&](const OpenRecord &Open) {
    return Open.Agent == Agent && Open.Controller == Controller;
  });
  return Entry->Opens.size() == Before ? EFI_NOT_FOUND : EFI_SUCCESS;
}

std::vector<EFI_OPEN_PROTOCOL_INFORMATION_ENTRY>
HandleDatabase::OpenInformation(EFI_HANDLE Handle, const EFI_GUID &Guid) const {
  std::vector<EFI_OPEN_PROTOCOL_INFORMATION_ENTRY> Result;
  HandleRecord *Record = Lookup(Handle);
  ProtocolEntry *Entry = Record == nullptr ? nullptr : Record->Find(Guid);
  if (Entry != nullptr) {
    for (const OpenRecord &Open : Entry->Opens) {
      Result.push_back(
          {Open.Agent, Open.Controller, Open.Attributes, Open.Count});
    }
  }
  return Result;
}

EFI_STATUS HandleDatabase::Locate(const EFI_GUID &Guid,
                                  VOID **Interface) const {
  if (Interface == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Interface = nullptr;
  for (const auto &Record : Records_) {
    if (!Record->Live) {
      continue;
    }
    if (ProtocolEntry *Entry = Record->Find(Guid)) {
      *Interface = Entry->Interface;
      return EFI_SUCCESS;
    }
  }
  return EFI_NOT_FOUND;
}

std::vector<EFI_HANDLE> HandleDatabase::AllHandles() const {
  std::vector<EFI_HANDLE> Result;
  for (const auto &Record : Records_) {
    if (Record->Live) {
      Result.push_back(Record.get());
    }
  }
  return Result;
}

std::vector<EFI_HANDLE> HandleDatabase::HandlesWith(const EFI_GUID &Guid) const {
  std::vector<EFI_HANDLE> Result;
  for (const auto &Record : Records_) {
    if (Record->Live && Record->Find(Guid) != nullptr) {
      Result.push_back(Record.get());
    }
  }
  return Result;
}

std::vector<EFI_GUID *> HandleDatabase::ProtocolsOn(EFI_HANDLE Handle) const {
  std::vector<EFI_GUID *> Result;
  if (HandleRecord *Record = Lookup(Handle)) {
    for (const auto &Entry : Record->Protocols) {
      Result.push_back(&Entry->Guid);
    }
  }
  return Result;
}

}  // namespace emu
