// Random operator actions on the page the wizard shows, as lines of the
// headless driver's script (docs/script.md), so that a session is replayed
// by the script it wrote down.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "framework/HeadlessDriver.h"

namespace robustness {

class OperatorActions {
 public:
  explicit OperatorActions(uint64_t Seed) : Random_(Seed) {}

  // The next action on what the driver shows: one line, or an answer
  // queued before a press and the press.
  [[nodiscard]] std::vector<std::string> Next(const framework::HeadlessDriver &Driver);

 private:
  // A number below Bound (Bound > 0), the same on every standard library.
  [[nodiscard]] uint64_t Below(uint64_t Bound) { return Random_() % Bound; }
  [[nodiscard]] std::string OnControl(HOST_PAGE_NODE *Node);
  [[nodiscard]] std::string OnTable(HOST_PAGE_NODE *Node);

  std::mt19937_64 Random_;
};

// Text in the script's double quotes.
[[nodiscard]] std::string Quoted(const std::string &Text);

}  // namespace robustness
