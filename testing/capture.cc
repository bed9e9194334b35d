#include "testing/capture.h"

#include <unistd.h>

namespace fernwick::testing {
namespace {

constexpr std::size_t BufferSize = 65536;

ssize_t NoteFlush(void* flushes, const char* bytes, std::size_t size) {
  static_cast<std::vector<std::string>*>(flushes)->emplace_back(bytes, size);
  return static_cast<ssize_t>(size);
}

}  // namespace

StandardErrorCapture::StandardErrorCapture()
    : file_(std::tmpfile()), savedDescriptor_(dup(STDERR_FILENO)) {
  std::fflush(stderr);
  dup2(fileno(file_), STDERR_FILENO);
}

StandardErrorCapture::~StandardErrorCapture() {
  Restore();
  std::fclose(file_);
}

void StandardErrorCapture::Restore() {
  if (savedDescriptor_ < 0) return;
  std::fflush(stderr);
  dup2(savedDescriptor_, STDERR_FILENO);
  close(savedDescriptor_);
  savedDescriptor_ = -1;
}

// Reads without moving the offset at which standard error goes on writing.
std::string StandardErrorCapture::TakeNewText() {
  std::string text;
  char piece[4096];
  ssize_t size = 0;
  while ((size = pread(fileno(file_), piece, sizeof piece, taken_)) > 0) {
    text.append(piece, static_cast<std::size_t>(size));
    taken_ += size;
  }
  return text;
}

std::string StandardErrorCapture::TakeText() {
  Restore();
  std::string text;
  std::rewind(file_);
  for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
    text.push_back(static_cast<char>(c));
  }
  return text;
}

StreamCapture::StreamCapture() : buffer_(BufferSize, '\0') {
  cookie_io_functions_t functions{};
  functions.write = NoteFlush;
  stream_ = fopencookie(&flushes_, "w", functions);
  std::setvbuf(stream_, buffer_.data(), _IOFBF, buffer_.size());
}

StreamCapture::~StreamCapture() {
  std::fclose(stream_);
}

std::string StreamCapture::Text() {
  std::fflush(stream_);
  std::string text;
  for (const auto& flush : flushes_) text += flush;
  return text;
}

std::FILE* OpenFullDisk() {
  return std::fopen("/dev/full", "w");
}

}  // namespace fernwick::testing
