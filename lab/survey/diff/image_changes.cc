#include "lab/survey/diff/image_changes.h"

#include <sys/stat.h>

#include <fstream>
#include <string_view>

#include "lab/support/plan_summary.h"
#include "lab/survey/diff/matches_by_controller.h"

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

PayloadImages::Comparison PayloadImages::Compare(const std::string& before,
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

std::vector<DiffChange> FindImageChanges(const ToolRun& runBefore, const Options& before,
                                         const ToolRun& runAfter, const Options& after,
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
    if (auto change = ChangeOf(pathBefore ? pairBefore : nullptr, pair, comparison)) {
      changes.push_back(*std::move(change));
    }
  }
  return changes;
}

}  // namespace fernwick::lab
