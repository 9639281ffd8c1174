// The RAID model's records field by field, in the order of the model dump
// (docs/model-dump.md): each field's name and its value. The native host's
// dump, the UEFI host's JSON and the tests' model view all write the model
// through these lists, so a record's fields are named in one place only.
//
// A writer is any type with these members. Name is the field's name, or
// NULL for an item of the list being written; Fill is called with a writer
// of the same type placed inside the new value (it may be the same object).
//   Number(const CHAR8 *Name, UINT64 Value)
//   Text(const CHAR8 *Name, const CHAR16 *Value)  Value is never NULL
//   Ascii(const CHAR8 *Name, const CHAR8 *Value)  NUL-terminated ASCII
//   Null(const CHAR8 *Name)
//   Object(const CHAR8 *Name, Fill)               Fill writes the members
//   List(const CHAR8 *Name, Fill)                 Fill writes the items
//
// Templates only, no allocation: the UEFI host builds it as well.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

namespace raid_model {

// Guards against a corrupt ring: no list of the model is this long.
constexpr UINTN kMaxListLength = 4096;

// Calls Each for every record of the ring Head in ring order, at most
// kMaxListLength of them. A head the module never initialised holds none.
// Records are linked through their member Link. The record type is a
// template parameter, not an `auto` pointer to the link: the UEFI build's
// name mangling writes such a pointer as its offset alone, every record's
// Link is at offset 0, and two lists would share one instantiation.
template <typename Record, typename Visit>
VOID EachRecord(const LIST_ENTRY &Head, Visit Each) {
  UINTN Count = 0;
  for (const Record *Item : uefi::ConstListOf<&Record::Link>(Head)) {
    if (++Count > kMaxListLength) {
      return;
    }
    Each(*Item);
  }
}

// A number field; every integer of the model widens to UINT64.
template <typename Writer>
VOID Field(Writer &Out, const CHAR8 *Name, UINT64 Value) {
  Out.Number(Name, Value);
}

// A string field: null for a NULL string.
template <typename Writer>
VOID Field(Writer &Out, const CHAR8 *Name, const CHAR16 *Value) {
  if (Value == nullptr) {
    Out.Null(Name);
  } else {
    Out.Text(Name, Value);
  }
}

// The fields of each whole record, for the lists below.
template <typename Writer>
VOID Fields(Writer &Out, const RAID_PHYSICAL_DRIVE &Drive);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_VOLUME &Segment);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_ARRAY &Array);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_LEVEL_CAP &Level);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_POLICY_ENTRY &Policy);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_CAPABILITY &Capability);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_CONTROLLER_PRIVATE &Private);
template <typename Writer>
VOID Fields(Writer &Out, const RAID_CONTROLLER &Controller);

// The records of the ring Head as a list of objects.
template <typename Record, typename Writer>
VOID RecordList(Writer &Out, const CHAR8 *Name, const LIST_ENTRY &Head) {
  Out.List(Name, [&Head](auto &Items) {
    EachRecord<Record>(Head, [&Items](const Record &Item) {
      Items.Object(nullptr, [&Item](auto &Members) { Fields(Members, Item); });
    });
  });
}

// A record the model may lack: its object, or null.
template <typename Writer, typename Record>
VOID RecordOrNull(Writer &Out, const CHAR8 *Name, const Record *Optional) {
  if (Optional == nullptr) {
    Out.Null(Name);
    return;
  }
  Out.Object(Name, [Optional](auto &Members) { Fields(Members, *Optional); });
}

// ---- Drives ------------------------------------------------------------------

// Every position value, whichever the backend uses; null without a record.
template <typename Writer>
VOID PositionField(Writer &Out, const RAID_DRIVE_POSITION *Position) {
  if (Position == nullptr) {
    Out.Null("Position");
    return;
  }
  Out.List("Position", [Position](auto &Values) {
    for (UINT32 Value : Position->Values) {
      Values.Number(nullptr, Value);
    }
  });
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_PHYSICAL_DRIVE &Drive) {
  Field(Out, "Id", Drive.Id);
  Field(Out, "Location", Drive.Location);
  Field(Out, "Model", Drive.Model);
  Field(Out, "MediaType", Drive.MediaType);
  Field(Out, "State", Drive.State);
  Field(Out, "SizeFigure", Drive.SizeFigure);
  Field(Out, "SizeUnit", Drive.SizeUnit);
  Field(Out, "Role", Drive.Role);
  PositionField(Out, Drive.Position);
}

// ---- Arrays and their segments -------------------------------------------

// What volumes and free segments alike hold.
template <typename Writer>
VOID SegmentPlaceFields(Writer &Out, const RAID_VOLUME &Segment) {
  Field(Out, "Id", Segment.Id);
  Field(Out, "Name", Segment.Name);
  Field(Out, "IsVolume", Segment.IsVolume);
  Field(Out, "SizeFigure", Segment.SizeFigure);
  Field(Out, "SizeUnit", Segment.SizeUnit);
  Field(Out, "State", Segment.State);
}

// A volume's settings; a free segment holds whatever its backend left there.
template <typename Writer>
VOID VolumeSettingFields(Writer &Out, const RAID_VOLUME &Segment) {
  Field(Out, "StripeSize", Segment.StripeSize);
  Field(Out, "ReadPolicy", Segment.ReadPolicy);
  Field(Out, "WritePolicy", Segment.WritePolicy);
  Field(Out, "IoPolicy", Segment.IoPolicy);
  Field(Out, "DiskCachePolicy", Segment.DiskCachePolicy);
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_VOLUME &Segment) {
  SegmentPlaceFields(Out, Segment);
  VolumeSettingFields(Out, Segment);
}

// The array's own numbers, before its drive and segment lists.
template <typename Writer>
VOID ArraySummaryFields(Writer &Out, const RAID_ARRAY &Array) {
  Field(Out, "Id", Array.Id);
  Field(Out, "Name", Array.Name);
  Field(Out, "RaidLevel", Array.RaidLevel);
  Field(Out, "SizeFigure", Array.SizeFigure);
  Field(Out, "SizeUnit", Array.SizeUnit);
  Field(Out, "FreeCapacity", Array.FreeCapacity);
  Field(Out, "FreeCapacityUnit", Array.FreeCapacityUnit);
  Field(Out, "MemberDriveCount", Array.MemberDriveCount);
  Field(Out, "DedicatedSpareCount", Array.DedicatedSpareCount);
  Field(Out, "VolumeCount", Array.VolumeCount);
  Field(Out, "FreeSegmentCount", Array.FreeSegmentCount);
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_ARRAY &Array) {
  ArraySummaryFields(Out, Array);
  RecordList<RAID_PHYSICAL_DRIVE>(Out, "Drives", Array.DriveList);
  RecordList<RAID_VOLUME>(Out, "Segments", Array.SegmentList);
}

// ---- Capability --------------------------------------------------------------

template <typename Writer>
VOID Fields(Writer &Out, const RAID_LEVEL_CAP &Level) {
  Field(Out, "Name", Level.Name);
  Field(Out, "Level", Level.Level);
  Field(Out, "IsDefault", Level.IsDefault);
  Field(Out, "MinPhysicalDrives", Level.MinPhysicalDrives);
  Field(Out, "MaxPhysicalDrives", Level.MaxPhysicalDrives);
  Field(Out, "MaxLogicalDrives", Level.MaxLogicalDrives);
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_POLICY_ENTRY &Policy) {
  Field(Out, "Name", Policy.Name);
  Field(Out, "Value", Policy.Value);
  Field(Out, "IsDefault", Policy.IsDefault);
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_CAPABILITY &Capability) {
  const RAID_CAPABILITY &C = Capability;
  Field(Out, "ControllerName", C.ControllerName);
  RecordList<RAID_LEVEL_CAP>(Out, "Levels", C.LevelList);
  RecordList<RAID_POLICY_ENTRY>(Out, "ReadPolicies", C.ReadPolicyList);
  RecordList<RAID_POLICY_ENTRY>(Out, "WritePolicies", C.WritePolicyList);
  RecordList<RAID_POLICY_ENTRY>(Out, "IoPolicies", C.IoPolicyList);
  RecordList<RAID_POLICY_ENTRY>(Out, "DiskCachePolicies", C.DiskCachePolicyList);
  RecordList<RAID_POLICY_ENTRY>(Out, "StripeSizes", C.StripeSizeList);
  Field(Out, "MaxVolumeNameStingLength", C.MaxVolumeNameStingLength);
  Field(Out, "MaxHotSpares", C.MaxHotSpares);
  Field(Out, "MaxArrays", C.MaxArrays);
  Field(Out, "MaxLogicalDrivesInArray", C.MaxLogicalDrivesInArray);
  Field(Out, "MaxTotalLogicalDrives", C.MaxTotalLogicalDrives);
  Field(Out, "MaxTotalPhysicalDrives", C.MaxTotalPhysicalDrives);
  Field(Out, "ToolName", C.ToolName);
}

// ---- Controllers -------------------------------------------------------------

template <typename Writer>
VOID Fields(Writer &Out, const RAID_CONTROLLER_PRIVATE &Private) {
  // The operation table's tag as text: zero-padded, not always terminated.
  CHAR8 Signature[RAID_SIGNATURE_SIZE + 1] = {};
  for (UINTN I = 0; I < RAID_SIGNATURE_SIZE && Private.Operations.Signature[I] != 0;
       I++) {
    Signature[I] = Private.Operations.Signature[I];
  }
  Field(Out, "CardId", Private.CardId);
  Field(Out, "StorageId", Private.StorageId);
  Field(Out, "ProductName", Private.ProductName);
  Field(Out, "Bus", Private.Bus);
  Field(Out, "Device", Private.Device);
  Field(Out, "Function", Private.Function);
  Field(Out, "VendorId", Private.VendorId);
  Field(Out, "DeviceId", Private.DeviceId);
  Field(Out, "SubVendorId", Private.SubVendorId);
  Field(Out, "SubDeviceId", Private.SubDeviceId);
  Field(Out, "Flags", Private.Flags);
  Out.Ascii("Signature", Signature);
}

// The drives' Ids in table order, up to the NULL end or DiskDriveCount.
template <typename Writer>
VOID DriveTableField(Writer &Out, const RAID_CONTROLLER &Controller) {
  Out.List("DriveTable", [&Controller](auto &Ids) {
    RAID_PHYSICAL_DRIVE *const *Table = Controller.DriveTable;
    for (UINT32 I = 0; Table != nullptr && I < Controller.DiskDriveCount && Table[I] != nullptr;
         I++) {
      Ids.Number(nullptr, Table[I]->Id);
    }
  });
}

template <typename Writer>
VOID Fields(Writer &Out, const RAID_CONTROLLER &Controller) {
  const RAID_CONTROLLER &C = Controller;
  Field(Out, "Id", C.Id);
  Field(Out, "ToolType", C.ToolType);
  Field(Out, "Name", C.Name);
  Field(Out, "FirmwareVersion", C.FirmwareVersion);
  Field(Out, "SerialNumber", C.SerialNumber);
  Field(Out, "SlotNumber", C.SlotNumber);
  Field(Out, "DiskDriveCount", C.DiskDriveCount);
  Field(Out, "UnconfiguredDriveCount", C.UnconfiguredDriveCount);
  Field(Out, "GlobalSpareCount", C.GlobalSpareCount);
  DriveTableField(Out, C);
  RecordList<RAID_PHYSICAL_DRIVE>(Out, "PhysicalDrives", C.PhysicalDriveList);
  RecordList<RAID_PHYSICAL_DRIVE>(Out, "SpareDrives", C.SpareDriveList);
  RecordList<RAID_ARRAY>(Out, "Arrays", C.ArrayList);
  RecordOrNull(Out, "Private", C.Private);
  RecordOrNull(Out, "Capability", C.Capability);
  // 1 when the last read met a tool output cut at its buffer's end.
  const UINT32 Cut = C.Private != nullptr &&
                             (C.Private->Flags & RAID_FLAG_OUTPUT_CUT) != 0
                         ? 1
                         : 0;
  Field(Out, "OutputCut", Cut);
}

// ---- The whole model ---------------------------------------------------------

// The discovery's outcome (StatusText: its status as "%r" prints it) and
// every controller of Controllers; NULL Controllers gives an empty list.
template <typename Writer>
VOID ModelFields(Writer &Out, const CHAR8 *StatusText, UINT32 ErrorCode,
                 const LIST_ENTRY *Controllers) {
  LIST_ENTRY None;
  InitializeListHead(&None);
  Out.Ascii("status", StatusText);
  Field(Out, "errorCode", ErrorCode);
  RecordList<RAID_CONTROLLER>(Out, "controllers",
                                     Controllers != nullptr ? *Controllers : None);
}

}  // namespace raid_model
