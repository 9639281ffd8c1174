// The wizard on a simulated server, driven by a script or by the operator
// at a terminal; both print the virtual adapters' final state at the end.
#pragma once

#include <filesystem>
#include <ostream>

#include "native/Server.h"

namespace host {

// Loads the module with the page framework bound to the server's setup
// protocol, runs the script's actions, unloads the module and prints the
// adapters' state as JSON to Out. Script errors go to Err, and so does pool
// memory still allocated after the unload, as after a model dump. Exit
// status: 0 when the script ran to its end, 1 otherwise.
int RunScriptedWizard(Server &Server, const std::filesystem::path &Script,
                      std::ostream &Out, std::ostream &Err);

// The same with the text UI on the terminal until the operator leaves.
int RunInteractiveWizard(Server &Server, std::ostream &Out, std::ostream &Err);

}  // namespace host
