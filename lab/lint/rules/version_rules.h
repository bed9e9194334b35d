#pragma once

#include "lab/lint/rules/rules.h"

namespace fernwick::lab::LintRuleOf {

/// The rules for what can match and what is reached.

inline constexpr LintRule VersionBoundsCrossed = {
    "version-bounds-crossed",
    Severity::Error,
    "the minimum of the installed version is above its maximum",
    "\"Existing Min Version\" and \"Existing Max Version\" are both inclusive. Crossed, they leave "
    "no installed version that may be updated.",
    "Exchange the two, or fix the one that is wrong.",
    "<key>Existing Min Version</key><integer>200</integer>\n"
    "<key>Existing Max Version</key><integer>150</integer>",
    "<key>Existing Min Version</key><integer>150</integer>\n"
    "<key>Existing Max Version</key><integer>200</integer>",
};

inline constexpr LintRule VersionNotAboveMinimum = {
    "version-not-above-minimum",
    Severity::Error,
    "\"Version\" is not above \"Existing Min Version\"",
    "Unless the version check is bypassed, the image must be newer than what is installed: "
    "installed < \"Version\". A minimum at or above it leaves nothing to update.",
    "Raise \"Version\" or lower \"Existing Min Version\".",
    "<key>Version</key><integer>200</integer>\n"
    "<key>Existing Min Version</key><integer>200</integer>",
    "<key>Version</key><integer>200</integer>\n"
    "<key>Existing Min Version</key><integer>150</integer>",
};

inline constexpr LintRule EmptyVersionWindow = {
    "empty-version-window",
    Severity::Error,
    "no installed version is in the window",
    "No version that a controller can have is between the bounds and below \"Version\". A "
    "Thunderbolt controller's are hundredths up to .63 with 0.000000001 added (41.05 is stored as "
    "41.050000001); a port's own are whole numbers from 0 on, and at an address other than 0 ports "
    "have only their own.",
    "Widen the window. Write a Thunderbolt maximum a little above the version that it is to "
    "include.",
    "<key>Existing Min Version</key><real>41.05</real>\n"
    "<key>Existing Max Version</key><real>41.05</real>",
    "<key>Existing Min Version</key><real>41.05</real>\n"
    "<key>Existing Max Version</key><real>41.051</real>",
};

inline constexpr LintRule MaximumJustMissed = {
    "maximum-just-missed",
    Severity::Warning,
    "the maximum excludes the version that it names",
    "The installed version of a Thunderbolt controller is stored with 0.000000001 added: 41.05 is "
    "41.050000001, and a maximum of 41.05 rejects it.",
    "Write a maximum a little above, but below the next hundredth.",
    "<key>Existing Max Version</key><real>41.05</real>",
    "<key>Existing Max Version</key><real>41.051</real>",
};

inline constexpr LintRule UnreportableVersion = {
    "unreportable-version",
    Severity::Error,
    "no controller reports this \"Version\", so the update never settles",
    "An update is planned as long as \"Version\" is above the installed version. A Thunderbolt "
    "controller reports two decimals, up to .63; a port without a Thunderbolt controller above it "
    "(every port at an address other than 0) reports a whole number; either has at most eight "
    "digits before the decimals. Whatever else is written is above what the image reports once it "
    "is installed, so it is installed again at every start.",
    "Write the version that the controller reports with the image.",
    "<key>Version</key><real>41.7</real>",
    "<key>Version</key><real>41.07</real>",
};

inline constexpr LintRule EmptyBoardRevisionRange = {
    "empty-board-revision-range",
    Severity::Error,
    "no board revision is within the bounds",
    "A board revision is a whole number from 0 to 255, and both bounds are inclusive.",
    "Exchange the bounds, or fix the one that is wrong.",
    "<key>MinBoardRevision</key><integer>4</integer>\n"
    "<key>MaxBoardRevision</key><integer>2</integer>",
    "<key>MinBoardRevision</key><integer>2</integer>\n"
    "<key>MaxBoardRevision</key><integer>4</integer>",
};

inline constexpr LintRule BoardRevisionOutOfRange = {
    "board-revision-out-of-range",
    Severity::Warning,
    "a bound is a board revision that no board has",
    "A board revision is a whole number from 0 to 255. A bound outside excludes nothing.",
    "Write the revision that is meant, or remove the bound.",
    "<key>MaxBoardRevision</key><integer>256</integer>",
    "<key>MaxBoardRevision</key><integer>25</integer>",
};

inline constexpr LintRule ShadowedPersonality = {
    "shadowed-personality",
    Severity::Warning,
    "an earlier personality accepts everything that this one accepts",
    "A controller gets the first personality of the array that fits it. Where an earlier one "
    "accepts every controller that a later one accepts, the later one is never used.",
    "Put the narrower personality first, narrow the earlier one, or remove the later one.",
    "<dict>... any RID ...</dict>\n<dict>... <key>RID</key><integer>1</integer> ...</dict>",
    "<dict>... <key>RID</key><integer>1</integer> ...</dict>\n<dict>... any RID ...</dict>",
};

inline constexpr LintRule VersionGap = {
    "version-gap",
    Severity::Warning,
    "between the steps of an upgrade are versions that none accepts",
    "Personalities of one type that accept the same controllers and differ in the window of the "
    "installed version are steps of one upgrade. A controller whose version is in none of the "
    "windows, but between two of them, is never updated.",
    "Let the window begin where the one before it ends. A step ends below its \"Version\" or at "
    "its \"Existing Max Version\".",
    "<dict>... \"Version\" 150 ...</dict>\n<dict>... \"Existing Min Version\" 160 ...</dict>",
    "<dict>... \"Version\" 150 ...</dict>\n<dict>... \"Existing Min Version\" 150 ...</dict>",
};

inline constexpr LintRule BoardRevisionGap = {
    "board-revision-gap",
    Severity::Warning,
    "board revisions between those of two personalities are left out",
    "Personalities of one type accept the same controllers on boards of some revisions and of "
    "later ones, but not of those between, which are never updated.",
    "Let the revisions begin where those before them end.",
    "<dict>... \"MaxBoardRevision\" 3 ...</dict>\n<dict>... \"MinBoardRevision\" 5 ...</dict>",
    "<dict>... \"MaxBoardRevision\" 3 ...</dict>\n<dict>... \"MinBoardRevision\" 4 ...</dict>",
};

inline constexpr LintRule TwoImagesForOneController = {
    "two-images-for-one-controller",
    Severity::Error,
    "personalities of two types plan two images for one controller",
    "Each type is matched separately. A controller that matches a LegacyThunderbolt and a "
    "Thunderbolt personality, or a LegacyUSBC and a USBC one, gets the images of both in one plan; "
    "which of them remains depends on their order.",
    "Keep one of the two, or let them differ in a key that both types read: the address, the "
    "silicon, or the window of the installed version.",
    "<key>LegacyUSBC</key><dict>... any \"Port Address\" ...</dict>\n"
    "<key>USBC</key><array><dict>... any \"Port Address\" ...</dict></array>",
    "<key>LegacyUSBC</key><dict>... \"Port Address\" 0x20 ...</dict>\n"
    "<key>USBC</key><array><dict>... \"Port Address\" 0x38 ...</dict></array>",
};

inline constexpr LintRule ShadowingNotExamined = {
    "shadowing-not-examined",
    Severity::Note,
    "too many personalities are alike to compare them all",
    "To find out whether a personality is shadowed, it is compared with the first 256 earlier ones "
    "that have the same value under the most selective key. Beyond that limit a personality may be "
    "shadowed without being reported.",
    "Nothing needs to be fixed. Put personalities that differ only in \"Version\" or its bounds "
    "into fewer ones with lists.",
    "300 personalities for the same silicon",
    "one personality with a list of the RIDs that it is for",
};

inline constexpr LintRule OverlapNotExamined = {
    "overlap-not-examined",
    Severity::Note,
    "too many personalities overlap to compare them all",
    "Two personalities may plan two images for one controller, decide by their order which image a "
    "controller gets, or use one NVRAM variable differently. Each is compared with at most 256 "
    "others that have the same value under the most selective key; beyond that limit such a pair "
    "may exist without being reported.",
    "Nothing needs to be fixed. Put personalities that differ only in \"Version\" or its bounds "
    "into fewer ones with lists.",
    "300 personalities of two types for the same silicon",
    "one personality with a list of the RIDs that it is for",
};

inline constexpr LintRule OrderDecidesImage = {
    "order-decides-image",
    Severity::Warning,
    "the order of two personalities decides which image a controller gets",
    "A controller gets the first personality of the array that it matches. Two personalities with "
    "different images accept the same controllers except for the lists of one key. The lists have "
    "a value in common, so a controller with that value never gets the image of the later one.",
    "Remove the value from the list of the personality for which it is not meant.",
    "<dict>... \"RID\" 0 and 1, \"Firmware\" left-200.bin ...</dict>\n"
    "<dict>... \"RID\" 1 and 2, \"Firmware\" right-200.bin ...</dict>",
    "<dict>... \"RID\" 0 and 1, \"Firmware\" left-200.bin ...</dict>\n"
    "<dict>... \"RID\" 2, \"Firmware\" right-200.bin ...</dict>",
};

}  // namespace fernwick::lab::LintRuleOf
