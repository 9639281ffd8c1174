// Shared set-up of the storcli tests: the rich adapter behind a tool.
#pragma once

#include <nlohmann/json.hpp>

#include "RichAdapter.h"
#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/Storcli.h"

namespace sim::megaraid::test {

inline Adapter RichAdapter() {
  return AdapterFromJson(nlohmann::json::parse(kRichAdapterJson));
}

inline Storcli RichTool() { return Storcli({RichAdapter()}); }

// The module's command line for this tool.
inline std::string Line(const std::string &Arguments) {
  return "storcli.efi " + Arguments + " mronly nolog";
}

}  // namespace sim::megaraid::test
