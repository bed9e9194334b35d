#include "registry/host/host_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

namespace fernwick {
namespace {

constexpr int DirectoryFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

// A rename or a mount anywhere in the system, at the moment when a path leads through "..", makes
// openat2 give up with EAGAIN rather than risk leaving the root. The next attempt nearly always
// succeeds. A file that somebody has leased has the same error for as long as the lease lasts.
constexpr int MaxAttempts = 100;

int OpenInRoot(int root, const char* path, int flags) {
  open_how how{};
  how.flags = static_cast<std::uint64_t>(flags);
  how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
  long file = -1;
  int attempts = 0;
  do {
    file = syscall(SYS_openat2, root, path, &how, sizeof how);
  } while (file < 0 && errno == EAGAIN && ++attempts < MaxAttempts);
  return static_cast<int>(file);
}

// The kind of an entry, as in stat::st_mode. Some file systems report none in the directory.
mode_t KindOf(int directory, const dirent64& entry) {
  switch (entry.d_type) {
    case DT_REG: return S_IFREG;
    case DT_DIR: return S_IFDIR;
    case DT_LNK: return S_IFLNK;
    default: break;
  }
  struct stat status = {};
  fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW);  // no kind where it fails
  return status.st_mode & S_IFMT;
}

void Add(int directory, const dirent64& entry, HostFiles::Listing& listing) {
  const std::string name = entry.d_name;
  if (name == "." || name == "..") return;
  const auto kind = KindOf(directory, entry);
  if (kind == S_IFREG) listing.files.push_back(name);
  if (kind == S_IFDIR) listing.directories.push_back(name);
  if (kind == S_IFLNK) listing.links.push_back(name);
}

}  // namespace

HostFiles::HostFiles(const std::string& root)
    : isCopy_(root != "/"), root_(isCopy_ ? open(root.c_str(), DirectoryFlags) : -1) {
  if (isCopy_) rootError_ = CopyError();
}

// The second open shows whether the system has the call that everything in a copy needs.
std::string HostFiles::CopyError() const {
  if (root_.Number() < 0 || !IsDirectory(".")) return std::strerror(errno);
  for (const char* name : {"proc", "sys"}) {
    if (IsDirectory(name)) return {};
  }
  return "there is neither \"proc\" nor \"sys\" in it";
}

// From "/" links lead where they lead, and need no care.
Descriptor HostFiles::Open(const std::string& path, int flags) const {
  if (!isCopy_) return Descriptor(open(("/" + path).c_str(), flags));
  return Descriptor(OpenInRoot(root_.Number(), path.c_str(), flags));
}

std::optional<std::string> HostFiles::Read(const std::string& path, std::size_t maxSize,
                                           Links links) const {
  const auto file = Open(path, CautiousReading | (links == Links::Ignored ? O_NOFOLLOW : 0));
  if (file.Number() < 0) return std::nullopt;
  auto bytes = ReadRegularFile(file.Number(), maxSize);
  if (!bytes) return std::nullopt;
  return *std::move(bytes);
}

bool HostFiles::IsDirectory(const std::string& path) const {
  return Open(path, DirectoryFlags).Number() >= 0;
}

HostFiles::Listing HostFiles::List(const std::string& path) const {
  Listing listing;
  const auto directory = Open(path, CautiousReading | O_DIRECTORY);
  alignas(dirent64) char entries[1 << 14];
  // The number of bytes; 0 after the last entry, negative on an error, also of the open.
  ssize_t count;
  while ((count = getdents64(directory.Number(), entries, sizeof entries)) > 0) {
    for (ssize_t offset = 0; offset < count;) {
      const auto& entry = *reinterpret_cast<const dirent64*>(entries + offset);
      Add(directory.Number(), entry, listing);
      offset += entry.d_reclen;
    }
  }
  for (auto* names : {&listing.files, &listing.directories, &listing.links}) {
    std::ranges::sort(*names);
  }
  return listing;
}

}  // namespace fernwick
