// The shell-command service answering from a replay directory on the boot
// volume: commands.txt lists "<output file>\t<command line>" per recorded
// run. A command line listed several times gets its outputs in order, the
// last one repeating; a command line not listed gets an empty output and a
// console line.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "HostConsole.h"
#include "HostProtocols.h"
#include "HostTextFile.h"
#include "HostVolume.h"

namespace {

constexpr UINTN kMaxEntries = 1024;
constexpr UINTN kMaxIndexSize = 256 * 1024;
constexpr UINTN kMaxOutputSize = 1024 * 1024;
constexpr UINTN kMaxPathChars = 260;

struct ReplayEntry {
  CHAR16 *CommandLine;
  UINT8 *Output;  // the tool's bytes, NUL after them
  UINTN OutputSize;
  BOOLEAN Used;
};

constinit ReplayEntry *gEntries = nullptr;
constinit UINTN gEntryCount = 0;
constinit UINTN gUnanswered = 0;

// A file name of commands.txt must stay inside the replay directory.
BOOLEAN IsPlainName(const CHAR8 *Name, UINTN Length) {
  if (Length == 0 || Name[0] == '/' || Name[0] == '\\') {
    return FALSE;
  }
  for (UINTN I = 0; I + 1 < Length; I++) {
    if (Name[I] == '.' && Name[I + 1] == '.') {
      return FALSE;
    }
  }
  for (UINTN I = 0; I < Length; I++) {
    if (Name[I] == ':' || static_cast<UINT8>(Name[I]) < 0x20) {
      return FALSE;
    }
  }
  return TRUE;
}

// Directory "\" Name, with '/' turned into '\'.
BOOLEAN JoinPath(CHAR16 *Path, const CHAR16 *Directory, const CHAR8 *Name,
                 UINTN Length) {
  if (EFI_ERROR(StrCpyS(Path, kMaxPathChars, Directory)) ||
      EFI_ERROR(StrCatS(Path, kMaxPathChars, u"\\"))) {
    return FALSE;
  }
  UINTN Used = StrLen(Path);
  if (Used + Length + 1 > kMaxPathChars) {
    return FALSE;
  }
  for (UINTN I = 0; I < Length; I++) {
    Path[Used++] = Name[I] == '/' ? u'\\' : static_cast<CHAR16>(Name[I]);
  }
  Path[Used] = 0;
  return TRUE;
}

// Where the outputs an index names are read from.
struct ReplaySource {
  EFI_FILE_PROTOCOL *Root;
  const CHAR16 *Directory;
};

// Adds the run of one index line: its output file read from the volume.
EFI_STATUS AddEntry(VOID *Context, const CHAR8 *Line, UINTN Length) {
  const ReplaySource &Source = *static_cast<const ReplaySource *>(Context);
  UINTN Tab = 0;
  while (Tab < Length && Line[Tab] != '\t') {
    Tab++;
  }
  if (Tab == Length || !IsPlainName(Line, Tab) || gEntryCount == kMaxEntries) {
    return EFI_VOLUME_CORRUPTED;
  }
  CHAR16 Path[kMaxPathChars];
  if (!JoinPath(Path, Source.Directory, Line, Tab)) {
    return EFI_VOLUME_CORRUPTED;
  }
  ReplayEntry &Entry = gEntries[gEntryCount];
  EFI_STATUS Status =
      HostReadFile(Source.Root, Path, kMaxOutputSize, &Entry.Output, &Entry.OutputSize);
  if (EFI_ERROR(Status)) {
    HostPrint("raidhost: replay output %s: %r\n", Path, Status);
    return Status;
  }
  Entry.CommandLine = HostUtf8ToString(Line + Tab + 1, Length - Tab - 1);
  if (Entry.CommandLine == nullptr) {
    FreePool(Entry.Output);
    return EFI_OUT_OF_RESOURCES;
  }
  gEntryCount++;
  return EFI_SUCCESS;
}

// The next output recorded for CommandLine, or NULL.
ReplayEntry *NextOutput(const CHAR16 *CommandLine) {
  ReplayEntry *Last = nullptr;
  for (UINTN I = 0; I < gEntryCount; I++) {
    if (StrCmp(gEntries[I].CommandLine, CommandLine) != 0) {
      continue;
    }
    Last = &gEntries[I];
    if (!gEntries[I].Used) {
      break;
    }
  }
  if (Last == nullptr) {
    return nullptr;
  }
  // Every output but the last listed one is used once.
  for (UINTN I = static_cast<UINTN>(Last - gEntries) + 1; I < gEntryCount; I++) {
    if (StrCmp(gEntries[I].CommandLine, CommandLine) == 0) {
      Last->Used = TRUE;
      break;
    }
  }
  return Last;
}

// Copies the recorded bytes as CHAR16 into Output, cut to fit. A cut
// output is EFI_BUFFER_TOO_SMALL with *OutputSize the bytes the whole
// needs, its NUL included, as the service's contract has it.
EFI_STATUS CopyOutput(const ReplayEntry *Entry, CHAR16 *Output,
                      UINTN *OutputSize) {
  const UINTN Room = *OutputSize / sizeof(CHAR16);
  *OutputSize = 0;
  if (Room > 0) {
    Output[0] = 0;
  }
  if (Entry == nullptr || Entry->OutputSize == 0) {
    return EFI_SUCCESS;
  }
  const CHAR8 *Bytes = reinterpret_cast<const CHAR8 *>(Entry->Output);
  const UINTN Chars = Utf8StrToUnicodeLength(Bytes, Entry->OutputSize);
  if (Room == 0) {
    *OutputSize = (Chars + 1) * sizeof(CHAR16);
    return EFI_BUFFER_TOO_SMALL;
  }
  CHAR16 *Wide = static_cast<CHAR16 *>(AllocatePool((Chars + 1) * sizeof(CHAR16)));
  if (Wide == nullptr ||
      EFI_ERROR(Utf8StrToUnicodeStrS(Bytes, Entry->OutputSize, Wide, Chars + 1))) {
    FreePool(Wide);
    return EFI_SUCCESS;
  }
  const UINTN Kept = Chars < Room - 1 ? Chars : Room - 1;
  CopyMem(Output, Wide, Kept * sizeof(CHAR16));
  Output[Kept] = 0;
  *OutputSize = Kept * sizeof(CHAR16);
  FreePool(Wide);
  if (Kept < Chars) {
    *OutputSize = (Chars + 1) * sizeof(CHAR16);
    return EFI_BUFFER_TOO_SMALL;
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Execute(const CHAR16 *CommandLine) {
  if (CommandLine == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (NextOutput(CommandLine) == nullptr) {
    gUnanswered++;
    HostPrint("[ShellCommandReplay]No recorded output for: %s\n", CommandLine);
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI ExecuteCapture(const CHAR16 *CommandLine, CHAR16 *Output,
                                 UINTN *OutputSize) {
  if (CommandLine == nullptr || OutputSize == nullptr ||
      (Output == nullptr && *OutputSize != 0)) {
    return EFI_INVALID_PARAMETER;
  }
  const ReplayEntry *Entry = NextOutput(CommandLine);
  if (Entry == nullptr) {
    gUnanswered++;
    HostPrint("[ShellCommandReplay]No recorded output for: %s\n", CommandLine);
  }
  return CopyOutput(Entry, Output, OutputSize);
}

constinit SHELL_COMMAND_PROTOCOL gShellCommand = {Execute, ExecuteCapture};

}  // namespace

EFI_STATUS HostLoadReplay(EFI_FILE_PROTOCOL *Root, const CHAR16 *Directory) {
  CHAR16 IndexPath[kMaxPathChars];
  if (EFI_ERROR(StrCpyS(IndexPath, kMaxPathChars, Directory)) ||
      EFI_ERROR(StrCatS(IndexPath, kMaxPathChars, u"\\commands.txt"))) {
    return EFI_INVALID_PARAMETER;
  }
  gEntries = static_cast<ReplayEntry *>(
      AllocateZeroPool(kMaxEntries * sizeof(ReplayEntry)));
  if (gEntries == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  ReplaySource Source = {Root, Directory};
  return HostReadFileLines(Root, IndexPath, kMaxIndexSize, AddEntry, &Source);
}

SHELL_COMMAND_PROTOCOL *HostShellCommand(VOID) { return &gShellCommand; }

UINTN HostReplayEntryCount(VOID) { return gEntryCount; }

UINTN HostReplayUnansweredCount(VOID) { return gUnanswered; }

VOID HostRewindReplay(VOID) {
  for (UINTN I = 0; I < gEntryCount; I++) {
    gEntries[I].Used = FALSE;
  }
}

VOID HostFreeReplay(VOID) {
  for (UINTN I = 0; I < gEntryCount; I++) {
    FreePool(gEntries[I].CommandLine);
    FreePool(gEntries[I].Output);
  }
  FreePool(gEntries);
  gEntries = nullptr;
  gEntryCount = 0;
}
