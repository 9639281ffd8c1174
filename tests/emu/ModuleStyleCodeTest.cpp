// A piece of code written the way the module is written runs unchanged on
// the emulator: globals from its entry arguments, pool memory, the setup
// protocol located by GUID and trace lines through its DebugPrint.
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/TarnSetup.h>
#include <x86intrin.h>

#include "EmuTestSupport.h"
#include "emu/SetupProtocol.h"
#include "emu/VirtualClock.h"

namespace {

// ---- Module-style code (freestanding idioms only) -----------------------

constinit TARN_SETUP_PROTOCOL *gSetup = nullptr;

#define TRACE(Format, ...)                                            \
  do {                                                                \
    if (gSetup != nullptr) {                                          \
      gSetup->DebugPrint(TARN_DEBUG_INFO, Format, __func__, ##__VA_ARGS__); \
    }                                                                 \
  } while (0)

struct SAMPLE_RECORD {
  UINT32 Id;
  CHAR16 *Name;
};

EFI_STATUS EFIAPI SampleEntryPoint(EFI_HANDLE ImageHandle,
                                   EFI_SYSTEM_TABLE *SystemTable) {
  gImageHandle = ImageHandle;
  gST = SystemTable;
  gBS = SystemTable->BootServices;
  gRT = SystemTable->RuntimeServices;

  EFI_STATUS Status = gBS->LocateProtocol(&gTarnSetupProtocolGuid, nullptr,
                                          reinterpret_cast<VOID **>(&gSetup));
  if (EFI_ERROR(Status)) {
    gSetup = nullptr;
  }
  TRACE("RAID: [%a] Entry\n");
  SAMPLE_RECORD *Record = uefi::AllocateRecord<SAMPLE_RECORD>();
  if (Record == nullptr) {
    TRACE("[%a] Out of resource\n");
    return EFI_OUT_OF_RESOURCES;
  }
  Record->Id = 7;
  Record->Name = static_cast<CHAR16 *>(AllocatePool(16 * sizeof(CHAR16)));
  if (Record->Name != nullptr) {
    UnicodeSPrint(Record->Name, 16 * sizeof(CHAR16), u"Ctrl %d", Record->Id);
  }
  TRACE("[%a]Record %d named %s, status %r\n", Record->Id, Record->Name,
        Status);
  TRACE("RAID: [%a] A prepare B Next: TimeStamp: %016lx\n", __rdtsc());
  FreePool(Record->Name);
  FreePool(Record);
  return EFI_SUCCESS;
}

// ---- The test -------------------------------------------------------------

class ModuleStyleCodeTest : public emu_test::EmuTest {
 protected:
  ModuleStyleCodeTest() { gSetup = nullptr; }
};

TEST_F(ModuleStyleCodeTest, TracesExactLinesAndReturnsAllMemory) {
  emu::SetupProtocol Setup(Fw());
  EFI_HANDLE Image = Fw().CreateImageHandle(nullptr);
  gBS = nullptr;  // the entry point must set it from its arguments

  ASSERT_EQ(EFI_SUCCESS, SampleEntryPoint(Image, Fw().SystemTable()));

  EXPECT_EQ(Image, gImageHandle);
  EXPECT_EQ(Fw().BootServices(), gBS);
  // The formatter prints "\n" as "\r\n", as firmware print libraries do.
  std::vector<std::string> Lines;
  for (const auto &Line : Setup.Trace()) {
    EXPECT_EQ(TARN_DEBUG_INFO, Line.Level);
    Lines.push_back(emu::MaskTimeStamps(Line.Text));
  }
  EXPECT_EQ((std::vector<std::string>{
                "RAID: [SampleEntryPoint] Entry\r\n",
                "[SampleEntryPoint]Record 7 named Ctrl 7, status Success\r\n",
                "RAID: [SampleEntryPoint] A prepare B Next: TimeStamp: "
                "<tsc>\r\n"}),
            Lines);
  EXPECT_EQ(2u, Fw().Memory().Counters().Allocations);
  EXPECT_EQ("", Fw().Memory().LeakReport());
  EXPECT_TRUE(Fw().Memory().Events().empty());
}

TEST_F(ModuleStyleCodeTest, RunsSilentlyWithoutSetupProtocol) {
  EFI_HANDLE Image = Fw().CreateImageHandle(nullptr);
  EXPECT_EQ(EFI_SUCCESS, SampleEntryPoint(Image, Fw().SystemTable()));
  EXPECT_EQ(nullptr, gSetup);
  EXPECT_EQ("", Fw().Memory().LeakReport());
}

TEST_F(ModuleStyleCodeTest, EveryAllocationFailureIsSurvivedWithoutLeaks) {
  emu::SetupProtocol Setup(Fw());
  EFI_HANDLE Image = Fw().CreateImageHandle(nullptr);
  for (UINT64 N = 1; N <= 2; N++) {
    Fw().Memory().FailNthAllocation(N);
    SampleEntryPoint(Image, Fw().SystemTable());
    EXPECT_EQ("", Fw().Memory().LeakReport()) << "failing allocation " << N;
  }
  EXPECT_EQ(2u, Fw().Memory().EventsOf(emu::PoolEventKind::kInjectedFailure)
                    .size());
  // The sample frees its name with FreePool(NULL) after a failed name
  // allocation; the library wrapper keeps that away from the pool.
  EXPECT_TRUE(Fw().Memory().EventsOf(emu::PoolEventKind::kNullPointer).empty());
}

}  // namespace
