#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/draft/drafted_computers.h"
#include "lab/draft/drafting.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/batch.h"
#include "lab/verbs.h"
#include "value/unicode/utf8.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

// How many messages of one kind about controllers are printed at most.
constexpr std::size_t MaxMessages = 100;

constexpr char Description[] =
    "Prints a Config.plist whose personalities match the controllers of these computers and of "
    "none of the excepted ones: few personalities with few keys, which the checks of the tool have "
    "confirmed.";

std::string Footer() {
  return std::string(SelectionHelp) +
         "\n"
         "Without --type it is that of the controllers: USBC for ports, Thunderbolt for ports\n"
         "below a Thunderbolt controller, LegacyThunderbolt for Thunderbolt controllers without\n"
         "a port. It is needed where the computers have controllers of several types, as an\n"
         "image is for one.\n"
         "\n"
         "Keys that a personality may lack are used where an excepted controller needs them:\n"
         "first those that describe a model, then those of a position or a version. \"Port UUID\"\n"
         "and \"Ridge UID\", which are unique to one chip, select only controllers that no other\n"
         "keys distinguish. For up to 10 different controllers, and up to 4,096 excepted ones,\n"
         "the numbers of personalities and keys are minimal. With more than four million pairs\n"
         "of different controllers, wanted and excepted, there is no draft.\n"
         "\n"
         "Controllers that can match no personality, as their version is not older than\n"
         "VERSION, are named on standard error and left out, and so is what no run can use of a\n"
         "directory or an archive. Excepted computers of other boards are left out, too: they\n"
         "read another configuration.\n"
         "\n"
         "An update that would be installed again and again is refused: the controllers must be\n"
         "able to store VERSION, and ports below a Thunderbolt controller need --type\n"
         "Thunderbolt where the tool compares the version of that controller.\n"
         "\n"
         "The board revision, the installed version and the priority 50 are worth a look before\n"
         "the draft is used.\n"
         "\n"
         "Status: 0 printed; 1 there is no draft; 64 also a VERSION that cannot be stored; 65\n"
         "or 66 a named recording is not well formed, ends every run abnormally, or cannot be\n"
         "read.\n"
         "\n"
         "Example:\n"
         "  fernwick-lab draft desk.registry.plist --image ports-210.bin --version 210 --type "
         "USBC\n";
}

struct DraftOptions {
  BatchOptions batch;
  std::vector<std::string> excepted;
  std::string image;
  std::string version;
  std::string type;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], DraftOptions& options) {
  CommandLine line = {.verb = "draft",
                      .description = Description,
                      .footer = Footer(),
                      .arguments = {
                          {.name = "--image",
                           .target = &options.image,
                           .help = "the name of the firmware image in the board's directory",
                           .minCount = 1,
                           .valueName = "FILE"},
                          {.name = "--version",
                           .target = &options.version,
                           .help = "the version of the image",
                           .minCount = 1,
                           .valueName = "VERSION"},
                          {.name = "--type",
                           .target = &options.type,
                           .help = "the type of the personalities",
                           .valueName = "TYPE",
                           .choices = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC"}},
                          {.name = "--except",
                           .target = &options.excepted,
                           .help = "computers that are not to match, as RECORDING; may be repeated",
                           .valueName = "RECORDING"},
                      }};
  AddBatchOptions(line, options.batch);
  return ParseCommandLine(line, argumentCount, arguments);
}

// A decimal number, whole or not. Nullopt when it is none.
std::optional<PropertyValue> ParseVersion(std::string_view text) {
  const bool isPlain = !text.empty() && text.find_first_not_of("0123456789.") == npos;
  const auto* end = text.data() + text.size();
  std::uint64_t whole = 0;
  if (const auto [next, error] = std::from_chars(text.data(), end, whole);
      isPlain && error == std::errc() && next == end) {
    return whole;
  }
  double real = 0;
  const auto [next, error] = std::from_chars(text.data(), end, real);
  if (!isPlain || error != std::errc() || next != end) return std::nullopt;
  return real;
}

// What is wrong with the options; empty when nothing is.
std::string UsageError(const DraftOptions& options) {
  const auto& image = options.image;
  const bool isName = !image.empty() && image != "." && image != ".." && image != "Config.plist";
  if (!isName || image.find('/') != std::string::npos || FindInvalidText(image) != npos) {
    return "--image is the name of a file in the board's directory";
  }
  if (!ParseVersion(options.version)) return "--version is a decimal number";
  const auto reads = [](const std::vector<std::string>& paths) {
    return std::ranges::find(paths, "-") != paths.end();
  };
  return reads(options.batch.paths) && reads(options.excepted)
             ? "standard input cannot be both the recordings and those of --except"
             : "";
}

// Adds the computer of what was selected. One that no run can use is left out after a message,
// unless the command line names it.
BatchResult AddComputer(Selected selected, DraftSide side, DraftedComputers& computers) {
  const bool isNamed = selected.isNamed;
  auto computer = InspectComputer(std::move(selected));
  if (computer) {
    return std::function([&computers, side, computer = *std::move(computer)] {
      computers.Add(*computer, side);
      const auto unlisted = DescribeUnlisted(*computer);
      if (!unlisted.empty()) PrintError(unlisted);
    });
  }
  const auto& failure = computer.Error();
  if (isNamed || failure.status == LabStatus::OutOfResources) return failure;
  return std::function([message = failure.error.message] { PrintError("left out: " + message); });
}

// Adds all that is selected. Returns the status.
int AddComputers(const BatchOptions& options, DraftSide side, DraftedComputers& computers) {
  const auto work = [&](Selected selected) {
    return AddComputer(std::move(selected), side, computers);
  };
  ProcessConsole console;
  return RunBatch(options, work, console);
}

// Prints messages on standard error, of many only the first and how many there are.
void PrintFirst(const std::vector<std::string>& messages) {
  for (std::size_t i = 0; i < std::min(messages.size(), MaxMessages); ++i) PrintError(messages[i]);
  if (messages.size() <= MaxMessages) return;
  PrintError("and " + std::to_string(messages.size() - MaxMessages) + " more of this kind");
}

// The type of all wanted controllers; 0 after a message when there is not one such type.
TypeSet OnlyType(const DraftedComputers& computers) {
  const auto counts = computers.CountByType();
  if (counts.size() == 1) return counts.begin()->first;
  std::string text;
  for (const auto& [type, count] : counts) {
    text.append(text.empty() ? "" : ", ").append(NamesOf(type).front());
    text.append(" (" + Counted(count, "controller", "controllers") + ")");
  }
  PrintError("the computers have controllers of several types, and --type selects one: " + text);
  return Types::None;
}

int Print(const DraftOutcome& outcome) {
  PrintFirst(outcome.unmatchable);
  PrintFirst(outcome.indistinguishable);
  if (!outcome.refusal.empty()) PrintError(outcome.refusal);
  if (!outcome.configuration) return outcome.status;
  return PrintResult(WriteXmlPropertyList(outcome.configuration->value) + "\n");
}

void NoteBoards(const DraftedComputers& computers) {
  const auto& boards = computers.Boards();
  if (boards.size() > 1) {
    std::string text;
    for (const auto& board : boards) text.append(text.empty() ? "" : ", ").append(board);
    PrintError(
        "the computers are of several boards, each of which needs the draft in its own "
        "directory: " +
        text);
  }
  if (computers.OtherBoards() == 0) return;
  PrintError("left out: " +
             Counted(computers.OtherBoards(), "excepted computer that reads",
                     "excepted computers that read") +
             " the configuration of another board");
}

}  // namespace

VerbEnd DraftVerb(int argumentCount, char* const arguments[]) {
  DraftOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (const auto error = UsageError(options); !error.empty()) {
    PrintError(error + "; see fernwick-lab draft --help");
    return LabStatus::BadUsage;
  }
  DraftedComputers computers;
  if (const int status = AddComputers(options.batch, DraftSide::Wanted, computers);
      status != LabStatus::Done) {
    return status;
  }
  if (!options.excepted.empty()) {
    const BatchOptions excepted = {options.excepted, options.batch.jobs};
    const int status = AddComputers(excepted, DraftSide::Excepted, computers);
    if (status != LabStatus::Done) return status;
  }
  if (options.type.empty() && computers.CountByType().empty()) {
    PrintError("these computers have no controllers");
    return LabStatus::Negative;
  }
  const auto type = options.type.empty() ? OnlyType(computers) : TypeNamed(options.type);
  if (type == Types::None) return LabStatus::BadUsage;
  NoteBoards(computers);
  const DraftTarget target = {type, options.image, *ParseVersion(options.version)};
  return Print(MakeDraft(computers, target));
}

}  // namespace fernwick::lab
