#include "lab/what_if/changes.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "lab/what_if/value_text.h"
#include "registry/key_schema.h"

namespace fernwick::lab {
namespace {

constexpr std::string_view PropertyOption = "--set";
constexpr std::string_view RevisionOption = "--board-revision";

constexpr char PropertyForm[] = "ENTRY:PROPERTY=VALUE";
constexpr char PersonalityForm[] = "[BOARD/]TYPE:N:KEY=VALUE";

// An option with its argument, as in a command line.
std::string TextOf(std::string_view option, std::string_view argument) {
  return std::string(option).append(" ").append(argument);
}

Error In(std::string_view option, const Error& error) {
  return {.message = TextOf(option, error.message)};
}

Error FormError(std::string_view option, std::string_view text, const char* form) {
  return {.message = TextOf(option, text) + ": it is not of the form " + form};
}

// Reads the value after the "=", and checks the names before it. `option` is for messages.
Result<std::optional<PropertyList>> ReadValue(std::string_view option, std::string_view text,
                                              std::initializer_list<std::string_view> names) {
  for (const auto name : names) {
    if (const auto fault = TextFault(name)) return In(option, *fault);
  }
  if (text.empty()) return std::optional<PropertyList>();
  auto value = ParseValueText(text);
  if (!value) return In(option, value.Error());
  return std::optional(*std::move(value));
}

// The entry may be a path, which has a colon of its own; so the last one counts.
Result<PropertyChange> ParseProperty(std::string_view text) {
  const auto equals = std::min(text.find('='), text.size());
  const auto colon = text.substr(0, equals).rfind(':');
  if (equals == text.size() || colon == std::string_view::npos || colon == 0 ||
      colon + 1 == equals) {
    return FormError(PropertyOption, text, PropertyForm);
  }
  const auto entry = text.substr(0, colon);
  const auto property = text.substr(colon + 1, equals - colon - 1);
  auto value = ReadValue(PropertyOption, text.substr(equals + 1), {entry, property});
  if (!value) return value.Error();
  PropertyChange change = {.entry = std::string(entry),
                           .property = std::string(property),
                           .value = *std::move(value),
                           .argument = std::string(text)};
  const auto string = change.value ? change.value->value.AsString() : std::nullopt;
  if (string) change.bytes = std::string(*string) + '\0';
  return change;
}

// 0 when it is not a number from 1 on; of more digits than any configuration has personalities,
// too.
std::size_t ParseNumber(std::string_view text) {
  constexpr std::size_t MaxDigits = 9;
  const bool isNumber = text.find_first_not_of("0123456789") == std::string_view::npos;
  if (!isNumber || text.empty() || text.size() > MaxDigits) return 0;
  return std::stoul(std::string(text));
}

std::string TypeNames() {
  std::string names;
  for (const auto& [name, type] : NamedTypes) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return names;
}

Result<PersonalityChange> ParsePersonality(std::string_view text) {
  const auto equals = std::min(text.find('='), text.size());
  const auto head = text.substr(0, equals);
  const auto first = std::min(head.find(':'), equals);
  const auto second = std::min(head.find(':', first + 1), equals);
  if (equals == text.size() || second == equals || second + 1 == equals) {
    return FormError(PersonalityOption, text, PersonalityForm);
  }
  const auto named = head.substr(0, first);
  const auto slash = named.rfind('/');
  const auto board = slash == std::string_view::npos ? std::string_view() : named.substr(0, slash);
  const auto type = slash == std::string_view::npos ? named : named.substr(slash + 1);
  const auto key = head.substr(second + 1);
  const auto number = ParseNumber(head.substr(first + 1, second - first - 1));
  if (TypeNamed(type) == Types::None) {
    return In(PersonalityOption, {.message = std::string(text) + ": \"" + std::string(type) +
                                             "\" is not one of " + TypeNames()});
  }
  if (number == 0) return FormError(PersonalityOption, text, PersonalityForm);
  auto value = ReadValue(PersonalityOption, text.substr(equals + 1), {key});
  if (!value) return value.Error();
  return PersonalityChange{std::string(board), std::string(type), number,
                           std::string(key),   *std::move(value), std::string(text)};
}

}  // namespace

const char WhatIfHelp[] =
    "An ENTRY is the name of an entry of the registry or its path, \"IOService:/bridge0/hpm0\". N "
    "is the\n"
    "number of a personality, from 1; with a BOARD and a slash before the TYPE that of one board "
    "alone.\n"
    "A VALUE is a number (5, 0x1F, 41.05), true or false, \"a text\", data as <5a65>, a list as "
    "(1, 2), an\n"
    "element of XML, or any other text, which is itself; without a VALUE after the = what is there "
    "is\n"
    "removed. A text for what is recorded as data, and for board-id, becomes data with a zero byte "
    "at its\n"
    "end. These cannot be named: an ENTRY with = or :/ in its name, a PROPERTY or a BOARD with : "
    "or =,\n"
    "a KEY with =.\n";

void AddWhatIfOptions(CommandLine& line, WhatIfArguments& arguments) {
  line.arguments.push_back({.name = std::string(PropertyOption),
                            .target = &arguments.properties,
                            .help = "change a property of the recording first; may be repeated",
                            .valueName = PropertyForm});
  line.arguments.push_back({.name = std::string(PersonalityOption),
                            .target = &arguments.personalities,
                            .help = "change a key of a personality first; may be repeated",
                            .valueName = PersonalityForm});
  line.arguments.push_back({.name = std::string(RevisionOption),
                            .target = BoundedNumber{&arguments.boardRevision, 0, 255},
                            .help = "change the board's revision first",
                            .valueName = "N"});
}

bool Changes::SetsKey(std::string_view type, std::size_t number, std::string_view key,
                      std::string_view board) const {
  return std::ranges::any_of(personalities, [&](const PersonalityChange& change) {
    const bool isOfBoard = board.empty() || change.board.empty() || change.board == board;
    return isOfBoard && change.type == type && change.number == number && change.key == key &&
           change.value;
  });
}

std::vector<std::string> Changes::Texts() const {
  return TextsOf(std::vector<bool>(personalities.size(), true));
}

std::vector<std::string> Changes::TextsOf(const std::vector<bool>& applied) const {
  std::vector<std::string> texts;
  for (const auto& change : properties) texts.push_back(TextOf(PropertyOption, change.argument));
  for (std::size_t i = 0; i < applied.size(); ++i) {
    if (applied[i]) texts.push_back(TextOf(PersonalityOption, personalities[i].argument));
  }
  if (boardRevision) {
    const auto revision = static_cast<unsigned char>(boardRevision->front());
    texts.push_back(TextOf(RevisionOption, std::to_string(revision)));
  }
  return texts;
}

Result<Changes> ParseChanges(const WhatIfArguments& arguments) {
  Changes changes;
  for (const auto& text : arguments.properties) {
    auto change = ParseProperty(text);
    if (!change) return change.Error();
    changes.properties.push_back(*std::move(change));
  }
  for (const auto& text : arguments.personalities) {
    auto change = ParsePersonality(text);
    if (!change) return change.Error();
    changes.personalities.push_back(*std::move(change));
  }
  if (arguments.boardRevision != WhatIfArguments::Unchanged) {
    changes.boardRevision = std::string(1, static_cast<char>(arguments.boardRevision));
  }
  return changes;
}

}  // namespace fernwick::lab
