#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace fernwick {
namespace {

// "1 GiB", "64 MiB" or, where it is no multiple, "1000 bytes".
std::string SizeText(std::size_t size) {
  constexpr std::size_t Mebibyte = std::size_t{1} << 20;
  if (size % (1024 * Mebibyte) == 0) return std::to_string(size / (1024 * Mebibyte)) + " GiB";
  if (size % Mebibyte == 0) return std::to_string(size / Mebibyte) + " MiB";
  return std::to_string(size) + " bytes";
}

Error TooLarge(std::size_t maxSize) {
  return {"the file is larger than " + SizeText(maxSize)};
}

// Grows as it reads: the size may have changed since fstat, and some files report 0.
Result<std::string> ReadToEnd(int file, std::size_t expectedSize, std::size_t maxSize) {
  std::string bytes(expectedSize + 1, '\0');
  std::size_t length = 0;
  for (;;) {
    if (length == bytes.size()) bytes.resize(std::max<std::size_t>(4096, 2 * bytes.size()));
    const ssize_t count = read(file, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return SystemError();
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
    if (length > maxSize) return TooLarge(maxSize);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace

Error SystemError() {
  return {.message = std::strerror(errno), .systemError = errno};
}

bool PathExists(const std::string& path) {
  return PathError(path) == 0;
}

int PathError(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? 0 : errno;
}

bool IsAbsence(int error) {
  return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP;
}

const int CautiousReading = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

Result<std::string> ReadWholeFile(const std::string& path, std::size_t maxSize) {
  const Descriptor file(open(path.c_str(), CautiousReading));
  if (file.Number() < 0) return SystemError();
  return ReadRegularFile(file.Number(), maxSize);
}

Result<std::string> ReadRegularFile(int file, std::size_t maxSize) {
  const auto size = RegularFileSize(file);
  if (!size) return size.Error();
  if (*size > maxSize) return TooLarge(maxSize);
  return ReadToEnd(file, *size, maxSize);
}

Result<std::size_t> RegularFileSize(int file) {
  struct stat status;
  if (fstat(file, &status) != 0) return SystemError();
  if (S_ISDIR(status.st_mode)) return Error{std::strerror(EISDIR)};
  if (!S_ISREG(status.st_mode)) return Error{"not a regular file"};
  return static_cast<std::size_t>(status.st_size);
}

int WriteWhole(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

std::string AppendPathComponent(std::string_view path, std::string_view component) {
  while (path.ends_with('/')) path.remove_suffix(1);
  std::string joined(path);
  if (component.empty()) return joined;
  while (component.starts_with('/')) component.remove_prefix(1);
  return joined.append("/").append(component);
}

}  // namespace fernwick
