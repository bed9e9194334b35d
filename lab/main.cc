#include <cstdio>
#include <string>
#include <string_view>

#include "driver/process.h"
#include "lab/exit_status.h"
#include "lab/messages.h"
#include "lab/replay.h"

namespace fernwick::lab {
namespace {

// What the program can do. Everything about a verb is told here and in its own file.
struct Verb {
  std::string_view name;
  const char* summary;
  const char* help;
  int (*run)(int argumentCount, char* const arguments[]);
};

constexpr Verb Verbs[] = {
    {"replay", "run the tool over a recorded computer", ReplayHelp, Replay},
};

void PrintUsage(std::FILE* stream) {
  std::fputs("usage: fernwick-lab VERB [ARGUMENT...]\n\nverbs:\n", stream);
  for (const auto& verb : Verbs) {
    std::fprintf(stream, "  %-10s %s\n", verb.name.data(), verb.summary);
  }
  std::fputs("\n\"fernwick-lab VERB --help\" explains one.\n", stream);
}

int RunVerb(const Verb& verb, int argumentCount, char* const arguments[]) {
  if (argumentCount > 0 && std::string_view(arguments[0]) == "--help") {
    std::fputs(verb.help, stdout);
    return LabStatus::Done;
  }
  return verb.run(argumentCount, arguments);
}

int Main(int argumentCount, char* const arguments[]) {
  if (argumentCount < 2) {
    PrintUsage(stderr);
    return LabStatus::BadUsage;
  }
  const std::string_view name = arguments[1];
  if (name == "--help") {
    PrintUsage(stdout);
    return LabStatus::Done;
  }
  for (const auto& verb : Verbs) {
    if (verb.name == name) return RunVerb(verb, argumentCount - 2, arguments + 2);
  }
  PrintError("there is no verb \"" + std::string(name) + "\"; see fernwick-lab --help");
  return LabStatus::BadUsage;
}

}  // namespace
}  // namespace fernwick::lab

int main(int argc, char* argv[]) {
  fernwick::PrepareProcess();
  return fernwick::lab::Main(argc, argv);
}
