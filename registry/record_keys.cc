#include "registry/record_keys.h"

#include <algorithm>

namespace fernwick {
namespace {

constexpr char Bcd[] = "decoded as BCD";

PropertySource PortSource(const RecordKey& key, const RecordSource& source) {
  return {source.port, key.portProperty, key.key == "Version" ? Bcd : ""};
}

std::vector<PropertySource> ThunderboltSources(const RecordKey& key, const RecordSource& source) {
  const auto entry = source.thunderbolt;
  if (key.key == "RID") return {{entry, key.thunderboltProperty, "the low 4 bits"}};
  if (key.key == "Engineering Version") return {{entry, key.thunderboltProperty, "bits 6 and 7"}};
  if (key.key != "Version") return {{entry, key.thunderboltProperty, ""}};
  std::vector<PropertySource> sources = {{entry, key.thunderboltProperty, Bcd}};
  if (source.version == Origin::Thunderbolt) {
    sources.push_back({entry, "EEPROM Revision", "the low 6 bits are hundredths; 1e-9 is added"});
  }
  return sources;
}

// Which controller gave the value of a key that both can give.
Origin OriginOf(std::string_view key, const RecordSource& source) {
  if (key == "RID") return source.rid;
  if (key == "Version") return source.version;
  return Origin::Nowhere;
}

}  // namespace

std::vector<PropertySource> SourcesOf(std::string_view key, const RecordSource& source) {
  const auto* row = std::ranges::find(RecordKeys, key, &RecordKey::key);
  if (row == std::end(RecordKeys)) return {};
  const auto origin = OriginOf(key, source);
  std::vector<PropertySource> sources;
  if (source.port != 0 && !row->portProperty.empty() && origin != Origin::Thunderbolt) {
    sources.push_back(PortSource(*row, source));
  }
  if (source.thunderbolt != 0 && !row->thunderboltProperty.empty() && origin != Origin::Port) {
    for (const auto& each : ThunderboltSources(*row, source)) sources.push_back(each);
  }
  return sources;
}

}  // namespace fernwick
