#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "lab/survey/frames.h"

namespace fernwick::lab {

/// Tells how far the work on a path has come; what was noted last is kept when its process ends.
using Note = std::function<void(std::string_view)>;

/// What is done with a path, in a process of its own: from the path to any bytes.
using Work = std::function<std::string(const std::string& path, const Note& note)>;

/// A child process that works on one path at a time. Its standard streams lead nowhere, it leaves
/// no core file, and it ends with its parent, whatever ends that.
class Worker {
 public:
  /// Null when a pipe or a process could not be had; errno tells why. The child holds none of the
  /// pipes of `others`.
  static std::unique_ptr<Worker> Start(const Work& work,
                                       std::span<const std::unique_ptr<Worker>> others);

  /// Ends the process.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Hands it a path. One that has ended is found out by Read. REQUIRES: it has no other.
  void Give(std::string_view path);

  /// Becomes readable when there is something for Read.
  int Descriptor() const { return answers_; }

  /// What a Read came to; there is no whole answer while it is underway.
  enum class Progress { Underway, Answered, Ended };

  /// Reads what the process has sent; waits when that is nothing.
  Progress Read();

  /// Once it has answered.
  std::string TakeAnswer() { return std::move(answer_); }

  /// Once it has ended: "SIGABRT", "out of memory" or "exit status 3".
  const std::string& End() const { return end_; }

  /// Whether it has begun to work on what it was given last, and what it has noted since.
  bool HasBegun() const { return hasBegun_; }
  const std::string& LastNote() const { return note_; }

 private:
  Worker(pid_t process, int requests, int answers)
      : process_(process), requests_(requests), answers_(answers) {}

  bool TakeFrames();
  void Reap();

  pid_t process_;
  int requests_;
  int answers_;
  FrameReader reader_;
  bool hasBegun_ = false;
  std::string note_;
  std::string answer_;
  std::string end_;
};

}  // namespace fernwick::lab
