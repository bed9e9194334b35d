#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for values that can match but are probably not what is meant.

inline constexpr LintRule DoubtfulUuid = {
    "doubtful-uuid",
    Severity::Warning,
    "a UUID is not written as the registry has it",
    "Text is compared exactly, letter case included. Ports have UUIDs of the form "
    "5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00: 32 upper-case hexadecimal digits with hyphens after the "
    "eighth, twelfth, sixteenth and twentieth. Text of another form matches no port.",
    "Write the UUID as `fernwick -v` prints it.",
    "<string>5f1c9a04-7c15-4e0c-9c2f-0a6e3d0b7a00</string>",
    "<string>5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00</string>",
};

inline constexpr LintRule DoubtfulModelName = {
    "doubtful-model-name",
    Severity::Warning,
    "a model name is empty, or begins or ends with a blank",
    "Text is compared exactly, blanks included. No model has such a name.",
    "Write the name without the blanks, or remove the key where any model will do.",
    "<key>Device Model Name</key><string>Slate 13 </string>",
    "<key>Device Model Name</key><string>Slate 13</string>",
};

inline constexpr LintRule RealUid = {
    "real-uid",
    Severity::Warning,
    "\"Ridge UID\" is a real number",
    "A unique id has 64 bits, of which a real keeps 53. Numbers are compared exactly, so an id "
    "that was rounded matches no controller.",
    "Write the id as an integer.",
    "<key>Ridge UID</key><real>1.2345678901234567e18</real>",
    "<key>Ridge UID</key><integer>1234567890123456789</integer>",
};

inline constexpr LintRule BooleanForNumber = {
    "boolean-for-number",
    Severity::Warning,
    "a boolean is written where a number is meant",
    "A boolean counts as 1 or 0 in every comparison. Except for \"Firmware Mode\", which "
    "controllers report as a boolean, that is hardly meant.",
    "Write the number.",
    "<key>RID</key><true/>",
    "<key>RID</key><integer>1</integer>",
};

inline constexpr LintRule RepeatedElement = {
    "repeated-element",
    Severity::Warning,
    "a list contains an element twice",
    "The second one changes nothing about what matches (in \"ClearNVRAM\" the variable is cleared "
    "twice). Another value may have been meant.",
    "Write the value that is meant, or remove the repetition.",
    "<key>Port Address</key>\n<array><integer>56</integer><integer>0x38</integer></array>",
    "<key>Port Address</key>\n<array><integer>0x38</integer><integer>0x3F</integer></array>",
};

}  // namespace fernwick::lab::LintRuleOf
