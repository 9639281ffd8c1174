// Feeds arbitrary bytes, one byte per character as RCfgSata.efi prints
// them, through the Intel backend's report parsers and its verdict parser
// in the shared output buffer. The first byte chooses the parser (and the
// report layout or operation kind); "/ST" also runs on the model the same
// bytes built as an "/I" report. Every record built is released again and
// the pool must be back where it started.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "FuzzModel.h"
#include "RaidLibModelBuild.h"
#include "RsteBackend.h"
#include "ScriptedTool.h"

using namespace rste;

namespace {

// Each array holds what its free-segment count says, and at most one free
// segment, whatever the report said.
void CheckArrays(RAID_CONTROLLER *Controller) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    UINT32 Free = 0;
    for (RAID_VOLUME *Segment :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      Free += Segment->IsVolume == 0 ? 1 : 0;
    }
    if (Free != Array->FreeSegmentCount || Free > 1) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  const std::size_t Before = fuzz_model::World().Memory().OutstandingCount();
  const std::uint8_t Choice = Data[0];
  Data++;
  Size--;
  gRsteVrocLayout = (Choice & 0x10) != 0 ? 1 : 0;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"RCfgSata.efi", u"Intel", nullptr);
  UINT32 ErrorCode = 0;
  switch (Choice % 4) {
    case 0:
      (void)ParseControllerInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 1:
      (void)ParseControllerInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      (void)ParseSataInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 2:
      (void)ParseError(backend_test::LoadToolBytes(Data, Size), (Choice >> 2) % 9, &ErrorCode);
      break;
    default:
      (void)ParseControllerVersion(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
  }
  CheckArrays(Controller);
  RsteResetState();
  fuzz_model::ReleaseAndCheck(Controller, Before);
  return 0;
}
