// Reading a scenario's JSON: required and optional fields, each refusal a
// ScenarioError whose message names the place in the file, e.g.
// "pciFunctions[2].location: ..." or "driveGroups[0].virtualDrives[1]: ...".
// Callers prefix the file name.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <nlohmann/json.hpp>

#include "sim/common/WordTable.h"

namespace sim::common {

// A scenario that cannot be used; the message names the place.
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where's member Key ("smbios.slots", or "slots" at the top) and element
// Index ("smbios.slots[0]").
std::string KeyPlace(const std::string &Where, std::string_view Key);
std::string IndexPlace(const std::string &Where, size_t Index);

// Throws "Where: What" (What alone at the top, where Where is empty).
[[noreturn]] void Refuse(const std::string &Where, const std::string &What);

// Refuses a value that is not an object or has a key other than Allowed, so
// a misspelt key does not pass unseen.
void CheckKeys(const nlohmann::json &Object, const std::string &Where,
               std::initializer_list<std::string_view> Allowed);
const nlohmann::json &RequireArray(const nlohmann::json &Value,
                                   const std::string &Where);

// Object[Key]; refused when absent.
const nlohmann::json &Required(const nlohmann::json &Object, const char *Key,
                               const std::string &Where);
// Object[Key], or an empty array or object when absent; refused when it is
// something else.
const nlohmann::json &ArrayOr(const nlohmann::json &Object, const char *Key,
                              const std::string &Where);
const nlohmann::json &ObjectOr(const nlohmann::json &Object, const char *Key,
                               const std::string &Where);

// A whole JSON number as an integer within [Min, Max]. The number's kind and
// range are checked before it is converted, so 1e300, -1 or 2.5 are refused
// with the place named ("out of range", "not a whole number") rather
// than converted with undefined behaviour or wrapped around.
uint64_t ReadUnsigned(const nlohmann::json &Value, const std::string &Where,
                      uint64_t Max);
int64_t ReadSigned(const nlohmann::json &Value, const std::string &Where,
                   int64_t Min, int64_t Max);

namespace detail {
template <typename T>
struct IsVector : std::false_type {};
template <typename T>
struct IsVector<std::vector<T>> : std::true_type {};

[[noreturn]] void RefuseKind(const std::string &Where, const char *Expected);
}  // namespace detail

// Value as T: a bool, an integer of T's range, a floating-point number, a
// string, or a list of those; refused, naming Where, when it is another kind
// or out of T's range.
template <typename T>
T ReadValue(const nlohmann::json &Value, const std::string &Where) {
  if constexpr (std::is_same_v<T, bool>) {
    if (!Value.is_boolean()) {
      detail::RefuseKind(Where, "true or false");
    }
    return Value.get<bool>();
  } else if constexpr (std::is_integral_v<T> && std::is_unsigned_v<T>) {
    return static_cast<T>(ReadUnsigned(Value, Where, std::numeric_limits<T>::max()));
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(ReadSigned(Value, Where, std::numeric_limits<T>::min(),
                                     std::numeric_limits<T>::max()));
  } else if constexpr (std::is_floating_point_v<T>) {
    if (!Value.is_number()) {
      detail::RefuseKind(Where, "a number");
    }
    const double Number = Value.get<double>();
    if (Number > std::numeric_limits<T>::max() || Number < std::numeric_limits<T>::lowest()) {
      Refuse(Where, "out of range");  // a float from 1e300 would be undefined
    }
    return static_cast<T>(Number);
  } else if constexpr (std::is_same_v<T, std::string>) {
    if (!Value.is_string()) {
      detail::RefuseKind(Where, "a string");
    }
    return Value.get<std::string>();
  } else if constexpr (detail::IsVector<T>::value) {
    if (!Value.is_array()) {
      detail::RefuseKind(Where, "a list");
    }
    T Items;
    for (size_t Index = 0; Index < Value.size(); Index++) {
      Items.push_back(
          ReadValue<typename T::value_type>(Value[Index], IndexPlace(Where, Index)));
    }
    return Items;
  } else {
    // Any other kind (a map, a pair) by the JSON library's own conversion,
    // which for those checks the kind and throws.
    try {
      return Value.get<T>();
    } catch (const nlohmann::json::exception &) {
      detail::RefuseKind(Where, "a list");
    }
  }
}

// Object[Key] as T, or Default when absent.
template <typename T>
T FieldOr(const nlohmann::json &Object, const char *Key,
          const std::string &Where, T Default) {
  if (!Object.contains(Key)) {
    return Default;
  }
  return ReadValue<T>(Object.at(Key), KeyPlace(Where, Key));
}

// Object[Key] as T; refused when absent.
template <typename T>
T RequiredField(const nlohmann::json &Object, const char *Key,
                const std::string &Where) {
  Required(Object, Key, Where);
  return FieldOr<T>(Object, Key, Where, T());
}

// Numbers that may be written as JSON numbers or as strings of hexadecimal
// digits with or without "0x": "1000", "0x1000" and 4096 are one vendor id.
// ParseHex is false for a text that is not one.
bool ParseHex(std::string_view Text, uint64_t &Value);
uint64_t ReadHexNumber(const nlohmann::json &Value, const std::string &Where,
                       uint64_t Max);
uint64_t HexNumberOr(const nlohmann::json &Object, const char *Key,
                     const std::string &Where, uint64_t Max, uint64_t Default);
uint64_t RequiredHexNumber(const nlohmann::json &Object, const char *Key,
                           const std::string &Where, uint64_t Max);

// Object[Key] as one of the words of Words, or Default when absent.
template <typename Code, size_t N>
Code WordFieldOr(const nlohmann::json &Object, const char *Key,
                 const std::string &Where, Code Default,
                 const std::pair<Code, const char *> (&Words)[N]) {
  if (!Object.contains(Key)) {
    return Default;
  }
  const auto Word = FieldOr<std::string>(Object, Key, Where, "");
  if (const auto Value = CodeOfWord(Words, Word)) {
    return *Value;
  }
  Refuse(Where, std::string("unknown ") + Key + " \"" + Word + "\"");
}

}  // namespace sim::common
