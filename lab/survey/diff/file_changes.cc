#include "lab/survey/diff/file_changes.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <string_view>

#include "lab/support/plan_summary.h"
#include "lab/survey/diff/matches_by_controller.h"
#include "plan/invocation_builder.h"

namespace fernwick::lab {
namespace {

std::optional<std::uint64_t> SizeOf(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

// Whether two files of the same size have the same bytes, read piece by piece.
bool HaveSameBytes(const std::string& a, const std::string& b) {
  std::ifstream left(a, std::ios::binary);
  std::ifstream right(b, std::ios::binary);
  std::string pieceOfLeft(1 << 16, '\0');
  std::string pieceOfRight(1 << 16, '\0');
  while (left && right) {
    left.read(pieceOfLeft.data(), static_cast<std::streamsize>(pieceOfLeft.size()));
    right.read(pieceOfRight.data(), static_cast<std::streamsize>(pieceOfRight.size()));
    const auto count = static_cast<std::size_t>(left.gcount());
    const auto countOfRight = static_cast<std::size_t>(right.gcount());
    const auto piece = std::string_view(pieceOfLeft).substr(0, count);
    if (piece != std::string_view(pieceOfRight).substr(0, countOfRight)) return false;
  }
  return left.eof() && right.eof();
}

std::string_view FileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

Json ImageOf(const MatchedPair& pair) {
  return ToJson(pair.match->Find("Firmware"));
}

Json WithSize(const Json& file, std::uint64_t size) {
  return file.get<std::string>() + ", " + std::to_string(size) + " bytes";
}

// A file that a plan needs. `before` is null where the plan before needed none.
struct NeededFile {
  std::string what;
  std::string match;  // the match that needs it; empty for the whole plan
  Json before;
  Json after;
};

std::optional<DiffChange> ChangeOf(const NeededFile& file, const PayloadFiles::Comparison& files) {
  const bool wasMissing = !file.before.is_null() && !files.sizeBefore;
  if (!files.sizeAfter) {
    if (wasMissing) return std::nullopt;
    return DiffChange{file.what + " missing", file.match, {}, file.after};
  }
  if (wasMissing) return DiffChange{file.what + " no longer missing", file.match, {}, file.after};
  if (file.before != file.after || files.isSame) return std::nullopt;
  return DiffChange{file.what + " bytes", file.match, WithSize(file.before, *files.sizeBefore),
                    WithSize(file.after, *files.sizeAfter)};
}

// The flashing utilities of the types that match, each once.
std::vector<std::string> UtilitiesOf(const MatchesByController& matches) {
  std::vector<std::string> utilities;
  for (const auto& pair : matches.InOrder()) {
    std::string utility(FlashingUtility(pair.key->key));
    if (std::ranges::find(utilities, utility) == utilities.end()) {
      utilities.push_back(std::move(utility));
    }
  }
  return utilities;
}

}  // namespace

PayloadFiles::Comparison PayloadFiles::Compare(const std::string& before,
                                               const std::string& after) {
  {
    const std::lock_guard lock(mutex_);
    const auto known = known_.find({before, after});
    if (known != known_.end()) return known->second;
  }
  Comparison comparison = {SizeOf(before), SizeOf(after)};
  comparison.isSame = comparison.sizeBefore && comparison.sizeBefore == comparison.sizeAfter &&
                      FileName(before) == FileName(after) && HaveSameBytes(before, after);
  const std::lock_guard lock(mutex_);
  return known_.emplace(std::pair(before, after), comparison).first->second;
}

std::vector<DiffChange> FindFileChanges(const ToolRun& runBefore, const Options& before,
                                        const ToolRun& runAfter, const Options& after,
                                        PayloadFiles& files) {
  std::vector<DiffChange> changes;
  const MatchesByController matchesBefore(runBefore);
  const MatchesByController matchesAfter(runAfter);
  const auto compare = [&](const NeededFile& file, const std::string& pathBefore,
                           const std::string& pathAfter) {
    if (auto change = ChangeOf(file, files.Compare(pathBefore, pathAfter))) {
      changes.push_back(*std::move(change));
    }
  };
  for (const auto& pair : matchesAfter.InOrder()) {
    const auto path = ImagePath(pair, runAfter, after.personalitiesDirectory);
    if (!path) continue;
    const auto* pairBefore = matchesBefore.Find(KeyOf(pair));
    const auto pathBefore = pairBefore == nullptr
                                ? std::nullopt
                                : ImagePath(*pairBefore, runBefore, before.personalitiesDirectory);
    const auto imageBefore = pathBefore ? ImageOf(*pairBefore) : Json(nullptr);
    compare({"image", NameOf(pair), imageBefore, ImageOf(pair)}, pathBefore.value_or(""), *path);
  }
  const auto utilitiesBefore = UtilitiesOf(matchesBefore);
  for (const auto& utility : UtilitiesOf(matchesAfter)) {
    const bool wasNeeded = std::ranges::find(utilitiesBefore, utility) != utilitiesBefore.end();
    compare({"flashing utility", "", wasNeeded ? Json(utility) : Json(nullptr), utility},
            before.personalitiesDirectory.value_or("") + utility,
            after.personalitiesDirectory.value_or("") + utility);
  }
  return changes;
}

}  // namespace fernwick::lab
