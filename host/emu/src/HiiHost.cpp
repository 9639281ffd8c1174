// The host's side of HII: which language the operator sees, the package
// list protocol the image loader puts on an image handle, and the setup
// protocol's string slot.
#include "emu/Firmware.h"
#include "emu/Hii.h"
#include "emu/SetupProtocol.h"

namespace emu {

std::string HiiLanguageFromPlatform(const std::string &PlatformLanguage) {
  // The region each bare language stands for on this platform.
  static const std::map<std::string, std::string> kUsualTag = {
      {"en", "en-US"}, {"fr", "fr-FR"}, {"de", "de-DE"},   {"es", "es-ES"},
      {"it", "it-IT"}, {"ko", "ko-KR"}, {"zh", "zh-Hans"}, {"ja", "ja-JP"},
      {"ru", "ru-RU"}, {"pt", "pt-BR"}};
  auto It = kUsualTag.find(PlatformLanguage);
  return It == kUsualTag.end() ? PlatformLanguage : It->second;
}

EFI_STATUS InstallImagePackageList(Firmware &Firmware, EFI_HANDLE ImageHandle,
                                   const VOID *PackageList) {
  if (ImageHandle == nullptr || PackageList == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Firmware.Handles().Install(&ImageHandle,
                                    gEfiHiiPackageListProtocolGuid,
                                    const_cast<VOID *>(PackageList));
}

EFI_STATUS UninstallImagePackageList(Firmware &Firmware,
                                     EFI_HANDLE ImageHandle,
                                     const VOID *PackageList) {
  return Firmware.Handles().Uninstall(ImageHandle,
                                      gEfiHiiPackageListProtocolGuid,
                                      const_cast<VOID *>(PackageList));
}

VOID ConnectSetupStrings(SetupProtocol &Setup, HiiDatabase &Hii) {
  Setup.SetStringResolver([&Hii](EFI_HII_HANDLE Handle, EFI_STRING_ID Id) {
    return Hii.TextInCurrentLanguage(Handle, Id);
  });
}

}  // namespace emu
