// Which arcconf number is our adapter: the adapter count of "list", the
// slot search at start-up, and the search again on every read after a
// reconnect of one of several adapters.
#include <Library/MemoryAllocationLib.h>

#include "MchpOutputs.h"
#include "MchpWorld.h"
#include "RaidLibText.h"

namespace mchp_test {
namespace {

struct CountCase {
  const char *Report;
  UINT32 Count;
};

class CountTest : public MchpWorld,
                  public ::testing::WithParamInterface<CountCase> {};

TEST_P(CountTest, TheFirstLineOfACountRuleDecides) {
  std::string Text = Crlf(GetParam().Report);
  std::vector<CHAR16> Buffer(Text.begin(), Text.end());
  Buffer.push_back(0);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseControllerShowCtrlCount(Buffer.data(), &ErrorCode),
            GetParam().Count);
  TraceHas("[ParseControllerShowCtrlCount]Controller Count: " +
           std::to_string(GetParam().Count));
}

INSTANTIATE_TEST_SUITE_P(
    Rules, CountTest,
    ::testing::Values(CountCase{"\nControllers found: 3\n", 3},
                      CountCase{"  Controllers found: 2\n", 2},
                      CountCase{"Total Controllers Found: 4\n", 4},
                      CountCase{"Controller Count = 5\n", 5},
                      CountCase{"Controllers Count = 6\n", 6},
                      CountCase{"Controller = 7\n", 7},
                      // A heading naming a controller decides first.
                      CountCase{"Controller information\nControllers found: 2\n",
                                0},
                      CountCase{"nothing here\n", 0}, CountCase{"", 0}));

TEST_F(MchpWorld, OneAdapterIsCardOneWhateverItsSlot) {
  Controller_->Private->CardId = 7;
  Answer("arcconf.efi list", ListReport({{1, 14}}));
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpGetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Controller_->Private->CardId, 1u);
  EXPECT_EQ(gMchpCtrlCount, 1u);
  EXPECT_EQ(Commands(), std::vector<std::string>{"arcconf.efi list"});
}

TEST_F(MchpWorld, NoAdapterListedAbortsWithoutAnErrorCode) {
  Answer("arcconf.efi list", "\nControllers found: 0\n");
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpGetCardId(Controller_, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0u);
  TraceHas("[MchpGetCardId]Error: Card Count 0");
}

struct SlotCase {
  std::vector<std::pair<uint32_t, uint32_t>> Rows;  // number, slot
  UINT32 CardId;
};

class SlotSearchTest : public MchpWorld,
                       public ::testing::WithParamInterface<SlotCase> {};

TEST_P(SlotSearchTest, SeveralAdaptersAreFoundByTheirSlot) {
  Controller_->Private->CardId = 1;
  Answer("arcconf.efi list", ListReport(GetParam().Rows));
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpGetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, GetParam().CardId);
  EXPECT_EQ(gMchpCtrlCount, GetParam().Rows.size());
}

INSTANTIATE_TEST_SUITE_P(
    Adapters, SlotSearchTest,
    ::testing::Values(SlotCase{{{1, 6}, {2, 9}}, 1},
                      SlotCase{{{1, 4}, {2, 6}}, 2},
                      SlotCase{{{1, 4}, {2, 9}, {3, 6}}, 3},
                      // Numbers the tool gave after a renumbering.
                      SlotCase{{{2, 4}, {1, 6}}, 1},
                      // No row names slot 6: the number stays.
                      SlotCase{{{1, 4}, {2, 9}}, 1}));

TEST_F(MchpWorld, TheNewerToolsSlotWordIsNotASlotNumber) {
  // The Linux tool prints "Slot 14" in the second field: read as a decimal
  // number that is 0, so no adapter of a slot is found in such a list.
  Controller_->SlotNumber = 14;
  Controller_->Private->CardId = 5;
  Answer("arcconf.efi list",
         "\nControllers found: 2\n" + std::string(70, '-') +
             "\nController information\n" + std::string(70, '-') +
             "\n   Controller ID             : Status, Slot, Mode, Name, "
             "SerialNumber, WWN\n" +
             std::string(70, '-') +
             "\n   Controller 1:             : Optimal, Slot 14, RAID (Expose "
             "RAW), Adaptec ASR7805, 5C1113B82B7, 50000D1109811600\n"
             "   Controller 2:             : Optimal, Slot 15, RAID (Expose "
             "RAW), Adaptec ASR7805, 5C1113B82B8, 50000D1109811601\n\n"
             "Command completed successfully.\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpGetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, 5u);
}

std::string EmptyGetconfig() { return Getconfig("", "", ""); }

TEST_F(MchpWorld, AReadAfterAReconnectOfSeveralAdaptersMapsTheSlotAgain) {
  // The profile names the tool with its path; the search after a
  // renumbering runs the plain "arcconf.efi" all the same.
  FreePool(Controller_->Capability->ToolName);
  Controller_->Capability->ToolName = AllocDestStr(u"fs0:\\arcconf.efi");
  gMchpCtrlCount = 2;
  greconnect = 1;
  Answer("arcconf.efi list", ListReport({{1, 9}, {2, 6}}));
  Answer("fs0:\\arcconf.efi getconfig 2", EmptyGetconfig());
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Controller_->Private->CardId, 2u);
  EXPECT_EQ(Commands(),
            (std::vector<std::string>{"arcconf.efi list",
                                      "fs0:\\arcconf.efi getconfig 2"}));
}

TEST_F(MchpWorld, WithoutAMatchTheSearchAfterAReconnectGivesCardOne) {
  gMchpCtrlCount = 2;
  Controller_->Private->CardId = 2;
  Answer("arcconf.efi list", ListReport({{1, 3}, {2, 4}}));
  UINT32 CardId = 0;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpGetCardIdN(Controller_, 6, &CardId, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(CardId, 1u);
}

struct MappingCase {
  UINT32 Count;
  UINT32 Reconnect;
  bool Searches;
};

class MappingTest : public MchpWorld,
                    public ::testing::WithParamInterface<MappingCase> {};

TEST_P(MappingTest, OnlySeveralAdaptersWithTheReconnectFlagAreSearched) {
  gMchpCtrlCount = GetParam().Count;
  greconnect = GetParam().Reconnect;
  Controller_->Private->CardId = 1;
  Answer("arcconf.efi list", ListReport({{1, 9}, {2, 6}}));
  Answer("arcconf.efi getconfig 1", EmptyGetconfig());
  Answer("arcconf.efi getconfig 2", EmptyGetconfig());
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, GetParam().Searches ? 2u : 1u);
  EXPECT_EQ(Commands().front() == "arcconf.efi list", GetParam().Searches);
}

INSTANTIATE_TEST_SUITE_P(Flags, MappingTest,
                         ::testing::Values(MappingCase{2, 1, true},
                                           MappingCase{3, 1, true},
                                           MappingCase{1, 1, false},
                                           MappingCase{0, 1, false},
                                           MappingCase{2, 0, false}));

TEST_F(MchpWorld, AnUnsetCardIsRefusedBeforeTheToolRuns) {
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200022u);
  TraceHas("[MchpGetControllerInfo] Invalid controller id");
  EXPECT_TRUE(Commands().empty());
}

TEST_F(MchpWorld, ACurrentModelIsNotReadAgain) {
  Controller_->Private->Flags = RAID_FLAG_OUTPUT_VALID;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  TraceHas("[MchpGetControllerInfo] Info is up to date.");
  EXPECT_TRUE(Commands().empty());
}

}  // namespace
}  // namespace mchp_test
