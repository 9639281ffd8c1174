// Field readers of the scenario JSON.
#include "sim/common/JsonFields.h"

#include <algorithm>
#include <cctype>

namespace sim::common {

using nlohmann::json;

std::string KeyPlace(const std::string &Where, std::string_view Key) {
  return Where.empty() ? std::string(Key) : Where + "." + std::string(Key);
}

std::string IndexPlace(const std::string &Where, size_t Index) {
  return Where + "[" + std::to_string(Index) + "]";
}

void Refuse(const std::string &Where, const std::string &What) {
  throw ScenarioError(Where.empty() ? What : Where + ": " + What);
}

void CheckKeys(const json &Object, const std::string &Where,
               std::initializer_list<std::string_view> Allowed) {
  if (!Object.is_object()) {
    Refuse(Where, "expected an object");
  }
  for (const auto &Item : Object.items()) {
    if (std::find(Allowed.begin(), Allowed.end(), Item.key()) == Allowed.end()) {
      Refuse(Where, "unknown key \"" + Item.key() + "\"");
    }
  }
}

const json &RequireArray(const json &Value, const std::string &Where) {
  if (!Value.is_array()) {
    Refuse(Where, "expected an array");
  }
  return Value;
}

const json &Required(const json &Object, const char *Key,
                     const std::string &Where) {
  if (!Object.contains(Key)) {
    Refuse(Where, std::string("missing \"") + Key + "\"");
  }
  return Object.at(Key);
}

const json &ArrayOr(const json &Object, const char *Key,
                    const std::string &Where) {
  static const json kEmpty = json::array();
  return Object.contains(Key) ? RequireArray(Object.at(Key), KeyPlace(Where, Key))
                              : kEmpty;
}

const json &ObjectOr(const json &Object, const char *Key,
                     const std::string &Where) {
  static const json kEmpty = json::object();
  if (!Object.contains(Key)) {
    return kEmpty;
  }
  const json &Value = Object.at(Key);
  if (!Value.is_object()) {
    Refuse(KeyPlace(Where, Key), "expected an object");
  }
  return Value;
}

bool ParseHex(std::string_view Text, uint64_t &Value) {
  if (Text.size() > 2 && Text[0] == '0' && (Text[1] == 'x' || Text[1] == 'X')) {
    Text.remove_prefix(2);
  }
  if (Text.empty() || Text.size() > 16) {
    return false;
  }
  Value = 0;
  for (char C : Text) {
    if (!std::isxdigit(static_cast<unsigned char>(C))) {
      return false;
    }
    const int Digit = std::isdigit(static_cast<unsigned char>(C))
                          ? C - '0'
                          : std::tolower(static_cast<unsigned char>(C)) - 'a' + 10;
    Value = Value * 16 + static_cast<uint64_t>(Digit);
  }
  return true;
}

uint64_t ReadHexNumber(const json &Value, const std::string &Where,
                       uint64_t Max) {
  uint64_t Number = 0;
  if (Value.is_number_unsigned()) {
    Number = Value.get<uint64_t>();
  } else if (Value.is_string()) {
    if (!ParseHex(Value.get_ref<const std::string &>(), Number)) {
      Refuse(Where, "not a hexadecimal number");
    }
  } else {
    Refuse(Where, "expected a number or a hexadecimal string");
  }
  if (Number > Max) {
    Refuse(Where, "out of range");
  }
  return Number;
}

uint64_t HexNumberOr(const json &Object, const char *Key,
                     const std::string &Where, uint64_t Max, uint64_t Default) {
  if (!Object.contains(Key)) {
    return Default;
  }
  return ReadHexNumber(Object.at(Key), KeyPlace(Where, Key), Max);
}

uint64_t RequiredHexNumber(const json &Object, const char *Key,
                           const std::string &Where, uint64_t Max) {
  return ReadHexNumber(Required(Object, Key, Where), KeyPlace(Where, Key), Max);
}

}  // namespace sim::common
