// Feeds arbitrary bytes, one byte per character as storcli prints them,
// through the MegaRAID backend's parsers in the shared output buffer. The
// first byte chooses the parser; the free-space and volume parsers run on a
// model the same bytes built as a controller summary. Every record built is
// released again and the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include "LsiBackend.h"
#include "FuzzModel.h"
#include "ScriptedTool.h"
#include "RaidLibToolRunner.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "emu/Emulator.h"

using namespace lsi;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  std::size_t Before = fuzz_model::World().Memory().OutstandingCount();
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
      (void)ParseControllerShow(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 1:
      (void)ParseControllerShow(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      (void)ParseControllerShowFS(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 2:
      (void)ParseControllerShowVolume(backend_test::LoadToolBytes(Data, Size), &Volume, &ErrorCode);
      break;
    case 3:
      (void)ParseErrCd(backend_test::LoadToolBytes(Data, Size), &ErrorCode);
      break;
    case 4:
      (void)ParseActionStatus(backend_test::LoadToolBytes(Data, Size), Controller, &Result);
      break;
    case 5:
      (void)ParseBDF(backend_test::LoadToolBytes(Data, Size), Controller, 1, &ErrorCode);
      break;
    default:
      (void)LsiParseControllerShowCtrlCount(backend_test::LoadToolBytes(Data, Size), &ErrorCode);
      break;
  }
  fuzz_model::ReleaseAndCheck(Controller, Before);
  return 0;
}
