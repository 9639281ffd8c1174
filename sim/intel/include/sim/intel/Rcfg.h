// The SATA RAID configuration tool as the virtual engines answer it: the
// "/V", "/I" and "/ST" reports and the "/C", "/D", "/X" and "/SP" changes,
// in the report layout of docs/intel-report-layout.md.
#pragma once

#include <string>

#include "sim/intel/IntelEngine.h"

namespace sim::intel {

// The report layout is the first engine's: RSTe or VROC.
bool VrocLayout(const Engines &Server);

// The product, version and copyright lines every output begins with.
std::string HeaderReport(const Engines &Server);
std::string VersionReport(const Engines &Server);
std::string InfoReport(const Engines &Server);
std::string StatusReport(const Engines &Server);

// Runs one command line (the tool's name first) and returns what the tool
// prints.
std::string RunRcfg(Engines &Server, const std::string &CommandLine);

}  // namespace sim::intel
