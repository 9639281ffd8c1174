// The RAID data model shared by the service core, the vendor backends, the
// service layer and the wizard: controllers, their capability profile, arrays,
// volumes and free segments, physical drives, volume creation parameters, and
// the codes stored in them.
//
// Ownership: every CHAR16 string is NUL-terminated, owned by the record that
// points at it and freed with it. Every list is a LIST_ENTRY ring; a record
// sits in exactly one list. Records come from the boot-services pool and are
// released with the functions of RaidLibRelease.h.
#pragma once

#include <Uefi.h>

// ---- Error codes written through every operation's ErrorCode --------------

#define RAID_ERROR_NONE 0x00000000U
// Base of the core's codes; a failed firmware service adds its status's low
// 12 bits (RaidLibFirmwareErrorCode).
#define RAID_ERROR_BASE 0x00200000U
#define RAID_ERROR_OUT_OF_RESOURCES 0x00200009U  // from EFI_OUT_OF_RESOURCES
#define RAID_ERROR_NOT_FOUND 0x0020000EU         // from EFI_NOT_FOUND
// The controller, its private record, its capability, the needed operation
// or a drive is missing.
#define RAID_ERROR_MISSING 0x00200021U
// The controller's CardId was never set, so no command can name it.
#define RAID_ERROR_INVALID_CARD_ID 0x00200022U
// From EFI_BUFFER_TOO_SMALL: a command line, or a drive list going into one,
// did not fit its buffer, so the operation refused and ran nothing rather
// than run a cut text.
#define RAID_ERROR_BUFFER_TOO_SMALL 0x00200005U
// A text for a command line (a volume name) would not reach the tool as
// the one word it stands for, so nothing was run. Chosen for its message,
// "Input parameters are invalid".
#define RAID_ERROR_NOT_ONE_WORD 0x00200003U

// The error code for a firmware service that failed with Status.
[[nodiscard]] constexpr UINT32 RaidLibFirmwareErrorCode(EFI_STATUS Status) {
  return RAID_ERROR_BASE | static_cast<UINT32>(Status & 0xFFF);
}

// ---- Controller identity and binding ---------------------------------------

// CardId before the backend (or the numbering of InitializeRaid) set it.
#define RAID_CARD_ID_UNSET 0xFFFFFFFFU
// SlotNumber of an on-board adapter or one whose slot is unknown.
#define RAID_SLOT_NUMBER_NONE 0xFFFF

// ToolType right after discovery: whether a pcidb.xml entry matched.
#define RAID_TOOL_TYPE_UNMATCHED 0
#define RAID_TOOL_TYPE_MATCHED 1
// ToolType once the backend is bound: the backend family.
#define RAID_TOOL_TYPE_STORCLI 0
#define RAID_TOOL_TYPE_MARVELL 1  // Marvell M.2
#define RAID_TOOL_TYPE_INTEL 2    // Intel RSTe/VROC
#define RAID_TOOL_TYPE_ARCCONF 3

// Family numbers read from an operation table's signature
// (RaidLibControllerFamily, RaidLibFamilyOfSignature).
#define RAID_FAMILY_STORCLI 0  // "$lsi"
#define RAID_FAMILY_MARVELL 1  // "$m.2"
#define RAID_FAMILY_INTEL 2    // "rste"
#define RAID_FAMILY_ARCCONF 3  // "$arc"
#define RAID_FAMILY_UNKNOWN 4  // a signature of no known backend
#define RAID_FAMILY_NONE 5     // no controller or no private record

// Backend signatures, stored zero-padded in RAID_OPERATIONS.Signature.
#define RAID_SIGNATURE_LSI "$lsi"
#define RAID_SIGNATURE_ARC "$arc"
#define RAID_SIGNATURE_M2 "$m.2"
#define RAID_SIGNATURE_RSTE "rste"
#define RAID_SIGNATURE_SIZE 8

// PCI vendor ids of the four families.
#define RAID_VENDOR_ID_LSI 0x1000
#define RAID_VENDOR_ID_MICROCHIP 0x9005
#define RAID_VENDOR_ID_MARVELL 0x1B4B
#define RAID_VENDOR_ID_INTEL 0x8086

// RAID_CONTROLLER_PRIVATE.Flags bit 0: the cached tool output is valid.
#define RAID_FLAG_OUTPUT_VALID 0x00000001U
// Flags bit 1: the last read of the adapter got at least one tool output
// cut at its buffer's end; the model lacks what was cut.
#define RAID_FLAG_OUTPUT_CUT 0x00000002U

// ---- Size units (SizeUnit, FreeCapacityUnit) -------------------------------

#define RAID_UNIT_MB 0
#define RAID_UNIT_GB 1
#define RAID_UNIT_TB 2
#define RAID_UNIT_OTHER 3

// ---- Drive media types (MediaType) -----------------------------------------

#define RAID_MEDIA_SATA_HDD 0
#define RAID_MEDIA_SATA_SSD 1
#define RAID_MEDIA_SAS_HDD 2
#define RAID_MEDIA_SAS_SSD 3
#define RAID_MEDIA_PCIE_SSD 4
#define RAID_MEDIA_NVME_SSD 4
#define RAID_MEDIA_OTHER 5

// ---- Drive roles (Role) ----------------------------------------------------

#define RAID_ROLE_UNCONFIGURED 0
#define RAID_ROLE_MEMBER 1
#define RAID_ROLE_HOT_SPARE 2  // global or dedicated
#define RAID_ROLE_OTHER 4      // in an array, in a state of no other role

// ---- State codes of drives and volumes -------------------------------------
// One code space for every family. Codes 0-15 are storcli's; the other
// backends map their tools' words into the banks from 16 upward. Texts:
// RaidLibStateText.

#define RAID_STATE_REBUILD 0
#define RAID_STATE_CACHECADE 1
#define RAID_STATE_RECOVERY 2
#define RAID_STATE_PARTIALLY_DEGRADED 3
#define RAID_STATE_DEGRADED 4
#define RAID_STATE_OPTIMAL 5
#define RAID_STATE_UGOOD 6
#define RAID_STATE_UGOOD_FOREIGN 7
#define RAID_STATE_UBAD 8
#define RAID_STATE_UBAD_FOREIGN 9
#define RAID_STATE_MISSING 10
#define RAID_STATE_JBOD 11
#define RAID_STATE_DHS 12
#define RAID_STATE_GHS 13
#define RAID_STATE_ONLINE 14
#define RAID_STATE_OFFLINE 15

#define RAID_STATE2_REBUILD 16
#define RAID_STATE2_CACHECADE 17
#define RAID_STATE2_RECOVERY 18
#define RAID_STATE2_PARTIALLY_DEGRADED 19
#define RAID_STATE2_DEGRADED 20
#define RAID_STATE2_OPTIMAL 21
#define RAID_STATE2_UGOOD 22
#define RAID_STATE2_UGOOD_FOREIGN 23
#define RAID_STATE2_UBAD 24
#define RAID_STATE2_UBAD_FOREIGN 25
#define RAID_STATE2_MISSING 26
#define RAID_STATE2_JBOD 27
#define RAID_STATE2_HBA 28
#define RAID_STATE2_AUTOREPLACE 29
#define RAID_STATE2_DEDICATED 30
#define RAID_STATE2_ONLINE 31
#define RAID_STATE2_OFFLINE 32

#define RAID_STATE3_CACHE 33
#define RAID_STATE3_FAILED 34
#define RAID_STATE3_READY 35
#define RAID_STATE3_ONLINE 36
#define RAID_STATE3_OFFLINE 37
#define RAID_STATE3_OPTIMAL 38
#define RAID_STATE3_CRITICAL 39
#define RAID_STATE3_REBUILD 40
#define RAID_STATE3_DEGRADED 41
#define RAID_STATE3_FOREIGN 42

#define RAID_STATE4_ONLINE 43
#define RAID_STATE4_OFFLINE 44
#define RAID_STATE4_NON_RAID 45
#define RAID_STATE4_GHS 46
#define RAID_STATE4_MISSING 47
#define RAID_STATE4_INCOMPATIBLE 48
#define RAID_STATE4_DEGRADED 49
#define RAID_STATE4_REBUILDING 50

#define RAID_STATE_LAST_KNOWN 50
// A word the backend does not know; shown as "Invalid State".
#define RAID_STATE_INVALID 58

// ---- Policy codes (RAID_POLICY_ENTRY.Value, RAID_VOLUME, parameters) -------
// The codes are deliberately not ordered alike across lists (read ahead is
// 0, and so are "Cached" and "Off"): each list numbers its own words, and
// every backend's word tables map to these numbers, so they must not be
// lined up. Each "OTHER" code is the list's "any other text" and, in a
// creation request, "leave the tool's default".

#define RAID_READ_POLICY_ALWAYS_READ_AHEAD 0
#define RAID_READ_POLICY_NO_READ_AHEAD 1
#define RAID_READ_POLICY_OTHER 2

#define RAID_WRITE_POLICY_WRITE_THROUGH 0
#define RAID_WRITE_POLICY_WRITE_BACK 1
#define RAID_WRITE_POLICY_ALWAYS_WRITE_BACK 2
#define RAID_WRITE_POLICY_OTHER 3

#define RAID_IO_POLICY_CACHED 0
#define RAID_IO_POLICY_DIRECT 1
#define RAID_IO_POLICY_OTHER 2

#define RAID_DISK_CACHE_POLICY_OFF 0
#define RAID_DISK_CACHE_POLICY_ON 1
#define RAID_DISK_CACHE_POLICY_DEFAULT 2
#define RAID_DISK_CACHE_POLICY_OTHER 3

// Stripe sizes are their KiB figure (2 ... 2048); any other word gives this.
#define RAID_STRIPE_SIZE_OTHER 2049

// Value of a profile entry whose element had no ID.
#define RAID_POLICY_VALUE_NONE 0xFFFFFFFFU

// ---- Segments ---------------------------------------------------------------

// RAID_VOLUME.State of a free segment that lies after no volume (the tool
// printed "-"): the segment goes to the head of the array's SegmentList.
#define RAID_SEGMENT_AFTER_NO_VOLUME 0xFFFFFFFFU
// RAID_VOLUME.State of a free segment that lies after everything its array
// lists (a tool that prints one free extent per array, behind its volumes):
// the segment goes to the tail of the SegmentList.
#define RAID_SEGMENT_AFTER_ALL 0xFFFFFFFEU

// Terminator of the drive id blocks of RAID_VOLUME_PARAMETER.
#define RAID_DRIVE_LIST_END 0xFFFFFFFFU
// The unit of RAID_VOLUME_PARAMETER.Size: the wizard plans in GB.
#define RAID_VOLUME_SIZE_UNIT RAID_UNIT_GB

// ---- Records ----------------------------------------------------------------

typedef struct _RAID_CONTROLLER RAID_CONTROLLER;
typedef struct _RAID_CONTROLLER_PRIVATE RAID_CONTROLLER_PRIVATE;
typedef struct _RAID_CAPABILITY RAID_CAPABILITY;
typedef struct _RAID_ARRAY RAID_ARRAY;
typedef struct _RAID_VOLUME RAID_VOLUME;
typedef struct _RAID_PHYSICAL_DRIVE RAID_PHYSICAL_DRIVE;
typedef struct _RAID_VOLUME_PARAMETER RAID_VOLUME_PARAMETER;

// Backend operations. Each writes its error code (0 on success) through
// ErrorCode and returns a status; a negative status is a failure.

// Sets Controller->Private->CardId to the adapter's number in its tool.
typedef EFI_STATUS (*RAID_GET_CARD_ID)(RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode);
// Runs the tool and rebuilds the controller's lists and counters. Private is
// the controller's private record when the caller forced a refresh, else
// NULL; Flags bit 0 tells whether the cached output may be reused.
typedef EFI_STATUS (*RAID_GET_CONTROLLER_INFO)(
    RAID_CONTROLLER *Controller, RAID_CONTROLLER_PRIVATE *Private OPTIONAL,
    UINT32 *ErrorCode);
// Deletes the array with all its volumes on the adapter.
typedef EFI_STATUS (*RAID_DELETE_ARRAY)(RAID_ARRAY *Array, UINT32 *ErrorCode);
// Deletes one volume on the adapter.
typedef EFI_STATUS (*RAID_DELETE_VOLUME)(RAID_VOLUME *Volume,
                                         UINT32 *ErrorCode);
// Creates a volume (and a new array when Parameter->NewArray is set).
// PassThrough is the dispatch caller's second word, handed on unchanged.
typedef EFI_STATUS (*RAID_CREATE_VOLUME)(RAID_VOLUME_PARAMETER *Parameter,
                                         UINTN PassThrough,
                                         UINT32 *ErrorCode);
// Changes one drive to State (a state code).
typedef EFI_STATUS (*RAID_SET_PHYSICAL_DRIVE_STATE)(
    RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive, UINT32 State,
    UINT32 *ErrorCode);
// Changes every eligible drive to State.
typedef EFI_STATUS (*RAID_SET_ALL_PHYSICAL_DRIVE_STATE)(
    RAID_CONTROLLER *Controller, UINT32 State, UINT32 *ErrorCode);

// A backend's operation table, embedded in the private record. An operation
// the backend does not provide is NULL.
typedef struct {
  CHAR8 Signature[RAID_SIGNATURE_SIZE];  // ASCII tag, zero-padded
  RAID_GET_CARD_ID GetCardId;
  RAID_GET_CONTROLLER_INFO GetControllerInfo;
  RAID_DELETE_ARRAY DeleteArray;
  RAID_DELETE_VOLUME DeleteVolume;
  RAID_CREATE_VOLUME CreateVolume;
  RAID_SET_PHYSICAL_DRIVE_STATE SetPhysicalDriveState;
  RAID_SET_ALL_PHYSICAL_DRIVE_STATE SetAllPhysicalDriveState;
} RAID_OPERATIONS;

// PCI identity, tool binding and the operation table of one controller.
struct _RAID_CONTROLLER_PRIVATE {
  UINT32 CardId;        // number in the tool's numbering, or RAID_CARD_ID_UNSET
  CHAR16 *StorageId;    // id of the matching pcidb.xml storage element
  CHAR16 *ProductName;  // product name as the tool reports it
  UINT8 Bus;
  UINT8 Device;
  UINT8 Function;
  UINT16 VendorId;
  UINT16 DeviceId;
  UINT16 SubVendorId;
  UINT16 SubDeviceId;
  CHAR16 *AuxString;  // backend-owned
  UINT32 Flags;       // RAID_FLAG_*
  EFI_HANDLE PciIoHandle;
  RAID_OPERATIONS Operations;
};

// One adapter, in gControllerList.
struct _RAID_CONTROLLER {
  LIST_ENTRY Link;
  UINT32 ToolType;  // RAID_TOOL_TYPE_*
  UINT32 Id;        // position among the storage devices found (gaps possible)
  CHAR16 *Name;     // devname of the matching pcidb.xml entry
  CHAR16 *FirmwareVersion;
  CHAR16 *SerialNumber;
  UINT16 SlotNumber;  // SMBIOS slot id, or RAID_SLOT_NUMBER_NONE
  UINT32 DiskDriveCount;
  UINT32 UnconfiguredDriveCount;
  UINT32 GlobalSpareCount;
  // DiskDriveCount + 1 entries in the tool's order, the last NULL. The table
  // owns only itself; the drives belong to the lists.
  RAID_PHYSICAL_DRIVE **DriveTable;
  RAID_CAPABILITY *Capability;  // NULL: not usable
  LIST_ENTRY PhysicalDriveList;
  LIST_ENTRY SpareDriveList;  // global hot spares
  LIST_ENTRY ArrayList;
  RAID_CONTROLLER_PRIVATE *Private;
};

// An adapter family's profile from raid.xml.
struct _RAID_CAPABILITY {
  CHAR16 *ControllerName;  // CONTROLLER ID, compared with StorageId
  LIST_ENTRY LevelList;    // RAID_LEVEL_CAP
  LIST_ENTRY ReadPolicyList;  // RAID_POLICY_ENTRY, in all five lists
  LIST_ENTRY WritePolicyList;
  LIST_ENTRY IoPolicyList;
  LIST_ENTRY DiskCachePolicyList;
  LIST_ENTRY StripeSizeList;
  UINT32 MaxVolumeNameStingLength;
  UINT32 MaxHotSpares;
  UINT32 MaxArrays;
  UINT32 MaxLogicalDrivesInArray;
  UINT32 MaxTotalLogicalDrives;
  UINT32 MaxTotalPhysicalDrives;
  CHAR16 *ToolName;  // TOOL ID: the tool's file name
};

// One supported RAID level. The limits stay 0 without a per-level block.
typedef struct {
  LIST_ENTRY Link;
  CHAR16 *Name;  // "5"
  UINT32 Level;  // 5
  UINT8 IsDefault;
  UINT32 MinPhysicalDrives;
  UINT32 MaxPhysicalDrives;
  UINT32 MaxLogicalDrives;  // volumes of this level in one array
} RAID_LEVEL_CAP;

// One choice of a policy or stripe-size list.
typedef struct {
  LIST_ENTRY Link;
  CHAR16 *Name;  // shown to the operator and passed to the tool
  UINT32 Value;  // code of the list, or RAID_POLICY_VALUE_NONE
  UINT8 IsDefault;
} RAID_POLICY_ENTRY;

// One disk group, in its controller's ArrayList.
struct _RAID_ARRAY {
  LIST_ENTRY Link;
  RAID_CONTROLLER *Controller;
  UINT32 Id;     // the adapter's drive-group number
  CHAR16 *Name;  // "Array%d"
  UINT8 RaidLevel;
  UINT64 SizeFigure;  // thousandths of SizeUnit
  UINT32 SizeUnit;
  UINT64 FreeCapacity;  // free segments' sum, thousandths of FreeCapacityUnit
  UINT32 FreeCapacityUnit;
  UINT32 MemberDriveCount;
  UINT32 DedicatedSpareCount;
  LIST_ENTRY DriveList;  // members and dedicated spares
  UINT32 VolumeCount;
  UINT32 FreeSegmentCount;
  LIST_ENTRY SegmentList;  // RAID_VOLUME: volumes and free segments
  VOID *Extra;             // backend-owned
};

// A volume (IsVolume 1) or a free segment (IsVolume 0) of an array. A free
// segment uses only Link, Array, Id, Name, IsVolume, the size, State (the
// number of the volume it lies after, or RAID_SEGMENT_AFTER_NO_VOLUME) and
// Extra.
struct _RAID_VOLUME {
  LIST_ENTRY Link;
  RAID_ARRAY *Array;
  UINT32 Id;     // volume number, or free-space index
  CHAR16 *Name;  // volume name, or "FreeCapacity%d"
  UINT8 IsVolume;
  UINT64 SizeFigure;
  UINT32 SizeUnit;
  UINT32 State;
  UINT32 StripeSize;  // KiB
  UINT32 ReadPolicy;
  UINT32 WritePolicy;
  UINT32 IoPolicy;
  UINT32 DiskCachePolicy;
  VOID *Extra;  // backend-owned
};

// Where a drive sits, in its backend's own terms: up to five numbers, each
// family naming the ones it uses (MegaRAID: enclosure and slot; Microchip:
// channel, slot, an unused value, 1 and device number; M.2: none). The
// names are the backends' own (LSI_POSITION_* and the like).
#define RAID_POSITION_VALUE_COUNT 5
typedef struct {
  UINT32 Values[RAID_POSITION_VALUE_COUNT];
} RAID_DRIVE_POSITION;

// One physical drive: in PhysicalDriveList, SpareDriveList (global hot
// spare) or an array's DriveList (member or dedicated spare).
struct _RAID_PHYSICAL_DRIVE {
  LIST_ENTRY Link;
  UINT32 Id;         // the adapter's device id
  CHAR16 *Location;  // "enclosure:slot"
  CHAR16 *Model;     // at most 100 characters
  UINT32 MediaType;  // RAID_MEDIA_*
  UINT32 State;      // RAID_STATE_*
  UINT64 SizeFigure;
  UINT32 SizeUnit;
  UINT32 Role;  // RAID_ROLE_*
  VOID *Owner;  // the controller, or the array of a member or dedicated spare
  RAID_DRIVE_POSITION *Position;
};

// A volume the wizard plans; one CreateVolume request.
struct _RAID_VOLUME_PARAMETER {
  UINT8 NewArray;  // 0: the volume goes into array ArrayId
  UINT32 ControllerId;
  UINT32 ArrayId;
  // Existing array: the Id of the chosen free segment, whose after-volume
  // number places the new volume.
  UINT32 FreeSegmentId;
  // Drive Ids for a new array: DriveCount of them, then RAID_DRIVE_LIST_END.
  // Ids rather than pointers, since the model is rebuilt after each change.
  UINT32 *DriveList;
  UINT32 DriveCount;  // for an existing array, its MemberDriveCount
  UINT8 RaidLevel;    // 0, 1, 5, 6, 10, 50, 60 (a new array's level)
  // Drive Ids of the hot spares to assign, ended by RAID_DRIVE_LIST_END;
  // NULL for none.
  UINT32 *SpareList;
  CHAR16 *Name;  // buffer of MaxVolumeNameStingLength + 1 characters
  UINT64 Size;   // thousandths of the wizard's unit: RAID_VOLUME_SIZE_UNIT
  UINT32 Reserved;  // always 1
  UINT32 StripeSize;
  UINT32 ReadPolicy;
  UINT32 WritePolicy;
  UINT32 IoPolicy;
  UINT32 DiskCachePolicy;
  RAID_VOLUME_PARAMETER *Next;
};

// ---- Global state -----------------------------------------------------------

// All controllers, in discovery order. The head links to itself from the
// start, so the list reads as empty before InitializeRaid initialises it.
extern LIST_ENTRY gControllerList;
// The capability record raid.xml's parsing is building; NULL otherwise.
extern RAID_CAPABILITY *gCapability;

// 1 while the Microchip card numbers must be mapped by slot again (so at
// start, and after a change on one of several Microchip adapters, whose
// reconnect renumbers them); the number of Microchip adapters seen. The
// reconnect (core) sets the first, the Microchip backend the second and
// reads both.
extern UINT32 greconnect;
extern UINT32 gMchpCtrlCount;

// ---- Releasing records (RaidLibRelease.cpp) ---------------------------------
// Each frees every record and string exactly once and copes with partly
// built records: NULL fields, and list heads that are empty or were never
// initialised (both links NULL). Lists emptied by them are left initialised.

// A drive with its Location, Model and Position; the caller unlinks it.
VOID RaidLibFreePhysicalDrive(RAID_PHYSICAL_DRIVE *Drive);
// Every drive of a drive list.
VOID RaidLibFreeDriveList(LIST_ENTRY *DriveList);
// A volume or free segment with its Name and Extra; the caller unlinks it.
VOID RaidLibFreeSegment(RAID_VOLUME *Segment);
// Every array of an array list: per array its Name, its drives, then its
// segments, then its Extra and itself.
VOID RaidLibFreeArrayLink(LIST_ENTRY *ArrayList);
// A capability with all its lists and strings.
VOID RaidLibFreeCapability(RAID_CAPABILITY *Capability);
// A whole controller: Name, FirmwareVersion, SerialNumber, DriveTable, the
// capability, the drives of PhysicalDriveList and SpareDriveList, the arrays,
// the private record's strings, the private record and the controller. The
// controller is unlinked first when it still sits in a list.
VOID RaidLibFreeController(RAID_CONTROLLER *Controller);

// ---- Segment order (RaidLibSegment.cpp) -------------------------------------

// Links a free segment into its array's SegmentList by the volume it lies
// after (Segment->State): none -> at the head; else directly ahead of the
// first record whose Id is that number; no such record -> at the tail.
VOID RaidLibInsertFreeSegment(RAID_ARRAY *Array, RAID_VOLUME *Segment);

// ---- Drive ids (RaidLibDriveIds.cpp) ----------------------------------------

// Leaves out of the model each drive of DriveTable whose Id another drive
// of the table carries too, and one whose Id is RAID_DRIVE_LIST_END: such
// an id cannot name one drive, so a create naming it could take a drive the
// operator did not choose. Each is traced, taken off the count of its list
// (UnconfiguredDriveCount, GlobalSpareCount, or its array's
// MemberDriveCount or DedicatedSpareCount), unlinked and freed; DriveTable
// closes up and DiskDriveCount follows. Backends call it once the drives of
// one tool output are read.
VOID RaidLibLeaveOutAmbiguousDrives(RAID_CONTROLLER *Controller);

// The drives of List whose Id is Id.
[[nodiscard]] UINT32 RaidLibCountDrivesWithId(LIST_ENTRY *List, UINT32 Id);

// ---- Profile words (RaidLibWords.cpp) ---------------------------------------

typedef enum {
  RaidPolicyRead,
  RaidPolicyWrite,
  RaidPolicyIo,
  RaidPolicyDiskCache,
  RaidPolicyStripeSize,
} RAID_POLICY_KIND;

// The code of a policy or stripe-size word in its list (exact, case
// included); the list's "other" code for any other word or NULL.
[[nodiscard]] UINT32 RaidLibPolicyValue(RAID_POLICY_KIND Kind,
                                        const CHAR16 *Word);
// The list's "any other text" code (2, 3, 2, 3, 2049).
[[nodiscard]] UINT32 RaidLibPolicyOtherValue(RAID_POLICY_KIND Kind);

// ---- Backend families and binding (RaidLibBinding.cpp) ----------------------

// The family of a signature ("$lsi" 0, "$m.2" 1, "rste" 2, "$arc" 3, else
// 4); RAID_FAMILY_NONE for NULL. The signature is read within its 8 bytes.
[[nodiscard]] UINT32 RaidLibFamilyOfSignature(const CHAR8 *Signature);
// The family of a controller's bound backend; RAID_FAMILY_NONE without a
// controller or private record.
[[nodiscard]] UINT32 RaidLibControllerFamily(const RAID_CONTROLLER *Controller);

// Fills an operation table with one family's backend.
typedef VOID (*RAID_BIND_BACKEND)(RAID_OPERATIONS *Operations);

// One row of the backend binding table.
typedef struct {
  RAID_BIND_BACKEND Bind;
  UINT16 VendorId;
  const CHAR16 *ToolFile;
  const CHAR8 *Signature;
  BOOLEAN Enabled;
} RAID_BACKEND_BINDING;

#define RAID_BACKEND_BINDING_COUNT 4
extern const RAID_BACKEND_BINDING gRaidBackendBindings[RAID_BACKEND_BINDING_COUNT];

// Applies the binding table to every controller of gControllerList that
// matched the database, has a capability and carries the row's vendor id.
VOID RaidLibBindBackends();
