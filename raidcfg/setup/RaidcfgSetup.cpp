// Start-up and shutdown of the RAID setup module. Start-up connects the
// module to its host (setup protocol, HII strings, GUI driver, data-source
// protocol), prepares the error box and builds the wizard, whose first page
// runs the adapter discovery. Shutdown undoes it in reverse order.
//
// Trace lines between the start-up steps carry the time-stamp counter, "A"
// naming the step just done and "B" the next, so start-up cost can be read
// off the log.
#include "setup/ModuleEntry.h"

#include <Library/UefiBootServicesTableLib.h>

#include "EsaDrvMgr.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

namespace {

// Boot and runtime services of the system table the host started us with.
constinit EFI_BOOT_SERVICES *gSetupBootServices = nullptr;
constinit EFI_RUNTIME_SERVICES *gSetupRuntimeServices = nullptr;

// Writes the time stamp between two start-up steps.
#define RAID_TRACE_STEP(Done, Next)                                         \
  RAID_TRACE(TARN_DEBUG_INFO,                                              \
             "RAID: [%a] A " Done " B " Next ": TimeStamp: %016lx\n",      \
             RaidReadTimeStamp())

// A start-up step that may fail without failing the load: the module stays
// loaded with whatever of its host it could reach, so the step's status is
// deliberately not looked at.
VOID StartupGoesOn(EFI_STATUS StepStatus) { (VOID) StepStatus; }

}  // namespace

// Connects the module to its host and builds the wizard. Always succeeds: a
// missing host protocol or a failed discovery must not fail the load.
EFI_STATUS EFIAPI RaidcfgSetupEntryPoint(EFI_HANDLE ImageHandle,
                                         EFI_SYSTEM_TABLE *SystemTable) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Entry\n");
  gSetupBootServices = SystemTable->BootServices;
  gSetupRuntimeServices = SystemTable->RuntimeServices;
  RAID_TRACE_STEP("Entry", "InitAmiLib");

  InitAmiLib(ImageHandle, SystemTable);
  RAID_TRACE_STEP("InitAmiLib", "GetTARNSetupProtocol");

  StartupGoesOn(GetTARNSetupProtocol());
  RAID_TRACE_STEP("GetTARNSetupProtocol", "prepare");

  RaidRegisterHiiPackages(ImageHandle);
  RAID_TRACE_STEP("prepare", "RaidcfgApplicationInit");

  StartupGoesOn(RaidcfgApplicationInit(ImageHandle, SystemTable));
  RAID_TRACE_STEP("RaidcfgApplicationInit", "InitRaidSetupDSProtocol");

  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Initialize data source protocol\n");
  StartupGoesOn(InitRaidSetupDSProtocol(ImageHandle));
  RAID_TRACE_STEP("InitRaidSetupDSProtocol", "init_Raid_Err_Array");

  init_Raid_Err_Array();
  RAID_TRACE_STEP("init_Raid_Err_Array", "InitializeRaidSetupWizards");

  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Initialie RAID Setup wizard\n");
  InitializeRaidSetupWizards();
  RAID_TRACE_STEP("InitializeRaidSetupWizards", "return");
  return EFI_SUCCESS;
}

// Releases the RAID model, the wizard's tables and pages, and the host
// connections, in the reverse order of start-up.
EFI_STATUS EFIAPI RaidcfgSetupExitPoint(EFI_HANDLE ImageHandle) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");

  UINT32 ErrorCode = 0;
  FinalizeRaid(&ErrorCode);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Release RAID lib memory done %08x\n",
             ErrorCode);

  RaidFreeVolumeParameterQueue();
  gCurrentRaidController = nullptr;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Clean RAID volumes and tables done\n");

  RaidFreeWizardDynamicNodes();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Free dynamic node memory done\n");

  RaidFreeWizardPages();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Free pages' node done\n");

  EFI_STATUS Status = UnInitRaidSetupDSProtocol(ImageHandle);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Uninstall RAID Setup data source protocol: %r\n",
             Status);

  Status = RaidcfgApplicationUnInit(ImageHandle);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] UnInit Esa GUI Driver: %r\n",
             Status);

  RaidRemoveHiiPackages();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
  return EFI_SUCCESS;
}
