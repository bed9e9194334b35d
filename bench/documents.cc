#include "bench/documents.h"

#include <span>
#include <string_view>
#include <utility>

#include "testing/inputs/random_choice.h"
#include "value/binary/writer.h"
#include "value/record.h"
#include "value/xml/writer.h"

namespace fernwick::bench {
namespace {

using testing::RandomChoice;

constexpr std::uint64_t Seed = 7;

// One name in two of a registry's properties is among these, the others are rarer.
constexpr std::string_view CommonProperties[] = {
    "IOClass",        "IOProviderClass", "IOMatchCategory", "IOProbeScore", "Vendor ID",
    "Device ID",      "Revision ID",     "Address",         "Version",      "built-in",
    "IOPowerManaged", "device-type",     "Route String",    "Depth",
};

constexpr std::string_view Words[] = {
    "bridge", "port",   "ridge", "quince",  "controller", "power", "adapter", "retimer",
    "slate",  "serial", "bus",   "channel", "endpoint",   "hub",   "mux",     "display",
};

// Makes the parts of a document in an arena, which they view.
class Maker {
 public:
  Maker(std::uint64_t seed, Arena& arena) : choice_(seed), arena_(arena) {}

  Array ArrayOf(const std::vector<PropertyValue>& elements) {
    return arena_.Copy(std::span(elements));
  }

  Dictionary DictionaryOf(const Record& record) { return arena_.Copy(record.Entries()); }

  PropertyValue Personality() {
    Record personality;
    personality.Set("Version", static_cast<double>(choice_.Below(9000)) / 100);
    personality.Set("Existing Min Version", choice_.Below(40));
    personality.Set("Port Silicon Vendor ID", std::uint64_t{0x3C05});
    personality.Set("Port Silicon Device ID", choice_.Below(0x40));
    personality.Set("Port Silicon Revision", choice_.Below(8));
    personality.Set("Ridge Silicon Vendor ID", std::uint64_t{0x2A01});
    personality.Set("Ridge Silicon Device ID", 0x300 + choice_.Below(0x40));
    personality.Set("Ridge Silicon Revision", ArrayOf({choice_.Below(4), 4 + choice_.Below(4)}));
    personality.Set("RID", choice_.Below(4));
    personality.Set("Device Model Name", Kept(Word() + " " + Number(20)));
    personality.Set("Firmware Mode", choice_.OnceIn(8));
    personality.Set("MinBoardRevision", choice_.Below(6));
    personality.Set("Firmware", Kept(Word() + "-" + Word() + "-" + Number(90) + ".bin"));
    personality.Set("Priority", choice_.Below(100));
    if (choice_.OnceIn(2)) {
      const auto version = Kept(Number(90) + "." + Number(90));
      personality.Set("SetNVRAM", DictionaryOf({{"fernwick-staged", version}}));
      personality.Set("ClearNVRAM", ArrayOf({"fernwick-last-error"}));
    }
    return DictionaryOf(personality);
  }

  // A node with `entries` - 1 others below it, in a tree as deep as a registry's.
  PropertyValue Node(std::size_t entries) {
    Record node;
    node.Set("Name", Kept(Word() + Number(100)));
    node.Set("Class", ClassName());
    node.Set("Properties", Properties());
    std::vector<PropertyValue> children;
    for (std::size_t left = entries - 1; left > 0;) {
      const std::size_t below = left < 8 ? left : 1 + choice_.Below(left);
      children.push_back(Node(below));
      left -= below;
    }
    if (!children.empty()) node.Set("Children", ArrayOf(children));
    return DictionaryOf(node);
  }

 private:
  PropertyValue Properties() {
    Record properties;
    for (std::size_t left = 4 + choice_.Below(16); left > 0; --left) {
      properties.Set(PropertyName(), Property());
    }
    return DictionaryOf(properties);
  }

  std::string_view PropertyName() {
    if (choice_.OnceIn(2)) return choice_.OneOf(CommonProperties);
    return Kept(Word() + "-" + Word());
  }

  PropertyValue Property() {
    switch (choice_.Below(16)) {
      case 0: return ArrayOf({choice_.Below(256), choice_.Below(256)});
      case 1: return DictionaryOf({{"Power State", choice_.Below(4)}, {"Max Power State", 4}});
      case 2: return Kept(Word() + " \xE2\x80\x93 " + Word());
      case 3: return Kept(Word() + " & " + Word());
      case 4:
      case 5:
      case 6: return Data{Kept(Bytes(4 << choice_.Below(5)))};
      case 7:
      case 8: return choice_.OnceIn(2);
      case 9:
      case 10: return ClassName();
      case 11: return Kept(Identifier());
      default: return choice_.Below(std::size_t{1} << (1 + choice_.Below(40)));
    }
  }

  std::string Bytes(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>(choice_.Below(256));
    return bytes;
  }

  // As in "5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A04", which no other value repeats.
  std::string Identifier() {
    std::string text(36, '-');
    std::size_t at = 0;
    for (const int length : {8, 4, 4, 4, 12}) {
      for (int i = 0; i < length; ++i) text[at++] = "0123456789ABCDEF"[choice_.Below(16)];
      ++at;
    }
    return text;
  }

  std::string_view Kept(const std::string& text) { return arena_.Copy(text); }
  std::string_view ClassName() { return Kept("Quince" + Word() + "Device" + Word()); }
  std::string Word() { return std::string(choice_.OneOf(Words)); }
  std::string Number(std::size_t below) { return std::to_string(choice_.Below(below)); }

  RandomChoice choice_;
  Arena& arena_;
};

// The value of as many parts as make XML of about `size` bytes.
PropertyList Sized(std::size_t size, PropertyList (*make)(std::size_t, std::uint64_t)) {
  constexpr std::size_t Sample = 1000;
  const std::size_t sampleSize = WriteXmlPropertyList(make(Sample, Seed).value).size();
  return make(size * Sample / sampleSize, Seed);
}

}  // namespace

PropertyList Configuration(std::size_t personalities, std::uint64_t seed) {
  constexpr std::string_view Types[] = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC"};
  PropertyList list;
  Maker maker(seed, list.arena);
  Record configuration;
  for (std::size_t i = 0; i < std::size(Types); ++i) {
    std::vector<PropertyValue> ofType;
    for (std::size_t p = i; p < personalities; p += std::size(Types)) {
      ofType.push_back(maker.Personality());
    }
    configuration.Set(Types[i], maker.ArrayOf(ofType));
  }
  list.value = maker.DictionaryOf(configuration);
  return list;
}

PropertyList Recording(std::size_t entries, std::uint64_t seed) {
  PropertyList list;
  Maker maker(seed, list.arena);
  std::vector<PropertyValue> children;
  constexpr std::size_t Together = 200;  // entries below one child of the root
  for (std::size_t made = 0; made < entries; made += Together) {
    children.push_back(maker.Node(Together));
  }
  const auto root = maker.DictionaryOf({{"Children", maker.ArrayOf(children)}});
  list.value = maker.DictionaryOf(
      {{"Recording Version", 1}, {"Planes", maker.DictionaryOf({{"IOService", root}})}});
  return list;
}

std::vector<Document> DocumentsOf(std::size_t megabytes) {
  const std::size_t size = megabytes * 1'000'000;
  const std::pair<const char*, PropertyList (*)(std::size_t, std::uint64_t)> kinds[] = {
      {"configuration", Configuration},
      {"recording", Recording},
  };
  std::vector<Document> documents;
  for (const auto& [kind, make] : kinds) {
    const auto list = Sized(size, make);
    documents.push_back({kind + (" of " + std::to_string(megabytes) + " MB"),
                         WriteXmlPropertyList(list.value), WriteBinaryPropertyList(list.value)});
  }
  return documents;
}

}  // namespace fernwick::bench
