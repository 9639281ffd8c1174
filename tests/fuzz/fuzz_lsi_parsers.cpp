// Feeds arbitrary bytes, one byte per character as storcli prints them,
// through the MegaRAID backend's parsers in the shared output buffer. The
// first byte chooses the parser; the free-space and volume parsers run on a
// model the same bytes built as a controller summary. Every record built is
// released again and the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include "LsiBackend.h"
#include "FuzzModel.h"
#include "RaidLibToolRunner.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "emu/Emulator.h"

using namespace lsi;

namespace {

CHAR16 *Load(const std::uint8_t *Data, std::size_t Size) {
  std::size_t Limit = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  std::size_t Length = Size < Limit ? Size : Limit;
  for (std::size_t I = 0; I < Length; I++) {
    gRaidToolOutput[I] = Data[I];
  }
  gRaidToolOutput[Length] = 0;
  return gRaidToolOutput;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  std::size_t Before = fuzz_model::World().Memory().Outstanding().size();
  std::uint8_t Choice = Data[0] % 7;
  Data++;
  Size--;
  RAID_CONTROLLER *Controller = fuzz_model::NewController();
  Controller->Private->Bus = 3;
  UINT32 ErrorCode = 0;
  UINT32 Result = 0;
  RAID_VOLUME Volume = {};
  switch (Choice) {
    case 0:
      (void)ParseControllerShow(Load(Data, Size), Controller, &ErrorCode);
      break;
    case 1:
      (void)ParseControllerShow(Load(Data, Size), Controller, &ErrorCode);
      (void)ParseControllerShowFS(Load(Data, Size), Controller, &ErrorCode);
      break;
    case 2:
      (void)ParseControllerShowVolume(Load(Data, Size), &Volume, &ErrorCode);
      break;
    case 3:
      (void)ParseErrCd(Load(Data, Size), &ErrorCode);
      break;
    case 4:
      (void)ParseActionStatus(Load(Data, Size), Controller, &Result);
      break;
    case 5:
      (void)ParseBDF(Load(Data, Size), Controller, 1, &ErrorCode);
      break;
    default:
      (void)LsiParseControllerShowCtrlCount(Load(Data, Size), &ErrorCode);
      break;
  }
  fuzz_model::ReleaseAndCheck(Controller, Before);
  return 0;
}
