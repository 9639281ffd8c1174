// The arcconf tool over the server's virtual Microchip adapters: takes the
// exact command line the RAID module sends and answers with the tool's
// printed text, changing the adapters as the real tool would.
#pragma once

#include <string>
#include <vector>

#include "sim/common/CommandWords.h"
#include "sim/microchip/MicrochipAdapter.h"

namespace sim::microchip {

class Arcconf {
 public:
  // The adapters are numbered 1, 2, ... by ascending PCI location, unless
  // an adapter names its own number.
  void AddAdapter(Adapter State);

  std::string Run(const std::string &CommandLine);

  const std::vector<Adapter> &Adapters() const { return Adapters_; }
  // The number "list" gives the adapter at Index of Adapters().
  uint32_t NumberOf(size_t Index) const;

 private:
  Adapter *Numbered(uint32_t Number);
  std::string Change(common::CommandWords &Words);
  // A change is followed by the driver's reconnect, which may renumber the
  // adapters: each takes its number after a reconnect, once.
  void Reconnect();

  std::vector<Adapter> Adapters_;
};

}  // namespace sim::microchip
