// The run's settings from the load options and the configuration file.
#include "HostRunMode.h"

#include <Library/BaseLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/LoadedImage.h>

#include "HostConsole.h"
#include "HostTextFile.h"

namespace {

constexpr UINTN kMaxConfigSize = 4096;
constexpr UINTN kMaxOptionChars = 512;

constexpr const CHAR8 *kModeNames[] = {"interactive", "screen", "dump"};

// The mode named by Length characters of Name; FALSE for none.
template <typename CHAR>
BOOLEAN ModeNamed(const CHAR *Name, UINTN Length, HostRunMode *Mode) {
  for (UINTN Index = 0; Index < ARRAY_SIZE(kModeNames); Index++) {
    const CHAR8 *Known = kModeNames[Index];
    UINTN Same = 0;
    while (Same < Length && Known[Same] != 0 &&
           Name[Same] == static_cast<CHAR>(Known[Same])) {
      Same++;
    }
    if (Same == Length && Known[Same] == 0) {
      *Mode = static_cast<HostRunMode>(Index);
      return TRUE;
    }
  }
  return FALSE;
}

// Looks for "--<mode>" among the words of the image's load options (the
// firmware or a shell may put the image's path first; binary options have
// no such word).
BOOLEAN ModeFromLoadOptions(EFI_HANDLE ImageHandle, HostRunMode *Mode) {
  EFI_LOADED_IMAGE_PROTOCOL *Image = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(ImageHandle, &gEfiLoadedImageProtocolGuid,
                                    reinterpret_cast<VOID **>(&Image))) ||
      Image->LoadOptions == nullptr) {
    return FALSE;
  }
  const CHAR16 *Options = static_cast<const CHAR16 *>(Image->LoadOptions);
  UINTN Count = Image->LoadOptionsSize / sizeof(CHAR16);
  if (Count > kMaxOptionChars) {
    Count = kMaxOptionChars;
  }
  BOOLEAN Found = FALSE;
  UINTN Start = 0;
  while (Start < Count) {
    UINTN End = Start;
    while (End < Count && Options[End] > u' ') {
      End++;
    }
    if (End - Start > 2 && Options[Start] == u'-' && Options[Start + 1] == u'-') {
      Found = ModeNamed(Options + Start + 2, End - Start - 2, Mode) || Found;
    }
    Start = End + 1;
  }
  return Found;
}

// The decimal count of Length characters, within 1 to kHostMaxCycles.
BOOLEAN CyclesNamed(const CHAR8 *Text, UINTN Length, UINTN *Cycles) {
  UINTN Value = 0;
  for (UINTN I = 0; I < Length; I++) {
    if (Text[I] < '0' || Text[I] > '9' || Value > kHostMaxCycles) {
      return FALSE;
    }
    Value = Value * 10 + static_cast<UINTN>(Text[I] - '0');
  }
  if (Length == 0 || Value == 0 || Value > kHostMaxCycles) {
    return FALSE;
  }
  *Cycles = Value;
  return TRUE;
}

struct ConfigRead {
  BOOLEAN ModeFound;
  HostSettings Settings;
};

// Takes the value of one setting; FALSE when it names nothing known.
BOOLEAN TakeMode(ConfigRead &Config, const CHAR8 *Value, UINTN Length) {
  if (!ModeNamed(Value, Length, &Config.Settings.Mode)) {
    return FALSE;
  }
  Config.ModeFound = TRUE;
  return TRUE;
}

BOOLEAN TakeTrace(ConfigRead &Config, const CHAR8 *Value, UINTN Length) {
  return HostTraceRouteNamed(Value, Length, &Config.Settings.Trace);
}

BOOLEAN TakeCycles(ConfigRead &Config, const CHAR8 *Value, UINTN Length) {
  return CyclesNamed(Value, Length, &Config.Settings.Cycles);
}

struct ConfigKey {
  const CHAR8 *Key;  // with its '='
  BOOLEAN (*Take)(ConfigRead &Config, const CHAR8 *Value, UINTN Length);
};

constexpr ConfigKey kConfigKeys[] = {
    {"mode=", TakeMode},
    {"trace=", TakeTrace},
    {"cycles=", TakeCycles},
};

// One line of the configuration: "key=value"; '#' starts a comment line.
EFI_STATUS ReadConfigLine(VOID *Context, const CHAR8 *Line, UINTN Length) {
  ConfigRead &Config = *static_cast<ConfigRead *>(Context);
  if (Line[0] == '#') {
    return EFI_SUCCESS;
  }
  while (Length > 0 && (Line[Length - 1] == ' ' || Line[Length - 1] == '\t')) {
    Length--;
  }
  for (const ConfigKey &Key : kConfigKeys) {
    const UINTN KeyLength = AsciiStrLen(Key.Key);
    if (Length > KeyLength && AsciiStrnCmp(Line, Key.Key, KeyLength) == 0 &&
        Key.Take(Config, Line + KeyLength, Length - KeyLength)) {
      return EFI_SUCCESS;
    }
  }
  CHAR8 Shown[80];
  const UINTN ShownLength = Length < sizeof(Shown) - 1 ? Length : sizeof(Shown) - 1;
  for (UINTN I = 0; I < ShownLength; I++) {
    Shown[I] = Line[I];
  }
  Shown[ShownLength] = 0;
  HostPrint("raidhost: configuration line ignored: %a\n", Shown);
  return EFI_SUCCESS;
}

}  // namespace

HostSettings HostReadSettings(EFI_HANDLE ImageHandle, EFI_FILE_PROTOCOL *Root,
                              const CHAR16 *ConfigPath) {
  ConfigRead Config = {FALSE, {HostModeInteractive, "default", HostTraceConsole, 1}};
  const EFI_STATUS Status =
      HostReadFileLines(Root, ConfigPath, kMaxConfigSize, ReadConfigLine, &Config);
  if (EFI_ERROR(Status)) {
    HostPrint("raidhost: %s: %r\n", ConfigPath, Status);
  }
  if (Config.ModeFound) {
    Config.Settings.ModeSource = "configuration file";
  }
  if (ModeFromLoadOptions(ImageHandle, &Config.Settings.Mode)) {
    Config.Settings.ModeSource = "load options";
  }
  return Config.Settings;
}

const CHAR8 *HostRunModeName(HostRunMode Mode) {
  return Mode < ARRAY_SIZE(kModeNames) ? kModeNames[Mode] : "unknown";
}
