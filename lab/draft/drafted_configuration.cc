#include "lab/draft/drafted_configuration.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <utility>

#include "lab/support/diagnostics.h"
#include "lab/support/words.h"
#include "personality/personality.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// Without one a match drives the plan's priority to 0.
constexpr int DraftedPriority = 50;

std::string_view NameOf(TypeSet type) {
  return NamesOf(type).front();
}

// The value as one would write it: whole numbers as integers.
PropertyValue Written(const PropertyValue& value, std::string_view key) {
  constexpr double MaxExact = 9007199254740992;  // 2^53
  const auto boolean = value.AsBoolean();
  if (boolean && key != "Firmware Mode") return *boolean ? 1 : 0;
  const auto real = value.AsReal();
  const bool isWhole = real && std::trunc(*real) == *real && std::abs(*real) <= MaxExact;
  return isWhole ? PropertyValue(static_cast<std::int64_t>(*real)) : value;
}

// What the check of a type tests the record of the row with.
RequirementContext ContextOf(const HardwareRecord& record, const ControllerRow& row) {
  return {record, static_cast<std::uint8_t>(row.boardRevision), row.bypassesVersionCheck};
}

class DraftBuilder {
 public:
  DraftBuilder(const DraftTarget& target, const ControllerTable& table,
               const ConstraintSchema& schema)
      : target_(target), table_(table), schema_(schema) {}

  PropertyList Build(const std::vector<Selector>& selectors) {
    std::vector<PropertyValue> personalities;
    for (const auto& selector : selectors) personalities.emplace_back(Personality(selector));
    PropertyValue value = personalities.front();
    if (target_.type != Types::LegacyUsbc) {
      value = Array(arena_.Copy(std::span<const PropertyValue>(personalities)));
    }
    const DictionaryEntry top = {NameOf(target_.type), value};
    const Dictionary configuration = arena_.Copy(std::span(&top, 1));
    return {std::move(arena_), configuration};
  }

 private:
  Dictionary Personality(const Selector& selector) {
    Record personality = {
        {"Firmware", target_.image}, {"Priority", DraftedPriority}, {"Version", target_.version}};
    for (std::size_t i = 0; i < schema_.names.size(); ++i) {
      if (((selector.chosen | schema_.required) >> i & 1) == 0) continue;
      personality.Set(schema_.names[i], i < schema_.columns ? Values(selector.ValuesOf(i), i)
                                                            : Bound(selector, schema_.names[i]));
    }
    return arena_.Copy(personality.Entries());
  }

  PropertyValue Values(const std::vector<std::uint32_t>& ranks, std::size_t column) {
    const auto& key = *table_.Columns()[column];
    std::vector<PropertyValue> values;
    for (const auto rank : ranks) values.push_back(Written(table_.ValueOf(rank), key.name));
    if (values.size() == 1 && key.kind != KeyKind::ListOfStrings) return values.front();
    return Array(arena_.Copy(std::span<const PropertyValue>(values)));
  }

  PropertyValue Bound(const Selector& selector, std::string_view key) const {
    if (key == "MinBoardRevision") return selector.Revisions().first;
    if (key == "MaxBoardRevision") return selector.Revisions().second;
    const auto [lowest, highest] = selector.Versions();
    return key == "Existing Min Version" ? Minimum(lowest) : Maximum(highest);
  }

  // The value of a minimum; hundredths are without the 1e-9 that is added, unless that makes
  // a difference.
  PropertyValue Minimum(std::uint32_t rank) const {
    const auto& version = table_.ValueOf(rank);
    const auto real = version.AsReal();
    if (!real) return version;
    const PropertyValue hundredths = std::round(*real * 100) / 100;
    const bool isSame = rank == 1 || NumberGreater(hundredths, table_.ValueOf(rank - 1));
    return isSame ? Written(hundredths, {}) : version;
  }

  // A thousandth above the hundredths, which includes them and looks as if it does.
  PropertyValue Maximum(std::uint32_t rank) const {
    const auto& version = table_.ValueOf(rank);
    const auto real = version.AsReal();
    if (!real) return version;
    const PropertyValue above = (std::round(*real * 100) * 10 + 1) / 1000;
    const auto* next = table_.ValueAfter(rank);
    const bool isSame = next == nullptr || !next->IsNumber() || NumberLess(above, *next);
    return isSame ? above : version;
  }

  const DraftTarget& target_;
  const ControllerTable& table_;
  const ConstraintSchema& schema_;
  Arena arena_;
};

}  // namespace

std::string UnselectableReason(const DraftTarget& target, const ControllerTable& table,
                               const ControllerRow& row) {
  if (target.type == Types::Thunderbolt && !row.hasCounterpart) {
    return "there is no Thunderbolt controller above it";
  }
  const auto record = table.RecordOf(row);
  Record fitting = {{"Version", target.version}};
  for (const auto& requirement : RequirementsOf(target.type)) {
    const auto* value = record.Find(requirement.key);
    if (requirement.presence == KeyPresence::RequiredKey && value != nullptr) {
      fitting.Set(requirement.key, *value);
    }
    const auto verdict = Test(requirement, fitting, ContextOf(record, row));
    if (!verdict.failure) continue;
    if (*verdict.failure == FailureReason::EngineeringFirmware) {
      return "it runs engineering firmware";
    }
    if (value == nullptr) return "it has no \"" + std::string(requirement.key) + "\"";
    return "its version " + InlineText(*value) + " is not older";
  }
  return "";
}

PropertyList DraftConfiguration(const DraftTarget& target, const ControllerTable& table,
                                const ConstraintSchema& schema,
                                const std::vector<Selector>& selectors) {
  return DraftBuilder(target, table, schema).Build(selectors);
}

std::size_t CountMatched(const PropertyValue& configuration, TypeSet type,
                         const ControllerTable& table, const std::vector<ControllerRow>& rows) {
  const auto name = NameOf(type);
  const auto personalities = *PersonalitiesOf(name, *configuration.AsDictionary()->Find(name));
  DiagnosticConsole console(false);
  return static_cast<std::size_t>(std::ranges::count_if(rows, [&](const ControllerRow& row) {
    const auto record = table.RecordOf(row);
    const ControllerCheck check(type, ContextOf(record, row));
    return std::ranges::any_of(personalities, [&](const PropertyValue& personality) {
      return check.Applies(*personality.AsDictionary(), console);
    });
  }));
}

}  // namespace fernwick::lab
