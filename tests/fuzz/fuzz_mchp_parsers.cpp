// Feeds arbitrary bytes, one byte per character as arcconf prints them,
// through the Microchip backend's parsers. The first byte chooses the
// parser: the adapter count of "list", the getconfig reader with the free
// segments read from a copy of the same bytes, or a keyword scanner on the
// first line. Every record built is released again, the drive table holds
// only drives within its count, and the pool must be back where it started.
#include <cstddef>
#include <cstdint>

#include "FuzzModel.h"
#include "MchpBackend.h"

using namespace mchp;

namespace {

constexpr std::size_t kCopyChars = MCHP_GETCONFIG_COPY_BYTES / sizeof(CHAR16);

// The bytes into Buffer as characters, terminated; the characters stored.
std::size_t Load(CHAR16 *Buffer, std::size_t Chars, const std::uint8_t *Data,
                 std::size_t Size) {
  std::size_t Length = Size < Chars - 1 ? Size : Chars - 1;
  for (std::size_t I = 0; I < Length; I++) {
    Buffer[I] = Data[I];
  }
  Buffer[Length] = 0;
  return Length;
}

VOID ScanKeywords(const CHAR16 *Line) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  (void)iGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS);
  (void)iiGetKeyWord(Line, u"#", Value, MCHP_KEYWORD_CHARS);
  (void)iiGetKeyWord(Line, u" number ", Value, MCHP_KEYWORD_CHARS);
  (void)sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS);
  // A buffer of one character holds the terminator only.
  CHAR16 Tiny[1] = {u'x'};
  if (sGetKeyWord(Line, Tiny, 1) != nullptr && Tiny[0] != 0) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  std::size_t Before = fuzz_model::World().Memory().OutstandingCount();
  std::uint8_t Choice = Data[0] % 3;
  Data++;
  Size--;
  RAID_CONTROLLER *Controller = fuzz_model::NewController();
  UINT32 ErrorCode = 0;
  CHAR16 *Output = gMchpGetconfigOutput;
  switch (Choice) {
    case 0:
      Load(Output, kCopyChars, Data, Size);
      (void)ParseControllerShowCtrlCount(Output, &ErrorCode);
      break;
    case 1: {
      Load(Output, kCopyChars, Data, Size);
      Load(gMchpGetconfigCopy, kCopyChars, Data, Size);
      (void)ParseControllerShow(Output, kCopyChars, Controller, &ErrorCode);
      (void)ParseControllerShowFS(gMchpGetconfigCopy, kCopyChars, Controller,
                                  &ErrorCode);
      break;
    }
    default: {
      std::size_t Line = 0;
      while (Line < Size && Data[Line] != '\n') {
        Line++;
      }
      Load(Output, kCopyChars, Data, Line);
      ScanKeywords(Output);
      break;
    }
  }
  fuzz_model::ReleaseAndCheck(Controller, Before);
  return 0;
}
