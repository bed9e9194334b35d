#include "lab/survey/diff/image_changes.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

#include "lab/survey/diff/matches_by_controller.h"
#include "lab/survey/plan_summary.h"
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

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Whether two files have the same bytes, read piece by piece.
Result<bool, LabError> HaveSameBytes(const std::string& a, const std::string& b) {
  const File left(std::fopen(a.c_str(), "rbe"));
  if (left == nullptr) return PathFailure(a, errno);
  const File right(std::fopen(b.c_str(), "rbe"));
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

Result<PayloadImages::Comparison, LabError> CompareFiles(const std::string& before,
                                                         const std::string& after) {
  const auto sizeBefore = SizeOf(before);
  if (!sizeBefore) return sizeBefore.Error();
  const auto sizeAfter = SizeOf(after);
  if (!sizeAfter) return sizeAfter.Error();
  PayloadImages::Comparison comparison = {*sizeBefore, *sizeAfter};
  if (!*sizeBefore || *sizeBefore != *sizeAfter || FileName(before) != FileName(after)) {
    return comparison;
  }
  const auto areSame = HaveSameBytes(before, after);
  if (!areSame) return areSame.Error();
  comparison.isSame = *areSame;
  return comparison;
}

Json ImageOf(const MatchedPair* pair) {
  return pair == nullptr ? Json(nullptr) : ToJson(pair->match->Find("Firmware"));
}

Json WithSize(const Json& image, std::uint64_t size) {
  return image.get<std::string>() + ", " + std::to_string(size) + " bytes";
}

// What changes for a controller whose match has an image. `before` is null where it had none.
std::optional<DiffChange> ChangeOf(const MatchedPair* before, const MatchedPair& after,
                                   const PayloadImages::Comparison& files) {
  const auto imageBefore = ImageOf(before);
  const auto image = ImageOf(&after);
  const bool wasMissing = !imageBefore.is_null() && !files.sizeBefore;
  if (!files.sizeAfter) {
    if (wasMissing) return std::nullopt;
    return DiffChange{"image missing", NameOf(after), {}, image};
  }
  if (wasMissing) return DiffChange{"image no longer missing", NameOf(after), {}, image};
  if (imageBefore != image || files.isSame) return std::nullopt;
  return DiffChange{"image bytes", NameOf(after), WithSize(image, *files.sizeBefore),
                    WithSize(image, *files.sizeAfter)};
}

}  // namespace

Result<PayloadImages::Comparison, LabError> PayloadImages::Compare(const std::string& before,
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

Result<std::vector<DiffChange>, LabError> FindImageChanges(const ToolRun& runBefore,
                                                           const Options& before,
                                                           const ToolRun& runAfter,
                                                           const Options& after,
                                                           PayloadImages& files) {
  std::vector<DiffChange> changes;
  const MatchesByController matchesBefore(runBefore);
  const MatchesByController matchesAfter(runAfter);
  for (const auto& pair : matchesAfter.InOrder()) {
    const auto path = ImagePath(pair, runAfter, after.personalitiesDirectory);
    if (!path) continue;
    const auto* pairBefore = matchesBefore.Find(KeyOf(pair));
    const auto pathBefore = pairBefore == nullptr
                                ? std::nullopt
                                : ImagePath(*pairBefore, runBefore, before.personalitiesDirectory);
    const auto comparison = files.Compare(pathBefore.value_or(""), *path);
    if (!comparison) return comparison.Error();
    if (auto change = ChangeOf(pathBefore ? pairBefore : nullptr, pair, *comparison)) {
      changes.push_back(*std::move(change));
    }
  }
  return changes;
}

}  // namespace fernwick::lab
