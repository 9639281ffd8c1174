// Field readers of the scenario JSON.
#include "sim/common/JsonFields.h"

#include <algorithm>
#include <cctype>
#include <cmath>

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

namespace detail {

void RefuseKind(const std::string &Where, const char *Expected) {
  Refuse(Where, std::string("has the wrong type, expected ") + Expected);
}

}  // namespace detail

namespace {

void RefuseOutOfRange(const std::string &Where) {
  Refuse(Where, "out of range");
}

// A floating-point JSON number (1e3, 2.5, 1e300) as a whole number in
// [Min, Max], compared as doubles before any conversion.
double WholeDouble(const json &Value, const std::string &Where, double Min,
                   double Limit) {
  const double Number = Value.get<double>();
  if (!std::isfinite(Number) || Number < Min || Number >= Limit) {
    RefuseOutOfRange(Where);
  }
  if (Number != std::trunc(Number)) {
    Refuse(Where, "not a whole number");
  }
  return Number;
}

}  // namespace

uint64_t ReadUnsigned(const json &Value, const std::string &Where,
                      uint64_t Max) {
  uint64_t Number = 0;
  if (Value.is_number_unsigned()) {
    Number = Value.get<uint64_t>();
  } else if (Value.is_number_integer()) {
    // Signed: parsed text is signed only when negative, a value built in
    // code may be signed either way.
    const int64_t Signed = Value.get<int64_t>();
    if (Signed < 0) {
      RefuseOutOfRange(Where);
    }
    Number = static_cast<uint64_t>(Signed);
  } else if (Value.is_number_float()) {
    // 2^64 is exact as a double; every whole double below it fits.
    Number = static_cast<uint64_t>(WholeDouble(Value, Where, 0, 0x1p64));
  } else {
    detail::RefuseKind(Where, "a number");
  }
  if (Number > Max) {
    RefuseOutOfRange(Where);
  }
  return Number;
}

int64_t ReadSigned(const json &Value, const std::string &Where, int64_t Min,
                   int64_t Max) {
  int64_t Number = 0;
  if (Value.is_number_unsigned()) {
    if (Value.get<uint64_t>() > static_cast<uint64_t>(Max)) {
      RefuseOutOfRange(Where);
    }
    Number = static_cast<int64_t>(Value.get<uint64_t>());
  } else if (Value.is_number_integer()) {
    Number = Value.get<int64_t>();
  } else if (Value.is_number_float()) {
    Number = static_cast<int64_t>(WholeDouble(Value, Where, -0x1p63, 0x1p63));
  } else {
    detail::RefuseKind(Where, "a number");
  }
  if (Number < Min || Number > Max) {
    RefuseOutOfRange(Where);
  }
  return Number;
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
    RefuseOutOfRange(Where);
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
