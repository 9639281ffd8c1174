// The read side of the Intel backend: the three reports that rebuild a
// controller's model.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibModelBuild.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"

namespace rste {

namespace {

typedef EFI_STATUS (*RSTE_REPORT_PARSER)(CHAR16 *Output,
                                         RAID_CONTROLLER *Controller,
                                         UINT32 *ErrorCode);

// Runs one report into the shared buffer and parses it; the status is
// traced whatever it is.
[[nodiscard]] EFI_STATUS ReadReport(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    const CHAR16 *Format,
                                    RSTE_REPORT_PARSER Parse,
                                    UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(RaidLibSharedRun(Caller), ErrorCode, Format, gRsteTool));
  EFI_STATUS Status = Parse(gRaidToolOutput, Controller, ErrorCode);
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Status : %r\n", Status);
  return Status;
}

}  // namespace

// Rebuilds the controller's model from "/V", "/I" and "/ST", unless the
// model is still current. The last report's status is returned.
EFI_STATUS RsteGetControllerInfo(RAID_CONTROLLER *Controller,
                                 RAID_CONTROLLER_PRIVATE *Private,
                                 UINT32 *ErrorCode) {
  (VOID)Private;
  *ErrorCode = 0;
  if (Controller == nullptr || Controller->Private == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RsteReady(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  RAID_CONTROLLER_PRIVATE *Own = Controller->Private;
  if ((Own->Flags & RAID_FLAG_OUTPUT_VALID) != 0) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Info is up to date.\n");
    return EFI_SUCCESS;
  }
  RaidLibReadScope Read(Controller);
  Status = RaidLibResetControllerModel(Controller);
  if (EFI_ERROR(Status)) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return Status;
  }
  Status = ReadReport(__func__, Controller, u"%S /V", ParseControllerVersion,
                      ErrorCode);
  Status = ReadReport(__func__, Controller, u"%S /I", ParseControllerInfo,
                      ErrorCode);
  if (Status == EFI_OUT_OF_RESOURCES) {
    // A model missing a disk shifts every row the operator picks from, so
    // a create could name disks not chosen: none is shown, the read fails
    // and the next read starts afresh.
    (VOID)RaidLibResetControllerModel(Controller);
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return Status;
  }
  Status = ReadReport(__func__, Controller, u"%S /ST", ParseSataInfo,
                      ErrorCode);
  Own->Flags |= RAID_FLAG_OUTPUT_VALID;
  return Status;
}

}  // namespace rste
