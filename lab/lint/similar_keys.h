#pragma once

#include <string_view>

#include "registry/key_schema.h"

namespace fernwick::lab {

/// The key of personalities that an unknown key may be meant for, because it is the name of the
/// registry property from which that key's value comes ("UID" for "Ridge UID"), or consists of the
/// same words, of some of them, or of more ("Max Version" for "Existing Max Version"). Case, blanks
/// and abbreviations do not matter. Prefers keys that the type reads; empty when there is none.
std::string_view SimilarKey(std::string_view key, TypeSet type);

}  // namespace fernwick::lab
