// The RAID model as JSON: the contract of raidcfg-host --dump-model, with
// the model's own field names (docs/model-dump.md).
#pragma once

#include <Uefi.h>
#include "RaidLib.h"

#include <nlohmann/json.hpp>

#include <string>
#include <utility>

#include "emu/TextConversion.h"

namespace host {

using ModelJson = nlohmann::ordered_json;

// A writer of raid_model's field lists (model/RaidModelFields.h) into a
// JSON value of type Json: an object or a list, whose members or items it
// adds. Strings become UTF-8.
template <typename Json>
class JsonFieldWriter {
 public:
  explicit JsonFieldWriter(Json &Target) : Target_(Target) {}

  void Number(const CHAR8 *Name, UINT64 Value) { Put(Name, Value); }
  void Text(const CHAR8 *Name, const CHAR16 *Value) {
    Put(Name, emu::ToUtf8(Value));
  }
  void Ascii(const CHAR8 *Name, const CHAR8 *Value) { Put(Name, Value); }
  void Null(const CHAR8 *Name) { Put(Name, nullptr); }

  template <typename Fill>
  void Object(const CHAR8 *Name, Fill Members) {
    Nested(Name, Json::object(), Members);
  }
  template <typename Fill>
  void List(const CHAR8 *Name, Fill Items) {
    Nested(Name, Json::array(), Items);
  }

 private:
  template <typename Fill>
  void Nested(const CHAR8 *Name, Json Value, Fill Write) {
    JsonFieldWriter Inner(Value);
    Write(Inner);
    Put(Name, std::move(Value));
  }

  // A member when Name is given, else an item.
  void Put(const CHAR8 *Name, Json Value) {
    if (Name == nullptr) {
      Target_.push_back(std::move(Value));
    } else {
      Target_[Name] = std::move(Value);
    }
  }

  Json &Target_;
};

// The firmware's text for a status, as "%r" prints it ("Success").
std::string StatusName(EFI_STATUS Status);

// The whole model: status, errorCode, and every controller of Controllers.
ModelJson DumpModel(EFI_STATUS Status, UINT32 ErrorCode,
                    LIST_ENTRY &Controllers);

}  // namespace host
