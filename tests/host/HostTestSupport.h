// Shared pieces of the native host's tests: a server with one adapter of
// each family, a run of the module on a scenario, temporary directories and
// a stand-in tool family.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "native/AdapterFamily.h"
#include "native/ModelDump.h"
#include "native/Server.h"
#include "native/TemporaryDirectory.h"

namespace host_test {

using nlohmann::json;

// One function of each family, each in its SMBIOS slot, ordered by the
// slot inventory: MegaRAID 9460-8i (slot 2), SmartRAID 3154-8i (slot 6),
// on-board RSTe, Marvell M.2 (slot 1). The MegaRAID function carries a
// virtual adapter with two unconfigured drives.
json FourFamilyScenario();

// The embedded product file Name.
std::string ProductFile(const char *Name);

struct DumpRun {
  host::ModelJson Model;
  std::vector<std::string> Trace;  // the setup protocol's lines
  std::string LeakReport;          // the pool's, after the unload
  std::vector<std::string> Problems;
};

// Builds the server of Scenario, loads the module, dumps the model and
// unloads it.
DumpRun RunDump(const host::Scenario &Scenario,
                const host::ServerOptions &Options = {},
                const host::FamilyRegistry &Families =
                    host::FamilyRegistry::Builtin());
DumpRun RunDump(const json &Scenario, const host::ServerOptions &Options = {},
                const host::FamilyRegistry &Families =
                    host::FamilyRegistry::Builtin());

// Runs CommandLine through the current firmware's shell-command service
// and returns the output as UTF-8.
std::string RunShellCommand(const std::string &CommandLine);

// A family "fake" whose tool "fake.efi" answers "<n>:<command line>\r\n",
// n counting its runs from 1.
host::FamilyRegistry FakeFamilyRegistry();

// A fresh directory, removed with the object.
class ScratchDirectory : public host::TemporaryDirectory {
 public:
  ScratchDirectory() : host::TemporaryDirectory("raidcfg-host-test") {}
  void Write(const std::string &Name, const std::string &Contents) const;
  std::string Read(const std::string &Name) const;
};

}  // namespace host_test
