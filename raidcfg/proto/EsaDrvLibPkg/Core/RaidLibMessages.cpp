// Display texts of drive and volume states and of the adapter firmware's
// status messages.
#include "RaidLibMessages.h"

#include "RaidLib.h"

namespace {

// Texts of state codes 0 to RAID_STATE_LAST_KNOWN, by code.
constexpr const CHAR16 *kStateTexts[RAID_STATE_LAST_KNOWN + 1] = {
    u"Rebuild",            // 0
    u"CacheCade",          // 1
    u"Recovery",           // 2
    u"Partially Degraded", // 3
    u"Degraded",           // 4
    u"Optimal",            // 5
    u"UGood",              // 6
    u"UGoodF",             // 7
    u"UBad",               // 8
    u"UBad",               // 9
    u"Missing",            // 10
    u"JBOD",               // 11
    u"DHS",                // 12
    u"GHS",                // 13
    u"Online",             // 14
    u"Offline",            // 15
    u"Rebuild",            // 16
    u"CacheCade",          // 17
    u"Recovery",           // 18
    u"Partially Degraded", // 19
    u"Degraded",           // 20
    u"Optimal",            // 21
    u"UGood",              // 22
    u"UGoodF",             // 23
    u"UBad",               // 24
    u"UBad",               // 25
    u"Missing",            // 26
    u"JBOD",               // 27
    u"HBA",                // 28
    u"Autoreplace",        // 29
    u"Dedicated",          // 30
    u"Online",             // 31
    u"Offline",            // 32
    u"Cache",              // 33
    u"Failed",             // 34
    u"Ready",              // 35
    u"Online",             // 36
    u"Offline",            // 37
    u"Optimal",            // 38
    u"Critical",           // 39
    u"Rebuild",            // 40
    u"Degraded",           // 41
    u"Foreign",            // 42
    u"Online",             // 43
    u"Offline",            // 44
    u"Non-RAID",           // 45
    u"GHS",                // 46
    u"Missing",            // 47
    u"Incompatible",       // 48
    u"Degraded",           // 49
    u"Rebuilding",         // 50
};

constexpr const CHAR16 *kInvalidState = u"Invalid State";
constexpr const CHAR16 *kUnknownError = u"Unknown Error";

// The message index k of an error code: its low 12 bits.
[[nodiscard]] constexpr UINT32 MessageIndex(UINT32 ErrorCode) {
  return ErrorCode & 0xFFF;
}

[[nodiscard]] constexpr bool HasMessage(UINT32 Index) {
  return Index >= RAID_ERROR_MESSAGE_FIRST && Index <= RAID_ERROR_MESSAGE_LAST;
}

}  // namespace

constexpr RAID_ERROR_MESSAGE gRaidErrorMessages[RAID_ERROR_MESSAGE_LAST] = {
    {1, 1015, u"Invalid command"},
    {2, 1016, u"DCMD opcode is invalid"},
    {3, 1017, u"Input parameters are invalid"},
    {4, 1018, u"Invalid sequence number"},
    {5, 1019, u"Abort isn't possible for the requested command"},
    {6, 1020, u"Application 'host' code not found"},
    {7, 1021, u"Application already in use - try later"},
    {8, 1022, u"Application not initialized"},
    {9, 1023, u"Given array index is invalid"},
    {10, 1024, u"Unable to add missing drive to array, as row has no empty slots"},
    {11, 1025, u"Some of the CFG resources conflict with each other or the current config"},
    {12, 1026, u"Invalid device ID / select-timeout"},
    {13, 1027, u"Drive is too small for requested operation"},
    {14, 1028, u"Flash memory allocation failed"},
    {15, 1029, u"Flash download already in progress"},
    {16, 1030, u"Flash operation failed"},
    {17, 1031, u"Flash image was bad"},
    {18, 1032, u"Downloaded flash image is incomplete"},
    {19, 1033, u"Flash OPEN was not done"},
    {20, 1034, u"Flash sequence is not active"},
    {21, 1035, u"Flash command failed"},
    {22, 1036, u"Specified application doesn't have host-resident code"},
    {23, 1037, u"LD operation not possible - CC is in progress"},
    {24, 1038, u"LD initialization in progress"},
    {25, 1039, u"LBA is out of range"},
    {26, 1040, u"Maximum LDs are already configured"},
    {27, 1041, u"LD is not OPTIMAL"},
    {28, 1042, u"LD Rebuild is in progress"},
    {29, 1043, u"LD is undergoing reconstruction"},
    {30, 1044, u"LD RAID level is wrong for requested operation"},
    {31, 1045, u"Too many spares assigned"},
    {32, 1046, u"Scratch memory not available - try command again later"},
    {33, 1047, u"Error writing MFC data to SEEPROM"},
    {34, 1048, u"Required HW is missing (i.e. Alarm or BBU)"},
    {35, 1049, u"Item not found"},
    {36, 1050, u"LD drives are not within an enclosure"},
    {37, 1051, u"PD CLEAR operation is in progress"},
    {38, 1052, u"Unable to use SATA(SAS) drive to replace SAS(SATA)"},
    {39, 1053, u"Patrol Read is disabled"},
    {40, 1054, u"Given row index is invalid"},
    {41, 1055, u"Unknown Error"},
    {42, 1056, u"Unknown Error"},
    {43, 1057, u"Unknown Error"},
    {44, 1058, u"Unknown Error"},
    {45, 1059, u"SCSI command done, but non-GOOD status was received-see mf.hdr.extStatus for SCSI_STATUS"},
    {46, 1060, u"IO request for MFI_CMD_OP_PD_SCSI failed - see extStatus for DM error"},
    {47, 1061, u"Matches SCSI RESERVATION_CONFLICT"},
    {48, 1062, u"One or more of the flush operations failed"},
    {49, 1063, u"Firmware real-time currently not set"},
    {50, 1064, u"Command issues while firmware in wrong state (i.e., GET RECON when op not active)"},
    {51, 1065, u"LD is not OFFLINE - IO not possible"},
    {52, 1066, u"Peer controller rejected request (possibly due to resource conflict)"},
    {53, 1067, u"Unable to inform peer of communication changes (retry might be appropriate)"},
    {54, 1068, u"LD reservation already in progress"},
    {55, 1069, u"I2C errors were detected"},
    {56, 1070, u"PCI errors occurred during XOR/DMA operation"},
    {57, 1071, u"Diagnostics failed - see event log for details"},
    {58, 1072, u"Unable to process command as boot messages are pending"},
    {59, 1073, u"Returned in case if foreign configurations are incomplete"},
    {60, 1074, u"Returned in case if a command is tried on unsupported hardware"},
    {61, 1075, u"CC scheduling is disabled"},
    {62, 1076, u"PD CopyBack operation is in progress"},
    {63, 1077, u"Selected more than one PD per array"},
    {64, 1078, u"Microcode update operation failed"},
    {65, 1079, u"Unable to process command as drive security feature is not enabled"},
    {66, 1080, u"Controller already has a lock key"},
    {67, 1081, u"Lock key cannot be backed-up"},
    {68, 1082, u"Lock key backup cannot be verified"},
    {69, 1083, u"Lock key from backup failed verification"},
    {70, 1084, u"Rekey operation not allowed, unless controller already has a lock key"},
    {71, 1085, u"Lock key is not valid, cannot authenticate"},
    {72, 1086, u"Lock key from escrow cannot be used"},
    {73, 1087, u"Lock key backup (pass-phrase) is required"},
    {74, 1088, u"Secure LD exist"},
    {75, 1089, u"LD secure operation is not allowed"},
    {76, 1090, u"Reprovisioning is not allowed"},
    {77, 1091, u"Drive security type (FDE or non-FDE) is not appropriate for requested operation"},
    {78, 1092, u"LD encryption type is not supported"},
    {79, 1093, u"Cannot mix FDE and non-FDE drives in same array"},
    {80, 1094, u"Cannot mix secure and unsecured LD in same array"},
    {81, 1095, u"Secret key not allowed"},
    {82, 1096, u"Physical device errors were detected"},
    {83, 1097, u"Controller has LD cache pinned"},
    {84, 1098, u"Requested operation is already in progress"},
    {85, 1099, u"Another power state set operation is in progress"},
    {86, 1100, u"Power state of device is not correct"},
    {87, 1101, u"No PD is available for patrol read"},
    {88, 1102, u"Controller reset is required"},
    {89, 1103, u"No EKM boot agent detected"},
    {90, 1104, u"No space on the snapshot repository VD"},
    {91, 1105, u"For consistency SET PiTs, some PiT creations might fail and some succeed"},
    {92, 1106, u"Invalid status - used for polling command completion"},
    {93, 1107, u"Secondary iButton cannot be used and is incompatible with controller"},
    {94, 1108, u"PFK doesn't match or cannot be applied to the controller"},
    {95, 1109, u"Maximum allowed unconfigured (configurable) PDs exist"},
    {96, 1110, u"IO metrics are not being collected"},
    {97, 1111, u"AEC capture needs to be stopped before proceeding"},
    {98, 1112, u"Unsupported level of protection information"},
    {99, 1113, u"PDs in LD have incompatible EEDP types"},
    {100, 1114, u"Request cannot be completed because protection information is not enabled"},
    {101, 1115, u"PDs in LD have different block sizes"},
    {102, 1116, u"LD Cached data is present on a (this) SSCD"},
    {103, 1117, u"Config sequence number mismatch"},
    {104, 1118, u"Flash image is not supported"},
    {105, 1119, u"Controller cannot be online-reset"},
    {106, 1120, u"Controller booted to safe mode, command is not supported in this mode"},
    {107, 1121, u"SSC memory is unavailable to complete the operation"},
    {108, 1122, u"Peer node is incompatible"},
    {109, 1123, u"Dedicated hot spare assignment is limited to array(s) with same LDs."},
    {110, 1124, u"Signed component is not part of the image"},
    {111, 1125, u"Authentication failure of the signed firmware image"},
    {112, 1126, u"Flashing was ok but FW restart is not required, ex: No change in FW from current"},
};

// The table is indexed by k - 1; keep its ids in step with its positions.
static_assert(gRaidErrorMessages[0].Index == 1 &&
              gRaidErrorMessages[RAID_ERROR_MESSAGE_LAST - 1].Index ==
                  RAID_ERROR_MESSAGE_LAST);

// The text of a state code, or "Invalid State".
const CHAR16 *RaidLibStateText(UINT32 State) {
  return State <= RAID_STATE_LAST_KNOWN ? kStateTexts[State] : kInvalidState;
}

// The message chosen by an error code's low 12 bits.
const CHAR16 *RaidLibErrorMessage(UINT32 ErrorCode) {
  UINT32 Index = MessageIndex(ErrorCode);
  return HasMessage(Index) ? gRaidErrorMessages[Index - 1].Text : kUnknownError;
}

// The UI string id of an error code's message, or 0.
EFI_STRING_ID RaidLibErrorMessageStringId(UINT32 ErrorCode) {
  UINT32 Index = MessageIndex(ErrorCode);
  return HasMessage(Index) ? gRaidErrorMessages[Index - 1].StringId : 0;
}
