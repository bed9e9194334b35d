#pragma once

#include <optional>

#include "platform/fault.h"

namespace fernwick::lab {

/// The end of a verb.
struct VerbEnd {
  VerbEnd(int exitStatus) : status(exitStatus) {}  // NOLINT: most have no fault

  int status;                       // of the process
  std::optional<Fault> fault = {};  // the process is to end abnormally instead
};

// The verbs, each in a file of its name in its subfolder. A verb is a function of its command line:
// `arguments` are those after the verb, with a null after the last. It prints its result on
// standard output, messages on standard error, and returns the process's exit status: one of
// LabStatus, except where it says otherwise.

/// Looks for mistakes in the configurations of a payload. The status is 1 when there is a finding
/// of the severity --fail-level or a higher one.
VerbEnd LintVerb(int argumentCount, char* const arguments[]);

/// Runs the tool over a recorded computer or this one. The end is the tool's own, once it runs.
VerbEnd ReplayVerb(int argumentCount, char* const arguments[]);

/// Prints why the personalities of a payload match or not. The status is LabStatus::Done whatever
/// the status of the run, as long as it is explained.
VerbEnd ExplainVerb(int argumentCount, char* const arguments[]);

/// Prints the registry of a recorded computer or this one as a tree, with the controllers marked,
/// and both inventories as the tool sees them.
VerbEnd ShowVerb(int argumentCount, char* const arguments[]);

/// Writes a property list, a recording or any other, in another serialisation, value for value.
VerbEnd ConvertVerb(int argumentCount, char* const arguments[]);

/// Writes recordings without what identifies the computers. Equal identifiers have equal pseudonyms
/// in all recordings of one command.
VerbEnd RedactVerb(int argumentCount, char* const arguments[]);

/// Writes the computer that this runs on, or one whose files were copied, as a recording.
VerbEnd RecordVerb(int argumentCount, char* const arguments[]);

/// Writes registry dumps, nested dictionaries with keys of any name, as a recording.
VerbEnd ImportVerb(int argumentCount, char* const arguments[]);

/// Runs the tool over every selected computer and prints a row for each.
VerbEnd SurveyVerb(int argumentCount, char* const arguments[]);

/// Prints what recorded computers exercise of a payload. The status is 1 when that is less than
/// --threshold.
VerbEnd CoverageVerb(int argumentCount, char* const arguments[]);

/// Prints the state of every selected computer after the plans for it are carried out. The status
/// is 1 when one never settles.
VerbEnd SettleVerb(int argumentCount, char* const arguments[]);

/// Puts the results of all shards of a survey, a coverage or a settling together. The status is
/// that of one run.
VerbEnd MergeVerb(int argumentCount, char* const arguments[]);

/// Prints which computers two payloads treat differently, how and why.
VerbEnd DiffVerb(int argumentCount, char* const arguments[]);

/// Writes recordings that personalities of a payload match. The status is 1 when there is none.
VerbEnd SampleVerb(int argumentCount, char* const arguments[]);

/// Prints a configuration whose personalities match the controllers of recorded computers and of no
/// excepted one. The status is 1 when there is none.
VerbEnd DraftVerb(int argumentCount, char* const arguments[]);

/// Writes a page about what a payload does for every selected computer, for people.
VerbEnd ReportVerb(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
