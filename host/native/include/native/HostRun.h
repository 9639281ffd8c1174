// One run of raidcfg-host: build the server, run the module in it, print
// what was asked for.
#pragma once

#include <ostream>

#include "native/ModelDump.h"
#include "native/Options.h"
#include "native/Server.h"

namespace host {

// Loads the module on Server, runs its discovery, dumps the model and
// unloads the module. A module whose image entry fails yields no model
// (null).
ModelJson RunModuleForModel(Server &Server);

// Runs the host as the options say, printing to Out and Err; the exit
// status (0 ran, 1 the host failed).
int RunHost(const Options &Options, std::ostream &Out, std::ostream &Err);

}  // namespace host
