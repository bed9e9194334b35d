#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace fernwick::lab {

/// The paths that standard input lists. They are separated by NUL characters from the first one
/// on that is read (find -print0), which an empty path may not follow; until then they are lines,
/// which end in LF or CRLF and of which empty ones are skipped. The last path may lack its end. A
/// path has at most PATH_MAX bytes.
class InputList {
 public:
  InputList();
  ~InputList();
  InputList(const InputList&) = delete;
  InputList& operator=(const InputList&) = delete;

  /// Waits for standard input. Empty at its end, after an error and after Stop.
  std::optional<std::string> Next();

  /// Why the list ended before standard input did, once; otherwise empty.
  std::string TakeError();

  /// Whether that was a lack of memory or descriptors.
  bool LacksResources() const { return stop_ < 0; }

  /// Reads on after an end, as for a terminal.
  void Restart() { hasEnded_ = false; }

  /// From any thread: the list ends here, also for a Next that waits.
  void Stop();

 private:
  std::optional<std::string> NextOrEmpty();
  std::optional<std::string> Take(std::size_t length, std::size_t separatorLength);
  std::optional<std::string> Fail(std::string error);
  bool ReadMore();

  int stop_;                  // a descriptor that is readable after Stop; negative: there is none
  std::string unread_;        // from `returned_` on
  std::size_t returned_ = 0;  // bytes of unread_ that were returned
  bool isNulSeparated_ = false;
  bool hasEnded_ = false;
  std::string error_;
};

}  // namespace fernwick::lab
