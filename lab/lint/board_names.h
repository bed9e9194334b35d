#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::lab {

/// Whether a directory in Fernwick/ is no board directory: that of a version-control system, or one
/// with the name of a flashing utility, which is reported as a missing utility.
bool IsNoBoard(std::string_view directory);

/// Why computers probably do not ask for a board directory of that name: it is not "Zed-" and
/// upper-case hexadecimal digits, or has leading zeros that the other boards do not have. nullopt
/// when they may ask for it. `boards` are the names of all board directories.
std::optional<std::string> BoardNameProblem(const std::string& board,
                                            const std::vector<std::string>& boards);

/// The first of `boards` that differs from `board` only in leading zeros and has no problem of its
/// own; empty when there is none before `board`.
std::string SameBoardBefore(const std::string& board, const std::vector<std::string>& boards);

/// Whether the name reads as one of a board, well spelt or not.
bool LooksLikeBoard(std::string_view directory);

}  // namespace fernwick::lab
