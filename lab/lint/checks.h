#pragma once

#include <string>
#include <string_view>

#include "lab/lint/finding.h"
#include "lab/lint/subject.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

// What lint looks for in a configuration, most of it in one personality at a time. Defined in
// shape.cc, keys.cc, similar_keys.cc, values.cc, doubtful_values.cc, versions.cc, plan.cc and
// nvram_names.cc, in this order.

/// The top of the configuration and the shape of what is under its types.
void LintShape(const LintSubject& subject, ConfigurationFindings& findings);

/// What is wrong with the value of a type that has another shape than the type, as a sentence that
/// names the type: nothing matches then. Empty when it has that shape.
std::string WrongShapeText(const LocatedType& type);

/// Keys that occur twice in any dictionary of the configuration.
void LintDuplicateKeys(const ValueLocation& location, ConfigurationFindings& findings);

/// The keys of a personality: which it has that are not read, and which it lacks.
void LintKeys(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// The key of personalities that an unknown key may be meant for, because it is the name of the
/// registry property from which that key's value comes ("UID" for "Ridge UID"), or consists of the
/// same words, of some of them, or of more ("Max Version" for "Existing Max Version"). Case, blanks
/// and abbreviations do not matter. Prefers keys that the type reads; empty when there is none.
std::string_view SimilarKey(std::string_view key, TypeSet type);

/// Whether it is the name of a property of controllers in the registry.
bool IsRegistryProperty(std::string_view key);

/// Values with which nothing matches under their key.
void LintValues(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// Values that can match but are probably not what is meant: UUIDs and model names in another form
/// than the registry's, booleans, reals for a unique id, repeated elements.
void LintDoubtfulValues(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// Whether any installed version lies in the personality's window, and whether its maximum is what
/// it seems.
void LintVersions(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// Whether a controller can report the personality's "Version" once it is installed.
void LintSettling(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// Whether any board revision lies within the personality's bounds.
void LintBoardRevisions(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// How the plan reads the personality's "Priority".
void LintPriority(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// How the plan reads its "Firmware Mode", where it comes from the personality.
void LintFirmwareMode(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// The shapes of the personality's NVRAM settings.
void LintNvramShapes(const LocatedPersonality& personality, ConfigurationFindings& findings);

/// The names of the NVRAM variables that the personality sets and clears: those through which the
/// plan passes its images, the bypass switches, "boot-args", and empty ones.
void LintNvramNames(const LocatedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
