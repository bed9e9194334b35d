#include "lab/survey/selected.h"

#include <utility>

#include "lab/recordings/recording_file.h"

namespace fernwick::lab {

LabError ErrorOf(const Selected& selected) {
  return {{selected.error}, selected.errorStatus};
}

Result<Recording, LabError> LoadSelected(Selected& selected, std::size_t maxSize) {
  if (!selected.error.empty()) return ErrorOf(selected);
  if (!selected.memberBytes) return LoadRecording(selected.path, nullptr, maxSize);
  return LoadRecordingBytes(*std::move(selected.memberBytes));
}

}  // namespace fernwick::lab
