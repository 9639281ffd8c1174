// The host a parser benchmark runs the module on: the firmware emulator
// with two stand-ins that keep the host's own cost out of the module's
// figure. The pool keeps freed blocks on free lists by size, as a firmware
// pool does (the emulator's ledger is measured on its own by
// bench_emu_pool, and the C library's allocator, whose bookkeeping costs
// some 20 ns a block in these reads, is no part of the module), and the
// shell-command service
// answers each command line with text made once, copied into the caller's
// buffer the way a shell hands over a tool's output.
//
// Every benchmark is a pair run in the same process: "<name>" times the
// module's read, "<name>_scan" the floor, the same outputs copied into the
// buffer the same way and passed over once counting lines. Both report the
// bytes of tool text in the "bytes" counter; scripts/bench.sh pairs them.
#pragma once

#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/ShellCommand.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "RaidLib.h"
#include "RaidLibToolRunner.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"

namespace bench {

// Tool text as the shell service hands it over (ASCII widened to CHAR16).
inline std::u16string Widen(const std::string &Text) {
  return std::u16string(Text.begin(), Text.end());
}

// One pass over Text as the floor reads it: the copy into Buffer (cut to
// BufferChars with a terminator, as the shell cuts) and a count of its
// lines.
inline UINTN CopyAndCountLines(const std::u16string &Text, CHAR16 *Buffer,
                               UINTN BufferChars) {
  const UINTN Count = std::min<UINTN>(Text.size(), BufferChars - 1);
  std::memcpy(Buffer, Text.data(), Count * sizeof(CHAR16));
  Buffer[Count] = 0;
  UINTN Lines = 0;
  for (const CHAR16 *Cursor = Buffer; *Cursor != 0; Cursor++) {
    Lines += *Cursor == u'\n';
  }
  return Lines;
}

// Pool blocks in classes of 16 bytes, each class a free list; a block
// carries its class in a 16-byte header. Blocks larger than the largest
// class come from malloc. Nothing is given back before the process ends.
class FreeListPool {
 public:
  static void *Take(size_t Size) {
    const size_t Class = (Size + kHeader + kUnit - 1) / kUnit;
    if (Class >= kClasses) {
      auto *Block = static_cast<unsigned char *>(std::malloc(Size + kHeader));
      if (Block == nullptr) {
        return nullptr;
      }
      *reinterpret_cast<size_t *>(Block) = 0;
      return Block + kHeader;
    }
    Link *&Head = Heads()[Class];
    unsigned char *Block = reinterpret_cast<unsigned char *>(Head);
    if (Block != nullptr) {
      Head = Head->Next;
    } else {
      Block = Carve(Class * kUnit);
      if (Block == nullptr) {
        return nullptr;
      }
    }
    *reinterpret_cast<size_t *>(Block) = Class;
    return Block + kHeader;
  }
  static void Give(void *Pointer) {
    unsigned char *Block = static_cast<unsigned char *>(Pointer) - kHeader;
    const size_t Class = *reinterpret_cast<size_t *>(Block);
    if (Class == 0) {
      std::free(Block);
      return;
    }
    Link *Freed = reinterpret_cast<Link *>(Block);
    Freed->Next = Heads()[Class];
    Heads()[Class] = Freed;
  }

 private:
  struct Link {
    Link *Next;
  };
  static constexpr size_t kUnit = 16;
  static constexpr size_t kHeader = 16;
  static constexpr size_t kClasses = 257;  // blocks up to 4 KiB
  static constexpr size_t kChunk = 1 << 20;

  static Link **Heads() {
    static Link *Lists[kClasses] = {};
    return Lists;
  }
  // Bytes for a new block from the current chunk; a new chunk when it is
  // used up (the rest of the old one stays unused).
  static unsigned char *Carve(size_t Bytes) {
    static unsigned char *Next = nullptr;
    static size_t Left = 0;
    if (Left < Bytes) {
      Next = static_cast<unsigned char *>(std::malloc(kChunk));
      Left = Next != nullptr ? kChunk : 0;
      if (Next == nullptr) {
        return nullptr;
      }
    }
    unsigned char *Block = Next;
    Next += Bytes;
    Left -= Bytes;
    return Block;
  }
};

class LeanHost {
 public:
  LeanHost() {
    Tables_ = *Firmware_.SystemTable();
    BootServices_ = *Firmware_.SystemTable()->BootServices;
    BootServices_.AllocatePool = Allocate;
    BootServices_.FreePool = Free;
    Tables_.BootServices = &BootServices_;
    gST = &Tables_;
    gBS = &BootServices_;
    Shell_ = {Execute, ExecuteCapture};
    (void)Firmware_.Handles().Install(&ShellHandle_, gShellCommandProtocolGuid,
                                      &Shell_);
    Active() = this;
    RaidLibResetToolRunner();
  }
  ~LeanHost() {
    RaidLibResetToolRunner();
    (void)Firmware_.Handles().Uninstall(ShellHandle_, gShellCommandProtocolGuid,
                                        &Shell_);
    Active() = nullptr;
    gBS = nullptr;
    gST = nullptr;
  }
  LeanHost(const LeanHost &) = delete;
  LeanHost &operator=(const LeanHost &) = delete;

  emu::Firmware &Firmware() { return Firmware_; }

  // The virtual adapter's tool: a command line the module runs for the
  // first time is answered by it, and the answer is kept for every later
  // run of that line.
  using Tool = std::function<std::string(const std::string &CommandLine)>;
  void SetTool(Tool Run) { Tool_ = std::move(Run); }
  // The outputs handed over since the last call, in order; the log starts
  // empty and is kept only while Logging is set.
  std::vector<const std::u16string *> TakeLog() { return std::move(Log_); }
  void SetLogging(bool Logging) { Logging_ = Logging; }

 private:
  static LeanHost *&Active() {
    static LeanHost *Host = nullptr;
    return Host;
  }
  static EFI_STATUS EFIAPI Allocate(EFI_MEMORY_TYPE, UINTN Size,
                                    VOID **Buffer) {
    *Buffer = FreeListPool::Take(Size);
    return *Buffer == nullptr ? EFI_OUT_OF_RESOURCES : EFI_SUCCESS;
  }
  static EFI_STATUS EFIAPI Free(VOID *Buffer) {
    FreeListPool::Give(Buffer);
    return EFI_SUCCESS;
  }
  static EFI_STATUS EFIAPI Execute(const CHAR16 *) { return EFI_SUCCESS; }
  static EFI_STATUS EFIAPI ExecuteCapture(const CHAR16 *CommandLine,
                                          CHAR16 *Output, UINTN *OutputSize) {
    LeanHost &Self = *Active();
    const std::u16string Line(reinterpret_cast<const char16_t *>(CommandLine));
    auto Found = Self.Answers_.find(Line);
    if (Found == Self.Answers_.end()) {
      const std::string Output =
          Self.Tool_ ? Self.Tool_(std::string(Line.begin(), Line.end())) : "";
      Found = Self.Answers_.emplace(Line, Widen(Output)).first;
    }
    const std::u16string &Text = Found->second;
    if (Self.Logging_) {
      Self.Log_.push_back(&Text);
    }
    const UINTN Capacity = *OutputSize / sizeof(CHAR16);
    if (Capacity == 0) {
      return EFI_SUCCESS;
    }
    const UINTN Count = std::min<UINTN>(Text.size(), Capacity - 1);
    std::memcpy(Output, Text.data(), Count * sizeof(CHAR16));
    Output[Count] = 0;
    *OutputSize = Count * sizeof(CHAR16);
    return EFI_SUCCESS;
  }

  emu::Firmware Firmware_;
  EFI_SYSTEM_TABLE Tables_{};
  EFI_BOOT_SERVICES BootServices_{};
  SHELL_COMMAND_PROTOCOL Shell_{};
  EFI_HANDLE ShellHandle_ = nullptr;
  Tool Tool_;
  std::map<std::u16string, std::u16string> Answers_;
  std::vector<const std::u16string *> Log_;
  bool Logging_ = false;
};

// The floor of a read: the outputs it was handed, each copied into a buffer
// of BufferChars and passed over once.
inline void ScanOutputs(benchmark::State &State,
                        const std::vector<const std::u16string *> &Outputs,
                        UINTN BufferChars) {
  std::vector<CHAR16> Buffer(BufferChars);
  UINTN Bytes = 0;
  for (const std::u16string *Text : Outputs) {
    Bytes += std::min<UINTN>(Text->size(), BufferChars - 1) * sizeof(CHAR16);
  }
  for (auto _ : State) {
    UINTN Lines = 0;
    for (const std::u16string *Text : Outputs) {
      Lines += CopyAndCountLines(*Text, Buffer.data(), BufferChars);
    }
    benchmark::DoNotOptimize(Lines);
  }
  State.counters["bytes"] = static_cast<double>(Bytes);
}

// The floor of a parse of one text loaded into the shared output buffer.
inline void ScanText(benchmark::State &State, const std::string &Text) {
  const std::u16string Wide = Widen(Text);
  ScanOutputs(State, {&Wide}, RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16));
}

// Loads Text into the shared output buffer as the shell would.
inline CHAR16 *LoadShared(const std::u16string &Text) {
  const UINTN Capacity = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16);
  const UINTN Count = std::min<UINTN>(Text.size(), Capacity - 1);
  std::memcpy(gRaidToolOutput, Text.data(), Count * sizeof(CHAR16));
  gRaidToolOutput[Count] = 0;
  gRaidToolOutputSize = Count * sizeof(CHAR16);
  return gRaidToolOutput;
}

// A backend's full read of one adapter, as the wizard asks for it.
struct ReadCase {
  LeanHost::Tool Tool;
  const char16_t *ToolName = u"";
  UINT32 CardId = 0;
  // GetControllerInfo of the backend.
  EFI_STATUS (*Read)(RAID_CONTROLLER *, RAID_CONTROLLER_PRIVATE *,
                     UINT32 *) = nullptr;
  // The drives the model must hold (0: any number but none).
  UINT32 Drives = 0;
  // The characters of the buffer the backend reads its outputs into.
  UINTN BufferChars = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16);

  [[nodiscard]] RAID_CONTROLLER *NewController() const {
    RAID_CONTROLLER *Controller =
        backend_test::NewToolController(ToolName, u"adapter", nullptr);
    Controller->Private->CardId = CardId;
    return Controller;
  }
  [[nodiscard]] bool Holds(const RAID_CONTROLLER *Controller) const {
    return Drives == 0 ? Controller->DiskDriveCount != 0
                       : Controller->DiskDriveCount == Drives;
  }
};

// The first read of Case on Host, untimed: whether it built the model, and
// the outputs it was handed in *Outputs.
inline bool FirstRead(LeanHost &Host, const ReadCase &Case,
                      RAID_CONTROLLER *Controller,
                      std::vector<const std::u16string *> *Outputs) {
  Host.SetLogging(true);
  UINT32 ErrorCode = 0;
  const bool Read = !EFI_ERROR(Case.Read(Controller, nullptr, &ErrorCode)) &&
                    Case.Holds(Controller);
  Host.SetLogging(false);
  *Outputs = Host.TakeLog();
  return Read;
}

// Times Case's read with the model built afresh each time (the cached
// output marked stale, as a refresh does).
inline void TimeRead(benchmark::State &State, const ReadCase &Case) {
  LeanHost Host;
  Host.SetTool(Case.Tool);
  RAID_CONTROLLER *Controller = Case.NewController();
  std::vector<const std::u16string *> Outputs;
  bool Read = FirstRead(Host, Case, Controller, &Outputs);
  UINT32 ErrorCode = 0;
  UINTN Bytes = 0;
  for (const std::u16string *Text : Outputs) {
    Bytes +=
        std::min<UINTN>(Text->size(), Case.BufferChars - 1) * sizeof(CHAR16);
  }
  for (auto _ : State) {
    if (!Read) {
      State.SkipWithError("the read did not build the model");
      break;
    }
    Controller->Private->Flags &= ~RAID_FLAG_OUTPUT_VALID;
    Read = !EFI_ERROR(Case.Read(Controller, nullptr, &ErrorCode));
  }
  State.counters["bytes"] = static_cast<double>(Bytes);
  RaidLibFreeController(Controller);
}

// The floor of Case's read: the outputs one read is handed, each passed
// over once.
inline void ScanRead(benchmark::State &State, const ReadCase &Case) {
  LeanHost Host;
  Host.SetTool(Case.Tool);
  RAID_CONTROLLER *Controller = Case.NewController();
  std::vector<const std::u16string *> Outputs;
  (void)FirstRead(Host, Case, Controller, &Outputs);
  RaidLibFreeController(Controller);
  ScanOutputs(State, Outputs, Case.BufferChars);
}

// Registers the pair "<Name>" and "<Name>_scan" for a read.
inline void RegisterRead(const std::string &Name, ReadCase (*Make)()) {
  benchmark::RegisterBenchmark(Name.c_str(), [Make](benchmark::State &State) {
    TimeRead(State, Make());
  });
  benchmark::RegisterBenchmark((Name + "_scan").c_str(),
                               [Make](benchmark::State &State) {
                                 ScanRead(State, Make());
                               });
}

}  // namespace bench
