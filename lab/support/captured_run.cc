#include "lab/support/captured_run.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "driver/run.h"

namespace fernwick::lab {
namespace {

// Takes standard error, of which the option parser, the system log and the requirement checks write
// by themselves, from its construction to TakeText.
class StandardErrorCapture {
 public:
  StandardErrorCapture()
      : file_(memfd_create("standard error", MFD_CLOEXEC)), saved_(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    dup2(file_, STDERR_FILENO);
  }
  ~StandardErrorCapture() {
    Restore();
    close(file_);
  }
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

  std::string TakeText() {
    Restore();
    const off_t size = lseek(file_, 0, SEEK_END);
    std::string text(static_cast<std::size_t>(size), '\0');
    text.resize(static_cast<std::size_t>(pread(file_, text.data(), text.size(), 0)));
    return text;
  }

 private:
  void Restore() {
    if (saved_ < 0) return;
    std::fflush(stderr);
    dup2(saved_, STDERR_FILENO);
    close(saved_);
    saved_ = -1;
  }

  int file_;
  int saved_;
};

// A stream into memory.
class MemoryStream {
 public:
  MemoryStream() : stream_(open_memstream(&bytes_, &size_)) {}
  ~MemoryStream() {
    std::fclose(stream_);
    std::free(bytes_);
  }
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;

  std::FILE* Stream() const { return stream_; }

  std::string Text() {
    std::fflush(stream_);
    return {bytes_, size_};
  }

 private:
  char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

}  // namespace

CapturedRun RunCaptured(Registry& registry, const std::vector<std::string>& toolArguments,
                        RunRecorder* recorder) {
  std::vector<std::string> words = {"fernwick"};
  words.insert(words.end(), toolArguments.begin(), toolArguments.end());
  std::vector<char*> vector;
  for (auto& word : words) vector.push_back(word.data());
  vector.push_back(nullptr);
  MemoryStream output;
  StandardErrorCapture errors;
  const int status =
      Run(static_cast<int>(words.size()), vector.data(), registry, output.Stream(), recorder);
  return {status, output.Text(), errors.TakeText()};
}

}  // namespace fernwick::lab
