#include <string>
#include <string_view>

#include "driver/process.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

// What the program can do. Everything about a verb is here and in its own file.
struct Verb {
  std::string_view name;
  const char* summary;
  VerbEnd (*run)(int argumentCount, char* const arguments[]);
};

constexpr Verb Verbs[] = {
    {"lint", "look for mistakes in the configurations of a payload", Lint},
    {"replay", "run the tool over a recorded computer", Replay},
    {"explain", "tell why the personalities of a payload match or not", ExplainVerb},
    {"show", "show what a recorded computer holds and what the tool sees of it", Show},
    {"convert", "write a recorded computer in another serialisation", Convert},
    {"redact", "write recorded computers without what identifies them", Redact},
    {"survey", "run the tool over many recorded computers, a row for each", Survey},
    {"diff", "tell which recorded computers two payloads treat differently", Diff},
};

std::string Usage() {
  std::string text = "usage: fernwick-lab VERB [ARGUMENT...]\n\nverbs:\n";
  for (const auto& verb : Verbs) {
    auto name = std::string(verb.name);
    name.resize(11, ' ');
    text.append("  ").append(name).append(verb.summary).append("\n");
  }
  return text + "\n\"fernwick-lab VERB --help\" explains one.\n";
}

VerbEnd Main(int argumentCount, char* const arguments[]) {
  if (argumentCount < 2) {
    ProcessConsole().WriteError(Usage());
    return LabStatus::BadUsage;
  }
  const std::string_view name = arguments[1];
  if (name == "--help") return PrintResult(Usage());
  for (const auto& verb : Verbs) {
    if (verb.name == name) return verb.run(argumentCount - 2, arguments + 2);
  }
  PrintError("there is no verb \"" + std::string(name) + "\"; see fernwick-lab --help");
  return LabStatus::BadUsage;
}

// The library that takes command lines apart allocates before main begins, and memory may run out
// even there.
struct EndWhenOutOfMemoryFromTheStart {
  EndWhenOutOfMemoryFromTheStart() { EndWhenOutOfMemory(LabStatus::OutOfMemory); }
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
