// Running a vendor's command-line tool through the host's shell-command
// service. One command at a time: the output lands in one shared buffer and
// is parsed before the next command runs.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

// The shared output buffer: 80960 bytes of CHAR16 text.
#define RAID_TOOL_OUTPUT_SIZE 80960
// Command lines are formatted into 200 bytes: at most 100 characters with
// the terminator. Some commands name many drives and need a longer buffer,
// up to RAID_TOOL_LONGEST_COMMAND_CHARS characters.
#define RAID_TOOL_COMMAND_SIZE 200
#define RAID_TOOL_LONGEST_COMMAND_CHARS 2048

extern CHAR16 gRaidToolOutput[RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16)];
extern UINTN gRaidToolOutputSize;
// A pool copy of tool output some backends keep between commands; freed by
// FinalizeRaid.
extern CHAR16 *gRaidToolOutputCopy;
// The adapter the current command addresses, set by RaidLibGetController.
extern UINT32 gRaidCurrentCardId;

// Locates the shell-command service on first use; a failure is traced
// under Caller's name, the operation that needed the tool.
[[nodiscard]] EFI_STATUS RaidLibLocateShellCommand(const CHAR8 *Caller,
                                                   UINT32 *ErrorCode);

// What a text argument of a command line ("%W" in its format) must be to
// reach the tool as one word. Every family refuses an empty text, blanks,
// control characters and the characters the shell groups, escapes,
// expands, redirects or comments with (" ^ % < > | #); a family adds what
// its tool reads as a separator:
#define RAID_TOOL_WORD_PLAIN 0U
// "/" starts a switch or an object path (RCfgSata's "/D:", storcli's "/c0").
#define RAID_TOOL_WORD_NO_SLASH 0x1U
// A leading "-" reads as an option (mvsetup's "-n <name>").
#define RAID_TOOL_WORD_NO_LEADING_DASH 0x2U

// TRUE when Text reaches the tool as one word under Words; otherwise
// traced under Caller as "[<Caller>]"<text>" would not reach the tool as
// one word, not run" and *ErrorCode set to RAID_ERROR_NOT_ONE_WORD.
[[nodiscard]] BOOLEAN RaidLibToolWord(const CHAR8 *Caller, const CHAR16 *Text,
                                      UINT32 Words, UINT32 *ErrorCode);

// Formats a command line into CommandLine of CommandChars characters: the
// one builder of every line a tool is given. Format is a PrintLib format
// in which "%W" stands for a text that must reach the tool as one word
// (checked as RaidLibToolWord checks it; a refusal is
// EFI_INVALID_PARAMETER). A line that does not fit is refused, never cut:
// traced as "[<Caller>]Command does not fit in <n> characters, not run:
// <cut text>", error code RAID_ERROR_BUFFER_TOO_SMALL,
// EFI_BUFFER_TOO_SMALL. A cut line can name another object than the whole
// one ("/v12" cut to "/v1"), so nothing may run a refused line.
[[nodiscard]] EFI_STATUS EFIAPI RaidLibFormatCommand(
    const CHAR8 *Caller, CHAR16 *CommandLine, UINTN CommandChars,
    UINT32 Words, UINT32 *ErrorCode, const CHAR16 *Format, ...);
[[nodiscard]] EFI_STATUS RaidLibVFormatCommand(const CHAR8 *Caller,
                                               CHAR16 *CommandLine,
                                               UINTN CommandChars, UINT32 Words,
                                               UINT32 *ErrorCode,
                                               const CHAR16 *Format,
                                               VA_LIST Marker);

// The longest tool name raid.xml may give: with it, every command line of
// every family fits its buffer whatever the ids it carries.
#define RAID_TOOL_NAME_CHARS 32

// TRUE when Name is a tool's file name as the command lines take it: 1 to
// RAID_TOOL_NAME_CHARS letters, digits, "_", "-" and ".", not beginning
// with "-" or ".", ending in ".efi" (any case). raid.xml is checked with it
// once, when the profile is read.
[[nodiscard]] BOOLEAN RaidLibIsToolFileName(const CHAR16 *Name);

// One run of a vendor tool: the operation that runs it (named in the
// "Command:" trace), the buffer its command line is formatted into, and
// where its output lands. The output buffer and its size come with the run:
// most runs use the shared buffer, a backend may keep a larger one of its
// own.
typedef struct {
  const CHAR8 *Caller;
  UINTN CommandChars;  // line and terminator; at most the longest command
  CHAR16 *Output;
  UINTN OutputSize;  // bytes
  UINT32 Words;      // RAID_TOOL_WORD_* for the line's "%W" texts
} RAID_TOOL_RUN;

// A run into the shared output buffer.
[[nodiscard]] inline RAID_TOOL_RUN RaidLibSharedRun(
    const CHAR8 *Caller,
    UINTN CommandChars = RAID_TOOL_COMMAND_SIZE / sizeof(CHAR16),
    UINT32 Words = RAID_TOOL_WORD_PLAIN) {
  return {Caller, CommandChars, gRaidToolOutput, RAID_TOOL_OUTPUT_SIZE, Words};
}

// Formats the command line (the tool name is the caller's first argument),
// traces "[<Caller>]Command: <line>", and runs it into the run's output,
// whose size the runner sets before the call. The output is cleared to an
// empty string first, so a failed run leaves no stale text. A line that
// does not fit its buffer, or a "%W" text that is no one word, is refused
// as RaidLibFormatCommand refuses it, and nothing is run. An output the
// service cut is noted (RaidLibNoteCutOutput) and counts as arrived:
// EFI_SUCCESS, the size word the bytes that landed. Returns the shell
// service's status, or the refusal.
[[nodiscard]] EFI_STATUS EFIAPI RaidLibRunTool(const RAID_TOOL_RUN &Run,
                                               UINT32 *ErrorCode,
                                               const CHAR16 *Format, ...);

// An output that did not fit its buffer, whether the shell-command service
// cut it (EFI_BUFFER_TOO_SMALL) or a backend keeps only its head: traced
// under Caller as "[<Caller>]Tool output cut: it needs <n> bytes, the
// buffer holds <m>; read as far as it arrived", and the controller being
// read, if any, is marked RAID_FLAG_OUTPUT_CUT. The parsers read what
// arrived, as with any output.
VOID RaidLibNoteCutOutput(const CHAR8 *Caller, UINTN NeededBytes,
                          UINTN HeldBytes);

// The read of one controller's configuration, from its first run to the
// end of its scope: a cut output met meanwhile marks the controller. The
// mark of its previous read goes when the new read starts, so the mark
// always speaks of the model as it stands.
class RaidLibReadScope {
 public:
  explicit RaidLibReadScope(RAID_CONTROLLER *Controller);
  ~RaidLibReadScope();
  RaidLibReadScope(const RaidLibReadScope &) = delete;
  RaidLibReadScope &operator=(const RaidLibReadScope &) = delete;

 private:
  RAID_CONTROLLER *Outer_;
};

// Marks a run whose status is deliberately not looked at: the caller judges
// the tool's output (a failed or refused run left it empty), or, where the
// tool's protocol has it so, judges nothing at all.
inline VOID RaidLibOutputJudgedByCaller(EFI_STATUS RunStatus) {
  (VOID)RunStatus;
}

// Forgets the located service (the module is being unloaded).
VOID RaidLibResetToolRunner();
