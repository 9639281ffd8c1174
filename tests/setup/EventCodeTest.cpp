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
    GetTARNSetupProtocol();
    Setup_->ClearTrace();
  }
  ~EventCodeTest() override { RaidcfgSetupResetGlobals(); }
};

TEST(EventTable, HoldsTheCatalogueEntriesExactlyAndEndsWithCodeZero) {
  struct Row {
    const char *Id;
    UINT32 Code;
    const char *Message;
  };
  const Row Expected[] = {
      {"KDZPMSR0001K", 0xFE01, "Find unsupported RAID adapter."},
      {"KDZPMRS0011K", 0xFE11, "Failed to change disk drives' state."},
      {"KDZPMSR0012I", 0xFE12, "Change disk drives' state successfully."},
      {"KDZPMSR0021L", 0xFE21, "Failed to create new virtual disk"},
      {"KDZPMSR0022I", 0xFE22, "Create new virtual disk successfully."},
      {"KDZPMSR0031L", 0xFE31, "Failed to remove existing virtual disk."},
      {"KDZPMSR0032I", 0xFE32, "Removed existing virtual disk successfully."},
  };
  for (size_t Index = 0; Index < 7; Index++) {
    SCOPED_TRACE(Index);
    const RAID_EVENT_ENTRY &Entry = gRaidEventTable[Index];
    EXPECT_STREQ(Entry.MessageId, Expected[Index].Id);
    EXPECT_EQ(Entry.EventCode, Expected[Index].Code);
    EXPECT_STREQ(Entry.Message, Expected[Index].Message);
  }
  EXPECT_EQ(gRaidEventTable[7].EventCode, 0u);
}

TEST_F(EventCodeTest, KnownEventIsSentWithItsMessageAndIdentifier) {
  const UINT8 Bytes[] = {0x01, 0x11, 0x12, 0x21, 0x22, 0x31, 0x32};
  for (UINT8 Byte : Bytes) {
    SendEventCode(Byte);
  }
  ASSERT_EQ(Qol_->Events().size(), 7u);
  for (size_t Index = 0; Index < 7; Index++) {
    const emu::SentEvent &Event = Qol_->Events()[Index];
    EXPECT_EQ(Event.EventCode, 0xFE00u | Bytes[Index]);
    EXPECT_EQ(Event.Message, gRaidEventTable[Index].Message);
    EXPECT_EQ(Event.Identifier, gRaidEventTable[Index].MessageId);
    EXPECT_EQ(Event.Count, 1u);
  }
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
  GetTARNSetupProtocol();
  SendEventCode(0x22);
  EXPECT_EQ(Setup_->Trace().back().Level, TARN_DEBUG_ERROR);
  EXPECT_EQ(Trace().back(),
            "RAID: [SendEventCode] Locate QolCommandsProtocolGuid fail.");
  RaidcfgSetupResetGlobals();
}

}  // namespace
}  // namespace setup_test
