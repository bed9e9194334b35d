#include "value/value_places.h"

#include <utility>

namespace fernwick {

void PlaceRecorder::BeginValue(std::size_t offset) {
  open_.push_back({.place = {}, .pendingKey = {}});
  open_.back().place.offset = offset;
}

void PlaceRecorder::EndValue() {
  auto place = std::move(open_.back().place);
  open_.pop_back();
  if (open_.empty()) {
    root_ = std::move(place);
    return;
  }
  auto& parent = open_.back();
  if (parent.isDictionary) {
    parent.pendingKey.value = std::move(place);
    parent.place.entries.push_back(std::move(parent.pendingKey));
  } else {
    parent.place.elements.push_back(std::move(place));
  }
}

void PlaceRecorder::Key(SharedBytes key, std::size_t offset) {
  auto& dictionary = open_.back();
  dictionary.pendingKey = {.key = std::move(key), .offset = offset};
  dictionary.isDictionary = true;
}

ValuePlace PlaceRecorder::TakeRoot() {
  return std::move(root_);
}

}  // namespace fernwick
