#include "lab/survey/expectation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

namespace fernwick::lab {
namespace {

std::uint64_t HashOf(std::string_view file) {
  return std::hash<std::string_view>()(file);
}

// As a saved row has it: bytes that are no text have become U+FFFD there.
std::string SavedFileOf(const SurveyRow& row) {
  const auto text = Json(row.file).dump(-1, ' ', false, Json::error_handler_t::replace);
  return Json::parse(text).get<std::string>();
}

}  // namespace

std::optional<LabError> SurveyExpectation::Load(const std::string& path) {
  if (auto error = Open(path); !error.empty()) {
    return LabError{{std::move(error)}, LabStatus::UnreadableInput};
  }
  if (auto error = ReadRows()) return error;
  std::ranges::sort(rows_, {},
                    [](const SavedRow& row) { return std::tuple(row.hash, row.offset); });
  return std::nullopt;
}

std::string SurveyExpectation::Open(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (descriptor < 0) return std::strerror(errno);
  file_.reset(fdopen(descriptor, "r"));
  struct stat state;
  if (fstat(descriptor, &state) != 0) return std::strerror(errno);
  if (S_ISDIR(state.st_mode)) return std::strerror(EISDIR);
  return S_ISREG(state.st_mode) ? "" : "not a regular file";
}

std::optional<LabError> SurveyExpectation::ReadRows() {
  char* line = nullptr;
  std::size_t capacity = 0;
  std::uint64_t offset = 0;
  std::optional<LabError> error;
  ssize_t length = 0;
  while (!error && (length = getline(&line, &capacity, file_.get())) > 0) {
    const auto size = static_cast<std::size_t>(length);
    if (const auto row = ParseSurveyRow({line, size})) {
      rows_.push_back({HashOf(row->file), offset, size});
      offset += size;
    } else {
      error = {{std::to_string(rows_.size() + 1) + ": this is no row of a survey"},
               LabStatus::MalformedInput};
    }
  }
  if (std::ferror(file_.get()) != 0) error = {{std::strerror(errno)}, LabStatus::UnreadableInput};
  std::free(line);
  return error;
}

std::optional<SurveyRow> SurveyExpectation::TakeFor(const SurveyRow& found) {
  const auto file = SavedFileOf(found);
  const auto hash = HashOf(file);
  auto saved = std::ranges::lower_bound(rows_, hash, {}, &SavedRow::hash);
  for (; saved != rows_.end() && saved->hash == hash; ++saved) {
    if (saved->isTaken) continue;
    auto row = ReadRow(*saved);
    if (!row || row->file != file) continue;
    saved->isTaken = true;
    return row;
  }
  return std::nullopt;
}

void SurveyExpectation::ForEachLeft(const std::function<void(const SurveyRow&)>& take) const {
  auto left = rows_;
  std::erase_if(left, [](const SavedRow& saved) { return saved.isTaken; });
  std::ranges::sort(left, {}, &SavedRow::offset);
  for (const auto& saved : left) {
    if (const auto row = ReadRow(saved)) take(*row);
  }
}

std::optional<SurveyRow> SurveyExpectation::ReadRow(const SavedRow& saved) const {
  std::string line(saved.size, '\0');
  const auto count =
      pread(fileno(file_.get()), line.data(), line.size(), static_cast<off_t>(saved.offset));
  if (count != static_cast<ssize_t>(line.size())) return std::nullopt;
  return ParseSurveyRow(line);
}

bool AreSame(const SurveyRow& a, const SurveyRow& b) {
  return PrintJsonRow(ToJson(a)) == PrintJsonRow(ToJson(b));
}

}  // namespace fernwick::lab
