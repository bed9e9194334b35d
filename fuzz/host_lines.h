#pragma once

#include <string>
#include <string_view>

#include "fuzz/value_mutator.h"

namespace fernwick::fuzz {

/// The files of a computer, as testing/host_tree.h describes them, changed at a few lines: a file
/// that a registry reads or may meet is added, a line removed, doubled, moved or changed as bytes.
/// At most `capacity` bytes.
std::string MutateHostLines(std::string_view description, std::size_t capacity,
                            ValueMutator& mutator);

}  // namespace fernwick::fuzz
