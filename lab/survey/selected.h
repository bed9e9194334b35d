#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "lab/support/messages.h"
#include "platform/file_system.h"
#include "registry/recorded_registry.h"
#include "value/result.h"

namespace fernwick::lab {

/// A recording that was selected: a file, or a member of an archive with its bytes. What could not
/// be selected has an error, such as a directory that cannot be read, a damaged archive, or
/// standard input ("-"); otherwise the error is empty.
struct Selected {
  std::string path;  // of a member "ARCHIVE:NAME"
  std::string error = {};
  bool isNamed = false;                          // it is an argument of the command line itself
  int errorStatus = LabStatus::UnreadableInput;  // the exit status for the error
  std::optional<std::string> memberBytes = {};   // of a member without an error
  std::size_t index = 0;                         // among all that the command line selects

  /// Whether they are the same, wherever in a selection.
  friend bool operator==(const Selected& a, const Selected& b) {
    return a.path == b.path && a.error == b.error && a.isNamed == b.isNamed &&
           a.errorStatus == b.errorStatus && a.memberBytes == b.memberBytes;
  }
};

/// The exit status of a verb for recordings that were refused: that of the first one in the order
/// of the selection that is named on the command line. Those found in a directory, an archive or a
/// list do not count.
class FirstRefusal {
 public:
  /// Adds a recording. `isNamed` as in Selected; `status` is that of its error, or LabStatus::Done
  /// where it was not refused.
  void Add(bool isNamed, int status) {
    if (isNamed && status_ == LabStatus::Done) status_ = status;
  }

  /// LabStatus::Done where no named recording was refused.
  int Status() const { return status_; }

 private:
  int status_ = LabStatus::Done;
};

/// The error of what was selected. REQUIRES: there is one.
LabError ErrorOf(const Selected& selected);

/// Reads the recording, of at most `maxSize` bytes where it is a file, or returns the error of the
/// selection. The bytes of a member are moved out of `selected`.
Result<Recording, LabError> LoadSelected(Selected& selected, std::size_t maxSize = MaxFileSize);

/// What a verb has of a recording that could not be loaded: the row `refusal`, or an error, whose
/// message begins with the path, where only memory or descriptors were lacking.
template <typename Row>
Result<Row, LabError> RefusedUnlessLacking(const std::string& path, const LabError& error,
                                           Row refusal) {
  if (error.status != LabStatus::OutOfResources) return refusal;
  return LabError{{path + ": " + error.error.message}, error.status};
}

}  // namespace fernwick::lab
