// The keyword scanners on single report lines, and the traces of the
// report's empty values.
#include "MchpOutputs.h"
#include "MchpWorld.h"
#include "RaidLibText.h"

namespace mchp_test {
namespace {

std::u16string Wide(const std::string &Text) {
  return std::u16string(Text.begin(), Text.end());
}

TEST_F(MchpWorld, TheValueIsTheTextBetweenTheFirstTwoDelimiters) {
  const std::u16string Line =
      Wide(KeyLine(9, "Reported Location",
                   "Enclosure 0, Slot 1(Connector 0:CN0)") + "\r");
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  ASSERT_NE(sGetKeyWord(reinterpret_cast<const CHAR16 *>(Line.c_str()), Value,
                        MCHP_KEYWORD_CHARS),
            nullptr);
  EXPECT_EQ(Narrow(Value), "Enclosure 0, Slot 1(Connector 0");
  const std::u16string Device = u"      Device #12\r";
  EXPECT_EQ(iiGetKeyWord(reinterpret_cast<const CHAR16 *>(Device.c_str()),
                         u"#", Value, MCHP_KEYWORD_CHARS),
            12u);
  const std::u16string Array = u"         Array        : 3\r";
  EXPECT_EQ(iGetKeyWord(reinterpret_cast<const CHAR16 *>(Array.c_str()), Value,
                        MCHP_KEYWORD_CHARS),
            3u);
  EXPECT_EQ(Narrow(Value), "3");
}

TEST_F(MchpWorld, MissingValuesGiveTheMissingResults) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  const std::u16string NoColon = u"   Array Physical Device Information\r";
  const CHAR16 *Line = reinterpret_cast<const CHAR16 *>(NoColon.c_str());
  EXPECT_EQ(iGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS), 0xFFFFFFFFu);
  EXPECT_EQ(iiGetKeyWord(Line, u"=", Value, MCHP_KEYWORD_CHARS), 0xFFFFu);
  EXPECT_EQ(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS), nullptr);
  EXPECT_EQ(sGetKeyWord(nullptr, Value, MCHP_KEYWORD_CHARS), nullptr);
  EXPECT_EQ(iGetKeyWord(Line, nullptr, MCHP_KEYWORD_CHARS), 0xFFFFFFFFu);
  const std::u16string Empty = u"   Controller Model : \r";
  EXPECT_EQ(sGetKeyWord(reinterpret_cast<const CHAR16 *>(Empty.c_str()), Value,
                        MCHP_KEYWORD_CHARS),
            nullptr);
  TraceHas("[sGetKeyWord]Controller Device Name: NULL");
}

TEST_F(MchpWorld, ALongValueIsCutToTheBuffer) {
  const std::u16string Line = u"   Logical Device name : " +
                              std::u16string(400, u'n') + u"\r";
  CHAR16 Value[8];
  ASSERT_NE(sGetKeyWord(reinterpret_cast<const CHAR16 *>(Line.c_str()), Value,
                        8),
            nullptr);
  EXPECT_EQ(Narrow(Value), "nnnnnnn");
}

TEST_F(MchpWorld, EmptyControllerValuesAndModelsAreTracedAndLeftAlone) {
  Controller_->SerialNumber = AllocDestStr(u"kept");
  std::string Report = Getconfig("", "", Channel(0) + [] {
    DriveLines Drive;
    Drive.Model = "";
    return DriveBlock(Drive);
  }());
  for (const char *Key :
       {"Controller Model", "Controller Serial Number", "Firmware"}) {
    const size_t At = Report.find(std::string("   ") + Key);
    Report.replace(Report.find(": ", At) + 1,
                   Report.find('\n', At) - Report.find(": ", At) - 1, " ");
  }
  ReadModel(Report);
  TraceHas("[ParseControllerShow]Controller Device Name: NULL");
  TraceHas("[ParseControllerShow]Controller Serial Number: NULL");
  TraceHas("[ParseControllerShow]Controller FW Version: NULL");
  TraceHas("[ParseControllerShow] Device Model: NULL");
  EXPECT_EQ(Narrow(Controller_->SerialNumber), "kept");
  EXPECT_EQ(Narrow(Drive(0)->Model), "");
}

}  // namespace
}  // namespace mchp_test
