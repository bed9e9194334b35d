#pragma once

#include <CLI/CLI.hpp>
#include <optional>

namespace fernwick::lab {

/// Parses what stands behind a verb into what `app` binds. Returns nothing when the verb is to go
/// on, and otherwise the process's exit status: after the help that --help asks for on standard
/// output, or one line on standard error that says what is wrong (LabStatus::BadUsage). REQUIRES:
/// the app's name is "fernwick-lab VERB".
std::optional<int> ParseCommandLine(CLI::App& app, int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
