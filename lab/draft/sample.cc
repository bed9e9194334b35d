#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/draft/sample_search.h"
#include "lab/lint/checks.h"
#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "lab/support/spelling.h"
#include "lab/support/words.h"
#include "lab/survey/batch.h"
#include "lab/verbs.h"
#include "personality/configuration.h"
#include "platform/file_system.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

// With --all each sample costs a run over the whole configuration.
constexpr std::size_t MaxSamples = 1000;

constexpr char Description[] =
    "Writes the smallest recording of a computer of the board that a personality matches, and no "
    "earlier one of its type: a board without recordings can be tested. A run of the tool over the "
    "recording has confirmed it. Without --personality and --all, that of the first personality "
    "that any computer matches.";

constexpr char Footer[] =
    "Where there is no such recording, standard error says why. The search is limited: where\n"
    "more than 128 earlier personalities overlap with one, or their long lists do, it may\n"
    "report that it found none.\n"
    "\n"
    "The files of --all are named DIRECTORY/BOARD-TYPE-N.registry.plist and listed on standard\n"
    "output; a configuration of more than 1000 personalities needs --personality.\n"
    "\n"
    "Status: 0 written; 1 there is no recording, or with --all not for every personality; 65\n"
    "the configuration is not well formed; 66 it cannot be read.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab sample -p payload Zed-42 -o sample.registry.plist\n"
    "  fernwick-lab sample -p payload Zed-42 --all computers\n";

struct SampleOptions {
  std::string payload;
  std::string board;
  std::optional<std::string> personality;
  std::optional<std::string> directory;
  std::string out = "-";
  std::string form = "xml";
  bool replaces = false;

  IfExists ExistingFile() const { return replaces ? IfExists::Replace : IfExists::Refuse; }
};

CommandLine Declare(SampleOptions& options) {
  return {.verb = "sample",
          .description = Description,
          .footer = Footer,
          .arguments = {
              PayloadArgument(options.payload),
              {.name = "BOARD",
               .target = &options.board,
               .help = "the name of a directory in Fernwick/",
               .minCount = 1},
              {.name = "--personality",
               .target = &options.personality,
               .help = "the type and the number of the personality in its array, from 1",
               .valueName = "TYPE:N"},
              {.name = "--all",
               .target = &options.directory,
               .help = "write one for each personality into this directory",
               .valueName = "DIRECTORY"},
              {.name = "-o,--output",
               .target = &options.out,
               .help = "the file to write; - is standard output",
               .valueName = "OUT"},
              {.name = "--to",
               .target = &options.form,
               .help = "the serialisation: xml or binary",
               .valueName = "FORM",
               .choices = {"xml", "binary"}},
              {.name = "--force", .target = &options.replaces, .help = "replace files that exist"},
          }};
}

// One personality of the configuration.
struct PersonalityNumber {
  std::string type;
  std::size_t number = 0;  // from 1
};

// "USBC:2". Nullopt when it is not of that form.
std::optional<PersonalityNumber> ParsePersonality(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  PersonalityNumber personality{std::string(text.substr(0, colon))};
  const auto digits = text.substr(colon + 1);
  const auto* end = digits.data() + digits.size();
  const auto [next, error] = std::from_chars(digits.data(), end, personality.number);
  if (error != std::errc() || next != end || personality.number == 0) return std::nullopt;
  return personality;
}

// What is wrong with the options together; empty when nothing is.
std::string UsageError(const SampleOptions& options) {
  const auto& board = options.board;
  if (board.empty() || board == "." || board == ".." || board.find('/') != std::string::npos) {
    return "BOARD is the name of a directory in Fernwick/";
  }
  if (FindInvalidUtf8(board) != npos)
    return "BOARD is not UTF-8, so no computer has this identifier";
  if (!options.directory) return "";
  if (options.personality) return "--all excludes --personality";
  return options.out == "-" ? "" : "--all excludes --output";
}

class SampleWriter {
 public:
  SampleWriter(const SampleOptions& options, std::string path, const LintSubject& subject)
      : options_(options), path_(std::move(path)), subject_(subject) {}

  // The one that is asked for.
  int WriteNumbered(const PersonalityNumber& wanted) const {
    const auto type = std::ranges::find(subject_.types, wanted.type,
                                        [](const LocatedType& each) { return each.entry.key; });
    const bool hasType = type != subject_.types.end();
    if (hasType && !HasShape(*type)) return LabStatus::Negative;
    const auto count = hasType ? CountPersonalities(*type) : 0;
    if (wanted.number > count) {
      return Refuse("there is no personality " + std::to_string(wanted.number) + " of \"" +
                    wanted.type + "\": it has " + (count == 0 ? "none" : std::to_string(count)));
    }
    const auto sample = Find(*type, wanted.number - 1);
    return sample ? Write(options_.out, *sample) : LabStatus::Negative;
  }

  // That of the first personality that has one.
  int WriteFirst() const {
    std::size_t tried = 0;
    for (const auto& type : subject_.types) {
      HasShape(type);
      for (std::size_t i = 0; i < CountPersonalities(type); ++i) {
        if (++tried > MaxSamples) {
          return Refuse("there is no sample of the first " + std::to_string(MaxSamples) +
                        " personalities; --personality names another");
        }
        const auto sample = Find(type, i);
        if (!sample) continue;
        ProcessConsole().WriteError("sample of " + NameOf(type, i, ":") + "\n");
        return Write(options_.out, *sample);
      }
    }
    return Refuse("there is no sample of any personality");
  }

  int WriteAll() const {
    if (Count() > MaxSamples) {
      return Refuse("it has more than " + std::to_string(MaxSamples) + " personalities",
                    LabStatus::BadUsage);
    }
    int status = LabStatus::Done;
    ProcessConsole console;
    for (const auto& type : subject_.types) {
      if (!HasShape(type)) status = LabStatus::Negative;
      for (std::size_t i = 0; i < CountPersonalities(type); ++i) {
        const auto sample = Find(type, i);
        if (!sample) {
          status = LabStatus::Negative;
          continue;
        }
        const auto out = AppendPathComponent(
            *options_.directory, options_.board + "-" + NameOf(type, i, "-") + ".registry.plist");
        if (const int lost = Write(out, *sample); lost != LabStatus::Done) return lost;
        console.Write(PrintableText(out) + "\n");
      }
    }
    const int lost = FinishOutput(console);
    return lost == LabStatus::Done ? status : lost;
  }

 private:
  static std::string NameOf(const LocatedType& type, std::size_t index, const char* separator) {
    return std::string(type.entry.key) + separator + std::to_string(index + 1);
  }

  std::size_t Count() const {
    std::size_t count = 0;
    for (const auto& type : subject_.types) count += CountPersonalities(type);
    return count;
  }

  int Refuse(const std::string& message, int status = LabStatus::Negative) const {
    return PrintError(path_, {{message}, status});
  }

  void PrintErrorAt(std::size_t offset, const std::string& message) const {
    PrintError(path_ + ":" + Describe(subject_.file.LocationOf(offset)) + ": " + message);
  }

  // Prints what is wrong where the value has another shape than the type.
  bool HasShape(const LocatedType& type) const {
    const auto wrong = WrongShapeText(type);
    if (wrong.empty()) return true;
    PrintErrorAt(type.entry.valueOffset, wrong);
    return false;
  }

  // Prints why there is none.
  std::optional<Recording> Find(const LocatedType& type, std::size_t index) const {
    auto sample = FindSample({subject_, options_.board}, type, index);
    if (sample) return *std::move(sample);
    const auto offset = HasSinglePersonality(type.type) ? type.entry.valueOffset
                                                        : OffsetOfElement(type.entry, index);
    PrintErrorAt(offset, NameOf(type, index, ":") + ": " + sample.Error());
    return std::nullopt;
  }

  int Write(const std::string& out, const Recording& sample) const {
    const auto form = options_.form == "binary" ? Serialisation::Binary : Serialisation::Xml;
    return WritePropertyList(out, sample.list.value, form, options_.ExistingFile());
  }

  const SampleOptions& options_;
  const std::string path_;
  const LintSubject& subject_;
};

int RefuseUsage(const std::string& error) {
  PrintError(error + "; see fernwick-lab sample --help");
  return LabStatus::BadUsage;
}

}  // namespace

VerbEnd SampleVerb(int argumentCount, char* const arguments[]) {
  SampleOptions options;
  const auto line = Declare(options);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  if (const auto error = UsageError(options); !error.empty()) return RefuseUsage(error);
  std::optional<PersonalityNumber> wanted;
  if (options.personality) {
    wanted = ParsePersonality(*options.personality);
    if (!wanted) return RefuseUsage("--personality is a type, a colon and a number from 1");
    if (TypeNamed(wanted->type) == Types::None) {
      return RefuseUsage("--personality: there is no type \"" + wanted->type + "\"" +
                         SuggestionFor(wanted->type, NamesOf(Types::All)));
    }
  }
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  if (const int lost = CheckOutput(options.out, options.ExistingFile()); lost != LabStatus::Done) {
    return lost;
  }
  const auto path =
      *ConfigurationPath(options.board, AppendPathComponent(options.payload, "Fernwick"));
  const auto configuration = LoadConfiguration(path);
  if (!configuration) return PrintError(path, configuration.Error());
  const LintSubject subject(*configuration);
  const SampleWriter writer(options, path, subject);
  if (options.directory) return writer.WriteAll();
  return wanted ? writer.WriteNumbered(*wanted) : writer.WriteFirst();
}

}  // namespace fernwick::lab
