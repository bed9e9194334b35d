#pragma once

#include <string>
#include <string_view>

#include "value/result.h"

namespace fernwick {

/// The error of a call that has just failed, with its errno and the message for it.
Error SystemError();

/// Whether anything is at the path, links followed. A dangling link, a path through a file and
/// an over-long path do not exist.
bool PathExists(const std::string& path);

/// 0 when anything is at the path, as PathExists; otherwise the errno that says why it is not
/// found.
int PathError(const std::string& path);

/// Whether that errno means that there is nothing at a path. Any other, such as a lack of
/// permission or of memory, leaves open what is there.
bool IsAbsence(int error);

/// In bytes. Larger files are refused: no configuration or recording comes near it, and whatever
/// is there must not exhaust the computer that is about to be updated.
inline constexpr std::size_t MaxFileSize = std::size_t{1} << 30;

/// Reads a regular file of at most `maxSize` bytes. Never waits for a writer: a FIFO or a device is
/// an error.
Result<std::string> ReadWholeFile(const std::string& path, std::size_t maxSize = MaxFileSize);

/// Appends a component: all "/" at the end of `path` and at the start of `component` are
/// replaced by exactly one. An empty component results in `path` without the "/" at its end. A
/// doubled "/" elsewhere stays.
std::string AppendPathComponent(std::string_view path, std::string_view component);

}  // namespace fernwick
