// Feeds arbitrary bytes, one byte per character as the M.2 tools print
// them, through the M.2 backend's parsers in the shared output buffer. The
// first byte chooses the adapter, volume or drive parser, or a whole read
// whose three reports are all these bytes. Every record built is released
// again and the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "FuzzModel.h"
#include "M2Backend.h"
#include "RaidBackends.h"
#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"

using namespace m2;

namespace {

// The M.2 tools answer every command with the input under test.
emu::ShellCommand &Shell() {
  static emu::ShellCommand *Made = new emu::ShellCommand(fuzz_model::World());
  return *Made;
}

std::string &Answer() {
  static std::string *Text = [] {
    auto *Made = new std::string;
    Shell().SetHandler([Made](const std::string &) { return *Made; });
    return Made;
  }();
  return *Text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  std::string &Tool = Answer();
  std::size_t Before = fuzz_model::World().Memory().OutstandingCount();
  std::uint8_t Choice = Data[0] % 4;
  Data++;
  Size--;
  RAID_CONTROLLER *Controller = backend_test::NewToolController(
      u"mvsetup.efi", u"M.2 adapter", m2::M2BindBackend);
  Controller->SlotNumber = RAID_SLOT_NUMBER_NONE;
  UINT32 ErrorCode = 0;
  if (Choice == 0) {
    (void)ParseControllerInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
  } else if (Choice == 3) {
    Tool.assign(reinterpret_cast<const char *>(Data), Size);
    (void)M2GetControllerInfo(Controller, nullptr, &ErrorCode);
  } else {
    RAID_ARRAY *Array = RaidLibAddNamedArray(Controller, M2_ARRAY_ID,
                                             M2_ARRAY_NAME, M2_ARRAY_EXTRA_SIZE);
    Controller->DiskDriveCount = 4;
    (void)ParseVolumeInfo(backend_test::LoadToolBytes(Data, Size), Array, &ErrorCode);
    if (Choice == 2) {
      (void)ParsePhysicalDriveInfo(backend_test::LoadToolBytes(Data, Size), Controller, Array,
                                   &ErrorCode);
    }
  }
  fuzz_model::ReleaseAndCheck(Controller, Before);
  Shell().ClearCalls();
  return 0;
}
