// A controller of the module's model as comparable JSON, written with the
// model dump's own field writers.
#include "ControllerJson.h"

#include <string>

#include "model/RaidModelFields.h"
#include "native/ModelDump.h"

namespace core_test {
namespace {

using nlohmann::json;

// The model's fields as the dump writes them, into unordered JSON.
using FieldWriter = host::JsonFieldWriter<json>;

template <typename Visit>
json ObjectOf(Visit WriteFields) {
  json Object = json::object();
  FieldWriter Out(Object);
  WriteFields(Out);
  return Object;
}

json DriveIds(const LIST_ENTRY &Head) {
  json Ids = json::array();
  raid_model::EachRecord<RAID_PHYSICAL_DRIVE>(
      Head, [&Ids](const RAID_PHYSICAL_DRIVE &Drive) { Ids.push_back(Drive.Id); });
  return Ids;
}

// A free segment's settings are whatever the backend left there: only a
// volume's are compared.
json SegmentJson(const RAID_VOLUME &Segment) {
  return ObjectOf([&Segment](FieldWriter &Out) {
    raid_model::SegmentPlaceFields(Out, Segment);
    if (Segment.IsVolume == 1) {
      raid_model::VolumeSettingFields(Out, Segment);
    }
  });
}

json ArrayJson(const RAID_ARRAY &Array) {
  json Object = ObjectOf(
      [&Array](FieldWriter &Out) { raid_model::ArraySummaryFields(Out, Array); });
  Object["Drives"] = DriveIds(Array.DriveList);
  Object["Segments"] = json::array();
  raid_model::EachRecord<RAID_VOLUME>(
      Array.SegmentList, [&Object](const RAID_VOLUME &Segment) {
        Object["Segments"].push_back(SegmentJson(Segment));
      });
  return Object;
}

}  // namespace

json DriveJson(const RAID_CONTROLLER *Controller,
               const RAID_PHYSICAL_DRIVE *Drive) {
  json Object = ObjectOf(
      [Drive](FieldWriter &Out) { raid_model::Fields(Out, *Drive); });
  Object["Owner"] = nullptr;
  if (Drive->Owner == Controller) {
    Object["Owner"] = "controller";
  } else if (Drive->Owner != nullptr) {
    Object["Owner"] =
        "Array" + std::to_string(static_cast<const RAID_ARRAY *>(Drive->Owner)->Id);
  }
  return Object;
}

json ModelJson(const RAID_CONTROLLER *Controller) {
  json Table = json::array();
  for (UINT32 Index = 0; Controller->DriveTable != nullptr &&
                         Controller->DriveTable[Index] != nullptr;
       ++Index) {
    Table.push_back(DriveJson(Controller, Controller->DriveTable[Index]));
  }
  json Arrays = json::array();
  raid_model::EachRecord<RAID_ARRAY>(
      Controller->ArrayList,
      [&Arrays](const RAID_ARRAY &Array) { Arrays.push_back(ArrayJson(Array)); });
  // The controller as the adapter's reports show it: no PCI identity, no
  // capability.
  json Object = ObjectOf([Controller](FieldWriter &Out) {
    raid_model::Field(Out, "ProductName", Controller->Private->ProductName);
    raid_model::Field(Out, "SerialNumber", Controller->SerialNumber);
    raid_model::Field(Out, "FirmwareVersion", Controller->FirmwareVersion);
    raid_model::Field(Out, "DiskDriveCount", Controller->DiskDriveCount);
    raid_model::Field(Out, "UnconfiguredDriveCount", Controller->UnconfiguredDriveCount);
    raid_model::Field(Out, "GlobalSpareCount", Controller->GlobalSpareCount);
  });
  Object["DriveTable"] = Table;
  Object["PhysicalDrives"] = DriveIds(Controller->PhysicalDriveList);
  Object["SpareDrives"] = DriveIds(Controller->SpareDriveList);
  Object["Arrays"] = Arrays;
  return Object;
}

}  // namespace core_test
