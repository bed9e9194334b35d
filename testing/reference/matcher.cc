#include "testing/reference/matcher.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "testing/reference/checks.h"

namespace fernwick::testing::reference {
namespace {

using Entries = std::vector<DictionaryEntry>;

Entries CopyOf(const Dictionary& dictionary) {
  return {dictionary.Entries().begin(), dictionary.Entries().end()};
}

Entries::iterator Locate(Entries& entries, std::string_view key) {
  return std::find_if(entries.begin(), entries.end(),
                      [&](const DictionaryEntry& entry) { return entry.key == key; });
}

bool Contains(Entries& entries, std::string_view key) {
  return Locate(entries, key) != entries.end();
}

// An existing key keeps its position, a new one comes last.
void Put(Entries& entries, std::string_view key, const PropertyValue& value) {
  const auto entry = Locate(entries, key);
  if (entry != entries.end()) {
    entry->value = value;
  } else {
    entries.push_back({key, value});
  }
}

// Sets the key to the controller's value, or removes it when the controller has none.
void SetFromController(Entries& record, Entries& controller, std::string_view key) {
  const auto source = Locate(controller, key);
  if (source != controller.end()) {
    Put(record, key, source->value);
  } else if (Contains(record, key)) {
    record.erase(Locate(record, key));
  }
}

bool ContainsNumber(Entries& entries, std::string_view key) {
  if (!Contains(entries, key)) return false;
  const PropertyValue& value = Locate(entries, key)->value;
  return value.AsInteger().has_value() || value.AsReal().has_value() ||
         value.AsBoolean().has_value();
}

}  // namespace

Record BuildMatchRecord(const Dictionary& personality, const Dictionary& hardware,
                        std::string_view type) {
  Entries record = CopyOf(personality);
  Entries controller = CopyOf(hardware);

  SetFromController(record, controller, "RID");

  if (!ContainsNumber(record, "Version")) SetFromController(record, controller, "Version");

  if (Contains(record, "RID")) SetFromController(record, controller, "Port Address");

  for (const std::string_view key :
       {"Port Silicon Vendor ID", "Port Silicon Device ID", "Port Silicon Revision",
        "Port OTP Revision", "Port UUID", "Ridge Silicon Vendor ID", "Ridge Silicon Device ID",
        "Ridge Silicon Revision", "Ridge UID"}) {
    if (Contains(record, key)) SetFromController(record, controller, key);
  }

  Put(record, "Personality Type", PropertyValue(type));

  if (type == "Thunderbolt" && Contains(controller, "Firmware Mode")) {
    Put(record, "Firmware Mode", Locate(controller, "Firmware Mode")->value);
  }
  return Record(Dictionary(record));
}

namespace {

// The first personality of the array that `passes` for a controller is the controller's match.
template <typename Check>
void MatchEachController(const PropertyValue& personalities, const std::vector<Record>& controllers,
                         std::string_view type, std::vector<Record>& records, Check passes) {
  const std::optional<Array> inOrder = personalities.AsArray();
  if (!inOrder) return;
  for (const Record& hardware : controllers) {
    for (const PropertyValue& personality : *inOrder) {
      if (!personality.AsDictionary()) continue;
      if (passes(*personality.AsDictionary(), hardware)) {
        records.push_back(BuildMatchRecord(*personality.AsDictionary(), hardware, type));
        break;
      }
    }
  }
}

}  // namespace

Matching MatchPersonalities(const std::optional<PropertyValue>& configuration,
                            std::uint32_t boardRevision, const Controllers& controllers,
                            bool bypassVersionCheck) {
  Matching matching;
  std::vector<Record> records;

  if (!configuration.has_value() || !configuration->AsDictionary()) {
    matching.log.emplace_back("Unexpected format for config plist file.  Aborting");
    return matching;
  }

  for (const DictionaryEntry& entry : configuration->AsDictionary()->Entries()) {
    const std::string_view key = entry.key;
    const PropertyValue& value = entry.value;

    if (key == "LegacyThunderbolt") {
      matching.inventories.push_back(Inventory::Thunderbolt);
      MatchEachController(value, controllers.thunderbolt, key, records,
                          [&](const Dictionary& personality, const Dictionary& hardware) {
                            return CheckLegacyThunderboltRequirements(
                                personality, hardware, bypassVersionCheck, matching.diagnostics);
                          });
      continue;
    }

    matching.inventories.push_back(Inventory::Ports);
    if (key == "Thunderbolt") {
      MatchEachController(value, controllers.ports, key, records,
                          [&](const Dictionary& personality, const Dictionary& hardware) {
                            return CheckThunderboltRequirements(personality, hardware,
                                                                boardRevision, bypassVersionCheck,
                                                                matching.diagnostics);
                          });
    } else if (key == "LegacyUSBC") {
      if (!value.AsDictionary()) continue;
      for (const Record& hardware : controllers.ports) {
        if (CheckLegacyUsbcRequirements(*value.AsDictionary(), hardware, bypassVersionCheck,
                                        matching.diagnostics)) {
          records.push_back(BuildMatchRecord(*value.AsDictionary(), hardware, key));
        }
      }
    } else if (key == "USBC") {
      MatchEachController(value, controllers.ports, key, records,
                          [&](const Dictionary& personality, const Dictionary& hardware) {
                            return CheckUsbcRequirements(personality, hardware, boardRevision,
                                                         bypassVersionCheck, matching.diagnostics);
                          });
    }
  }

  if (!records.empty()) matching.records = std::move(records);
  return matching;
}

}  // namespace fernwick::testing::reference
