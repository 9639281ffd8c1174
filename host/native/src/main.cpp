// raidcfg-host: the RAID setup module on a simulated server.
#include <iostream>

#include "native/HostRun.h"

int main(int argc, char **argv) {
  host::Options Options;
  try {
    Options = host::ParseOptions(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const host::UsageError &Error) {
    std::cerr << "raidcfg-host: " << Error.what() << "\n"
              << host::UsageText();
    return 2;
  }
  if (Options.Help) {
    std::cout << host::UsageText();
    return 0;
  }
  return host::RunHost(Options, std::cout, std::cerr);
}
