// Loading and unloading the module in-process.
#include "native/ModuleSession.h"

#include <setup/ModuleEntry.h>
#include <wizard/RaidWizard.h>

namespace host {

ModuleSession::~ModuleSession() {
  if (Loaded_) {
    Unload();
  }
}

EFI_STATUS ModuleSession::Load() {
  EFI_STATUS Status = _ModuleEntryPoint(Server_.ImageForLoad(),
                                        Server_.Firmware().SystemTable());
  Loaded_ = !EFI_ERROR(Status);
  return Status;
}

DiscoveryResult ModuleSession::LastDiscovery() const {
  return {gRaidInitializeStatus, gRaidInitializeErrorCode};
}

void ReportPoolLeftovers(Server &Server, std::ostream &Err) {
  const std::string Leaks = Server.Firmware().Memory().LeakReport();
  if (!Leaks.empty()) {
    Err << "raidcfg-host: pool memory still allocated after unload: " << Leaks;
  }
}

EFI_STATUS ModuleSession::Unload() {
  Loaded_ = false;
  return Server_.Firmware().UnloadImage(Server_.ImageHandle());
}

}  // namespace host
