#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::lab {

/// Whether a directory in Fernwick/ is no board directory: that of a version-control system, or one
/// with the name of a flashing utility, which is reported as a missing utility.
bool IsNoBoard(std::string_view directory);

/// The names of all board directories of a payload.
class BoardNames {
 public:
  /// REQUIRES: sorted by their bytes.
  explicit BoardNames(std::vector<std::string> boards);

  const std::vector<std::string>& All() const { return boards_; }

  /// Why computers probably do not ask for a board directory of that name: it is not "Zed-" and
  /// upper-case hexadecimal digits, or has leading zeros that the other boards do not have. nullopt
  /// when they may ask for it.
  std::optional<std::string> Problem(const std::string& board) const;

  /// The first of them that differs from `board` only in leading zeros; empty when `board` itself
  /// is the first, or there is none. Those with a problem do not count. REQUIRES: `board` has none.
  std::string SameBefore(const std::string& board) const;

 private:
  std::string Suggestion(const std::string& meant) const;

  std::vector<std::string> boards_;
  std::set<std::size_t> lengths_;                     // of those without leading zeros
  std::map<std::string, std::string> firstOfNumber_;  // by the name without leading zeros
};

/// Whether the name reads as one of a board, well spelt or not.
bool LooksLikeBoard(std::string_view directory);

}  // namespace fernwick::lab
