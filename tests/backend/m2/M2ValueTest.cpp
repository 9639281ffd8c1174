// The M.2 tool's values: sizes by unit letter, and the words of the state,
// stripe, RAID mode, media and drive status tables, empty values included.
#include "M2World.h"

namespace m2_test {
namespace {

// Pool copy for values: the readers take CHAR16 text.
std::u16string Wide(const char *Text) {
  std::u16string Out;
  for (; *Text != 0; Text++) {
    Out += static_cast<char16_t>(*Text);
  }
  return Out;
}

const CHAR16 *Value(const std::u16string &Text) {
  return Text.empty() ? nullptr : reinterpret_cast<const CHAR16 *>(Text.c_str());
}

TEST(M2ValueTest, SizesByUnitLetterDifferForVolumesAndDrives) {
  struct Case {
    const char *Text;
    UINT64 Volume;
    UINT64 Drive;
  };
  const Case Cases[] = {
      {"", 0, 0},
      {"1.5 T", 1024000, 1024000},  // the fraction is dropped
      {"2 T", 2048000, 2048000},
      {"457798 M", 447068, 447068},
      {"234431064 K", 234431064000, 223570},
      {"447 G", 447000, 447000},
      {"447", 447000, 447000},
      {"447 GB", 447000, 447000},
  };
  for (const Case &C : Cases) {
    std::u16string Text = Wide(C.Text);
    EXPECT_EQ(M2ReadSize(Value(Text), M2SizeOf::Volume), C.Volume) << C.Text;
    EXPECT_EQ(M2ReadSize(Value(Text), M2SizeOf::Drive), C.Drive) << C.Text;
  }
}

TEST(M2ValueTest, WordsGiveTheirCodesAndEmptyValuesTheirOwn) {
  struct Case {
    UINT32 (*Read)(const CHAR16 *);
    const char *Text;
    UINT32 Code;
  };
  const Case Cases[] = {
      {M2VolumeState, "online", 36},   {M2VolumeState, "offline", 37},
      {M2VolumeState, "", 37},         {M2VolumeState, "optimal", 38},
      {M2VolumeState, "critical", 39}, {M2VolumeState, "degraded", 41},
      {M2VolumeState, "foreign", 42},  {M2VolumeState, "Optimal", 58},
      {M2VolumeState, "rebuild", 58},  {M2StripeSize, "8", 8},
      {M2StripeSize, "1024", 1024},    {M2StripeSize, "64K", 2049},
      {M2StripeSize, "2048", 2049},    {M2StripeSize, "", 2049},
      {M2MediaType, "SATA PD", 1},     {M2MediaType, "", 1},
      {M2MediaType, "NVMe PD", 3},     {M2MediaType, "SATA", 3},
  };
  for (const Case &C : Cases) {
    std::u16string Text = Wide(C.Text);
    EXPECT_EQ(C.Read(Value(Text)), C.Code) << C.Text;
  }
  EXPECT_EQ(M2RaidLevel(reinterpret_cast<const CHAR16 *>(u"RAID0")), 0);
  EXPECT_EQ(M2RaidLevel(reinterpret_cast<const CHAR16 *>(u"RAID1")), 1);
  EXPECT_EQ(M2RaidLevel(reinterpret_cast<const CHAR16 *>(u"RAID10")), 255);
  EXPECT_EQ(M2RaidLevel(nullptr), 255);
}

TEST(M2ValueTest, DriveStatusGivesStateRoleAndList) {
  struct Case {
    const char *Text;
    UINT32 State;
    UINT32 Role;
    M2DrivePlace Place;
  };
  const Case Cases[] = {
      {"ready", 35, RAID_ROLE_UNCONFIGURED, M2DrivePlace::Unconfigured},
      {"online", 36, RAID_ROLE_MEMBER, M2DrivePlace::Array},
      {"rebuild", 40, RAID_ROLE_MEMBER, M2DrivePlace::Array},
      {"offline", 58, 0, M2DrivePlace::Nowhere},
      {"", 58, 0, M2DrivePlace::Nowhere},
  };
  for (const Case &C : Cases) {
    std::u16string Text = Wide(C.Text);
    M2DriveStatus Status = M2DriveStatusOf(Value(Text));
    EXPECT_EQ(Status.State, C.State) << C.Text;
    EXPECT_EQ(Status.Role, C.Role) << C.Text;
    EXPECT_EQ(Status.Place, C.Place) << C.Text;
  }
}

TEST(M2ValueTest, ValueIsThePieceBehindTheColonStripped) {
  struct Case {
    const char16_t *Line;
    const char *Value;
  };
  const Case Cases[] = {
      {u"Firmware version:     2.3.10.1088\r", "2.3.10.1088"},
      {u"SerialNo:   \r", "<null>"},
      {u"SerialNo:", "<null>"},
      {u"no colon here", "<null>"},
      {u"size:  1.5 T \r", "1.5 T"},
  };
  for (const Case &C : Cases) {
    RAID_ROW Scratch;
    EXPECT_EQ(Narrow(M2LineValue(reinterpret_cast<const CHAR16 *>(C.Line),
                                 &Scratch)),
              C.Value);
  }
}

}  // namespace
}  // namespace m2_test
