#include "fuzz/run_properties.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "driver/run.h"
#include "fuzz/hold.h"
#include "fuzz/standard_error.h"
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

void HoldArguments(const PropertyValue* value) {
  const auto* arguments = value == nullptr ? nullptr : value->AsArray();
  Hold(arguments != nullptr && !arguments->empty(), "a plan has arguments");
  Hold(std::ranges::all_of(*arguments, [](const auto& a) { return a.AsString().has_value(); }),
       "every argument is a text");
  Hold(arguments->front() == PropertyValue("/usr/sbin/hallow"), "the program is named first");
  Hold(IsTextEndingIn(arguments->back(), "-noreset"), "the options end the arguments");
}

// The keys that a plan may have further, and what is in them.
void HoldSettings(const Dictionary& plan) {
  std::size_t size = 3;
  if (const auto* set = plan.Find("SetNVRAM")) {
    ++size;
    Hold(set->AsDictionary() && set->AsDictionary()->Size() > 0, "something is to be set");
  }
  if (const auto* clear = plan.Find("ClearNVRAM")) {
    ++size;
    Hold(clear->AsArray() && !clear->AsArray()->empty(), "something is to be cleared");
  }
  Hold(plan.Size() == size, "a plan has no other keys");
}

void HoldPlan(std::string_view text) {
  const auto reading = ReadPropertyList(std::string(text));
  Hold(reading.value && reading.serialisation == Serialisation::Xml, "a plan can be read");
  Hold(WriteXmlPropertyList(*reading.value) + "\n" == text, "a plan is one list and a newline");
  const auto* plan = reading.value->AsDictionary();
  Hold(plan != nullptr, "a plan is a dictionary");
  const auto* version = plan->Find("Version");
  Hold(version != nullptr && *version == PropertyValue(1), "a plan has version 1");
  const auto* priority = plan->Find("Priority");
  Hold(priority != nullptr && priority->AsInteger().has_value() &&
           *priority->AsInteger() <= Integer(0x7FFFFFFF),
       "a plan has a priority");
  HoldArguments(plan->Find("HallowArguments"));
  HoldSettings(*plan);
}

std::string StatusLine(int status) {
  return "\n\nExit status: " + std::to_string(status) + "\n";
}

void HoldQuiet(const RunOutcome& outcome, const RunOutcome& verbose) {
  if (outcome.status != ExitStatus::PlanPrinted) {
    return Hold(outcome.standardOutput.empty(), "without a plan nothing is printed");
  }
  HoldPlan(outcome.standardOutput);
  Hold(verbose.standardOutput.ends_with("\n\nResulting Kestrel Plist:\n\n" +
                                        outcome.standardOutput + StatusLine(outcome.status)),
       "the verbose run prints the same plan");
}

}  // namespace

RunOutcome RunTool(const Recording& recording, const std::vector<std::string>& arguments) {
  TakeStandardError();
  const testing::CommandLine commandLine(arguments);
  RecordedRegistry registry(recording);
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = open_memstream(&text, &size);
  RunOutcome outcome;
  outcome.status = Run(commandLine.Count(), commandLine.Vector(), registry, stream);
  std::fclose(stream);
  outcome.standardOutput.assign(text, size);
  std::free(text);
  outcome.standardError = TakeStandardError();
  return outcome;
}

void HoldOutcomes(const RunOutcome& outcome, const RunOutcome& verbose, bool isBypassed) {
  Hold(verbose.status == outcome.status, "being verbose changes no status");
  Hold(verbose.standardError == outcome.standardError, "and nothing on standard error");
  if (isBypassed) {
    Hold(outcome == RunOutcome{ExitStatus::PlanPrinted, std::string(BypassLine), ""},
         "a bypassed run prints its line alone");
    return Hold(verbose == outcome, "also when it is to be verbose");
  }
  Hold(outcome.status == ExitStatus::PlanPrinted || outcome.status == ExitStatus::BadCommandLine ||
           outcome.status == ExitStatus::NoMatches,
       "a status is one of the table");
  Hold(verbose.standardOutput.ends_with(StatusLine(verbose.status)), "a verbose run ends so");
  if (outcome != verbose) HoldQuiet(outcome, verbose);
}

}  // namespace fernwick::fuzz
