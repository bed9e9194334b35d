#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "value/text_sink.h"

namespace fernwick::lab {

/// What happens to a file that exists at the path.
enum class IfExists { Replace, Refuse };

/// Writes a file completely or not at all (atomic replace by rename): the bytes go to a temporary
/// file beside `path`, which is then renamed. Links are followed, and a file that is replaced keeps
/// its mode. Anything but a regular file, such as a device or a pipe, is left alone, which is an
/// error, and so is a dangling link; with IfExists::Refuse whatever is at the path. A signal that
/// ends the process meanwhile has its effect when the file is complete. Returns what went wrong;
/// empty when nothing did.
std::string WriteOutputFile(const std::string& path, std::string_view bytes,
                            IfExists ifExists = IfExists::Replace);

/// What writes the bytes of a file, in parts.
using WriteContents = std::function<void(const TextSink& sink)>;

/// The same of a file that is never in memory as a whole.
std::string WriteOutputFile(const std::string& path, const WriteContents& write, IfExists ifExists);

/// Replaces the file by the text and prints "PATH: WHAT saved" on standard error. Returns the exit
/// status: LabStatus::Done, or OutputLost after a line that says why.
int SaveFile(const std::string& path, std::string_view text, const std::string& what);

/// "there is a file of that name; --force replaces it" when something is at the path, by which a
/// verb can refuse an output before it starts; otherwise empty.
std::string ExistingOutputError(const std::string& path);

}  // namespace fernwick::lab
