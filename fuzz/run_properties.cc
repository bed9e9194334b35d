#include "fuzz/run_properties.h"

#include <algorithm>
#include <string_view>

#include "fuzz/require.h"
#include "testing/command_line.h"
#include "value/property_list_reader.h"
#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

constexpr std::string_view BypassLine =
    "USB-C Updates bypassed because fernwick_bypass_usbc_updates boot arg was set\n";

bool IsTextEndingIn(const PropertyValue& value, std::string_view end) {
  const auto text = value.AsString();
  return text && text->ends_with(end);
}

void CheckArguments(const PropertyValue* value) {
  const auto arguments = value == nullptr ? std::nullopt : value->AsArray();
  Require(arguments && !arguments->empty(), "a plan has arguments");
  Require(std::ranges::all_of(*arguments, [](const auto& a) { return a.AsString().has_value(); }),
          "every argument is a text");
  Require((*arguments)[0] == PropertyValue("/usr/sbin/hallow"), "the program is named first");
  Require(IsTextEndingIn((*arguments)[arguments->size() - 1], "-noreset"),
          "the options end the arguments");
}

// The keys that a plan may have further, and what is in them.
void CheckSettings(Dictionary plan) {
  std::size_t size = 3;
  if (const auto* set = plan.Find("SetNVRAM")) {
    ++size;
    Require(set->AsDictionary() && set->AsDictionary()->Size() > 0, "something is to be set");
  }
  if (const auto* clear = plan.Find("ClearNVRAM")) {
    ++size;
    Require(clear->AsArray() && !clear->AsArray()->empty(), "something is to be cleared");
  }
  Require(plan.Size() == size, "a plan has no other keys");
}

void CheckPlan(std::string_view text) {
  const auto reading = ReadPropertyList(std::string(text));
  Require(reading.list && reading.serialisation == Serialisation::Xml, "a plan can be read");
  Require(WriteXmlPropertyList(reading.list->value) + "\n" == text,
          "a plan is one list and a newline");
  const auto plan = reading.list->value.AsDictionary();
  Require(plan.has_value(), "a plan is a dictionary");
  const auto* version = plan->Find("Version");
  Require(version != nullptr && *version == PropertyValue(1), "a plan has version 1");
  const auto* priority = plan->Find("Priority");
  Require(priority != nullptr && priority->AsInteger().has_value() &&
              *priority->AsInteger() <= Integer(0x7FFFFFFF),
          "a plan has a priority");
  CheckArguments(plan->Find("HallowArguments"));
  CheckSettings(*plan);
}

std::string StatusLine(int status) {
  return "\n\nExit status: " + std::to_string(status) + "\n";
}

void CheckQuiet(const RunOutcome& outcome, const RunOutcome& verbose) {
  if (outcome.status != ExitStatus::PlanPrinted) {
    return Require(outcome.standardOutput.empty(), "without a plan nothing is printed");
  }
  CheckPlan(outcome.standardOutput);
  Require(verbose.standardOutput.ends_with("\n\nResulting Kestrel Plist:\n\n" +
                                           outcome.standardOutput + StatusLine(outcome.status)),
          "the verbose run prints the same plan");
}

// After a fault the status has no meaning, and only what was flushed before it was printed.
void CheckFaults(const RunOutcome& outcome, const RunOutcome& verbose) {
  if (outcome.fault) {
    Require(verbose.fault == outcome.fault, "being verbose avoids no fault");
    // Unless it is verbose itself.
    Require(outcome.standardOutput.empty() || outcome == verbose, "a fault leaves no plan");
  } else {
    // The listing may collect an inventory that the configuration does not need.
    Require(verbose.fault == Fault::MissingUid, "the listing meets no other fault");
  }
}

}  // namespace

RunOutcome OutcomeOf(const RunResult& result, const StringConsole& console) {
  return {result.status, result.fault, console.Output(), console.Error()};
}

Options OptionsOf(const std::vector<std::string>& arguments) {
  const testing::CommandLine line(arguments);
  return ParseOptions(line.Count(), line.Vector());
}

RunOutcome RunTool(Registry& registry, const Options& options, RunTrace* trace) {
  StringConsole console;
  return OutcomeOf(Run(options, registry, console, trace), console);
}

void CheckOutcomes(const RunOutcome& outcome, const RunOutcome& verbose, bool bypassesUpdates) {
  if (outcome.fault || verbose.fault) return CheckFaults(outcome, verbose);
  Require(verbose.status == outcome.status, "being verbose changes no status");
  Require(verbose.standardError == outcome.standardError, "and nothing on standard error");
  if (bypassesUpdates) {
    Require(outcome == RunOutcome{.standardOutput = std::string(BypassLine)},
            "a bypassed run prints its line alone");
    return Require(verbose == outcome, "also when it is to be verbose");
  }
  Require(outcome.status == ExitStatus::PlanPrinted ||
              outcome.status == ExitStatus::BadCommandLine ||
              outcome.status == ExitStatus::NoMatches,
          "a status is one of the table");
  Require(verbose.standardOutput.ends_with(StatusLine(verbose.status)), "a verbose run ends so");
  if (outcome != verbose) CheckQuiet(outcome, verbose);
}

}  // namespace fernwick::fuzz
