#pragma once

#include <string>
#include <vector>

#include "lab/support/messages.h"
#include "value/result.h"

namespace fernwick::lab {

/// The boards of a payload: the names of the directories in `personalitiesDirectory`, links
/// followed, in the order of their bytes, without those that are of no board. One of which the kind
/// cannot be determined is among them. The message of an error begins with the path.
Result<std::vector<std::string>, LabError> BoardsOf(const std::string& personalitiesDirectory);

/// The name of the directory that the tool opens for a board identifier, which it uses as it is: as
/// BoardsOf has it for "Zed-9/" and "/Zed-9", "." for the directory of the boards itself, and for
/// one that is not in it a path from there. REQUIRES: the directory exists.
std::string BoardNamed(const std::string& identifier, const std::string& personalitiesDirectory);

}  // namespace fernwick::lab
