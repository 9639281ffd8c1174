// Turning the module's RAID model into JSON, field by field.
#include "native/ModelDump.h"

#include <Library/PrintLib.h>

#include <cstring>

#include "emu/TextConversion.h"

namespace host {
namespace {

// A model string: UTF-8, or null for a null pointer.
ModelJson Text(const CHAR16 *String) {
  if (String == nullptr) {
    return nullptr;
  }
  return emu::ToUtf8(String);
}

// A list head the module never initialised holds nothing.
bool IsUsable(const LIST_ENTRY &Head) {
  return Head.ForwardLink != nullptr && Head.BackLink != nullptr;
}

template <auto Link, typename Dump>
ModelJson DumpList(const LIST_ENTRY &Head, Dump DumpOne) {
  ModelJson List = ModelJson::array();
  if (!IsUsable(Head)) {
    return List;
  }
  for (const auto *Record :
       uefi::ListOf<Link>(const_cast<LIST_ENTRY &>(Head))) {
    List.push_back(DumpOne(*Record));
  }
  return List;
}

ModelJson DumpLevel(const RAID_LEVEL_CAP &Level) {
  return {{"Name", Text(Level.Name)},
          {"Level", Level.Level},
          {"IsDefault", Level.IsDefault},
          {"MinPhysicalDrives", Level.MinPhysicalDrives},
          {"MaxPhysicalDrives", Level.MaxPhysicalDrives},
          {"MaxLogicalDrives", Level.MaxLogicalDrives}};
}

ModelJson DumpPolicy(const RAID_POLICY_ENTRY &Policy) {
  return {{"Name", Text(Policy.Name)},
          {"Value", Policy.Value},
          {"IsDefault", Policy.IsDefault}};
}

ModelJson DumpPolicies(const LIST_ENTRY &Head) {
  return DumpList<&RAID_POLICY_ENTRY::Link>(Head, DumpPolicy);
}

ModelJson DumpSegment(const RAID_VOLUME &Segment) {
  return {{"Id", Segment.Id},
          {"Name", Text(Segment.Name)},
          {"IsVolume", Segment.IsVolume},
          {"SizeFigure", Segment.SizeFigure},
          {"SizeUnit", Segment.SizeUnit},
          {"State", Segment.State},
          {"StripeSize", Segment.StripeSize},
          {"ReadPolicy", Segment.ReadPolicy},
          {"WritePolicy", Segment.WritePolicy},
          {"IoPolicy", Segment.IoPolicy},
          {"DiskCachePolicy", Segment.DiskCachePolicy}};
}

ModelJson DumpPrivate(const RAID_CONTROLLER_PRIVATE *Private) {
  if (Private == nullptr) {
    return nullptr;
  }
  const CHAR8 *Tag = Private->Operations.Signature;
  std::string Signature(Tag, strnlen(Tag, RAID_SIGNATURE_SIZE));
  return {{"CardId", Private->CardId},
          {"StorageId", Text(Private->StorageId)},
          {"ProductName", Text(Private->ProductName)},
          {"Bus", Private->Bus},
          {"Device", Private->Device},
          {"Function", Private->Function},
          {"VendorId", Private->VendorId},
          {"DeviceId", Private->DeviceId},
          {"SubVendorId", Private->SubVendorId},
          {"SubDeviceId", Private->SubDeviceId},
          {"Flags", Private->Flags},
          {"Signature", Signature}};
}

// The drives' Ids in table order, up to the NULL end or DiskDriveCount.
ModelJson DumpDriveTable(const RAID_CONTROLLER &Controller) {
  ModelJson Ids = ModelJson::array();
  if (Controller.DriveTable == nullptr) {
    return Ids;
  }
  for (UINT32 I = 0; I < Controller.DiskDriveCount; I++) {
    const RAID_PHYSICAL_DRIVE *Drive = Controller.DriveTable[I];
    if (Drive == nullptr) {
      break;
    }
    Ids.push_back(Drive->Id);
  }
  return Ids;
}

}  // namespace

std::string StatusName(EFI_STATUS Status) {
  CHAR8 Buffer[64];
  AsciiSPrint(Buffer, sizeof(Buffer), "%r", Status);
  return Buffer;
}

ModelJson DumpDrive(const RAID_PHYSICAL_DRIVE &Drive) {
  ModelJson Position = nullptr;
  if (Drive.Position != nullptr) {
    Position = {Drive.Position->Values[0], Drive.Position->Values[1]};
  }
  return {{"Id", Drive.Id},
          {"Location", Text(Drive.Location)},
          {"Model", Text(Drive.Model)},
          {"MediaType", Drive.MediaType},
          {"State", Drive.State},
          {"SizeFigure", Drive.SizeFigure},
          {"SizeUnit", Drive.SizeUnit},
          {"Role", Drive.Role},
          {"Position", Position}};
}

ModelJson DumpArray(const RAID_ARRAY &Array) {
  return {{"Id", Array.Id},
          {"Name", Text(Array.Name)},
          {"RaidLevel", Array.RaidLevel},
          {"SizeFigure", Array.SizeFigure},
          {"SizeUnit", Array.SizeUnit},
          {"FreeCapacity", Array.FreeCapacity},
          {"FreeCapacityUnit", Array.FreeCapacityUnit},
          {"MemberDriveCount", Array.MemberDriveCount},
          {"DedicatedSpareCount", Array.DedicatedSpareCount},
          {"VolumeCount", Array.VolumeCount},
          {"FreeSegmentCount", Array.FreeSegmentCount},
          {"Drives", DumpList<&RAID_PHYSICAL_DRIVE::Link>(Array.DriveList,
                                                          DumpDrive)},
          {"Segments",
           DumpList<&RAID_VOLUME::Link>(Array.SegmentList, DumpSegment)}};
}

ModelJson DumpCapability(const RAID_CAPABILITY *Capability) {
  if (Capability == nullptr) {
    return nullptr;
  }
  const RAID_CAPABILITY &C = *Capability;
  return {{"ControllerName", Text(C.ControllerName)},
          {"Levels", DumpList<&RAID_LEVEL_CAP::Link>(C.LevelList, DumpLevel)},
          {"ReadPolicies", DumpPolicies(C.ReadPolicyList)},
          {"WritePolicies", DumpPolicies(C.WritePolicyList)},
          {"IoPolicies", DumpPolicies(C.IoPolicyList)},
          {"DiskCachePolicies", DumpPolicies(C.DiskCachePolicyList)},
          {"StripeSizes", DumpPolicies(C.StripeSizeList)},
          {"MaxVolumeNameStingLength", C.MaxVolumeNameStingLength},
          {"MaxHotSpares", C.MaxHotSpares},
          {"MaxArrays", C.MaxArrays},
          {"MaxLogicalDrivesInArray", C.MaxLogicalDrivesInArray},
          {"MaxTotalLogicalDrives", C.MaxTotalLogicalDrives},
          {"MaxTotalPhysicalDrives", C.MaxTotalPhysicalDrives},
          {"ToolName", Text(C.ToolName)}};
}

ModelJson DumpController(const RAID_CONTROLLER &Controller) {
  const RAID_CONTROLLER &C = Controller;
  return {{"Id", C.Id},
          {"ToolType", C.ToolType},
          {"Name", Text(C.Name)},
          {"FirmwareVersion", Text(C.FirmwareVersion)},
          {"SerialNumber", Text(C.SerialNumber)},
          {"SlotNumber", C.SlotNumber},
          {"DiskDriveCount", C.DiskDriveCount},
          {"UnconfiguredDriveCount", C.UnconfiguredDriveCount},
          {"GlobalSpareCount", C.GlobalSpareCount},
          {"DriveTable", DumpDriveTable(C)},
          {"PhysicalDrives", DumpList<&RAID_PHYSICAL_DRIVE::Link>(
                                 C.PhysicalDriveList, DumpDrive)},
          {"SpareDrives", DumpList<&RAID_PHYSICAL_DRIVE::Link>(
                              C.SpareDriveList, DumpDrive)},
          {"Arrays", DumpList<&RAID_ARRAY::Link>(C.ArrayList, DumpArray)},
          {"Private", DumpPrivate(C.Private)},
          {"Capability", DumpCapability(C.Capability)}};
}

ModelJson DumpModel(EFI_STATUS Status, UINT32 ErrorCode,
                    LIST_ENTRY &Controllers) {
  ModelJson Model = ModelJson::object();
  Model["status"] = StatusName(Status);
  Model["errorCode"] = ErrorCode;
  Model["controllers"] =
      DumpList<&RAID_CONTROLLER::Link>(Controllers, DumpController);
  return Model;
}

}  // namespace host
