// Writing the model's records as JSON, field by field, in the order of the
// native host's dump.
#include "ModelJson.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>

namespace {

// Guards against a corrupt ring: no list of the model is this long.
constexpr UINTN kMaxListLength = 4096;

// A growing text in the pool; once an allocation fails it stays failed.
class JsonText {
 public:
  ~JsonText() { FreePool(Text_); }

  VOID Raw(const CHAR8 *Text) { Append(Text, AsciiStrLen(Text)); }

  // A member's name (plain ASCII); its value follows.
  VOID Key(const CHAR8 *Name) {
    Separator();
    Raw("\"");
    Raw(Name);
    Raw("\":");
    PendingValue_ = TRUE;
  }

  VOID Number(UINT64 Value) {
    CHAR8 Digits[24];
    Value_();
    Append(Digits, AsciiSPrint(Digits, sizeof(Digits), "%lu", Value));
  }

  // A member with a number or a CHAR16 string (null for NULL) as its value.
  VOID Field(const CHAR8 *Name, UINT64 Value) {
    Key(Name);
    Number(Value);
  }

  VOID Field(const CHAR8 *Name, const CHAR16 *Value) {
    Key(Name);
    Text(Value);
  }

  VOID Null() {
    Value_();
    Raw("null");
  }

  // A CHAR16 string as a JSON string (null for NULL); pairs of surrogates
  // stay two escapes, which JSON reads as one character.
  VOID Text(const CHAR16 *Text) {
    if (Text == nullptr) {
      Null();
      return;
    }
    Value_();
    Raw("\"");
    for (const CHAR16 *C = Text; *C != 0; C++) {
      Character(*C);
    }
    Raw("\"");
  }

  VOID String(const CHAR8 *Text) {
    Value_();
    Raw("\"");
    for (const CHAR8 *C = Text; *C != 0; C++) {
      Character(static_cast<UINT8>(*C));
    }
    Raw("\"");
  }

  VOID Open(const CHAR8 *Bracket) {
    Value_();
    Raw(Bracket);
    First_ = TRUE;
  }

  VOID Close(const CHAR8 *Bracket) {
    Raw(Bracket);
    First_ = FALSE;
  }

  CHAR8 *Release() {
    if (Failed_) {
      return nullptr;
    }
    CHAR8 *Text = Text_;
    Text_ = nullptr;
    return Text;
  }

 private:
  // Before a value: its comma, unless it follows its key.
  VOID Value_() {
    if (PendingValue_) {
      PendingValue_ = FALSE;
      return;
    }
    Separator();
  }

  VOID Separator() {
    if (!First_) {
      Raw(",");
    }
    First_ = FALSE;
  }

  VOID Character(UINT32 C) {
    if (C == '"' || C == '\\') {
      const CHAR8 Escaped[3] = {'\\', static_cast<CHAR8>(C), 0};
      Raw(Escaped);
    } else if (C >= 0x20 && C < 0x7F) {
      const CHAR8 Plain[2] = {static_cast<CHAR8>(C), 0};
      Raw(Plain);
    } else {
      CHAR8 Escape[8];
      Append(Escape, AsciiSPrint(Escape, sizeof(Escape), "\\u%04x", C));
    }
  }

  VOID Append(const CHAR8 *Text, UINTN Length) {
    if (Failed_) {
      return;
    }
    if (Used_ + Length + 1 > Capacity_) {
      UINTN Capacity = Capacity_ == 0 ? 4096 : Capacity_ * 2;
      while (Used_ + Length + 1 > Capacity) {
        Capacity *= 2;
      }
      CHAR8 *Grown = static_cast<CHAR8 *>(AllocatePool(Capacity));
      if (Grown == nullptr) {
        Failed_ = TRUE;
        return;
      }
      CopyMem(Grown, Text_, Used_);
      FreePool(Text_);
      Text_ = Grown;
      Capacity_ = Capacity;
    }
    CopyMem(Text_ + Used_, Text, Length);
    Used_ += Length;
    Text_[Used_] = 0;
  }

  CHAR8 *Text_ = nullptr;
  UINTN Used_ = 0;
  UINTN Capacity_ = 0;
  BOOLEAN Failed_ = FALSE;
  BOOLEAN First_ = TRUE;
  BOOLEAN PendingValue_ = FALSE;
};

// Calls Write for each record of the ring Head, as a JSON array.
template <auto Link, typename WriteOne>
VOID List(JsonText &Json, LIST_ENTRY &Head, WriteOne Write) {
  Json.Open("[");
  if (Head.ForwardLink != nullptr && Head.BackLink != nullptr) {
    UINTN Count = 0;
    for (auto *Record : uefi::ListOf<Link>(Head)) {
      if (++Count > kMaxListLength) {
        break;
      }
      Write(Json, *Record);
    }
  }
  Json.Close("]");
}

VOID Drive(JsonText &J, const RAID_PHYSICAL_DRIVE &D) {
  J.Open("{");
  J.Field("Id", D.Id);
  J.Field("Location", D.Location);
  J.Field("Model", D.Model);
  J.Field("MediaType", D.MediaType);
  J.Field("State", D.State);
  J.Field("SizeFigure", D.SizeFigure);
  J.Field("SizeUnit", D.SizeUnit);
  J.Field("Role", D.Role);
  J.Key("Position");
  if (D.Position == nullptr) {
    J.Null();
  } else {
    J.Open("[");
    J.Number(D.Position->Values[0]);
    J.Number(D.Position->Values[1]);
    J.Close("]");
  }
  J.Close("}");
}

VOID Segment(JsonText &J, const RAID_VOLUME &S) {
  J.Open("{");
  J.Field("Id", S.Id);
  J.Field("Name", S.Name);
  J.Field("IsVolume", S.IsVolume);
  J.Field("SizeFigure", S.SizeFigure);
  J.Field("SizeUnit", S.SizeUnit);
  J.Field("State", S.State);
  J.Field("StripeSize", S.StripeSize);
  J.Field("ReadPolicy", S.ReadPolicy);
  J.Field("WritePolicy", S.WritePolicy);
  J.Field("IoPolicy", S.IoPolicy);
  J.Field("DiskCachePolicy", S.DiskCachePolicy);
  J.Close("}");
}

VOID Array(JsonText &J, RAID_ARRAY &A) {
  J.Open("{");
  J.Field("Id", A.Id);
  J.Field("Name", A.Name);
  J.Field("RaidLevel", A.RaidLevel);
  J.Field("SizeFigure", A.SizeFigure);
  J.Field("SizeUnit", A.SizeUnit);
  J.Field("FreeCapacity", A.FreeCapacity);
  J.Field("FreeCapacityUnit", A.FreeCapacityUnit);
  J.Field("MemberDriveCount", A.MemberDriveCount);
  J.Field("DedicatedSpareCount", A.DedicatedSpareCount);
  J.Field("VolumeCount", A.VolumeCount);
  J.Field("FreeSegmentCount", A.FreeSegmentCount);
  J.Key("Drives"), List<&RAID_PHYSICAL_DRIVE::Link>(J, A.DriveList, Drive);
  J.Key("Segments"), List<&RAID_VOLUME::Link>(J, A.SegmentList, Segment);
  J.Close("}");
}

VOID Level(JsonText &J, const RAID_LEVEL_CAP &L) {
  J.Open("{");
  J.Field("Name", L.Name);
  J.Field("Level", L.Level);
  J.Field("IsDefault", L.IsDefault);
  J.Field("MinPhysicalDrives", L.MinPhysicalDrives);
  J.Field("MaxPhysicalDrives", L.MaxPhysicalDrives);
  J.Field("MaxLogicalDrives", L.MaxLogicalDrives);
  J.Close("}");
}

VOID Policy(JsonText &J, const RAID_POLICY_ENTRY &P) {
  J.Open("{");
  J.Field("Name", P.Name);
  J.Field("Value", P.Value);
  J.Field("IsDefault", P.IsDefault);
  J.Close("}");
}

VOID Capability(JsonText &J, RAID_CAPABILITY *C) {
  if (C == nullptr) {
    J.Null();
    return;
  }
  J.Open("{");
  J.Field("ControllerName", C->ControllerName);
  J.Key("Levels"), List<&RAID_LEVEL_CAP::Link>(J, C->LevelList, Level);
  J.Key("ReadPolicies"), List<&RAID_POLICY_ENTRY::Link>(J, C->ReadPolicyList, Policy);
  J.Key("WritePolicies"), List<&RAID_POLICY_ENTRY::Link>(J, C->WritePolicyList, Policy);
  J.Key("IoPolicies"), List<&RAID_POLICY_ENTRY::Link>(J, C->IoPolicyList, Policy);
  J.Key("DiskCachePolicies"),
      List<&RAID_POLICY_ENTRY::Link>(J, C->DiskCachePolicyList, Policy);
  J.Key("StripeSizes"), List<&RAID_POLICY_ENTRY::Link>(J, C->StripeSizeList, Policy);
  J.Field("MaxVolumeNameStingLength", C->MaxVolumeNameStingLength);
  J.Field("MaxHotSpares", C->MaxHotSpares);
  J.Field("MaxArrays", C->MaxArrays);
  J.Field("MaxLogicalDrivesInArray", C->MaxLogicalDrivesInArray);
  J.Field("MaxTotalLogicalDrives", C->MaxTotalLogicalDrives);
  J.Field("MaxTotalPhysicalDrives", C->MaxTotalPhysicalDrives);
  J.Field("ToolName", C->ToolName);
  J.Close("}");
}

VOID Private(JsonText &J, const RAID_CONTROLLER_PRIVATE *P) {
  if (P == nullptr) {
    J.Null();
    return;
  }
  CHAR8 Signature[RAID_SIGNATURE_SIZE + 1] = {};
  for (UINTN I = 0; I < RAID_SIGNATURE_SIZE && P->Operations.Signature[I] != 0; I++) {
    Signature[I] = P->Operations.Signature[I];
  }
  J.Open("{");
  J.Field("CardId", P->CardId);
  J.Field("StorageId", P->StorageId);
  J.Field("ProductName", P->ProductName);
  J.Field("Bus", P->Bus);
  J.Field("Device", P->Device);
  J.Field("Function", P->Function);
  J.Field("VendorId", P->VendorId);
  J.Field("DeviceId", P->DeviceId);
  J.Field("SubVendorId", P->SubVendorId);
  J.Field("SubDeviceId", P->SubDeviceId);
  J.Field("Flags", P->Flags);
  J.Key("Signature"), J.String(Signature);
  J.Close("}");
}

VOID DriveTable(JsonText &J, const RAID_CONTROLLER &C) {
  J.Open("[");
  for (UINT32 I = 0; C.DriveTable != nullptr && I < C.DiskDriveCount; I++) {
    if (C.DriveTable[I] == nullptr) {
      break;
    }
    J.Number(C.DriveTable[I]->Id);
  }
  J.Close("]");
}

VOID Controller(JsonText &J, RAID_CONTROLLER &C) {
  J.Open("{");
  J.Field("Id", C.Id);
  J.Field("ToolType", C.ToolType);
  J.Field("Name", C.Name);
  J.Field("FirmwareVersion", C.FirmwareVersion);
  J.Field("SerialNumber", C.SerialNumber);
  J.Field("SlotNumber", C.SlotNumber);
  J.Field("DiskDriveCount", C.DiskDriveCount);
  J.Field("UnconfiguredDriveCount", C.UnconfiguredDriveCount);
  J.Field("GlobalSpareCount", C.GlobalSpareCount);
  J.Key("DriveTable"), DriveTable(J, C);
  J.Key("PhysicalDrives"), List<&RAID_PHYSICAL_DRIVE::Link>(J, C.PhysicalDriveList, Drive);
  J.Key("SpareDrives"), List<&RAID_PHYSICAL_DRIVE::Link>(J, C.SpareDriveList, Drive);
  J.Key("Arrays"), List<&RAID_ARRAY::Link>(J, C.ArrayList, Array);
  J.Key("Private"), Private(J, C.Private);
  J.Key("Capability"), Capability(J, C.Capability);
  J.Close("}");
}

}  // namespace

CHAR8 *BuildModelJson(EFI_STATUS Status, UINT32 ErrorCode, LIST_ENTRY *Controllers) {
  JsonText Json;
  CHAR8 StatusName[64];
  AsciiSPrint(StatusName, sizeof(StatusName), "%r", Status);
  Json.Open("{");
  Json.Key("status"), Json.String(StatusName);
  Json.Field("errorCode", ErrorCode);
  Json.Key("controllers");
  if (Controllers == nullptr) {
    Json.Open("[");
    Json.Close("]");
  } else {
    List<&RAID_CONTROLLER::Link>(Json, *Controllers, Controller);
  }
  Json.Close("}");
  return Json.Release();
}
