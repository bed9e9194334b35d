#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for what the plan reads from a personality.

inline constexpr LintRule NoFirmware = {
    "no-firmware",
    Severity::Error,
    "a personality names no firmware image",
    "When such a personality matches, the run ends without a plan, also for all other controllers.",
    "Name the image under \"Firmware\", as a string.",
    "<key>Firmware</key><string></string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule MissingImage = {
    "missing-image",
    Severity::Error,
    "the firmware image is not in the board directory",
    "The plan names the image without checking that it is there; flashing fails at the next boot.",
    "Put the image beside Config.plist, or correct its name, letter case included.",
    "<key>Firmware</key><string>Ports-200.bin</string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule ImageNotAFile = {
    "image-not-a-file",
    Severity::Error,
    "what \"Firmware\" names is not a file",
    "The flashing utility needs the bytes of a file; a directory or a device fails at the next "
    "boot.",
    "Name the image's file.",
    "<key>Firmware</key><string>images</string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule ImageOutsideBoardDirectory = {
    "image-outside-board-directory",
    Severity::Error,
    "the firmware image is outside the board directory",
    "A payload is delivered and checked board by board. A name with \"..\" may be another board's "
    "image.",
    "Put the image into the board directory and name it without \"..\".",
    "<key>Firmware</key><string>../Zed-41/ports-200.bin</string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule ImageNotAPlainName = {
    "image-not-a-plain-name",
    Severity::Warning,
    "\"Firmware\" is a path, not a file name",
    "It is the name of a file in the board directory. A \"/\" at its start does not make it "
    "absolute: it is looked for in the board directory all the same.",
    "Put the image directly into the board directory.",
    "<key>Firmware</key><string>/images/ports-200.bin</string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule EmptyImage = {
    "empty-image",
    Severity::Error,
    "an image or a flashing utility is an empty file",
    "The plan names the file without looking into it; flashing fails at the next boot.",
    "Put the real file into the payload.",
    "payload/Fernwick/Zed-42/ports-200.bin, 0 bytes",
    "payload/Fernwick/Zed-42/ports-200.bin, 262144 bytes",
};

inline constexpr LintRule PointerFile = {
    "pointer-file",
    Severity::Error,
    "an image or a flashing utility is the pointer file of a large-file store",
    "Version control that keeps large files elsewhere has a few lines of text for each of them "
    "until it is downloaded. Flashing such a file fails at the next boot.",
    "Download the files before the payload is built.",
    "version https://git-lfs.github.com/spec/v1",
    "the bytes of the image",
};

inline constexpr LintRule ImageLinkedOutside = {
    "image-linked-outside",
    Severity::Error,
    "an image is a link to a file outside the board directory",
    "A payload is delivered and checked board by board. What the link names may change with "
    "another board, or not be delivered at all.",
    "Put a copy of the file into the board directory.",
    "payload/Fernwick/Zed-42/ports-200.bin -> ../Zed-41/ports-200.bin",
    "payload/Fernwick/Zed-42/ports-200.bin",
};

inline constexpr LintRule ConfigurationAsImage = {
    "configuration-as-image",
    Severity::Error,
    "\"Firmware\" names Config.plist",
    "The configuration is not a firmware image; flashing fails at the next boot.",
    "Name the image's file.",
    "<key>Firmware</key><string>Config.plist</string>",
    "<key>Firmware</key><string>ports-200.bin</string>",
};

inline constexpr LintRule SameImageTwice = {
    "same-image-twice",
    Severity::Warning,
    "two images of a board have the same bytes",
    "Images of different names are for different controllers or versions. One of them is probably "
    "a copy under a wrong name.",
    "Put the right image into the payload, or name one file in both personalities.",
    "left-200.bin and right-200.bin with the same bytes",
    "left-200.bin and right-200.bin with different bytes",
};

inline constexpr LintRule ImageVersionsDiffer = {
    "image-versions-differ",
    Severity::Warning,
    "personalities name one image with different versions",
    "\"Version\" is that of the image, which has one. With a \"Version\" above what the image "
    "reports once it is installed, the update is planned again at every start.",
    "Name the image of that version, or correct \"Version\".",
    "<dict>... \"Version\" 190, \"Firmware\" ports-200.bin ...</dict>\n"
    "<dict>... \"Version\" 200, \"Firmware\" ports-200.bin ...</dict>",
    "<dict>... \"Version\" 190, \"Firmware\" ports-190.bin ...</dict>\n"
    "<dict>... \"Version\" 200, \"Firmware\" ports-200.bin ...</dict>",
};

inline constexpr LintRule UnusedFile = {
    "unused-file",
    Severity::Note,
    "no personality names a file of the board directory",
    "It is delivered to every computer and never flashed; a personality may have been forgotten.",
    "Remove the file, or add the personality that names it.",
    "payload/Fernwick/Zed-42/ports-190.bin",
    "",
};

inline constexpr LintRule MissingUtility = {
    "missing-utility",
    Severity::Error,
    "the flashing utility of a type is not in the payload",
    "The plan names RidgeFlash.efi for the Thunderbolt types and PortFlash.efi for the USB-C "
    "types, in Fernwick/, without checking that it is there; flashing fails at the next boot.",
    "Put the utility into Fernwick/.",
    "payload/Fernwick/Zed-42/PortFlash.efi",
    "payload/Fernwick/PortFlash.efi",
};

inline constexpr LintRule NoPriority = {
    "no-priority",
    Severity::Warning,
    "a personality has no \"Priority\"",
    "The plan has the smallest priority of all matches, and an absent one counts as 0: it "
    "overrides what all others say.",
    "Add \"Priority\", 0 if that is meant.",
    "<key>Firmware</key><string>ports-200.bin</string>",
    "<key>Firmware</key><string>ports-200.bin</string>\n<key>Priority</key><integer>20</integer>",
};

inline constexpr LintRule AlteredPriority = {
    "altered-priority",
    Severity::Warning,
    "\"Priority\" is read as another number than is written",
    "Of a priority the low 32 bits count, without a sign: -1 is 4294967295. A real is cut to a "
    "whole number, of text the decimal digits at its start count, and anything else is 0.",
    "Write a whole number from 0 to 2147483646.",
    "<key>Priority</key><string>high</string>",
    "<key>Priority</key><integer>20</integer>",
};

inline constexpr LintRule PriorityWithoutEffect = {
    "priority-without-effect",
    Severity::Warning,
    "\"Priority\" is too high to have an effect",
    "The plan's priority begins at 2147483647 and only ever falls; a personality's at or above "
    "that never lowers it.",
    "Write a whole number from 0 to 2147483646.",
    "<key>Priority</key><integer>0x7FFFFFFF</integer>",
    "<key>Priority</key><integer>50</integer>",
};

inline constexpr LintRule AlteredFirmwareMode = {
    "altered-firmware-mode",
    Severity::Warning,
    "\"Firmware Mode\" is read as another number than is written",
    "From a LegacyThunderbolt personality the plan reads how the image is flashed: with -ee where "
    "it is 0 or absent, with -fs where it is anything else. A list counts as 0. A real is cut to a "
    "whole number, of text the decimal digits at its start count, of all the low 32 bits.",
    "Write 0 or 1.",
    "<key>Firmware Mode</key><array><integer>1</integer></array>",
    "<key>Firmware Mode</key><integer>1</integer>",
};

inline constexpr LintRule NvramWrongShape = {
    "nvram-wrong-shape",
    Severity::Error,
    "NVRAM settings do not have the shape that they need",
    "\"SetNVRAM\" is a dictionary from variable to value, \"ClearNVRAM\" an array of variables. "
    "Anything else is left out of the plan without a message.",
    "Write a dictionary or an array.",
    "<key>ClearNVRAM</key><string>fernwick-last-error</string>",
    "<key>ClearNVRAM</key><array><string>fernwick-last-error</string></array>",
};

inline constexpr LintRule ClearedNameNotText = {
    "cleared-name-not-text",
    Severity::Warning,
    "an element of \"ClearNVRAM\" is not text",
    "Variables have names. Any other element is passed on unchanged to the launcher, which expects "
    "text.",
    "Write the variable's name as a string.",
    "<key>ClearNVRAM</key><array><integer>1</integer></array>",
    "<key>ClearNVRAM</key><array><string>fernwick-last-error</string></array>",
};

inline constexpr LintRule NvramSetAndCleared = {
    "nvram-set-and-cleared",
    Severity::Warning,
    "an NVRAM variable is both set and cleared",
    "The plan then has the variable in both lists; which of the two takes effect depends on the "
    "launcher. Only personalities that can match on the same computer are compared.",
    "Remove it from one of the two.",
    "<key>SetNVRAM</key><dict><key>staged</key><string>1</string></dict>\n"
    "<key>ClearNVRAM</key><array><string>staged</string></array>",
    "<key>SetNVRAM</key><dict><key>staged</key><string>1</string></dict>",
};

inline constexpr LintRule NvramConflict = {
    "nvram-conflict",
    Severity::Warning,
    "an NVRAM variable is set to different values",
    "Personalities that can match on the same computer set it to different values; the plan keeps "
    "that of the last match, which depends on the controllers that are there. Personalities for "
    "different board revisions or device models never match on one computer, and those of one type "
    "that accept the same controllers are steps of one upgrade.",
    "Set one value in all of them, or use a variable for each.",
    "<dict>... <key>staged</key><string>left</string> ...</dict>\n"
    "<dict>... <key>staged</key><string>right</string> ...</dict>",
    "<dict>... <key>staged-left</key><string>1</string> ...</dict>\n"
    "<dict>... <key>staged-right</key><string>1</string> ...</dict>",
};

}  // namespace fernwick::lab::LintRuleOf
