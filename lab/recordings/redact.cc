#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "lab/recordings/identifiers.h"
#include "lab/recordings/recording_file.h"
#include "lab/recordings/redaction.h"
#include "lab/recordings/tool_properties.h"
#include "lab/support/command_line.h"
#include "lab/support/input_file.h"
#include "lab/support/messages.h"
#include "lab/support/spelling.h"
#include "lab/verbs.h"
#include "registry/recording_reader.h"

namespace fernwick::lab {
namespace {

namespace fs = std::filesystem;

constexpr char Description[] =
    "Writes recordings that can be shared. Properties that the tool does not read are dropped. "
    "Unique ids, UUIDs, serial numbers and hardware addresses are replaced by pseudonyms, also "
    "inside other texts and in names: the same for equal values, in all recordings of one command, "
    "of the same kind and with the same low four bits, so that matching is unchanged except "
    "against those values. Prints what was replaced, kept and dropped. One recording goes to the "
    "file OUT; several, or one when OUT is a directory, go into it under their own names. \"-\" is "
    "standard input and standard output; the report then goes to standard error.";

constexpr char Example[] =
    "Example:\n  fernwick-lab redact desk.registry.plist lap.registry.plist shared/ --key owner\n";

struct RedactArguments {
  std::vector<std::string> paths;  // the last one is OUT
  std::vector<std::string> replacedKeys;
  std::vector<std::string> keptKeys;
  bool keepsAll = false;
  bool force = false;
};

// A recording and where its redacted form goes.
struct Job {
  std::string path;
  std::string out;
};

// Empty after a line on standard error when the files cannot go there.
std::vector<Job> PlanJobs(const std::vector<std::string>& paths, const std::string& out) {
  std::error_code error;  // a path that cannot be inspected is not a directory; writing there fails
  const bool intoDirectory = fs::is_directory(out, error);
  if (!intoDirectory && paths.size() > 1) {
    PrintError(out + ": several recordings need a directory to go to");
    return {};
  }
  std::vector<Job> jobs;
  std::set<std::string> outputs;
  for (const auto& path : paths) {
    if (path == "-" && intoDirectory) {
      PrintError("standard input has no name for a file in " + out);
      return {};
    }
    auto target = intoDirectory ? (fs::path(out) / fs::path(path).filename()).string() : out;
    if (!outputs.insert(target).second) {
      PrintError(target + ": two recordings of that name would go there");
      return {};
    }
    jobs.push_back({path, std::move(target)});
  }
  return jobs;
}

// Before anything is written: no output may be in the way and, of several recordings, each must be
// well formed.
int CheckAll(const std::vector<Job>& jobs, IfExists ifExists) {
  for (const auto& job : jobs) {
    if (const int status = CheckOutput(job.out, ifExists); status != LabStatus::Done) return status;
    if (jobs.size() == 1) break;  // which may be standard input, and is read once
    const auto recording = LoadRecording(job.path);
    if (!recording) return PrintError(job.path, recording.Error());
  }
  return LabStatus::Done;
}

// A pseudonym for a value that the tool decides by changes what it decides.
int CheckReplacedKeys(const RedactArguments& arguments) {
  if (arguments.force) return LabStatus::Done;
  for (const auto& key : arguments.replacedKeys) {
    if (!ToolReads(key) || IdentifiesComputer(key)) continue;
    PrintError("--key \"" + key +
               "\": the tool reads this property, so it would decide differently; --force replaces "
               "it all the same");
    return LabStatus::BadUsage;
  }
  return LabStatus::Done;
}

void Add(const PropertyCounts& counts, PropertyCounts& sum) {
  for (const auto& [key, count] : counts) sum[key] += count;
}

std::string Lines(const std::string& label, const PropertyCounts& counts) {
  std::string text;
  for (const auto& [key, count] : counts) {
    text += label + " \"" + PrintableText(key) + "\": " + std::to_string(count) + "\n";
  }
  return text;
}

std::string Line(const std::string& label, std::size_t count) {
  return count == 0 ? "" : label + ": " + std::to_string(count) + "\n";
}

// Redacts one recording after the other, with the same pseudonyms.
class Redaction {
 public:
  explicit Redaction(const RedactArguments& arguments)
      : rules_{.replaced = {arguments.replacedKeys.begin(), arguments.replacedKeys.end()},
               .kept = {arguments.keptKeys.begin(), arguments.keptKeys.end()},
               .keepsAll = arguments.keepsAll} {}

  int Write(const Job& job, IfExists ifExists) {
    Serialisation form;
    const auto recording = LoadRecordingOperand(job.path, &form);
    if (!recording) return PrintError(InputName(job.path), recording.Error());
    auto redacted = RedactRecording(recording->list.value, rules_, pseudonyms_);
    const auto check = InterpretRecording(std::move(redacted.list));
    if (!check) {
      return PrintError(InputName(job.path) + ": cannot be redacted",
                        {check.Error(), LabStatus::MalformedInput});
    }
    Add(redacted.counts.replaced, counts_.replaced);
    Add(redacted.counts.kept, counts_.kept);
    Add(redacted.counts.dropped, counts_.dropped);
    counts_.names += redacted.counts.names;
    counts_.texts += redacted.counts.texts;
    return WritePropertyList(job.out, check->list.value, form, ifExists);
  }

  std::string Report() const {
    const auto text = Lines("replaced", counts_.replaced) +
                      Line("replaced inside names", counts_.names) +
                      Line("replaced inside other texts", counts_.texts);
    return (text.empty() ? "nothing to replace\n" : text) + Lines("kept", counts_.kept) +
           Lines("dropped", counts_.dropped);
  }

  // A key of the command line without effect is probably misspelt.
  void PrintWarnings() const {
    for (const auto& key : rules_.replaced) {
      if (!counts_.replaced.contains(key)) Warn("--key \"" + key + "\" replaced nothing", key);
    }
    for (const auto& key : rules_.kept) {
      const bool isThere = counts_.kept.contains(key) || counts_.replaced.contains(key);
      if (!isThere) Warn("--keep \"" + key + "\" kept nothing", key);
    }
  }

 private:
  void Warn(const std::string& message, const std::string& key) const {
    std::vector<std::string_view> names;
    for (const auto* counts : {&counts_.replaced, &counts_.kept, &counts_.dropped}) {
      for (const auto& [name, count] : *counts) {
        if (name != key) names.push_back(name);
      }
    }
    PrintError("warning: " + message + SuggestionFor(key, names));
  }

  RedactionRules rules_;
  Pseudonyms pseudonyms_;
  RedactionCounts counts_;
};

std::optional<int> Parse(RedactArguments& into, int argumentCount, char* const arguments[]) {
  const CommandLine line = {
      .verb = "redact",
      .description = Description,
      .footer = Example,
      .arguments = {
          {.name = "RECORDING",
           .target = &into.paths,
           .help = "the recorded computers, and last the file or directory OUT that they go to",
           .minCount = 2},
          {.name = "--key",
           .target = &into.replacedKeys,
           .help = "replace the properties of that name as well; may be repeated",
           .valueName = "KEY"},
          {.name = "--keep",
           .target = &into.keptKeys,
           .help =
               "keep the properties of that name, which the tool does not read; may be repeated",
           .valueName = "KEY"},
          {.name = "--keep-all", .target = &into.keepsAll, .help = "drop no property"},
          {.name = "--force",
           .target = &into.force,
           .help = "replace files that exist, and properties that the tool reads"},
      }};
  return ParseCommandLine(line, argumentCount, arguments);
}

}  // namespace

VerbEnd RedactVerb(int argumentCount, char* const arguments[]) {
  RedactArguments parsed;
  if (const auto status = Parse(parsed, argumentCount, arguments)) return *status;
  if (const int status = CheckReplacedKeys(parsed); status != LabStatus::Done) return status;
  const auto out = parsed.paths.back();
  parsed.paths.pop_back();
  const auto jobs = PlanJobs(parsed.paths, out);
  if (jobs.empty()) return LabStatus::BadUsage;
  const auto ifExists = parsed.force ? IfExists::Replace : IfExists::Refuse;
  if (const int status = CheckAll(jobs, ifExists); status != LabStatus::Done) return status;
  Redaction redaction(parsed);
  for (const auto& job : jobs) {
    const int status = redaction.Write(job, ifExists);
    if (status != LabStatus::Done) return status;
  }
  redaction.PrintWarnings();
  if (out != "-") return PrintResult(redaction.Report());
  ProcessConsole().WriteError(redaction.Report());
  return LabStatus::Done;
}

}  // namespace fernwick::lab
