#pragma once

#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::testing {

/// The content of a recording, without the memory that it views: for tests that write a recording
/// down or compare one.
struct RecordingContent {
  std::vector<RecordedEntry> entries = {};
  std::map<std::string_view, RecordedPlane> planes = {};
  std::map<std::string_view, std::string_view> superclasses = {};

  friend bool operator==(const RecordingContent&, const RecordingContent&) = default;
};

/// Valid as long as the recording.
inline RecordingContent ContentOf(const Recording& recording) {
  return {recording.entries, recording.planes, recording.superclasses};
}

/// REQUIRES: what the content views outlives the recording.
inline Recording RecordingOf(RecordingContent content) {
  return {.list = {},
          .entries = std::move(content.entries),
          .planes = std::move(content.planes),
          .superclasses = std::move(content.superclasses)};
}

}  // namespace fernwick::testing
