// The tree is built bottom-up from the events of a reader, with a stack of the values that are
// open. Children are collected in vectors that grow in the arena: when one is full it moves to an
// area of twice the size, so time and memory are linear in the values.

#include "value/value_locations.h"

#include <algorithm>
#include <memory>

namespace fernwick {

ValueLocation::ValueLocation(std::size_t start, std::span<const KeyLocation> entries)
    : offset(static_cast<std::uint32_t>(start)),
      count_(static_cast<std::uint32_t>(entries.size()) & 0x7FFFFFFF),
      isDictionary_(1),
      children_(entries.data()) {}

ValueLocation::ValueLocation(std::size_t start, std::span<const ValueLocation> elements)
    : offset(static_cast<std::uint32_t>(start)),
      count_(static_cast<std::uint32_t>(elements.size()) & 0x7FFFFFFF),
      children_(elements.data()) {}

std::span<const KeyLocation> ValueLocation::Entries() const {
  if (isDictionary_ == 0) return {};
  return {static_cast<const KeyLocation*>(children_), count_};
}

std::span<const ValueLocation> ValueLocation::Elements() const {
  if (isDictionary_ != 0) return {};
  return {static_cast<const ValueLocation*>(children_), count_};
}

void LocationBuilder::BeginValue(std::size_t offset) {
  open_.push_back({.offset = offset});
}

void LocationBuilder::Expect(std::size_t count) {
  open_.back().expected = count;
}

void LocationBuilder::Key(std::string_view key, std::size_t offset) {
  auto& dictionary = open_.back();
  dictionary.pendingKey = {.key = key, .offset = static_cast<std::uint32_t>(offset)};
  dictionary.isDictionary = true;
}

ValueLocation LocationBuilder::EndValue() {
  const auto& value = open_.back();
  const auto location = value.isDictionary ? ValueLocation(value.offset, value.entries.All())
                                           : ValueLocation(value.offset, value.elements.All());
  open_.pop_back();
  AddValue(location);
  return location;
}

void LocationBuilder::AddValue(const ValueLocation& location) {
  if (open_.empty()) {
    root_ = location;
    return;
  }
  auto& parent = open_.back();
  if (parent.isDictionary) {
    parent.pendingKey.value = location;
    Append(parent.entries, parent.pendingKey, parent.expected);
  } else {
    Append(parent.elements, location, parent.expected);
  }
}

template <typename Location>
void LocationBuilder::Append(Children<Location>& children, const Location& location,
                             std::size_t expected) {
  if (children.size == children.capacity) {
    const auto capacity = std::max(std::max<std::size_t>(expected, 2), 2 * children.capacity);
    auto* area = arena_.Allocate<Location>(capacity);
    std::uninitialized_copy_n(children.first, children.size, area);
    children = {area, children.size, capacity};
  }
  std::construct_at(children.first + children.size, location);
  ++children.size;
}

}  // namespace fernwick
