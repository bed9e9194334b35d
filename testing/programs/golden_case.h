#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "testing/programs/child_process.h"

/// Golden cases: commands of the lab, with everything they print and how they end. A case is
/// one file, NAME.txt, of one command or more:
///
///   # Comments and blank lines, which say what the case is about.
///   $ fernwick-lab replay recordings/typical.registry.plist -p 'payloads/with blank'
///   --- stdout
///   what the command prints on standard output
///   --- stderr
///   and on standard error
///   --- status 13
///
/// The command is run in golden/, so it can be pasted into a shell there. Blanks separate its
/// arguments; what single quotes enclose is as it is. The output follows it byte for byte, but for
/// two things: a line that begins with "---" or with a backslash has one backslash more at its
/// start, and the line "\ No newline at end" follows output whose last line has no end. A stream
/// that stays empty has no section. The status is the exit status, or the name of the signal that
/// ended the process. A command without sections has no expectations yet.
namespace fernwick::testing {

struct GoldenCommand {
  std::string head;                    // the comment and the command, as the file has them
  std::vector<std::string> arguments;  // of fernwick-lab
};

struct GoldenCase {
  std::string name;  // of the file, without its ".txt"
  std::vector<GoldenCommand> commands;
};

/// A syntax error fails the test.
GoldenCase ReadGoldenCase(const std::filesystem::path& file);

/// Those of every "*.txt" in a directory, by name.
std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& directory);

/// The sections for what a command printed and how it ended. Different outcomes have different
/// sections.
std::string FormatSections(const ChildOutcome& outcome);

/// A case that replays a recording.
struct GoldenReplay {
  std::string name;                        // of the case
  std::string recording;                   // relative to golden/
  std::vector<std::string> toolArguments;  // the tool's command line without its name
};

/// The replays among the cases of a directory, by name.
std::vector<GoldenReplay> ReadGoldenReplays(const std::filesystem::path& directory);

}  // namespace fernwick::testing
