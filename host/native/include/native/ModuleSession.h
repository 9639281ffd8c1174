// The RAID setup module's life inside the host: loaded through its image
// entry, its adapters discovered, then unloaded through UnloadImage.
#pragma once

#include <Uefi.h>

#include "native/Server.h"

namespace host {

// InitializeRaid's outcome.
struct DiscoveryResult {
  EFI_STATUS Status = EFI_NOT_STARTED;
  UINT32 ErrorCode = 0;
};

class ModuleSession {
 public:
  explicit ModuleSession(Server &Server) : Server_(Server) {}
  // Unloads the module if it is still loaded.
  ~ModuleSession();
  ModuleSession(const ModuleSession &) = delete;
  ModuleSession &operator=(const ModuleSession &) = delete;

  // Runs the image entry with the module's image handle; its status.
  EFI_STATUS Load();
  // Runs the discovery the first wizard page runs: InitializeRaid, then
  // each controller's information.
  DiscoveryResult Discover();
  // UnloadImage through the firmware; its status.
  EFI_STATUS Unload();

 private:
  Server &Server_;
  bool Loaded_ = false;
};

}  // namespace host
