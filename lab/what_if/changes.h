#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "value/property_list_reader.h"
#include "value/result.h"

namespace fernwick::lab {

/// The options of a verb that tries changes of the computer and of the payload, as written.
struct WhatIfArguments {
  std::vector<std::string> properties;     // --set
  std::vector<std::string> personalities;  // --personality
  std::size_t boardRevision = Unchanged;   // --board-revision

  static constexpr std::size_t Unchanged = 256;
};

/// Adds the options to a verb's command line. Parsing the line fills `arguments`, which must
/// outlive it.
void AddWhatIfOptions(CommandLine& line, WhatIfArguments& arguments);

/// How the values of these options are written, for the help.
extern const char WhatIfHelp[];

/// The option that changes personalities, as an explanation names where a value is from.
inline constexpr std::string_view PersonalityOption = "--personality";

/// A property of an entry that is to be set to a value, or removed (nullopt).
struct PropertyChange {
  std::string entry;  // its name or its path
  std::string property;
  std::optional<PropertyList> value;
  std::string bytes = {};  // of a text: with a zero byte after it, as data contains texts
  std::string argument;    // as written: "hpm0:Version=0x180"
};

/// A key of a personality that is to be set to a value, or removed (nullopt).
struct PersonalityChange {
  std::string board;  // that has it; empty: any
  std::string type;
  std::size_t number;  // of the personality, from 1
  std::string key;
  std::optional<PropertyList> value;
  std::string argument;  // as written: "USBC:1:Version=0x180"
};

/// What is changed before the tool runs, in the order in which it is applied.
struct Changes {
  std::vector<PropertyChange> properties = {};
  std::vector<PersonalityChange> personalities = {};
  std::optional<std::string> boardRevision = {};  // as "board-rev" contains it: one byte

  /// All as in a command line: "--set hpm0:Version=0x180".
  std::vector<std::string> Texts() const;

  /// Those of a computer whose configuration has these changes of personalities, by their index;
  /// none of them where `applied` is empty, since there is no configuration.
  std::vector<std::string> TextsOf(const std::vector<bool>& applied) const;

  /// Whether one of them sets the key of the personality: of the board's, or, where `board` is
  /// empty, of any.
  bool SetsKey(std::string_view type, std::size_t number, std::string_view key,
               std::string_view board = {}) const;
};

/// Reads the arguments. Returns what is wrong with the first that cannot be read.
Result<Changes> ParseChanges(const WhatIfArguments& arguments);

}  // namespace fernwick::lab
