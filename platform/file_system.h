#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fernwick {

/// Whether anything stands at the path, links followed. A dangling link, a path through a file and
/// an over-long path do not exist.
bool PathExists(const std::string& path);

/// What became of reading a file whole.
struct FileReading {
  std::optional<std::string> bytes;
  std::string error;  // why it could not be read; empty when there are bytes
};

/// In bytes. Larger files are refused: no configuration or recording comes near it, and whatever
/// stands in its place must not exhaust the computer that is about to be updated.
inline constexpr std::size_t MaximumFileSize = std::size_t{1} << 30;

/// Reads a regular file. Never waits for a writer: a FIFO or device in its place is an error.
FileReading ReadWholeFile(const std::string& path);

/// Appends a component: all "/" at the end of `path` and at the start of `component` give way to
/// exactly one. An empty component gives `path` without the "/" at its end. A doubled "/" elsewhere
/// stays.
std::string AppendPathComponent(std::string_view path, std::string_view component);

}  // namespace fernwick
