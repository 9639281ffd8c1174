// Writing the model's records as JSON through the model's shared field
// lists, in the order of the native host's dump.
#include "ModelJson.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>

#include "model/RaidModelFields.h"

namespace {

// A growing JSON text in the pool, written as raid_model's field lists
// visit the model; once an allocation fails it stays failed.
class JsonText {
 public:
  ~JsonText() { FreePool(Text_); }

  VOID Number(const CHAR8 *Name, UINT64 Value) {
    CHAR8 Digits[24];
    Begin(Name);
    Append(Digits, AsciiSPrint(Digits, sizeof(Digits), "%lu", Value));
  }

  VOID Text(const CHAR8 *Name, const CHAR16 *Value) {
    Begin(Name);
    Quoted(Value);
  }

  VOID Ascii(const CHAR8 *Name, const CHAR8 *Value) {
    Begin(Name);
    Quoted(Value);
  }

  VOID Null(const CHAR8 *Name) {
    Begin(Name);
    Raw("null");
  }

  template <typename Fill>
  VOID Object(const CHAR8 *Name, Fill Members) {
    Nested(Name, "{", "}", Members);
  }

  template <typename Fill>
  VOID List(const CHAR8 *Name, Fill Items) {
    Nested(Name, "[", "]", Items);
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
  template <typename Fill>
  VOID Nested(const CHAR8 *Name, const CHAR8 *Open, const CHAR8 *Close, Fill Write) {
    Begin(Name);
    Raw(Open);
    First_ = TRUE;
    Write(*this);
    Raw(Close);
    First_ = FALSE;
  }

  // Before a value: its comma unless it is the first in its object or
  // list, then its name (plain ASCII) when it is a member.
  VOID Begin(const CHAR8 *Name) {
    if (!First_) {
      Raw(",");
    }
    First_ = FALSE;
    if (Name != nullptr) {
      Raw("\"");
      Raw(Name);
      Raw("\":");
    }
  }

  VOID Raw(const CHAR8 *Text) { Append(Text, AsciiStrLen(Text)); }

  // A string as a JSON string; pairs of surrogates stay two escapes, which
  // JSON reads as one character.
  template <typename Char>
  VOID Quoted(const Char *Value) {
    Raw("\"");
    for (const Char *C = Value; *C != 0; C++) {
      // CHAR8 may be signed: its bytes are the codes 0-255.
      Character(sizeof(Char) == 1 ? static_cast<UINT8>(*C) : static_cast<UINT32>(*C));
    }
    Raw("\"");
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
};

}  // namespace

CHAR8 *BuildModelJson(EFI_STATUS Status, UINT32 ErrorCode, LIST_ENTRY *Controllers) {
  JsonText Json;
  CHAR8 StatusText[64];
  AsciiSPrint(StatusText, sizeof(StatusText), "%r", Status);
  Json.Object(nullptr, [&](JsonText &Members) {
    raid_model::ModelFields(Members, StatusText, ErrorCode, Controllers);
  });
  return Json.Release();
}
