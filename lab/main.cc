#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "driver/process.h"
#include "lab/support/messages.h"
#include "lab/support/spelling.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

// One row for each verb. Its implementation is in a file of its name.
struct Verb {
  std::string_view name;
  const char* summary;
  VerbEnd (*run)(int argumentCount, char* const arguments[]);
};

constexpr Verb Verbs[] = {
    {"lint", "look for mistakes in the configurations of a payload", LintVerb},
    {"replay", "run the tool over a recorded computer", ReplayVerb},
    {"explain", "explain why the personalities of a payload match or not", ExplainVerb},
    {"show", "print the registry of a recorded computer and what the tool reads of it", ShowVerb},
    {"convert", "write a property list in another serialisation", ConvertVerb},
    {"redact", "write recorded computers without what identifies them", RedactVerb},
    {"record", "write this computer, or one whose files were copied, as a recording", RecordVerb},
    {"import", "make a recording of registry dumps", ImportVerb},
    {"survey", "run the tool over many recorded computers, a row for each", SurveyVerb},
    {"coverage", "print what recorded computers exercise of a payload", CoverageVerb},
    {"settle", "print the versions of recorded computers after every plan is carried out",
     SettleVerb},
    {"merge", "put the results of all shards together", MergeVerb},
    {"diff", "print which recorded computers two payloads treat differently", DiffVerb},
    {"sample", "write a recording that a personality of a payload matches", SampleVerb},
    {"draft", "print a configuration that matches the controllers of recorded computers",
     DraftVerb},
    {"report", "write a page about what a payload does for recorded computers", ReportVerb},
};

std::string Usage() {
  std::string text =
      "usage: fernwick-lab VERB [ARGUMENT...]\n"
      "       fernwick-lab help [VERB]\n"
      "       fernwick-lab --version\n"
      "\nverbs:\n";
  for (const auto& verb : Verbs) {
    auto name = std::string(verb.name);
    name.resize(11, ' ');
    text.append("  ").append(name).append(verb.summary).append("\n");
  }
  return text + "\n\"fernwick-lab help VERB\" explains one.\n";
}

const Verb* FindVerb(std::string_view name) {
  const auto* verb = std::ranges::find(Verbs, name, &Verb::name);
  return verb == std::end(Verbs) ? nullptr : verb;
}

int RefuseVerb(std::string_view name) {
  std::vector<std::string_view> known = {"help"};
  for (const auto& verb : Verbs) known.push_back(verb.name);
  const bool isOption = name.starts_with('-');
  if (isOption) known = {"--help", "--version"};
  PrintError(std::string(isOption ? "there is no option \"" : "there is no verb \"") +
             std::string(name) + "\"" + SuggestionFor(name, known) + "; see fernwick-lab --help");
  return LabStatus::BadUsage;
}

bool IsHelp(std::string_view word) {
  return word == "help" || word == "--help" || word == "-h";
}

// `arguments` are those after "help".
VerbEnd Help(int argumentCount, char* const arguments[]) {
  if (argumentCount == 0 || IsHelp(arguments[0])) return PrintResult(Usage());
  const auto* verb = FindVerb(arguments[0]);
  if (verb == nullptr) return RefuseVerb(arguments[0]);
  if (argumentCount > 1) {
    PrintError("the operand \"" + std::string(arguments[1]) +
               "\" is not expected; see fernwick-lab --help");
    return LabStatus::BadUsage;
  }
  char option[] = "--help";
  char* const help[] = {option, nullptr};
  return verb->run(1, help);
}

VerbEnd Main(int argumentCount, char* const arguments[]) {
  if (argumentCount < 2) {
    ProcessConsole().WriteError(Usage());
    return LabStatus::BadUsage;
  }
  const std::string_view name = arguments[1];
  if (name == "--version") return PrintResult("fernwick-lab " FERNWICK_VERSION "\n");
  if (name == "help") return Help(argumentCount - 2, arguments + 2);
  if (IsHelp(name)) return PrintResult(Usage());
  const auto* verb = FindVerb(name);
  return verb == nullptr ? RefuseVerb(name) : verb->run(argumentCount - 2, arguments + 2);
}

// The library that parses command lines allocates before main begins, and memory may run out even
// there.
struct EndWhenOutOfMemoryFromTheStart {
  EndWhenOutOfMemoryFromTheStart() { EndWhenOutOfMemory(LabStatus::OutOfResources); }
};
[[gnu::init_priority(101)]] const EndWhenOutOfMemoryFromTheStart endWhenOutOfMemory;

}  // namespace
}  // namespace fernwick::lab

int main(int argc, char* argv[]) {
  fernwick::PrepareProcess();
  const auto end = fernwick::lab::Main(argc, argv);
  if (end.fault) fernwick::LogAndAbort(*end.fault);
  return end.status;
}
