#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for the names of NVRAM variables.

inline constexpr LintRule NvramEmptyName = {
    "nvram-empty-name",
    Severity::Error,
    "an NVRAM variable has an empty name",
    "A variable without a name, or with a name of blanks, can neither be set nor cleared, and the "
    "launcher may refuse the whole plan.",
    "Name the variable, or remove the entry.",
    "<key>ClearNVRAM</key><array><string></string></array>",
    "<key>ClearNVRAM</key><array><string>fernwick-last-error</string></array>",
};

inline constexpr LintRule NvramPayloadVariable = {
    "nvram-payload-variable",
    Severity::Error,
    "a personality sets or clears a variable that passes an image",
    "The plan passes its images to the flashing utility in the variables efi-quince-payload0-data, "
    "efi-quince-payload1-data and so on. A personality that sets or clears one of them may replace "
    "the image that is flashed.",
    "Use a variable of another name.",
    "<key>SetNVRAM</key><dict><key>efi-quince-payload0-data</key><string>1</string></dict>",
    "<key>SetNVRAM</key><dict><key>fernwick-staged</key><string>1</string></dict>",
};

inline constexpr LintRule NvramBypassSwitch = {
    "nvram-bypass-switch",
    Severity::Error,
    "a personality sets a bypass switch",
    "\"fernwick_bypass_usbc_updates\" ends every later run without a plan, and "
    "\"fernwick_bypassversioncheck\" makes every later run flash older images as well. Both stay "
    "set until somebody clears them. Any value but the single character 0 sets them, as a variable "
    "of their name or in \"boot-args\".",
    "Leave the switches to the person at the computer.",
    "<key>SetNVRAM</key><dict><key>fernwick_bypassversioncheck</key><string>1</string></dict>",
    "",
};

inline constexpr LintRule NvramIdleBypassSwitch = {
    "nvram-idle-bypass-switch",
    Severity::Warning,
    "a personality clears a bypass switch or sets it to no effect",
    "A bypass switch is set by the person at the computer, who does not expect an update to change "
    "it. The value 0, a number and a boolean do not set it.",
    "Remove it from the personality.",
    "<key>ClearNVRAM</key><array><string>fernwick_bypassversioncheck</string></array>",
    "",
};

inline constexpr LintRule NvramBareSwitch = {
    "nvram-bare-switch",
    Severity::Error,
    "boot arguments contain a bypass switch without a value",
    "A switch in \"boot-args\" is its name, \"=\" and a value. The bare name ends every later run "
    "abnormally, before any output.",
    "Remove \"boot-args\" from the personality.",
    "<key>SetNVRAM</key><dict><key>boot-args</key><string>-v fernwick_bypassversioncheck</string>"
    "</dict>",
    "",
};

inline constexpr LintRule NvramBootArgs = {
    "nvram-boot-args",
    Severity::Warning,
    "a personality sets or clears \"boot-args\"",
    "\"boot-args\" has all boot arguments of the computer in one text. Setting or clearing it "
    "removes those that are there.",
    "Use a variable of your own.",
    "<key>SetNVRAM</key><dict><key>boot-args</key><string>-v</string></dict>",
    "<key>SetNVRAM</key><dict><key>fernwick-staged</key><string>-v</string></dict>",
};

}  // namespace fernwick::lab::LintRuleOf
