#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace fernwick {

/// The bytes of one file, read once; values view into it and share it.
using SourceBuffer = std::shared_ptr<const std::string>;

/// An immutable run of bytes with a share in the buffer that holds it: copying copies no bytes, and
/// the buffer lives as long as any run of it. Not for use across threads.
class SharedBytes {
 public:
  SharedBytes() = default;

  /// Takes `bytes` over into a buffer of their own.
  explicit SharedBytes(std::string bytes)
      : SharedBytes(std::make_shared<const std::string>(std::move(bytes))) {}

  /// Views `part` of `buffer`. REQUIRES: `part` lies inside `*buffer`.
  SharedBytes(const SourceBuffer& buffer, std::string_view part)
      : first_(buffer, part.data()), size_(part.size()) {}

  /// Valid as long as any copy of this value lives.
  std::string_view View() const { return {first_.get(), size_}; }

  friend bool operator==(const SharedBytes& a, const SharedBytes& b) {
    return a.View() == b.View();
  }

 private:
  explicit SharedBytes(const SourceBuffer& buffer) : SharedBytes(buffer, *buffer) {}

  std::shared_ptr<const char> first_;
  std::size_t size_ = 0;
};

}  // namespace fernwick
