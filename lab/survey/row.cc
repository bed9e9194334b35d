#include "lab/survey/row.h"

#include <algorithm>
#include <array>
#include <utility>

#include "lab/support/json_reading.h"

namespace fernwick::lab {
namespace {

constexpr std::array<std::string_view, 5> OutcomeNames = {"plan", "no plan", "bypassed", "refused",
                                                          "abnormal end"};

Json MatchToJson(const SurveyMatch& match) {
  return {{"type", match.type},
          {"rid", match.rid},
          {"portAddress", match.portAddress},
          {"installed", match.installed},
          {"version", match.version},
          {"image", match.image},
          {"imageMissing", match.isImageMissing}};
}

Json MissToJson(const NearestMiss& miss) {
  return {{"controller", miss.controller},
          {"type", miss.type},
          {"personality", miss.personality},
          {"key", miss.key},
          {"text", miss.text}};
}

// Reads the members of an object and remembers whether each was there and of the right kind.
class Members {
 public:
  explicit Members(const Json& object) : object_(object), sound_(object.is_object()) {}

  bool Has(const char* key) const { return sound_ && object_.contains(key); }

  bool Boolean(const char* key) {
    const auto value = Any(key);
    sound_ = sound_ && value.is_boolean();
    return sound_ && value.get<bool>();
  }

  // Null when it is not there.
  Json Any(const char* key) {
    const auto found = sound_ ? object_.find(key) : object_.end();
    sound_ = sound_ && found != object_.end();
    return sound_ ? *found : Json(nullptr);
  }

  std::string Text(const char* key) {
    const auto value = Any(key);
    sound_ = sound_ && value.is_string();
    return sound_ ? value.get<std::string>() : std::string();
  }

  std::optional<std::string> OptionalText(const char* key) {
    if (Any(key).is_null()) return std::nullopt;
    return Text(key);
  }

  std::optional<int> OptionalInteger(const char* key) {
    const auto value = Any(key);
    sound_ = sound_ && (value.is_null() || value.is_number_integer());
    if (!sound_ || value.is_null()) return std::nullopt;
    return value.get<int>();
  }

  std::size_t Count(const char* key) {
    const auto value = Any(key);
    sound_ = sound_ && value.is_number_unsigned();
    return sound_ ? value.get<std::size_t>() : 0;
  }

  // Each element as `interpret` reads it from its members.
  template <typename Element, typename Interpret>
  std::vector<Element> List(const char* key, Interpret interpret) {
    std::vector<Element> elements;
    const auto list = Any(key);
    sound_ = sound_ && list.is_array();
    if (!sound_) return elements;
    for (const auto& element : list) {
      Members members(element);
      elements.push_back(interpret(members));
      sound_ = sound_ && members.sound_;
    }
    return elements;
  }

  void Refuse() { sound_ = false; }
  bool AreSound() const { return sound_; }

 private:
  const Json& object_;
  bool sound_;
};

SurveyMatch InterpretMatch(Members& members) {
  SurveyMatch match;
  match.type = members.Text("type");
  match.rid = members.Any("rid");
  match.portAddress = members.Any("portAddress");
  match.installed = members.Any("installed");
  match.version = members.Any("version");
  match.image = members.Any("image");
  if (members.Has("imageMissing")) match.isImageMissing = members.Boolean("imageMissing");
  return match;
}

DiagnosticCount InterpretDiagnostic(Members& members) {
  auto text = members.Text("text");
  return {std::move(text), members.Count("count")};
}

PlanSummary InterpretPlan(Members& members) {
  return {.priority = static_cast<std::uint32_t>(members.Count("priority")),
          .setNvram = members.Any("setNVRAM"),
          .clearNvram = members.Any("clearNVRAM"),
          .options = members.Text("options")};
}

// The value whose name the member is.
template <typename Value, std::size_t Count>
Value InterpretName(const std::array<std::string_view, Count>& names, const char* key,
                    Members& members) {
  const auto* const found = std::ranges::find(names, members.Text(key));
  if (found == names.end()) members.Refuse();
  return static_cast<Value>(found == names.end() ? 0 : found - names.begin());
}

// Empty where it is null or not there.
std::optional<ComputerClass> OptionalClass(Members& members) {
  if (!members.Has("class") || members.Any("class").is_null()) return std::nullopt;
  return InterpretName<ComputerClass>(ClassNames, "class", members);
}

NearestMiss InterpretMiss(Members& members) {
  return {.controller = members.Text("controller"),
          .type = members.Text("type"),
          .personality = members.Count("personality"),
          .key = members.Text("key"),
          .text = members.Text("text")};
}

// An object as `interpret` reads it from its members; empty where it is null or not there.
template <typename Value>
std::optional<Value> OptionalObject(Members& members, const char* key,
                                    Value (*interpret)(Members&)) {
  if (!members.Has(key)) return std::nullopt;
  const auto value = members.Any(key);
  if (value.is_null()) return std::nullopt;
  Members inner(value);
  auto object = interpret(inner);
  if (!inner.AreSound()) members.Refuse();
  return object;
}

}  // namespace

std::string_view NameOf(Outcome outcome) {
  return OutcomeNames[static_cast<std::size_t>(outcome)];
}

Json ToJson(const SurveyRow& row) {
  auto matches = Json::array();
  for (const auto& match : row.matches) matches.push_back(MatchToJson(match));
  auto diagnostics = Json::array();
  for (const auto& [text, count] : row.diagnostics) {
    diagnostics.push_back({{"text", text}, {"count", count}});
  }
  return {{"file", row.file},
          {"outcome", NameOf(row.outcome)},
          {"class", row.computerClass ? Json(NameOf(*row.computerClass)) : Json(nullptr)},
          {"status", OrNull(row.status)},
          {"reason", row.reason.empty() ? Json(nullptr) : Json(row.reason)},
          {"board", OrNull(row.board)},
          {"revision", OrNull(row.revision)},
          {"matches", std::move(matches)},
          {"nearestMiss", row.miss ? MissToJson(*row.miss) : Json(nullptr)},
          {"diagnostics", std::move(diagnostics)},
          {"plan", row.plan ? ToJson(*row.plan) : Json(nullptr)}};
}

std::optional<SurveyRow> ParseSurveyRow(std::string_view json) {
  const auto parsed = ParseJson(json);
  return parsed ? SurveyRowOf(*parsed) : std::nullopt;
}

std::optional<SurveyRow> SurveyRowOf(const Json& json) {
  Members members(json);
  SurveyRow row;
  row.file = members.Text("file");
  row.outcome = InterpretName<Outcome>(OutcomeNames, "outcome", members);
  row.computerClass = OptionalClass(members);
  row.status = members.OptionalInteger("status");
  row.reason = members.OptionalText("reason").value_or("");
  row.board = members.OptionalText("board");
  row.revision = members.OptionalInteger("revision");
  row.matches = members.List<SurveyMatch>("matches", InterpretMatch);
  row.miss = OptionalObject(members, "nearestMiss", InterpretMiss);
  row.diagnostics = members.List<DiagnosticCount>("diagnostics", InterpretDiagnostic);
  row.plan = OptionalObject(members, "plan", InterpretPlan);
  if (!members.AreSound()) return std::nullopt;
  return row;
}

}  // namespace fernwick::lab
