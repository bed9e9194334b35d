#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fernwick::bench {

/// What a process of its own took at most to read a file, in bytes beyond what it took to begin
/// with and beyond the file itself. Nothing when it could not be measured. `program` is one that
/// calls PrintPeakMemory for "--peak".
std::optional<double> PeakMemory(const std::string& program, std::string_view reader,
                                 const std::string& path);

/// The process's part: reads the file and prints the number. Returns the exit status.
int PrintPeakMemory(std::string_view name, const std::string& path);

}  // namespace fernwick::bench
