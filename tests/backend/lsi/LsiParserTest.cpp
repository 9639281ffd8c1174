// The verdict and property parsers on single outputs.
#include "LsiOutputs.h"
#include "LsiWorld.h"

namespace lsi_test {
namespace {

using LsiParserTest = LsiWorld;

struct ErrCdCase {
  const char *Name;
  std::string Output;
  UINT32 ErrorCode;
};

// A failed action followed by the lines given.
std::string FailedWith(const std::string &After) {
  return "CLI Version = 007.1705.0000.0000 Mar 31, 2021\n"
         "Controller = 0\n"
         "Status = Failure\n" +
         After;
}

TEST_F(LsiParserTest, ErrCdVerdicts) {
  const ErrCdCase Cases[] = {
      {"success", Verdict(true), 0},
      {"failure with a description", Verdict(false), 0x20100E},
      {"failure as the last line", FailedWith(""), 0},
      {"error code table to the end (number in the second word)",
       FailedWith("ErrorCode = table\nErrorCode ruler\nErrorCode 255 x\n"),
       0x2010FF},
      {"a number read from a row is lost when the row follows",
       FailedWith("ErrorCode = table\nErrorCode ruler\n3 Failure 4101\n"),
       0x20100E},
      {"error code table followed by other lines",
       FailedWith("ErrorCode = table\n------\nErrorCode 17 x\nDone\n"),
       0x20100E},
      {"description before the error code table",
       FailedWith("Description = Add VD Failed\nErrorCode = 1\n---\nx 12\n"),
       0x20100E},
      {"no status line", "Controller = 0\nDescription = None\n", 0},
      {"status word neither success nor failure",
       "Status = Pending\nStatus = Success\n", 0},
      {"status without a line end (LF-only output)", "Status = Failure", 0},
  };
  for (const ErrCdCase &Case : Cases) {
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(ParseErrCd(LoadToolOutput(Case.Output), &ErrorCode), EFI_SUCCESS)
        << Case.Name;
    EXPECT_EQ(ErrorCode, Case.ErrorCode) << Case.Name;
  }
}

TEST_F(LsiParserTest, ErrCdFailureIsTraced) {
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseErrCd(LoadToolOutput(Verdict(false)), &ErrorCode), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("[ParseErrCd]State is Failure!\r\n"));
  EXPECT_TRUE(TraceHas("[ParseErrCd]Description = resources already in "
                       "use\r\r\n"));
  EXPECT_TRUE(TraceHas("[ParseErrCd]Not with an Error Code!\r\n"));
}

TEST_F(LsiParserTest, ActionStatusVerdicts) {
  struct Case {
    std::string Output;
    UINT32 Start;
    UINT32 Result;
  };
  const Case Cases[] = {
      {Verdict(true), 9, LSI_ACTION_SUCCEEDED},
      {Verdict(false), 9, LSI_ACTION_FAILED},
      {"Ctrl_Prop Value\nJBOD      OFF\n", 9, LSI_ACTION_JBOD_OFF},
      {"JBOD      ON\n", 9, LSI_ACTION_SUCCEEDED},
      {"JBOD      OFF\nStatus = Success\n", 9, LSI_ACTION_SUCCEEDED},
      {"Description = None\n", 9, 9},
      {"", 0, 0},
  };
  for (const Case &C : Cases) {
    UINT32 Result = C.Start;
    EXPECT_EQ(ParseActionStatus(LoadToolOutput(C.Output), Controller_, &Result),
              EFI_SUCCESS);
    EXPECT_EQ(Result, C.Result) << C.Output;
  }
  UINT32 Result = 0;
  EXPECT_EQ(ParseActionStatus(nullptr, Controller_, &Result), EFI_ABORTED);
}

TEST_F(LsiParserTest, StripSizeAndDiskCacheTables) {
  struct Case {
    const char *Strip;
    UINT32 Stripe;
    const char *DiskCache;
    UINT32 Policy;
    UINT32 ErrorCode;
  };
  const Case Cases[] = {
      {"8 KB", 8, "Disabled", 0, 0},
      {"64 KB", 64, "Enabled", 1, 0},
      {"512 KB", 512, "Disk's Default", 2, 0},
      {"1.0 MB", 1024, "Enabled", 1, 0},
      {"1024 KB", 1024, "Enabled", 1, 0},
      {"2048 KB", 2048, "Enabled", 1, 0},
      {"2.000 MB", 2048, "Enabled", 1, 0},
      {"4.000 MB", 64, "Enabled", 1, 0x200029},
      {"256 KB", 256, "Unchanged", 3, 0x200025},
  };
  for (const Case &C : Cases) {
    RAID_VOLUME Volume = {};
    UINT32 ErrorCode = 0;
    EXPECT_EQ(ParseControllerShowVolume(
                  LoadToolOutput(ShowAll("0/0", "RWBD", C.Strip, C.DiskCache)),
                  &Volume, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(Volume.StripeSize, C.Stripe) << C.Strip;
    EXPECT_EQ(Volume.DiskCachePolicy, C.Policy) << C.DiskCache;
    EXPECT_EQ(ErrorCode, C.ErrorCode) << C.Strip;
  }
}

TEST_F(LsiParserTest, CacheWordGivesReadWriteAndIoPolicies) {
  struct Case {
    const char *Cache;
    UINT32 Read, Write, Io;
    UINT32 ErrorCode;
  };
  const Case Cases[] = {
      {"RWBD", 0, 1, 1, 0},
      {"NRWTC", 1, 0, 0, 0},
      {"RAWBC", 0, 2, 0, 0},
      {"NRAWBD", 1, 2, 1, 0},
      {"RFWBD", 0, 3, 1, 0x200027},
      {"RWBX", 0, 1, 2, 0x200028},
      {"XWBD", 2, 3, 1, 0x200027},  // last fault wins
      {"R", 0, 3, 2, 0x200028},
      {"N", 1, 3, 2, 0x200028},
  };
  for (const Case &C : Cases) {
    RAID_VOLUME Volume = {};
    UINT32 ErrorCode = 0;
    EXPECT_EQ(ParseControllerShowVolume(
                  LoadToolOutput(ShowAll("0/0", C.Cache, "64 KB", "Enabled")),
                  &Volume, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(Volume.ReadPolicy, C.Read) << C.Cache;
    EXPECT_EQ(Volume.WritePolicy, C.Write) << C.Cache;
    EXPECT_EQ(Volume.IoPolicy, C.Io) << C.Cache;
    EXPECT_EQ(ErrorCode, C.ErrorCode) << C.Cache;
  }
}

TEST_F(LsiParserTest, ControllerCountByPrefixOrAnywhere) {
  UINT32 ErrorCode = 9;
  EXPECT_EQ(LsiParseControllerShowCtrlCount(LoadToolOutput(CtrlCount(4)),
                                            &ErrorCode),
            4u);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(LsiParseControllerShowCtrlCount(
                LoadToolOutput("x\n  Controller Count = 2\nController Count = 3\n"),
                &ErrorCode),
            3u);
  EXPECT_EQ(LsiParseControllerShowCtrlCount(
                LoadToolOutput("x\n  Controller Count = 2\n"), &ErrorCode),
            2u);
  EXPECT_EQ(LsiParseControllerShowCtrlCount(LoadToolOutput("Status = Failure\n"),
                                            &ErrorCode),
            0u);
}

TEST_F(LsiParserTest, BdfComparesEightBitsAndAnyKeys) {
  UINT32 ErrorCode = 0;
  // 0x13B compared as 8 bits is 0x3B; the two lines after the bus line
  // count whatever their keys.
  EXPECT_EQ(ParseBDF(LoadToolOutput("Bus Number = 315\nX = 0\nY = 0\n"),
                     Controller_, 5, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, 5u);
  EXPECT_EQ(ParseBDF(LoadToolOutput(SummaryAt(0x3B, 1, 0)), Controller_, 6,
                     &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x200023u);
  EXPECT_EQ(Controller_->Private->CardId, 5u);
  EXPECT_TRUE(TraceHas(
      "[ParseBDF]Card Id: 6, Bus: 0x3B, Device: 0x1, Function: 0x0\r\n"));
  // Cut after the bus line: cannot match.
  EXPECT_EQ(ParseBDF(LoadToolOutput("Bus Number = 59\n"), Controller_, 7,
                     &ErrorCode),
            EFI_ABORTED);
}

TEST_F(LsiParserTest, FreeSpaceEdgeCases) {
  struct Case {
    const char *Rows;
    EFI_STATUS Status;
    UINT64 Capacity;
    UINT32 Unit;
    UINT32 Segments;
  };
  const Case Cases[] = {
      {" 0 0 -  64.000 KB\n 1 0 - 1.000 KB\n", EFI_SUCCESS, 0, RAID_UNIT_MB, 0},
      {" 0 0 - 102.400 MB\n", EFI_SUCCESS, 100, RAID_UNIT_GB, 1},
      {" 0 0 - 102.399 MB\n", EFI_SUCCESS, 102399, RAID_UNIT_MB, 1},
      {" 0 7 - 1.000 GB\n", EFI_ABORTED, 0, RAID_UNIT_MB, 0},
      {" 0 0 9 1.000 GB\n", EFI_ABORTED, 1024000, RAID_UNIT_MB, 1},
  };
  for (const Case &C : Cases) {
    UINT32 ErrorCode = 0;
    EXPECT_EQ(
        ParseControllerShow(LoadToolOutput(kRichSummary), Controller_, &ErrorCode),
        EFI_SUCCESS);
    std::string Output = std::string("Status = Success\n\n") +
                         "-----\nID DG AftrVD Size\n-----\n" + C.Rows +
                         "-----\n";
    EXPECT_EQ(ParseControllerShowFS(LoadToolOutput(Output), Controller_,
                                    &ErrorCode),
              C.Status)
        << C.Rows;
    RAID_ARRAY *Array0 = Array(0);
    EXPECT_EQ(Array0->FreeCapacity, C.Capacity) << C.Rows;
    EXPECT_EQ(Array0->FreeCapacityUnit, C.Unit) << C.Rows;
    EXPECT_EQ(Array0->FreeSegmentCount, C.Segments) << C.Rows;
  }
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseControllerShowFS(LoadToolOutput(Verdict(false)), Controller_,
                                  &ErrorCode),
            EFI_ABORTED);
  EXPECT_TRUE(TraceHas("[ParseControllerShowFS] Status: Failure\r\n"));
}

}  // namespace
}  // namespace lsi_test
