// The Intel family: scenario engines into one engine list, tool runs to the
// tool, the state as the engines' JSON. Only the tool files the scenario
// installs answer, so the module's search among the tool's builds finds the
// installed one.
#include "sim/intel/IntelFamily.h"

#include <algorithm>
#include <set>

#include "sim/common/CommandWords.h"
#include "sim/common/JsonFields.h"
#include "sim/intel/IntelJson.h"
#include "sim/intel/Rcfg.h"

namespace sim::intel {
namespace {

class Family : public common::VirtualFamily {
 public:
  void AddAdapter(const nlohmann::json &Description) override {
    Engine New = EngineFromJson(Description);
    for (const Engine &Each : Server_.All()) {
      for (const Disk &Known : Each.Disks) {
        for (size_t I = 0; I < New.Disks.size(); I++) {
          if (New.Disks[I].Number == Known.Number) {
            common::Refuse(common::IndexPlace("disks", I),
                           "disk number used by another Intel engine");
          }
        }
      }
    }
    Server_.Add(std::move(New));
  }
  std::vector<std::string> ToolNames() const override {
    std::set<std::string> Names;
    for (const Engine &Each : Server_.All()) {
      Names.insert(common::Lower(Each.Tool));
    }
    return {Names.begin(), Names.end()};
  }
  common::CommandResult Run(const std::string &,
                            const std::string &CommandLine) override {
    try {
      return {RunRcfg(Server_, CommandLine)};
    } catch (const std::exception &) {
      return {"ERROR: Internal error.\r\n"};
    }
  }
  nlohmann::json State() const override {
    nlohmann::json Engines = nlohmann::json::array();
    for (const Engine &Each : Server_.All()) {
      Engines.push_back(EngineToJson(Each));
    }
    return Engines;
  }

 private:
  Engines Server_;
};

}  // namespace

std::unique_ptr<common::VirtualFamily> MakeFamily() {
  return std::make_unique<Family>();
}

}  // namespace sim::intel
