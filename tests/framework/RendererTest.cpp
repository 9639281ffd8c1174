// The text renderer: golden screens at 80x25, emission of changed cells
// only, word wrapping and wide characters, and the interactive UI's keys.
#include <string>
#include <vector>

#include "FrameworkTestSupport.h"
#include "Golden.h"
#include "framework/Screen.h"
#include "framework/Text.h"
#include "framework/TextUi.h"

namespace {

struct ScreenCase {
  const char *Golden;
  void (*Prepare)(framework::HeadlessDriver &Driver);
};

HOST_PAGE_NODE *Node(framework::HeadlessDriver &Driver, UINT32 Id) {
  return Driver.Find(Id);
}

const ScreenCase kScreens[] = {
    {"adapter-page.txt", [](framework::HeadlessDriver &) {}},
    {"adapter-page-advanced.txt",
     [](framework::HeadlessDriver &Driver) {
       EXPECT_EQ(Driver.Tick(Node(Driver, demo::kAdvancedCheck), true),
                 EFI_SUCCESS);
       EXPECT_EQ(Driver.SetCell(Node(Driver, demo::kDriveTable), 2, 2, 1),
                 EFI_SUCCESS);
       EXPECT_EQ(Driver.SelectRow(Node(Driver, demo::kDriveTable), 2),
                 EFI_SUCCESS);
       EXPECT_EQ(Driver.Choose(Node(Driver, demo::kAdapterRadio), 1),
                 EFI_SUCCESS);
     }},
    {"volume-page.txt",
     [](framework::HeadlessDriver &Driver) {
       EXPECT_EQ(Driver.Press(Node(Driver, demo::kNextButton)), EFI_SUCCESS);
       EXPECT_EQ(Driver.Type(Node(Driver, demo::kNameEdit), u"Volume0"),
                 EFI_SUCCESS);
       EXPECT_EQ(Driver.Slide(Node(Driver, demo::kCapacitySlider), 250),
                 EFI_SUCCESS);
     }},
    {"help-panel.txt",
     [](framework::HeadlessDriver &Driver) { Driver.Help(); }},
    {"progress-box.txt",
     [](framework::HeadlessDriver &) {
       EXPECT_TRUE(framework::ShowMessageBox(
           HOST_MSGBOX_PROGRESS, demo::kStrBlank, demo::kStrRefresh, nullptr));
       EXPECT_EQ(framework::SetProgress(30), EFI_SUCCESS);
     }},
    {"french.txt",
     [](framework::HeadlessDriver &Driver) {
       EXPECT_EQ(Driver.SwitchLanguage("fr-FR"), EFI_SUCCESS);
     }},
};

class GoldenScreens : public FrameworkTest,
                      public ::testing::WithParamInterface<ScreenCase> {};

TEST_P(GoldenScreens, MatchAt80x25) {
  GetParam().Prepare(Driver);
  ExpectGolden(GetParam().Golden, Driver.Dump());
}

INSTANTIATE_TEST_SUITE_P(Screens, GoldenScreens, ::testing::ValuesIn(kScreens));

TEST_F(FrameworkTest, ScreensFitLargerConsoles) {
  framework::HeadlessDriver Wide(132, 43);
  std::string Screen = Wide.Dump();
  size_t Lines = 0;
  for (char Char : Screen) {
    Lines += Char == '\n';
  }
  EXPECT_EQ(Lines, 43u);
  EXPECT_NE(Screen.find("Demo - Select Adapter"), std::string::npos);
}

// A console that records what it was asked to write.
struct RecordingSink {
  std::vector<std::pair<UINTN, UINTN>> Positions;
  size_t Characters = 0;
  int Flushes = 0;
  static VOID Write(VOID *Context, UINTN Column, UINTN Row, UINT8,
                    const CHAR16 *, UINTN Length) {
    auto &Self = *static_cast<RecordingSink *>(Context);
    Self.Positions.push_back({Column, Row});
    Self.Characters += Length;
  }
  static VOID Flush(VOID *Context) {
    static_cast<RecordingSink *>(Context)->Flushes++;
  }
};

// Keys from a list, then the end of input.
struct KeyList {
  std::vector<EFI_INPUT_KEY> Keys;
  size_t Next = 0;
  static BOOLEAN Read(VOID *Context, EFI_INPUT_KEY *Key) {
    auto &Self = *static_cast<KeyList *>(Context);
    if (Self.Next == Self.Keys.size()) {
      return FALSE;
    }
    *Key = Self.Keys[Self.Next++];
    return TRUE;
  }
};

TEST_F(FrameworkTest, FramesWriteOnlyTheCellsThatChanged) {
  RecordingSink Sink;
  KeyList Keys;
  framework::TextUi Ui;
  ASSERT_EQ(framework::TextUiStart(Ui, 80, 25,
                                   {&Sink, RecordingSink::Write, RecordingSink::Flush, nullptr},
                                   {&Keys, KeyList::Read}),
            EFI_SUCCESS);
  framework::TextUiRender(Ui);
  EXPECT_EQ(Sink.Characters, 80u * 25 - 1) << "all but the last cell";
  Sink = {};
  framework::TextUiRender(Ui);
  EXPECT_EQ(Sink.Characters, 0u);
  EXPECT_EQ(Sink.Flushes, 1);
  // Ticking the check box changes its mark and the label it shows.
  EXPECT_EQ(Driver.Tick(On(demo::kAdvancedCheck), true), EFI_SUCCESS);
  framework::TextUiRender(Ui);
  EXPECT_GT(Sink.Characters, 0u);
  EXPECT_LT(Sink.Characters, 120u);
  framework::TextUiStop(Ui);
}

EFI_INPUT_KEY Scan(UINT16 Code) { return {Code, 0}; }
EFI_INPUT_KEY Char(CHAR16 Code) { return {SCAN_NULL, Code}; }

// A console whose size the test changes, as a terminal window's.
struct ResizableSink : RecordingSink {
  UINTN Columns = 80;
  UINTN Rows = 25;
  static VOID Size(VOID *Context, UINTN *Columns, UINTN *Rows) {
    auto &Self = *static_cast<ResizableSink *>(Context);
    *Columns = Self.Columns;
    *Rows = Self.Rows;
  }
};

std::u16string ScreenOf(const framework::ScreenBuffer &Screen) {
  std::u16string Text(framework::ScreenText(Screen, nullptr, 0) + 1, u'\0');
  Text.resize(framework::ScreenText(Screen, Text.data(), Text.size()));
  return Text;
}

TEST_F(FrameworkTest, RedrawsFollowTheConsolesSize) {
  ResizableSink Sink;
  KeyList Keys;
  framework::TextUi Ui;
  ASSERT_EQ(framework::TextUiStart(Ui, 80, 25,
                                   {&Sink, RecordingSink::Write, nullptr,
                                    ResizableSink::Size},
                                   {&Keys, KeyList::Read}),
            EFI_SUCCESS);
  framework::TextUiRender(Ui);
  // Each step redraws every cell at the console's size then; below 80 x 25
  // only the notice shows, and the page comes back whole.
  struct Step {
    UINTN Columns;
    UINTN Rows;
    EFI_INPUT_KEY Key;
    const char16_t *Shows;
  };
  const Step kSteps[] = {
      {100, 30, Scan(framework::kScanRedraw), u"Demo - Select Adapter"},
      {100, 30, Char(framework::kCharRedraw), u"Demo - Select Adapter"},
      {60, 20, Scan(framework::kScanRedraw), u"at least 80 x 25"},
      {80, 25, Scan(framework::kScanRedraw), u"[X] Show advanced"},
  };
  EXPECT_EQ(Driver.Tick(On(demo::kAdvancedCheck), true), EFI_SUCCESS);
  for (const Step &Each : kSteps) {
    Sink.Columns = Each.Columns;
    Sink.Rows = Each.Rows;
    Sink.Characters = 0;
    EXPECT_TRUE(framework::TextUiHandleKey(Ui, Each.Key));
    framework::TextUiRender(Ui);
    EXPECT_EQ(Sink.Characters, Each.Columns * Each.Rows - 1) << Each.Columns;
    EXPECT_NE(ScreenOf(Ui.Shown).find(Each.Shows), std::u16string::npos)
        << framework::ToUtf8(ScreenOf(Ui.Shown));
  }
  framework::TextUiStop(Ui);
}

TEST_F(FrameworkTest, KeysOperateTheFocusedControls) {
  RecordingSink Sink;
  KeyList Keys;
  framework::TextUi Ui;
  ASSERT_EQ(framework::TextUiStart(Ui, 80, 25,
                                   {&Sink, RecordingSink::Write, nullptr, nullptr},
                                   {&Keys, KeyList::Read}),
            EFI_SUCCESS);
  // Down to the second adapter, choose it; Tab to the check box, tick it;
  // Tab to the combo box, open it, move down, take "Safe".
  for (EFI_INPUT_KEY Key :
       {Scan(SCAN_DOWN), Char(u' '), Char(framework::kCharTab), Char(u' '),
        Char(framework::kCharTab), Char(framework::kCharCarriageReturn),
        Scan(SCAN_DOWN), Char(framework::kCharCarriageReturn)}) {
    EXPECT_TRUE(framework::TextUiHandleKey(Ui, Key));
    framework::TextUiRender(Ui);
  }
  EXPECT_EQ(demo::Current().Adapter, 1u);
  EXPECT_TRUE(demo::Current().Advanced);
  EXPECT_EQ(demo::Current().Mode, 1u);
  // Tab to the table; Right moves the cell cursor to the check box, Space
  // ticks it; Down selects the next row.
  for (EFI_INPUT_KEY Key : {Char(framework::kCharTab), Scan(SCAN_RIGHT),
                            Char(u' '), Scan(SCAN_DOWN)}) {
    EXPECT_TRUE(framework::TextUiHandleKey(Ui, Key));
  }
  EXPECT_EQ(demo::Current().Ticked[0], 1u);
  EXPECT_EQ(demo::Current().SelectedRow, 2u);
  // F2 switches to the next language; Esc leaves.
  EXPECT_TRUE(framework::TextUiHandleKey(Ui, Scan(SCAN_F2)));
  EXPECT_EQ(Language, "fr-FR");
  EXPECT_FALSE(framework::TextUiHandleKey(Ui, Scan(SCAN_ESC)));
  framework::TextUiStop(Ui);
}

TEST_F(FrameworkTest, QuestionsDefaultToNoAndTakeYesByKey) {
  RecordingSink Sink;
  KeyList Keys;
  framework::TextUi Ui;
  ASSERT_EQ(framework::TextUiStart(Ui, 80, 25,
                                   {&Sink, RecordingSink::Write, nullptr, nullptr},
                                   {&Keys, KeyList::Read}),
            EFI_SUCCESS);
  // The question reads its answer from the keys: Enter alone says No,
  // Left then Enter says Yes, 'y' says Yes; a plain box is acknowledged.
  Driver.SetAskHandler([&Ui] { return framework::TextUiAsk(Ui); });
  struct Case {
    UINT8 Style;
    std::vector<EFI_INPUT_KEY> Keys;
    BOOLEAN Answer;
  };
  const Case kCases[] = {
      {HOST_MSGBOX_YES_NO, {Char(framework::kCharCarriageReturn)}, FALSE},
      {HOST_MSGBOX_YES_NO,
       {Scan(SCAN_LEFT), Char(framework::kCharCarriageReturn)},
       TRUE},
      {HOST_MSGBOX_YES_NO, {Char(u'y')}, TRUE},
      {HOST_MSGBOX_YES_NO, {Scan(SCAN_ESC)}, FALSE},
      {HOST_MSGBOX_YES_NO, {}, FALSE},
      {HOST_MSGBOX_PLAIN, {Char(framework::kCharCarriageReturn)}, TRUE},
  };
  for (const Case &Each : kCases) {
    Keys.Keys = Each.Keys;
    Keys.Next = 0;
    Sink = {};
    EXPECT_EQ(framework::ShowMessageBox(Each.Style, 0, 0, u"Proceed?"),
              Each.Answer);
    EXPECT_GT(Sink.Characters, 0u) << "the box was drawn";
    framework::TextUiRender(Ui);  // the page again, without the box
  }
  framework::TextUiStop(Ui);
}

TEST(TextHelpers, WrapBreaksAtBlanksAndLineBreaks) {
  struct Case {
    const CHAR16 *Text;
    UINTN Width;
    std::vector<std::u16string> Lines;
  };
  const Case kCases[] = {
      {u"one two three", 7, {u"one two", u"three"}},
      {u"line one\r\nline two", 40, {u"line one", u"line two"}},
      {u"abcdefghij", 4, {u"abcd", u"efgh", u"ij"}},
      {u"", 10, {}},
      {u"\x6570\x636E\x6570\x636E", 5, {u"\x6570\x636E", u"\x6570\x636E"}},
      // Wide characters break between each other, never before closing
      // punctuation, and within a word of wide characters after a blank.
      {u"\x4EEE\x60F3\x3001\x4F5C\x6210", 4,
       {u"\x4EEE", u"\x60F3\x3001", u"\x4F5C\x6210"}},
      {u"RAID \x30EC\x30D9\x30EB", 8, {u"RAID \x30EC", u"\x30D9\x30EB"}},
  };
  for (const Case &Each : kCases) {
    std::vector<std::u16string> Lines;
    const CHAR16 *Cursor = Each.Text;
    UINTN Length = 0;
    for (const CHAR16 *Start = Cursor;
         framework::NextWrappedLine(&Cursor, Each.Width, &Length);
         Start = Cursor) {
      Lines.emplace_back(Start, Length);
    }
    EXPECT_EQ(Lines, Each.Lines) << framework::ToUtf8(Each.Text);
  }
  EXPECT_EQ(framework::TextWidth(u"\x6570\x636E ok"), 7u);
}

}  // namespace
