#include "value/value_locations.h"

#include <utility>

namespace fernwick {

void LocationBuilder::BeginValue(std::size_t offset) {
  open_.push_back({.location = {}, .pendingKey = {}});
  open_.back().location.offset = offset;
}

void LocationBuilder::EndValue() {
  auto location = std::move(open_.back().location);
  open_.pop_back();
  if (open_.empty()) {
    root_ = std::move(location);
    return;
  }
  auto& parent = open_.back();
  if (parent.isDictionary) {
    parent.pendingKey.value = std::move(location);
    parent.location.entries.push_back(std::move(parent.pendingKey));
  } else {
    parent.location.elements.push_back(std::move(location));
  }
}

void LocationBuilder::Key(std::string_view key, std::size_t offset) {
  auto& dictionary = open_.back();
  dictionary.pendingKey = {.key = key, .offset = offset};
  dictionary.isDictionary = true;
}

ValueLocation LocationBuilder::TakeRoot() {
  return std::move(root_);
}

}  // namespace fernwick
