// Event codes to the management controller.
#include <cstring>

#include "ModuleWorld.h"
#include "setup/RaidEventCode.h"
#include "setup/RaidcfgSetup.h"

namespace setup_test {
namespace {

class EventCodeTest : public ModuleWorld {
 public:
  EventCodeTest() {
    EXPECT_EQ(GetTARNSetupProtocol(), EFI_SUCCESS);
    Setup_->ClearTrace();
  }
  ~EventCodeTest() override { RaidcfgSetupResetGlobals(); }
};

// Every catalogue entry goes out with its exact identifier and message.
TEST_F(EventCodeTest, KnownEventIsSentWithItsMessageAndIdentifier) {
  struct Row {
    UINT8 Byte;
    const char *Id;
    const char *Message;
  };
  const Row Expected[] = {
      {0x01, "KDZPMSR0001K", "Find unsupported RAID adapter."},
      {0x11, "KDZPMRS0011K", "Failed to change disk drives' state."},
      {0x12, "KDZPMSR0012I", "Change disk drives' state successfully."},
      {0x21, "KDZPMSR0021L", "Failed to create new virtual disk"},
      {0x22, "KDZPMSR0022I", "Create new virtual disk successfully."},
      {0x31, "KDZPMSR0031L", "Failed to remove existing virtual disk."},
      {0x32, "KDZPMSR0032I", "Removed existing virtual disk successfully."},
  };
  for (const Row &Entry : Expected) {
    SendEventCode(Entry.Byte);
  }
  ASSERT_EQ(Qol_->Events().size(), 7u);
  for (size_t Index = 0; Index < 7; Index++) {
    const emu::SentEvent &Event = Qol_->Events()[Index];
    EXPECT_EQ(Event.EventCode, 0xFE00u | Expected[Index].Byte);
    EXPECT_EQ(Event.Message, Expected[Index].Message);
    EXPECT_EQ(Event.Identifier, Expected[Index].Id);
    EXPECT_EQ(Event.Count, 1u);
  }
  EXPECT_EQ(gRaidEventTable[7].EventCode, 0u);
  EXPECT_TRUE(TraceHas("RAID: [SendEventCode] Send out event code "
                       "successfully"));
}

TEST_F(EventCodeTest, UnknownEventSendsNothingAndTracesTheCodeInHex) {
  SendEventCode(0x13);
  EXPECT_TRUE(Qol_->Events().empty());
  ASSERT_EQ(Setup_->Trace().size(), 2u);
  EXPECT_EQ(Setup_->Trace()[0].Level, 2u);
  EXPECT_EQ(Setup_->Trace()[0].Text,
            "RAID: [MatchString] Cannot find the event code entry -- FE13\r\n");
  EXPECT_EQ(Setup_->Trace()[1].Level, TARN_DEBUG_ERROR);
  EXPECT_EQ(Setup_->Trace()[1].Text,
            "RAID: [SendEventCode] Cannot match the event code\r\n");
}

TEST_F(EventCodeTest, LookupStopsAtTheEndMark) {
  const RAID_EVENT_ENTRY Table[] = {
      {"FIRST", 0xFE01, "first"},
      {"", 0, nullptr},
      {"HIDDEN", 0xFE02, "after the end mark"},
  };
  const CHAR8 *Message = "stale";
  const RAID_EVENT_ENTRY *Entry = Table;
  EXPECT_EQ(MatchString(Table, 0xFE01, &Message, &Entry), EFI_SUCCESS);
  EXPECT_STREQ(Message, "first");
  EXPECT_EQ(Entry, &Table[0]);
  EXPECT_EQ(MatchString(Table, 0xFE02, &Message, &Entry), EFI_NOT_FOUND);
  EXPECT_EQ(Message, nullptr);
  EXPECT_EQ(Entry, nullptr);
  EXPECT_EQ(MatchString(Table, 0, &Message, &Entry), EFI_NOT_FOUND);
}

TEST_F(EventCodeTest, SendFailureIsTracedAndSwallowed) {
  Qol_->SetSendResult(EFI_DEVICE_ERROR);
  SendEventCode(0x22);
  EXPECT_EQ(Qol_->Events().size(), 1u);
  EXPECT_TRUE(TraceHas("RAID: [SendEventCode] Failed to send out event code "
                       "-- Device Error"));
}

TEST_F(NoQolWorld, HostWithoutQolCommandsSendsNothing) {
  EXPECT_EQ(GetTARNSetupProtocol(), EFI_SUCCESS);
  SendEventCode(0x22);
  EXPECT_EQ(Setup_->Trace().back().Level, TARN_DEBUG_ERROR);
  EXPECT_EQ(Trace().back(),
            "RAID: [SendEventCode] Locate QolCommandsProtocolGuid fail.");
  RaidcfgSetupResetGlobals();
}

}  // namespace
}  // namespace setup_test
