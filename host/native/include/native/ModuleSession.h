// The RAID setup module's life inside the host: loaded through its image
// entry, which connects it to the host and runs the adapter discovery of
// the wizard's first page, then unloaded through UnloadImage.
#pragma once

#include <Uefi.h>

#include <ostream>

#include "native/Server.h"

namespace host {

// The discovery the module ran at start-up: InitializeRaid's outcome.
struct DiscoveryResult {
  EFI_STATUS Status = EFI_NOT_STARTED;
  UINT32 ErrorCode = 0;
};

// After the module and the page framework are gone: the pool's report of
// what is still allocated, on Err, when anything is.
void ReportPoolLeftovers(Server &Server, std::ostream &Err);

class ModuleSession {
 public:
  explicit ModuleSession(Server &Server) : Server_(Server) {}
  // Unloads the module if it is still loaded.
  ~ModuleSession();
  ModuleSession(const ModuleSession &) = delete;
  ModuleSession &operator=(const ModuleSession &) = delete;

  // Runs the image entry with the module's image handle; its status.
  EFI_STATUS Load();
  // The outcome of the last discovery the module ran ("Not Started" when
  // it ran none).
  DiscoveryResult LastDiscovery() const;
  // UnloadImage through the firmware; its status.
  EFI_STATUS Unload();

 private:
  Server &Server_;
  bool Loaded_ = false;
};

}  // namespace host
