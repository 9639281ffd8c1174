// The whole trace of a start-up and shutdown on the demo server, line by
// line: the module's, the core's and the MegaRAID backend's lines in the
// order a log reader sees them. Time stamps and the setup protocol's
// address vary from run to run and are masked.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "Golden.h"
#include "emu/VirtualClock.h"
#include "native/HostRun.h"

namespace {

std::string ReadFile(const std::string &Path) {
  std::ifstream File(Path, std::ios::binary);
  std::ostringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

// Masks what varies between runs: time stamps and the protocol's address.
std::string Normalised(const std::string &Trace) {
  std::string Text = emu::MaskTimeStamps(Trace);
  const std::string Key = "TarnSetupProtocol = ";
  for (size_t At = Text.find(Key); At != std::string::npos;
       At = Text.find(Key, At + 1)) {
    const size_t Start = At + Key.size();
    const size_t End = Text.find_first_of("\r\n", Start);
    Text.replace(Start, End - Start, "<address>");
  }
  return Text;
}

TEST(DemoTraceTest, StartUpAndShutdownTraceMatchesTheGoldenLog) {
  const std::string TracePath = ::testing::TempDir() + "/demo.trace";
  host::Options Options;
  Options.DumpModel = true;
  Options.Trace = TracePath;
  std::ostringstream Out;
  std::ostringstream Err;
  ASSERT_EQ(host::RunHost(Options, Out, Err), 0) << Err.str();
  const std::string Trace = Normalised(ReadFile(TracePath));
  ASSERT_NE(Trace.find("[LsiGetControllerInfo]Command: storcli.efi /c1 show"),
            std::string::npos);
  ExpectGolden("demo-startup.trace", Trace);
}

}  // namespace
