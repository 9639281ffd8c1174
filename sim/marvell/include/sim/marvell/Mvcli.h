// The M.2 tools (mvsetup.efi, mnv_cli.efi) over the server's virtual M.2
// adapters: both answer the same command lines in the same layout, the one
// the module's keys read. Adapters are numbered from 0 by ascending PCI
// bus, device and function; the adapter report names no adapter and lists
// them all.
#pragma once

#include <string>
#include <vector>

#include "sim/marvell/MarvellAdapter.h"

namespace sim::marvell {

class Mvcli {
 public:
  // Puts one more adapter in its place by location.
  void AddAdapter(Adapter State);
  std::string Run(const std::string &CommandLine);
  const std::vector<Adapter> &Adapters() const { return Adapters_; }

 private:
  std::vector<Adapter> Adapters_;
};

}  // namespace sim::marvell
