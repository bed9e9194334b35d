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

}  // namespace fernwick::lab
