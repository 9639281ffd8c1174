// The HII database and string protocols of the emulated firmware.
#include <algorithm>
#include <cstring>

#include "emu/Firmware.h"
#include "emu/Hii.h"

namespace emu {

HiiDatabase::HiiDatabase(Firmware &Firmware)
    : Firmware_(Firmware),
      CurrentLanguage_(HiiLanguageFromPlatform(kDefaultPlatformLanguage)) {
  Database_ = {};
  Database_.Protocol.NewPackageList = NewPackageList;
  Database_.Protocol.RemovePackageList = RemovePackageList;
  Database_.Owner = this;
  String_ = {};
  String_.Protocol.GetString = GetStringEntry;
  String_.Protocol.GetLanguages = GetLanguagesEntry;
  String_.Owner = this;
  Firmware_.Handles().InstallMultiple(
      &Handle_, {{&gEfiHiiDatabaseProtocolGuid, &Database_.Protocol},
                 {&gEfiHiiStringProtocolGuid, &String_.Protocol}});
}

HiiDatabase::~HiiDatabase() {
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().UninstallMultiple(
        Handle_, {{&gEfiHiiDatabaseProtocolGuid, &Database_.Protocol},
                  {&gEfiHiiStringProtocolGuid, &String_.Protocol}});
  }
}

// Registers a package list: one registration per GUID and driver handle.
EFI_STATUS HiiDatabase::Add(const EFI_HII_PACKAGE_LIST_HEADER *PackageList,
                            EFI_HANDLE DriverHandle, EFI_HII_HANDLE *Handle) {
  if (PackageList == nullptr || Handle == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  EFI_HII_PACKAGE_LIST_HEADER Header;
  std::memcpy(&Header, PackageList, sizeof(Header));
  Registration Entry;
  if (!ParseHiiPackageList(PackageList, Header.PackageLength, Entry.Strings)) {
    return EFI_INVALID_PARAMETER;
  }
  for (const Registration &Existing : Registrations_) {
    if (Existing.DriverHandle == DriverHandle &&
        std::memcmp(&Existing.Strings.Guid, &Entry.Strings.Guid,
                    sizeof(EFI_GUID)) == 0) {
      return EFI_INVALID_PARAMETER;
    }
  }
  // Handles are never reused, so a stale one cannot reach a newer list.
  Entry.Handle = reinterpret_cast<EFI_HII_HANDLE>(0x4849490000ULL +
                                                  NextHandle_++ * 0x10);
  Entry.DriverHandle = DriverHandle;
  *Handle = Entry.Handle;
  Registrations_.push_back(std::move(Entry));
  return EFI_SUCCESS;
}

EFI_STATUS HiiDatabase::Remove(EFI_HII_HANDLE Handle) {
  auto It = std::find_if(
      Registrations_.begin(), Registrations_.end(),
      [Handle](const Registration &Entry) { return Entry.Handle == Handle; });
  if (It == Registrations_.end()) {
    return EFI_NOT_FOUND;
  }
  Registrations_.erase(It);
  return EFI_SUCCESS;
}

std::vector<EFI_HII_HANDLE> HiiDatabase::Handles() const {
  std::vector<EFI_HII_HANDLE> Result;
  for (const Registration &Entry : Registrations_) {
    Result.push_back(Entry.Handle);
  }
  return Result;
}

const HiiDatabase::Registration *HiiDatabase::Find(
    EFI_HII_HANDLE Handle) const {
  for (const Registration &Entry : Registrations_) {
    if (Entry.Handle == Handle) {
      return &Entry;
    }
  }
  return nullptr;
}

const HiiStrings *HiiDatabase::Strings(EFI_HII_HANDLE Handle) const {
  const Registration *Entry = Find(Handle);
  return Entry == nullptr ? nullptr : &Entry->Strings;
}

// EFI_INVALID_LANGUAGE when the id exists, but only in other languages.
EFI_STATUS HiiDatabase::GetString(const CHAR8 *Language, EFI_HII_HANDLE Handle,
                                  EFI_STRING_ID Id, EFI_STRING String,
                                  UINTN *StringSize) const {
  if (Language == nullptr || Id == 0 || StringSize == nullptr ||
      (String == nullptr && *StringSize != 0)) {
    return EFI_INVALID_PARAMETER;
  }
  const Registration *Entry = Find(Handle);
  if (Entry == nullptr) {
    return EFI_NOT_FOUND;
  }
  const auto &Texts = Entry->Strings.Texts;
  auto InLanguage = Texts.find(reinterpret_cast<const char *>(Language));
  if (InLanguage == Texts.end()) {
    for (const auto &Other : Texts) {
      if (Other.second.count(Id) != 0) {
        return EFI_INVALID_LANGUAGE;
      }
    }
    return EFI_NOT_FOUND;
  }
  auto Text = InLanguage->second.find(Id);
  if (Text == InLanguage->second.end()) {
    return EFI_NOT_FOUND;
  }
  UINTN Needed = (Text->second.size() + 1) * sizeof(CHAR16);
  if (*StringSize < Needed) {
    *StringSize = Needed;
    return EFI_BUFFER_TOO_SMALL;
  }
  std::memcpy(String, Text->second.c_str(), Needed);
  *StringSize = Needed;
  return EFI_SUCCESS;
}

EFI_STATUS HiiDatabase::GetLanguages(EFI_HII_HANDLE Handle, CHAR8 *Languages,
                                     UINTN *LanguagesSize) const {
  if (LanguagesSize == nullptr ||
      (Languages == nullptr && *LanguagesSize != 0)) {
    return EFI_INVALID_PARAMETER;
  }
  const Registration *Entry = Find(Handle);
  if (Entry == nullptr) {
    return EFI_NOT_FOUND;
  }
  std::string Joined;
  for (const std::string &Language : Entry->Strings.Languages) {
    Joined += (Joined.empty() ? "" : ";") + Language;
  }
  UINTN Needed = Joined.size() + 1;
  if (*LanguagesSize < Needed) {
    *LanguagesSize = Needed;
    return EFI_BUFFER_TOO_SMALL;
  }
  std::memcpy(Languages, Joined.c_str(), Needed);
  *LanguagesSize = Needed;
  return EFI_SUCCESS;
}

const CHAR16 *HiiDatabase::TextInCurrentLanguage(EFI_HII_HANDLE Handle,
                                                 EFI_STRING_ID Id) {
  auto Key = std::make_tuple(Handle, CurrentLanguage_, Id);
  auto Known = HandedOut_.find(Key);
  if (Known != HandedOut_.end()) {
    return Known->second.c_str();
  }
  const CHAR8 *Language =
      reinterpret_cast<const CHAR8 *>(CurrentLanguage_.c_str());
  UINTN Size = 0;
  if (GetString(Language, Handle, Id, nullptr, &Size) != EFI_BUFFER_TOO_SMALL) {
    return nullptr;
  }
  std::u16string Text(Size / sizeof(CHAR16), u'\0');
  if (GetString(Language, Handle, Id, Text.data(), &Size) != EFI_SUCCESS) {
    return nullptr;
  }
  Text.pop_back();  // the terminator GetString wrote; c_str() adds its own
  return HandedOut_.emplace(Key, std::move(Text)).first->second.c_str();
}

// ---- Protocol entry points -------------------------------------------------

EFI_STATUS EFIAPI HiiDatabase::NewPackageList(
    const EFI_HII_DATABASE_PROTOCOL *This,
    const EFI_HII_PACKAGE_LIST_HEADER *PackageList, EFI_HANDLE DriverHandle,
    EFI_HII_HANDLE *Handle) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  HiiDatabase *Self = reinterpret_cast<const DatabaseInstance *>(This)->Owner;
  return Self->Add(PackageList, DriverHandle, Handle);
}

EFI_STATUS EFIAPI HiiDatabase::RemovePackageList(
    const EFI_HII_DATABASE_PROTOCOL *This, EFI_HII_HANDLE Handle) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  HiiDatabase *Self = reinterpret_cast<const DatabaseInstance *>(This)->Owner;
  return Self->Remove(Handle);
}

EFI_STATUS EFIAPI HiiDatabase::GetStringEntry(
    const EFI_HII_STRING_PROTOCOL *This, const CHAR8 *Language,
    EFI_HII_HANDLE PackageList, EFI_STRING_ID StringId, EFI_STRING String,
    UINTN *StringSize, VOID *StringFontInfo) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const HiiDatabase *Self =
      reinterpret_cast<const StringInstance *>(This)->Owner;
  return Self->GetString(Language, PackageList, StringId, String, StringSize);
}

EFI_STATUS EFIAPI HiiDatabase::GetLanguagesEntry(
    const EFI_HII_STRING_PROTOCOL *This, EFI_HII_HANDLE PackageList,
    CHAR8 *Languages, UINTN *LanguagesSize) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const HiiDatabase *Self =
      reinterpret_cast<const StringInstance *>(This)->Owner;
  return Self->GetLanguages(PackageList, Languages, LanguagesSize);
}

}  // namespace emu
