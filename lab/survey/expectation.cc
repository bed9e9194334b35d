// An index of the hashes of the paths, sorted once the file is read, with the offset of each row. A
// look-up is a binary search, and reads the row again to compare the path itself. O(n log n) for n
// rows.

#include "lab/survey/expectation.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

// A polynomial hash: the text as a polynomial modulo the prime 2^61-1, at a point that is random in
// each process, so that an input cannot contain paths that were chosen to collide.
std::uint64_t HashOf(std::string_view file) {
  constexpr std::uint64_t Prime = (std::uint64_t{1} << 61) - 1;
  static const std::uint64_t point = (std::uint64_t{std::random_device()()} << 29 | 0x1234567);
  __extension__ using Wide = unsigned __int128;
  std::uint64_t hash = 0;
  for (const char c : file) {
    hash = static_cast<std::uint64_t>((Wide{hash} * point + static_cast<unsigned char>(c) + 1) %
                                      Prime);
  }
  return hash;
}

// A path as a saved row has it: bytes that are not UTF-8 were replaced by U+FFFD there.
std::string SavedPath(const std::string& path) {
  const auto text = Json(path).dump(-1, ' ', false, Json::error_handler_t::replace);
  return Json::parse(text).get<std::string>();
}

std::string DirectoryOf(const std::string& path) {
  if (path == "-") return ".";
  const auto parent = std::filesystem::path(path).parent_path().string();
  return parent.empty() ? "." : parent;
}

// Copies standard input into a file without a name, in which rows can be read again. Null after an
// error, which errno names.
StdioFile CopyOfStandardInput() {
  StdioFile copy(std::tmpfile());
  if (copy == nullptr) return nullptr;
  char piece[1 << 16];
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, piece, sizeof piece);
    if (count < 0 && errno == EINTR) continue;
    const auto size = static_cast<std::size_t>(std::max(count, ssize_t{0}));
    const bool isWritten = std::fwrite(piece, 1, size, copy.get()) == size;
    if (count > 0 && isWritten) continue;
    if (count == 0 && std::fflush(copy.get()) == 0) {
      std::rewind(copy.get());
      return copy;
    }
    const int error = errno;
    copy.reset();
    errno = error;
    return nullptr;
  }
}

}  // namespace

SurveyExpectation::SurveyExpectation(std::string path)
    : path_(std::move(path)), ofFile_(DirectoryOf(path_)), ofWorkingDirectory_(".") {}

std::optional<LabError> SurveyExpectation::Load() {
  if (auto error = Open()) return LabError{*error, UnreadableStatus(*error)};
  if (auto error = ReadRows()) return error;
  std::ranges::sort(index_);
  return std::nullopt;
}

bool SurveyExpectation::Exists() const {
  std::error_code error;
  return std::filesystem::symlink_status(path_, error).type() !=
         std::filesystem::file_type::not_found;
}

std::optional<Error> SurveyExpectation::Open() {
  if (path_ == "-") {
    file_ = CopyOfStandardInput();
    if (file_ == nullptr) return SystemError();
    return std::nullopt;
  }
  const int descriptor = open(path_.c_str(), CautiousReading);
  if (descriptor < 0) return SystemError();
  file_.reset(fdopen(descriptor, "r"));
  const auto size = RegularFileSize(descriptor);
  return size ? std::nullopt : std::optional(size.Error());
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
      Index(row->file, rows_.size());
      rows_.push_back({offset, size});
      offset += size;
    } else {
      error = {{std::to_string(rows_.size() + 1) + ": this is not a row of a survey"},
               LabStatus::MalformedInput};
    }
  }
  if (std::ferror(file_.get()) != 0) error = {SystemError(), LabStatus::UnreadableInput};
  std::free(line);
  return error;
}

void SurveyExpectation::Index(const std::string& file, std::size_t row) {
  const auto hash = HashOf(ofFile_.Of(file));
  const auto other = HashOf(ofWorkingDirectory_.Of(file));
  index_.push_back({hash, false, row});
  if (other != hash) index_.push_back({other, true, row});
}

std::optional<SurveyRow> SurveyExpectation::ConsumeRowFor(const SurveyRow& found) {
  const auto path = SavedPath(ofWorkingDirectory_.Of(found.file));
  const auto hash = HashOf(path);
  auto entry = std::ranges::lower_bound(index_, hash, {}, &IndexEntry::hash);
  for (; entry != index_.end() && entry->hash == hash; ++entry) {
    auto& saved = rows_[entry->row];
    if (saved.isConsumed) continue;
    auto row = ReadRow(saved);
    if (!row || !IsFor(*entry, *row, path)) continue;
    saved.isConsumed = true;
    return row;
  }
  return std::nullopt;
}

// Hashes may collide.
bool SurveyExpectation::IsFor(const IndexEntry& entry, const SurveyRow& row,
                              const std::string& path) {
  return (entry.isOfWorkingDirectory ? ofWorkingDirectory_ : ofFile_).Of(row.file) == path;
}

void SurveyExpectation::ForEachLeft(const std::function<void(const SurveyRow&)>& visit) const {
  for (const auto& saved : rows_) {
    if (saved.isConsumed) continue;
    if (const auto row = ReadRow(saved)) visit(*row);
  }
}

std::string SurveyExpectation::RowToSave(const SurveyRow& found) {
  auto row = found;
  row.file = ofFile_.RelativeTo(ofWorkingDirectory_.Of(found.file));
  return PrintJsonRow(ToJson(row));
}

std::optional<SurveyRow> SurveyExpectation::ReadRow(const SavedRow& saved) const {
  std::string line(saved.size, '\0');
  const auto count =
      pread(fileno(file_.get()), line.data(), line.size(), static_cast<off_t>(saved.offset));
  if (count != static_cast<ssize_t>(line.size())) return std::nullopt;
  return ParseSurveyRow(line);
}

bool AreSame(const SurveyRow& a, const SurveyRow& b) {
  auto left = ToJson(a);
  auto right = ToJson(b);
  left["file"] = right["file"] = nullptr;
  if (!a.computerClass || !b.computerClass) {
    for (const auto* key : {"class", "nearestMiss"}) left[key] = right[key] = nullptr;
  }
  return PrintJsonRow(left) == PrintJsonRow(right);
}

}  // namespace fernwick::lab
