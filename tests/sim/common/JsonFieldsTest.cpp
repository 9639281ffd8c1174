// Scenario field readers: defaults, the places refusals name, hexadecimal
// numbers, word fields, and the PCI identity's JSON.
#include <gtest/gtest.h>

#include <functional>

#include "sim/common/JsonFields.h"
#include "sim/common/PciIdentity.h"

namespace sim::common {
namespace {

using nlohmann::json;

enum class Cache { On, Off };
constexpr std::pair<Cache, const char *> kCacheWords[] = {{Cache::On, "on"},
                                                          {Cache::Off, "off"}};

// The message of what Read throws, or "" when it throws nothing.
template <typename Read>
std::string Refusal(Read &&Reader) {
  try {
    Reader();
  } catch (const ScenarioError &Error) {
    return Error.what();
  }
  return "";
}

TEST(JsonFieldsTest, PlacesNestFromTheTop) {
  EXPECT_EQ(KeyPlace("", "drives"), "drives");
  EXPECT_EQ(IndexPlace(KeyPlace("", "drives"), 2), "drives[2]");
  EXPECT_EQ(KeyPlace("drives[2]", "size"), "drives[2].size");
  EXPECT_EQ(Refusal([] { Refuse("", "bad"); }), "bad");
  EXPECT_EQ(Refusal([] { Refuse("a.b", "bad"); }), "a.b: bad");
}

TEST(JsonFieldsTest, OptionalFieldsTakeTheirDefaultOrTheirValue) {
  const json Object = {{"did", 7}, {"name", "os"}, {"on", true}};
  EXPECT_EQ(FieldOr<uint32_t>(Object, "did", "", 1), 7u);
  EXPECT_EQ(FieldOr<uint32_t>(Object, "slot", "", 1), 1u);
  EXPECT_EQ(FieldOr<std::string>(Object, "name", "", ""), "os");
  EXPECT_TRUE(FieldOr(Object, "on", "", false));
  EXPECT_EQ(FieldOr<uint32_t>(json::array(), "did", "", 3), 3u);
  EXPECT_EQ(WordFieldOr(json{{"c", "off"}}, "c", "", Cache::On, kCacheWords), Cache::Off);
  EXPECT_EQ(WordFieldOr(json::object(), "c", "", Cache::Off, kCacheWords), Cache::Off);
  EXPECT_TRUE(ArrayOr(json::object(), "drives", "").empty());
  EXPECT_TRUE(ObjectOr(json::object(), "limits", "").empty());
}

TEST(JsonFieldsTest, RefusalsNameThePlace) {
  const json Drive = {{"did", "seven"}, {"name", 5}, {"cache", "maybe"},
                      {"list", 1}, {"limits", json::array()}, {"x", 1}};
  const std::pair<std::function<void()>, const char *> kCases[] = {
      {[&] { FieldOr<uint32_t>(Drive, "did", "drives[1]", 0); },
       "drives[1].did: has the wrong type, expected a number"},
      {[&] { FieldOr<std::string>(Drive, "name", "drives[1]", ""); },
       "drives[1].name: has the wrong type, expected a string"},
      {[&] { Required(Drive, "address", "drives[1]"); }, "drives[1]: missing \"address\""},
      {[&] { WordFieldOr(Drive, "cache", "drives[1]", Cache::On, kCacheWords); },
       "drives[1]: unknown cache \"maybe\""},
      {[&] { ArrayOr(Drive, "list", "drives[1]"); }, "drives[1].list: expected an array"},
      {[&] { ObjectOr(Drive, "limits", ""); }, "limits: expected an object"},
      {[&] { CheckKeys(Drive, "drives[1]", {"did", "name", "cache", "list", "limits"}); },
       "drives[1]: unknown key \"x\""},
      {[&] { CheckKeys(json::array(), "smbios", {}); }, "smbios: expected an object"},
  };
  for (const auto &[Read, Message] : kCases) {
    EXPECT_EQ(Refusal(Read), Message);
  }
}

// Numbers are checked as JSON numbers before they are converted: a huge, a
// negative or a fractional size is refused naming its key, never wrapped
// around or converted with undefined behaviour.
TEST(JsonFieldsTest, NumbersAreCheckedBeforeConversion) {
  const std::pair<json, uint64_t> kRead[] = {
      {0u, 0}, {953344u, 953344}, {1e3, 1000}, {18446744073709551615u, UINT64_MAX}};
  for (const auto &[Value, Expected] : kRead) {
    EXPECT_EQ(FieldOr<uint64_t>(json{{"sizeMb", Value}}, "sizeMb", "", 0), Expected) << Value;
  }
  const std::pair<json, const char *> kRefused[] = {
      {1e300, "drives[0].sizeMb: out of range"},
      {-1e300, "drives[0].sizeMb: out of range"},
      {-1, "drives[0].sizeMb: out of range"},
      {1.8446744073709552e19, "drives[0].sizeMb: out of range"},
      {2.5, "drives[0].sizeMb: not a whole number"},
      {"1000", "drives[0].sizeMb: has the wrong type, expected a number"},
      {true, "drives[0].sizeMb: has the wrong type, expected a number"},
  };
  for (const auto &[Value, Message] : kRefused) {
    const json Drive = {{"sizeMb", Value}};
    EXPECT_EQ(Refusal([&] { FieldOr<uint64_t>(Drive, "sizeMb", "drives[0]", 0); }), Message)
        << Value;
  }
  EXPECT_EQ(Refusal([] { FieldOr<uint32_t>(json{{"did", 4294967296u}}, "did", "d", 0); }),
            "d.did: out of range");
  EXPECT_EQ(FieldOr<int32_t>(json{{"t", -5}}, "t", "", 0), -5);
  EXPECT_EQ(Refusal([] { FieldOr<int32_t>(json{{"t", -2147483649}}, "t", "", 0); }),
            "t: out of range");
  EXPECT_EQ(Refusal([] { FieldOr<int32_t>(json{{"t", 2147483648u}}, "t", "", 0); }),
            "t: out of range");
  const json Volume = {{"drives", {1, 2, -3}}};
  EXPECT_EQ(FieldOr<std::vector<uint32_t>>(json{{"drives", {1, 2}}}, "drives", "", {}),
            (std::vector<uint32_t>{1, 2}));
  EXPECT_EQ(Refusal([&] { FieldOr<std::vector<uint32_t>>(Volume, "drives", "v", {}); }),
            "v.drives[2]: out of range");
  EXPECT_EQ(FieldOr<float>(json{{"f", 2.5}}, "f", "", 0), 2.5f);
  EXPECT_EQ(Refusal([] { FieldOr<float>(json{{"f", 1e300}}, "f", "", 0); }), "f: out of range");
  EXPECT_EQ(Refusal([] { FieldOr(json{{"on", 1}}, "on", "p", false); }),
            "p.on: has the wrong type, expected true or false");
}

TEST(JsonFieldsTest, HexNumbersAsTextOrJsonNumbers) {
  const std::pair<json, uint64_t> kRead[] = {
      {"1000", 0x1000}, {"0x1000", 0x1000}, {"0X1a", 0x1a}, {4096u, 4096}, {"ffff", 0xffff}};
  for (const auto &[Value, Expected] : kRead) {
    EXPECT_EQ(ReadHexNumber(Value, "id", 0xFFFF), Expected) << Value;
  }
  const std::pair<json, const char *> kRefused[] = {
      {"10g0", "id: not a hexadecimal number"},
      {"0x", "id: not a hexadecimal number"},
      {"", "id: not a hexadecimal number"},
      {"10000", "id: out of range"},
      {65536u, "id: out of range"},
      {-1, "id: expected a number or a hexadecimal string"},
      {1.5, "id: expected a number or a hexadecimal string"},
  };
  for (const auto &[Value, Message] : kRefused) {
    const json &Text = Value;
    EXPECT_EQ(Refusal([&] { ReadHexNumber(Text, "id", 0xFFFF); }), Message) << Text;
  }
  EXPECT_EQ(HexNumberOr(json::object(), "bus", "slot", 0xFF, 3), 3u);
  EXPECT_EQ(Refusal([] { RequiredHexNumber(json::object(), "bus", "slot", 0xFF); }),
            "slot: missing \"bus\"");
  EXPECT_EQ(Refusal([] { RequiredHexNumber(json{{"bus", "100"}}, "bus", "slot", 0xFF); }),
            "slot.bus: out of range");
}

TEST(PciIdentityTest, LoadsBackAndKeepsDefaultsForWhatIsLeftOut) {
  const PciIdentity Default{.VendorId = 0x1000, .DeviceId = 0x005D};
  PciIdentity Id{.Bus = 0x3b, .Device = 2, .Function = 1, .VendorId = 0x9005,
                 .DeviceId = 0x028F, .SubVendorId = 0x9005, .SubDeviceId = 0x0800};
  const PciIdentity Back = PciField(json{{kPciKey, PciToJson(Id)}}, "", Default);
  EXPECT_EQ(PciToJson(Back), PciToJson(Id));

  const PciIdentity Partial = PciField(json{{kPciKey, {{"bus", 5}}}}, "", Default);
  EXPECT_EQ(Partial.Bus, 5);
  EXPECT_EQ(Partial.VendorId, 0x1000);
  EXPECT_EQ(Partial.DeviceId, 0x005D);
  EXPECT_EQ(Refusal([&] { PciField(json{{kPciKey, {{"bus", "three"}}}}, "x", Default); }),
            "x.pci.bus: has the wrong type, expected a number");

  const PciIdentity Later{.Bus = 5, .Device = 0};
  const PciIdentity Earlier{.Bus = 4, .Device = 31, .Function = 7};
  EXPECT_LT(Earlier.Location(), Later.Location());
}

}  // namespace
}  // namespace sim::common
