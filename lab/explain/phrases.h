#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lab/explain/explanation.h"

namespace fernwick::lab {

// The parts that lines of an explanation are composed of. Nothing from a file is in them raw:
// control characters are escaped.

/// "port controller", "Thunderbolt controllers": what personalities of the key's type are matched
/// against.
std::string_view ControllerKind(const ExplainedKey& key, bool plural);

/// "personality 2 at 50:3, "image.bin"": with its location and image.
std::string LocatedPersonality(const ExplainedKey& key, std::size_t index);

/// "hpm0 below ridge0".
std::string ControllerName(const ExplainedController& controller);

/// What distinguishes similar controllers: ": RID 0, address 56, version 171".
std::string ControllerTraits(Dictionary record);

/// "Zed-1A07 (0x1A07), revision 2".
std::string IdentityText(const BoardIdentity& identity);

/// ""UID" of ridge1 is 17 (0x11): the low 4 bits"; ""Revision" of hpm0 is absent".
std::string SourceText(const ExplainedSource& source);

/// Where the hardware's side comes from, or why it is missing, a line for each property.
std::vector<std::string> SourceLines(const FailedRequirement& failed,
                                     const ExplainedController& controller);

/// "the boot argument fernwick_bypassversioncheck", "the NVRAM variable ...".
std::string SwitchText(const ActiveSwitch& set);

/// What bypasses the version check. REQUIRES: the option or a switch does.
std::string BypassText(const Explanation& explanation);

/// "set NVRAM "a" to 1, "b" to <00>", "clear NVRAM "c"", "options -g -o": what the plan does
/// besides its images, a line for each kind that is there.
std::vector<std::string> SettingLines(const PlanSummary& plan);

/// That pairs of a controller are not shown, and how to see them. REQUIRES: there are some.
std::string OtherPairsText(const ExplainedController& controller);

/// The match that names no image. REQUIRES: the run ended with RunEnd::NoFirmware.
std::string NoFirmwareText(const Explanation& explanation);

/// What is under a top-level key: "2 port controllers, 1 personality", or why it is not matched.
std::string KeySummary(const ExplainedKey& key);

/// Why the inventory does not list a controller.
std::string SkipText(const ExplainedKey& key, const ExplainedSkip& skip);

/// Which other types read a key that the type `type` does not read.
std::string ReadersText(const UnreadKey& unread, std::string_view type);

}  // namespace fernwick::lab
