#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "personality/match_record.h"
#include "plan/plan_values.h"
#include "platform/console.h"

namespace fernwick {

/// The file of the EFI flashing utility for the type, in the `PersonalitiesDirectory`. Empty for a
/// type without one.
std::string_view FlashingUtility(std::string_view type);

/// Builds the argument vector of the boot-target tool from the matches of one run. Each group of
/// matches of one type has a whole head of its own, and the payload variables count from 0 in
/// each; all groups share the one options argument at the end.
class InvocationBuilder {
 public:
  /// `personalitiesDirectory` ends in "/".
  InvocationBuilder(std::string personalitiesDirectory,
                    const std::optional<std::string>& boardIdString);

  /// Adds the next match to the vector and its NVRAM settings to `plan`. In verbose mode a line
  /// about a type that is not supported goes to standard output. False, after a line in the system
  /// log, when the match names no firmware image or the board has no directory for one.
  bool AddMatch(const MatchRecord& match, PlanValues& plan, bool verbose, Console& console);

  /// Closes the vector. To be called once, after the last match.
  void FinishInvocation();

  /// Prints the finished vector on one line: an argument that contains a blank in double quotes and
  /// directly before the next, any other followed by a blank.
  void PrintInvocation(Console& console) const;

  /// The finished vector, program path first.
  const std::vector<std::string>& Arguments() const { return invocation_.arguments; }

 private:
  // The vector while it is built.
  struct Invocation {
    std::vector<std::string> arguments;
    std::vector<std::string> optionTokens;           // the words of the one options argument
    std::vector<std::string> trailer;                // the words that close the vector
    std::optional<std::string> currentType;          // of the group
    std::uint32_t payloadIndex = ~std::uint32_t{0};  // in the group, whose start sets it to 0
  };

  void StartGroup(std::string_view type);
  void AddThunderboltOptions(const MatchRecord& match);
  void AddPortOptions();
  std::string PayloadVariable() const;

  std::string personalitiesDirectory_;
  std::optional<std::string> boardDirectory_;
  Invocation invocation_;
};

}  // namespace fernwick
