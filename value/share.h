#pragma once

#include <cstddef>
#include <utility>

namespace fernwick {

/// What values share: the bytes of a file, an array, a dictionary. It lives as long as any share in
/// it.
class Shared {
 public:
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;
  virtual ~Shared() = default;

 protected:
  Shared() = default;

 private:
  friend class Share;
  mutable std::size_t shares_ = 0;
};

/// A share in something, or in nothing. It is one pointer, and counted without regard to threads: a
/// large file has a million of them. Not for use across threads.
class Share {
 public:
  Share() = default;

  /// Takes part in `shared`, which was made by new and is released with its last share.
  explicit Share(const Shared* shared) : shared_(shared) {
    if (shared_ != nullptr) ++shared_->shares_;
  }
  Share(const Share& other) : Share(other.shared_) {}
  Share(Share&& other) noexcept : shared_(std::exchange(other.shared_, nullptr)) {}
  Share& operator=(Share other) noexcept {
    std::swap(shared_, other.shared_);
    return *this;
  }
  ~Share() {  // NOLINT(modernize-use-equals-default): it is empty for the analyzer alone
#ifndef __clang_analyzer__  // which cannot count, and would see memory used that has been released
    if (shared_ != nullptr && --shared_->shares_ == 0) delete shared_;
#endif
  }

  /// What it is in, or null. Valid as long as any share in it.
  const Shared* Get() const {
    return shared_;
  }

  friend bool operator==(const Share&, const Share&) = default;

 private:
  const Shared* shared_ = nullptr;
};

}  // namespace fernwick
