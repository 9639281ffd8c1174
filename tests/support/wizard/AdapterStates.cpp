// The virtual adapters' state with the parts a change may touch taken out.
#include "AdapterStates.h"

#include <gtest/gtest.h>

namespace wizard_test {
namespace {

// The tokens of a JSON pointer ("/a/0/*" gives a, 0, *).
std::vector<std::string> Tokens(const std::string &Path) {
  std::vector<std::string> Parts;
  for (size_t Start = 1; Start <= Path.size();) {
    size_t End = Path.find('/', Start);
    End = End == std::string::npos ? Path.size() : End;
    Parts.push_back(Path.substr(Start, End - Start));
    Start = End + 1;
  }
  return Parts;
}

void Remove(nlohmann::json &Node, const std::vector<std::string> &Tokens,
            size_t At) {
  const std::string &Token = Tokens[At];
  const bool Last = At + 1 == Tokens.size();
  if (Node.is_object()) {
    std::vector<std::string> Keys;
    for (const auto &Item : Node.items()) {
      if (Token == "*" || Token == Item.key()) {
        Keys.push_back(Item.key());
      }
    }
    for (const std::string &Key : Keys) {
      if (Last) {
        Node.erase(Key);
      } else {
        Remove(Node[Key], Tokens, At + 1);
      }
    }
  } else if (Node.is_array()) {
    for (size_t Index = 0; Index < Node.size(); Index++) {
      if (Token == "*" || Token == std::to_string(Index)) {
        if (Last) {
          Node[Index] = nullptr;
        } else {
          Remove(Node[Index], Tokens, At + 1);
        }
      }
    }
  }
}

}  // namespace

nlohmann::json WithoutParts(nlohmann::json State,
                            const std::vector<std::string> &Paths) {
  for (const std::string &Path : Paths) {
    const std::vector<std::string> Parts = Tokens(Path);
    if (!Parts.empty()) {
      Remove(State, Parts, 0);
    }
  }
  return State;
}

void ExpectSameBut(const nlohmann::json &Before, const nlohmann::json &After,
                   const std::vector<std::string> &Changeable) {
  const nlohmann::json Kept = WithoutParts(Before, Changeable);
  const nlohmann::json Now = WithoutParts(After, Changeable);
  if (Kept != Now) {
    ADD_FAILURE() << "changed besides " << nlohmann::json(Changeable).dump()
                  << ":\n"
                  << nlohmann::json::diff(Kept, Now).dump(1);
  }
}

}  // namespace wizard_test
