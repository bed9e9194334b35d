#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for a payload and its files.

inline constexpr LintRule NoFernwickDirectory = {
    "no-fernwick-directory",
    Severity::Error,
    "the payload has no directory Fernwick/",
    "The tool looks for everything in the directory Fernwick/ of the payload that it is given. "
    "Without it no computer gets a plan.",
    "Name the directory that contains Fernwick/, not Fernwick/ itself or a directory above.",
    "fernwick-lab lint payload/Fernwick",
    "fernwick-lab lint payload",
};

inline constexpr LintRule NoBoards = {
    "no-boards",
    Severity::Warning,
    "the payload has no board directory",
    "Each board has a directory of its own in Fernwick/. A payload without one updates nothing.",
    "Make a directory named after the board identifier, with its Config.plist and its images.",
    "payload/Fernwick/PortFlash.efi",
    "payload/Fernwick/PortFlash.efi\npayload/Fernwick/Zed-42/Config.plist",
};

inline constexpr LintRule ImpossibleBoardId = {
    "impossible-board-id",
    Severity::Error,
    "the directory's name cannot be a board identifier",
    "A board identifier is text in UTF-8. A computer whose identifier is anything else counts as "
    "having none, so no computer reads a directory of such a name.",
    "Rename the directory to the board identifier, exactly and in UTF-8.",
    "payload/Fernwick/Zed-\\37742/Config.plist",
    "payload/Fernwick/Zed-42/Config.plist",
};

inline constexpr LintRule DoubtfulBoardId = {
    "doubtful-board-id",
    Severity::Warning,
    "the directory's name is unlike a board identifier",
    "A computer looks for the directory that has exactly its board identifier for a name, and "
    "identifiers are \"Zed-\" and upper-case hexadecimal digits. A copy, a backup, the letter O "
    "for a zero, lower case, a blank or a missing prefix leave the board without updates.",
    "Rename the directory to the identifier, or move a copy out of the payload.",
    "payload/Fernwick/Zed-1AO5/Config.plist",
    "payload/Fernwick/Zed-1A05/Config.plist",
};

inline constexpr LintRule SameBoardTwice = {
    "same-board-twice",
    Severity::Warning,
    "two board directories differ only in leading zeros",
    "Both names are the same number. A computer looks for exactly one of them.",
    "Keep the one that is the board's identifier.",
    "payload/Fernwick/Zed-0A05/Config.plist\npayload/Fernwick/Zed-A05/Config.plist",
    "payload/Fernwick/Zed-0A05/Config.plist",
};

inline constexpr LintRule NestedBoard = {
    "nested-board",
    Severity::Error,
    "a board directory is inside another one",
    "Board directories are looked for in Fernwick/ only, not in its sub-directories.",
    "Move the directory into Fernwick/.",
    "payload/Fernwick/Zed-42/Zed-43/Config.plist",
    "payload/Fernwick/Zed-43/Config.plist",
};

inline constexpr LintRule NoConfiguration = {
    "no-configuration",
    Severity::Error,
    "the board directory has no Config.plist",
    "Without its configuration the board gets no plan, whatever images are beside it. The name is "
    "exact, letter case included.",
    "Add Config.plist, or remove the directory when the board is not supported.",
    "payload/Fernwick/Zed-42/config.plist",
    "payload/Fernwick/Zed-42/Config.plist",
};

inline constexpr LintRule UnreadableFile = {
    "unreadable-file",
    Severity::Error,
    "a file or directory of the payload cannot be read",
    "What cannot be read here is not read on the computer either: without its configuration the "
    "board gets no plan, without its image the flashing fails.",
    "Set the permissions, and make sure that Config.plist is a file.",
    "payload/Fernwick/Zed-42/Config.plist/",
    "payload/Fernwick/Zed-42/Config.plist",
};

inline constexpr LintRule MalformedPropertyList = {
    "malformed-property-list",
    Severity::Error,
    "the configuration is not a property list",
    "A configuration with a fault is refused whole: the board gets no plan. The finding is where "
    "reading stopped; the fault may begin a little before.",
    "Fix the fault. Do not edit XML by hand where a tool can write it.",
    "<dict><key>USBC</key><array></dict>",
    "<dict><key>USBC</key><array></array></dict>",
};

}  // namespace fernwick::lab::LintRuleOf
