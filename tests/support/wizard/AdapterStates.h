// The virtual adapters' state compared part by part: a test names what a
// change may touch, and everything else must be as it was.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace wizard_test {

// State with the parts Paths name taken out. A path is a JSON pointer into
// the state by family name ("/megaraid/0/driveGroups") in which "*" stands
// for every member or element ("/megaraid/0/drives/*/state"). A member
// named goes; an element named becomes null, so the ones after it keep
// their places.
[[nodiscard]] nlohmann::json WithoutParts(nlohmann::json State,
                                          const std::vector<std::string> &Paths);

// Fails the test, with every difference, when Before and After differ
// outside the parts Changeable names.
void ExpectSameBut(const nlohmann::json &Before, const nlohmann::json &After,
                   const std::vector<std::string> &Changeable);

}  // namespace wizard_test
