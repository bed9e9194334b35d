#include "lab/survey/expectation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "lab/support/messages.h"

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

std::string SurveyExpectation::Load(const std::string& path, int& status) {
  status = LabStatus::UnreadableInput;
  auto error = Open(path);
  if (error.empty()) error = ReadPlaces(status);
  if (!error.empty()) return path + ": " + error;
  status = LabStatus::Done;
  std::ranges::sort(places_, {},
                    [](const Place& place) { return std::tuple(place.hash, place.offset); });
  return {};
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

std::string SurveyExpectation::ReadPlaces(int& status) {
  char* line = nullptr;
  std::size_t capacity = 0;
  std::uint64_t offset = 0;
  std::string error;
  ssize_t length = 0;
  while (error.empty() && (length = getline(&line, &capacity, file_.get())) > 0) {
    const auto size = static_cast<std::size_t>(length);
    if (const auto row = ParseSurveyRow({line, size})) {
      places_.push_back({HashOf(row->file), offset, size});
      offset += size;
    } else {
      status = LabStatus::MalformedInput;
      error = std::to_string(places_.size() + 1) + ": this is no row of a survey";
    }
  }
  if (std::ferror(file_.get()) != 0) error = std::strerror(errno);
  std::free(line);
  return error;
}

std::optional<SurveyRow> SurveyExpectation::TakeFor(const SurveyRow& found) {
  const auto file = SavedFileOf(found);
  const auto hash = HashOf(file);
  auto place = std::ranges::lower_bound(places_, hash, {}, &Place::hash);
  for (; place != places_.end() && place->hash == hash; ++place) {
    if (place->isTaken) continue;
    auto row = ReadRow(*place);
    if (!row || row->file != file) continue;
    place->isTaken = true;
    return row;
  }
  return std::nullopt;
}

void SurveyExpectation::ForEachLeft(const std::function<void(const SurveyRow&)>& take) const {
  auto left = places_;
  std::erase_if(left, [](const Place& place) { return place.isTaken; });
  std::ranges::sort(left, {}, &Place::offset);
  for (const auto& place : left) {
    if (const auto row = ReadRow(place)) take(*row);
  }
}

std::optional<SurveyRow> SurveyExpectation::ReadRow(const Place& place) const {
  std::string line(place.size, '\0');
  const auto count =
      pread(fileno(file_.get()), line.data(), line.size(), static_cast<off_t>(place.offset));
  if (count != static_cast<ssize_t>(line.size())) return std::nullopt;
  return ParseSurveyRow(line);
}

bool AreSame(const SurveyRow& a, const SurveyRow& b) {
  return PrintJsonRow(ToJson(a)) == PrintJsonRow(ToJson(b));
}

}  // namespace fernwick::lab
