// Many computers need the same files, so each pair of paths is compared once and the result is
// kept. The comparison reads both files in pieces.

#include "lab/survey/diff/file_changes.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>

#include "lab/support/plan_summary.h"
#include "lab/support/stdio_file.h"
#include "lab/survey/diff/matches_by_controller.h"
#include "plan/invocation_builder.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

std::string_view FileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

// The size of a regular file, empty where there is none.
Result<std::optional<std::uint64_t>, LabError> SizeOf(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) {
    if (!IsAbsence(errno)) return PathFailure(path, errno);
    return std::optional<std::uint64_t>();
  }
  if (!S_ISREG(status.st_mode)) return std::optional<std::uint64_t>();
  return std::optional(static_cast<std::uint64_t>(status.st_size));
}

// Whether two files have the same bytes, read piece by piece.
Result<bool, LabError> HaveSameBytes(const std::string& a, const std::string& b) {
  const StdioFile left(std::fopen(a.c_str(), "rbe"));
  if (left == nullptr) return PathFailure(a, errno);
  const StdioFile right(std::fopen(b.c_str(), "rbe"));
  if (right == nullptr) return PathFailure(b, errno);
  std::string pieceOfLeft(1 << 16, '\0');
  std::string pieceOfRight(1 << 16, '\0');
  for (;;) {
    const auto count = std::fread(pieceOfLeft.data(), 1, pieceOfLeft.size(), left.get());
    if (std::ferror(left.get()) != 0) return PathFailure(a, errno);
    const auto other = std::fread(pieceOfRight.data(), 1, pieceOfRight.size(), right.get());
    if (std::ferror(right.get()) != 0) return PathFailure(b, errno);
    const auto piece = std::string_view(pieceOfLeft).substr(0, count);
    if (piece != std::string_view(pieceOfRight).substr(0, other)) return false;
    if (count == 0) return true;
  }
}

Result<PayloadFiles::Comparison, LabError> CompareFiles(const std::string& before,
                                                        const std::string& after) {
  const auto sizeBefore = SizeOf(before);
  if (!sizeBefore) return sizeBefore.Error();
  const auto sizeAfter = SizeOf(after);
  if (!sizeAfter) return sizeAfter.Error();
  PayloadFiles::Comparison comparison = {*sizeBefore, *sizeAfter};
  if (!*sizeBefore || *sizeBefore != *sizeAfter || FileName(before) != FileName(after)) {
    return comparison;
  }
  const auto areSame = HaveSameBytes(before, after);
  if (!areSame) return areSame.Error();
  comparison.isSame = *areSame;
  return comparison;
}

Json ImageOf(const MatchedPair& pair) {
  return ToJson(pair.match->Find("Firmware"));
}

Json WithSize(const Json& file, std::uint64_t size) {
  return file.get<std::string>() + ", " + std::to_string(size) + " bytes";
}

// What a change of a kind of files is.
struct FileKinds {
  ChangeKind missing;
  ChangeKind noLongerMissing;
  ChangeKind bytes;
};

constexpr FileKinds ImageKinds = {ChangeKind::ImageMissing, ChangeKind::ImageNoLongerMissing,
                                  ChangeKind::ImageBytes};
constexpr FileKinds UtilityKinds = {ChangeKind::UtilityMissing, ChangeKind::UtilityNoLongerMissing,
                                    ChangeKind::UtilityBytes};

// A file that a plan needs. `before` is null where the plan before needed none.
struct NeededFile {
  FileKinds kinds;
  std::string match;  // the match that needs it; empty for the whole plan
  Json before;
  Json after;
};

std::optional<DiffChange> ChangeOf(const NeededFile& file, const PayloadFiles::Comparison& files) {
  const bool wasMissing = !file.before.is_null() && !files.sizeBefore;
  if (!files.sizeAfter) {
    if (wasMissing) return std::nullopt;
    return DiffChange{file.kinds.missing, file.match, {}, file.after};
  }
  if (wasMissing) return DiffChange{file.kinds.noLongerMissing, file.match, {}, file.after};
  if (file.before != file.after || files.isSame) return std::nullopt;
  return DiffChange{file.kinds.bytes, file.match, WithSize(file.before, *files.sizeBefore),
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

Result<PayloadFiles::Comparison, LabError> PayloadFiles::Compare(const std::string& before,
                                                                 const std::string& after) {
  {
    const std::lock_guard lock(mutex_);
    const auto known = known_.find({before, after});
    if (known != known_.end()) return known->second;
  }
  const auto comparison = CompareFiles(before, after);
  if (!comparison) return comparison.Error();
  const std::lock_guard lock(mutex_);
  return known_.emplace(std::pair(before, after), *comparison).first->second;
}

Result<std::vector<DiffChange>, LabError> FindFileChanges(const ToolRun& runBefore,
                                                          const Options& before,
                                                          const ToolRun& runAfter,
                                                          const Options& after,
                                                          PayloadFiles& files) {
  std::vector<DiffChange> changes;
  const MatchesByController matchesBefore(runBefore);
  const MatchesByController matchesAfter(runAfter);
  // Returns why the files could not be compared.
  const auto compare = [&](const NeededFile& file, const std::string& pathBefore,
                           const std::string& pathAfter) -> std::optional<LabError> {
    const auto comparison = files.Compare(pathBefore, pathAfter);
    if (!comparison) return comparison.Error();
    if (auto change = ChangeOf(file, *comparison)) changes.push_back(*std::move(change));
    return std::nullopt;
  };
  for (const auto& pair : matchesAfter.InOrder()) {
    const auto path = ImagePath(pair, runAfter, after.personalitiesDirectory);
    if (!path) continue;
    const auto* pairBefore = matchesBefore.Find(KeyOf(pair));
    const auto pathBefore = pairBefore == nullptr
                                ? std::nullopt
                                : ImagePath(*pairBefore, runBefore, before.personalitiesDirectory);
    const auto imageBefore = pathBefore ? ImageOf(*pairBefore) : Json(nullptr);
    const auto failure = compare({ImageKinds, NameOf(pair), imageBefore, ImageOf(pair)},
                                 pathBefore.value_or(""), *path);
    if (failure) return *failure;
  }
  const auto utilitiesBefore = UtilitiesOf(matchesBefore);
  for (const auto& utility : UtilitiesOf(matchesAfter)) {
    const bool wasNeeded = std::ranges::find(utilitiesBefore, utility) != utilitiesBefore.end();
    const auto failure =
        compare({UtilityKinds, "", wasNeeded ? Json(utility) : Json(nullptr), utility},
                before.personalitiesDirectory.value_or("") + utility,
                after.personalitiesDirectory.value_or("") + utility);
    if (failure) return *failure;
  }
  return changes;
}

}  // namespace fernwick::lab
