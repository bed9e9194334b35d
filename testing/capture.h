#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

namespace fernwick::testing {

/// Everything that reaches standard error, diagnostics and system log alike, from its construction
/// to TakeText. One at a time.
class StandardErrorCapture {
 public:
  StandardErrorCapture();
  ~StandardErrorCapture();
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

  /// What has come since the last call. The capture goes on, so that one serves any number of
  /// calls of the subject. REQUIRES: what was written was flushed.
  std::string TakeNewText();

  /// Ends the capture. Returns all that came, what TakeNewText returned included.
  std::string TakeText();

 private:
  void Restore();

  std::FILE* file_;
  int savedDescriptor_;
  off_t taken_ = 0;
};

/// A stream that keeps what is written to it and where it was flushed.
class StreamCapture {
 public:
  StreamCapture();
  ~StreamCapture();
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;

  std::FILE* Stream() const { return stream_; }

  /// All that was written, flushed or not.
  std::string Text();

  /// What each flush sent out, in order. Does not flush by itself. REQUIRES: no piece was larger
  /// than 64 KiB, which a stream sends out unasked.
  const std::vector<std::string>& Flushes() const { return flushes_; }

 private:
  std::vector<std::string> flushes_;
  std::string buffer_;
  std::FILE* stream_;
};

/// A stream on which every write fails with ENOSPC, as on a full disk. The caller closes it.
std::FILE* OpenFullDisk();

}  // namespace fernwick::testing
