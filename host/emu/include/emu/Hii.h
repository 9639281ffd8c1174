// HII in the emulated firmware: the package-list parser, the HII database
// and string protocols, the host's current language, the package list
// protocol an image carries, and the setup protocol's string slot.
//
// Behaves as OVMF's HII does: GetString needs an explicit language, matches
// it exactly (no "fr" for "fr-FR", no fallback to another language) and
// answers EFI_BUFFER_TOO_SMALL with the size needed.
#pragma once

#include <Protocol/Hii.h>
#include <Uefi.h>

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace emu {

class Firmware;
class SetupProtocol;

// The string packages of one package list: texts by language, then by id.
struct HiiStrings {
  EFI_GUID Guid{};
  std::vector<std::string> Languages;  // in package order
  std::map<std::string, std::map<EFI_STRING_ID, std::u16string>> Texts;
};

// Parses a package list of at most Size bytes (the header's length rules
// inside that). Packages other than strings are skipped. Returns false and
// sets *Error when the bytes are malformed.
bool ParseHiiPackageList(const VOID *PackageList, UINTN Size, HiiStrings &Out,
                         std::string *Error = nullptr);

// The HII language a platform language stands for: a full tag ("fr-FR",
// "zh-Hans") as it is, a bare primary language by its usual region ("en" is
// "en-US", "zh" is "zh-Hans").
std::string HiiLanguageFromPlatform(const std::string &PlatformLanguage);

class HiiDatabase {
 public:
  // The platform language of fresh firmware variables.
  static constexpr const char *kDefaultPlatformLanguage = "en";

  // Installs the HII database and HII string protocols on a handle of their
  // own.
  explicit HiiDatabase(Firmware &Firmware);
  ~HiiDatabase();
  HiiDatabase(const HiiDatabase &) = delete;
  HiiDatabase &operator=(const HiiDatabase &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  EFI_HII_DATABASE_PROTOCOL &DatabaseProtocol() { return Database_.Protocol; }
  EFI_HII_STRING_PROTOCOL &StringProtocol() { return String_.Protocol; }

  // NewPackageList and RemovePackageList, as the protocol does them.
  EFI_STATUS Add(const EFI_HII_PACKAGE_LIST_HEADER *PackageList,
                 EFI_HANDLE DriverHandle, EFI_HII_HANDLE *Handle);
  EFI_STATUS Remove(EFI_HII_HANDLE Handle);
  // The registered package lists in registration order.
  std::vector<EFI_HII_HANDLE> Handles() const;
  // The strings of a registered package list, or NULL.
  const HiiStrings *Strings(EFI_HII_HANDLE Handle) const;

  // GetString with the protocol's rules: *StringSize in bytes, NUL included.
  EFI_STATUS GetString(const CHAR8 *Language, EFI_HII_HANDLE Handle,
                       EFI_STRING_ID Id, EFI_STRING String,
                       UINTN *StringSize) const;
  // GetLanguages: the package list's languages joined by ';'.
  EFI_STATUS GetLanguages(EFI_HII_HANDLE Handle, CHAR8 *Languages,
                          UINTN *LanguagesSize) const;

  // ---- The host's current language (what the operator chose).
  const std::string &CurrentLanguage() const { return CurrentLanguage_; }
  VOID SetCurrentLanguage(std::string Language) {
    CurrentLanguage_ = std::move(Language);
  }
  // The text of Id in the current language, owned by the database and valid
  // until it is destroyed; NULL when the list, language or id is unknown.
  const CHAR16 *TextInCurrentLanguage(EFI_HII_HANDLE Handle, EFI_STRING_ID Id);

 private:
  struct DatabaseInstance {
    EFI_HII_DATABASE_PROTOCOL Protocol;
    HiiDatabase *Owner;
  };
  struct StringInstance {
    EFI_HII_STRING_PROTOCOL Protocol;
    HiiDatabase *Owner;
  };
  struct Registration {
    EFI_HII_HANDLE Handle;
    EFI_HANDLE DriverHandle;
    HiiStrings Strings;
  };

  const Registration *Find(EFI_HII_HANDLE Handle) const;

  static EFI_STATUS EFIAPI NewPackageList(
      const EFI_HII_DATABASE_PROTOCOL *This,
      const EFI_HII_PACKAGE_LIST_HEADER *PackageList, EFI_HANDLE DriverHandle,
      EFI_HII_HANDLE *Handle);
  static EFI_STATUS EFIAPI RemovePackageList(
      const EFI_HII_DATABASE_PROTOCOL *This, EFI_HII_HANDLE Handle);
  static EFI_STATUS EFIAPI GetStringEntry(const EFI_HII_STRING_PROTOCOL *This,
                                          const CHAR8 *Language,
                                          EFI_HII_HANDLE PackageList,
                                          EFI_STRING_ID StringId,
                                          EFI_STRING String, UINTN *StringSize,
                                          VOID *StringFontInfo);
  static EFI_STATUS EFIAPI GetLanguagesEntry(
      const EFI_HII_STRING_PROTOCOL *This, EFI_HII_HANDLE PackageList,
      CHAR8 *Languages, UINTN *LanguagesSize);

  Firmware &Firmware_;
  DatabaseInstance Database_;
  StringInstance String_;
  EFI_HANDLE Handle_ = nullptr;
  std::vector<Registration> Registrations_;
  UINTN NextHandle_ = 1;
  std::string CurrentLanguage_;
  // Texts handed out by TextInCurrentLanguage, kept for their pointers.
  std::map<std::tuple<EFI_HII_HANDLE, std::string, EFI_STRING_ID>,
           std::u16string>
      HandedOut_;
};

// Installs EFI_HII_PACKAGE_LIST_PROTOCOL on an image handle with the package
// list itself as the interface, as the firmware's LoadImage does for an
// image whose resource section carries one. The bytes must outlive the
// image.
EFI_STATUS InstallImagePackageList(Firmware &Firmware, EFI_HANDLE ImageHandle,
                                   const VOID *PackageList);
// Takes it off again (UnloadImage does so with the image's protocols).
EFI_STATUS UninstallImagePackageList(Firmware &Firmware,
                                     EFI_HANDLE ImageHandle,
                                     const VOID *PackageList);

// Makes the setup protocol's string slot answer from the HII database in the
// database's current language.
VOID ConnectSetupStrings(SetupProtocol &Setup, HiiDatabase &Hii);

}  // namespace emu
