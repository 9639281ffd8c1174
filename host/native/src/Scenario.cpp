// Reading a scenario: JSON to the description the server is built from.
#include "native/Scenario.h"

#include <set>

#include "emu/TextConversion.h"
#include "native/EmbeddedFiles.h"
#include "native/HostFile.h"

namespace host {
namespace {

using nlohmann::json;

using sim::common::CheckKeys;
using sim::common::FieldOr;
using sim::common::HexNumberOr;
using sim::common::IndexPlace;
using sim::common::KeyPlace;
using sim::common::Refuse;
using sim::common::RequireArray;
using sim::common::RequiredField;
using sim::common::RequiredHexNumber;

// The product files every volume carries unless the scenario says otherwise.
constexpr const char *kProductFiles[] = {"pcidb.xml", "raid.xml"};

// "[segment:]bus:device.function", hexadecimal as lspci prints it.
emu::PciLocation ParseLocation(const std::string &Text,
                               const std::string &Where) {
  std::vector<std::string> Parts;
  std::string Part;
  for (char C : Text) {
    if (C == ':' || C == '.') {
      Parts.push_back(Part);
      Part.clear();
    } else {
      Part += C;
    }
  }
  Parts.push_back(Part);
  if (Parts.size() == 3) {
    Parts.insert(Parts.begin(), "0");
  }
  std::uint64_t Values[4] = {};
  constexpr std::uint64_t kMax[4] = {0xFFFF, 0xFF, 0x1F, 0x7};
  for (std::size_t I = 0; Parts.size() == 4 && I < 4; I++) {
    if (!sim::common::ParseHex(Parts[I], Values[I]) || Values[I] > kMax[I]) {
      Parts.clear();
    }
  }
  if (Parts.size() != 4) {
    Refuse(Where, "\"" + Text + "\" is not a PCI location like \"3b:00.0\"");
  }
  return {static_cast<UINT16>(Values[0]), static_cast<UINT8>(Values[1]),
          static_cast<UINT8>(Values[2]), static_cast<UINT8>(Values[3])};
}

PciFunction ParsePciFunction(const json &Object, const std::string &Where) {
  CheckKeys(Object, Where,
            {"name", "location", "vendorId", "deviceId", "subVendorId",
             "subDeviceId", "baseClass", "subClass", "progIf", "revision"});
  PciFunction Function;
  Function.Name = FieldOr<std::string>(Object, "name", Where, "");
  Function.Location =
      ParseLocation(RequiredField<std::string>(Object, "location", Where),
                    KeyPlace(Where, "location"));
  emu::PciIdentity &Id = Function.Identity;
  Id.VendorId = RequiredHexNumber(Object, "vendorId", Where, 0xFFFF);
  Id.DeviceId = RequiredHexNumber(Object, "deviceId", Where, 0xFFFF);
  Id.SubVendorId = HexNumberOr(Object, "subVendorId", Where, 0xFFFF, 0);
  Id.SubDeviceId = HexNumberOr(Object, "subDeviceId", Where, 0xFFFF, 0);
  // A RAID controller unless told otherwise.
  Id.BaseClass = HexNumberOr(Object, "baseClass", Where, 0xFF, 0x01);
  Id.SubClass = HexNumberOr(Object, "subClass", Where, 0xFF, 0x04);
  Id.ProgInterface = HexNumberOr(Object, "progIf", Where, 0xFF, 0x00);
  Id.RevisionId = HexNumberOr(Object, "revision", Where, 0xFF, 0x00);
  return Function;
}

std::vector<PciFunction> ParsePciFunctions(const json &List) {
  RequireArray(List, "pciFunctions");
  std::vector<PciFunction> Functions;
  std::set<std::string> Names;
  std::set<std::tuple<int, int, int, int>> Locations;
  for (std::size_t I = 0; I < List.size(); I++) {
    const std::string Where = IndexPlace("pciFunctions", I);
    PciFunction Function = ParsePciFunction(List[I], Where);
    const emu::PciLocation &L = Function.Location;
    if (!Locations.insert({L.Segment, L.Bus, L.Device, L.Function}).second) {
      Refuse(Where, "a second function at the same location");
    }
    if (!Function.Name.empty() && !Names.insert(Function.Name).second) {
      Refuse(Where, "the name \"" + Function.Name + "\" is taken");
    }
    Functions.push_back(std::move(Function));
  }
  return Functions;
}

emu::SmbiosSlot ParseSmbiosSlot(const json &Object, const std::string &Where) {
  CheckKeys(Object, Where, {"slotId", "segment", "bus", "devfn", "designation"});
  emu::SmbiosSlot Slot;
  Slot.SlotId = RequiredHexNumber(Object, "slotId", Where, 0xFFFF);
  Slot.Segment = HexNumberOr(Object, "segment", Where, 0xFFFF, 0);
  Slot.Bus = RequiredHexNumber(Object, "bus", Where, 0xFF);
  Slot.DevFn = HexNumberOr(Object, "devfn", Where, 0xFF, 0);
  Slot.Designation = FieldOr<std::string>(Object, "designation", Where, "");
  return Slot;
}

emu::SmbiosDescription ParseSmbios(const json &Object) {
  CheckKeys(Object, "smbios",
            {"biosVendor", "biosVersion", "biosReleaseDate", "slots"});
  emu::SmbiosDescription Smbios;
  Smbios.BiosVendor = FieldOr<std::string>(Object, "biosVendor", "smbios", Smbios.BiosVendor);
  Smbios.BiosVersion =
      FieldOr<std::string>(Object, "biosVersion", "smbios", Smbios.BiosVersion);
  Smbios.BiosReleaseDate =
      FieldOr<std::string>(Object, "biosReleaseDate", "smbios", Smbios.BiosReleaseDate);
  if (Object.contains("slots")) {
    const json &Slots = RequireArray(Object["slots"], "smbios.slots");
    for (std::size_t I = 0; I < Slots.size(); I++) {
      Smbios.Slots.push_back(
          ParseSmbiosSlot(Slots[I], IndexPlace("smbios.slots", I)));
    }
  }
  return Smbios;
}

std::vector<emu::SlotInventoryEntry> ParseSlotInventory(const json &List) {
  RequireArray(List, "slotInventory");
  std::vector<emu::SlotInventoryEntry> Entries;
  for (std::size_t I = 0; I < List.size(); I++) {
    const std::string Where = IndexPlace("slotInventory", I);
    const json &Object = List[I];
    CheckKeys(Object, Where, {"slot", "device"});
    emu::SlotInventoryEntry Entry;
    if (Object.contains("slot") && !Object["slot"].is_null()) {
      Entry.SlotText = emu::Utf8ToUtf16(FieldOr<std::string>(Object, "slot", Where, ""));
    }
    Entry.DeviceText = emu::Utf8ToUtf16(FieldOr<std::string>(Object, "device", Where, ""));
    Entries.push_back(std::move(Entry));
  }
  return Entries;
}

std::string ReadHostFile(const std::filesystem::path &Path,
                         const std::string &Where) {
  std::string Problem;
  std::optional<std::string> Contents = ReadRegularFile(Path, Problem);
  if (!Contents) {
    Refuse(Where, Problem);
  }
  return std::move(*Contents);
}

// One file's contents: {"text": ...}, {"path": ...} or {"product": ...}.
std::string ParseFileSource(const json &Source, const std::string &Where,
                            const std::filesystem::path &BaseDirectory) {
  CheckKeys(Source, Where, {"text", "path", "product"});
  if (Source.size() != 1) {
    Refuse(Where, "give exactly one of \"text\", \"path\", \"product\"");
  }
  const std::string Kind = Source.items().begin().key();
  const std::string Text = FieldOr<std::string>(Source, Kind.c_str(), Where, "");
  if (Kind == "text") {
    return Text;
  }
  if (Kind == "path") {
    return ReadHostFile(BaseDirectory / Text, KeyPlace(Where, "path"));
  }
  std::optional<std::string_view> Product = FindEmbeddedFile(Text);
  if (!Product || Text == "demo.json") {
    Refuse(KeyPlace(Where, "product"), "no product file \"" + Text + "\"");
  }
  return std::string(*Product);
}

bool IsPlainFileName(const std::string &Name) {
  return !Name.empty() && Name != "." && Name != ".." &&
         Name.find_first_of("/\\:") == std::string::npos;
}

// The product files, then the scenario's changes: null removes a file, a
// source adds or replaces one.
std::vector<VolumeFile> ParseVolumeFiles(
    const json *Object, const std::filesystem::path &BaseDirectory) {
  std::vector<VolumeFile> Files;
  for (const char *Name : kProductFiles) {
    Files.push_back({Name, std::string(*FindEmbeddedFile(Name))});
  }
  if (Object == nullptr) {
    return Files;
  }
  if (!Object->is_object()) {
    Refuse("volumeFiles", "expected an object");
  }
  for (const auto &Item : Object->items()) {
    const std::string &Name = Item.key();
    const json &Source = Item.value();
    const std::string Where = KeyPlace("volumeFiles", Name);
    if (!IsPlainFileName(Name)) {
      Refuse(Where, "a file name in the volume's root is expected");
    }
    std::erase_if(Files, [&](const VolumeFile &F) { return F.Name == Name; });
    if (!Source.is_null()) {
      Files.push_back({Name, ParseFileSource(Source, Where, BaseDirectory)});
    }
  }
  return Files;
}

HostProtocols ParseProtocols(const json &Object) {
  CheckKeys(Object, "protocols",
            {"setup", "guiDriver", "xmlParser", "shellCommand",
             "slotInventory", "qolCommands"});
  HostProtocols Protocols;
  auto Read = [&](const char *Key, bool &Flag) {
    Flag = FieldOr(Object, Key, "protocols", Flag);
  };
  Read("setup", Protocols.Setup);
  Read("guiDriver", Protocols.GuiDriver);
  Read("xmlParser", Protocols.XmlParser);
  Read("shellCommand", Protocols.ShellCommand);
  Read("slotInventory", Protocols.SlotInventory);
  Read("qolCommands", Protocols.QolCommands);
  return Protocols;
}

// The PCI function an adapter names, by its name or its location.
std::size_t FindPciFunction(const std::vector<PciFunction> &Functions,
                            const std::string &Reference,
                            const std::string &Where) {
  for (std::size_t I = 0; I < Functions.size(); I++) {
    if (!Functions[I].Name.empty() && Functions[I].Name == Reference) {
      return I;
    }
  }
  emu::PciLocation Wanted = ParseLocation(Reference, Where);
  for (std::size_t I = 0; I < Functions.size(); I++) {
    const emu::PciLocation &L = Functions[I].Location;
    if (L.Segment == Wanted.Segment && L.Bus == Wanted.Bus &&
        L.Device == Wanted.Device && L.Function == Wanted.Function) {
      return I;
    }
  }
  Refuse(Where, "no PCI function \"" + Reference + "\"");
}

std::vector<AdapterDescription> ParseAdapters(
    const json &List, const std::vector<PciFunction> &Functions) {
  RequireArray(List, "adapters");
  std::vector<AdapterDescription> Adapters;
  std::set<std::size_t> Used;
  for (std::size_t I = 0; I < List.size(); I++) {
    const std::string Where = IndexPlace("adapters", I);
    const json &Object = List[I];
    if (!Object.is_object()) {
      Refuse(Where, "expected an object");
    }
    AdapterDescription Adapter;
    Adapter.Family = FieldOr<std::string>(Object, "family", Where, "");
    const std::string Reference = FieldOr<std::string>(Object, "pciFunction", Where, "");
    if (Adapter.Family.empty() || Reference.empty()) {
      Refuse(Where, "\"family\" and \"pciFunction\" are required");
    }
    Adapter.PciIndex =
        FindPciFunction(Functions, Reference, KeyPlace(Where, "pciFunction"));
    if (!Used.insert(Adapter.PciIndex).second) {
      Refuse(Where, "a second adapter on PCI function \"" + Reference + "\"");
    }
    Adapter.Description = Object;
    Adapters.push_back(std::move(Adapter));
  }
  return Adapters;
}

// Deeper JSON is refused before it is parsed: copying or printing a value
// recurses once per level, and no scenario needs a tenth of this.
constexpr int kDeepestNesting = 64;

// "line L, column C" of the bracket that first nests deeper than
// kDeepestNesting, or "" when none does.
std::string TooDeepAt(std::string_view Text) {
  int Depth = 0;
  bool InString = false;
  bool Escaped = false;
  std::size_t Line = 1;
  std::size_t Column = 0;
  for (const char C : Text) {
    Column++;
    if (C == '\n') {
      Line++;
      Column = 0;
    } else if (InString) {
      InString = Escaped || C != '"';
      Escaped = !Escaped && C == '\\';
    } else if (C == '"') {
      InString = true;
    } else if ((C == '[' || C == '{') && ++Depth > kDeepestNesting) {
      return "line " + std::to_string(Line) + ", column " + std::to_string(Column);
    } else if (C == ']' || C == '}') {
      Depth--;
    }
  }
  return "";
}

// " at line L, column C: what" from the JSON library's message.
std::string ParseErrorPlace(const json::parse_error &Error) {
  const std::string_view Message = Error.what();
  const std::size_t At = Message.find(" at line ");
  return At == std::string_view::npos ? std::string()
                                      : std::string(Message.substr(At));
}

const json *Find(const json &Object, const char *Key) {
  auto It = Object.find(Key);
  return It == Object.end() ? nullptr : &*It;
}

}  // namespace

Scenario ParseScenario(const json &Json,
                       const std::filesystem::path &BaseDirectory) {
  CheckKeys(Json, "scenario",
            {"name", "description", "pciFunctions", "smbios", "slotInventory",
             "volumeFiles", "protocols", "adapters"});
  Scenario Result;
  Result.Name = FieldOr<std::string>(Json, "name", "scenario", "");
  if (const json *Pci = Find(Json, "pciFunctions")) {
    Result.Pci = ParsePciFunctions(*Pci);
  }
  if (const json *Smbios = Find(Json, "smbios")) {
    Result.Smbios = ParseSmbios(*Smbios);
  }
  if (const json *Inventory = Find(Json, "slotInventory")) {
    Result.SlotInventory = ParseSlotInventory(*Inventory);
  }
  Result.Files = ParseVolumeFiles(Find(Json, "volumeFiles"), BaseDirectory);
  if (const json *Protocols = Find(Json, "protocols")) {
    Result.Protocols = ParseProtocols(*Protocols);
  }
  if (const json *Adapters = Find(Json, "adapters")) {
    Result.Adapters = ParseAdapters(*Adapters, Result.Pci);
  }
  return Result;
}

Scenario ParseScenarioText(std::string_view Text, std::string_view Origin,
                           const std::filesystem::path &BaseDirectory) {
  if (const std::string Place = TooDeepAt(Text); !Place.empty()) {
    throw ScenarioError(std::string(Origin) + ": nested deeper than " +
                        std::to_string(kDeepestNesting) + " levels at " + Place);
  }
  json Json;
  try {
    Json = json::parse(Text);
  } catch (const json::parse_error &Error) {
    throw ScenarioError(std::string(Origin) + ": not valid JSON" +
                        ParseErrorPlace(Error));
  }
  try {
    Scenario Result = ParseScenario(Json, BaseDirectory);
    Result.Origin = Origin;
    return Result;
  } catch (const ScenarioError &Error) {
    throw ScenarioError(std::string(Origin) + ": " + Error.what());
  }
}

Scenario LoadScenarioFile(const std::filesystem::path &Path) {
  std::string Text = ReadHostFile(Path, "scenario");
  return ParseScenarioText(Text, Path.string(), Path.parent_path());
}

Scenario DemoScenario() {
  return ParseScenarioText(*FindEmbeddedFile("demo.json"), "demo.json", ".");
}

}  // namespace host
