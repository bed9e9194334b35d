#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for the values with which something is to match.

inline constexpr LintRule WrongKind = {
    "wrong-kind",
    Severity::Error,
    "a value is of a kind with which nothing matches",
    "Numbers are compared with numbers (an integer, a real or a boolean) and text with text. A "
    "number that is written as text equals no number. The old text form of property lists knows no "
    "numbers at all: a configuration that needs them is written in XML or binary.",
    "Write a number as <integer> or <real>, text as <string>.",
    "<key>Version</key><string>200</string>",
    "<key>Version</key><integer>200</integer>",
};

inline constexpr LintRule ListNotAllowed = {
    "list-not-allowed",
    Severity::Error,
    "a list is written where one value is read",
    "The versions, their bounds and the bounds of the board revision are single numbers. A list "
    "matches nothing.",
    "Write the one number, or make a personality for each.",
    "<key>Version</key>\n<array><integer>200</integer></array>",
    "<key>Version</key>\n<integer>200</integer>",
};

inline constexpr LintRule SinglePortUuid = {
    "single-port-uuid",
    Severity::Error,
    "\"Port UUID\" is a single string",
    "Other keys accept a single value or a list of them. \"Port UUID\" accepts only a list: a "
    "single string matches no port, not even the one that has it.",
    "Put the string into an array.",
    "<key>Port UUID</key>\n<string>5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00</string>",
    "<key>Port UUID</key>\n<array><string>5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00</string></array>",
};

inline constexpr LintRule EmptyList = {
    "empty-list",
    Severity::Error,
    "a list of values is empty",
    "The controller's value must equal one of the list's. An empty list is not the same as no "
    "constraint: it matches nothing.",
    "Remove the key where any value will do, or name the values.",
    "<key>RID</key><array/>",
    "<key>RID</key><array><integer>0</integer></array>",
};

inline constexpr LintRule DeadList = {
    "dead-list",
    Severity::Error,
    "no element of a list can match",
    "Each element is of a kind, or a number, that no controller has under the key, so the "
    "personality never matches.",
    "Write the elements as the key needs them.",
    "<key>RID</key>\n<array><string>0</string><string>1</string></array>",
    "<key>RID</key>\n<array><integer>0</integer><integer>1</integer></array>",
};

inline constexpr LintRule DeadListElement = {
    "dead-list-element",
    Severity::Warning,
    "an element of a list can never match",
    "The other elements still do, but controllers for which this one was meant are left out.",
    "Write the element as the key needs it, or remove it.",
    "<key>RID</key>\n<array><integer>0</integer><string>1</string></array>",
    "<key>RID</key>\n<array><integer>0</integer><integer>1</integer></array>",
};

inline constexpr LintRule UnreachableNumber = {
    "unreachable-number",
    Severity::Error,
    "no controller has this number under the key",
    "What is known of a controller are signed 32-bit integers: a silicon id of 0x80000001 is "
    "stored as -2147483647. \"Firmware Mode\" is 0 or 1. Ports below a Thunderbolt controller, the "
    "only ones that a Thunderbolt personality can match, are listed only where their address is 0. "
    "NaN equals nothing.",
    "Write the number as the controller has it; `fernwick -v` lists it.",
    "<key>Port Silicon Vendor ID</key><integer>0x80000001</integer>",
    "<key>Port Silicon Vendor ID</key><integer>-2147483647</integer>",
};

inline constexpr LintRule RidOutOfRange = {
    "rid-out-of-range",
    Severity::Error,
    "no Thunderbolt controller has this RID",
    "The RID of a Thunderbolt controller is the low four bits of its unique id: 0 to 15. This is "
    "true of LegacyThunderbolt only, as a port may have an RID of its own.",
    "Write the low four bits.",
    "<key>RID</key><integer>0x11</integer>",
    "<key>RID</key><integer>1</integer>",
};

inline constexpr LintRule RidNotOfUid = {
    "rid-not-of-uid",
    Severity::Error,
    "\"RID\" and \"Ridge UID\" exclude each other",
    "The RID of a Thunderbolt controller is the low four bits of its unique id, so no controller "
    "matches a personality whose \"RID\" is not the low four bits of any \"Ridge UID\".",
    "Write the low four bits of the unique id, or leave \"RID\" out.",
    "<key>Ridge UID</key><integer>0x5A3</integer>\n<key>RID</key><integer>5</integer>",
    "<key>Ridge UID</key><integer>0x5A3</integer>\n<key>RID</key><integer>3</integer>",
};

inline constexpr LintRule DoubtfulRid = {
    "doubtful-rid",
    Severity::Warning,
    "no Thunderbolt controller has this RID, only a port may",
    "A Thunderbolt personality is checked against the RID of a port. One without an RID of its own "
    "has that of the Thunderbolt controller above it, which is the low four bits of a unique id: 0 "
    "to 15. Another number matches nothing but ports that bring an RID of their own.",
    "Write the low four bits of the controller's unique id.",
    "<key>RID</key><integer>0x11</integer>",
    "<key>RID</key><integer>1</integer>",
};

inline constexpr LintRule NanBound = {
    "nan-bound",
    Severity::Warning,
    "a bound is NaN",
    "NaN is neither below nor above anything, so a bound that is NaN excludes nothing.",
    "Write the number that is meant, or remove the key.",
    "<key>Existing Max Version</key><real>nan</real>",
    "<key>Existing Max Version</key><real>41.06</real>",
};

}  // namespace fernwick::lab::LintRuleOf
