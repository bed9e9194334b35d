#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "value/result.h"

namespace fernwick {

/// The error of a call that has just failed, with its errno and the message for it.
Error SystemError();

/// Whether anything is at the path, links followed. A dangling link, a path through a file and
/// an over-long path do not exist.
bool PathExists(const std::string& path);

/// 0 when anything is at the path, as PathExists; otherwise the errno that says why it is not
/// found.
int PathError(const std::string& path);

/// Whether that errno means that there is nothing at a path. Any other, such as a lack of
/// permission or of memory, leaves open what is there.
bool IsAbsence(int error);

/// In bytes. Larger files are refused: no configuration or recording comes near it, and whatever
/// is there must not exhaust the computer that is about to be updated.
inline constexpr std::size_t MaxFileSize = std::size_t{1} << 30;

/// Reads a regular file of at most `maxSize` bytes. Never waits for a writer: a FIFO or a device is
/// an error.
Result<std::string> ReadWholeFile(const std::string& path, std::size_t maxSize = MaxFileSize);

/// Reads an open file to its end. Anything but a regular file is an error, and so is one of more
/// than `maxSize` bytes, whatever size it claims to have: no more than that is read of a file
/// without an end.
Result<std::string> ReadRegularFile(int file, std::size_t maxSize);

/// The size in bytes of an open file. Anything but a regular file is an error.
Result<std::size_t> RegularFileSize(int file);

/// Writes all of the bytes to an open file, in as many calls as needed. Returns 0, or the errno of
/// the call that failed.
int WriteWhole(int file, std::string_view bytes);

/// Flags of open(2) to read what may be any kind of file: it does not wait, as for the writer of a
/// FIFO, and a terminal does not become that of the process.
extern const int CautiousReading;

/// An open file, closed at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;

  /// Negative where nothing could be opened.
  int Number() const { return number_; }

 private:
  int number_;
};

/// Appends a component: all "/" at the end of `path` and at the start of `component` are
/// replaced by exactly one. An empty component results in `path` without the "/" at its end. A
/// doubled "/" elsewhere stays.
std::string AppendPathComponent(std::string_view path, std::string_view component);

}  // namespace fernwick
