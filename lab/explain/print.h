#pragma once

#include <optional>
#include <string_view>

#include "lab/explain/explanation.h"
#include "lab/support/json_stream.h"

namespace fernwick::lab {

/// Prints the explanation for people. Control characters from files are escaped;
/// `emphasise` sets headings and outcomes in bold.
void PrintExplanationText(const Explanation& explanation, bool emphasise, const TextSink& sink);

/// Prints the whole explanation as a JSON document. Personalities are numbered from 1; pairs
/// are in the order of the file.
void PrintExplanationJson(const Explanation& explanation, const TextSink& sink);

/// Where a value is from, in JSON: {"line": 12, "column": 7}, {"byte": 812} in a binary file,
/// {"option": "--personality"}, or null.
Json LocationJson(const std::optional<ValueOrigin>& location);

/// The names in the JSON: "nothingMatched", "notReached", "aboveInstalled".
std::string_view NameOf(RunEnd end);
std::string_view NameOf(PairOutcome outcome);
std::string_view NameOf(FailureReason reason);
std::string_view NameOf(SkipReason reason);

}  // namespace fernwick::lab
