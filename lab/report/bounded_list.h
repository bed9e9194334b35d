#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// Bytes that several lists share.
class ByteBudget {
 public:
  explicit ByteBudget(std::size_t bytes) : left_(bytes) {}

  /// Uses them up if there are as many left. Returns whether there were.
  bool Use(std::size_t bytes);

 private:
  std::size_t left_;
};

/// How much is listed: so many items, and so many bytes besides those of a budget that others use
/// too. What is listed are always the first items: after one that is too large there is no other.
class ListLimit {
 public:
  explicit ListLimit(std::size_t items, std::size_t ownBytes = 0) : items_(items), own_(ownBytes) {}

  /// Returns whether an item of that size can be listed, and counts it if so.
  bool Accept(std::size_t bytes, ByteBudget& shared);

 private:
  std::size_t items_;
  ByteBudget own_;
};

/// The first items of a list as markup, and the number of all.
class BoundedList {
 public:
  /// Counts an item. Returns whether it is listed.
  bool Add(std::string_view markup, ListLimit& limit, ByteBudget& shared);

  std::size_t Count() const { return count_; }
  std::size_t Listed() const { return listed_; }
  const std::string& Markup() const { return markup_; }

 private:
  std::size_t count_ = 0;
  std::size_t listed_ = 0;
  std::string markup_;
};

}  // namespace fernwick::lab
