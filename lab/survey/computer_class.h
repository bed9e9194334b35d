#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "driver/options.h"
#include "lab/support/tool_run.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// What a payload does for a whole computer or, where it plans nothing, why. Of several that apply
/// it is the first of: Refused, Fault, Bypassed, Planned, UnknownBoard, NoConfiguration,
/// NoControllers, Current, Blocked, Unmatched.
enum class ComputerClass {
  Planned,          // also where it plans something for some controllers only
  Current,          // all that a personality requires is met, but its version is not newer
  Blocked,          // the nearest one is for the controller, but not for its version or the board's
                    // revision, or a match names no image
  Unmatched,        // the nearest one is for another controller, or there is none
  NoControllers,    // the computer has none
  UnknownBoard,     // it has no identifier, or the payload no directory of that name
  NoConfiguration,  // the directory has none, or one that is malformed or no dictionary
  Bypassed,         // by a switch of the computer
  Fault,            // the run ends abnormally
  Refused,          // its recording
};

inline constexpr std::size_t ClassCount = 10;

/// "planned", "no controllers": the names in the order of the enumeration.
extern const std::array<std::string_view, ClassCount> ClassNames;

std::string_view NameOf(ComputerClass computerClass);

/// How many computers there are of each class.
using ClassCounts = std::array<std::size_t, ClassCount>;

/// The classes that a word of a command line means: a name with "-" for each blank, or "abnormal"
/// (Fault), or "no-plan" (all without a plan whose run is whole). Empty for any other word.
std::vector<ComputerClass> ClassesOfWord(std::string_view word);

/// All these words, "planned, current, ..., no-plan".
std::string ClassWords();

/// Of all personalities and controllers that a run without a plan compared, the pair that is
/// nearest to a match, and the first requirement that it fails.
struct NearestMiss {
  std::string controller;   // the path of its entry
  std::string type;         // of the personality
  std::size_t personality;  // from 1 in the order of the file; of "LegacyUSBC" there is one alone
  std::string key;          // of the requirement; "Firmware" of a match that names no image
  std::string text;         // to follow the key: "wants 1, finds 2"; safe to show and not long
};

struct Classification {
  ComputerClass computerClass;
  // Of Current, Blocked and Unmatched, where pairs were tried.
  std::optional<NearestMiss> miss = {};
};

/// Classifies a whole run over the computer. A plan costs nothing; without one, all requirements of
/// the pairs that the run tried are tested. REQUIRES: `run` is RunTool(recording, options), and
/// UnreadableConfiguration is empty.
Classification Classify(const ToolRun& run, const Recording& recording, const Options& options);

}  // namespace fernwick::lab
