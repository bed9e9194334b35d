#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/json_reading.h"
#include "lab/support/messages.h"
#include "lab/survey/batch.h"
#include "lab/survey/coverage/coverage_output.h"
#include "lab/survey/settle/settle_output.h"
#include "lab/survey/shards/merged_rows.h"
#include "lab/survey/shards/payload_hash.h"
#include "lab/survey/survey_output.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Puts the results of all shards of a survey, a coverage or a settling together, and prints "
    "what one run over all computers prints.";

constexpr char Footer[] =
    "A RESULT is what \"survey --format ndjson\", \"coverage\" or \"settle --format ndjson\"\n"
    "print with --shard K/N. All N shards are needed, each once and whole, of the same payload,\n"
    "options and selection; what is missing is named. All results are open at once, and memory\n"
    "has a row of each.\n"
    "\n"
    "The options are those of the verb: for a survey --format table, ndjson, csv or junit,\n"
    "--wide, --expect, --update and --fail-on; for a settling --format text or ndjson and\n"
    "--fail-on; for a coverage --format text or json, --threshold, and the payload, of which\n"
    "the configurations are printed.\n"
    "\n"
    "Status: 65 when the results are not all shards of one run; otherwise as of one run.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab merge --format csv 1.ndjson 2.ndjson\n";

struct MergeOptions {
  std::vector<std::string> results;
  std::optional<std::string> format = {};
  std::optional<std::string> payload = {};
  SurveyOutput survey = {};
  std::optional<std::size_t> threshold = {};
};

CommandLine CommandLineOf(MergeOptions& into) {
  return {.verb = "merge",
          .description = Description,
          .footer = Footer,
          .arguments = {
              {.name = "RESULT",
               .target = &into.results,
               .help = "the results of all shards, in any order",
               .minCount = 1,
               .valueName = ""},
              {.name = "--format",
               .target = &into.format,
               .help = "one of the verb's formats",
               .valueName = "FORMAT",
               .choices = {"table", "ndjson", "csv", "junit", "text", "json"}},
              {.name = "--wide",
               .target = &into.survey.isWide,
               .help = "do not limit the columns of the table to 60 characters"},
              {.name = "--expect",
               .target = &into.survey.expectation,
               .help = "print the differences from a survey saved as ndjson",
               .valueName = "FILE"},
              {.name = "--update",
               .target = &into.survey.updates,
               .help = "save this survey as the file of --expect"},
              {.name = "--fail-on",
               .target = &into.survey.failOnList,
               .help = "status 1 when a computer is of any of these classes or outcomes",
               .valueName = "CLASS,..."},
              {.name = "-p,--payload",
               .target = &into.payload,
               .help = "the payload directory, for a coverage",
               .valueName = "PAYLOAD"},
              {.name = "--threshold",
               .target = Percentage{&into.threshold},
               .help = "status 1 when less than so many percent are matched",
               .valueName = "PERCENT"},
          }};
}

int RefuseUsage(const std::string& error) {
  PrintError(error + "; see fernwick-lab merge --help");
  return LabStatus::BadUsage;
}

// Calls `add` with each row, until it returns false because the row is not one of the verb. Returns
// as AddSurveyRows.
template <typename Add>
int ForEachRow(MergedRows& rows, Console& console, Add add) {
  for (;;) {
    const auto row = rows.Next();
    if (!row) return PrintError(row.Error());
    if (!*row) return LabStatus::Done;
    if (!add(**row)) {
      PrintError("the computer of index " + std::to_string((*row)->index) +
                 " has a row of another kind");
      return LabStatus::MalformedInput;
    }
    console.Flush();
    if (console.OutputError() != 0) return FinishOutput(console);
  }
}

// Whether the row has what a survey's own rows have.
bool IsComplete(const SurveyRow& row) {
  if (!row.computerClass) return false;
  const bool isBlocked = row.computerClass == ComputerClass::Blocked;
  return (!isBlocked || row.miss) && (row.outcome != Outcome::Refused || row.status);
}

int MergeSurvey(const SurveyOutput& output, MergedRows& rows) {
  return PrintSurvey(output, [&](SurveyReport& report, Console& console, FirstRefusal& refusal) {
    return ForEachRow(rows, console, [&](const ShardRow& each) {
      const auto row = SurveyRowOf(each.row);
      if (!row || !IsComplete(*row)) return false;
      if (row->outcome == Outcome::Refused) refusal.Add(each.isNamed, *row->status);
      report.Add(*row, report.TextOf(*row));
      return true;
    });
  });
}

int MergeSettled(const SettleOutput& output, MergedRows& rows) {
  return PrintSettled(output, [&](const AddSettled& add, Console& console) {
    return ForEachRow(rows, console, [&](const ShardRow& each) {
      auto computer = SettledOf(each.row, each.isNamed);
      const auto& text = MemberOf(each.line, "text");
      if (!computer || !text.is_string()) return false;
      computer->text = output.format == "text" ? text.get<std::string>() : PrintJsonRow(each.row);
      add(*computer);
      return true;
    });
  });
}

int MergeCoverage(const MergeOptions& options, const CoverageOutput& output, MergedRows& rows) {
  const auto& header = rows.Header().options;
  const auto hash = PayloadHash(*options.payload);
  if (!hash) return PrintError(hash.Error());
  if (MemberOf(header, "payload") != *hash) {
    PrintError(*options.payload + ": this is not the payload of the results");
    return LabStatus::MalformedInput;
  }
  const bool bypassVersion = MemberOf(header, "bypassVersion") == true;
  const auto toolOptions = CoverageToolOptions(*options.payload, bypassVersion);
  if (!toolOptions) return LabStatus::UnreadableInput;
  return PrintCoverage(
      *toolOptions, output, [&](const AddCovered& add, CoveredPayload& payload, Console& console) {
        rows.addTotals = [&](const Json& totals) { return payload.AddCounts(totals); };
        return ForEachRow(rows, console, [&](const ShardRow& each) {
          const auto recording = CoveredRecordingOf(each.row);
          if (recording) add(*recording, each.isNamed);
          return recording.has_value();
        });
      });
}

// What a verb's results can be printed as, the default first.
struct MergedVerb {
  std::string_view name;
  std::vector<std::string_view> formats;
};

const MergedVerb MergedVerbs[] = {{"survey", {"table", "ndjson", "csv", "junit"}},
                                  {"settle", {"text", "ndjson"}},
                                  {"coverage", {"text", "json"}}};

// An option that the verb does not have; empty when it has all.
std::string OtherOption(std::string_view verb, const MergeOptions& options) {
  const auto& survey = options.survey;
  const bool isSurvey = verb == "survey";
  const bool isCoverage = verb == "coverage";
  if (survey.isWide && !isSurvey) return "--wide";
  if (survey.expectation && !isSurvey) return "--expect";
  if (survey.updates && !isSurvey) return "--update";
  if (survey.failOnList && isCoverage) return "--fail-on";
  if (options.payload && !isCoverage) return "--payload";
  return options.threshold && !isCoverage ? "--threshold" : "";
}

int MergeAs(const MergedVerb& verb, MergeOptions& options, MergedRows& rows) {
  const auto format = options.format.value_or(std::string(verb.formats.front()));
  const auto name = std::string(verb.name);
  if (std::ranges::find(verb.formats, format) == verb.formats.end()) {
    return RefuseUsage("--format " + format + " is not a format of " + name);
  }
  const auto other = OtherOption(verb.name, options);
  if (!other.empty()) return RefuseUsage(other + " is not an option for results of " + name);
  if (name == "survey") {
    options.survey.format = format;
    const auto error = CheckSurveyOutput(options.survey);
    return error.empty() ? MergeSurvey(options.survey, rows) : RefuseUsage(error);
  }
  if (name == "settle") {
    SettleOutput output = {.format = format, .failOnList = options.survey.failOnList};
    const auto error = ReadSettleFailOn(output);
    output.changes = StringsOf(MemberOf(rows.Header().options, "changes")).value_or(output.changes);
    return error.empty() ? MergeSettled(output, rows) : RefuseUsage(error);
  }
  if (!options.payload) return RefuseUsage("results of coverage need --payload");
  if (!IsPayload(*options.payload)) return LabStatus::UnreadableInput;
  return MergeCoverage(options, {.format = format, .threshold = options.threshold}, rows);
}

}  // namespace

VerbEnd MergeVerb(int argumentCount, char* const arguments[]) {
  MergeOptions options;
  const auto line = CommandLineOf(options);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  auto rows = MergedRows::Open(options.results);
  if (!rows) return PrintError(rows.Error());
  const auto* const verb = std::ranges::find(MergedVerbs, rows->Header().verb, &MergedVerb::name);
  if (verb == std::end(MergedVerbs)) {
    PrintError(options.results.front() + ": there is no such verb as that of its first line");
    return LabStatus::MalformedInput;
  }
  return MergeAs(*verb, options, *rows);
}

}  // namespace fernwick::lab
