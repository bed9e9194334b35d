#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for the shape of a configuration and for its keys.

inline constexpr LintRule NotADictionary = {
    "not-a-dictionary",
    Severity::Error,
    "the configuration is not a dictionary",
    "The top of a configuration is a dictionary from types to personalities. Anything else is "
    "refused and the board gets no plan.",
    "Put the personalities under the key of their type.",
    "<array>\n  <dict>...</dict>\n</array>",
    "<dict>\n  <key>USBC</key>\n  <array>\n    <dict>...</dict>\n  </array>\n</dict>",
};

inline constexpr LintRule DuplicateKey = {
    "duplicate-key",
    Severity::Error,
    "a key occurs twice in one dictionary",
    "Only the last value counts; the earlier one is lost without a message. Other readers of "
    "property lists may keep the first instead.",
    "Remove one of the two, or merge them.",
    "<key>RID</key><integer>0</integer>\n<key>RID</key><integer>1</integer>",
    "<key>RID</key><array><integer>0</integer><integer>1</integer></array>",
};

inline constexpr LintRule UnknownType = {
    "unknown-type",
    Severity::Warning,
    "a key at the top names no type",
    "The types are LegacyThunderbolt, Thunderbolt, LegacyUSBC and USBC. The value of any other key "
    "matches nothing; it only makes the tool read the ports once more.",
    "Remove the key, or move its contents to the type that is meant.",
    "<key>Comment</key><string>for the 2021 boards</string>",
    "<!-- for the 2021 boards -->",
};

inline constexpr LintRule MisspeltType = {
    "misspelt-type",
    Severity::Error,
    "a key at the top almost names a type",
    "Types are compared exactly, letter case included. The personalities under a misspelt type "
    "match nothing, and no message says so.",
    "Spell it LegacyThunderbolt, Thunderbolt, LegacyUSBC or USBC.",
    "<key>LegacyUsbC</key>",
    "<key>LegacyUSBC</key>",
};

inline constexpr LintRule WrongTypeShape = {
    "wrong-type-shape",
    Severity::Error,
    "a type's value does not have the shape that the type needs",
    "LegacyUSBC has one single personality, a dictionary. The other types have an array of "
    "personalities. A value of another shape matches nothing, and no message says so.",
    "Remove the array around the personality of LegacyUSBC, or put the personalities of another "
    "type into one.",
    "<key>LegacyUSBC</key>\n<array>\n  <dict>...</dict>\n</array>",
    "<key>LegacyUSBC</key>\n<dict>...</dict>",
};

inline constexpr LintRule EmptyType = {
    "empty-type",
    Severity::Note,
    "a type has no personality",
    "It matches nothing and only makes the tool read the controllers once more.",
    "Remove the key.",
    "<key>USBC</key>\n<array/>",
    "",
};

inline constexpr LintRule PersonalityNotADictionary = {
    "personality-not-a-dictionary",
    Severity::Error,
    "an element of a type's array is not a personality",
    "A personality is a dictionary. Anything else matches nothing.",
    "Remove the element, or make it a dictionary.",
    "<array>\n  <string>ports-200.bin</string>\n</array>",
    "<array>\n  <dict>\n    <key>Firmware</key><string>ports-200.bin</string>\n    ...\n  </dict>\n"
    "</array>",
};

inline constexpr LintRule MisspeltKey = {
    "misspelt-key",
    Severity::Error,
    "a key of a personality is almost one that is read",
    "Keys are compared exactly, letter case and blanks included. A requirement under a misspelt "
    "key constrains nothing, so the image may be offered to controllers that it was not made for.",
    "Spell the key as the finding says.",
    "<key>Existing Max Versoin</key>",
    "<key>Existing Max Version</key>",
};

inline constexpr LintRule SimilarKey = {
    "similar-key",
    Severity::Warning,
    "a key of a personality is similar to one that is read",
    "The key is not read, but it is the name of a registry property, or has words of a key that "
    "is. If it was meant to constrain the personality, the constraint is lost and the image goes "
    "to controllers that it was not made for.",
    "Write the key as the finding says, or remove it.",
    "<key>Max Version</key><integer>150</integer>",
    "<key>Existing Max Version</key><integer>150</integer>",
};

inline constexpr LintRule UnreadKey = {
    "unread-key",
    Severity::Note,
    "a key of a personality is unused",
    "It has no effect on what matches or on the plan.",
    "Remove it, or make it a comment.",
    "<key>Author</key><string>firmware team</string>",
    "<!-- by the firmware team -->",
};

inline constexpr LintRule KeyNotReadByType = {
    "key-not-read-by-type",
    Severity::Warning,
    "the personality's type does not read the key",
    "Each type tests keys of its own. One that it does not test constrains nothing there: a "
    "LegacyUSBC personality with \"RID\" matches ports of any RID.",
    "Remove the key, or move the personality to a type that reads it.",
    "<key>LegacyUSBC</key>\n<dict>\n  <key>RID</key><integer>1</integer>\n  ...\n</dict>",
    "<key>USBC</key>\n<array>\n  <dict>\n    <key>RID</key><integer>1</integer>\n    ...\n"
    "  </dict>\n</array>",
};

inline constexpr LintRule ReservedKey = {
    "reserved-key",
    Severity::Note,
    "the key is written by the tool itself",
    "\"Personality Type\" of a match is the type of the personality. A value in the file is "
    "replaced.",
    "Remove the key.",
    "<key>Personality Type</key><string>USBC</string>",
    "",
};

inline constexpr LintRule MissingKey = {
    "missing-key",
    Severity::Error,
    "a personality lacks a key without which it never matches",
    "Every type needs \"Version\" (only with the version check bypassed can a personality without "
    "it match). USBC and Thunderbolt need the three keys \"Port Silicon Vendor ID\", \"Port "
    "Silicon Device ID\" and \"Port Silicon Revision\"; LegacyThunderbolt and Thunderbolt the "
    "three keys \"Ridge Silicon Vendor ID\", \"Ridge Silicon Device ID\" and \"Ridge Silicon "
    "Revision\".",
    "Add the key.",
    "<key>LegacyUSBC</key>\n<dict>\n  <key>Firmware</key><string>ports-200.bin</string>\n</dict>",
    "<key>LegacyUSBC</key>\n<dict>\n  <key>Version</key><integer>200</integer>\n"
    "  <key>Firmware</key><string>ports-200.bin</string>\n</dict>",
};

}  // namespace fernwick::lab::LintRuleOf
