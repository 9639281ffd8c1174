// Scenario adapters of family "megaraid", simulated by the sim library's
// virtual MegaRAID adapter and storcli tool.
#pragma once

#include <memory>
#include <vector>

#include "native/AdapterFamily.h"

namespace host {

// A FamilyFactory: one storcli over all the scenario's MegaRAID adapters.
std::unique_ptr<VirtualFamily> MakeMegaRaidFamily(
    const std::vector<AdapterSite> &Sites);

}  // namespace host
