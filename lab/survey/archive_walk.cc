// Reads archives through libarchive, as a stream: of a tar archive nothing but the current member
// is in memory, of a zip file the directory of its members as well. The first bytes of the file
// decide on the one compression and the one format that the library may use: it would look for
// compressions inside compressions otherwise, of which each multiplies what a small file costs. The
// data of gzip comes from zlib, since the library does not compare it with its checksum.
//
// Time is linear in what an archive expands to, which is bounded by ExpandsTooMuch: the data of
// members that are not read is expanded block by block where the whole archive is compressed, and
// is skipped by a seek where it is not.

#include "lab/survey/archive_walk.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

namespace fernwick::lab {

constexpr std::size_t BlockSize = std::size_t{1} << 16;
// The data of a gzip file, and the block of it that was read last.
struct GzipInput {
  gzFile file;
  std::array<char, BlockSize> block;
};

namespace {

constexpr std::size_t MaxExpansion = 1000;
constexpr std::size_t TarBlock = 512;

constexpr char ExpansionText[] = "it expands to more than 1 GiB plus 1000 times its size";

constexpr std::string_view ArchiveSuffixes[] = {".tar", ".tar.gz",  ".tgz",  ".tar.xz",
                                                ".txz", ".tar.zst", ".tzst", ".zip"};

enum class Kind { Unknown, Tar, Gzip, Xz, Zstd, Zip, EmptyZip };

// By the first bytes of a file.
Kind KindOf(std::string_view start) {
  using namespace std::string_view_literals;
  if (start.starts_with("\x1F\x8B"sv)) return Kind::Gzip;
  if (start.starts_with("\xFD"
                        "7zXZ\0"sv)) {
    return Kind::Xz;
  }
  if (start.starts_with("\x28\xB5\x2F\xFD"sv)) return Kind::Zstd;
  constexpr std::size_t ZipEndSize = 22;
  if (start.starts_with("PK\5\6"sv)) return start.size() < ZipEndSize ? Kind::Zip : Kind::EmptyZip;
  if (start.starts_with("PK\3\4"sv)) return Kind::Zip;
  constexpr std::size_t MagicOffset = 257;
  const bool isTar = start.size() > MagicOffset && start.substr(MagicOffset).starts_with("ustar");
  return isTar ? Kind::Tar : Kind::Unknown;
}

Kind KindOf(int file) {
  char start[TarBlock];
  const ssize_t count = pread(file, start, sizeof start, 0);
  return KindOf({start, static_cast<std::size_t>(std::max(count, ssize_t{0}))});
}

// The library converts the names of members to the encoding of the thread's locale, and drops those
// that it cannot convert.
class Utf8Names {
 public:
  Utf8Names() : before_(uselocale(Utf8())) {}
  ~Utf8Names() { uselocale(before_); }
  Utf8Names(const Utf8Names&) = delete;
  Utf8Names& operator=(const Utf8Names&) = delete;

 private:
  // Null where there is no such locale; then the thread's stays.
  static locale_t Utf8() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
  }

  locale_t before_;
};

std::string TooLargeText(std::size_t maxSize) {
  return "it is larger than " + std::to_string(maxSize >> 20) + " MiB";
}

la_int64_t SizeOf(archive_entry* entry) {
  return archive_entry_size_is_set(entry) != 0 ? archive_entry_size(entry) : 0;
}

// Why a member that is named like a recording is not read; empty when it is.
std::string RefusalOf(archive_entry* entry, std::size_t maxSize) {
  const auto type = archive_entry_filetype(entry);
  if (archive_entry_hardlink(entry) != nullptr || type == AE_IFLNK) {
    return "a link, which is not followed in an archive";
  }
  if (type != AE_IFREG) return "not a regular file";
  if (archive_entry_is_encrypted(entry) != 0) return "it is encrypted";
  return SizeOf(entry) > static_cast<la_int64_t>(maxSize) ? TooLargeText(maxSize) : "";
}

constexpr char NoMemoryText[] = "there is no memory for it";

// Whether memory ran out. The library reports a decompressor that has none as damaged contents, or
// as an unknown format; but the allocation that failed has set errno, which is 0 before.
bool LacksMemory() {
  return errno == ENOMEM;
}

int StatusOf(archive* opened) {
  if (LacksMemory()) return LabStatus::OutOfResources;
  const Error error = {.message = {}, .systemError = archive_errno(opened)};
  if (UnreadableStatus(error) == LabStatus::OutOfResources) return LabStatus::OutOfResources;
  return error.systemError == EIO ? LabStatus::UnreadableInput : LabStatus::MalformedInput;
}

// Null where memory or descriptors are lacking, which errno says.
gzFile OpenGzip(int file) {
  const int copy = dup(file);  // which gzclose closes
  const auto opened = gzdopen(copy, "r");
  if (opened == nullptr && copy >= 0) close(copy);
  return opened;
}

// A callback of the library: reads the next block. Returns its size, which is 0 at the end.
la_ssize_t ReadGzip(archive* opened, void* data, const void** block) {
  auto& input = *static_cast<GzipInput*>(data);
  *block = input.block.data();
  const int count = gzread(input.file, input.block.data(), unsigned{BlockSize});
  int status = Z_OK;
  const std::string_view text = gzerror(input.file, &status);
  if (count > 0 || (count == 0 && status == Z_OK)) return count;
  const auto fault = std::string(text.substr(text.find(": ") + 2));  // without the name of the file
  const int code = status == Z_ERRNO ? errno : EILSEQ;
  archive_set_error(opened, code, "%s", fault.c_str());
  return ARCHIVE_FATAL;
}

std::string FaultOf(archive* opened) {
  if (LacksMemory()) return NoMemoryText;
  const char* text = archive_error_string(opened);
  std::string fault = text == nullptr ? "the archive is damaged" : text;
  while (fault.ends_with('\n')) fault.pop_back();
  return fault;
}

}  // namespace

bool HasRecordingSuffix(std::string_view name) {
  return name.ends_with(".registry.plist");
}

bool HasArchiveSuffix(std::string_view name) {
  return std::ranges::any_of(ArchiveSuffixes,
                             [&](std::string_view suffix) { return name.ends_with(suffix); });
}

bool IsArchive(const std::string& path) {
  struct stat status;
  if (HasRecordingSuffix(path) || stat(path.c_str(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) return false;
  if (HasArchiveSuffix(path)) return true;
  const Descriptor file(open(path.c_str(), CautiousReading));
  return file.Number() >= 0 && KindOf(file.Number()) != Kind::Unknown;
}

void ArchiveWalk::Close::operator()(archive* opened) const {
  archive_read_free(opened);
}

void ArchiveWalk::Close::operator()(GzipInput* input) const {
  gzclose(input->file);
  delete input;
}

std::optional<Selected> ArchiveWalk::Next() {
  if (hasEnded_) return std::nullopt;
  const Utf8Names names;
  errno = 0;  // see LacksMemory
  if (archive_ == nullptr) {
    if (auto error = Open()) return error;
  }
  return hasEnded_ ? std::nullopt : NextMember();
}

// Empty when it is open, and when it has ended because it is empty.
std::optional<Selected> ArchiveWalk::Open() {
  file_.emplace(open(path_.c_str(), CautiousReading));
  const auto size = file_->Number() < 0 ? SystemError() : RegularFileSize(file_->Number());
  if (!size) return EndWith(size.Error().message, UnreadableStatus(size.Error()));
  size_ = *size;
  const auto kind = KindOf(file_->Number());
  hasEnded_ = kind == Kind::EmptyZip;  // which the library does not recognise
  if (hasEnded_) return std::nullopt;
  archive_.reset(archive_read_new());
  if (archive_ == nullptr) return EndWith(NoMemoryText, LabStatus::OutOfResources);
  isZip_ = kind == Kind::Zip;
  isCompressed_ = kind == Kind::Gzip || kind == Kind::Xz || kind == Kind::Zstd;
  if (kind == Kind::Gzip) {
    const auto file = OpenGzip(file_->Number());
    if (file == nullptr) {
      const auto error = SystemError();
      return EndWith(error.message, UnreadableStatus(error));
    }
    gzip_.reset(new GzipInput{file, {}});
  }
  if (kind == Kind::Xz) archive_read_append_filter(archive_.get(), ARCHIVE_FILTER_XZ);
  if (kind == Kind::Zstd) archive_read_append_filter(archive_.get(), ARCHIVE_FILTER_ZSTD);
  if (isZip_) {
    archive_read_support_format_zip_seekable(archive_.get());
  } else {
    archive_read_support_format_tar(archive_.get());
    archive_read_set_option(archive_.get(), "tar", "read_concatenated_archives", "1");
  }
  if (OpenFile() == ARCHIVE_OK) return std::nullopt;
  return EndWithFault();
}

int ArchiveWalk::OpenFile() {
  if (gzip_ == nullptr) return archive_read_open_fd(archive_.get(), file_->Number(), BlockSize);
  return archive_read_open(archive_.get(), gzip_.get(), nullptr, ReadGzip, nullptr);
}

std::optional<Selected> ArchiveWalk::NextMember() {
  for (;;) {
    archive_entry* entry = nullptr;
    const int status = archive_read_next_header(archive_.get(), &entry);
    if (status == ARCHIVE_EOF) return AtEnd();
    if (status != ARCHIVE_OK && status != ARCHIVE_WARN) return EndWithFault();
    ++members_;
    if (auto selected = MemberOf(entry)) return selected;
    if (auto error = SkipData()) return error;
  }
}

// A tar archive ends in blocks of zeros, without which it may have been truncated between two
// members.
std::optional<Selected> ArchiveWalk::AtEnd() {
  hasEnded_ = true;
  if (isZip_ || isCompressed_) return std::nullopt;
  std::array<char, TarBlock> last;
  const ssize_t count =
      pread(file_->Number(), last.data(), last.size(), static_cast<off_t>(size_ - last.size()));
  const bool isEnd = count == static_cast<ssize_t>(last.size()) &&
                     std::ranges::count(last, '\0') == static_cast<std::ptrdiff_t>(last.size());
  if (isEnd) return std::nullopt;
  return EndWith("the archive lacks its end: it was truncated", LabStatus::MalformedInput);
}

// Empty when it is not a recording. An error of the archive itself ends the walk.
std::optional<Selected> ArchiveWalk::MemberOf(archive_entry* entry) {
  const char* name = archive_entry_pathname(entry);
  if (name == nullptr) {
    return Selected{.path = path_ + ":member " + std::to_string(members_),
                    .error = "its name is not UTF-8",
                    .errorStatus = LabStatus::MalformedInput};
  }
  if (!HasRecordingSuffix(name) || archive_entry_filetype(entry) == AE_IFDIR) return std::nullopt;
  auto path = path_ + ":" + name;
  auto error = RefusalOf(entry, maxSize_);
  if (error.empty()) return Read(entry, std::move(path));
  if (auto fault = SkipData()) return fault;
  return Selected{.path = std::move(path), .error = std::move(error)};
}

Selected ArchiveWalk::Read(archive_entry* entry, std::string path) {
  std::string bytes;
  bytes.reserve(std::min(static_cast<std::size_t>(SizeOf(entry)), std::size_t{1} << 20));
  char block[BlockSize];
  for (;;) {
    const auto count = archive_read_data(archive_.get(), block, sizeof block);
    if (count == 0) return {.path = std::move(path), .memberBytes = std::move(bytes)};
    if (count < 0 && (!isZip_ || StatusOf(archive_.get()) != LabStatus::MalformedInput)) {
      return EndWithFault();
    }
    if (count < 0) {
      return {.path = std::move(path),
              .error = FaultOf(archive_.get()),
              .errorStatus = LabStatus::MalformedInput};
    }
    read_ += static_cast<std::size_t>(count);
    if (ExpandsTooMuch()) return EndWith(ExpansionText, LabStatus::UnreadableInput);
    bytes.append(block, static_cast<std::size_t>(count));
    if (bytes.size() > maxSize_) break;
  }
  if (auto fault = SkipData()) return *std::move(fault);
  return {.path = std::move(path), .error = TooLargeText(maxSize_)};
}

// Skips the rest of the member. Returns the error that ends the walk, or empty.
std::optional<Selected> ArchiveWalk::SkipData() {
  int status = ARCHIVE_OK;
  while (isCompressed_ && status != ARCHIVE_EOF) {
    const void* block = nullptr;
    std::size_t size = 0;
    la_int64_t offset = 0;
    status = archive_read_data_block(archive_.get(), &block, &size, &offset);
    if (status != ARCHIVE_OK && status != ARCHIVE_EOF) return EndWithFault();
    if (ExpandsTooMuch()) return EndWith(ExpansionText, LabStatus::UnreadableInput);
  }
  return std::nullopt;
}

Selected ArchiveWalk::EndWith(const std::string& error, int status) {
  hasEnded_ = true;
  return {.path = path_, .error = error, .errorStatus = status};
}

Selected ArchiveWalk::EndWithFault() {
  return EndWith(FaultOf(archive_.get()), StatusOf(archive_.get()));
}

bool ArchiveWalk::ExpandsTooMuch() const {
  const auto expanded = std::max<std::uint64_t>(
      read_, static_cast<std::uint64_t>(archive_filter_bytes(archive_.get(), 0)));
  return expanded > MaxFileSize + MaxExpansion * std::uint64_t{size_};
}

}  // namespace fernwick::lab
